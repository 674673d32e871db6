// The worked examples of the calculation, figure by figure.

#include "engine/calc_test_util.h"

namespace zelmor::testing {
namespace {

TEST(WorkedExamples, IncomeWithDeductionsLargerThanRegularIncome) {
    NishumInput n = single();
    n.Yegia.N158 = 120000;
    n.Yegia.N201 = 30000;
    n.Rechush.N213 = 40000;
    n.Rechush.N214 = 10000;
    n.Rechush.N211 = 50000;
    n.Nikuim.N116 = 200000;
    const CalcResult r = calc(n);
    EXPECT_EQ(r.FilingMode, ModeSingle);
    EXPECT_EQ(r.out.Hachnasot.N213A, 17880);
    EXPECT_EQ(r.out.Hachnasot.N214A, 0);
    EXPECT_EQ(r.out.Meyuchad.N213B, 22120);  // what stays at 35%
    EXPECT_EQ(r.out.Meyuchad.N214B, 10000);
    EXPECT_EQ(r.out.Meyuchad.NET_214B, 0);
    EXPECT_EQ(r.out.Meyuchad.NET_213B, 0);
    EXPECT_EQ(r.out.Meyuchad.NET_211, 50000);
    EXPECT_EQ(r.out.Nikuim.TTLM1, 200000);
    EXPECT_EQ(r.out.Nikuim.TTLM3, 120000 + 47880);  // both scales used up
    EXPECT_EQ(r.out.Nikuim.TTLM0, 0);
    EXPECT_EQ(r.out.Hishuv.MSUM_TTL, 0);
}

TEST(WorkedExamples, EarnedLossEatsPropertyThenSpecialRateLines) {
    NishumInput n = single();
    n.Yegia.YegiaM = -50000;
    n.Yegia.N201 = 20000;
    n.Rechush.N211 = 100000;
    n.Rechush.N241 = 10000;
    const CalcResult r = calc(n);
    EXPECT_EQ(r.out.Hishuv.MSUM_TTL, 0);
    EXPECT_EQ(r.out.Meyuchad.NET_241, 0);
    EXPECT_EQ(r.out.Meyuchad.NET_211, 80000);
    EXPECT_EQ(r.out.Meyuchad.MAS_211, 12000);
}

TEST(WorkedExamples, DeductionsInTheirOrder) {
    NishumInput n = single();
    n.Yegia.N150 = 300000;
    n.Nikuim.N136 = 20000;
    n.Nikuim.N112 = 5000;
    n.Nikuim.N135 = 30000;
    n.Nikuim.N030 = 25000;
    const CalcResult r = calc(n);
    const auto& k = r.out.Nikuim;
    EXPECT_EQ(k.N136H, 11835);
    EXPECT_EQ(k.N112H, 5000);
    EXPECT_EQ(k.N135H, 22968);  // the second pension limit beats the general one (16236)
    EXPECT_EQ(k.N030H, 13000);
    EXPECT_EQ(k.TTLM1, 52803);
    EXPECT_EQ(r.out.Main.HachnasaNetM, 247197);
}

struct BracketCase {
    std::int32_t Y, L;
    std::int32_t sums[7];
    std::int32_t taxes[7];
    std::int32_t total;
};

class BracketTax : public ::testing::TestWithParam<BracketCase> {};

TEST_P(BracketTax, SpreadsEarnedAndStackedIncome) {
    const BracketCase& bc = GetParam();
    NishumInput n = single();
    n.Yegia.N158 = bc.Y;
    n.Yegia.N201 = bc.L;
    const auto& h = calc(n).out.Hishuv;
    const Amount sums[] = {h.MSUM_1, h.MSUM_2, h.MSUM_3, h.MSUM_4, h.MSUM_5, h.MSUM_6, h.MSUM_7};
    const Amount taxes[] = {h.MMAS_1, h.MMAS_2, h.MMAS_3, h.MMAS_4, h.MMAS_5, h.MMAS_6, h.MMAS_7};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(sums[i], bc.sums[i]) << "bracket " << i + 1;
        EXPECT_EQ(taxes[i], bc.taxes[i]) << "bracket " << i + 1;
    }
    EXPECT_EQ(h.MMAS_TTL, bc.total);
    EXPECT_EQ(h.MSUM_TTL, bc.Y + bc.L);
}

INSTANTIATE_TEST_SUITE_P(
    Examples, BracketTax,
    ::testing::Values(
        BracketCase{100000, 200000, {63240, 36760, 0, 139760, 60240, 0, 0}, {6324, 5146, 0, 43326, 20482, 0, 0}, 75278},
        BracketCase{300000, 50000, {63240, 44760, 59880, 71880, 110240, 0, 0}, {6324, 6266, 12575, 22283, 37482, 0, 0},
                    84930},
        BracketCase{0, 1000000, {0, 0, 0, 239760, 261720, 309240, 189280}, {0, 0, 0, 74326, 88985, 148435, 94640},
                    406386},
        // Bounds belong to the lower bracket; earned income above the top of
        // the non-earned scale sends all of it to the top rate.
        BracketCase{63240, 0, {63240, 0, 0, 0, 0, 0, 0}, {6324, 0, 0, 0, 0, 0, 0}, 6324},
        BracketCase{900000, 10000, {63240, 44760, 59880, 71880, 261720, 309240, 99280},
                    {6324, 6266, 12575, 22283, 88985, 148435, 49640}, 334508}));

TEST(WorkedExamples, InterestAndLinkage) {
    sheets::CMain m;
    m.MasLetashlumTTL = 10000;
    m.MasLetashlumM = 10000;
    FixedMadad flat;
    const Date day = Date::fromSerial(ConstDoch().RIBITBASICDATE().serial() + 365);
    CalcRibit(m, day, ConstDoch(), flat, day);
    EXPECT_EQ(m.Ribit, 400);
    EXPECT_EQ(m.Itra, 10400);

    FixedMadad rising(100.0);
    rising.set(2016, 11, 101.0);  // the index of the date is November's: up 1%
    CalcRibit(m, day, ConstDoch(), rising, day);
    EXPECT_EQ(m.Ribit, 504);
    EXPECT_EQ(m.RibitDate, day);
    EXPECT_EQ(m.ItraDate, day);
}

}  // namespace
}  // namespace zelmor::testing
