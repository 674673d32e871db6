#include "core/values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace zelmor {
namespace {

TEST(BlankValue, ExactlyTheFiveSentinels) {
    for (const char* t : {"", "  /  /    ", "0:00:00", "00:00:00", "0"})
        EXPECT_TRUE(IsBlankValue(t)) << '"' << t << '"';
    for (const char* t : {" ", "   ", "\t", "00", "0.0", " 0", "0 ", "0:00", "  /  /     "})
        EXPECT_FALSE(IsBlankValue(t)) << '"' << t << '"';
}

TEST(ParseAmount, AcceptedForms) {
    EXPECT_EQ(ParseAmount("1,234"), Amount(1234));
    EXPECT_EQ(ParseAmount("0"), Amount(0));
    EXPECT_EQ(ParseAmount(""), Amount(0));
    EXPECT_EQ(ParseAmount("  /  /    "), Amount(0));
    EXPECT_EQ(ParseAmount("  1,234  "), Amount(1234));
    EXPECT_EQ(ParseAmount("-1,234"), Amount(-1234));
    EXPECT_EQ(ParseAmount("1,234-"), Amount(-1234));
    EXPECT_EQ(ParseAmount("+17"), Amount(17));
    EXPECT_EQ(ParseAmount("0-"), Amount(0));
    EXPECT_EQ(ParseAmount("12,345,678.49"), Amount(12345678));
    EXPECT_EQ(ParseAmount(".6"), Amount(1));
    EXPECT_EQ(ParseAmount("7."), Amount(7));
}

TEST(ParseAmount, RoundsTiesToEven) {
    EXPECT_EQ(ParseAmount("1.5"), Amount(2));
    EXPECT_EQ(ParseAmount("2.5"), Amount(2));
    EXPECT_EQ(ParseAmount("3.5"), Amount(4));
    EXPECT_EQ(ParseAmount("0.5"), Amount(0));
    EXPECT_EQ(ParseAmount("-2.5"), Amount(-2));
    EXPECT_EQ(ParseAmount("2.5-"), Amount(-2));
    EXPECT_EQ(ParseAmount("2.51"), Amount(3));
}

TEST(ParseAmount, RangeLimits) {
    EXPECT_EQ(ParseAmount("2147483647"), Amount(std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(ParseAmount("-2147483648"), Amount(std::numeric_limits<std::int32_t>::min()));
    EXPECT_EQ(ParseAmount("2,147,483,648-"), Amount(std::numeric_limits<std::int32_t>::min()));
    EXPECT_EQ(ParseAmount("2147483646.5"), Amount(2147483646));
    EXPECT_THROW(ParseAmount("2147483647.5"), OverflowError);  // the tie goes up to 2^31
    EXPECT_THROW(ParseAmount("3000000000"), OverflowError);
    EXPECT_THROW(ParseAmount("-2147483649"), OverflowError);
    EXPECT_THROW(ParseAmount(std::string(400, '9')), OverflowError);
    EXPECT_EQ(ParseAmount("abc"), Amount(0));  // unparseable text survives as 0
}

TEST(IsValidAmount, AcceptsAndRefuses) {
    for (const char* t : {"", "0", "  /  /    ", "70000", "1,234.56", "+5", "-5", "5-", ".5", "0-",
                          "1,234,567", " 12 ", "2147483647", "-2147483648", "2147483647.4"})
        EXPECT_TRUE(IsValidAmount(t)) << '"' << t << '"';
    for (const char* t : {"abc", "1..2", "--1", "-", "+", "1 234", "   ", "1,23", "12,3456", ",123",
                          "1,234,", "1,,234", "1234,567", "1-2", "-1-", "+1-", "- 1", "1e5", ".",
                          "1.2.3", "1.2,3", "3000000000", "2147483648", "-2147483649",
                          "2147483647.5", "0x10", "１２", "12abc"})
        EXPECT_FALSE(IsValidAmount(t)) << '"' << t << '"';
    EXPECT_FALSE(IsValidAmount(std::string(400, '9')));
}

TEST(Whole, SixteenBitLimitsAndFractions) {
    for (const char* t : {"", "0", "32767", "-32768", "32,767", "1.0", "12-"})
        EXPECT_TRUE(IsValidWhole(t)) << '"' << t << '"';
    for (const char* t : {"32768", "-32769", "70000", "1.5", "32767.4", "abc", "   ", "1 2"})
        EXPECT_FALSE(IsValidWhole(t)) << '"' << t << '"';
    EXPECT_TRUE(IsValidAmount("70000"));

    EXPECT_EQ(ParseWhole(""), 0);
    EXPECT_EQ(ParseWhole("32767"), 32767);
    EXPECT_EQ(ParseWhole("-32768"), -32768);
    EXPECT_EQ(ParseWhole("2.5"), 2);
    EXPECT_EQ(ParseWhole("3.5"), 4);
    EXPECT_EQ(ParseWhole("-0.5"), 0);
    EXPECT_EQ(ParseWhole("32767.4"), 32767);
    EXPECT_EQ(ParseWhole("xyz"), 0);
    EXPECT_THROW(ParseWhole("70000"), OverflowError);
    EXPECT_THROW(ParseWhole("32767.5"), OverflowError);
}

TEST(FormatAmount, ZeroIsBlank) {
    EXPECT_EQ(FormatAmount(0, 0), "");
    EXPECT_EQ(FormatAmount(0, 2), "");
    EXPECT_EQ(FormatAmount(-0.0, 1), "");
    EXPECT_EQ(FormatAmount(std::nan(""), 0), "");
    EXPECT_EQ(FormatAmount(std::numeric_limits<double>::infinity(), 0), "");
}

TEST(FormatAmount, PatternsAndSignBehind) {
    EXPECT_EQ(FormatAmount(-1234, 0), "1,234-");
    EXPECT_EQ(FormatAmount(1234, 0), "1,234");
    EXPECT_EQ(FormatAmount(999, 0), "999");
    EXPECT_EQ(FormatAmount(1234567, 0), "1,234,567");
    EXPECT_EQ(FormatAmount(1234.5, 1), "1,234.5");
    EXPECT_EQ(FormatAmount(1234.5, 7), "1,234.50");
    EXPECT_EQ(FormatAmount(1234.5, -1), "1,234.50");
    EXPECT_EQ(FormatAmount(-0.2, 0), "0-");
    EXPECT_EQ(FormatAmount(0.2, 0), "0");
    EXPECT_EQ(FormatAmount(0.04, 1), "0.0");
    EXPECT_EQ(FormatAmount(-0.001, 2), "0.00-");
    EXPECT_EQ(FormatAmount(1e-20, 0), "0");
    EXPECT_EQ(FormatAmount(2147483647, 0), "2,147,483,647");
    EXPECT_EQ(FormatAmount(-2147483648.0, 0), "2,147,483,648-");
    EXPECT_EQ(FormatAmount(1e20, 0), "100,000,000,000,000,000,000");
}

TEST(FormatAmount, HalvesAwayFromZeroDespiteBinaryFractions) {
    EXPECT_EQ(FormatAmount(1234.5, 0), "1,235");
    EXPECT_EQ(FormatAmount(-1234.5, 0), "1,235-");
    EXPECT_EQ(FormatAmount(2.5, 0), "3");
    EXPECT_EQ(FormatAmount(0.5, 0), "1");
    EXPECT_EQ(FormatAmount(-0.5, 0), "1-");
    EXPECT_EQ(FormatAmount(0.125, 2), "0.13");
    EXPECT_EQ(FormatAmount(1.005, 2), "1.01");   // 1.00499999... in binary
    EXPECT_EQ(FormatAmount(2.675, 2), "2.68");   // 2.67499999... in binary
    EXPECT_EQ(FormatAmount(0.05, 1), "0.1");
    EXPECT_EQ(FormatAmount(0.1 + 0.2, 2), "0.30");
    EXPECT_EQ(FormatAmount(1.4999999, 0), "1");
    EXPECT_EQ(FormatAmount(999.5, 0), "1,000");
    EXPECT_EQ(FormatAmount(999999.995, 2), "1,000,000.00");
    EXPECT_EQ(FormatAmount(9.96, 1), "10.0");
}

// What a screen shows must read back as the same value.
TEST(FormatAmount, RoundTripsThroughParse) {
    std::vector<std::int64_t> values;
    for (std::int64_t v = -200000; v <= 200000; v += 7) values.push_back(v);
    for (std::int64_t p = 1; p <= 1000000000; p *= 10)
        for (std::int64_t d : {-1, 0, 1}) {
            values.push_back(p + d);
            values.push_back(-(p + d));
        }
    for (std::int64_t v : {2147483647LL, 2147483646LL, -2147483648LL, -2147483647LL})
        values.push_back(v);

    for (std::int64_t v : values) {
        const std::string shown = FormatAmount(static_cast<double>(v), 0);
        ASSERT_TRUE(IsValidAmount(shown)) << v << " shown as " << shown;
        ASSERT_EQ(ParseAmount(shown).value(), v) << "shown as " << shown;
    }
    for (std::int64_t cents = -1000000; cents <= 1000000; cents += 37) {
        const double x = static_cast<double>(cents) / 100.0;
        const std::string shown = FormatAmount(x, 2);
        const auto back = parseNumber(shown.empty() ? "0" : shown);
        ASSERT_TRUE(back.has_value()) << shown;
        ASSERT_EQ(*back, x) << "shown as " << shown;
    }
}

TEST(DateText, AcceptedAndRefused) {
    for (const char* t : {"", "  /  /    ", "31/12/2015", "1/2/2015", "01.02.2015", "1-2-2015",
                          "29/02/2016", " 5/ 3/2015", " 31/12/2015 "})
        EXPECT_TRUE(IsValidDateText(t)) << '"' << t << '"';
    for (const char* t : {"31/02/2015", "29/02/2015", "32/01/2015", "00/01/2015", "01/13/2015",
                          "01/00/2015", "1/2/15", "1/2/20155", "1/2-2015", "1/2/2015/3", "abc",
                          "  /  /2015", "2015-02-03", "123/1/2015", "1//2015", "   "})
        EXPECT_FALSE(IsValidDateText(t)) << '"' << t << '"';
}

TEST(DateText, ParseAndFormat) {
    EXPECT_EQ(ParseDate("31/12/2015"), *Date::fromYmd(2015, 12, 31));
    EXPECT_EQ(ParseDate("1.2.2015"), *Date::fromYmd(2015, 2, 1));
    EXPECT_TRUE(ParseDate("  /  /    ").isNull());
    EXPECT_TRUE(ParseDate("").isNull());
    EXPECT_TRUE(ParseDate("31/02/2015").isNull());
    EXPECT_TRUE(ParseDate("not a date").isNull());

    EXPECT_EQ(FormatDate(Date{}), "  /  /    ");
    EXPECT_EQ(FormatDate(*Date::fromYmd(2015, 2, 1)), "01/02/2015");
    EXPECT_EQ(ParseDate(FormatDate(Date{})), Date{});

    const Date start = *Date::fromYmd(1900, 1, 1), end = *Date::fromYmd(2100, 12, 31);
    for (std::int32_t s = start.serial(); s <= end.serial(); s += 3) {
        const Date d = Date::fromSerial(s);
        ASSERT_EQ(ParseDate(FormatDate(d)), d) << FormatDate(d);
    }
}

TEST(PhasedLevy, BoundsAndPhaseIn) {
    EXPECT_EQ(PhasedLevy(525000, 0), Amount(2625));
    EXPECT_EQ(PhasedLevy(500000, 0), Amount(0));
    EXPECT_EQ(PhasedLevy(500001, 0), Amount(0));        // 2500.005 - 2499.9
    EXPECT_EQ(PhasedLevy(510000, 0), Amount(1050));     // 2550 - 1500
    EXPECT_EQ(PhasedLevy(525001, 999999), Amount(2625));  // 2625.005; the other base plays no part
    EXPECT_EQ(PhasedLevy(600000, 0), Amount(3000));
    EXPECT_EQ(PhasedLevy(0, 378001), Amount(1890));
    EXPECT_EQ(PhasedLevy(0, 378000), Amount(1890));
    EXPECT_EQ(PhasedLevy(0, 360000), Amount(0));
    EXPECT_EQ(PhasedLevy(0, 370000), Amount(1050));     // 1850 - 800
    EXPECT_EQ(PhasedLevy(0, 0), Amount(0));
    EXPECT_EQ(PhasedLevy(-5000, -5000), Amount(0));
}

TEST(PhasedLevy, LargerOfTheTwoBases) {
    EXPECT_EQ(PhasedLevy(510000, 378001), Amount(1890));  // the other base is larger
    EXPECT_EQ(PhasedLevy(524000, 378001), Amount(2520));  // the income is larger
    EXPECT_EQ(PhasedLevy(510000, 370000), Amount(1050));  // equal: the income's levy
    // Ties of the rounding go to the even shekel: 0.005 x 500,100 = 2500.5.
    EXPECT_EQ(PhasedLevy(0, 500100), Amount(2500));
    EXPECT_EQ(PhasedLevy(0, 500300), Amount(2502));
}

TEST(MinMaxLong, TiesAndOrder) {
    EXPECT_EQ(MinLong(5, 5), Amount(5));
    EXPECT_EQ(MaxLong(5, 5), Amount(5));
    EXPECT_EQ(MinLong(-3, 7), Amount(-3));
    EXPECT_EQ(MaxLong(-3, 7), Amount(7));
}

TEST(SmallHelpers, FilesTextLengthAndTrim) {
    EXPECT_TRUE(FileExists(ZELMOR_SOURCE_DIR "/CMakeLists.txt"));
    EXPECT_FALSE(FileExists(ZELMOR_SOURCE_DIR "/no-such-file.txt"));
    EXPECT_FALSE(FileExists(ZELMOR_SOURCE_DIR));  // a folder is no file
    EXPECT_FALSE(FileExists(""));

    EXPECT_EQ(utf8Length(""), 0u);
    EXPECT_EQ(utf8Length("abc"), 3u);
    EXPECT_EQ(utf8Length("שלום"), 4u);
    EXPECT_EQ(utf8Length("בן/בת הזוג 2015"), 15u);

    EXPECT_EQ(trimmed(" \t a b \t "), "a b");
    EXPECT_EQ(trimmed("   "), "");
    EXPECT_EQ(trimmed("x"), "x");
}

TEST(NullDefault, MissingValueTakesTheFallback) {
    EXPECT_EQ(NullDefault<int>(std::nullopt, 7), 7);
    EXPECT_EQ(NullDefault<int>(3, 7), 3);
}

}  // namespace
}  // namespace zelmor
