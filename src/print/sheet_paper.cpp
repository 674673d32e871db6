// The result sheets on paper: every sheet reads its rows from the sheet's row
// table (captions, fields in column order, the show test) and its title and
// column heads from the sheet's layout, the same data its screen reads, and
// lays the rows out in its own columns.

#include <QString>
#include <array>
#include <vector>
#include <algorithm>
#include <initializer_list>
#include <utility>

#include "core/values.h"
#include "print/paper.h"
#include "results/sheet_rows.h"

namespace zelmor {
namespace {

QString amountText(double v, int decimals = 0) { return QString::fromStdString(FormatAmount(v, decimals)); }

struct Span {
    float from, to;
};

class SheetPrinter {
public:
    SheetPrinter(ClsPrint& p, SheetId sheet, const NishumOutput& out, const ConstDoch& c)
        : p_(p), sheet_(sheet), out_(out), c_(c), params_(sheetParams(c)), layout_(sheetLayout(sheet)) {}

    double value(const char* field) const { return field ? sheetValue(out_, sheet_, field) : 0; }
    QString amount(const char* field, int decimals = 0) const { return amountText(value(field), decimals); }
    bool shown(const SheetRow& row) const { return rowShown(out_, sheet_, row, c_.YEARDOCH()); }
    const SheetRow& row(const char* key) const { return *findSheetRow(sheet_, key); }

    QString caption(const SheetRow& r) const {
        return QString::fromStdString(rowCaption(out_, sheet_, r, Medium::Paper, params_));
    }

    // The common head of a sheet: the title two points larger, a heavy rule.
    void title() {
        // The title, its rule, the heads and a first row start on one page.
        p_.KeepLines(1.5f + static_cast<float>(headLines(0)) + 1);
        p_.SetFontSize(p_.FontSize() + 2);
        p_.PrintString(5, QString::fromStdString(paperTitle(sheet_, params_)), true);
        p_.SetFontSize(p_.FontSize() - 2);
        p_.NextLine(1);
        p_.PrintLine(5, p_.LinePos, 90, p_.LinePos, 3);
        p_.NextLine(0.5);
    }
    // The column heads of a block, bold, underlined or not, a line for each
    // line of heads.
    int headLines(int block) const {
        int lines = 0;
        for (const SheetHead& h : layout_.blocks[static_cast<std::size_t>(block)].heads)
            if (h.paperColumn != 0) lines = std::max(lines, h.line + 1);
        return lines;
    }
    void heads(int block = 0) {
        p_.KeepLines(static_cast<float>(headLines(block)) + 1);
        const auto all = layout_.blocks[static_cast<std::size_t>(block)].heads;
        for (int line = 0;; ++line) {
            bool any = false;
            for (const SheetHead& h : all) {
                if (h.line != line || h.paperColumn == 0) continue;
                any = true;
                p_.SetFontUnderline(h.paperUnderline);
                p_.PrintString(h.paperColumn, QString::fromUtf8(h.text), true);
                p_.SetFontUnderline(false);
            }
            if (!any) break;
            p_.NextLine(1);
        }
    }
    // Columns for cells that stand one after the other on a row: each at its
    // own column, or half a column clear of the widest text before it when
    // that text reaches it. widths[i]: the widest text of column i.
    static std::vector<double> flow(double captionEnd, std::initializer_list<double> cols,
                                    const std::vector<double>& widths) {
        std::vector<double> out;
        double end = captionEnd;
        for (double col : cols) {
            out.push_back(std::max(col, end + 0.5));
            end = out.back() + widths[out.size() - 1];
        }
        return out;
    }
    double width(const QString& text, bool bold = false) const { return p_.TextWidth(text, bold); }

    void rules(std::initializer_list<Span> spans, int width) {
        for (const Span& s : spans) p_.PrintLine(s.from, p_.LinePos, s.to, p_.LinePos, width);
    }
    // The row's caption at its column and its fields at the given columns, by slot.
    void cells(const SheetRow& r, std::initializer_list<double> cols, bool withCaption = true) {
        if (withCaption && *r.paperCaption) p_.PrintString(r.paperColumn, caption(r), r.paperBold);
        int slot = 0;
        for (double col : cols) {
            if (r.fields[static_cast<std::size_t>(slot)] && col > 0)
                p_.PrintString(col, QString::fromStdString(cellText(out_, sheet_, r, slot)), r.paperBold);
            ++slot;
        }
    }
    // Every shown detail row of a block, each on its own line. `tail`: how far
    // below the last row the block's total and its rules reach; the last row
    // stands on their page, so that no rule or total opens a page alone.
    template <class Fn>
    void details(int block, Fn&& printRow, float tail) {
        const auto rows = shownRows(out_, sheet_, params_, block, true);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (i + 1 == rows.size()) p_.KeepLines(1 + tail);
            printRow(*rows[i]);
            p_.NextLine(1);
        }
        p_.KeepLines(tail);
    }

