// The result sheets on paper: every sheet reads its rows from the sheet's row
// table (captions, fields in column order, the show test), the same table its
// screen reads, and lays them out in its own columns.

#include <QString>
#include <initializer_list>
#include <utility>

#include "core/values.h"
#include "print/paper.h"
#include "results/sheet_rows.h"

namespace zelmor {
namespace {

const QString kHeadM = QStringLiteral("\"בן הזוג הרשום\"");
const QString kHeadF = QStringLiteral("בן/בת הזוג");

QString amountText(double v, int decimals = 0) { return QString::fromStdString(FormatAmount(v, decimals)); }

struct Span {
    float from, to;
};

class SheetPrinter {
public:
    SheetPrinter(ClsPrint& p, SheetId sheet, const NishumOutput& out, const ConstDoch& c)
        : p_(p), sheet_(sheet), out_(out), c_(c) {}

    double value(const char* field) const { return field ? sheetValue(out_, sheet_, field) : 0; }
    QString amount(const char* field, int decimals = 0) const { return amountText(value(field), decimals); }
    bool shown(const SheetRow& row) const { return rowShown(out_, sheet_, row, c_.YEARDOCH()); }
    const SheetRow& row(const char* key) const { return *findSheetRow(sheet_, key); }

    // The common head of a sheet: the title two points larger, a heavy rule.
    void title(const QString& text) {
        p_.SetFontSize(p_.FontSize() + 2);
        p_.PrintString(5, text, true);
        p_.SetFontSize(p_.FontSize() - 2);
        p_.NextLine(1);
        p_.PrintLine(5, p_.LinePos, 90, p_.LinePos, 3);
        p_.NextLine(0.5);
    }
    // Column heads, bold, underlined or not, then the next line.
    void heads(std::initializer_list<std::pair<double, QString>> cells, bool underline) {
        if (underline) p_.SetFontUnderline(true);
        for (const auto& [col, text] : cells) p_.PrintString(col, text, true);
        if (underline) p_.SetFontUnderline(false);
        p_.NextLine(1);
    }
    void rules(std::initializer_list<Span> spans, int width) {
        for (const Span& s : spans) p_.PrintLine(s.from, p_.LinePos, s.to, p_.LinePos, width);
    }
    // The row's caption at its column and its fields at the given columns, by slot.
    void cells(const SheetRow& r, std::initializer_list<double> cols, bool withCaption = true) {
        if (withCaption && *r.paperCaption) p_.PrintString(r.paperColumn, QString::fromUtf8(r.paperCaption), r.paperBold);
        int slot = 0;
        for (double col : cols) {
            const char* f = r.fields[slot++];
            if (f && col > 0) p_.PrintString(col, amount(f), r.paperBold);
        }
    }
    // Every shown detail row of a block, each on its own line.
    template <class Fn>
    void details(int block, Fn&& printRow) {
        for (const SheetRow& r : sheetRows(sheet_))
            if (r.block == block && !r.total && shown(r)) {
                printRow(r);
                p_.NextLine(1);
            }
    }

