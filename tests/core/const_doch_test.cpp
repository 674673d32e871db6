#include "core/tax_year.h"

#include <gtest/gtest.h>

namespace zelmor {
namespace {

// The derived figures of the year, worked out by their rules, against the
// figures of the year's tables; and the relations the bracket tax rests on.
TEST(ConstDoch, DerivedValuesMatchTheYearsFigures) {
    const ConstDoch c;
    auto v = [](Amount a) { return static_cast<double>(a.value()); };
#define AMOUNT(name, expected) {#name, v(c.name()), expected}
#define FIGURE(name, expected) {#name, static_cast<double>(c.name()), expected}
#define SAME(a, b) {#a " = " #b, static_cast<double>(c.a()), static_cast<double>(c.b())}
    const struct {
        const char* name;
        double actual, expected;
    } table[] = {
        AMOUNT(KIZVA_MIN, 16890), AMOUNT(TESTMEUCHAD, 65400),
        AMOUNT(MAS1, 6324), AMOUNT(MAS2, 12590), AMOUNT(MAS3, 25165),
        AMOUNT(MAS4, 47448), AMOUNT(MAS5, 136433), AMOUNT(MAS6, 284868),
        AMOUNT(MAS1A, 74326), AMOUNT(MAS2A, 163311), AMOUNT(MAS3A, 311746),
        AMOUNT(HACH_MAX_NIKUY, 417600), AMOUNT(HACH_MAX_ZIKUY, 208800),
        AMOUNT(MEZAKA04, 5904), AMOUNT(MEZAKA05, 7380), AMOUNT(MEZAKA07, 10332),
        AMOUNT(MEZAKA12, 17712), AMOUNT(MEZAKA16, 23616),
        FIGURE(YEARGEMEL, 1964), FIGURE(YEARYEGIA, 1955),
        FIGURE(BLYEARM, 1950), FIGURE(BLYEARF, 1955), FIGURE(BLHACHNASAMUFHAT, 66672.0),
        // The non-earned scale is the top of the earned one.
        SAME(RATE1A, RATE4), SAME(RATE2A, RATE5), SAME(RATE3A, RATE6), SAME(RATE4A, RATE7),
        {"SUM1A = SUM4", v(c.SUM1A()), v(c.SUM4())}, {"SUM2A = SUM5", v(c.SUM2A()), v(c.SUM5())},
        {"SUM3A = SUM6", v(c.SUM3A()), v(c.SUM6())},
    };
#undef AMOUNT
#undef FIGURE
#undef SAME
    for (const auto& e : table) EXPECT_DOUBLE_EQ(e.actual, e.expected) << e.name;
}

}  // namespace
}  // namespace zelmor
