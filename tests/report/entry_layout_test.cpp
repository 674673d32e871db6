// The entry layout against the form: every entry field placed once, tab
// places, option groups and lists.

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "report/entry_layout.h"

namespace zelmor {
namespace {

std::string key(const FieldDef& f) { return std::string(f.sectionName) + "." + f.name; }

TEST(EntryLayout, EveryEntryFieldStandsOnceInTheColumnOfItsPerson) {
    for (const SectionDef& s : allSections()) {
        std::map<std::string, int> onScreenCount, anywhere;
        for (const EntryBlock& b : entryLayout(s.id).blocks)
            for (const EntryRow& r : b.rows)
                for (const EntryCell& c : r.cells) {
                    const FieldDef* f = c.field ? findField(s.name, c.field) : nullptr;
                    ASSERT_NE(f, nullptr) << s.name << ": a cell names no field of its section";
                    ++anywhere[f->name];
                    if (onScreen(b.medium) && onScreen(r.medium) && onScreen(c.medium)) ++onScreenCount[f->name];
                    // An option or check box carries its own caption, or the form code beside it.
                    if (f->control == Control::Option || f->control == Control::CheckBox) {
                        EXPECT_TRUE(*c.caption.screen || *f->code) << key(*f);
                    }
                    // The rate of line 25 stands inside the caption of its row.
                    if (f->person != Person::None && key(*f) != "Rechush.AcheretRate") {
                        EXPECT_EQ(c.column, f->person) << key(*f);
                    }
                }
        for (const FieldDef& f : sectionFields(s.id)) {
            EXPECT_LE(anywhere[f.name], 1) << key(f);
            // The shown totals are placed too, except the count of children, which no screen shows.
            const bool shown = f.tab >= 0 || (f.control == Control::Total && key(f) != "Nekudot.N260");
            EXPECT_EQ(onScreenCount[f.name], shown ? 1 : 0) << key(f);
        }
    }
}

TEST(EntryLayout, TabPlacesAreDistinctWithinEachScreen) {
    for (const SectionDef& s : allSections()) {
        std::set<int> tabs;
        for (const FieldDef& f : sectionFields(s.id)) {
            if (f.control == Control::Total) {
                EXPECT_EQ(f.tab, -1) << key(f);
            } else {
                EXPECT_GE(f.tab, 0) << key(f);
                EXPECT_TRUE(tabs.insert(f.tab).second) << key(f) << " shares tab place " << f.tab;
            }
        }
    }
}

TEST(Catalogue, OptionGroupsHoldTwoOrMoreOptionsOfOneRow) {
    std::map<std::string, std::vector<const FieldDef*>> groups;
    for (const FieldDef& f : allFields()) {
        EXPECT_EQ(f.control == Control::Option, *f.group != '\0') << key(f);
        if (*f.group) groups[std::string(f.sectionName) + "." + f.group].push_back(&f);
    }
    for (const auto& [name, members] : groups) {
        EXPECT_GE(members.size(), 2u) << name;
        const EntryRow* row = findPlace(members[0]->section, members[0]->name).row;
        for (const FieldDef* f : members) EXPECT_EQ(findPlace(f->section, f->name).row, row) << key(*f);
    }
}

TEST(Catalogue, EveryDropDownHasItsEntries) {
    for (const FieldDef& f : allFields()) {
        EXPECT_EQ(f.control == Control::List, f.list != ListId::None) << key(f);
        EXPECT_TRUE(f.list == ListId::None || !listEntries(f.list).empty()) << key(f);
    }
}

// A value outside its list prints nothing, as does the first entry ("no").
TEST(Catalogue, ListTextsOutsideTheListAreBlank) {
    for (int outside : {6, -1}) EXPECT_STREQ(listText(ListId::Degree, outside), "") << outside;
    EXPECT_STRNE(listText(ListId::Degree, 5), "");
    EXPECT_STREQ(listText(ListId::Settlement, 0), "");
}

}  // namespace
}  // namespace zelmor
