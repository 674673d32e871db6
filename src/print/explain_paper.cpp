// The appendix of explanations to the result sheets: every amount of the
// summary sheet that is not 0, as the formula it came from with its numbers,
// then the figures it was made of, indented, a few levels down.

#include <QString>
#include <QStringList>
#include <algorithm>

#include "engine/explain.h"
#include "engine/trace.h"
#include "print/paper.h"
#include "results/sheet_rows.h"

namespace zelmor {
namespace {

constexpr double kFirstColumn = 5;  // the right margin of the appendix, as the sheets' titles
constexpr double kIndent = 4;       // columns a level

// Prints one line of an explanation at its level; a line wider than the room
// left of its column goes on over more lines, two columns further in.
void printWrapped(ClsPrint& p, double column, const QString& text, bool bold = false) {
    const double room = std::max(20.0, p.ScaleWidth() - column - 2);
    QString line;
    double at = column;
    for (const QString& word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString longer = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (!line.isEmpty() && p.TextWidth(longer, bold) > room - (at - column)) {
            p.PrintString(at, line, bold);
            p.NextLine(1);
            at = column + 2;
            line = word;
        } else {
            line = longer;
        }
    }
    if (!line.isEmpty()) p.PrintString(at, line, bold);
    p.NextLine(1);
}

// An explanation as explainText writes it: two blanks a level. The figure
// explained stands out in bold.
void printTree(ClsPrint& p, const std::string& text) {
    for (const QString& line : QString::fromStdString(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const auto blanks = line.size() - QStringView(line).trimmed().size();
        printWrapped(p, kFirstColumn + kIndent * static_cast<double>(blanks / 2), line.trimmed(), blanks == 0);
    }
}

}  // namespace

void PrintExplanations(ClsPrint& p, const trace::Trace& t, const NishumOutput& out, int depth) {
    // The appendix starts on a page of its own.
    p.LinePos = p.PrintEndPage(false);
    p.SetFontSize(p.FontSize() + 2);
    p.PrintString(kFirstColumn, kExplainAppendixTitle, true);
    p.SetFontSize(p.FontSize() - 2);
    p.NextLine(1);
    p.PrintLine(static_cast<float>(kFirstColumn), p.LinePos, 90, p.LinePos, 3);
    p.NextLine(0.5);
    if (t.filing >= 0) {
        printTree(p, trace::explainText(t, t.filing, 2));
        p.NextLine(0.5);
    }
    for (const SheetFieldDef& f : sheetFields(SheetId::CMain)) {
        if (f.type == SheetFieldType::Date) continue;
        const double value = sheetValue(out, SheetId::CMain, f.name);
        if (value == 0) continue;
        const int node = t.cell(std::string(f.sheetName) + "." + f.name);
        p.KeepLines(2);
        if (node >= 0)
            printTree(p, trace::explainText(t, node, depth));
        else
            printWrapped(p, kFirstColumn, QString::fromUtf8(f.name) + QStringLiteral(" = ") +
                                              QString::fromStdString(trace::formatNumber(value)) +
                                              QStringLiteral(" (אין הסבר רשום לתא זה)"));
        p.NextLine(0.5);
    }
}

}  // namespace zelmor
