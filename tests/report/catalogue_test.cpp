// The field catalogue: the columns that live in the second stored table, the
// null rule of stored values, and the shown totals.

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

#include "report/entry_layout.h"
#include "report/nishum_input.h"

namespace zelmor {
namespace {

std::string key(const FieldDef& f) { return std::string(f.sectionName) + "." + f.name; }

// Existing databases keep these columns in their second table.
TEST(Catalogue, SecondTableHoldsExactlyItsColumns) {
    const char* const columns[] = {
        "Rechush N067 N228 N328 N126 N226 N326 N141 N241 N341 N157 N257 N357 N142 N242 N342",
        "Pturot N256Revach20 N256Revach25 N184 N185 N186 N187 N309",
        "Nikuim N244 N245 N248 N249 N206 N207",
        "Nekudot N181 N182 N260_1 N260_2 N260_3 N260_4 N260_5 N260_6",
        "Zikuim N140 N240 N268 N269",
        "Tashlumim N294M N294F",
        "Klaliim isHechzerMas isBakashaNifrad isKerenHishtalmut isYozerBenemanut isNeheneBenemanut isIverOrNeche "
        "isShlitaNischar isZchuyotLoNischar isPeulaTichnunHayav isIskaotZdadimHul"};
    std::set<std::string> details1;
    for (const char* line : columns) {
        std::istringstream in(line);
        std::string section, name;
        in >> section;
        while (in >> name) details1.insert(section + "." + name);
    }
    ASSERT_EQ(details1.size(), 52u);
    for (const FieldDef& f : allFields()) {
        if (key(f) == "Nekudot.N260") {
            EXPECT_EQ(f.table, StoredTable::NoTable);  // worked out, never stored
            continue;
        }
        EXPECT_EQ(f.table == StoredTable::Details1, details1.count(key(f)) == 1) << key(f);
    }
}

TEST(Catalogue, NullRuleOnlyWhereTheStoredRowMayLackAValue) {
    for (const FieldDef& f : allFields()) {
        const bool textOrDate = f.type == FieldType::Text || f.type == FieldType::Date;
        const bool alwaysStored =
            f.section == SectionId::Pratim || f.section == SectionId::Yegia || f.section == SectionId::Klaliim;
        EXPECT_FALSE((textOrDate || alwaysStored) && f.nullable) << f.name;
    }
    EXPECT_TRUE(findField("Pturot", "N256")->nullable);
    EXPECT_TRUE(findField("Zikuim", "N036")->nullable);
}

// Every shown total adds two or more entry fields of its own section and type,
// and every derived field has its rule.
TEST(Catalogue, ShownTotalsAreWorkedOutFromTheirParts) {
    std::set<std::string> derived, ruled;
    for (const FieldDef& f : allFields())
        if (f.derived()) derived.insert(key(f));
    for (const DerivedTotal& t : derivedTotals()) {
        const char* sec = sectionDef(t.section).name;
        const FieldDef* total = findField(sec, t.total);
        ASSERT_NE(total, nullptr) << t.total;
        ruled.insert(key(*total));
        EXPECT_GE(t.parts.size(), 2u) << t.total;
        for (const char* part : t.parts) {
            const FieldDef* f = findField(sec, part);
            ASSERT_NE(f, nullptr) << t.total << " adds " << part;
            EXPECT_FALSE(f->derived()) << part;
            EXPECT_EQ(f->type, total->type) << part;
        }
    }
    EXPECT_EQ(derived, ruled);
    EXPECT_EQ(derived.size(), 15u);

    NishumInput n;
    n.Yegia.N150 = 100;
    n.Yegia.YegiaM = 5;
    n.Pturot.N309 = 7;
    n.Nekudot.N260_6 = 2;
    n.Tashlumim.N042F = 11;
    n.Tashlumim.N294M = 1000;  // turnover is no payment
    WorkOutDerived(n);
    EXPECT_EQ(n.Yegia.TTLM, 105);
    EXPECT_EQ(n.Pturot.N209, 7);
    EXPECT_EQ(n.Nekudot.N260, 2);
    EXPECT_EQ(n.Tashlumim.N042, 11);
    EXPECT_EQ(n.Tashlumim.TashTTLF, 11);
    EXPECT_EQ(n.Tashlumim.TashTTL, 11);
    EXPECT_EQ(n.Tashlumim.N294, 1000);

    // A sum out of range leaves the report as it was.
    n.Yegia.N158 = 2147483647;
    EXPECT_THROW(WorkOutDerived(n), OverflowError);
    EXPECT_EQ(n.Yegia.TTLM, 105);
}

}  // namespace
}  // namespace zelmor
