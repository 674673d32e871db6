#pragma once
// The paper forms of the result sheets and of the report's sections, drawn
// through the page printer of a running job.

#include "engine/const_doch.h"
#include "print/cls_print.h"
#include "report/nishum_input.h"
#include "results/nishum_output.h"
#include "results/sheet_layout.h"

namespace zelmor {

// The year's figures the sheets show (the worth of a point, the rates).
SheetParams sheetParams(const ConstDoch& c);

// Prints one result sheet at the running line. A sheet with nothing to show
// takes back the three lines of the gap above it (NextLine(-3)) and prints
// nothing; the summary and the national insurance sheet always print.
void PrintSheet(ClsPrint& p, SheetId sheet, const NishumOutput& out, const ConstDoch& c);

// Prints one section of the report, every line of it, amounts or blanks.
void PrintSection(ClsPrint& p, SectionId section, const NishumInput& report, const ConstDoch& c);

}  // namespace zelmor
