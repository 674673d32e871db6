#include "report/entry_layout.h"

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace zelmor {
namespace {

const char* const kM = "\"בן הזוג הרשום\"";
const char* const kF = "בן/בת הזוג";
const char* const kBoth = "שני בני הזוג";
const char* const kTotal = "סה\"כ";

// --- Building a page --------------------------------------------------------
// A page is written as blocks of rows; the screen caption of a grid row is the
// catalogue's caption of its first field, so it is written once. Built once,
// then never changed: the spans of the finished layout point into it.

struct RowSrc {
    Words caption;
    std::vector<EntryCell> cells;
    Medium medium;
};

struct BlockSrc {
    Words heading;
    Words lines;
    std::vector<ColumnHead> columns;
    std::vector<RowSrc> rows;
    Medium medium;
};

class Page {
public:
    explicit Page(SectionId section) : section_(section) {}

    Page& block(Words heading, Words lines = {}, std::vector<ColumnHead> columns = {},
                Medium medium = Medium::Both) {
        src_.push_back({heading, lines, std::move(columns), {}, medium});
        return *this;
    }
    // A row whose screen caption is that of its first field.
    Page& row(const char* paper, std::vector<EntryCell> cells, Medium medium = Medium::Both) {
        const char* screen = onScreen(medium) ? field(cells.front().field).caption : "";
        return row(Words{screen, paper}, std::move(cells), medium);
    }
    Page& row(Words caption, std::vector<EntryCell> cells, Medium medium = Medium::Both) {
        src_.back().rows.push_back({caption, std::move(cells), medium});
        return *this;
    }
    // A row of the two spouses, and one of both together and each.
    Page& mf(const char* paper, const char* m, const char* f) {
        return row(paper, {at(Person::M, m), at(Person::F, f)});
    }
    Page& bmf(const char* paper, const char* both, const char* m, const char* f) {
        return row(paper, {at(Person::Both, both), at(Person::M, m), at(Person::F, f)});
    }
    // A plain heading or note inside a block.
    Page& text(Words caption, Medium medium = Medium::Both) { return row(caption, {}, medium); }

    // The catalogue's caption of a field.
    const char* caption(const char* name) const { return field(name).caption; }

    // A cell under a column, its caption the row's.
    EntryCell at(Person column, const char* name, Medium medium = Medium::Both) const {
        field(name);
        return {name, column, {}, medium};
    }
    // A cell with its own caption: on the screen the catalogue's, on paper `paper`.
    EntryCell own(Person column, const char* name, const char* paper, Medium medium = Medium::Both) const {
        return {name, column, {field(name).caption, paper}, medium};
    }

    // An option or check box, captioned alike on both media.
    EntryCell option(const char* name) const { return own(Person::None, name, caption(name)); }

    const EntryPageLayout& finish() {
        for (const BlockSrc& b : src_) {
            auto& rows = rows_.emplace_back();
            for (const RowSrc& r : b.rows) rows.push_back({r.caption, r.cells, r.medium});
        }
        for (std::size_t i = 0; i < src_.size(); ++i) {
            const BlockSrc& b = src_[i];
            blocks_.push_back({b.heading, b.lines, b.columns, rows_[i], b.medium});
        }
        layout_ = {section_, blocks_};
        return layout_;
    }

private:
    const FieldDef& field(const char* name) const {
        const FieldDef* f = findField(sectionDef(section_).name, name);
        if (!f) throw std::logic_error(std::string("layout names no field ") + name);
        return *f;
    }

    SectionId section_;
    std::vector<BlockSrc> src_;
    std::vector<std::vector<EntryRow>> rows_;
    std::vector<EntryBlock> blocks_;
    EntryPageLayout layout_{};
};

ColumnHead head(Person p) { return {p, {columnHead(p), columnHead(p)}}; }
std::vector<ColumnHead> mf() { return {head(Person::M), head(Person::F)}; }
std::vector<ColumnHead> bmf() { return {head(Person::Both), head(Person::M), head(Person::F)}; }
// Heads that the screen shows and paper leaves out.
std::vector<ColumnHead> screenHeads(std::vector<ColumnHead> heads) {
    for (ColumnHead& h : heads) h.text.paper = "";
    return heads;
}

constexpr Person M = Person::M;
constexpr Person F = Person::F;
constexpr Person B = Person::Both;
constexpr Person T = Person::Total;
constexpr Person N = Person::None;
constexpr Medium kPaper = Medium::Paper;

// --- The pages ----------------------------------------------------------------

void pratim(Page& p) {
    p.block({"ב. פרטים אישיים", "ב. פרטים אישיים"}, {}, mf());
    p.row({}, {p.own(M, "IDM", "ת.ז.: "), p.own(M, "LastNameM", "שם משפחה: "), p.own(F, "IDF", "ת.ז.: "),
               p.own(F, "LastNameF", "משפחה: ")});
    p.row({}, {p.own(M, "FirstNameM", "שם פרטי: "), p.own(M, "FatherNameM", "שם האב: "),
               p.own(F, "FirstNameF", "פרטי: "), p.own(F, "FatherNameF", "שם האב: ")});
    p.row({}, {p.own(M, "BirthDateM", "תאריך לידה: "), p.own(F, "BirthDateF", "לידה: ")});
    p.row({}, {p.own(N, "MailAddress", "כתובת לדואר: ")});
    p.row({}, {p.own(N, "Address", "כתובת מגורים: ")});
    p.row({"טלפונים :", "טלפונים:"}, {{"PhoneH", M, {"בית :", "בית: "}}, p.own(M, "PhoneWM", "עבודה: "),
                                      p.own(F, "PhoneWF", "עבודה: "), p.own(F, "Fax", "פקס: ")});
    p.row({"עיסוק עיקרי :", "עיסוק עיקרי: "}, {p.at(M, "ProfessionM"), p.at(F, "ProfessionF")});
    p.row({"שם העסק :", "שם העסק: "}, {p.at(M, "BusinessNameM"), p.at(F, "BusinessNameF")});
    p.row({"כתובת העסק :", "כתובת העסק: "}, {p.at(M, "BusinessAddressM"), p.at(F, "BusinessAddressF")});
    p.row({"מספר תיק :", "מספר תיק:"}, {{"TikNikuimM", M, {"ניכויים :", "ניכויים: "}}, p.own(M, "TikMaamM", "מע\"מ: "),
                                       p.own(F, "TikNikuimF", "ניכויים: "), p.own(F, "TikMaamF", "מע\"מ: ")});
    p.row({"שם המעביד :", "שם המעביד: "}, {p.at(M, "BossNameM"), p.at(F, "BossNameF")});
    // Paper prints the sex and the marital status on one line of words.
    p.row({}, {p.own(N, "isMale", "זכר "), p.own(N, "isFemale", "נקבה ")});
    p.row({"מצב משפחתי :", "מצב משפחתי: "},
          {p.option("isRavak"), p.option("isNasuy"), p.option("isAlman"), p.option("isGarush")});
    p.block({"פרטי הגשה והמסייע", "פרטי הגשה והמסייע"});
    p.row({}, {p.own(N, "DochDate", "תאריך הגשת הדו\"ח: ")});
    p.row({}, {p.own(N, "SupportName", "שם המסייע: "), p.own(N, "SupportDealerNum", "מס' עוסק: "),
               p.own(N, "SupportPhone", "טלפון: ")});
    p.row({}, {p.own(N, "SupportProfession", "מקצוע: "), p.own(N, "SupportAddress", "כתובת: ")});
}

void yegia(Page& p) {
    p.block({"ג. הכנסות מיגיעה אישית", "ג. הכנסות מיגיעה אישית"}, {"סעיפים 1-7", "סעיפים 1-7"}, mf());
    p.mf("1. מיגיעה אישית מעסק או ממשלח יד", "N150", "N170");
    p.mf("2. תקבולי והחזרי ביטוח לאומי כעצמאי", "N250", "N270");
    p.mf("3. משכורת / שכ\"ע (לא כולל משמרות)", "N158", "N172");
    p.mf("4. עבודה במשמרות בתעשיה", "N068", "N069");
    p.mf("5א. החלק החייב במס של קיצבאות", "N258", "N272");
    p.mf("5ב. פריסת מענק פרישה משנים קודמות", "N358", "N372");
    p.mf("6. הכנסה מנכס ששימש בעסקך 10 שנים", "N120", "N220");
    p.mf("7. הכנסות אחרות מיגיעה אישית", "YegiaM", "YegiaF");
    p.mf("סה\"כ הכנסות מיגיעה אישית", "TTLM", "TTLF");
    p.block({"ד. הכנסות חייבות בשיעורי מס רגילים", "ד. הכנסות מרכוש בשיעורי מס רגילים"},
            {"סעיפים 8-11", "סעיפים 8-11"}, bmf());
    p.bmf("8. מנכס בית", "N059", "N201", "N301");
    p.bmf("9. מ\"חברת בית\"", "N159", "N202", "N302");
    p.bmf("10. מחברה משפחתית", "N367", "N204", "N304");
    p.bmf("11. רכוש אחר / ריבית", "N167", "N205", "N305");
}

void rechush(Page& p) {
    p.block({"ה. הכנסות חייבות בשעורי מס מיוחדים", "ה. הכנסות מרכוש בשעורי מס מיוחדים"},
            {"סעיפים 12-25", "סעיפים 12-25"}, screenHeads(bmf()));
    p.bmf("12. פטנט או לאחר פטירה (40%)", "N061", "N214", "N314");
    p.bmf("13. ריבית ני\"ע ודיב מאושר (15%)", "N060", "N211", "N311");
    p.bmf("14. ריבית ני\"ע וקופת גמל (20%)", "N067", "N228", "N328");
    p.bmf("15. ריבית ני\"ע ועמלות (25%)", "N157", "N257", "N357");
    p.bmf("16. דיבידנד ומניות לפדיון (25%)", "N141", "N241", "N341");
    p.bmf("17. דיבידנד והכנסה אחרת (30%)", "N055", "N212", "N312");
    p.bmf("18. ריבית ני\"ע ודיב. זרים (35%)", "N053", "N213", "N313");
    p.bmf("19. פק. וחיסכון לפני פטור (15%)", "N078", "N217", "N317");
    p.bmf("20. פק. וחיסכון לפני פטור (20%)", "N126", "N226", "N326");
    p.bmf("21. פק. וחיסכון לפני פטור (25%)", "N142", "N242", "N342");
    p.row("22. שכר דירה למגורים (10%)", {p.at(B, "N222")});
    p.row("23. שכר דירה מחו\"ל (15%)", {p.at(B, "N225")});
    p.row("24. הימורים, הגרלות ופרסים (25%)", {p.at(B, "N227")});
    // The rate of line 25 stands inside its caption, the "%" after it.
    p.row({p.caption("AcheretRate"), "25. אחרת בשיעור מס מוגבל "},
          {p.at(N, "AcheretRate"), p.at(B, "Acheret"), p.at(M, "AcheretM"), p.at(F, "AcheretF")});
    p.block({"ו. מוסד כספי", "ו. מוסד כספי"}, {"סעיף 26", "סעיף 26"}, screenHeads(mf()));
    p.mf("26. רווח של מוסד כספי כמשמעותו בחוק מע\"מ", "N032", "N163");
}

void pturot(Page& p) {
    // Lines 27 and 28 hold one figure on each side of the page, right and left.
    p.block({"ז. נתונים נוספים", "ז. נתונים נוספים"}, {"סעיפים 27-28", "סעיפים 27-28"});
    p.mf(p.caption("N184"), "N184", "N185");
    p.mf(p.caption("N186"), "N186", "N187");
    p.block({"ח. הכנסות מרווח הון ומשבח מקרקעין", "ח. הכנסות מרווח הון ומשבח מקרקעין"},
            {"סעיפים 31-33", "סעיפים 31-33"});
    p.row("31. מספר טופסי רווח הון", {p.at(N, "N054")});
    p.row("32. סה\"כ סכום המכירות", {p.at(N, "N056")});
    p.row("רווח הון ריאלי עד 31/12/02", {p.at(N, "Reali")});
    p.row("רווח הון ריאלי מ 1/1/03 (25%)", {p.at(N, "Reali25")});
    p.row("סכום אינפלציוני חייב (10%)", {p.at(N, "Infla")});
    p.row("33. מכירת ני\"ע", {p.at(N, "N256")});
    p.row("רווח מני\"ע (15%)", {p.at(N, "N256Revach")});
    p.row("רווח מני\"ע (20%)", {p.at(N, "N256Revach20")});
    p.row("רווח מני\"ע (25%)", {p.at(N, "N256Revach25")});
    p.block({"ט. הכנסות מחו\"ל", "ט. הכנסות מחו\"ל"}, {"סעיף 34", "סעיף 34"});
    p.row("34. סה\"כ הכנסות חו\"ל", {p.at(N, "N290")});
    p.block({"י. הכנסות פטורות", "י. הכנסות פטורות"}, {"סעיפים 35-39", "סעיפים 35-39"});
    p.row("35. לפי סעיף 9(5) - נכה", {p.at(N, "N109")});
    p.row("בן/בת הזוג", {p.at(N, "N309")});
    p.row("36. קצבאות פטורות ממס", {p.at(N, "Kizva")});
    p.row("37. שכ\"ד למגורים פטור", {p.at(N, "Dira")});
    p.row("38. מקורות אחרים (פרט)", {p.at(N, "AcherotText"), p.at(N, "Acherot")});
    p.row("39. סה\"כ הכנסות פטורות", {p.at(N, "N209")});
    p.block({"יא. פרטים נוספים", "יא. פרטים נוספים"}, {"סעיפים 40-41", "סעיפים 40-41"});
    p.text({"40. פרטים נוספים :", "40. פרטים נוספים:"});
    p.row(p.caption("N097"), {p.at(N, "N097")});
    p.row(p.caption("N195"), {p.at(N, "N195")});
    p.row(p.caption("N279"), {p.at(N, "N279")});
    p.text({"41. יתרות להעברה לשנת המס הבאה :", "41. יתרות להעברה לשנת המס הבאה :"});
    p.row(p.caption("N079"), {p.at(N, "N079")});
    p.row(p.caption("N179"), {p.at(N, "N179")});
    p.row(p.caption("N166"), {p.at(N, "N166")});
    p.row(p.caption("N160"), {p.at(N, "N160")});
    p.row(p.caption("N299"), {p.at(N, "N299")});
}

void nikuim(Page& p) {
    const char* paid = "הסכום ששולם";
    p.block({"יב. ניכויים אישיים", "יב. ניכויים אישיים"}, {"סעיפים 42-53", "סעיפים 42-53"},
            {{M, {kM, kM}, paid}, {F, {kF, kF}, paid}});
    p.mf(p.caption("N112"), "N112", "N113");
    p.mf(p.caption("N206"), "N206", "N207");
    p.mf(p.caption("N136"), "N136", "N137");
    p.mf(p.caption("N218"), "N218", "N219");
    p.mf(p.caption("N135"), "N135", "N180");
    p.mf(p.caption("N030"), "N030", "N089");
    p.text({"בסעיפים 48-50 יש לרשום סכום הניכוי המחושב :", "בסעיפים 48-50 יש לרשום סכום הניכוי המחושב"});
    p.mf(p.caption("N005"), "N005", "N006");
    p.mf(p.caption("N116"), "N116", "N117");
    p.mf(p.caption("N118"), "N118", "N119");
    p.mf(p.caption("N244"), "N244", "N245");
    p.mf("53. הפקדות מעביד לקיצבה והפקדות העובד לפנסיה", "N248", "N249");
}

void nekudot(Page& p) {
    // The spouse's cell of lines 60 to 64 is captioned "בן/בת הזוג" on the screen; on paper the
    // caption runs into the form code, with two blanks, or one where no code follows.
    const char* spouse = "בן/בת הזוג  ";
    const char* spouseNoCode = "בן/בת הזוג ";
    p.block({"יג. נקודות זיכוי", "יג. נקודות זיכוי"}, {"סעיפים 54-64", "סעיפים 54-64"});
    p.row("54. תושב", {p.at(N, "N020")});
    p.row("55. בן/בת זוג", {p.at(N, "N021")});
    p.row("56. בן/בת זוג עוזר/ת בהשגת הכנסה", {p.at(N, "N025")});
    p.row("57. תשלום מזונות - נשוי/אה שנית", {p.at(N, "N028")});
    p.row({"58. ילדים סמוכים שגילם בשנת המס :", "58. ילדים סמוכים שגילם בשנת המס:"},
          {p.own(N, "N260_1", "נולד"), p.own(N, "N260_2", "2-1"), p.own(N, "N260_3", "3"),
           p.own(N, "N260_4", "5-4"), p.own(N, "N260_5", "17-6"), p.own(N, "N260_6", "18")});
    p.row("59. משפחה חד הורית", {p.at(N, "N026")});
    p.row("60. השתתפות בכלכלת ילדים שאינם סמוכים", {p.at(M, "N029"), p.own(F, "N129", spouse)});
    p.row("61. מספר נתמכים נטולי יכולת פיסית", {p.at(M, "N023"), p.own(F, "N131", spouse)});
    p.row("62. עולה חדש - תאריך עליה", {p.at(M, "OleDateM"), p.own(F, "OleDateF", spouseNoCode)});
    p.row("63. חייל משוחרר - תאריך שחרור מסדיר", {p.at(M, "N224"), p.own(F, "N324", spouse)});
    p.row("מספר חודשי שירות מלאים", {p.at(M, "N024"), p.own(F, "N124", spouse)});
    p.row("64. סיום לימודים לתואר אקדמי או לימודי הוראה", {p.at(M, "N181"), p.own(F, "N182", spouseNoCode)});
}

void zikuim(Page& p) {
    p.block({"יד. זיכויים", "יד. זיכויים"}, {"סעיפים 65-73", "סעיפים 62-69"}, mf());
    p.mf("65. לביטוח חיים", "N036", "N081");
    p.mf("66. לביטוח קצבת שארים", "N140", "N240");
    p.mf("67. לקיצבה מקיפה כעמית שכיר", "N045", "N086");
    p.mf("68. לקיצבה מקיפה כעמית עצמאי", "N268", "N269");
    p.mf("69. לאחזקת בן משפחה במוסד", "N132", "N232");
    p.mf("70. תרומות למוסדות ציבור", "N037", "N237");
    p.mf("71. תרומות להנצחת זכר חייל שניספה", "N143", "N144");
    p.mf("73. תושבי יישובים מסויימים", "N093", "N193");
    p.row({"", "אחוז ההנחה"}, {p.own(M, "N093Rate", ""), p.own(M, "N093Month", "חודשים: "),
                              p.own(F, "N193Rate", ""), p.own(F, "N193Month", "חודשים: ")});
    p.row({p.caption("AcherimText"), "סכומי זיכויים אחרים (כוחות הבטחון/אחר)"},
          {{"AcherimText", N, {"פרט", "פרוט: "}}, p.at(M, "AcherimM"), p.at(F, "AcherimF")});
}

void tashlumim(Page& p) {
    p.block({"טו. מחזור למקדמות, ניכויים במקור, מס שבח וחשבון בנק", "טו. ניכוי במקור ותשלומים"},
            {"סעיפים 74-79", "סעיפים 74-79"},
            {{M, {"מגיש הדו\"ח", "מגיש הדו\"ח"}}, head(Person::F), head(Person::Total)});
    // Paper breaks the caption of line 74 over two lines.
    p.row("74. סך מחזור מעסק, השכרה,", {p.at(M, "N294M"), p.at(F, "N294F"), p.at(T, "N294")});
    p.text({"", "ריבית ואחרות במס רגיל (ללא מע\"מ)"}, kPaper);
    p.row("75. ניכוי במקור משכר וקיצבאות", {p.at(M, "N042M"), p.at(F, "N042F"), p.at(T, "N042")});
    p.row("76. ניכוי מהכנסות אחרות", {p.at(M, "N040M"), p.at(F, "N040F"), p.at(T, "N040")});
    p.row("77. ניכוי במקור מריבית (סעיף 18,19)", {p.at(M, "N043M"), p.at(F, "N043F"), p.at(T, "N043")});
    p.row("78. מס שבח שנקבע בשומה (קרן)", {p.at(M, "N041M"), p.at(F, "N041F"), p.at(T, "N041")});
    p.row("79. מקדמות עודפות חברה משפחתית", {p.at(M, "OdfotM"), p.at(F, "OdfotF"), p.at(T, "Odfot")});
    p.text({"שולם ע\"ח :", "שולם ע\"ח"});
    p.row("מקדמות", {p.at(M, "MikdamotM"), p.at(F, "MikdamotF"), p.at(T, "Mikdamot")});
    p.row("תשלומים (החזרים) נוספים", {p.at(M, "TashlumimM"), p.at(F, "TashlumimF"), p.at(T, "Tashlumim")});
    p.row("סה\"כ תשלומים ע\"ח המס", {p.at(M, "TashTTLM"), p.at(F, "TashTTLF"), p.at(T, "TashTTL")});
}

void klaliim(Page& p) {
    // A declaration is a check box or an option with its caption; paper marks it
    // "x" or a blank. A "\n" in a paper caption breaks it over two lines.
    auto decl = [&p](const char* name, const char* paper = nullptr) {
        return paper ? p.own(N, name, paper) : p.option(name);
    };
    p.block({"א. פרטים כלליים", "א. פרטים כלליים"});
    p.row({}, {p.own(N, "Shuma", "משרד השומה ")});
    p.row({"הדו\"ח על :", "הדו\"ח על :"}, {decl("isMeAndBZ"), decl("isMe")});
    p.row({}, {decl("isHechzerMas")});
    p.row({}, {decl("isBZDochNifrad", " בן/בת זוגי מגיש/ה דו\"ח בנפרד"), decl("isBZNoIncome")});
    p.row({}, {decl("isBZOzer")});
    p.row({"", "תלות במקור הנסותינו"}, {decl("isTlutYes", " קיימת"), decl("isTlutNo", " לא קיימת")});
    p.row({}, {decl("isBakashaNifrad")});
    p.row({}, {decl("isKerenHishtalmut", "מצ\"ב נספח לחישוב הכנסה בגין תשלומי מעביד\nלקרן השתלמות וקופ\"ג")});
    p.row({}, {decl("isHul")});
    p.row({}, {decl("isYozerBenemanut",
                    "הנני יוצר בנאמנות, בר-שומה ובר-חיוב.\nדו\"ח זה כולל את הכנסותי ואת הכנסות הנאמנות")});
    p.row({}, {decl("isNeheneBenemanut", "הנני נהנה בנאמנות שההכנסות שחולקו לי בנאמנות\nכלולות בדו\"ח זה")});
    p.row({}, {decl("isIverOrNeche")});
    p.row({}, {decl("isShlitaNischar")});
    p.row({}, {decl("isZchuyotLoNischar")});
    p.row({}, {decl("isPeulaTichnunHayav")});
    p.row({}, {decl("isIskaotZdadimHul")});
    p.text({"לגבי הכנסתי מעסק/משלח יד עיקרי :", "לגבי הכנסתי מעסק/משלח יד עיקרי :"});
    p.row({}, {decl("isMevusas")});
    p.row({}, {p.own(N, "Tosefet", "ע\"פ תוספת "), p.own(N, "Saif", ", סעיף ")});
    p.row({"הנה\"ח :", "הנה\"ח :"}, {decl("isKfula"), decl("isHadZidi")});
    p.row({"קופה רושמת :", "קופה רושמת :"}, {decl("isKupaYes"), decl("isKupaNo")});
    p.row({"תיעוד פנים :", "תיעוד פנים :"}, {decl("isMemuhshav"), decl("isYadani")});
    p.row({}, {decl("isHaklai", " ניהלתי משק חקלאי / שטח מעובד -\n מצ\"ב דו\"ח משק חקלאי (טופס 1220)")});
    p.row({}, {decl("isShotfut")});
    p.text({"דו\"ח תיאום אינפלצוני :", "דו\"ח תיאום אינפלציוני"});
    p.row({"הגשתי לפי", "הגשתי לפי"}, {decl("isPerekBet"), decl("isPerekGimel"), decl("isNoTeum")});
    p.row({}, {decl("isFamily")});
}

const std::array<const EntryPageLayout*, 9>& layouts() {
    static const std::array<const EntryPageLayout*, 9> all = [] {
        static std::vector<Page> pages;
        pages.reserve(9);
        void (*const fill[9])(Page&) = {pratim, yegia, rechush, pturot, nikuim, nekudot, zikuim, tashlumim, klaliim};
        std::array<const EntryPageLayout*, 9> out{};
        for (int i = 0; i < 9; ++i) {
            Page& page = pages.emplace_back(static_cast<SectionId>(i + 1));
            fill[i](page);
            out[i] = &page.finish();
        }
        return out;
    }();
    return all;
}

// --- Lists ----------------------------------------------------------------------

const char* const kDegree[] = {"", "1 - תואר 1 / הוראה / מקצוע", "2 - תואר 2", "3 - תואר 3 רפואה",
                               "4 - תואר 3 ישיר", "9 - 2 תארים שונים"};
const char* const kSettlement[] = {"לא", "גבול הצפון (תקרה 193,080)", "הנגב והגליל (תקרה 132,840)"};
const char* const kRatesNorth[] = {"13", "25"};
const char* const kRatesSouth[] = {"13", "16", "20", "25"};
const char* const kMonths[] = {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12"};
const char* const kAllRates[] = {"13", "16", "20", "25"};

// --- Shown totals ---------------------------------------------------------------

const char* const kTTLM[] = {"N150", "N250", "N158", "N068", "N258", "N358", "N120", "YegiaM"};
const char* const kTTLF[] = {"N170", "N270", "N172", "N069", "N272", "N372", "N220", "YegiaF"};
const char* const kN209[] = {"N109", "N309", "Kizva", "Dira", "Acherot"};
const char* const kN260[] = {"N260_1", "N260_2", "N260_3", "N260_4", "N260_5", "N260_6"};
const char* const kN294[] = {"N294M", "N294F"};
const char* const kN042[] = {"N042M", "N042F"};
const char* const kN040[] = {"N040M", "N040F"};
const char* const kN043[] = {"N043M", "N043F"};
const char* const kN041[] = {"N041M", "N041F"};
const char* const kOdfot[] = {"OdfotM", "OdfotF"};
const char* const kMikdamot[] = {"MikdamotM", "MikdamotF"};
const char* const kTashlumim[] = {"TashlumimM", "TashlumimF"};
// The payments on account: the turnover of line 74 is no payment.
const char* const kPayM[] = {"N042M", "N040M", "N043M", "N041M", "OdfotM", "MikdamotM", "TashlumimM"};
const char* const kPayF[] = {"N042F", "N040F", "N043F", "N041F", "OdfotF", "MikdamotF", "TashlumimF"};
const char* const kPay[] = {"N042M", "N040M", "N043M", "N041M", "OdfotM", "MikdamotM", "TashlumimM",
                            "N042F", "N040F", "N043F", "N041F", "OdfotF", "MikdamotF", "TashlumimF"};

const DerivedTotal kTotals[] = {
    {SectionId::Yegia, "TTLM", kTTLM},
    {SectionId::Yegia, "TTLF", kTTLF},
    {SectionId::Pturot, "N209", kN209},
    {SectionId::Nekudot, "N260", kN260},
    {SectionId::Tashlumim, "N294", kN294},
    {SectionId::Tashlumim, "N042", kN042},
    {SectionId::Tashlumim, "N040", kN040},
    {SectionId::Tashlumim, "N043", kN043},
    {SectionId::Tashlumim, "N041", kN041},
    {SectionId::Tashlumim, "Odfot", kOdfot},
    {SectionId::Tashlumim, "Mikdamot", kMikdamot},
    {SectionId::Tashlumim, "Tashlumim", kTashlumim},
    {SectionId::Tashlumim, "TashTTLM", kPayM},
    {SectionId::Tashlumim, "TashTTLF", kPayF},
    {SectionId::Tashlumim, "TashTTL", kPay},
};

}  // namespace

const EntryPageLayout& entryLayout(SectionId section) {
    const int i = static_cast<int>(section) - 1;
    if (i < 0 || i >= 9) throw std::out_of_range("no such section");
    return *layouts()[static_cast<std::size_t>(i)];
}

const char* columnHead(Person column) {
    switch (column) {
        case Person::Both: return kBoth;
        case Person::M: return kM;
        case Person::F: return kF;
        case Person::Total: return kTotal;
        case Person::None: break;
    }
    return "";
}

FieldPlace findPlace(SectionId section, const char* field) {
    const std::string_view name(field);
    for (const EntryBlock& b : entryLayout(section).blocks)
        for (const EntryRow& r : b.rows)
            for (const EntryCell& c : r.cells)
                if (c.field && name == c.field) return {&b, &r, &c};
    return {};
}

std::span<const char* const> listEntries(ListId list) {
    switch (list) {
        case ListId::Degree: return kDegree;
        case ListId::Settlement: return kSettlement;
        case ListId::Rate: return kAllRates;
        case ListId::Months: return kMonths;
        case ListId::None: break;
    }
    return {};
}

std::span<const char* const> rateEntries(int settlementIndex) {
    switch (settlementIndex) {
        case 1: return kRatesNorth;
        case 2: return kRatesSouth;
        default: return {};
    }
}

const char* listText(ListId list, int index) {
    const auto entries = listEntries(list);
    // The settlement list's first entry ("לא": none) is no name on paper.
    if (index < 0 || static_cast<std::size_t>(index) >= entries.size()) return "";
    if (list == ListId::Settlement && index == 0) return "";
    return entries[static_cast<std::size_t>(index)];
}

std::span<const DerivedTotal> derivedTotals() { return kTotals; }

}  // namespace zelmor
