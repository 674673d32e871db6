// The row tables that both the screens and the paper of the result sheets read.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "results/sheet_rows.h"

using namespace zelmor;

TEST(SheetRows, EveryNamedFieldBelongsToItsSheetAndKeysAreUnique) {
    for (const SheetDef& sheet : allSheets()) {
        std::set<std::string> keys;
        ASSERT_FALSE(sheetRows(sheet.id).empty()) << sheet.name;
        for (const SheetRow& row : sheetRows(sheet.id)) {
            EXPECT_TRUE(keys.insert(row.key).second) << sheet.name << " repeats the key " << row.key;
            for (const char* f : row.fields) {
                if (f) {
                    EXPECT_NE(findSheetField(sheet.name, f), nullptr) << sheet.name << "." << f;
                }
            }
            for (const char* f : row.test) {
                if (f) {
                    EXPECT_NE(findSheetField(sheet.name, f), nullptr) << sheet.name << "." << f;
                }
            }
        }
    }
}

TEST(SheetRows, ShowTestsReadTheSumsOfTheirFields) {
    NishumOutput out;
    const SheetRow& business = *findSheetRow(SheetId::CHachnasot, "N150");
    EXPECT_FALSE(rowShown(out, SheetId::CHachnasot, business, 2015));
    out.Hachnasot.N150 = 1000;
    EXPECT_TRUE(rowShown(out, SheetId::CHachnasot, business, 2015));
    out.Hachnasot.N170 = -1000;  // the two persons cancel out: the row hides
    EXPECT_FALSE(rowShown(out, SheetId::CHachnasot, business, 2015));

    // A deduction that wipes out the income still shows the special-rate row.
    const SheetRow& patent = *findSheetRow(SheetId::CMeyuchad, "214B");
    out.Meyuchad.N214B = 500;
    EXPECT_FALSE(rowShown(out, SheetId::CMeyuchad, patent, 2015));
    out.Meyuchad.NIKUY_214B = 500;
    EXPECT_TRUE(rowShown(out, SheetId::CMeyuchad, patent, 2015));
    // Rent has no gross: its net amount alone decides, not its rate.
    const SheetRow& rent = *findSheetRow(SheetId::CMeyuchad, "222");
    out.Meyuchad.RATE_222 = 10;
    EXPECT_FALSE(rowShown(out, SheetId::CMeyuchad, rent, 2015));
    out.Meyuchad.NET_222 = 1;
    EXPECT_TRUE(rowShown(out, SheetId::CMeyuchad, rent, 2015));

    // A points row with one key tests the registered spouse's credit only.
    const SheetRow& alimony = *findSheetRow(SheetId::CZikuim, "028M");
    EXPECT_EQ(alimony.fields[2], nullptr);
    out.Zikuim.ZIKUY_028M = 0.5;
    EXPECT_TRUE(rowShown(out, SheetId::CZikuim, alimony, 2015));

    const SheetRow& regular = *findSheetRow(SheetId::CNikuim, "TTL3");
    out.Nikuim.TTLM1 = out.Nikuim.TTLM3 = 700;
    EXPECT_FALSE(rowShown(out, SheetId::CNikuim, regular, 2015));
    out.Nikuim.TTLF3 = 1;
    EXPECT_TRUE(rowShown(out, SheetId::CNikuim, regular, 2015));

    const SheetRow& levy = *findSheetRow(SheetId::CMain, "Hetel");
    EXPECT_FALSE(rowShown(out, SheetId::CMain, levy, 2015));
    EXPECT_TRUE(rowShown(out, SheetId::CMain, levy, 2002));
}

TEST(SheetRows, CaptionsOfScreenAndPaperDifferWhereTheFormsDo) {
    EXPECT_STREQ(findSheetRow(SheetId::CNikuim, "TTL3")->paperCaption, "סה\"כ ניכויים מותרים");
    EXPECT_STREQ(findSheetRow(SheetId::CBL, "HEINO_TTL")->paperCaption, "סה\"כ כ\"אינו עובד");
    EXPECT_STREQ(findSheetRow(SheetId::CBL, "HEINO_TTL")->screenCaption, "סה\"כ כ\"אינו עובד\"");
    // The spouse's block of the special rates has no lines 22 to 24.
    for (const char* key : {"222", "225", "227"}) EXPECT_EQ(findSheetRow(SheetId::CMeyuchad, key)->block, 0);
    EXPECT_THROW(sheetValue(NishumOutput{}, SheetId::CMain, "NoSuchField"), std::out_of_range);
}
