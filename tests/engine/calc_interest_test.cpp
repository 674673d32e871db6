// Interest and linkage of the balance: the index month a date looks at, the
// exemption early in the next year, and the start date.

#include <tuple>

#include "engine/calc_test_util.h"

namespace zelmor::testing {
namespace {

// A rising index, published up to June 2016. The start of interest (31/12/2015)
// looks at November 2015; its neighbours differ so that a wrong month shows.
FixedMadad risingIndex() {
    FixedMadad m(90.0);
    for (auto [y, month, value] : {std::tuple{2015, 10, 99.0}, {2015, 11, 100.0}, {2015, 12, 101.0}, {2016, 3, 101.5},
                                   {2016, 4, 102.0}, {2016, 5, 103.0}, {2016, 6, 104.0}})
        m.set(y, month, value);
    return m;
}

// Up to the 14th a date takes the index of two months back, from the 15th one
// month back; the last day of a month looks at the previous month, cut to its
// length; a month not yet published takes the latest one that is.
TEST(InterestAndLinkage, TodayPicksTheIndexMonth) {
    struct Case {
        Date today;
        std::int32_t ribit;  // interest 4 a day + linkage of the tax + linkage of the interest
    };
    const Case cases[] = {
        {ymd(2016, 6, 14), 664 + 730 + 13},   // April
        {ymd(2016, 6, 15), 668 + 1095 + 20},  // May
        {ymd(2016, 5, 31), 608 + 730 + 12},   // April, by the 30th
        {ymd(2016, 8, 14), 908 + 1460 + 36},  // June
        {ymd(2016, 8, 15), 912 + 1460 + 36},  // July not published: June's index, the interest goes on
    };
    // Rent is taxed at 10% whatever the credits: a debt of exactly 36,500, whose interest is 4 shekels a day.
    NishumInput n = with(single(), "N222=365000");
    WorkOutDerived(n);
    for (const Case& c : cases) {
        const CalcResult r = CalcDoch(n, ConstDoch(), risingIndex(), c.today);
        const auto& m = r.out.Main;
        ASSERT_EQ(m.MasLetashlumTTL, 36500);
        EXPECT_EQ(m.Ribit, c.ribit) << formatIsoDate(c.today);
        EXPECT_EQ(m.PtorRibit, 0) << formatIsoDate(c.today);
        EXPECT_EQ(m.Itra, 36500 + c.ribit) << formatIsoDate(c.today);
    }
}

// Without a change of the index: the start date, the months of the exemption
// and whose balance opens it.
TEST(InterestAndLinkage, ExemptionAndStart) {
    struct Case {
        Date date;
        std::int32_t balanceM, balanceTTL;
        std::int32_t ribit, ptor;
    };
    const Case cases[] = {
        {ymd(2015, 12, 31), 36500, 36500, 0, 0},      // the start itself
        {ymd(2015, 12, 30), 36500, 36500, 0, 0},      // before it: no negative interest
        {ymd(2016, 1, 31), 36500, 36500, 0, 124},     // January: all exempt
        {ymd(2016, 1, 31), 1, 36500, 0, 124},         // a debt of the registered spouse of one shekel opens it
        {ymd(2016, 1, 31), 0, 36500, 124, 0},         // the spouse's debt alone does not
        {ymd(2016, 1, 31), -36500, -36500, -124, 0},  // a refund grows
        {ymd(2016, 2, 29), 36500, 36500, 120, 120},   // February: half
        {ymd(2016, 2, 2), 9125, 9125, 17, 16},        // 33 days of 1 a day: the half rounded to even
        {ymd(2016, 3, 31), 36500, 36500, 273, 91},    // March: a quarter
        {ymd(2016, 4, 1), 36500, 36500, 368, 0},      // April: none
        {ymd(2016, 12, 30), 10000, 10000, 400, 0},    // a year: 4%
        {ymd(2017, 1, 31), 36500, 36500, 1588, 0},    // January of a later year: none
    };
    const FixedMadad flat;
    for (const Case& c : cases) {
        sheets::CMain m;
        m.MasLetashlumM = c.balanceM;
        m.MasLetashlumTTL = c.balanceTTL;
        CalcRibit(m, c.date, ConstDoch(), flat, ymd(2016, 6, 30));
        const std::string what = formatIsoDate(c.date) + ", " + std::to_string(c.balanceM);
        EXPECT_EQ(m.Ribit, c.ribit) << what;
        EXPECT_EQ(m.PtorRibit, c.ptor) << what;
        EXPECT_EQ(m.Itra, c.balanceTTL + c.ribit) << what;
    }
}

}  // namespace
}  // namespace zelmor::testing
