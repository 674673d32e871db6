#include "core/amount.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zelmor {
namespace {

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

TEST(Amount, ArithmeticRaisesInsteadOfWrapping) {
    EXPECT_THROW(Amount(kMax) + Amount(1), OverflowError);
    EXPECT_THROW(Amount(kMin) - Amount(1), OverflowError);
    EXPECT_THROW(-Amount(kMin), OverflowError);
    EXPECT_THROW(Amount(46341) * 46341, OverflowError);
    EXPECT_THROW(-2 * Amount(1073741824 + 1), OverflowError);
    Amount acc(kMax);
    EXPECT_THROW(acc += Amount(1), OverflowError);
    EXPECT_EQ(acc, Amount(kMax));  // a failed sum leaves the amount as it was

    EXPECT_EQ(Amount(46340) * 46340, Amount(2147395600));
    EXPECT_EQ(-2 * Amount(1073741824), Amount(kMin));
    EXPECT_EQ(Amount(kMin) + Amount(kMax), Amount(-1));
}

TEST(R, TiesGoToTheEvenShekelWithinRange) {
    const struct {
        double x;
        std::int32_t expected;
    } cases[] = {
        {0.5, 0}, {1.5, 2}, {2.5, 2}, {3.5, 4}, {-0.5, 0}, {-2.5, -2}, {-3.5, -4},
        {2.5000001, 3}, {-1.4999999, -1}, {2147483647.4, kMax},
        {-2147483648.5, kMin},  // the tie goes to the even neighbour, in range
    };
    for (const auto& c : cases) EXPECT_EQ(R(c.x), Amount(c.expected)) << c.x;
    for (double x : {2147483647.5, -2147483649.0, 1e300, std::nan(""),
                     std::numeric_limits<double>::infinity()})
        EXPECT_THROW(R(x), OverflowError) << x;
}

TEST(Count, SixteenBitArithmeticIsChecked) {
    EXPECT_EQ(addCount(32766, 1), 32767);
    EXPECT_THROW(addCount(32767, 1), OverflowError);
    EXPECT_THROW(addCount(-32768, -1), OverflowError);
    EXPECT_EQ(mulCount(181, 181), 32761);
    EXPECT_THROW(mulCount(182, 181), OverflowError);
}

}  // namespace
}  // namespace zelmor
