// The field catalogue against the form: members in their declaration order,
// the columns that live in the second table, the shown totals.

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "report/entry_layout.h"
#include "report/nishum_input.h"

namespace zelmor {
namespace {

std::vector<std::string> names(SectionId id) {
    std::vector<std::string> out;
    for (const FieldDef& f : sectionFields(id)) out.push_back(f.name);
    return out;
}

TEST(Catalogue, SectionsInPageOrderWithTheirMemberCounts) {
    const std::vector<std::pair<const char*, std::size_t>> expected = {
        {"Pratim", 40}, {"Yegia", 30},   {"Rechush", 39},   {"Pturot", 29}, {"Nikuim", 22},
        {"Nekudot", 24}, {"Zikuim", 23}, {"Tashlumim", 27}, {"Klaliim", 34}};
    ASSERT_EQ(allSections().size(), expected.size());
    std::size_t total = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_STREQ(allSections()[i].name, expected[i].first);
        EXPECT_EQ(sectionFields(allSections()[i].id).size(), expected[i].second) << expected[i].first;
        total += expected[i].second;
    }
    EXPECT_EQ(allFields().size(), total);
}

TEST(Catalogue, DeclarationOrderAtTheSeams) {
    // Where a section changes type, the order of the form is easy to break.
    const std::vector<std::tuple<SectionId, std::size_t, const char*>> seams = {
        {SectionId::Pratim, 4, "BirthDateM"}, {SectionId::Pratim, 16, "isMale"},  {SectionId::Pratim, 22, "IDF"},
        {SectionId::Yegia, 8, "TTLM"},        {SectionId::Yegia, 17, "TTLF"},     {SectionId::Nekudot, 4, "N260"},
        {SectionId::Pturot, 14, "AcherotText"}, {SectionId::Pturot, 16, "N209"}, {SectionId::Tashlumim, 26, "TashTTL"}};
    for (const auto& [section, index, name] : seams) EXPECT_EQ(names(section).at(index), name);
}

TEST(Catalogue, SecondTableHoldsExactlyItsColumns) {
    const std::set<std::string> details1 = {
        "Rechush.N067", "Rechush.N228", "Rechush.N328", "Rechush.N126", "Rechush.N226", "Rechush.N326",
        "Rechush.N141", "Rechush.N241", "Rechush.N341", "Rechush.N157", "Rechush.N257", "Rechush.N357",
        "Rechush.N142", "Rechush.N242", "Rechush.N342", "Pturot.N256Revach20", "Pturot.N256Revach25",
        "Pturot.N184", "Pturot.N185", "Pturot.N186", "Pturot.N187", "Pturot.N309", "Nikuim.N244", "Nikuim.N245",
        "Nikuim.N248", "Nikuim.N249", "Nikuim.N206", "Nikuim.N207", "Nekudot.N181", "Nekudot.N182",
        "Nekudot.N260_1", "Nekudot.N260_2", "Nekudot.N260_3", "Nekudot.N260_4", "Nekudot.N260_5",
        "Nekudot.N260_6", "Zikuim.N140", "Zikuim.N240", "Zikuim.N268", "Zikuim.N269", "Tashlumim.N294M",
        "Tashlumim.N294F", "Klaliim.isHechzerMas", "Klaliim.isBakashaNifrad", "Klaliim.isKerenHishtalmut",
        "Klaliim.isYozerBenemanut", "Klaliim.isNeheneBenemanut", "Klaliim.isIverOrNeche",
        "Klaliim.isShlitaNischar", "Klaliim.isZchuyotLoNischar", "Klaliim.isPeulaTichnunHayav",
        "Klaliim.isIskaotZdadimHul"};
    for (const FieldDef& f : allFields()) {
        const std::string key = std::string(f.sectionName) + "." + f.name;
        if (key == "Nekudot.N260") {
            EXPECT_EQ(f.table, StoredTable::NoTable);  // worked out, never stored
            continue;
        }
        EXPECT_EQ(f.table == StoredTable::Details1, details1.count(key) == 1) << key;
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
    EXPECT_FALSE(findField("Yegia", "N150")->nullable);
    EXPECT_TRUE(findField("Zikuim", "N036")->nullable);
    EXPECT_FALSE(findField("Zikuim", "AcherimText")->nullable);
}

TEST(Catalogue, ShownTotalsAreWorkedOutFromTheirParts) {
    std::set<std::string> derived;
    for (const FieldDef& f : allFields())
        if (f.derived()) derived.insert(std::string(f.sectionName) + "." + f.name);
    std::set<std::string> ruled;
    for (const DerivedTotal& t : derivedTotals()) ruled.insert(std::string(sectionDef(t.section).name) + "." + t.total);
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

TEST(Catalogue, CheckOnLeavingAndTextLengths) {
    EXPECT_EQ(findField("Pturot", "N054")->check, LeaveCheck::Whole);
    EXPECT_EQ(findField("Pturot", "N109")->check, LeaveCheck::Ceiling);
    EXPECT_EQ(findField("Nikuim", "N244")->check, LeaveCheck::InsuredIncome);
    EXPECT_EQ(findField("Nekudot", "N181")->check, LeaveCheck::None);  // a list
    EXPECT_EQ(findField("Zikuim", "AcherimText")->maxLength, 22);
}

}  // namespace
}  // namespace zelmor
