#include "results/sheet_rows.h"

#include <stdexcept>
#include <string>

namespace zelmor {
namespace {

using F = std::array<const char*, 8>;
using T = std::array<const char*, 4>;
constexpr RowShow kAlways = RowShow::Always;

// Page 1, the summary. Fixed rows in the order of the screen. Slots: M, F, the
// joint amount, the date of the row.
const SheetRow kMain[] = {
    {.index = 0, .key = "Hachnasot", .screenCaption = "הכנסות בשיעור מס רגיל", .paperCaption = "הכנסות בשיעור מס רגיל",
     .fields = F{"HachnasotM", "HachnasotF"}, .show = kAlways, .lineNumber = "1"},
    {.index = 2, .key = "Nikuim", .screenCaption = "ניכויים מותרים", .paperCaption = "ניכויים מותרים",
     .fields = F{"NikuimM", "NikuimF"}, .show = kAlways, .lineNumber = "2"},
    {.index = 4, .key = "HachnasaNet", .screenCaption = "הכנסה לאחר ניכויים", .paperCaption = "הכנסה לאחר ניכויים",
     .fields = F{"HachnasaNetM", "HachnasaNetF"}, .show = kAlways, .paperColumn = 10},
    {.index = 5, .key = "MasRagil", .screenCaption = "מס מגיע על הכנסות בשיעור מס רגיל",
     .paperCaption = "מס מגיע על הכנסות בשיעור מס רגיל", .fields = F{"MasRagilM", "MasRagilF"}, .show = kAlways,
     .lineNumber = "3"},
    {.index = 3, .key = "MasMeyuchad", .screenCaption = "מס מגיע על הכנסות בשיעור מס מיוחד",
     .paperCaption = "מס מגיע על הכנסות בשיעור מס מיוחד", .fields = F{"MasMeyuchadM", "MasMeyuchadF"},
     .show = kAlways, .lineNumber = "4"},
    {.index = 13, .key = "Hetel", .screenCaption = "היטל בשיעור ½% על הכנסות גבוהות",
     .paperCaption = "היטל בשיעור ½% על הכנסות גבוהות", .fields = F{"HetelM", "HetelF"}, .show = RowShow::Year2002},
    {.index = 6, .key = "MasBruto", .screenCaption = "מס לפני זיכויים", .paperCaption = "מס לפני זיכויים",
     .fields = F{"MasBrutoM", "MasBrutoF"}, .show = kAlways, .paperColumn = 10},
    {.index = 1, .key = "Zikuim", .screenCaption = "זיכויים ממס", .paperCaption = "זיכויים ממס",
     .fields = F{"ZikuimM", "ZikuimF"}, .show = kAlways, .lineNumber = "5"},
    {.index = 9, .key = "MasMagia", .screenCaption = "מס מגיע", .paperCaption = "מס מגיע",
     .fields = F{"MasMagiaM", "MasMagiaF"}, .show = kAlways, .paperColumn = 10},
    {.index = 10, .key = "Tashlumim", .screenCaption = "תשלומים על חשבון המס", .paperCaption = "תשלומים על חשבון המס",
     .fields = F{"TashlumimM", "TashlumimF"}, .show = kAlways, .lineNumber = "6"},
    {.index = 11, .key = "MasLetashlum", .screenCaption = "יתרת מס לתשלום", .paperCaption = "יתרת מס לתשלום",
     .fields = F{"MasLetashlumM", "MasLetashlumF"}, .show = kAlways, .paperColumn = 10},
    {.index = 12, .key = "MasLetashlumTTL", .screenCaption = "יתרת מס משותפת לתשלום",
     .paperCaption = "יתרת מס משותפת לתשלום", .fields = F{nullptr, nullptr, "MasLetashlumTTL"}, .show = kAlways,
     .paperColumn = 10},
    {.index = 8, .key = "Ribit", .screenCaption = "ריבית והצמדה ליום", .paperCaption = "ריבית והצמדה ליום ",
     .fields = F{nullptr, nullptr, "Ribit", "RibitDate"}, .show = kAlways},
    {.index = 7, .key = "Itra", .screenCaption = "יתרה לתשלום ליום", .paperCaption = "יתרה לתשלום ליום ",
     .fields = F{nullptr, nullptr, "Itra", "ItraDate"}, .show = kAlways},
};

// Page 2, incomes at regular rates. Slots: M, F.
#define ZELMOR_H_ROW(i, m, f, cap) \
    {.index = i, .key = m, .screenCaption = cap, .paperCaption = cap, .fields = F{m, f}}
const SheetRow kHachnasot[] = {
    ZELMOR_H_ROW(0, "N150", "N170", "סעיף 1 - עסק ומשלח יד"),
    ZELMOR_H_ROW(1, "N250", "N270", "סעיף 2 - תקבולים מביטוח לאומי"),
    ZELMOR_H_ROW(2, "N158", "N172", "סעיף 3 - משכורת"),
    ZELMOR_H_ROW(3, "N068", "N069", "סעיף 4 - עבודה במשמרות בתעשיה"),
    ZELMOR_H_ROW(4, "N258", "N272", "סעיף 5א - הסכום החייב במס של קצבאות"),
    ZELMOR_H_ROW(5, "N358", "N372", "סעיף 5ב - פריסת מענק פרישה משנים קודמות"),
    ZELMOR_H_ROW(6, "N120", "N220", "סעיף 6 - השכרת נכס ששימש בעסק מעל 10 שנים"),
    ZELMOR_H_ROW(7, "YegiaM", "YegiaF", "סעיף 7 - הכנסות אחרות מיגיעה אישית"),
    ZELMOR_H_ROW(8, "N201", "N301", "סעיף 8 - נכס בית"),
    ZELMOR_H_ROW(9, "N202", "N302", "סעיף 9 - חברת בית"),
    ZELMOR_H_ROW(10, "N204", "N304", "סעיף 10 - חברה משפחתית"),
    ZELMOR_H_ROW(11, "N205", "N305", "סעיף 11 - הכנסות אחרות לא מיגיעה אישית"),
    {.index = 12, .key = "N214A", .screenCaption = "סעיף 12 - פטנט / לאחר פטירה",
     .paperCaption = "סעיף 12 - פטנט/לאחר פטירה", .fields = F{"N214A", "N314A"}},
    ZELMOR_H_ROW(13, "N213A", "N313A", "סעיף 18 - ריבית אג\"ח"),
    ZELMOR_H_ROW(14, "AcheretMB1", "AcheretFB1", "סעיף 25 - אחרת במס מוגבל"),
    ZELMOR_H_ROW(15, "RealiM", "RealiF", "סעיף 30 - רווח הון ריאלי"),
    {.index = 16, .key = "TTL", .screenCaption = "סה\"כ הכנסה בשיעורי מס רגילים",
     .paperCaption = "סה\"כ הכנסה בשיעורי מס רגילים", .fields = F{"TTLM", "TTLF"}, .show = kAlways, .step = 300,
     .paperColumn = 10, .paperBold = true, .total = true},
};
#undef ZELMOR_H_ROW

// Page 3, allowed deductions. Slots: paid M, allowed M, paid F, allowed F.
#define ZELMOR_N_ROW(i, m, f, cap) \
    {.index = i, .key = m, .screenCaption = cap, .paperCaption = cap, .fields = F{m "S", m "H", f "S", f "H"}}
const SheetRow kNikuim[] = {
    ZELMOR_N_ROW(0, "N112", "N113", "42. אובדן כושר עבודה"),
    ZELMOR_N_ROW(1, "N136", "N137", "44. קרן השתלמות לעצמאים"),
    ZELMOR_N_ROW(2, "N135", "N180", "46. קופ\"ג קיצבה מקיפה"),
    ZELMOR_N_ROW(3, "N030", "N089", "47. ביטוח לאומי ומס מקביל"),
    ZELMOR_N_ROW(4, "N005", "N006", "48. מימון מחקר ופיתוח"),
    ZELMOR_N_ROW(5, "N116", "N117", "49. השקעה בחיפושי נפט"),
    ZELMOR_N_ROW(6, "N118", "N119", "50. השקעה בסרטים"),
    {.index = 7, .key = "TTL1", .screenCaption = "סה\"כ ניכויים מותרים", .paperCaption = "סה\"כ ניכויים מותרים",
     .fields = F{nullptr, "TTLM1", nullptr, "TTLF1"}, .show = kAlways, .paperBold = true, .total = true},
    {.index = 8, .key = "Pachot", .screenCaption = "פחות:", .paperCaption = "פחות", .test = T{"TTLM2", "TTLM0", "TTLF2", "TTLF0"},
     .step = 300, .paperColumn = 10, .total = true},
    {.index = 9, .key = "TTL2", .screenCaption = "נוכה מהכנסה בשיעור מס מוגבל",
     .paperCaption = "נוכה מהכנסה בשיעור מס מוגבל", .fields = F{nullptr, "TTLM2", nullptr, "TTLF2"}, .paperColumn = 15, .total = true},
    {.index = 10, .key = "TTL0", .screenCaption = "עודף ניכויים שלא ניתן לניכוי",
     .paperCaption = "עודף ניכויים שלא ניתן לניכוי", .fields = F{nullptr, "TTLM0", nullptr, "TTLF0"}, .paperColumn = 15, .total = true},
    // The screen calls it what it is; paper repeats the caption of the first total.
    {.index = 11, .key = "TTL3", .screenCaption = "סה\"כ ניכוי מותר מהכנסה בשיעור מס רגיל",
     .paperCaption = "סה\"כ ניכויים מותרים", .fields = F{nullptr, "TTLM3", nullptr, "TTLF3"},
     .test = T{"TTLM3", "TTLM1", "TTLF3", "TTLF1"}, .show = RowShow::Differs, .paperBold = true, .total = true},
};
#undef ZELMOR_N_ROW

// Page 4, the brackets. Slots: income M, tax M, income F, tax F; the rate is the bracket's constant.
#define ZELMOR_B_ROW(i) {.key = #i, .fields = F{"MSUM_" #i, "MMAS_" #i, "FSUM_" #i, "FMAS_" #i}}
const SheetRow kHishuv[] = {
    ZELMOR_B_ROW(1), ZELMOR_B_ROW(2), ZELMOR_B_ROW(3), ZELMOR_B_ROW(4),
    ZELMOR_B_ROW(5), ZELMOR_B_ROW(6), ZELMOR_B_ROW(7),
    {.key = "TTL", .screenCaption = "סה\"כ", .paperCaption = "סה\"כ",
     .fields = F{"MSUM_TTL", "MMAS_TTL", "FSUM_TTL", "FMAS_TTL"}, .show = kAlways, .step = 300, .paperColumn = 5,
     .paperBold = true, .total = true},
};
#undef ZELMOR_B_ROW

// Page 5, special rates. Slots: gross, deduction, net, rate, tax.
#define ZELMOR_S_ROW(b, i, k, gross, cap, pcap)                                                               \
    {.block = b, .index = i, .key = k, .screenCaption = cap, .paperCaption = pcap,                             \
     .fields = F{gross, "NIKUY_" k, "NET_" k, "RATE_" k, "MAS_" k}, .test = T{"NIKUY_" k, "NET_" k}}
#define ZELMOR_S_NET(i, k, cap) \
    {.index = i, .key = k, .screenCaption = cap, .paperCaption = cap, \
     .fields = F{nullptr, nullptr, "NET_" k, "RATE_" k, "MAS_" k}, .test = T{"NET_" k}}
const SheetRow kMeyuchad[] = {
    ZELMOR_S_ROW(0, 0, "214B", "N214B", "12. פטנט/לאחר פטירה", "12. פטנט/לאחר פטירה"),
    ZELMOR_S_ROW(0, 1, "211", "N211", "13. רווח מני\"ע ודיב.", "13. רווח מני\"ע ודיב."),
    ZELMOR_S_ROW(0, 2, "228", "N228", "14. ריבית וקופת\"ג", "14. ריבית וקופת\"ג"),
    ZELMOR_S_ROW(0, 3, "257", "N257", "15. ריבית ני\"ע וקופת\"ג", "15. ריבית ני\"ע ועמלות"),
    ZELMOR_S_ROW(0, 4, "241", "N241", "16. דיבידנד", "16. דיבידנד"),
    ZELMOR_S_ROW(0, 5, "212", "N212", "17. דיבידנד/רווח הון", "17. דיבידנד/רווח הון 30%"),
    ZELMOR_S_ROW(0, 6, "213B", "N213B", "18. ריבית/דיבידנד זרים", "18. ריבית/דיבידנד זרים 35%"),
    ZELMOR_S_ROW(0, 7, "217", "N217", "19. ריבית פקדון/חסכון", "19. ריבית פקדון/חיסכון 15%"),
    ZELMOR_S_ROW(0, 8, "226", "N226", "20. ריבית פקדון/חסכון", "20. ריבית פקדון/חיסכון 20%"),
    ZELMOR_S_ROW(0, 9, "242", "N242", "21. ריבית פקדון/חסכון", "21. ריבית פקדון/חיסכון 25%"),
    // Rent and prizes have no gross or deduction: the net amount is the row.
    ZELMOR_S_NET(10, "222", "22. שכ\"ד למגורים"),
    ZELMOR_S_NET(11, "225", "23. שכ\"ד מחו\"ל"),
    ZELMOR_S_NET(12, "227", "24. הימורים, הגרלות ופרסים"),
    ZELMOR_S_ROW(0, 13, "AcheretM", "AcheretM", "25. הכנסה אחרת", "25. הכנסה אחרת"),
    ZELMOR_S_ROW(0, 14, "InflaM", "InflaM", "32. סכום אינפלציוני", "32. סכום אינפלציוני"),
    {.index = -1, .key = "TTLM", .screenCaption = "סה\"כ הכנסה ומס", .paperCaption = "סה\"כ הכנסה ומס",
     .fields = F{nullptr, nullptr, "MSUM_TTL", nullptr, "MMAS_TTL"}, .show = kAlways, .step = 350,
     .paperColumn = 10, .paperBold = true, .total = true},
    ZELMOR_S_ROW(1, 15, "314B", "N314B", "12. פטנט/לאחר פטירה", "12. פטנט/לאחר פטירה"),
    ZELMOR_S_ROW(1, 16, "311", "N311", "13. רווח מני\"ע ודיב.", "13. רווח מני\"ע ודיב."),
    ZELMOR_S_ROW(1, 17, "328", "N328", "14. ריבית וקופת\"ג", "14. ריבית וקופת\"ג"),
    ZELMOR_S_ROW(1, 18, "357", "N357", "15. ריבית ני\"ע וקופת\"ג", "15. ריבית  ני\"ע ועמלות"),
    ZELMOR_S_ROW(1, 19, "341", "N341", "16. דיבידנד", "16. דיבידנד"),
    ZELMOR_S_ROW(1, 20, "312", "N312", "17. דיבידנד/רווח הון", "17. דיבידנד/רווח הון 30%"),
    ZELMOR_S_ROW(1, 21, "313B", "N313B", "18. ריבית/דיבידנד זרים", "18. ריבית/דיבידנד זרים 35%"),
    ZELMOR_S_ROW(1, 22, "317", "N317", "19. ריבית פקדון/חסכון", "19. ריבית פקדון/חיסכון 15%"),
    ZELMOR_S_ROW(1, 23, "326", "N326", "20. ריבית פקדון/חסכון", "20. ריבית פקדון/חיסכון 20%"),
    ZELMOR_S_ROW(1, 24, "342", "N342", "21. ריבית פקדון/חסכון", "21. ריבית פקדון/חיסכון 25%"),
    ZELMOR_S_ROW(1, 25, "AcheretF", "AcheretF", "25. הכנסה אחרת", "25. הכנסה אחרת"),
    ZELMOR_S_ROW(1, 26, "InflaF", "InflaF", "32. סכום אינפלציוני", "32. סכום אינפלציוני"),
    // The spouse's total prints without a caption.
    {.block = 1, .index = -1, .key = "TTLF", .screenCaption = "סה\"כ הכנסה ומס", .paperCaption = "",
     .fields = F{nullptr, nullptr, "FSUM_TTL", nullptr, "FMAS_TTL"}, .show = kAlways, .step = 0, .total = true},
};
#undef ZELMOR_S_ROW
#undef ZELMOR_S_NET

// Page 6, credits. Points rows, slots: points M, credit M, points F, credit F
// (the worth of a point is a constant). Payment rows, slots: payment, allowed
// part, rate, credit, for M then F.
#define ZELMOR_P_ROW(i, m, f, cap, pcap)                                                   \
    {.index = i, .key = m, .screenCaption = cap, .paperCaption = pcap,                       \
     .fields = F{"NEKUDA_" m, "ZIKUY_" m, "NEKUDA_" f, "ZIKUY_" f}, .test = T{"ZIKUY_" m, "ZIKUY_" f}}
#define ZELMOR_P_ONE(i, m, cap, pcap) \
    {.index = i, .key = m, .screenCaption = cap, .paperCaption = pcap, \
     .fields = F{"NEKUDA_" m, "ZIKUY_" m}, .test = T{"ZIKUY_" m}}
#define ZELMOR_C_ROW(i, m, f, pm, pf, cap, pcap)                                                         \
    {.block = 1, .index = i, .key = m, .screenCaption = cap, .paperCaption = pcap,                        \
     .fields = F{pm, "HUTAR_" m, "RATE_" m, "ZIKUY_" m, pf, "HUTAR_" f, "RATE_" f, "ZIKUY_" f},          \
     .test = T{pm, "HUTAR_" m, pf, "HUTAR_" f}}
const SheetRow kZikuim[] = {
    ZELMOR_P_ROW(0, "020M", "020F", "54. תושב ונסיעה", "54.תושב ונסיעה"),
    ZELMOR_P_ONE(1, "021M", "55. בן זוג", "55. בן זוג"),
    ZELMOR_P_ONE(2, "021AM", "56. בן זוג עובד", "56. בן זוג עובד"),
    ZELMOR_P_ONE(3, "025M", "56. בן זוג עוזר", "56. בן זוג עוזר"),
    ZELMOR_P_ONE(4, "020AM", "   . נער", "  . נער"),
    ZELMOR_P_ONE(5, "028M", "57. מזונות", "57. מזונות"),
    ZELMOR_P_ROW(6, "260M", "260F", "58. ילדים", "58. ילדים"),
    ZELMOR_P_ROW(7, "029M", "129", "60. לא סמוכים", "60. לא סמוכים"),
    ZELMOR_P_ONE(8, "026M", "59. חד הורית", "59. חד הורית"),
    ZELMOR_P_ROW(9, "023", "131", "61. נטולי יכולת", "61. נטולי יכולת"),
    ZELMOR_P_ROW(10, "OleM", "OleF", "62. עולה חדש", "62. עולה חדש"),
    ZELMOR_P_ROW(11, "224", "324", "63. חייל משוחרר", "63. חייל משוחרר"),
    ZELMOR_P_ROW(12, "181", "182", "64. סיום לימודים אקד.", "64. סיום לימודים אקדמאים"),
    ZELMOR_C_ROW(13, "036", "081", "N036", "N081", "65. ביטוח חיים", "65. ביטוח חיים"),
    ZELMOR_C_ROW(14, "045", "086", "N045", "N086", "67. קיצבה מקיפה", "67. קצבה מקיפה"),
    ZELMOR_C_ROW(15, "132", "232", "N132", "N232", "69. קרוב במוסד", "69. קרוב במוסד"),
    ZELMOR_C_ROW(16, "037", "237", "N037", "N237", "70. תרומות", "70. תרומות"),
    ZELMOR_C_ROW(17, "143", "144", "N143", "N144", "71. הנצחת חייל", "71. הנצחת חייל"),
    ZELMOR_C_ROW(18, "093", "193", "N093", "N193", "73. תושב ספר", "73. תושב ספר"),
    // Other credits have no rate on the screen; paper prints it.
    {.block = 1, .index = 19, .key = "AcherimM", .screenCaption = "אחרים", .paperCaption = "  . אחרים",
     .fields = F{"AcherimM", "HUTAR_AcherimM", "RATE_AcherimM", "ZIKUY_AcherimM", "AcherimF", "HUTAR_AcherimF",
                 "RATE_AcherimF", "ZIKUY_AcherimF"},
     .test = T{"AcherimM", "HUTAR_AcherimM", "AcherimF", "HUTAR_AcherimF"}, .screenOmits = 0b01000100},
    ZELMOR_C_ROW(20, "MishmarotM", "MishmarotF", "MishmarotM", "MishmarotF", "4. משמרות", "4. משמרות"),
    {.block = 1, .index = 21, .key = "ODEF", .screenCaption = "    עודף זיכויים", .paperCaption = "עודף זיכויים",
     .fields = F{nullptr, nullptr, nullptr, "ZIKUY_ODEF_M", nullptr, nullptr, nullptr, "ZIKUY_ODEF_F"},
     .paperColumn = 10, .paperBold = true, .total = true},
    {.block = 1, .index = 22, .key = "TTL", .screenCaption = "    סה\"כ זיכויים", .paperCaption = "סה\"כ זיכויים",
     .fields = F{nullptr, nullptr, nullptr, "ZIKUY_TTL_M", nullptr, nullptr, nullptr, "ZIKUY_TTL_F"},
     .show = kAlways, .step = 300, .paperColumn = 10, .paperBold = true, .total = true},
};
#undef ZELMOR_P_ROW
#undef ZELMOR_P_ONE
#undef ZELMOR_C_ROW

// Page 7, payments. Fixed rows; slots: M, F, total.
const SheetRow kTashlumim[] = {
    {.index = 0, .key = "N042", .screenCaption = "75. ניכוי במקור משכר וקיצבאות :",
     .paperCaption = "75. ניכוי במקור משכר וקיצבאות", .fields = F{"N042M", "N042F", "N042"}, .show = kAlways},
    {.index = 1, .key = "N040", .screenCaption = "76. ניכוי מהכנסות אחרות :", .paperCaption = "76. ניכוי מהכנסות אחרות",
     .fields = F{"N040M", "N040F", "N040"}, .show = kAlways},
    {.index = 7, .key = "N043", .screenCaption = "77. ניכוי במקור מריבית (סעיף 18,19)",
     .paperCaption = "77. ניכוי במקור מריבית (סעיף 18,19)", .fields = F{"N043M", "N043F", "N043"}, .show = kAlways},
    {.index = 2, .key = "N041", .screenCaption = "78. מס שבח שנקבע בשומה (קרן) :",
     .paperCaption = "78. מס שבח שנקבע בשומה (קרן)", .fields = F{"N041M", "N041F", "N041"}, .show = kAlways},
    {.index = 3, .key = "Odfot", .screenCaption = "79. מקדמות עודפות חברה משפחתית :",
     .paperCaption = "79. מקדמות עודפות חברה משפחתית", .fields = F{"OdfotM", "OdfotF", "Odfot"}, .show = kAlways},
    {.index = 4, .key = "Mikdamot", .screenCaption = "מקדמות :", .paperCaption = "מקדמות",
     .fields = F{"MikdamotM", "MikdamotF", "Mikdamot"}, .show = kAlways, .paperColumn = 10},
    {.index = 5, .key = "Tashlumim", .screenCaption = "תשלומים (החזרים) נוספים", .paperCaption = "תשלומים (החזרים) נוספים",
     .fields = F{"TashlumimM", "TashlumimF", "Tashlumim"}, .show = kAlways, .paperColumn = 10},
    {.index = 6, .key = "TTL", .screenCaption = "סה\"כ תשלומים על חשבון המס", .paperCaption = "סה\"כ תשלומים על חשבון המס",
     .fields = F{"TTLM", "TTLF", "TTL"}, .show = kAlways, .paperColumn = 10, .paperBold = true, .total = true},
};

// Page 8, national insurance. Fixed rows; slots: income M, contribution M,
// income F, contribution F. The two "basis" rows hold the income of M and F only.
const SheetRow kBL[] = {
    {.index = 0, .key = "AZMAI_MUF", .screenCaption = "\"עובד עצמאי\" ", .paperCaption = "\"עובד עצמאי\" ",
     .fields = F{"BLM_AZMAI_MUF", "BLM_AZMAI_0613", "BLF_AZMAI_MUF", "BLF_AZMAI_0613"}, .show = kAlways,
     .rate = RowRate::MufhatAzmai},
    {.index = 1, .key = "AZMAI_RAG", .screenCaption = "\"עובד עצמאי\" ", .paperCaption = "\"עובד עצמאי\" ",
     .fields = F{"BLM_AZMAI_RAG", "BLM_AZMAI_1236", "BLF_AZMAI_RAG", "BLF_AZMAI_1236"}, .show = kAlways,
     .rate = RowRate::RagilAzmai},
    {.index = 2, .key = "AZMAI_TTL", .screenCaption = "סה\"כ כ\"עובד עצמאי\"", .paperCaption = "סה\"כ כ\"עובד עצמאי\"",
     .fields = F{"BLM_AZMAI_TTL", "BLM_AZMAI_TASH", "BLF_AZMAI_TTL", "BLF_AZMAI_TASH"}, .show = kAlways,
     .paperBold = true},
    {.index = 3, .key = "AZMAI", .screenCaption = "(על בסיס הכנסות מעסק", .paperCaption = "(על בסיס הכנסות מעסק",
     .fields = F{"BLM_AZMAI", nullptr, "BLF_AZMAI"}, .show = kAlways, .paperColumn = 15, .closing = ")"},
    {.index = 4, .key = "HEINO_MUF", .screenCaption = "\"אינו עובד\" ", .paperCaption = "\"אינו עובד\" ",
     .fields = F{"BLM_HEINO_MUF", "BLM_HEINO_0700", "BLF_HEINO_MUF", "BLF_HEINO_0700"}, .show = kAlways,
     .rate = RowRate::MufhatHeino},
    {.index = 5, .key = "HEINO_RAG", .screenCaption = "\"אינו עובד\" ", .paperCaption = "\"אינו עובד\" ",
     .fields = F{"BLM_HEINO_RAG", "BLM_HEINO_1550", "BLF_HEINO_RAG", "BLF_HEINO_1550"}, .show = kAlways,
     .rate = RowRate::RagilHeino},
    // Paper drops the closing quotation mark of this caption.
    {.index = 6, .key = "HEINO_TTL", .screenCaption = "סה\"כ כ\"אינו עובד\"", .paperCaption = "סה\"כ כ\"אינו עובד",
     .fields = F{"BLM_HEINO_TTL", "BLM_HEINO_TASH", "BLF_HEINO_TTL", "BLF_HEINO_TASH"}, .show = kAlways,
     .paperBold = true},
    {.index = 7, .key = "HEINO", .screenCaption = "(על בסיס הכנסות מרכוש", .paperCaption = "(על בסיס הכנסות מרכוש",
     .fields = F{"BLM_HEINO", nullptr, "BLF_HEINO"}, .show = kAlways, .paperColumn = 15, .closing = ")"},
    {.index = 8, .key = "TOTAL", .screenCaption = "סך הכנסה חייבת ודמי ביטוח", .paperCaption = "סך הכנסה חייבת ודמי ביטוח",
     .fields = F{"BLM_TOTAL_TTL", "BLM_TOTAL_TASH", "BLF_TOTAL_TTL", "BLF_TOTAL_TASH"}, .show = kAlways,
     .paperColumn = 10, .paperBold = true, .total = true},
};

const char* sheetName(SheetId sheet) {
    for (const auto& s : allSheets())
        if (s.id == sheet) return s.name;
    return "";
}

}  // namespace

std::span<const SheetRow> sheetRows(SheetId sheet) {
    switch (sheet) {
        case SheetId::CMain: return kMain;
        case SheetId::CHachnasot: return kHachnasot;
        case SheetId::CNikuim: return kNikuim;
        case SheetId::CHishuv: return kHishuv;
        case SheetId::CMeyuchad: return kMeyuchad;
        case SheetId::CZikuim: return kZikuim;
        case SheetId::CTashlumim: return kTashlumim;
        case SheetId::CBL: return kBL;
    }
    return {};
}

const SheetRow* findSheetRow(SheetId sheet, std::string_view key) {
    for (const auto& r : sheetRows(sheet))
        if (key == r.key) return &r;
    return nullptr;
}

double sheetValue(const NishumOutput& out, SheetId sheet, std::string_view field) {
    const SheetFieldDef* f = findSheetField(sheetName(sheet), field);
    if (!f) throw std::out_of_range(std::string(sheetName(sheet)) + " has no field " + std::string(field));
    switch (f->type) {
        case SheetFieldType::Amount: return f->ref<Amount>(out).value();
        case SheetFieldType::Double: return f->ref<double>(out);
        case SheetFieldType::Date: return f->ref<Date>(out).serial();
    }
    return 0;
}

bool rowShown(const NishumOutput& out, SheetId sheet, const SheetRow& row, int yearDoch) {
    switch (row.show) {
        case RowShow::Always: return true;
        case RowShow::Year2002: return yearDoch == 2002;
        case RowShow::Differs:
            return sheetValue(out, sheet, row.test[0]) != sheetValue(out, sheet, row.test[1]) ||
                   sheetValue(out, sheet, row.test[2]) != sheetValue(out, sheet, row.test[3]);
        case RowShow::NonZero: break;
    }
    // Whole shekels and credit points sum exactly in a double, so the test
    // can't overflow and sees the same zero as the screen.
    double sum = 0;
    bool anyTest = false;
    for (const char* name : row.test) {
        if (!name) continue;
        anyTest = true;
        sum += sheetValue(out, sheet, name);
    }
    if (!anyTest)
        for (const char* name : row.fields)
            if (name) sum += sheetValue(out, sheet, name);
    return sum != 0;
}

}  // namespace zelmor
