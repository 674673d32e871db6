// The entry layout against the form: every entry field placed once, tab
// places, captions of both media, option groups and lists.

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "report/entry_layout.h"

namespace zelmor {
namespace {

std::string key(const FieldDef& f) { return std::string(f.sectionName) + "." + f.name; }

// The caption a medium shows beside a field: its own, or its row's.
std::string caption(SectionId id, const char* field, bool screen) {
    const FieldPlace p = findPlace(id, field);
    if (!p.cell) return "<not placed>";
    const Words& own = p.cell->caption;
    const char* text = screen ? own.screen : own.paper;
    return *text ? text : (screen ? p.row->caption.screen : p.row->caption.paper);
}

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

// Where screen and paper word the form differently, each keeps its own words:
// headings and line ranges of blocks, column heads, the captions beside fields
// and the notes between rows.
TEST(EntryLayout, ScreenAndPaperWordTheFormEachTheirOwnWay) {
    using enum SectionId;
    auto block = [](SectionId id, std::size_t i) -> const EntryBlock& { return entryLayout(id).blocks[i]; };
    // The text row right before the row of a field.
    auto note = [](SectionId id, const char* field) -> const EntryRow& {
        const FieldPlace p = findPlace(id, field);
        EXPECT_TRUE(p.row > p.block->rows.data() && (p.row - 1)->cells.empty()) << field;
        return *(p.row - 1);
    };
    const struct {
        const char* what;
        Words words;
        const char *screen, *paper;
    } cases[] = {
        {"heading", block(Yegia, 1).heading, "ד. הכנסות חייבות בשיעורי מס רגילים", "ד. הכנסות מרכוש בשיעורי מס רגילים"},
        {"heading", block(Tashlumim, 0).heading, "טו. מחזור למקדמות, ניכויים במקור, מס שבח וחשבון בנק",
         "טו. ניכוי במקור ותשלומים"},
        {"lines", block(Zikuim, 0).lines, "סעיפים 65-73", "סעיפים 62-69"},
        {"column", block(Rechush, 0).columns[1].text, "\"בן הזוג הרשום\"", ""},  // paper prints no heads there
        {"column", block(Tashlumim, 0).columns[0].text, "מגיש הדו\"ח", "מגיש הדו\"ח"},
        {"note", note(Nikuim, "N005").caption, "בסעיפים 48-50 יש לרשום סכום הניכוי המחושב :",
         "בסעיפים 48-50 יש לרשום סכום הניכוי המחושב"},
        {"note", note(Pturot, "N079").caption, "41. יתרות להעברה לשנת המס הבאה :", "41. יתרות להעברה לשנת המס הבאה :"},
        {"row", findPlace(Nekudot, "N260_1").row->caption, "58. ילדים סמוכים שגילם בשנת המס :",
         "58. ילדים סמוכים שגילם בשנת המס:"},
    };
    for (const auto& c : cases) {
        EXPECT_STREQ(c.words.screen, c.screen) << c.what;
        EXPECT_STREQ(c.words.paper, c.paper) << c.what;
    }
    EXPECT_STREQ(block(Nikuim, 0).columns[1].sub, "הסכום ששולם");
    // The second line of the caption of line 74 is paper's alone.
    const EntryRow& more = note(Tashlumim, "N042M");
    EXPECT_EQ(more.medium, Medium::Paper);
    EXPECT_STREQ(more.caption.paper, "ריבית ואחרות במס רגיל (ללא מע\"מ)");

    // Beside a field, its own caption or else its row's.
    const std::vector<std::tuple<SectionId, const char*, const char*, const char*>> fields = {
        {Pratim, "IDM", "ת.ז. :", "ת.ז.: "},
        {Yegia, "N372", "ב. פריסת מענק פרישה משנים קודמות :", "5ב. פריסת מענק פרישה משנים קודמות"},
        {Yegia, "N305", "11. אחרות שאינן מיגיעה אישית", "11. רכוש אחר / ריבית"},
        {Rechush, "AcheretF", "25. אחרת בשיעור מס מוגבל %", "25. אחרת בשיעור מס מוגבל "},
        {Zikuim, "AcherimText", "פרט", "פרוט: "},
        {Klaliim, "isHaklai", "ניהלתי משק חקלאי / שטח מעובד - מצ\"ב דו\"ח משק חקלאי (טופס 1220)",
         " ניהלתי משק חקלאי / שטח מעובד -\n מצ\"ב דו\"ח משק חקלאי (טופס 1220)"},
    };
    for (const auto& [section, field, screen, paper] : fields) {
        EXPECT_EQ(caption(section, field, true), screen) << field;
        EXPECT_EQ(caption(section, field, false), paper) << field;
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
    std::set<std::string> marital;
    for (const FieldDef* f : groups.at("Pratim.frameFamily")) marital.insert(f->name);
    EXPECT_EQ(marital, (std::set<std::string>{"isRavak", "isNasuy", "isAlman", "isGarush"}));
}

TEST(Catalogue, TheLookOfAFieldOnTheScreen) {
    for (const FieldDef& f : allFields()) {
        // Every drop-down has its list, and only they.
        EXPECT_EQ(f.control == Control::List, f.list != ListId::None) << key(f);
        EXPECT_TRUE(f.list == ListId::None || !listEntries(f.list).empty()) << key(f);
        Display expected = Display::None;
        if (f.type == FieldType::Date) expected = Display::Date;
        if (f.type == FieldType::Amount) expected = key(f) == "Rechush.AcheretRate" ? Display::Plain : Display::Amount;
        const bool numeric = f.type == FieldType::Number || f.type == FieldType::Count;  // either look
        EXPECT_TRUE(numeric || f.display == expected) << key(f);
        EXPECT_EQ(*f.prefix != '\0', key(f) == "Pratim.TikNikuimM" || key(f) == "Pratim.TikNikuimF") << key(f);
    }
}

TEST(Catalogue, ListsAndTheirTexts) {
    EXPECT_STREQ(listText(ListId::Degree, 5), "9 - 2 תארים שונים");
    for (int outside : {6, -1}) EXPECT_STREQ(listText(ListId::Degree, outside), "") << outside;
    EXPECT_STREQ(listEntries(ListId::Settlement)[0], "לא");
    EXPECT_STREQ(listText(ListId::Settlement, 0), "");  // no settlement prints nothing
    EXPECT_STREQ(listText(ListId::Settlement, 2), "הנגב והגליל (תקרה 132,840)");
    auto rates = [](int settlement) {
        return std::vector<std::string>(rateEntries(settlement).begin(), rateEntries(settlement).end());
    };
    using V = std::vector<std::string>;
    EXPECT_EQ(rates(1), (V{"13", "25"}));
    EXPECT_EQ(rates(2), (V{"13", "16", "20", "25"}));
    EXPECT_TRUE(rates(0).empty());
    EXPECT_TRUE(rates(3).empty());
}

}  // namespace
}  // namespace zelmor
