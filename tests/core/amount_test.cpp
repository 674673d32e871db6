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
    EXPECT_THROW(Amount(65536) * Amount(65536), OverflowError);
    EXPECT_THROW(-2 * Amount(1073741824 + 1), OverflowError);
    Amount acc(kMax - 1);
    acc += Amount(1);
    EXPECT_EQ(acc, Amount(kMax));
    EXPECT_THROW(acc += Amount(1), OverflowError);
    EXPECT_EQ(acc, Amount(kMax));  // a failed sum leaves the amount as it was

    EXPECT_EQ(Amount(46340) * 46340, Amount(2147395600));
    EXPECT_EQ(-2 * Amount(1073741824), Amount(kMin));
    EXPECT_EQ(Amount(kMin) + Amount(kMax), Amount(-1));
    EXPECT_EQ(-Amount(kMax), Amount(-kMax));
}

TEST(Amount, ProductWithARateIsADouble) {
    const double d = Amount(147600) * 0.04;
    EXPECT_DOUBLE_EQ(d, 5904.0);
    EXPECT_DOUBLE_EQ(Amount(10) / 4.0, 2.5);
}

TEST(R, TiesGoToTheEvenShekel) {
    EXPECT_EQ(R(0.5), Amount(0));
    EXPECT_EQ(R(1.5), Amount(2));
    EXPECT_EQ(R(2.5), Amount(2));
    EXPECT_EQ(R(3.5), Amount(4));
    EXPECT_EQ(R(-0.5), Amount(0));
    EXPECT_EQ(R(-2.5), Amount(-2));
    EXPECT_EQ(R(-3.5), Amount(-4));
    EXPECT_EQ(R(2.5000001), Amount(3));
    EXPECT_EQ(R(-1.4999999), Amount(-1));
}

TEST(R, RangeOfTheResult) {
    EXPECT_EQ(R(2147483647.4), Amount(kMax));
    EXPECT_EQ(R(-2147483648.5), Amount(kMin));  // the tie goes to the even neighbour, in range
    EXPECT_THROW(R(2147483647.5), OverflowError);
    EXPECT_THROW(R(-2147483649.0), OverflowError);
    EXPECT_THROW(R(1e300), OverflowError);
    EXPECT_THROW(R(std::nan("")), OverflowError);
    EXPECT_THROW(R(std::numeric_limits<double>::infinity()), OverflowError);
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
