#include "core/field_checks.h"

#include <gtest/gtest.h>

#include "core/values.h"

namespace zelmor {
namespace {

struct Case {
    const char* typed;
    bool accepted;
    const char* shown;  // what the field holds afterwards
};

void expectOutcomes(FieldOutcome (*check)(std::string_view), const char* message, std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        const FieldOutcome out = check(c.typed);
        EXPECT_EQ(out.accepted, c.accepted) << '"' << c.typed << '"';
        EXPECT_EQ(out.text, c.shown) << '"' << c.typed << '"';
        if (c.accepted) {
            EXPECT_TRUE(out.message.empty()) << c.typed;
        } else {
            EXPECT_EQ(out.message, message) << c.typed;
            EXPECT_EQ(out.title, kWarningTitle) << c.typed;
        }
    }
}

TEST(FieldChecks, AmountShowsItsDisplayFormOrKeepsTheTypedText) {
    expectOutcomes(CheckAmountField, "סכום לא חוקי",
                   {
                       {"", true, ""}, {"0", true, ""}, {"1234", true, "1,234"}, {" 1,234 ", true, "1,234"},
                       {"-1234", true, "1,234-"}, {"1,234-", true, "1,234-"},
                       // The display (and so the value kept) rounds halves away from zero, unlike the parse.
                       {"2.5", true, "3"}, {"-2.5", true, "3-"}, {"0.5", true, "1"}, {"-0.5", true, "1-"},
                       {"1,234.5", true, "1,235"}, {"1.49", true, "1"}, {"70000", true, "70,000"},
                       {"2147483647", true, "2,147,483,647"},
                       {"abc", false, "abc"}, {"1,23", false, "1,23"}, {"3000000000", false, "3000000000"},
                       {"  /  /    ", true, ""},
                       // Inside the range by the check's rounding, outside once shown.
                       {"2147483646.5", true, "2,147,483,647"}, {"-2147483648.5", false, "-2147483648.5"},
                   });
}

TEST(FieldChecks, WholeNumbersStayAsTyped) {
    expectOutcomes(CheckWholeField, "מספר לא חוקי",
                   {{"", true, ""}, {"3", true, "3"}, {"32767", true, "32767"}, {"-32768", true, "-32768"},
                    {"32768", false, "32768"}, {"70000", false, "70000"}, {"1.5", false, "1.5"},
                    {"x", false, "x"}});
}

TEST(FieldChecks, DatesShowDayMonthYear) {
    expectOutcomes(CheckDateField, "תאריך לא חוקי",
                   {{"  /  /    ", true, "  /  /    "}, {"", true, "  /  /    "}, {"1/2/2015", true, "01/02/2015"},
                    {"31/12/2015", true, "31/12/2015"}, {"31/02/2015", false, "31/02/2015"},
                    {"12/  /2015", false, "12/  /2015"}});
}

TEST(FieldChecks, DisabledCeiling) {
    auto check = [](std::string_view typed) { return CheckCeilingField(typed, 614400); };
    expectOutcomes(check, "הכנסת נכה 100% גבוהה מהתקרה בסך 614,400 ש\"ח",
                   {{"614400", true, "614,400"}, {"614,400.4", true, "614,400"}, {"", true, ""},
                    {"614401", false, "614,401"}, {"614400.5", false, "614,401"}});
    expectOutcomes(check, kBadAmountText, {{"bad", false, "bad"}});
}

TEST(FieldChecks, InsuredIncomeAgainstTheSalaries) {
    EXPECT_TRUE(CheckInsuredIncomeField("120,000", 120000).accepted);
    EXPECT_TRUE(CheckInsuredIncomeField("", 0).accepted);
    const FieldOutcome over = CheckInsuredIncomeField("120001", 120000);
    EXPECT_FALSE(over.accepted);
    EXPECT_EQ(over.text, "120,001");
    EXPECT_EQ(over.title, kWarningTitle);
    EXPECT_EQ(over.message, "הכנסה מבוטחת גבוהה מהמשכורת, נא להזין סכום נמוך מ 120,000");
    // No salary: any value is refused, and the limit reads "0", not blank.
    EXPECT_EQ(CheckInsuredIncomeField("1", 0).message, "הכנסה מבוטחת גבוהה מהמשכורת, נא להזין סכום נמוך מ 0");
    // Two salaries near the top of the range add up beyond 32 bits without wrapping.
    EXPECT_TRUE(CheckInsuredIncomeField("2147483647", 2LL * 2147483647).accepted);
    EXPECT_EQ(CheckInsuredIncomeField("x", 10).message, kBadAmountText);
}

TEST(FieldChecks, GroupedFormat) {
    for (const auto& [value, text] : {std::pair<long long, const char*>{0, "0"}, {999, "999"}, {1234567, "1,234,567"},
                                      {-1500, "-1,500"}, {4294967294LL, "4,294,967,294"}})
        EXPECT_EQ(FormatGrouped(value), text) << value;
}

}  // namespace
}  // namespace zelmor
