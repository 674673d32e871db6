#include "results/sheet_layout.h"

#include <cstdio>
#include <stdexcept>

#include "core/values.h"

namespace zelmor {
namespace {

const char* const kHeadM = "\"בן הזוג הרשום\"";
const char* const kHeadF = "בן/בת הזוג";
using Boxes = std::array<Box, 8>;
using Decimals = std::array<int, 8>;
using Decor = std::array<SlotDecor, 8>;

// Page 1. Slots: M, F, the joint amount, the date of the row (the interest
// date is an entry field on screen).
const SheetHead kMainHeads[] = {
    {.text = "פירוט", .box = {0, 400}, .paperColumn = 38},
    {.text = kHeadM, .box = {410, 560}, .paperColumn = 45},
    {.text = kHeadF, .box = {590, 740}, .paperColumn = 70},
};
const BlockLayout kMainBlocks[] = {
    {.caption = {0, 400}, .cells = Boxes{Box{410, 560}, {590, 740}, {500, 650}, {210, 330}}, .heads = kMainHeads},
};
const Walk kMainWalk[] = {{WalkStep::Rows}};
const DetailButton kMainButtons[] = {{"Hachnasot", 2}, {"Nikuim", 3},   {"MasRagil", 4},
                                     {"MasMeyuchad", 5}, {"Zikuim", 6}, {"Tashlumim", 7}};

// Page 2. Slots: M, F.
const SheetHead kHachnasotHeads[] = {
    {.text = kHeadM, .box = {580, 750}, .paperColumn = 40},
    {.text = kHeadF, .box = {790, 960}, .paperColumn = 65},
};
const BlockLayout kHachnasotBlocks[] = {
    {.caption = {0, 560}, .cells = Boxes{Box{580, 750}, {790, 960}}, .heads = kHachnasotHeads, .ruleSlots = 0b11},
};
const Walk kHachnasotWalk[] = {
    {WalkStep::Rows},          {WalkStep::Gap, 100},      {WalkStep::Rules}, {WalkStep::Gap, 100},
    {WalkStep::Row, 0, "TTL"}, {WalkStep::Rules, 0, "", 0, 2},
};

// Page 3. Slots: paid M, allowed M, paid F, allowed F.
const SheetHead kNikuimHeads[] = {
    {.text = kHeadM, .box = {410, 660}, .paperColumn = 40, .paperUnderline = false},
    {.text = kHeadF, .box = {700, 950}, .paperColumn = 65, .paperUnderline = false},
    {.text = "סכום ששולם", .box = {410, 530}, .paperColumn = 35, .line = 1},
    {.text = "ניכוי מותר", .box = {540, 660}, .paperColumn = 45, .line = 1},
    {.text = "סכום ששולם", .box = {700, 820}, .paperColumn = 60, .line = 1},
    {.text = "ניכוי מותר", .box = {830, 950}, .paperColumn = 70, .line = 1},
};
const BlockLayout kNikuimBlocks[] = {
    {.caption = {0, 400}, .cells = Boxes{Box{410, 530}, {540, 660}, {700, 820}, {830, 950}}, .heads = kNikuimHeads,
     .ruleSlots = 0b1010},
};
const Walk kNikuimWalk[] = {
    {WalkStep::Rows},
    {WalkStep::Gap, 100},
    {WalkStep::Rules},
    {WalkStep::Gap, 300},
    {WalkStep::Row, 0, "TTL1"},
    {WalkStep::Row, 0, "Pachot"},
    {WalkStep::Row, 0, "TTL2"},
    {WalkStep::Row, 0, "TTL0"},
    {WalkStep::Gap, 100},
    // The allowed part of the regular-rate income stands under its own rules,
    // only when it differs from the first total.
    {WalkStep::Rules, 0, "TTL3"},
    {WalkStep::Gap, 300, "TTL3"},
    {WalkStep::Row, 0, "TTL3"},
    {WalkStep::Rules, 0, "", 0, 2},
};

// Page 4. Slots: income M, tax M, income F, tax F; the bracket's rate stands
// between income and tax of each person.
const SheetHead kHishuvHeads[] = {
    {.text = kHeadM, .box = {70, 460}, .paperColumn = 18, .paperUnderline = false},
    {.text = kHeadF, .box = {520, 910}, .paperColumn = 58, .paperUnderline = false},
    {.text = "סכום ההכנסה", .box = {70, 210}, .paperColumn = 10, .line = 1},
    {.text = "שיעור מס", .box = {220, 310}, .paperColumn = 20, .line = 1},
    {.text = "סכום המס", .box = {320, 460}, .paperColumn = 30, .line = 1},
    {.text = "סכום ההכנסה", .box = {520, 660}, .paperColumn = 50, .line = 1},
    {.text = "שיעור מס", .box = {670, 760}, .paperColumn = 60, .line = 1},
    {.text = "סכום המס", .box = {770, 910}, .paperColumn = 70, .line = 1},
};
const BlockLayout kHishuvBlocks[] = {
    {.caption = {220, 310},
     .cells = Boxes{Box{70, 210}, {320, 460}, {520, 660}, {770, 910}},
     .heads = kHishuvHeads,
     .secondCaption = {670, 760},
     .totalCaption = {0, 65},
     .ruleSlots = 0b1111},
};
const Walk kHishuvWalk[] = {
    {WalkStep::Rows},          {WalkStep::Gap, 50},       {WalkStep::Rules}, {WalkStep::Gap, 100},
    {WalkStep::Row, 0, "TTL"}, {WalkStep::Rules, 0, "", 0, 2},
};

// Page 5. Slots: gross, deduction, net, rate, tax. The gross and the deduction
// show only when there is a deduction.
const SheetHead kMeyuchadHeadsM[] = {
    {.text = kHeadM, .box = {0, 250}, .paperColumn = 7},
    {.text = "סכום ההכנסה", .box = {550, 670}, .paperColumn = 55},
    {.text = "שעור", .box = {680, 790}, .paperColumn = 65},
    {.text = "סכום המס", .box = {800, 950}, .paperColumn = 75},
};
const SheetHead kMeyuchadHeadsF[] = {
    {.text = kHeadF, .box = {0, 250}, .paperColumn = 7},
    {.text = "סכום ההכנסה", .box = {550, 670}, .paperColumn = 55},
    {.text = "שעור", .box = {680, 790}, .paperColumn = 65},
    {.text = "סכום המס", .box = {800, 950}, .paperColumn = 75},
};
constexpr Boxes kMeyuchadSlots{Box{260, 370}, {430, 530}, {550, 670}, {705, 728}, {800, 950}};
constexpr Decor kMeyuchadDecor{SlotDecor{.onlyWithSlot = 1}, {.before = "בניכוי", .onlyWithSlot = 1}, {},
                               {.before = "X", .after = "% ="}, {}};
const BlockLayout kMeyuchadBlocks[] = {
    {.caption = {0, 250}, .cells = kMeyuchadSlots, .decor = kMeyuchadDecor, .heads = kMeyuchadHeadsM,
     .ruleSlots = 0b10100},
    {.caption = {0, 250}, .cells = kMeyuchadSlots, .decor = kMeyuchadDecor, .heads = kMeyuchadHeadsF,
     .ruleSlots = 0b10100},
};
const Walk kMeyuchadWalk[] = {
    {WalkStep::Rows, 0, "", 0},  {WalkStep::Gap, 50},     {WalkStep::Rules, 0, "", 0}, {WalkStep::Gap, 100},
    {WalkStep::Row, 0, "TTLM"},  {WalkStep::Heads, 0, "", 1}, {WalkStep::Gap, 350},     {WalkStep::Rows, 0, "", 1},
    {WalkStep::Gap, 50},         {WalkStep::Rules, 0, "", 1}, {WalkStep::Gap, 100},     {WalkStep::Row, 0, "TTLF"},
};

// Page 6. Points, slots: points M, credit M, points F, credit F; each points
// cell follows the worth of a point and "X". Payments, slots: payment, allowed
// part, rate, credit, for M then F.
const SheetHead kZikuimPointHeads[] = {
    {.text = kHeadM, .box = {300, 570}, .paperColumn = 23},
    {.text = kHeadF, .box = {650, 920}, .paperColumn = 58},
};
const SheetHead kZikuimPaymentHeads[] = {
    {.text = "תשלום", .box = {240, 330}, .paperColumn = 19},   {.text = "הותר", .box = {335, 425}, .paperColumn = 27},
    {.text = "%", .box = {430, 470}, .paperColumn = 37},       {.text = "תשלום", .box = {590, 680}, .paperColumn = 52},
    {.text = "הותר", .box = {685, 775}, .paperColumn = 62},    {.text = "%", .box = {780, 820}, .paperColumn = 72},
};
constexpr SlotDecor kPoints{.before = "X", .after = "=", .pointWorth = true};
const BlockLayout kZikuimBlocks[] = {
    {.caption = {0, 300},
     .cells = Boxes{Box{400, 450}, {480, 570}, {750, 800}, {830, 920}},
     .decimals = Decimals{2, 0, 2, 0},
     .decor = Decor{kPoints, {}, kPoints, {}},
     .heads = kZikuimPointHeads},
    {.caption = {0, 230},
     .cells = Boxes{Box{240, 330}, {335, 425}, {430, 470}, {480, 570}, {590, 680}, {685, 775}, {780, 820}, {830, 920}},
     .heads = kZikuimPaymentHeads,
     .ruleSlots = 0b10001000},
};
const Walk kZikuimWalk[] = {
    {WalkStep::Rows, 0, "", 0}, {WalkStep::Gap, 350},        {WalkStep::Heads, 0, "", 1}, {WalkStep::Gap, 350},
    {WalkStep::Rows, 0, "", 1}, {WalkStep::Row, 0, "ODEF", 1}, {WalkStep::Gap, 50},       {WalkStep::Rules, 0, "", 1},
    {WalkStep::Gap, 100},       {WalkStep::Row, 0, "TTL", 1},  {WalkStep::Rules, 0, "", 1, 2},
};

// Page 7. Slots: M, F, total.
const SheetHead kTashlumimHeads[] = {
    {.text = kHeadM, .box = {450, 600}, .paperColumn = 40},
    {.text = kHeadF, .box = {620, 770}, .paperColumn = 55},
    {.text = "סה\"כ", .box = {790, 940}, .paperColumn = 70},
};
const BlockLayout kTashlumimBlocks[] = {
    {.caption = {0, 430}, .cells = Boxes{Box{450, 600}, {620, 770}, {790, 940}}, .heads = kTashlumimHeads, .ruleSlots = 0b111},
};
const Walk kTotalsWalk[] = {
    {WalkStep::Rows}, {WalkStep::Gap, 50}, {WalkStep::Rules}, {WalkStep::Gap, 100}, {WalkStep::Row, 0, "TTL"},
    {WalkStep::Rules, 0, "", 0, 2},
};

// Page 8. Slots: income M, contribution M, income F, contribution F.
const SheetHead kBLHeads[] = {
    {.text = kHeadM, .box = {340, 590}, .paperColumn = 40, .paperUnderline = false},
    {.text = kHeadF, .box = {620, 870}, .paperColumn = 68, .paperUnderline = false},
    {.text = "הכנסה", .box = {340, 460}, .paperColumn = 35, .line = 1},
    {.text = "דמי ביטוח", .box = {470, 590}, .paperColumn = 47, .line = 1},
    {.text = "הכנסה", .box = {620, 740}, .paperColumn = 63, .line = 1},
    {.text = "דמי ביטוח", .box = {750, 870}, .paperColumn = 75, .line = 1},
};
const BlockLayout kBLBlocks[] = {
    {.caption = {0, 330}, .cells = Boxes{Box{340, 460}, {470, 590}, {620, 740}, {750, 870}}, .heads = kBLHeads, .ruleSlots = 0b1111},
};
const Walk kBLWalk[] = {
    {WalkStep::Rows}, {WalkStep::Gap, 50}, {WalkStep::Rules}, {WalkStep::Gap, 100}, {WalkStep::Row, 0, "TOTAL"},
    {WalkStep::Rules, 0, "", 0, 2},
};

// By sheet: the menu entry, the screen's and the paper's titles, whether the
// year follows them, the first position, and the sheet's blocks, walk and buttons.
const SheetLayout kLayouts[] = {
    {SheetId::CMain, "כללי", "חישוב המס המגיע לשנת ", "חישוב המס המגיע לשנת ", true, 500, kMainBlocks,
     kMainWalk, kMainButtons},
    {SheetId::CHachnasot, "הכנסות בשיעור מס רגיל", "הכנסות בשיעורי מס רגילים", "1. הכנסות בשיעורי מס רגילים",
     false, 600, kHachnasotBlocks, kHachnasotWalk, {}},
    {SheetId::CNikuim, "ניכויים מותרים", "ניכויים מותרים", "2. ניכויים מותרים", false, 1000, kNikuimBlocks,
     kNikuimWalk, {}},
    {SheetId::CHishuv, "מס מגיע על הכנסות בשיעור מס רגיל", "מס מגיע על הכנסות בשיעור רגיל",
     "3. מס מגיע על הכנסות בשיעור רגיל", false, 1800, kHishuvBlocks, kHishuvWalk, {}},
    {SheetId::CMeyuchad, "מס מגיע על הכנסות בשיעור מס מיוחד", "מס מגיע על הכנסות בשיעורי מס מיוחדים",
     "4. מס מגיע על הכנסות בשיעורי מס מיוחדים", false, 600, kMeyuchadBlocks, kMeyuchadWalk, {}},
    {SheetId::CZikuim, "זיכויים ממס", "זיכויים ממס", "5. זיכויים ממס", false, 250, kZikuimBlocks, kZikuimWalk, {}},
    {SheetId::CTashlumim, "תשלומים על חשבון המס", "תשלומים על חשבון המס לשנת ", "6. תשלומים על חשבון המס לשנת ",
     true, 500, kTashlumimBlocks, kTotalsWalk, {}},
    {SheetId::CBL, "חישוב ביטוח לאומי", "חבות משוערת בדמי ביטוח לאומי", "חבות משוערת בדמי ביטוח לאומי", false, 750,
     kBLBlocks, kBLWalk, {}},
};

std::string withYear(const char* title, bool year, const SheetParams& params) {
    std::string t = title;
    if (year) t += std::to_string(params.yearDoch);
    return t;
}

// A rate as a percentage with two decimals: 0.1 -> "10.00%".
std::string percentText(double rate) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.2f%%", rate * 100);
    return buf;
}

double blRate(const SheetParams& params, RowRate rate) {
    switch (rate) {
        case RowRate::MufhatAzmai: return params.blRates[0];
        case RowRate::RagilAzmai: return params.blRates[1];
        case RowRate::MufhatHeino: return params.blRates[2];
        case RowRate::RagilHeino: return params.blRates[3];
        case RowRate::None: break;
    }
    return 0;
}

std::string dateOf(const NishumOutput& out, SheetId sheet, const char* field) {
    return FormatDate(Date::fromSerial(static_cast<std::int32_t>(sheetValue(out, sheet, field))));
}

}  // namespace