    ClsPrint& p_;
    SheetId sheet_;
    const NishumOutput& out_;
    const ConstDoch& c_;
};

void printMain(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    s.title(QStringLiteral("חישוב המס המגיע לשנת ") + QString::number(s.c_.YEARDOCH()));
    s.heads({{38, QStringLiteral("פירוט")}, {45, kHeadM}, {70, kHeadF}}, true);
    for (const SheetRow& r : sheetRows(SheetId::CMain)) {
        if (!s.shown(r)) continue;
        const std::string_view key = r.key;
        if (*r.lineNumber) p.PrintString(40, QString::fromUtf8(r.lineNumber), false);
        QString caption = QString::fromUtf8(r.paperCaption);
        if (r.fields[3]) {  // a row with a date: the date follows the caption
            caption += QString::fromStdString(FormatDate(Date::fromSerial(static_cast<std::int32_t>(s.value(r.fields[3])))));
            if (key == "Ribit" && s.value("PtorRibit") != 0)
                caption += QStringLiteral(" בניכוי פטור ") + s.amount("PtorRibit");
        }
        p.PrintString(r.paperColumn, caption, false);
        for (int slot = 0; slot < 3; ++slot)
            if (r.fields[slot]) p.PrintString(slot == 0 ? 45 : slot == 1 ? 70 : 60, s.amount(r.fields[slot]), false);
        p.NextLine(1);
        if (key == "HachnasaNet" || key == "MasLetashlum") {
            s.rules({{45, 55}, {70, 80}}, 2);
            p.NextLine(0.5);
        } else if (key == "Ribit") {
            s.rules({{60, 70}}, 1);
            p.NextLine(0.5);
        } else if (key == "Itra") {
            s.rules({{60, 70}}, 2);
        }
    }
}

void printHachnasot(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    if (s.value("TTLM") == 0 && s.value("TTLF") == 0) return p.NextLine(-3);
    s.title(QStringLiteral("1. הכנסות בשיעורי מס רגילים"));
    s.heads({{40, kHeadM}, {65, kHeadF}}, true);
    s.details(0, [&](const SheetRow& r) { s.cells(r, {40, 65}); });
    p.NextLine(1);
    s.rules({{40, 50}, {65, 75}}, 1);
    p.NextLine(0.5);
    s.cells(s.row("TTL"), {40, 65});
    p.NextLine(1);
    s.rules({{40, 50}, {65, 75}}, 2);
}

void printNikuim(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    // Only what was paid decides: allowed amounts without payments print nothing.
    double paidM = 0, paidF = 0;
    for (const SheetRow& r : sheetRows(SheetId::CNikuim))
        if (!r.total) {
            paidM += s.value(r.fields[0]);
            paidF += s.value(r.fields[2]);
        }
    if (paidM == 0 && paidF == 0) return p.NextLine(-3);
    p.NextLine(3);  // this sheet stands six lines below the one above
    s.title(QStringLiteral("2. ניכויים מותרים"));
    s.heads({{40, kHeadM}, {65, kHeadF}}, false);
    s.heads({{35, QStringLiteral("סכום ששולם")}, {45, QStringLiteral("ניכוי מותר")}, {60, QStringLiteral("סכום ששולם")},
             {70, QStringLiteral("ניכוי מותר")}},
            true);
    const std::initializer_list<double> cols = {35, 45, 60, 70};
    s.details(0, [&](const SheetRow& r) { s.cells(r, cols); });
    s.rules({{45, 55}, {70, 80}}, 1);
    p.NextLine(1);
    s.cells(s.row("TTL1"), cols);
    p.NextLine(1);
    for (const char* key : {"Pachot", "TTL2", "TTL0"}) {
        const SheetRow& r = s.row(key);
        if (!s.shown(r)) continue;
        s.cells(r, cols);
        p.NextLine(1);
    }
    if (s.shown(s.row("TTL3"))) {
        s.rules({{45, 55}, {70, 80}}, 1);
        p.NextLine(1);
        s.cells(s.row("TTL3"), cols);
        p.NextLine(1);
    }
    s.rules({{45, 55}, {70, 80}}, 2);
}

void printHishuv(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    if (s.value("MSUM_TTL") == 0 && s.value("FSUM_TTL") == 0) return p.NextLine(-3);
    s.title(QStringLiteral("3. מס מגיע על הכנסות בשיעור רגיל"));
    s.heads({{18, kHeadM}, {58, kHeadF}}, false);
    const QString income = QStringLiteral("סכום ההכנסה"), rate = QStringLiteral("שיעור מס"), tax = QStringLiteral("סכום המס");
    s.heads({{10, income}, {20, rate}, {30, tax}, {50, income}, {60, rate}, {70, tax}}, true);
    const double rates[] = {s.c_.RATE1(), s.c_.RATE2(), s.c_.RATE3(), s.c_.RATE4(),
                            s.c_.RATE5(), s.c_.RATE6(), s.c_.RATE7()};
    int bracket = 0;
    for (const SheetRow& r : sheetRows(SheetId::CHishuv)) {
        if (r.total) continue;
        const double bracketRate = rates[bracket++];
        if (!s.shown(r)) continue;
        // Both rate cells print, even when only one person has income in the bracket.
        const QString rateText = QString::number(bracketRate * 100, 'f', 2) + QLatin1Char('%');
        s.cells(r, {10, 30, 50, 70});
        p.PrintString(20, rateText, false);
        p.PrintString(60, rateText, false);
        p.NextLine(1);
    }
    s.rules({{10, 20}, {30, 40}, {50, 60}, {70, 80}}, 1);
    p.NextLine(0.5);
    s.cells(s.row("TTL"), {10, 30, 50, 70});
    p.NextLine(1);
    s.rules({{10, 20}, {30, 40}, {50, 60}, {70, 80}}, 2);
}

void printMeyuchad(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    double gross = 0;
    for (const SheetRow& r : sheetRows(SheetId::CMeyuchad))
        if (!r.total) gross += s.value(r.fields[0] ? r.fields[0] : r.fields[2]);
    if (gross == 0) return p.NextLine(-3);
    s.title(QStringLiteral("4. מס מגיע על הכנסות בשיעורי מס מיוחדים"));
    const QString income = QStringLiteral("סכום ההכנסה"), rate = QStringLiteral("שעור"), tax = QStringLiteral("סכום המס");
    auto row = [&](const SheetRow& r) {
        p.PrintString(7, QString::fromUtf8(r.paperCaption), false);
        if (r.fields[1] && s.value(r.fields[1]) != 0) {
            p.PrintString(25, s.amount(r.fields[0]), false);
            p.PrintString(35, QStringLiteral(" בניכוי ") + s.amount(r.fields[1]), false);
        }
        p.PrintString(55, s.amount(r.fields[2]), false);
        p.PrintString(65, QStringLiteral("X"), false);
        p.PrintString(67, s.amount(r.fields[3]) + QStringLiteral("% ="), false);
        p.PrintString(75, s.amount(r.fields[4]), false);
    };
    s.heads({{7, kHeadM}, {55, income}, {65, rate}, {75, tax}}, true);
    s.details(0, row);
    s.rules({{55, 65}, {75, 85}}, 1);
    p.NextLine(0.5);
    s.cells(s.row("TTLM"), {0, 0, 55, 0, 75});
    p.NextLine(1.5);
    s.heads({{7, kHeadF}, {55, income}, {65, rate}, {75, tax}}, true);
    s.details(1, row);
    s.rules({{55, 65}, {75, 85}}, 1);
    p.NextLine(0.5);
    s.cells(s.row("TTLF"), {0, 0, 55, 0, 75});
}

void printZikuim(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    if (s.value("ZIKUY_ODEF_M") == 0 && s.value("ZIKUY_TTL_M") == 0 && s.value("ZIKUY_ODEF_F") == 0 &&
        s.value("ZIKUY_TTL_F") == 0)
        return p.NextLine(-3);
    s.title(QStringLiteral("5. זיכויים ממס"));
    s.heads({{23, kHeadM}, {58, kHeadF}}, true);
    // A credit by points: the worth of a point times the points, and the credit.
    const QString pointWorth = amountText(s.c_.NEKUDA().value()) + QStringLiteral(" X");
    s.details(0, [&](const SheetRow& r) {
        p.PrintString(7, QString::fromUtf8(r.paperCaption), false);
        for (int person = 0; person < 2; ++person) {
            const char* points = r.fields[person * 2];
            if (!points) continue;
            const double shift = person * 35;
            p.PrintString(20 + shift, pointWorth, false);
            p.PrintString(27 + shift, s.amount(points, 2) + QStringLiteral(" ="), false);
            p.PrintString(40 + shift, s.amount(r.fields[person * 2 + 1]), false);
        }
    });
    p.NextLine(1);
    const QString pay = QStringLiteral("תשלום"), allowed = QStringLiteral("הותר"), pct = QStringLiteral("%");
    // The payment stands two columns clear of the longest captions.
    s.heads({{19, pay}, {27, allowed}, {37, pct}, {52, pay}, {62, allowed}, {72, pct}}, true);
    const std::initializer_list<double> cols = {19, 27, 37, 40, 52, 62, 72, 75};
    s.details(1, [&](const SheetRow& r) { s.cells(r, cols); });
    if (s.shown(s.row("ODEF"))) {
        s.cells(s.row("ODEF"), cols);
        p.NextLine(1);
    }
    s.rules({{40, 50}, {75, 85}}, 1);
    p.NextLine(0.5);
    s.cells(s.row("TTL"), cols);
    p.NextLine(1);
    s.rules({{40, 50}, {75, 85}}, 2);
}

void printTashlumim(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    if (s.value("TTL") == 0) return p.NextLine(-3);
    s.title(QStringLiteral("6. תשלומים על חשבון המס לשנת ") + QString::number(s.c_.YEARDOCH()));
    s.heads({{40, kHeadM}, {55, kHeadF}, {70, QStringLiteral("סה\"כ")}}, true);
    s.details(0, [&](const SheetRow& r) { s.cells(r, {40, 55, 70}); });
    s.rules({{40, 50}, {55, 65}, {70, 80}}, 1);
    p.NextLine(0.5);
    s.cells(s.row("TTL"), {40, 55, 70});
    p.NextLine(1);
    s.rules({{40, 50}, {55, 65}, {70, 80}}, 2);
}

double blRate(const ConstDoch& c, RowRate rate) {
    switch (rate) {
        case RowRate::MufhatAzmai: return c.BLRATEMUFHATAZMAI();
        case RowRate::RagilAzmai: return c.BLRATERAGILAZMAI();
        case RowRate::MufhatHeino: return c.BLRATEMUFHATHEINOOVED();
        case RowRate::RagilHeino: return c.BLRATERAGILHEINOOVED();
        case RowRate::None: break;
    }
    return 0;
}

void printBL(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    s.title(QStringLiteral("חבות משוערת בדמי ביטוח לאומי"));
    s.heads({{40, kHeadM}, {68, kHeadF}}, false);
    const QString income = QStringLiteral("הכנסה"), premium = QStringLiteral("דמי ביטוח");
    s.heads({{35, income}, {47, premium}, {63, income}, {75, premium}}, true);
    const std::initializer_list<double> cols = {35, 47, 63, 75};
    s.details(0, [&](const SheetRow& r) {
        if (r.rate != RowRate::None) {
            // The rate comes from the year's constants, never from a design caption.
            const QString rate = QString::number(blRate(s.c_, r.rate) * 100, 'f', 2) + QLatin1Char('%');
            p.PrintString(r.paperColumn, QString::fromUtf8(r.paperCaption) + rate, r.paperBold);
            s.cells(r, cols, false);
        } else if (r.paperColumn == 15) {  // "(on the basis of the income from ...)"
            s.cells(r, {40, 68});
            p.PrintString(80, QStringLiteral(")"), false);
        } else {
            s.cells(r, cols);
        }
    });
    s.rules({{35, 45}, {47, 57}, {63, 73}, {75, 85}}, 1);
    p.NextLine(1);
    s.cells(s.row("TOTAL"), cols);
    p.NextLine(1);
    s.rules({{35, 45}, {47, 57}, {63, 73}, {75, 85}}, 2);
}

}  // namespace

void PrintSheet(ClsPrint& p, SheetId sheet, const NishumOutput& out, const ConstDoch& c) {
    SheetPrinter s(p, sheet, out, c);
    switch (sheet) {
        case SheetId::CMain: return printMain(s);
        case SheetId::CHachnasot: return printHachnasot(s);
        case SheetId::CNikuim: return printNikuim(s);
        case SheetId::CHishuv: return printHishuv(s);
        case SheetId::CMeyuchad: return printMeyuchad(s);
        case SheetId::CZikuim: return printZikuim(s);
        case SheetId::CTashlumim: return printTashlumim(s);
        case SheetId::CBL: return printBL(s);
    }
}

}  // namespace zelmor
