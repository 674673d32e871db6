// The row tables that both the screens and the paper of the result sheets read.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "results/sheet_rows.h"

using namespace zelmor;

TEST(SheetRows, EveryNamedFieldBelongsToItsSheetAndKeysAreUnique) {
    for (const SheetDef& sheet : allSheets()) {
        std::set<std::string> keys;
        ASSERT_FALSE(sheetRows(sheet.id).empty()) << sheet.name;
        auto known = [&](const char* f) {
            EXPECT_TRUE(!f || findSheetField(sheet.name, f)) << sheet.name << "." << f;
        };
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
    EXPECT_FALSE(shown(SheetId::CHachnasot, "N150"));
    out.Hachnasot.N150 = 1000;
    EXPECT_TRUE(shown(SheetId::CHachnasot, "N150"));
    out.Hachnasot.N170 = -1000;  // the two persons cancel out: the row hides
    EXPECT_FALSE(shown(SheetId::CHachnasot, "N150"));
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
