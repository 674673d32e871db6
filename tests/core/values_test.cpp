#include "core/values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace zelmor {
namespace {

TEST(BlankValue, ExactlyTheFiveSentinels) {
    for (const char* t : {"", "  /  /    ", "0:00:00", "00:00:00", "0"})
        EXPECT_TRUE(IsBlankValue(t)) << '"' << t << '"';
    for (const char* t : {" ", "   ", "\t", "00", "0.0", " 0", "0:00", "  /  /     "})
        EXPECT_FALSE(IsBlankValue(t)) << '"' << t << '"';
}

TEST(ParseAmount, FormsTiesAndRange) {
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    const struct {
        const char* text;
        std::int32_t expected;
    } cases[] = {
        {"1,234", 1234}, {"", 0}, {"  /  /    ", 0}, {"  1,234  ", 1234}, {"-1,234", -1234},
        {"1,234-", -1234}, {"+17", 17}, {"0-", 0}, {"12,345,678.49", 12345678}, {".6", 1},
        {"7.", 7}, {"abc", 0},  // unparseable text survives as 0
        // Ties go to the even shekel.
        {"1.5", 2}, {"2.5", 2}, {"3.5", 4}, {"0.5", 0}, {"-2.5", -2}, {"2.5-", -2}, {"2.51", 3},
        {"2147483647", kMax}, {"2,147,483,648-", kMin}, {"2147483646.5", 2147483646},
    };
    for (const auto& c : cases) EXPECT_EQ(ParseAmount(c.text), Amount(c.expected)) << c.text;
    // "2147483647.5": the tie goes up to 2^31.
    for (const char* t : {"2147483647.5", "3000000000", "-2147483649"})
        EXPECT_THROW(ParseAmount(t), OverflowError) << t;
    EXPECT_THROW(ParseAmount(std::string(400, '9')), OverflowError);
}

TEST(IsValidAmount, ThirtyTwoBitRangeAndForms) {
    for (const char* t : {"", "0", "  /  /    ", "70000", "1,234.56", "+5", "5-", ".5", "0-",
                          "1,234,567", " 12 ", "-2147483648", "2147483647.4"})
        EXPECT_TRUE(IsValidAmount(t)) << '"' << t << '"';
    for (const char* t : {"abc", "1..2", "--1", "-", "1 234", "   ", "1,23", "12,3456", ",123",
                          "1,234,", "1234,567", "1-2", "+1-", "1e5", ".", "1.2,3", "3000000000",
                          "2147483648", "2147483647.5", "0x10", "12abc"})
        EXPECT_FALSE(IsValidAmount(t)) << '"' << t << '"';
}

TEST(Whole, SixteenBitRangeAndTiesToEven) {
    for (const char* t : {"", "0", "32767", "-32768", "32,767", "1.0", "12-"})
        EXPECT_TRUE(IsValidWhole(t)) << '"' << t << '"';
    for (const char* t : {"32768", "-32769", "70000", "1.5", "32767.4", "abc", "   "})
        EXPECT_FALSE(IsValidWhole(t)) << '"' << t << '"';
    for (auto [t, n] : {std::pair{"", 0}, {"-32768", -32768}, {"2.5", 2}, {"3.5", 4},
                        {"32767.4", 32767}, {"xyz", 0}})
        EXPECT_EQ(ParseWhole(t), n) << t;
    EXPECT_THROW(ParseWhole("70000"), OverflowError);
    EXPECT_THROW(ParseWhole("32767.5"), OverflowError);
}

TEST(FormatAmount, BlankZeroSignBehindAndHalvesAwayFromZero) {
    const struct {
        double value;
        int decimals;
        const char* expected;
    } cases[] = {
        {0, 0, ""}, {0, 2, ""}, {-0.0, 1, ""}, {std::nan(""), 0, ""},
        {std::numeric_limits<double>::infinity(), 0, ""},
        {1234, 0, "1,234"}, {-1234, 0, "1,234-"}, {1234567, 0, "1,234,567"},
        // One decimal for 1; two for any other count.
        {1234.5, 1, "1,234.5"}, {1234.5, 7, "1,234.50"}, {1234.5, -1, "1,234.50"},
        {-0.2, 0, "0-"}, {0.2, 0, "0"}, {0.04, 1, "0.0"}, {-0.001, 2, "0.00-"},
        {-2147483648.0, 0, "2,147,483,648-"}, {1e20, 0, "100,000,000,000,000,000,000"},
        {1234.5, 0, "1,235"}, {-1234.5, 0, "1,235-"}, {2.5, 0, "3"}, {-0.5, 0, "1-"},
        {1.005, 2, "1.01"}, {2.675, 2, "2.68"},  // 1.00499999..., 2.67499999... in binary
        {0.05, 1, "0.1"}, {0.1 + 0.2, 2, "0.30"}, {1.4999999, 0, "1"},
        {999999.995, 2, "1,000,000.00"}, {9.96, 1, "10.0"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(FormatAmount(c.value, c.decimals), c.expected) << c.value << '/' << c.decimals;
}

// What a screen shows must read back as the same value.
TEST(FormatAmount, RoundTripsThroughParse) {
    std::vector<std::int64_t> values{2147483647LL, -2147483648LL, -2147483647LL};
    for (std::int64_t v = -200000; v <= 200000; v += 7) values.push_back(v);
    for (std::int64_t p = 1; p <= 1000000000; p *= 10)
        for (std::int64_t d : {-1, 0, 1}) values.insert(values.end(), {p + d, -(p + d)});
    for (std::int64_t v : values) {
        const std::string shown = FormatAmount(static_cast<double>(v), 0);
        ASSERT_TRUE(IsValidAmount(shown)) << v << " shown as " << shown;
        ASSERT_EQ(ParseAmount(shown).value(), v) << "shown as " << shown;
    }
    for (std::int64_t cents = -1000000; cents <= 1000000; cents += 37) {
        const double x = static_cast<double>(cents) / 100.0;
        const std::string shown = FormatAmount(x, 2);
        ASSERT_EQ(parseNumber(shown.empty() ? "0" : shown), x) << "shown as " << shown;
    }
}

TEST(DateText, ValidityParseAndFormat) {
    for (const char* t : {"", "  /  /    ", "31/12/2015", "1/2/2015", "01.02.2015", "1-2-2015",
                          "29/02/2016", " 5/ 3/2015"})
        EXPECT_TRUE(IsValidDateText(t)) << '"' << t << '"';
    for (const char* t : {"31/02/2015", "29/02/2015", "32/01/2015", "01/13/2015", "1/2/15",
                          "1/2-2015", "1/2/2015/3", "  /  /2015", "2015-02-03", "   "})
        EXPECT_FALSE(IsValidDateText(t)) << '"' << t << '"';

    EXPECT_EQ(ParseDate("1.2.2015"), *Date::fromYmd(2015, 2, 1));
    for (const char* t : {"  /  /    ", "", "31/02/2015", "not a date"})
        EXPECT_TRUE(ParseDate(t).isNull()) << t;
    EXPECT_EQ(FormatDate(Date{}), "  /  /    ");
    EXPECT_EQ(FormatDate(*Date::fromYmd(2015, 2, 1)), "01/02/2015");
    const Date start = *Date::fromYmd(1900, 1, 1), end = *Date::fromYmd(2100, 12, 31);
    for (std::int32_t s = start.serial(); s <= end.serial(); s += 3) {
        const Date d = Date::fromSerial(s);
        ASSERT_EQ(ParseDate(FormatDate(d)), d) << FormatDate(d);
    }
}

TEST(PhasedLevy, PhaseInOfEachBaseAndTheLarger) {
    const struct {
        std::int32_t income, other, expected;
    } cases[] = {
        {500000, 0, 0}, {500001, 0, 0},          // 2500.005 - 2499.9
        {510000, 0, 1050},                       // 2550 - 1500
        {525000, 0, 2625}, {525001, 999999, 2625},  // above 525,000 the other base plays no part
        {0, 360000, 0}, {0, 370000, 1050},       // 1850 - 800
        {0, 378000, 1890}, {0, 378001, 1890}, {-5000, -5000, 0},
        {510000, 378001, 1890}, {524000, 378001, 2520}, {510000, 370000, 1050},
        {0, 500100, 2500}, {0, 500300, 2502},    // 2500.5 and 2501.5: ties to the even shekel
    };
    for (const auto& c : cases)
        EXPECT_EQ(PhasedLevy(c.income, c.other), Amount(c.expected)) << c.income << ", " << c.other;
}

TEST(SmallHelpers, FilesTextLengthAndTrim) {
    EXPECT_TRUE(FileExists(ZELMOR_SOURCE_DIR "/CMakeLists.txt"));
    EXPECT_FALSE(FileExists(ZELMOR_SOURCE_DIR "/no-such-file.txt"));
    EXPECT_FALSE(FileExists(ZELMOR_SOURCE_DIR));  // a folder is no file
    EXPECT_EQ(utf8Length("בן/בת הזוג 2015"), 15u);
    EXPECT_EQ(trimmed(" \t a b \t "), "a b");
    EXPECT_EQ(trimmed("   "), "");
}

}  // namespace
}  // namespace zelmor