    ClsPrint& p_;
    SheetId sheet_;
    const NishumOutput& out_;
    const ConstDoch& c_;
    SheetParams params_;
    const SheetLayout& layout_;
};

void printMain(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    s.title();
    s.heads();
    // The rows with a rule under them: its spans, its width, the space after it.
    struct Under {
        std::string_view key;
        std::initializer_list<Span> spans;
        int width;
        float gap;
    };
    static const Under kUnder[] = {{"HachnasaNet", {{45, 55}, {70, 80}}, 2, 0.5f},
                                   {"MasLetashlum", {{45, 55}, {70, 80}}, 2, 0.5f},
                                   {"Ribit", {{60, 70}}, 1, 0.5f},
                                   {"Itra", {{60, 70}}, 2, 0}};
    for (const SheetRow* row : shownRows(s.out_, SheetId::CMain, s.params_, 0, false)) {
        const SheetRow& r = *row;
        const auto under = std::ranges::find(kUnder, std::string_view(r.key), &Under::key);
        const bool ruled = under != std::end(kUnder);
        if (ruled) p.KeepLines(1);  // the rule stands on the row's page
        if (*r.lineNumber) p.PrintString(40, QString::fromUtf8(r.lineNumber), false);
        p.PrintString(r.paperColumn, s.caption(r), false);
        for (int slot = 0; slot < 3; ++slot)
            if (r.fields[slot]) p.PrintString(slot == 0 ? 45 : slot == 1 ? 70 : 60, s.amount(r.fields[slot]), false);
        p.NextLine(1);
        if (ruled) {
            s.rules(under->spans, under->width);
            p.NextLine(under->gap);
        }
    }
}

void printHachnasot(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    if (s.value("TTLM") == 0 && s.value("TTLF") == 0) return p.NextLine(-3);
    s.title();
    s.heads();
    s.details(0, [&](const SheetRow& r) { s.cells(r, {40, 65}); }, 2.5);
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
    s.title();
    s.heads();
    const std::initializer_list<double> cols = {35, 45, 60, 70};
    float tail = 2;  // the rule, the first total, the closing rule
    for (const char* key : {"Pachot", "TTL2", "TTL0"}) tail += s.shown(s.row(key)) ? 1 : 0;
    if (s.shown(s.row("TTL3"))) tail += 2;
    s.details(0, [&](const SheetRow& r) { s.cells(r, cols); }, tail);
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
    s.title();
    s.heads();
    s.details(0, [&](const SheetRow& r) {
        // Both rate cells print, even when only one person has income in the bracket.
        const QString rateText = s.caption(r);
        s.cells(r, {10, 30, 50, 70}, false);
        p.PrintString(20, rateText, false);
        p.PrintString(60, rateText, false);
    }, 1.5);
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
    s.title();
    // The texts of a row in column order; the gross and its deduction only when there is a deduction.
    const auto& decor = s.layout_.blocks[0].decor;
    auto texts = [&](const SheetRow& r) {
        const bool deducted = r.fields[1] && s.value(r.fields[1]) != 0;
        const QString deduction = QLatin1Char(' ') + QString::fromUtf8(decor[1].before) + QLatin1Char(' ');
        return std::array<QString, 6>{deducted ? s.amount(r.fields[0]) : QString(),
                                      deducted ? deduction + s.amount(r.fields[1]) : QString(),
                                      s.amount(r.fields[2]), QString::fromUtf8(decor[3].before),
                                      s.amount(r.fields[3]) + QString::fromUtf8(decor[3].after), s.amount(r.fields[4])};
    };
    // A long caption pushes the gross amounts of the whole sheet aside, so
    // they stay in one column.
    double captionEnd = 0;
    std::vector<double> widths(6, 0.0);
    for (int block = 0; block < 2; ++block)
        for (const SheetRow* r : shownRows(s.out_, SheetId::CMeyuchad, s.params_, block, true)) {
            const auto t = texts(*r);
            if (!t[0].isEmpty()) captionEnd = std::max(captionEnd, 7 + s.width(QString::fromUtf8(r->paperCaption)));
            for (std::size_t i = 0; i < t.size(); ++i) widths[i] = std::max(widths[i], s.width(t[i]));
        }
    const std::vector<double> cols = SheetPrinter::flow(captionEnd, {25, 35, 55, 65, 67, 75}, widths);
    auto row = [&](const SheetRow& r) {
        p.PrintString(7, QString::fromUtf8(r.paperCaption), false);
        const auto t = texts(r);
        for (std::size_t i = 0; i < t.size(); ++i)
            if (!t[i].isEmpty()) p.PrintString(cols[i], t[i], false);
    };
    s.heads(0);
    s.details(0, row, 0.5);
    s.rules({{55, 65}, {75, 85}}, 1);
    p.NextLine(0.5);
    s.cells(s.row("TTLM"), {0, 0, 55, 0, 75});
    p.NextLine(1.5);
    s.heads(1);
    s.details(1, row, 0.5);
    s.rules({{55, 65}, {75, 85}}, 1);
    p.NextLine(0.5);
    s.cells(s.row("TTLF"), {0, 0, 55, 0, 75});
}

void printZikuim(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    if (s.value("ZIKUY_ODEF_M") == 0 && s.value("ZIKUY_TTL_M") == 0 && s.value("ZIKUY_ODEF_F") == 0 &&
        s.value("ZIKUY_TTL_F") == 0)
        return p.NextLine(-3);
    s.title();
    s.heads(0);
    // A credit by points: the worth of a point times the points, and the
    // credit, for each person. A caption too long for its place pushes the
    // columns aside for the whole block.
    const SlotDecor& points = s.layout_.blocks[0].decor[0];
    const QString pointWorth = amountText(s.params_.pointWorth) + QLatin1Char(' ') + QString::fromUtf8(points.before);
    auto texts = [&](const SheetRow& r) {
        std::array<QString, 6> t;
        for (int person = 0; person < 2; ++person) {
            if (!r.fields[static_cast<std::size_t>(person * 2)]) continue;
            t[static_cast<std::size_t>(person * 3)] = pointWorth;
            t[static_cast<std::size_t>(person * 3 + 1)] = QString::fromStdString(cellText(s.out_, SheetId::CZikuim, r, person * 2)) +
                                                          QLatin1Char(' ') + QString::fromUtf8(points.after);
            t[static_cast<std::size_t>(person * 3 + 2)] =
                QString::fromStdString(cellText(s.out_, SheetId::CZikuim, r, person * 2 + 1));
        }
        return t;
    };
    double captionEnd = 0;
    std::vector<double> widths(6, 0.0);
    for (const SheetRow* r : shownRows(s.out_, SheetId::CZikuim, s.params_, 0, true)) {
        captionEnd = std::max(captionEnd, 7 + s.width(QString::fromUtf8(r->paperCaption)));
        const auto t = texts(*r);
        for (std::size_t i = 0; i < t.size(); ++i) widths[i] = std::max(widths[i], s.width(t[i]));
    }
    const std::vector<double> pointCols = SheetPrinter::flow(captionEnd, {20, 27, 40, 55, 62, 75}, widths);
    s.details(0, [&](const SheetRow& r) {
        p.PrintString(7, QString::fromUtf8(r.paperCaption), false);
        const auto t = texts(r);
        for (std::size_t i = 0; i < t.size(); ++i)
            if (!t[i].isEmpty()) p.PrintString(pointCols[i], t[i], false);
    }, 0);
    p.NextLine(1);
    s.heads(1);
    const std::initializer_list<double> cols = {19, 27, 37, 40, 52, 62, 72, 75};
    const bool odef = s.shown(s.row("ODEF"));
    s.details(1, [&](const SheetRow& r) { s.cells(r, cols); }, odef ? 2.5f : 1.5f);
    if (odef) {
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
    s.title();
    s.heads();
    s.details(0, [&](const SheetRow& r) { s.cells(r, {40, 55, 70}); }, 1.5);
    s.rules({{40, 50}, {55, 65}, {70, 80}}, 1);
    p.NextLine(0.5);
    s.cells(s.row("TTL"), {40, 55, 70});
    p.NextLine(1);
    s.rules({{40, 50}, {55, 65}, {70, 80}}, 2);
}

void printBL(SheetPrinter& s) {
    ClsPrint& p = s.p_;
    s.title();
    s.heads();
    const std::initializer_list<double> cols = {35, 47, 63, 75};
    s.details(0, [&](const SheetRow& r) {
        if (*r.closing) {  // "(on the basis of the income from ...)": the two incomes stand inside the brackets
            s.cells(r, {40, 0, 68});
            p.PrintString(80, QString::fromUtf8(r.closing), false);
        } else {
            s.cells(r, cols);
        }
    }, 2);
    s.rules({{35, 45}, {47, 57}, {63, 73}, {75, 85}}, 1);
    p.NextLine(1);
    s.cells(s.row("TOTAL"), cols);
    p.NextLine(1);
    s.rules({{35, 45}, {47, 57}, {63, 73}, {75, 85}}, 2);
}

}  // namespace

SheetParams sheetParams(const ConstDoch& c) {
    return {.yearDoch = c.YEARDOCH(),
            .pointWorth = static_cast<double>(c.NEKUDA().value()),
            .bracketRates = {c.RATE1(), c.RATE2(), c.RATE3(), c.RATE4(), c.RATE5(), c.RATE6(), c.RATE7()},
            .blRates = {c.BLRATEMUFHATAZMAI(), c.BLRATERAGILAZMAI(), c.BLRATEMUFHATHEINOOVED(),
                        c.BLRATERAGILHEINOOVED()}};
}

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
