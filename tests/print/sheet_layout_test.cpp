// The sheets' row tables and layout data, which screen and paper share: rows
// name fields of their sheet and show by the sums of their fields, the walk
// places every row it can show in order, the boxes of a block do not overlap,
// and screen captions made from values read right.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "results/sheet_layout.h"

using namespace zelmor;

namespace {

const SheetParams kParams{.yearDoch = 2015,
                          .pointWorth = 2616,
                          .bracketRates = {0.1, 0.14, 0.21, 0.31, 0.34, 0.48, 0.5},
                          .blRates = {0.0287, 0.0983, 0.0719, 0.1216}};

// Every field of every sheet at `v` (dates too): every row that tests a sum is shown.
NishumOutput filled(double v) {
    NishumOutput out;
    for (const SheetFieldDef& f : allSheetFields()) switch (f.type) {
            case SheetFieldType::Amount: f.ref<Amount>(out) = static_cast<std::int32_t>(v); break;
            case SheetFieldType::Double: f.ref<double>(out) = v; break;
            case SheetFieldType::Date: f.ref<Date>(out) = *Date::fromYmd(2016, 6, 30); break;
        }
    return out;
}

bool overlap(Box a, Box b) { return a.from < b.to && b.from < a.to; }

}  // namespace

TEST(SheetRows, EveryNamedFieldBelongsToItsSheetAndKeysAreUnique) {
    for (const SheetDef& sheet : allSheets()) {
        std::set<std::string> keys;
        ASSERT_FALSE(sheetRows(sheet.id).empty()) << sheet.name;
        auto known = [&](const char* f) { EXPECT_TRUE(!f || findSheetField(sheet.name, f)) << sheet.name << "." << f; };
        for (const SheetRow& row : sheetRows(sheet.id)) {
            EXPECT_TRUE(keys.insert(row.key).second) << sheet.name << " repeats the key " << row.key;
            std::ranges::for_each(row.fields, known);
            std::ranges::for_each(row.test, known);
        }
    }
}

TEST(SheetRows, ShowTestsReadTheSumsOfTheirFields) {
    NishumOutput out;
    auto shown = [&](SheetId sheet, const char* key, int year = 2015) {
        return rowShown(out, sheet, *findSheetRow(sheet, key), year);
    };
    // A deduction that wipes out the income still shows the special-rate row.
    out.Meyuchad.N214B = 500;
    EXPECT_FALSE(shown(SheetId::CMeyuchad, "214B"));
    out.Meyuchad.NIKUY_214B = 500;
    EXPECT_TRUE(shown(SheetId::CMeyuchad, "214B"));
    // Rent has no gross: its net amount alone decides, not its rate.
    out.Meyuchad.RATE_222 = 10;
    EXPECT_FALSE(shown(SheetId::CMeyuchad, "222"));
    out.Meyuchad.NET_222 = 1;
    EXPECT_TRUE(shown(SheetId::CMeyuchad, "222"));
    // A points row with one key tests the registered spouse's credit only.
    out.Zikuim.ZIKUY_028M = 0.5;
    EXPECT_TRUE(shown(SheetId::CZikuim, "028M"));
    // A total shows where it differs from the sum it repeats.
    out.Nikuim.TTLM1 = out.Nikuim.TTLM3 = 700;
    EXPECT_FALSE(shown(SheetId::CNikuim, "TTL3"));
    out.Nikuim.TTLF3 = 1;
    EXPECT_TRUE(shown(SheetId::CNikuim, "TTL3"));
    EXPECT_FALSE(shown(SheetId::CMain, "Hetel"));
    EXPECT_TRUE(shown(SheetId::CMain, "Hetel", 2002));
}

TEST(SheetLayout, TheWalkPlacesEveryRowOnceInOrder) {
    NishumOutput out = filled(1);
    out.Nikuim.TTLM3 = 2;  // the last deductions total shows only when it differs
    for (const SheetDef& s : allSheets()) {
        SCOPED_TRACE(s.name);
        int last = -1, rows = 0;
        for (const Placed& p : placeRows(out, s.id, kParams)) {
            if (p.what != WalkStep::Row) continue;
            EXPECT_GT(p.y, last) << p.row->key;
            last = p.y;
            ++rows;
        }
        // Every row but the levy of another tax year.
        EXPECT_EQ(rows, std::ranges::count_if(sheetRows(s.id), [](const SheetRow& r) { return r.show != RowShow::Year2002; }));
        // A gap or rule that names no row would silently go.
        for (const Walk& w : sheetLayout(s.id).walk) EXPECT_TRUE(!*w.key || findSheetRow(s.id, w.key)) << w.key;
    }
}

TEST(SheetLayout, BoxesOfABlockDoNotOverlap) {
    for (const SheetDef& s : allSheets()) {
        const SheetLayout& l = sheetLayout(s.id);
        for (std::size_t b = 0; b < l.blocks.size(); ++b) {
            SCOPED_TRACE(std::string(s.name) + " block " + std::to_string(b));
            const BlockLayout& block = l.blocks[b];
            // The cells of one row stand side by side.
            for (const SheetRow& r : sheetRows(s.id)) {
                if (r.block != static_cast<int>(b)) continue;
                std::vector<Box> used;
                for (std::size_t slot = 0; slot < 8; ++slot)
                    if (r.fields[slot]) used.push_back(block.cells[slot]);
                for (std::size_t i = 0; i < used.size(); ++i) {
                    EXPECT_LT(used[i].from, used[i].to) << r.key;
                    EXPECT_GE(used[i].from, 0);
                    EXPECT_LE(used[i].to, 1000);
                    for (std::size_t j = i + 1; j < used.size(); ++j) EXPECT_FALSE(overlap(used[i], used[j])) << r.key;
                }
            }
            std::map<int, std::vector<Box>> headLines;
            for (const SheetHead& h : block.heads) {
                for (const Box& other : headLines[h.line]) EXPECT_FALSE(overlap(h.box, other)) << h.text;
                headLines[h.line].push_back(h.box);
            }
        }
    }
}

// Screen texts made from values; the paper's are read back in the paper tests.
TEST(SheetLayout, ScreenTitlesAndCaptionsMadeFromValues) {
    EXPECT_EQ(screenTitle(SheetId::CTashlumim, kParams), "תשלומים על חשבון המס לשנת 2015");  // no number on screen
    NishumOutput out;
    EXPECT_EQ(rowCaption(out, SheetId::CBL, *findSheetRow(SheetId::CBL, "AZMAI_MUF"), Medium::Screen, kParams),
              "\"עובד עצמאי\" 2.87%");
    out.Main.RibitDate = *Date::fromYmd(2016, 6, 30);
    EXPECT_EQ(rowCaption(out, SheetId::CMain, *findSheetRow(SheetId::CMain, "Ribit"), Medium::Screen, kParams),
              "ריבית והצמדה ליום");
}
