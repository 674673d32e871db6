// The entry layout against the form: every entry field placed once, tab
// places, captions of both media, option groups, lists and shown totals.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "report/entry_layout.h"

namespace zelmor {
namespace {

struct Placed {
    const FieldDef* field;
    const EntryBlock* block;
    const EntryRow* row;
    const EntryCell* cell;
    bool screen;  // the block, the row and the cell are all on the screen
};

std::vector<Placed> placed(SectionId id) {
    std::vector<Placed> out;
    for (const EntryBlock& b : entryLayout(id).blocks)
        for (const EntryRow& r : b.rows)
            for (const EntryCell& c : r.cells) {
                const FieldDef* f = c.field ? findField(sectionDef(id).name, c.field) : nullptr;
                out.push_back({f, &b, &r, &c, onScreen(b.medium) && onScreen(r.medium) && onScreen(c.medium)});
            }
    return out;
}

std::string key(const FieldDef& f) { return std::string(f.sectionName) + "." + f.name; }

// The caption a medium shows beside a field: its own, or its row's.
std::string screenCaption(SectionId id, const char* field) {
    const FieldPlace p = findPlace(id, field);
    if (!p.cell) return "<not placed>";
    return *p.cell->caption.screen ? p.cell->caption.screen : p.row->caption.screen;
}
std::string paperCaption(SectionId id, const char* field) {
    const FieldPlace p = findPlace(id, field);
    if (!p.cell) return "<not placed>";
    return *p.cell->caption.paper ? p.cell->caption.paper : p.row->caption.paper;
}

TEST(EntryLayout, EveryEntryFieldStandsInExactlyOneScreenCell) {
    for (const SectionDef& s : allSections()) {
        std::map<std::string, int> onScreenCount, anywhere;
        for (const Placed& p : placed(s.id)) {
            ASSERT_NE(p.field, nullptr) << s.name << ": a cell names no field of its section";
            ++anywhere[p.field->name];
            // An option or check box carries its own caption, or the form code beside it.
            if (p.field->control == Control::Option || p.field->control == Control::CheckBox) {
                EXPECT_TRUE(*p.cell->caption.screen || *p.field->code) << key(*p.field);
            }
            if (p.screen) ++onScreenCount[p.field->name];
        }
        for (const FieldDef& f : sectionFields(s.id)) {
            EXPECT_LE(anywhere[f.name], 1) << key(f);
            // The shown totals are placed too, except the count of children, which no screen shows.
            const bool shown = f.tab >= 0 || (f.control == Control::Total && key(f) != "Nekudot.N260");
            EXPECT_EQ(onScreenCount[f.name], shown ? 1 : 0) << key(f);
        }
    }
}

TEST(EntryLayout, CellsStandUnderTheColumnOfTheirPerson) {
    for (const SectionDef& s : allSections())
        for (const Placed& p : placed(s.id)) {
            const Person person = p.field->person;
            // The rate of line 25 stands inside the caption of its row.
            if (person == Person::None || key(*p.field) == "Rechush.AcheretRate") continue;
            EXPECT_EQ(p.cell->column, person) << key(*p.field);
        }
}

TEST(EntryLayout, TabPlacesAreDistinctWithinEachScreen) {
    for (const SectionDef& s : allSections()) {
        std::set<int> tabs;
        for (const FieldDef& f : sectionFields(s.id)) {
            if (f.control == Control::Total) {
                EXPECT_EQ(f.tab, -1) << key(f);
                continue;
            }
            EXPECT_GE(f.tab, 0) << key(f);
            EXPECT_TRUE(tabs.insert(f.tab).second) << key(f) << " shares tab place " << f.tab;
        }
    }
    // Gaps stay where the form has them.
    EXPECT_EQ(findField("Pratim", "isMale")->tab, 16);
    EXPECT_EQ(findField("Pratim", "isRavak")->tab, 19);
    EXPECT_EQ(findField("Pturot", "N097")->tab, 21);
}

TEST(EntryLayout, BlockHeadingsLineRangesAndColumnHeads) {
    struct Case {
        SectionId section;
        std::size_t block;
        const char *screen, *paper, *screenLines, *paperLines;
    };
    const Case cases[] = {
        {SectionId::Pratim, 0, "ב. פרטים אישיים", "ב. פרטים אישיים", "", ""},
        {SectionId::Pratim, 1, "פרטי הגשה והמסייע", "פרטי הגשה והמסייע", "", ""},
        {SectionId::Yegia, 0, "ג. הכנסות מיגיעה אישית", "ג. הכנסות מיגיעה אישית", "סעיפים 1-7", "סעיפים 1-7"},
        {SectionId::Yegia, 1, "ד. הכנסות חייבות בשיעורי מס רגילים", "ד. הכנסות מרכוש בשיעורי מס רגילים",
         "סעיפים 8-11", "סעיפים 8-11"},
        {SectionId::Rechush, 0, "ה. הכנסות חייבות בשעורי מס מיוחדים", "ה. הכנסות מרכוש בשעורי מס מיוחדים",
         "סעיפים 12-25", "סעיפים 12-25"},
        {SectionId::Rechush, 1, "ו. מוסד כספי", "ו. מוסד כספי", "סעיף 26", "סעיף 26"},
        {SectionId::Pturot, 2, "ט. הכנסות מחו\"ל", "ט. הכנסות מחו\"ל", "סעיף 34", "סעיף 34"},
        {SectionId::Pturot, 4, "יא. פרטים נוספים", "יא. פרטים נוספים", "סעיפים 40-41", "סעיפים 40-41"},
        {SectionId::Nikuim, 0, "יב. ניכויים אישיים", "יב. ניכויים אישיים", "סעיפים 42-53", "סעיפים 42-53"},
        {SectionId::Nekudot, 0, "יג. נקודות זיכוי", "יג. נקודות זיכוי", "סעיפים 54-64", "סעיפים 54-64"},
        {SectionId::Zikuim, 0, "יד. זיכויים", "יד. זיכויים", "סעיפים 65-73", "סעיפים 62-69"},
        {SectionId::Tashlumim, 0, "טו. מחזור למקדמות, ניכויים במקור, מס שבח וחשבון בנק", "טו. ניכוי במקור ותשלומים",
         "סעיפים 74-79", "סעיפים 74-79"},
        {SectionId::Klaliim, 0, "א. פרטים כלליים", "א. פרטים כלליים", "", ""},
    };
    for (const Case& c : cases) {
        const auto blocks = entryLayout(c.section).blocks;
        ASSERT_LT(c.block, blocks.size()) << sectionDef(c.section).name;
        const EntryBlock& b = blocks[c.block];
        EXPECT_STREQ(b.heading.screen, c.screen);
        EXPECT_STREQ(b.heading.paper, c.paper);
        EXPECT_STREQ(b.lines.screen, c.screenLines);
        EXPECT_STREQ(b.lines.paper, c.paperLines);
    }
    EXPECT_EQ(entryLayout(SectionId::Pturot).blocks.size(), 5u);

    auto heads = [](SectionId id, std::size_t block, bool screen) {
        std::vector<std::string> out;
        for (const ColumnHead& h : entryLayout(id).blocks[block].columns)
            out.push_back(screen ? h.text.screen : h.text.paper);
        return out;
    };
    using V = std::vector<std::string>;
    EXPECT_EQ(heads(SectionId::Yegia, 0, true), (V{"\"בן הזוג הרשום\"", "בן/בת הזוג"}));
    EXPECT_EQ(heads(SectionId::Yegia, 1, true), (V{"שני בני הזוג", "\"בן הזוג הרשום\"", "בן/בת הזוג"}));
    EXPECT_EQ(heads(SectionId::Rechush, 0, true), (V{"שני בני הזוג", "\"בן הזוג הרשום\"", "בן/בת הזוג"}));
    EXPECT_EQ(heads(SectionId::Rechush, 0, false), (V{"", "", ""}));  // paper prints no heads there
    EXPECT_EQ(heads(SectionId::Tashlumim, 0, true), (V{"מגיש הדו\"ח", "בן/בת הזוג", "סה\"כ"}));
    EXPECT_STREQ(entryLayout(SectionId::Nikuim).blocks[0].columns[1].sub, "הסכום ששולם");
    EXPECT_STREQ(columnHead(Person::M), "\"בן הזוג הרשום\"");
}

// A few rows of every page, as the screen and the paper caption them.
TEST(EntryLayout, ScreenAndPaperCaptions) {
    const std::vector<std::tuple<SectionId, const char*, const char*, const char*>> rows = {
        {SectionId::Pratim, "IDM", "ת.ז. :", "ת.ז.: "},
        {SectionId::Pratim, "PhoneH", "בית :", "בית: "},
        {SectionId::Pratim, "TikNikuimF", "ניכויים :", "ניכויים: "},
        {SectionId::Pratim, "ProfessionF", "עיסוק עיקרי :", "עיסוק עיקרי: "},
        {SectionId::Pratim, "isGarush", "גרוש/פרוד", "גרוש/פרוד"},
        {SectionId::Pratim, "DochDate", "תאריך הגשת הדו\"ח :", "תאריך הגשת הדו\"ח: "},
        {SectionId::Yegia, "N150", "1. מיגיעה אישית מעסק או ממשלח יד :", "1. מיגיעה אישית מעסק או ממשלח יד"},
        {SectionId::Yegia, "N372", "ב. פריסת מענק פרישה משנים קודמות :", "5ב. פריסת מענק פרישה משנים קודמות"},
        {SectionId::Yegia, "TTLF", "סה\"כ הכנסות מיגיעה אישית :", "סה\"כ הכנסות מיגיעה אישית"},
        {SectionId::Yegia, "N305", "11. אחרות שאינן מיגיעה אישית", "11. רכוש אחר / ריבית"},
        {SectionId::Rechush, "N311", "13. ריבית ניירות ערך, קופת\"ג,          ודיבידנד מפעל מאושר (15%) :",
         "13. ריבית ני\"ע ודיב מאושר (15%)"},
        {SectionId::Rechush, "N227", "24. הימורים ופרסים (25%)", "24. הימורים, הגרלות ופרסים (25%)"},
        {SectionId::Rechush, "AcheretF", "25. אחרת בשיעור מס מוגבל %", "25. אחרת בשיעור מס מוגבל "},
        {SectionId::Rechush, "N163", "26. רווח של מוסד כספי כמשמעותו בחוק מע\"מ",
         "26. רווח של מוסד כספי כמשמעותו בחוק מע\"מ"},
        {SectionId::Pturot, "N185", "27. הכנסה פטורה 9(5) שהופחתה מהכנסות מעסק'/משלח יד בלבד",
         "27. הכנסה פטורה 9(5) שהופחתה מהכנסות מעסק'/משלח יד בלבד"},
        {SectionId::Pturot, "Reali", "רווח הון ושבח ריאלי עד 31/12/02 :", "רווח הון ריאלי עד 31/12/02"},
        {SectionId::Pturot, "N256", "33. מכירות ני\"ע :", "33. מכירת ני\"ע"},
        {SectionId::Pturot, "N309", "בן/בת הזוג :", "בן/בת הזוג"},
        {SectionId::Pturot, "AcherotText", "38. מקורות אחרים (פרט) -", "38. מקורות אחרים (פרט)"},
        {SectionId::Pturot, "N299", "ה. הפסד חו\"ל", "ה. הפסד חו\"ל"},
        {SectionId::Nikuim, "N113", "42. ביטוח אובדן כושר עבודה בשל הכנסה כעצמאי",
         "42. ביטוח אובדן כושר עבודה בשל הכנסה כעצמאי"},
        {SectionId::Nikuim, "N249", "53. הפקדות מעביד + עובד לקיצבה", "53. הפקדות מעביד לקיצבה והפקדות העובד לפנסיה"},
        {SectionId::Nekudot, "N020", "54 תושב", "54. תושב"},
        {SectionId::Nekudot, "N260_5", "17-6", "17-6"},
        {SectionId::Nekudot, "N131", "בן/בת הזוג", "בן/בת הזוג  "},
        {SectionId::Nekudot, "N024", "מספר חודשי שירות מלאים", "מספר חודשי שירות מלאים"},
        {SectionId::Zikuim, "N086", "67. לקיצבה כ\"עמית שכיר\"", "67. לקיצבה מקיפה כעמית שכיר"},
        {SectionId::Zikuim, "N193Month", "חודשים :", "חודשים: "},
        {SectionId::Zikuim, "AcherimText", "פרט", "פרוט: "},
        {SectionId::Zikuim, "AcherimF", "סכומי זיכויים אחרים (כוחות הבטחון / אחר)",
         "סכומי זיכויים אחרים (כוחות הבטחון/אחר)"},
        {SectionId::Tashlumim, "N294", "74. סך מחזור מעסק, השכרה, ריבית, ואחרות במס רגיל (ללא מע\"מ)",
         "74. סך מחזור מעסק, השכרה,"},
        {SectionId::Tashlumim, "MikdamotF", "מקדמות :", "מקדמות"},
        {SectionId::Tashlumim, "TashTTL", "סה\"כ תשלומים ע\"ח המס :", "סה\"כ תשלומים ע\"ח המס"},
        {SectionId::Klaliim, "Shuma", "משרד השומה", "משרד השומה "},
        {SectionId::Klaliim, "isBZDochNifrad", "בן זוג מגיש/ה דו\"ח בנפרד", " בן/בת זוגי מגיש/ה דו\"ח בנפרד"},
        {SectionId::Klaliim, "isTlutNo", "לא קיימת תלות במקור הכנסותינו", " לא קיימת"},
        {SectionId::Klaliim, "isHaklai", "ניהלתי משק חקלאי / שטח מעובד - מצ\"ב דו\"ח משק חקלאי (טופס 1220)",
         " ניהלתי משק חקלאי / שטח מעובד -\n מצ\"ב דו\"ח משק חקלאי (טופס 1220)"},
    };
    for (const auto& [section, field, screen, paper] : rows) {
        EXPECT_EQ(screenCaption(section, field), screen) << field;
        EXPECT_EQ(paperCaption(section, field), paper) << field;
    }
    // Row captions of the form-like pages and the groups.
    EXPECT_STREQ(findPlace(SectionId::Pratim, "isRavak").row->caption.screen, "מצב משפחתי :");
    EXPECT_STREQ(findPlace(SectionId::Pratim, "PhoneWF").row->caption.screen, "טלפונים :");
    EXPECT_STREQ(findPlace(SectionId::Klaliim, "isMe").row->caption.screen, "הדו\"ח על :");
    EXPECT_STREQ(findPlace(SectionId::Nekudot, "N260_1").row->caption.screen, "58. ילדים סמוכים שגילם בשנת המס :");
}

TEST(EntryLayout, PlainHeadingsAndNotes) {
    // A text row stands right before the row of the field named.
    auto noteBefore = [](SectionId id, const char* field) -> const EntryRow& {
        const FieldPlace p = findPlace(id, field);
        EXPECT_GT(p.row, p.block->rows.data()) << field;
        const EntryRow& note = *(p.row - 1);
        EXPECT_TRUE(note.cells.empty()) << field;
        return note;
    };
    EXPECT_STREQ(noteBefore(SectionId::Klaliim, "isMevusas").caption.screen, "לגבי הכנסתי מעסק/משלח יד עיקרי :");
    EXPECT_STREQ(noteBefore(SectionId::Nikuim, "N005").caption.screen, "בסעיפים 48-50 יש לרשום סכום הניכוי המחושב :");
    EXPECT_STREQ(noteBefore(SectionId::Nikuim, "N005").caption.paper, "בסעיפים 48-50 יש לרשום סכום הניכוי המחושב");
    EXPECT_STREQ(noteBefore(SectionId::Tashlumim, "MikdamotM").caption.screen, "שולם ע\"ח :");
    EXPECT_STREQ(noteBefore(SectionId::Pturot, "N079").caption.screen, "41. יתרות להעברה לשנת המס הבאה :");
    // The second line of the caption of line 74 is paper's alone.
    const EntryRow& more = noteBefore(SectionId::Tashlumim, "N042M");
    EXPECT_EQ(more.medium, Medium::Paper);
    EXPECT_STREQ(more.caption.paper, "ריבית ואחרות במס רגיל (ללא מע\"מ)");
}

TEST(Catalogue, OptionGroupsHoldTwoOrMoreOptionsOfOneRow) {
    std::map<std::string, std::vector<const FieldDef*>> groups;
    for (const FieldDef& f : allFields()) {
        EXPECT_EQ(f.control == Control::Option, *f.group != '\0') << key(f);
        if (*f.group) groups[std::string(f.sectionName) + "." + f.group].push_back(&f);
    }
    for (const auto& [name, members] : groups) {
        EXPECT_GE(members.size(), 2u) << name;
        // The options of a group stand together, in one row of the screen.
        const EntryRow* row = findPlace(members[0]->section, members[0]->name).row;
        for (const FieldDef* f : members) EXPECT_EQ(findPlace(f->section, f->name).row, row) << key(*f);
    }
    std::set<std::string> marital;
    for (const FieldDef* f : groups.at("Pratim.frameFamily")) marital.insert(f->name);
    EXPECT_EQ(marital, (std::set<std::string>{"isRavak", "isNasuy", "isAlman", "isGarush"}));
    EXPECT_EQ(groups.at("Klaliim.inflationReport").size(), 3u);
    EXPECT_EQ(groups.size(), 9u);
}

TEST(Catalogue, TheLookOfAFieldOnTheScreen) {
    for (const FieldDef& f : allFields()) {
        // Lists: every drop-down has its list, and only they.
        EXPECT_EQ(f.control == Control::List, f.list != ListId::None) << key(f);
        if (f.list != ListId::None) {
            EXPECT_FALSE(listEntries(f.list).empty()) << key(f);
        }
        if (f.type == FieldType::Date) {
            EXPECT_EQ(f.display, Display::Date) << key(f);
        }
        if (f.type == FieldType::Amount && key(f) != "Rechush.AcheretRate") {
            EXPECT_EQ(f.display, Display::Amount) << key(f);
        }
        if (f.type == FieldType::Text || f.type == FieldType::Boolean) {
            EXPECT_EQ(f.display, Display::None) << key(f);
        }
        EXPECT_EQ(*f.prefix != '\0', key(f) == "Pratim.TikNikuimM" || key(f) == "Pratim.TikNikuimF") << key(f);
    }
    EXPECT_EQ(findField("Rechush", "AcheretRate")->display, Display::Plain);
}

TEST(Catalogue, ListsAndTheirTexts) {
    EXPECT_EQ(listEntries(ListId::Degree).size(), 6u);
    EXPECT_STREQ(listEntries(ListId::Degree)[0], "");
    EXPECT_STREQ(listText(ListId::Degree, 5), "9 - 2 תארים שונים");
    EXPECT_STREQ(listText(ListId::Degree, 6), "");
    EXPECT_STREQ(listText(ListId::Degree, -1), "");
    EXPECT_STREQ(listEntries(ListId::Settlement)[0], "לא");
    EXPECT_STREQ(listText(ListId::Settlement, 0), "");  // no settlement prints nothing
    EXPECT_STREQ(listText(ListId::Settlement, 2), "הנגב והגליל (תקרה 132,840)");
    ASSERT_EQ(listEntries(ListId::Months).size(), 12u);
    EXPECT_STREQ(listEntries(ListId::Months)[11], "12");

    auto rates = [](int settlement) {
        std::vector<std::string> out(rateEntries(settlement).begin(), rateEntries(settlement).end());
        return out;
    };
    using V = std::vector<std::string>;
    EXPECT_EQ(rates(1), (V{"13", "25"}));
    EXPECT_EQ(rates(2), (V{"13", "16", "20", "25"}));
    EXPECT_TRUE(rates(0).empty());
    EXPECT_TRUE(rates(3).empty());
}

TEST(Catalogue, ShownTotalsAddFieldsOfTheirOwnSection) {
    for (const DerivedTotal& t : derivedTotals()) {
        const char* sec = sectionDef(t.section).name;
        const FieldDef* total = findField(sec, t.total);
        ASSERT_NE(total, nullptr) << t.total;
        EXPECT_TRUE(total->derived()) << t.total;
        EXPECT_GE(t.parts.size(), 2u) << t.total;
        for (const char* part : t.parts) {
            const FieldDef* f = findField(sec, part);
            ASSERT_NE(f, nullptr) << t.total << " adds " << part;
            EXPECT_FALSE(f->derived()) << part;
            EXPECT_EQ(f->type, total->type) << part;
        }
    }
    // The payments on account leave the turnover out.
    const auto all = derivedTotals();
    const auto pay = std::ranges::find_if(all, [](const DerivedTotal& t) { return std::string(t.total) == "TashTTL"; });
    ASSERT_NE(pay, all.end());
    EXPECT_EQ(pay->parts.size(), 14u);
    EXPECT_EQ(std::ranges::count_if(pay->parts, [](const char* p) { return std::string(p).starts_with("N294"); }), 0);
}

}  // namespace
}  // namespace zelmor
