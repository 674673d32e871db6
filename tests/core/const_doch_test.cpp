#include "engine/const_doch.h"

#include <gtest/gtest.h>

#include "core/date.h"

namespace zelmor {
namespace {

struct Expected {
    const char* name;
    double actual;
    double expected;
};

// The derived figures of the year, worked out by their rules, against the
// figures of the year's tables; and the relations the bracket tax rests on.
TEST(ConstDoch, DerivedValuesMatchTheYearsFigures) {
    const ConstDoch c;
    auto v = [](Amount a) { return static_cast<double>(a.value()); };
    auto serial = [](Date d) { return static_cast<double>(d.serial()); };
    const Expected table[] = {
        {"KIZVA_MIN", v(c.KIZVA_MIN()), 16890},
        {"MAS1", v(c.MAS1()), 6324},
        {"MAS2", v(c.MAS2()), 12590},
        {"MAS3", v(c.MAS3()), 25165},
        {"MAS4", v(c.MAS4()), 47448},
        {"MAS5", v(c.MAS5()), 136433},
        {"MAS6", v(c.MAS6()), 284868},
        {"MAS1A", v(c.MAS1A()), 74326},
        {"MAS2A", v(c.MAS2A()), 163311},
        {"MAS3A", v(c.MAS3A()), 311746},
        {"SUM2SUB", v(c.SUM2SUB()), 44760},
        {"SUM3SUB", v(c.SUM3SUB()), 59880},
        {"SUM4SUB", v(c.SUM4SUB()), 71880},
        {"SUM5SUB", v(c.SUM5SUB()), 261720},
        {"SUM6SUB", v(c.SUM6SUB()), 309240},
        {"SUM2ASUB", v(c.SUM2ASUB()), 261720},
        {"SUM3ASUB", v(c.SUM3ASUB()), 309240},
        {"MAS2SUB", v(c.MAS2SUB()), 6266},
        {"MAS3SUB", v(c.MAS3SUB()), 12575},
        {"MAS4SUB", v(c.MAS4SUB()), 22283},
        {"MAS5SUB", v(c.MAS5SUB()), 88985},
        {"MAS6SUB", v(c.MAS6SUB()), 148435},
        {"MAS2ASUB", v(c.MAS2ASUB()), 88985},
        {"MAS3ASUB", v(c.MAS3ASUB()), 148435},
        {"TESTMEUCHAD", v(c.TESTMEUCHAD()), 65400},
        {"HACH_MAX_NIKUY", v(c.HACH_MAX_NIKUY()), 417600},
        {"HACH_MAX_ZIKUY", v(c.HACH_MAX_ZIKUY()), 208800},
        {"MEZAKA04", v(c.MEZAKA04()), 5904},
        {"MEZAKA05", v(c.MEZAKA05()), 7380},
        {"MEZAKA07", v(c.MEZAKA07()), 10332},
        {"MEZAKA12", v(c.MEZAKA12()), 17712},
        {"MEZAKA16", v(c.MEZAKA16()), 23616},
        {"YEARDOCH", static_cast<double>(c.YEARDOCH()), 2015},
        {"YEARGEMEL", static_cast<double>(c.YEARGEMEL()), 1964},
        {"YEARYEGIA", static_cast<double>(c.YEARYEGIA()), 1955},
        {"BLYEARM", static_cast<double>(c.BLYEARM()), 1950},
        {"BLYEARF", static_cast<double>(c.BLYEARF()), 1955},
        {"BLHACHNASAMUFHAT", c.BLHACHNASAMUFHAT(), 66672.0},
        {"RIBITBASICDATE", serial(c.RIBITBASICDATE()), serial(*Date::fromYmd(2015, 12, 31))},
        {"GIL_PRISHA_GEVER", serial(c.GIL_PRISHA_GEVER()), serial(*Date::fromYmd(1948, 12, 31))},
        {"GIL_PRISHA_ISHA", serial(c.GIL_PRISHA_ISHA()), serial(*Date::fromYmd(1953, 12, 31))},
        // The non-earned scale is the top of the earned one.
        {"RATE1A = RATE4", c.RATE1A(), c.RATE4()},
        {"RATE2A = RATE5", c.RATE2A(), c.RATE5()},
        {"RATE3A = RATE6", c.RATE3A(), c.RATE6()},
        {"RATE4A = RATE7", c.RATE4A(), c.RATE7()},
        {"SUM1A = SUM4", v(c.SUM1A()), v(c.SUM4())},
        {"SUM2A = SUM5", v(c.SUM2A()), v(c.SUM5())},
        {"SUM3A = SUM6", v(c.SUM3A()), v(c.SUM6())},
    };
    for (const Expected& e : table) EXPECT_DOUBLE_EQ(e.actual, e.expected) << e.name;
}

}  // namespace
}  // namespace zelmor
