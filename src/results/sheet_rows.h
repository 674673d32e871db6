#pragma once
// The rows of the eight result sheets: one table per sheet, read both by the
// sheet's screen and by its paper form. A row names its fields (by their name
// in the sheet catalogue, in column order: the registered spouse's cells first,
// then the spouse's), its captions on screen and on paper, and the test that
// decides whether it is shown. Screen and paper test the same sums, so the two
// renderings of a sheet stay in step.

#include <array>
#include <span>
#include <string_view>

#include "results/nishum_output.h"

namespace zelmor {

enum class RowShow {
    Always,    // a fixed row: always shown
    NonZero,   // shown when the sum of its test fields is not 0
    Differs,   // shown when test[0] differs from test[1] or test[2] from test[3]
    Year2002,  // the levy row: only in the tax year that had the levy
};

// The constant whose rate a caption of the national insurance sheet shows.
enum class RowRate { None, MufhatAzmai, RagilAzmai, MufhatHeino, RagilHeino };

struct SheetRow {
    int block = 0;       // 0 the first (or only) block; 1 the second (spouse's rows, payment credits)
    int index = -1;      // lblDet index of the caption on the screen; -1 when the row has none
    const char* key = "";
    const char* screenCaption = "";
    const char* paperCaption = "";
    // The cells in column order. An empty slot (nullptr) is a column the row leaves blank.
    std::array<const char*, 8> fields{};
    // The fields whose sum is tested (NonZero, Differs); none: the row's own fields.
    std::array<const char*, 4> test{};
    RowShow show = RowShow::NonZero;
    int step = 250;            // twips the screen's running position grows after the row
    int paperColumn = 7;       // column of the caption on paper
    bool paperBold = false;    // the whole row is bold on paper
    const char* lineNumber = "";  // the form's line number printed beside the caption (summary sheet)
    RowRate rate = RowRate::None;  // the caption is followed by this rate (national insurance sheet)
    bool total = false;            // a total or summary row below the detail rows of its block
    const char* closing = "";      // closes the row after its last amount (the bracket of a "basis" row)
    unsigned screenOmits = 0;      // bit i: the screen leaves slot i out (paper prints it)
};

// The rows of a sheet, top to bottom (blocks in order).
std::span<const SheetRow> sheetRows(SheetId sheet);
// The row of a sheet with a key; nullptr when there is none.
const SheetRow* findSheetRow(SheetId sheet, std::string_view key);

// The value of a field of a sheet as a number (a date as its day number).
// Raises std::out_of_range for a name the sheet does not have.
double sheetValue(const NishumOutput& out, SheetId sheet, std::string_view field);

// Whether the row is shown (on screen) and printed (on paper).
bool rowShown(const NishumOutput& out, SheetId sheet, const SheetRow& row, int yearDoch);

}  // namespace zelmor