const SheetLayout& sheetLayout(SheetId sheet) {
    for (const SheetLayout& l : kLayouts)
        if (l.id == sheet) return l;
    throw std::out_of_range("no such sheet");
}

int detailKeyNumber(SheetId sheet) {
    const int n = static_cast<int>(sheet);
    return n >= 2 && n <= 7 ? n + 1 : 0;
}

std::string screenTitle(SheetId sheet, const SheetParams& params) {
    const SheetLayout& l = sheetLayout(sheet);
    return withYear(l.screenTitle, l.titleWithYear, params);
}

std::string paperTitle(SheetId sheet, const SheetParams& params) {
    const SheetLayout& l = sheetLayout(sheet);
    return withYear(l.paperTitle, l.titleWithYear, params);
}

int cellDecimals(SheetId sheet, const SheetRow& row, int slot) {
    const auto blocks = sheetLayout(sheet).blocks;
    const BlockLayout& b = blocks[static_cast<std::size_t>(row.block) < blocks.size() ? row.block : 0];
    return b.decimals[static_cast<std::size_t>(slot)];
}

std::string cellText(const NishumOutput& out, SheetId sheet, const SheetRow& row, int slot) {
    const char* field = row.fields[static_cast<std::size_t>(slot)];
    if (!field) return {};
    return FormatAmount(sheetValue(out, sheet, field), cellDecimals(sheet, row, slot));
}

