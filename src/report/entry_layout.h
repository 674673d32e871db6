#pragma once
// How the nine sections are laid out, for the entry screens and for the
// printed report alike.
//
// How a screen reads it:
//   entryLayout(section).blocks      the blocks, top to bottom. A block has a
//                                    heading, the form's line range ("סעיפים 1-7")
//                                    and its column heads (right to left: both
//                                    spouses, M, F, total).
//   block.rows                       the rows of the block, top to bottom. A row
//                                    has a caption (shown at the right) and cells.
//   row.cells                        the fields of the row, each under the column
//                                    of its `column` person; Person::None where a
//                                    cell stands in no column (a lone field, the
//                                    label/field pairs and options of the form-like
//                                    pages), one after the other. A cell with a
//                                    caption of its own shows it beside it (a label,
//                                    an option's text); else the row's caption
//                                    serves, and the catalogue's form code ("150:")
//                                    stands beside the field.
// Everything carries a screen text and a paper text (Words, "" where a medium
// shows none); a block, row or cell whose `medium` is Screen or Paper belongs
// to that medium alone, and a screen skips the Paper ones. A row without cells
// is a plain heading or note. The look of a field (format, mask, list, option
// group, fixed prefix, female wording) is in the field catalogue (FieldDef);
// the tab order is the catalogue's tab place (Enter follows ascending tab
// place), not the order of cells here.

#include <cstdint>
#include <span>

#include "report/nishum_input.h"

namespace zelmor {

enum class Medium : std::uint8_t { Both, Screen, Paper };
inline bool onScreen(Medium m) { return m != Medium::Paper; }
inline bool onPaper(Medium m) { return m != Medium::Screen; }

// A text as the screen words it and as the paper does; "" where a medium shows none.
struct Words {
    const char* screen = "";
    const char* paper = "";
};

struct EntryCell {
    const char* field = nullptr;  // a field of the section; nullptr: a text only
    Person column = Person::None; // the column the cell stands under
    Words caption = {};           // the cell's own caption, beside it ("" : the row's caption serves)
    Medium medium = Medium::Both;
};

struct EntryRow {
    Words caption;
    std::span<const EntryCell> cells;
    Medium medium = Medium::Both;
};

struct ColumnHead {
    Person column;
    Words text;
    const char* sub = "";  // a second line under the head ("הסכום ששולם"), or ""
};

struct EntryBlock {
    Words heading;  // "ג. הכנסות מיגיעה אישית"; a plain heading on the form-like pages
    Words lines;    // "סעיפים 1-7", or ""
    std::span<const ColumnHead> columns;
    std::span<const EntryRow> rows;
    Medium medium = Medium::Both;
};

struct EntryPageLayout {
    SectionId section;
    std::span<const EntryBlock> blocks;
};

const EntryPageLayout& entryLayout(SectionId section);

// The usual column heads: Both "שני בני הזוג", M ""בן הזוג הרשום"" (with its
// quotation marks), F "בן/בת הזוג", Total "סה"כ"; "" for None.
const char* columnHead(Person column);

// Where a field stands: its block and row (screen and paper share them), or
// nulls when the layout does not place it.
struct FieldPlace {
    const EntryBlock* block = nullptr;
    const EntryRow* row = nullptr;
    const EntryCell* cell = nullptr;
};
FieldPlace findPlace(SectionId section, const char* field);

// --- The lists fields draw from ---------------------------------------------

// The entries of a list, in order. A field holds the index of its entry
// (Degree, Settlement) or the number the entry shows (Rate, Months). For Rate
// this is every rate there is; the entries on show are rateEntries(...).
std::span<const char* const> listEntries(ListId list);
// The rates of line 73 follow the settlement chosen in the first list:
// 1 gives "13","25"; 2 gives "13","16","20","25"; anything else none.
std::span<const char* const> rateEntries(int settlementIndex);
// The entry of the list at `index` on paper: "" for an index outside the list
// and for the empty first entries.
const char* listText(ListId list, int index);

// --- Shown totals --------------------------------------------------------------

// A total that the screen shows and the field holds: the sum of its parts,
// all fields of the same section.
struct DerivedTotal {
    SectionId section;
    const char* total;
    std::span<const char* const> parts;
};
std::span<const DerivedTotal> derivedTotals();
// The sum of a total's parts in the report (raises OverflowError when it leaves
// the range of the total's type).
std::int32_t sumOfParts(const DerivedTotal& total, const NishumInput& report);

}  // namespace zelmor
