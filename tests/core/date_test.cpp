#include "core/date.h"

#include <gtest/gtest.h>

#include <tuple>

namespace zelmor {
namespace {

Date ymd(int y, int m, int d) { return *Date::fromYmd(y, m, d); }

TEST(Date, FromYmdRefusesDaysThatDoNotExist) {
    EXPECT_TRUE(Date::fromYmd(2016, 2, 29));
    EXPECT_TRUE(Date::fromYmd(2000, 2, 29));
    for (auto [y, m, d] : {std::tuple{2015, 2, 29}, {1900, 2, 29}, {2015, 4, 31}, {2015, 13, 1},
                           {2015, 0, 1}, {2015, 1, 0}, {2015, 1, 32}})
        EXPECT_FALSE(Date::fromYmd(y, m, d)) << y << '-' << m << '-' << d;
}

TEST(Date, DayNumbersCountFromTheEpochAndRoundTrip) {
    EXPECT_TRUE(Date{}.isNull());
    EXPECT_EQ(ymd(1899, 12, 31).serial(), 1);
    EXPECT_EQ(ymd(2015, 12, 31).serial(), 42369);
    EXPECT_EQ(daysBetween(ymd(2016, 1, 1), ymd(2017, 1, 1)), 366);

    const std::int32_t first = ymd(100, 1, 1).serial(), last = ymd(9999, 12, 31).serial();
    int py = 99, pm = 12, pd = 31;
    for (std::int32_t s = first; s <= last; ++s) {
        int y, m, d;
        Date::fromSerial(s).ymd(y, m, d);
        // Each day follows the one before it in the calendar.
        const bool next = (y == py && m == pm && d == pd + 1) ||
                          (y == py && m == pm + 1 && d == 1 && pd == daysInMonth(py, pm)) ||
                          (y == py + 1 && m == 1 && d == 1 && pm == 12 && pd == 31);
        ASSERT_TRUE(next) << s << ": " << y << '-' << m << '-' << d;
        ASSERT_EQ(Date::fromYmd(y, m, d)->serial(), s);
        py = y, pm = m, pd = d;
    }
}

TEST(Date, AddMonthsCutsToTheEndOfAShorterMonth) {
    EXPECT_EQ(ymd(2015, 10, 31).addMonths(4), ymd(2016, 2, 29));
    EXPECT_EQ(ymd(2015, 1, 31).addMonths(1), ymd(2015, 2, 28));
    EXPECT_EQ(ymd(2015, 3, 31).addMonths(-1), ymd(2015, 2, 28));
    EXPECT_EQ(ymd(2015, 12, 31).addMonths(1), ymd(2016, 1, 31));
    EXPECT_EQ(ymd(2015, 6, 30).addMonths(-30), ymd(2012, 12, 30));
    EXPECT_TRUE(Date{}.addMonths(3).isNull());
}

TEST(Date, IsoText) {
    EXPECT_EQ(parseIsoDate("2015-02-28"), ymd(2015, 2, 28));
    for (const char* t : {"2015-02-30", "2015-2-3", "2015/02/03", "2015-02-0x", ""})
        EXPECT_FALSE(parseIsoDate(t)) << t;
    EXPECT_EQ(formatIsoDate(ymd(1948, 1, 5)), "1948-01-05");
    EXPECT_EQ(formatIsoDate(Date{}), "");
}

}  // namespace
}  // namespace zelmor
