#pragma once
// The paper forms of the result sheets and of the report's sections, drawn
// through the page printer of a running job.

#include "core/tax_year.h"
#include "print/cls_print.h"
#include "report/nishum_input.h"
#include "results/nishum_output.h"
#include "results/sheet_layout.h"

namespace zelmor {

namespace trace {
struct Trace;
}

// The title of the appendix of explanations.
inline const QString kExplainAppendixTitle = QStringLiteral("נספח הסברים");

// The year's figures the sheets show (the worth of a point, the rates).
SheetParams sheetParams(const ConstDoch& c);

// Prints one result sheet at the running line. A sheet with nothing to show
// takes back the three lines of the gap above it (NextLine(-3)) and prints
// nothing; the summary and the national insurance sheet always print.
void PrintSheet(ClsPrint& p, SheetId sheet, const NishumOutput& out, const ConstDoch& c);

// Prints the appendix of explanations on pages of its own: for every amount of
// the summary sheet that is not 0, its explanation tree `depth` levels deep,
// from `t`, the trace of the calculation that gave `out`.
void PrintExplanations(ClsPrint& p, const trace::Trace& t, const NishumOutput& out, int depth = 3);

// Prints one section of the report, every line of it, amounts or blanks.
void PrintSection(ClsPrint& p, SectionId section, const NishumInput& report, const ConstDoch& c);

}  // namespace zelmor
