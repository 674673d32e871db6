// The report's sections on paper: the form with its blanks. Each section is a
// list of printed lines; a line's cells name the section's fields, which are
// read, formatted and given their form code through the field catalogue.

#include <QString>
#include <stdexcept>
#include <vector>

#include "core/values.h"
#include "print/paper.h"

namespace zelmor {
namespace {

enum class Fmt {
    Value,       // by the field's type: amount, count, date, text
    Mark,        // "x" for True, a blank for False
    Degree,      // the entry of the list of line 64
    Settlement,  // the name of the settlement list of line 73
    Marital,     // the marital line of the personal details (no field of its own)
};

struct Cell {
    double col = 0;
    const char* adjust = nullptr;  // the column moves by the width of this text...
    int sign = 1;                  // ...to the left (+1) or to the right (-1)
    const char* text = "";         // printed before the field's value
    const char* field = nullptr;   // a field of the section, or none
    bool code = false;             // the field's form code and ": " come before its value
    Fmt fmt = Fmt::Value;
    const char* after = "";        // printed after the value
    bool bold = false;
    bool underline = false;
    bool title = false;  // a block's title: two points larger
};

struct Rule {
    double x1;
    double x2;
    int width;
    const char* adjust1 = nullptr;  // x1 moves left by the width of this text
};

enum class Mark { None, Remember, Vertical };

struct Line {
    std::vector<Cell> cells;
    double step = 0;  // the NextLine after the line; 0: the next line shares LinePos
    std::vector<Rule> rules = {};
    Mark mark = Mark::None;
    int minYear = 0;  // printed only from this tax year on
};

// Cell builders.
Cell L(double col, const char* text) { return {.col = col, .text = text}; }
Cell LA(double col, const char* adjust, const char* text) { return {.col = col, .adjust = adjust, .text = text}; }
Cell Bold(double col, const char* text) { return {.col = col, .text = text, .bold = true}; }
Cell Head(double col, const char* text) { return {.col = col, .text = text, .bold = true, .underline = true}; }
Cell Title(double col, const char* text) { return {.col = col, .text = text, .bold = true, .title = true}; }
// A text that ends at a column.
Cell EndsAt(double col, const char* text, bool bold = false) {
    return {.col = col, .adjust = text, .sign = -1, .text = text, .bold = bold};
}
Cell C(double col, const char* field, const char* text = "") {
    return {.col = col, .text = text, .field = field, .code = true};
}
Cell V(double col, const char* field, const char* adjust = nullptr) {
    return {.col = col, .adjust = adjust, .field = field};
}
Cell B(double col, const char* field, const char* text = "") {  // "code: " and a mark
    return {.col = col, .text = text, .field = field, .code = true, .fmt = Fmt::Mark};
}
// The title row of a block: its name, and the form's line numbers ending at column 90.
Line TitleRow(const char* title, const char* lines) { return {{Title(5, title), EndsAt(90, lines, true)}, 1}; }
Line HeavyRule(double from = 5, double to = 90) { return {{}, 0.5, {{from, to, 3}}}; }

const char* kM = "\"בן הזוג הרשום\"";
const char* kF = "בן/בת הזוג";

const std::vector<Line>& yegiaLines() {
    static const std::vector<Line> lines = {
        TitleRow("ג. הכנסות מיגיעה אישית", "סעיפים 1-7"),
        HeavyRule(),
        {{Head(35, kM), Head(60, kF)}, 1},
        {{L(7, "1. מיגיעה אישית מעסק או ממשלח יד"), C(35, "N150"), C(60, "N170")}, 1},
        {{L(7, "2. תקבולי והחזרי ביטוח לאומי כעצמאי"), C(35, "N250"), C(60, "N270")}, 1},
        {{L(7, "3. משכורת / שכ\"ע (לא כולל משמרות)"), C(35, "N158"), C(60, "N172")}, 1},
        {{L(7, "4. עבודה במשמרות בתעשיה"), C(35, "N068"), C(60, "N069")}, 1},
        {{L(7, "5א. החלק החייב במס של קיצבאות"), C(35, "N258"), C(60, "N272")}, 1},
        {{L(7, "5ב. פריסת מענק פרישה משנים קודמות"), C(35, "N358"), C(60, "N372")}, 1},
        {{L(7, "6. הכנסה מנכס ששימש בעסקך 10 שנים"), C(35, "N120"), C(60, "N220")}, 1},
        {{L(7, "7. הכנסות אחרות מיגיעה אישית"), V(35, "YegiaM", "120: "), V(60, "YegiaF", "120: ")}, 1},
        {{}, 0.5, {{35, 50, 1, "120: "}, {60, 75, 1, "120: "}}},
        {{L(7, "סה\"כ הכנסות מיגיעה אישית"), V(35, "TTLM", "120: "), V(60, "TTLF", "120: ")}, 3},
        TitleRow("ד. הכנסות מרכוש בשיעורי מס רגילים", "סעיפים 8-11"),
        HeavyRule(),
        {{Head(30, "שני בני הזוג"), Head(50, kM), Head(70, kF)}, 1},
        {{L(7, "8. מנכס בית"), C(30, "N059"), C(50, "N201"), C(70, "N301")}, 1},
        {{L(7, "9. מ\"חברת בית\""), C(30, "N159"), C(50, "N202"), C(70, "N302")}, 1},
        {{L(7, "10. מחברה משפחתית"), C(30, "N367"), C(50, "N204"), C(70, "N304")}, 1},
        {{L(7, "11. רכוש אחר / ריבית"), C(30, "N167"), C(50, "N205"), C(70, "N305")}, 0},
    };
    return lines;
}

const std::vector<Line>& rechushLines() {
    auto row = [](const char* caption, const char* both, const char* m, const char* f) {
        return Line{{L(7, caption), C(30, both), C(50, m), C(70, f)}, 1};
    };
    static const std::vector<Line> lines = {
        TitleRow("ה. הכנסות מרכוש בשעורי מס מיוחדים", "סעיפים 12-25"),
        HeavyRule(),
        row("12. פטנט או לאחר פטירה (40%)", "N061", "N214", "N314"),
        row("13. ריבית ני\"ע ודיב מאושר (15%)", "N060", "N211", "N311"),
        row("14. ריבית ני\"ע וקופת גמל (20%)", "N067", "N228", "N328"),
        row("15. ריבית ני\"ע ועמלות (25%)", "N157", "N257", "N357"),
        row("16. דיבידנד ומניות לפדיון (25%)", "N141", "N241", "N341"),
        row("17. דיבידנד והכנסה אחרת (30%)", "N055", "N212", "N312"),
        row("18. ריבית ני\"ע ודיב. זרים (35%)", "N053", "N213", "N313"),
        row("19. פק. וחיסכון לפני פטור (15%)", "N078", "N217", "N317"),
        row("20. פק. וחיסכון לפני פטור (20%)", "N126", "N226", "N326"),
        row("21. פק. וחיסכון לפני פטור (25%)", "N142", "N242", "N342"),
        {{L(7, "22. שכר דירה למגורים (10%)"), C(30, "N222")}, 1},
        {{L(7, "23. שכר דירה מחו\"ל (15%)"), C(30, "N225")}, 1},
        {{L(7, "24. הימורים, הגרלות ופרסים (25%)"), C(30, "N227")}, 1},
        {{{.col = 7, .text = "25. אחרת בשיעור מס מוגבל ", .field = "AcheretRate", .after = "%"},
          V(30, "Acheret", "065: "), V(50, "AcheretM", "065: "), V(70, "AcheretF", "065: ")},
         3},
        TitleRow("ו. מוסד כספי", "סעיף 26"),
        HeavyRule(),
        {{L(7, "26. רווח של מוסד כספי כמשמעותו בחוק מע\"מ"), C(50, "N032"), C(70, "N163")}, 1},
    };
    return lines;
}

const std::vector<Line>& pturotLines() {
    static const std::vector<Line> lines = {
        TitleRow("ז. נתונים נוספים", "סעיפים 27-28"),
        HeavyRule(),
        {{L(7, "27. הכנסה פטורה 9(5) שהופחתה מהכנסות מעסק'/משלח יד בלבד"), C(50, "N184"), C(70, "N185")}, 1},
        {{L(7, "28. הפסדים שקוזזו כנגד הכנסות מעסק/משלח יד בלבד"), C(50, "N186"), C(70, "N187")}, 1},
        {{}, 2},
        TitleRow("ח. הכנסות מרווח הון ומשבח מקרקעין", "סעיפים 31-33"),
        HeavyRule(),
        {{L(7, "31. מספר טופסי רווח הון"), C(30, "N054")}, 1},
        {{L(7, "32. סה\"כ סכום המכירות"), C(30, "N056"), L(50, "33. מכירת ני\"ע"), C(70, "N256")}, 1},
        {{LA(7, "32. ", "רווח הון ריאלי עד 31/12/02"), V(30, "Reali", "054: "), LA(50, "33. ", "רווח מני\"ע (15%)"),
          V(70, "N256Revach", "256: ")},
         1},
        {{LA(7, "32. ", "רווח הון ריאלי מ 1/1/03 (25%)"), V(30, "Reali25", "054: "),
          LA(50, "33. ", "רווח מני\"ע (20%)"), V(70, "N256Revach20", "256: ")},
         1},
        {{LA(7, "32. ", "סכום אינפלציוני חייב (10%)"), V(30, "Infla", "054: "), LA(50, "33. ", "רווח מני\"ע (25%)"),
          V(70, "N256Revach25", "256: ")},
         1},
        {{}, 2},
        // Two blocks side by side: "ט" and "י" on the right, "יא" on the left,
        // with a vertical rule between them at column 46.
        {{Title(5, "ט. הכנסות מחו\"ל"), EndsAt(46, "סעיף 34", true), Title(48, "יא. פרטים נוספים"),
          EndsAt(90, "סעיפים 40-41", true)},
         1},
        {{}, 0.5, {{5, 90, 3}}, Mark::Remember},
        {{L(7, "34. סה\"כ הכנסות חו\"ל"), EndsAt(35, "290: "), V(35, "N290"), L(49, "40. פרטים נוספים:")}, 1},
        {{Title(5, "י. הכנסות פטורות"), EndsAt(46, "סעיפים 35-39", true), L(50, "א. ערך מלאי 31/12"), C(70, "N097")}, 1},
        HeavyRule(5, 46),
        {{L(7, "35. לפי סעיף 9(5) - נכה"), EndsAt(35, "109: "), V(35, "N109"), L(50, "ב. רווח גולמי"), C(70, "N195")}, 1},
        {{LA(7, "35. לפי סעיף 9(5) - ", "בן/בת הזוג"), EndsAt(35, "309: "), V(35, "N309"),
          L(50, "ג. הפסד עסקי קוזז השנה"), C(70, "N279")},
         1},
        {{L(7, "36. קצבאות פטורות ממס"), V(35, "Kizva"), L(49, "41. יתרות להעברה לשנת המס הבאה :")}, 1},
        {{L(7, "37. שכ\"ד למגורים פטור"), V(35, "Dira"), L(50, "א. הפסד מעסק/משלח יד"), C(70, "N079")}, 1},
        {{L(7, "38. מקורות אחרים (פרט)"), L(50, "ב. הפסד מנכס בית"), C(70, "N179")}, 1},
        {{V(9, "AcherotText"), V(35, "Acherot"), L(50, "ג. הפסד הון שלא קוזז"), C(70, "N166")}, 1},
        {{L(7, "39. סה\"כ הכנסות פטורות"), EndsAt(35, "209: "), V(35, "N209"), L(50, "ד. הפסד מניירות ערך"),
          C(70, "N160")},
         1},
        {{L(50, "ה. הפסד חו\"ל"), C(70, "N299")}, 0},
        {{}, 0, {{1, 1, 3}}, Mark::Vertical},
    };
    return lines;
}

const std::vector<Line>& nikuimLines() {
    auto row = [](const char* caption, const char* m, const char* f, double step = 1) {
        return Line{{L(7, caption), C(50, m), C(70, f)}, step};
    };
    static const std::vector<Line> lines = {
        TitleRow("יב. ניכויים אישיים", "סעיפים 42-53"),
        HeavyRule(),
        {{Bold(50, kM), Bold(70, kF)}, 1},
        {{Head(50, "הסכום ששולם"), Head(70, "הסכום ששולם")}, 1},
        row("42. ביטוח אובדן כושר עבודה בשל הכנסה כעצמאי", "N112", "N113"),
        row("43. ביטוח אובדן כושר עבודה לשכיר (טופס 134)", "N206", "N207"),
        row("44. לקרן השתלמות לעצמאים", "N136", "N137"),
        row("45. משכורת שבשלה שילם מעביד לקרן השתלמות", "N218", "N219"),
        {{}, 0.5, {{7, 90, 1}}},
        row("46. לקופת גמל לקיצבה מקיפה כעצמאי", "N135", "N180"),
        row("47. בטוח לאומי ומס מקביל כעצמאי", "N030", "N089"),
        {{Bold(9, "בסעיפים 48-50 יש לרשום סכום הניכוי המחושב")}, 1},
        row("48. למימון מחקר ופיתוח", "N005", "N006"),
        row("49. ניכוי בגין השקעה בנפט", "N116", "N117"),
        row("50. ניכוי בגין השקעה בסרטים", "N118", "N119"),
        {{}, 0.5, {{7, 90, 1}}},
        row("52. הכנסה מבוטחת - שכר מזכה בקצבה", "N244", "N245"),
        row("53. הפקדות מעביד לקיצבה והפקדות העובד לפנסיה", "N248", "N249", 0),
    };
    return lines;
}

const std::vector<Line>& nekudotLines() {
    const char* spouse = "בן/בת הזוג  ";
    static const std::vector<Line> lines = {
        TitleRow("יג. נקודות זיכוי", "סעיפים 54-64"),
        HeavyRule(),
        {{L(7, "54. תושב"), B(50, "N020")}, 1},
        {{L(7, "55. בן/בת זוג"), B(50, "N021")}, 1},
        {{L(7, "56. בן/בת זוג עוזר/ת בהשגת הכנסה"), B(50, "N025")}, 1},
        {{L(7, "57. תשלום מזונות - נשוי/אה שנית"), B(50, "N028")}, 1},
        {{L(7, "58. ילדים סמוכים שגילם בשנת המס:"), L(55, "נולד"), L(60, "2-1"), L(65, "3"), L(70, "5-4"),
          L(75, "17-6"), L(80, "18")},
         1},
        {{V(55, "N260_1"), V(60, "N260_2"), V(65, "N260_3"), V(70, "N260_4"), V(75, "N260_5"), V(80, "N260_6")}, 1},
        {{L(7, "59. משפחה חד הורית"), B(50, "N026")}, 1},
        {{L(7, "60. השתתפות בכלכלת ילדים שאינם סמוכים"), B(50, "N029"), B(70, "N129", spouse)}, 1},
        {{L(7, "61. מספר נתמכים נטולי יכולת פיסית"), C(50, "N023"), C(70, "N131", spouse)}, 1},
        {{L(7, "62. עולה חדש - תאריך עליה"), V(50, "OleDateM", "023: "),
          {.col = 70, .text = "בן/בת הזוג ", .field = "OleDateF"}},
         1},
        {{L(7, "63. חייל משוחרר - תאריך שחרור מסדיר"), C(50, "N224"), C(70, "N324", spouse)}, 1},
        {{LA(7, "60. ", "מספר חודשי שירות מלאים"), C(50, "N024"), C(70, "N124", spouse)}, 1},
        // The degree texts are wider than the columns of the lines above:
        // both move right, clear of the caption and of each other.
        {{L(7, "64. סיום לימודים לתואר אקדמי או לימודי הוראה"),
          {.col = 40, .field = "N181", .code = true, .fmt = Fmt::Degree},
          {.col = 63, .text = "בן/בת הזוג ", .field = "N182", .code = true, .fmt = Fmt::Degree}},
         0},
    };
    return lines;
}

const std::vector<Line>& zikuimLines() {
    auto row = [](const char* caption, const char* m, const char* f) {
        return Line{{L(7, caption), C(40, m), C(65, f)}, 1};
    };
    static const std::vector<Line> lines = {
        TitleRow("יד. זיכויים", "סעיפים 62-69"),
        HeavyRule(),
        {{Head(40, kM), Head(65, kF)}, 1},
        row("65. לביטוח חיים", "N036", "N081"),
        row("66. לביטוח קצבת שארים", "N140", "N240"),
        row("67. לקיצבה מקיפה כעמית שכיר", "N045", "N086"),
        row("68. לקיצבה מקיפה כעמית עצמאי", "N268", "N269"),
        row("69. לאחזקת בן משפחה במוסד", "N132", "N232"),
        row("70. תרומות למוסדות ציבור", "N037", "N237"),
        row("71. תרומות להנצחת זכר חייל שניספה", "N143", "N144"),
        {{L(7, "73. תושבי יישובים מסויימים"), {.col = 30, .field = "N093", .fmt = Fmt::Settlement},
          {.col = 60, .field = "N193", .fmt = Fmt::Settlement}},
         1},
        {{LA(7, "69. ", "אחוז ההנחה"), {.col = 30, .field = "N093Rate", .after = "%"},
          {.col = 40, .text = "חודשים: ", .field = "N093Month"}, {.col = 60, .field = "N193Rate", .after = "%"},
          {.col = 70, .text = "חודשים: ", .field = "N193Month"}},
         1},
        {{LA(7, "69. ", "סכומי זיכויים אחרים (כוחות הבטחון/אחר)")}, 1},
        {{{.col = 7, .adjust = "69. ", .text = "פרוט: ", .field = "AcherimText"}, V(40, "AcherimM", "143: "),
          V(65, "AcherimF", "143: ")},
         0},
    };
    return lines;
}

const std::vector<Line>& tashlumimLines() {
    auto row = [](const char* caption, const char* m, const char* f, const char* total, const char* code) {
        return Line{{L(7, caption), V(35, m), V(55, f), EndsAt(75, code), V(75, total)}, 1};
    };
    Line interest = row("77. ניכוי במקור מריבית (סעיף 18,19)", "N043M", "N043F", "N043", "043: ");
    interest.minYear = 2003;  // the line came into the form in 2003
    static const std::vector<Line> lines = {
        TitleRow("טו. ניכוי במקור ותשלומים", "סעיפים 74-79"),
        HeavyRule(),
        {{Head(75, "סה\"כ")}, 1},
        row("74. סך מחזור מעסק, השכרה,", "N294M", "N294F", "N294", "294: "),
        {{LA(7, "74. ", "ריבית ואחרות במס רגיל (ללא מע\"מ)")}, 1},
        {{Head(35, "מגיש הדו\"ח"), Head(55, kF)}, 1},
        row("75. ניכוי במקור משכר וקיצבאות", "N042M", "N042F", "N042", "042: "),
        row("76. ניכוי מהכנסות אחרות", "N040M", "N040F", "N040", "040: "),
        interest,
        row("78. מס שבח שנקבע בשומה (קרן)", "N041M", "N041F", "N041", "041: "),
        {{L(7, "79. מקדמות עודפות חברה משפחתית"), V(35, "OdfotM"), V(55, "OdfotF"), V(75, "Odfot")}, 1},
        {{LA(7, "79. ", "שולם ע\"ח")}, 1},
        {{LA(7, "79. שו", "מקדמות"), V(35, "MikdamotM"), V(55, "MikdamotF"), V(75, "Mikdamot")}, 1},
        // The rules stand under the amounts of this line, not through them.
        {{LA(7, "79. שו", "תשלומים (החזרים) נוספים"), V(35, "TashlumimM"), V(55, "TashlumimF"), V(75, "Tashlumim")},
         1},
        {{}, 0.5, {{35, 45, 1}, {55, 65, 1}, {75, 85, 1}}},
        {{Bold(7, "סה\"כ תשלומים ע\"ח המס"), {.col = 35, .field = "TashTTLM", .bold = true},
          {.col = 55, .field = "TashTTLF", .bold = true}, {.col = 75, .field = "TashTTL", .bold = true}},
         0},
    };
    return lines;
}

// Labels that end where their values start.
Line pairs(std::initializer_list<std::pair<double, std::pair<const char*, const char*>>> items, double step = 1) {
    Line line{{}, step};
    for (const auto& [col, labelField] : items) {
        line.cells.push_back(EndsAt(col, labelField.first));
        line.cells.push_back(V(col, labelField.second));
    }
    return line;
}

const std::vector<Line>& pratimLines() {
    static const std::vector<Line> lines = {
        {{Title(5, "ב. פרטים אישיים")}, 1},
        HeavyRule(),
        {{Head(17, kM), Head(60, kF)}, 1},
        pairs({{20, {"ת.ז.: ", "IDM"}}, {38, {"שם משפחה: ", "LastNameM"}}, {60, {"ת.ז.: ", "IDF"}},
               {78, {"משפחה: ", "LastNameF"}}}),
        pairs({{20, {"שם פרטי: ", "FirstNameM"}}, {38, {"שם האב: ", "FatherNameM"}}, {60, {"פרטי: ", "FirstNameF"}},
               {78, {"שם האב: ", "FatherNameF"}}}),
        pairs({{20, {"תאריך לידה: ", "BirthDateM"}}, {60, {"לידה: ", "BirthDateF"}}}, 1),
        {{}, 0.5, {{5, 90, 1}}},
        {{{.col = 7, .text = "כתובת לדואר: ", .field = "MailAddress"}}, 1},
        {{{.col = 7, .text = "כתובת מגורים: ", .field = "Address"}}, 1},
        [] {
            Line l = pairs({{20, {"בית: ", "PhoneH"}}, {38, {"עבודה: ", "PhoneWM"}}, {60, {"עבודה: ", "PhoneWF"}},
                            {78, {"פקס: ", "Fax"}}});
            l.cells.insert(l.cells.begin(), L(7, "טלפונים:"));
            return l;
        }(),
        pairs({{20, {"עיסוק עיקרי: ", "ProfessionM"}}, {60, {"", "ProfessionF"}}}),
        pairs({{20, {"שם העסק: ", "BusinessNameM"}}, {60, {"", "BusinessNameF"}}}),
        pairs({{20, {"כתובת העסק: ", "BusinessAddressM"}}, {60, {"", "BusinessAddressF"}}}),
        [] {
            Line l = pairs({{20, {"ניכויים: ", "TikNikuimM"}}, {38, {"מע\"מ: ", "TikMaamM"}},
                            {60, {"ניכויים: ", "TikNikuimF"}}, {78, {"מע\"מ: ", "TikMaamF"}}});
            l.cells.insert(l.cells.begin(), L(7, "מספר תיק:"));
            return l;
        }(),
        pairs({{20, {"שם המעביד: ", "BossNameM"}}, {60, {"", "BossNameF"}}}),
        {{{.col = 7, .fmt = Fmt::Marital}}, 2},
        {{Title(5, "פרטי הגשה והמסייע")}, 1},
        HeavyRule(),
        pairs({{20, {"תאריך הגשת הדו\"ח: ", "DochDate"}}}),
        pairs({{20, {"שם המסייע: ", "SupportName"}}, {50, {"מס' עוסק: ", "SupportDealerNum"}},
               {72, {"טלפון: ", "SupportPhone"}}}),
        pairs({{20, {"מקצוע: ", "SupportProfession"}}, {50, {"כתובת: ", "SupportAddress"}}}, 0),
    };
    return lines;
}

// A declaration: its mark, and its caption a little to the left. The caption
// is the field's own unless paper words it differently.
std::vector<Cell> decl(double col, const char* field, const char* caption = nullptr) {
    return {{.col = col, .field = field, .fmt = Fmt::Mark},
            {.col = col + 1.5, .text = caption ? caption : findField("Klaliim", field)->caption}};
}
Line declLine(std::vector<std::vector<Cell>> parts, double step = 1) {
    Line l{{}, step};
    for (auto& p : parts) l.cells.insert(l.cells.end(), p.begin(), p.end());
    return l;
}

const std::vector<Line>& klaliimLines() {
    static const std::vector<Line> lines = {
        {{Title(5, "א. פרטים כלליים")}, 1},
        HeavyRule(),
        {{{.col = 7, .text = "משרד השומה ", .field = "Shuma"}}, 1.5},
        declLine({{L(7, "הדו\"ח על :")}, decl(50, "isHechzerMas")}),
        declLine({decl(9, "isMeAndBZ"), decl(50, "isBakashaNifrad")}),
        declLine({decl(9, "isMe"), decl(50, "isKerenHishtalmut", "מצ\"ב נספח לחישוב הכנסה בגין תשלומי מעביד")}),
        declLine({decl(9, "isBZDochNifrad", " בן/בת זוגי מגיש/ה דו\"ח בנפרד"), {L(51.5, "לקרן השתלמות וקופ\"ג")}}),
        declLine({decl(9, "isBZNoIncome"), decl(50, "isYozerBenemanut", "הנני יוצר בנאמנות, בר-שומה ובר-חיוב.")}),
        declLine({{L(7, "תלות במקור הנסותינו")}, {L(51.5, "דו\"ח זה כולל את הכנסותי ואת הכנסות הנאמנות")}}),
        declLine({decl(9, "isTlutYes", " קיימת"), decl(20, "isTlutNo", " לא קיימת"),
                  decl(50, "isNeheneBenemanut", "הנני נהנה בנאמנות שההכנסות שחולקו לי בנאמנות")}),
        declLine({decl(7, "isBZOzer"), {L(51.5, "כלולות בדו\"ח זה")}}),
        declLine({decl(7, "isShotfut"), decl(50, "isIverOrNeche")}),
        declLine({decl(7, "isHul"), decl(50, "isShlitaNischar")}),
        declLine({{L(7, "לגבי הכנסתי מעסק/משלח יד עיקרי :")}, decl(50, "isZchuyotLoNischar")}),
        declLine({decl(9, "isMevusas"), decl(50, "isPeulaTichnunHayav")}),
        declLine({{{.col = 9, .text = "ע\"פ תוספת ", .field = "Tosefet"},
                   {.col = 20, .text = ", סעיף ", .field = "Saif", .after = " להוראות"}},
                  decl(50, "isIskaotZdadimHul")}),
        declLine({{L(9, "הנה\"ח :")}, decl(20, "isKfula"), decl(30, "isHadZidi")}),
        declLine({{L(9, "קופה רושמת :")}, decl(20, "isKupaYes"), decl(30, "isKupaNo")}),
        declLine({{L(9, "תיעוד פנים :")}, decl(20, "isMemuhshav"), decl(30, "isYadani")}),
        declLine({decl(7, "isHaklai", " ניהלתי משק חקלאי / שטח מעובד -")}),
        declLine({{L(8.5, " מצ\"ב דו\"ח משק חקלאי (טופס 1220)")}}),
        declLine({{L(7, "דו\"ח תיאום אינפלציוני")}}),
        declLine({{L(9, "הגשתי לפי")}, decl(20, "isPerekBet"), decl(30, "isPerekGimel"), decl(40, "isNoTeum")}),
        declLine({decl(7, "isFamily")}, 0),
    };
    return lines;
}

const std::vector<Line>& sectionLines(SectionId id) {
    switch (id) {
        case SectionId::Pratim: return pratimLines();
        case SectionId::Yegia: return yegiaLines();
        case SectionId::Rechush: return rechushLines();
        case SectionId::Pturot: return pturotLines();
        case SectionId::Nikuim: return nikuimLines();
        case SectionId::Nekudot: return nekudotLines();
        case SectionId::Zikuim: return zikuimLines();
        case SectionId::Tashlumim: return tashlumimLines();
        case SectionId::Klaliim: return klaliimLines();
    }
    throw std::out_of_range("no such section");
}

QString degreeText(std::int32_t v) {
    switch (v) {
        case 1: return QStringLiteral("1 - תואר 1 / הוראה / מקצוע");
        case 2: return QStringLiteral("2 - תואר 2");
        case 3: return QStringLiteral("3 - תואר 3 רפואה");
        case 4: return QStringLiteral("4 - תואר 3 ישיר");
        case 5: return QStringLiteral("9 - 2 תארים שונים");
        default: return {};
    }
}

QString settlementText(std::int32_t v) {
    switch (v) {
        case 1: return QStringLiteral("גבול הצפון (תקרה 193,080)");
        case 2: return QStringLiteral("הנגב והגליל (תקרה 132,840)");
        default: return {};
    }
}

// "מצב משפחתי: ", the sex when one is chosen, and the status that is True,
// in the female form when M is a woman.
QString maritalText(const sections::Pratim& p) {
    QString t = QStringLiteral("מצב משפחתי: ");
    if (p.isMale) t += QStringLiteral("זכר ");
    else if (p.isFemale) t += QStringLiteral("נקבה ");
    const bool fem = p.isFemale;
    if (p.isRavak) t += fem ? QStringLiteral("רווקה") : QStringLiteral("רווק");
    else if (p.isNasuy) t += fem ? QStringLiteral("נשואה") : QStringLiteral("נשוי");
    else if (p.isAlman) t += fem ? QStringLiteral("אלמנה") : QStringLiteral("אלמן");
    else if (p.isGarush) t += fem ? QStringLiteral("גרושה/פרודה") : QStringLiteral("גרוש/פרוד");
    return t;
}

std::int32_t whole(const FieldDef& f, const NishumInput& r) {
    switch (f.type) {
        case FieldType::Amount: return f.ref<Amount>(r).value();
        case FieldType::Number: return f.ref<std::int32_t>(r);
        case FieldType::Count: return f.ref<std::int16_t>(r);
        case FieldType::Boolean: return f.ref<bool>(r) ? 1 : 0;
        default: return 0;
    }
}

QString valueText(const FieldDef& f, const NishumInput& r, Fmt fmt) {
    switch (fmt) {
        case Fmt::Mark: return f.ref<bool>(r) ? QStringLiteral("x") : QStringLiteral(" ");
        case Fmt::Degree: return degreeText(whole(f, r));
        case Fmt::Settlement: return settlementText(whole(f, r));
        case Fmt::Value:
        case Fmt::Marital: break;
    }
    switch (f.type) {
        case FieldType::Text: return QString::fromStdString(f.ref<std::string>(r));
        case FieldType::Date: return QString::fromStdString(FormatDate(f.ref<Date>(r)));
        default: return QString::fromStdString(FormatAmount(whole(f, r)));
    }
}

}  // namespace

void PrintSection(ClsPrint& p, SectionId section, const NishumInput& report, const ConstDoch& c) {
    const char* sectionName = sectionDef(section).name;
    float remembered = 0;
    for (const Line& line : sectionLines(section)) {
        if (line.minYear && c.YEARDOCH() < line.minYear) continue;
        for (const Cell& cell : line.cells) {
            QString text = QString::fromUtf8(cell.text);
            if (cell.fmt == Fmt::Marital) {
                text = maritalText(report.Pratim);
            } else if (cell.field) {
                const FieldDef* f = findField(sectionName, cell.field);
                if (!f) throw std::logic_error(std::string("no field ") + sectionName + "." + cell.field);
                if (cell.code) text += QString::fromUtf8(f->code) + QStringLiteral(": ");
                text += valueText(*f, report, cell.fmt);
            }
            text += QString::fromUtf8(cell.after);
            if (cell.title) p.SetFontSize(p.FontSize() + 2);
            if (cell.underline) p.SetFontUnderline(true);
            double col = cell.col;
            if (cell.adjust) col += cell.sign * p.TextWidth(QString::fromUtf8(cell.adjust));
            p.PrintString(col, text, cell.bold);
            if (cell.underline) p.SetFontUnderline(false);
            if (cell.title) p.SetFontSize(p.FontSize() - 2);
        }
        for (const Rule& r : line.rules) {
            const double x1 = r.x1 + (r.adjust1 ? p.TextWidth(QString::fromUtf8(r.adjust1)) : 0);
            p.PrintLine(static_cast<float>(x1), p.LinePos, static_cast<float>(r.x2), p.LinePos, r.width);
        }
        if (line.mark == Mark::Remember) remembered = p.LinePos;
        // The rule between the side-by-side blocks, unless a page turned between.
        if (line.mark == Mark::Vertical && p.LinePos > remembered)
            p.PrintLine(46, remembered, 46, p.LinePos, 3);
        if (line.step != 0) p.NextLine(static_cast<float>(line.step));
    }
}

}  // namespace zelmor