std::string exemptionText(const sheets::CMain& main) {
    return main.PtorRibit.value() != 0 ? "בניכוי פטור " + FormatAmount(main.PtorRibit.value()) : std::string();
}

std::string rowCaption(const NishumOutput& out, SheetId sheet, const SheetRow& row, Medium medium,
                       const SheetParams& params) {
    std::string caption = medium == Medium::Screen ? row.screenCaption : row.paperCaption;
    if (row.rate != RowRate::None) return caption + percentText(blRate(params, row.rate));
    if (sheet == SheetId::CHishuv && !row.total) {
        // A bracket row is captioned by its rate; the key is the bracket's number.
        const int bracket = std::stoi(row.key);
        return percentText(params.bracketRates[static_cast<std::size_t>(bracket - 1)]);
    }
    // On paper the date of an interest or balance row follows its caption;
    // on screen it stands in a field of its own.
    if (medium == Medium::Paper && row.fields[3] && sheet == SheetId::CMain) {
        caption += dateOf(out, sheet, row.fields[3]);
        if (std::string_view(row.key) == "Ribit" && out.Main.PtorRibit.value() != 0)
            caption += " " + exemptionText(out.Main);
    }
    return caption;
}

std::vector<Placed> placeRows(const NishumOutput& out, SheetId sheet, const SheetParams& params) {
    const SheetLayout& layout = sheetLayout(sheet);
    const auto rows = sheetRows(sheet);
    auto shown = [&](const SheetRow& r) { return rowShown(out, sheet, r, params.yearDoch); };
    auto keyShown = [&](const char* key) {
        if (!*key) return true;
        const SheetRow* r = findSheetRow(sheet, key);
        return r && shown(*r);
    };
    std::vector<Placed> placed;
    int y = layout.startY;
    auto place = [&](const SheetRow& r) {
        placed.push_back({WalkStep::Row, &r, r.block, y, 0});
        y += r.step;
    };
    for (const Walk& w : layout.walk) {
        switch (w.step) {
            case WalkStep::Rows:
                for (const SheetRow& r : rows)
                    if (r.block == w.block && !r.total && shown(r)) place(r);
                break;
            case WalkStep::Row:
                if (const SheetRow* r = findSheetRow(sheet, w.key); r && shown(*r)) place(*r);
                break;
            case WalkStep::Gap:
                if (keyShown(w.key)) y += w.twips;
                break;
            case WalkStep::Rules:
                if (keyShown(w.key)) placed.push_back({WalkStep::Rules, nullptr, w.block, y, w.ruleWidth});
                break;
            case WalkStep::Heads:
                placed.push_back({WalkStep::Heads, nullptr, w.block, y, 0});
                break;
        }
    }
    return placed;
}

std::vector<const SheetRow*> shownRows(const NishumOutput& out, SheetId sheet, const SheetParams& params, int block,
                                       bool detailsOnly) {
    std::vector<const SheetRow*> rows;
    for (const Placed& p : placeRows(out, sheet, params))
        if (p.what == WalkStep::Row && p.block == block && !(detailsOnly && p.row->total)) rows.push_back(p.row);
    return rows;
}

}  // namespace zelmor
