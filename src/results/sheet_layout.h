#pragma once
// How a result sheet is laid out, shared by its screen and its paper form:
// the titles, the column heads, the decimals of each cell, the captions made
// from values, and the walk that places the shown rows one under the other.
//
// Screen geometry is kept in two units. Vertical positions are twips of the
// running position (a row usually takes 250); horizontal boxes are thousandths
// of the sheet's width counted from its right edge, so that the screen lays out
// within whatever width it is given. Paper columns are those of the page
// printer (columns from the right edge).

#include <array>
#include <span>
#include <string>
#include <vector>

#include "report/medium.h"
#include "results/sheet_rows.h"

namespace zelmor {

// The year's figures the sheets show beside the calculation's own: the caller
// takes them from the year's constants.
struct SheetParams {
    int yearDoch = 0;
    double pointWorth = 0;                  // the yearly worth of one credit point
    std::array<double, 7> bracketRates{};   // the regular rate of each bracket, 0.1 for 10%
    std::array<double, 4> blRates{};        // national insurance: reduced and regular rate, self-employed then not working
};

// A box across the sheet, in thousandths of its width from the right edge.
struct Box {
    short from = 0;
    short to = 0;
};

// A column head: its text, where it stands on screen and on paper.
struct SheetHead {
    const char* text = "";
    Box box;                  // on screen
    double paperColumn = 0;   // on paper; 0: the head is not printed
    int line = 0;             // 0 the first line of heads, 1 the line under it
    bool paperUnderline = true;
};

// Text printed beside a cell (screen and paper alike), shown only when the
// row is shown and the slot holds a field.
struct SlotDecor {
    const char* before = "";   // stands before the value (to its right)
    const char* after = "";    // stands after the value (to its left)
    bool pointWorth = false;   // "before" is preceded by the worth of a credit point
    int onlyWithSlot = -1;     // shown only when this slot's value is not 0 (the deduction of a special rate)
};

// The screen's columns of one block of rows.
struct BlockLayout {
    Box caption{};                     // the caption labels
    std::array<Box, 8> cells{};        // each field slot of the rows
    std::array<int, 8> decimals{};     // each slot's decimals (credit points 2)
    std::array<SlotDecor, 8> decor{};
    std::span<const SheetHead> heads{};  // the heads over the block
    Box secondCaption{};               // a caption made from values shown twice (a bracket's rate per person)
    Box totalCaption{};                // where a total's caption stands when not in the caption box
    unsigned ruleSlots = 0;            // bit i: the rules of the block stand under slot i
};

// One step of the screen's walk down the sheet.
enum class WalkStep {
    Rows,    // every shown detail row of the block `block`
    Row,     // the row `key`, when shown
    Gap,     // the position grows by `twips`
    Rules,   // a rule under each amount column of `block` at the position
    Heads,   // the heads of `block` at the position (blocks after the first)
};

struct Walk {
    WalkStep step;
    int twips = 0;
    const char* key = "";      // Row; for Gap and Rules: taken only when this row is shown ("" always)
    int block = 0;
    int ruleWidth = 1;
};

// A button of the summary that opens a detail sheet, beside a row.
struct DetailButton {
    const char* rowKey;
    int page;
};

struct SheetLayout {
    SheetId id;
    const char* menuCaption;   // the entry of the sheets menu
    const char* screenTitle;   // the head of the screen
    const char* paperTitle;    // the title on paper
    bool titleWithYear;        // both titles are followed by the tax year
    int startY;                // the screen's first running position, twips
    std::span<const BlockLayout> blocks;
    std::span<const Walk> walk;
    std::span<const DetailButton> buttons;
};

const SheetLayout& sheetLayout(SheetId sheet);
// The function key that goes to a detail sheet (F3 for sheet 2 to F8 for sheet
// 7, as the summary's buttons say), or 0 for the summary and the national insurance.
int detailKeyNumber(SheetId sheet);
std::string screenTitle(SheetId sheet, const SheetParams& params);
std::string paperTitle(SheetId sheet, const SheetParams& params);

// The decimals of a slot of a row: 2 for credit points, else 0.
int cellDecimals(SheetId sheet, const SheetRow& row, int slot);
// The text of a cell: its field through the amount format with its decimals.
std::string cellText(const NishumOutput& out, SheetId sheet, const SheetRow& row, int slot);

// The caption of a row, with what is made from values: the interest date (and
// the exemption, on paper), the date of the balance, a national insurance
// rate, a bracket's rate (a bracket row has no caption of its own).
std::string rowCaption(const NishumOutput& out, SheetId sheet, const SheetRow& row, Medium medium,
                       const SheetParams& params);
// The screen's exemption text beside the interest ("" when there is no exemption).
std::string exemptionText(const sheets::CMain& main);

// A placed item of the screen's walk.
struct Placed {
    WalkStep what;        // Row, Rules or Heads
    const SheetRow* row;  // Row: the row
    int block;
    int y;                // twips
    int ruleWidth;
};

// Walks the sheet: every shown row with its position (the hidden rows take no
// place, so those below close up), the rules and the heads between blocks.
// The paper reads the same walk for which rows it prints.
std::vector<Placed> placeRows(const NishumOutput& out, SheetId sheet, const SheetParams& params);

// The rows the walk shows, of one block, details only or all.
std::vector<const SheetRow*> shownRows(const NishumOutput& out, SheetId sheet, const SheetParams& params, int block,
                                       bool detailsOnly);

}  // namespace zelmor
