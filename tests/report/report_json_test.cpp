#include "report/report_json.h"

#include <gtest/gtest.h>

#include <string>

namespace zelmor {
namespace {

const std::string kHead = R"({"format":"zelmor-report","version":1,"year":2015)";

// A document of the given sections: doc(R"("Yegia":{"N150":1})").
std::string doc(const std::string& sections = {}) { return kHead + (sections.empty() ? "" : ",") + sections + "}"; }

// What the document is refused for; "(accepted)" when it is read.
InputError refusal(const std::string& text) {
    try {
        parseReportDocument(text);
    } catch (const InputError& e) {
        return e;
    }
    return InputError("", "", "(accepted)");
}

// A report in which every member differs from a new report, made from the catalogue.
NishumInput everyMemberSet() {
    NishumInput n;
    int k = 0;
    for (const FieldDef& f : allFields()) {
        ++k;
        switch (f.type) {
            case FieldType::Text: f.ref<std::string>(n) = "א\"\\\tb"; break;
            case FieldType::Date: f.ref<Date>(n) = *Date::fromYmd(1950 + k % 60, 1 + k % 12, 1 + k % 28); break;
            case FieldType::Boolean: f.ref<bool>(n) = true; break;
            case FieldType::Amount: f.ref<Amount>(n) = k % 2 ? -1000 * k : 2147480000 / 300 * k / 100; break;
            case FieldType::Number: f.ref<std::int32_t>(n) = -k; break;
            case FieldType::Count: f.ref<std::int16_t>(n) = static_cast<std::int16_t>(k % 50); break;
        }
    }
    WorkOutDerived(n);
    return n;
}

TEST(ReportDocument, ReadsEachTypeAndWorksOutDerivedMembersAcceptingThemWhenTheyAgree) {
    const NishumInput n = parseReportDocument(doc(
        R"("Pratim":{"LastNameM":"כהן","BirthDateM":"1970-03-15","BirthDateF":null,"DochDate":"","isMale":true},)"
        R"("Yegia":{"N150":-2147483648,"N250":100,"YegiaM":20,"N170":7,"TTLF":7},"Zikuim":{"N093Rate":25},)"
        R"("Pturot":{"Kizva":3,"Acherot":4},"Nekudot":{"N260_2":-32768,"N260_3":32767,"N260":-1},)"
        R"("Tashlumim":{"N042M":10,"N042F":5,"N042":15,"MikdamotM":1,"N294M":1000})"));
    EXPECT_EQ(n.Pratim.LastNameM, "כהן");
    EXPECT_EQ(n.Pratim.BirthDateM, *Date::fromYmd(1970, 3, 15));
    EXPECT_TRUE(n.Pratim.BirthDateF.isNull());
    EXPECT_TRUE(n.Pratim.DochDate.isNull());
    EXPECT_TRUE(n.Pratim.isMale);
    EXPECT_EQ(n.Yegia.N150, Amount(-2147483647 - 1));
    EXPECT_EQ(n.Zikuim.N093Rate, 25);
    EXPECT_EQ(n.Yegia.TTLM, -2147483647 - 1 + 120);
    EXPECT_EQ(n.Yegia.TTLF, 7);
    EXPECT_EQ(n.Pturot.N209, 7);
    EXPECT_EQ(n.Nekudot.N260, -1);
    EXPECT_EQ(n.Tashlumim.N294, 1000);
    EXPECT_EQ(n.Tashlumim.TashTTLM, 11);
    EXPECT_EQ(n.Tashlumim.TashTTLF, 5);
    EXPECT_EQ(n.Tashlumim.TashTTL, 16);
}

TEST(ReportDocument, WrittenDocumentReadsBackToTheSameReport) {
    const NishumInput original = everyMemberSet();
    for (bool pretty : {false, true}) {
        const std::string text = writeReportDocument(original, pretty);
        EXPECT_EQ(text.find('\n') == std::string::npos, !pretty);
        const NishumInput back = parseReportDocument(text);
        EXPECT_EQ(writeReportDocument(back, pretty), text);
    }
}

TEST(ReportDocument, RefusesToWriteTextThatIsNotUtf8) {
    NishumInput n;
    n.Pratim.FirstNameM = "ab\xff";
    EXPECT_THROW(writeReportDocument(n, false), InputError);
}

// Each refusal names the place and what is wrong (the golden documents and the
// check command show a misspelt member and a total that does not agree).
TEST(ReportDocumentRefusal, NamesThePlaceAndTheFault) {
    const struct {
        std::string text, message;
    } cases[] = {
        // names
        {doc(R"("Yegia":{"N036":1})"), R"(Yegia.N036: unknown member; did you mean "Zikuim.N036"?)"},
        {doc(R"("Yegia":{"Salary":1})"), "Yegia.Salary: unknown member"},
        {doc(R"("Yegya":{})"), R"(Yegya: unknown section; did you mean "Yegia"?)"},
        {doc(R"("N150":1)"), R"(N150: unknown section; N150 is a member of Yegia and belongs inside "Yegia")"},
        {doc(R"("Yegia":{"N150":1,"N150":1})"), "Yegia.N150: given twice"},
        {doc(R"("Yegia":{},"Yegia":{})"), "Yegia: given twice"},
        // header
        {R"({"format":"zelmor-results","version":1,"year":2015})",
         R"(format: expected "zelmor-report", got "zelmor-results")"},
        {R"({"format":"zelmor-report","version":2,"year":2015})", "version: expected 1, got 2"},
        {R"({"format":"zelmor-report","version":1,"year":2016})",
         "year: expected 2015 (the tax year of this program), got 2016"},
        {R"({"version":1,"year":2015})", R"(format: missing (expected "zelmor-report"))"},
        {R"([1,2])", "a report document is a JSON object, got an array"},
        {doc(R"("Yegia":[1])"), "Yegia: expected an object of members, got an array"},
        // whole numbers and their ranges
        {doc(R"("Yegia":{"N150":1.5})"), "Yegia.N150: expected a whole number, got 1.5"},
        {doc(R"("Yegia":{"N150":1e3})"), "Yegia.N150: expected a whole number, got 1e3"},
        {doc(R"("Yegia":{"N150":"abc"})"), R"(Yegia.N150: expected a whole number, got "abc")"},
        {doc(R"("Yegia":{"N150":null})"), "Yegia.N150: expected a whole number, got null"},
        {doc(R"("Yegia":{"N150":2147483648})"),
         "Yegia.N150: 2147483648 is outside the range of an amount (-2147483648..2147483647)"},
        {doc(R"("Yegia":{"N150":-99999999999999999999999})"),
         "Yegia.N150: -99999999999999999999999 is outside the range of an amount (-2147483648..2147483647)"},
        {doc(R"("Yegia":{"N150":18446744073709551615})"),
         "Yegia.N150: 18446744073709551615 is outside the range of an amount (-2147483648..2147483647)"},
        {doc(R"("Zikuim":{"N093Month":3000000000})"),
         "Zikuim.N093Month: 3000000000 is outside the range of a number (-2147483648..2147483647)"},
        {doc(R"("Nekudot":{"N260_1":40000})"),
         "Nekudot.N260_1: 40000 is outside the range of a count (-32768..32767)"},
        // other types
        {doc(R"("Pratim":{"isMale":1})"), "Pratim.isMale: expected true or false, got 1"},
        {doc(R"("Pratim":{"IDM":12345})"), "Pratim.IDM: expected a text (a JSON string), got 12345"},
        {doc(R"("Pratim":{"LastNameF":"אבגדהוזחטיכלמנסעפצקרשתאבג"})"),
         "Pratim.LastNameF: text of 25 characters is longer than the 20 the field takes"},
        {doc(R"("Pratim":{"BirthDateM":"2015-02-30"})"), R"(Pratim.BirthDateM: "2015-02-30" is not a date)"},
        {doc(R"("Pratim":{"BirthDateM":"15/03/1970"})"),
         R"(Pratim.BirthDateM: "15/03/1970" is not a date of the form YYYY-MM-DD)"},
        {doc(R"("Pratim":{"BirthDateM":19700315})"),
         R"(Pratim.BirthDateM: expected a date "YYYY-MM-DD" or null, got 19700315)"},
        // derived members
        {doc(R"("Nekudot":{"N260_1":1,"N260":0})"), "Nekudot.N260: given as 0 but N260_1 + N260_2 + N260_3 + "
                                                     "N260_4 + N260_5 + N260_6 is 1"},
        {doc(R"("Yegia":{"N150":2147483647,"N158":1})"),
         "Yegia.TTLM: the sum N150 + N250 + N158 + N068 + N258 + N358 + N120 + YegiaM is outside the range of "
         "an amount (-2147483648..2147483647)"},
        {doc(R"("Nekudot":{"N260_1":30000,"N260_2":30000})"),
         "Nekudot.N260: the sum N260_1 + N260_2 + N260_3 + N260_4 + N260_5 + N260_6 is outside the range of a "
         "count (-32768..32767)"},
    };
    for (const auto& c : cases) EXPECT_EQ(refusal(c.text).what(), c.message) << c.text;
    // The place and the fault also come apart.
    const InputError e = refusal(doc(R"("Nekudot":{"N260_1":40000})"));
    EXPECT_EQ(e.section + "|" + e.member + "|" + e.problem,
              "Nekudot|N260_1|40000 is outside the range of a count (-32768..32767)");
}

TEST(ReportDocumentRefusal, MalformedJsonGivesLineAndColumnInCharacters) {
    const InputError e = refusal("{\n  \"format\": \"zelmor-report\",\n  \"Pratim\": {\"LastNameM\": \"כהן\" \"x\"}\n}");
    EXPECT_EQ(e.line, 3u);
    EXPECT_EQ(e.column, 35u);  // the end of the unexpected "x", in characters (bytes: 38)
    const struct {
        std::string text, start;
    } cases[] = {{"", "line 1, column 0: malformed JSON ("},
                 {doc() + " {}", "line 1, column 52: malformed JSON ("},
                 {"{\"format\": \"\xff\"}", "line 1, column 13: malformed JSON ("}};
    EXPECT_TRUE(std::string(e.what()).starts_with("line 3, column 35: malformed JSON (syntax error")) << e.what();
    for (const auto& c : cases) EXPECT_TRUE(std::string(refusal(c.text).what()).starts_with(c.start)) << refusal(c.text).what();
}

}  // namespace
}  // namespace zelmor
