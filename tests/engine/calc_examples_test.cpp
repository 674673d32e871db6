// The worked examples of the calculation, figure by figure.

#include "engine/calc_test_util.h"

namespace zelmor::testing {
namespace {

INSTANTIATE_TEST_SUITE_P(
    WorkedExamples, Rules,
    ::testing::ValuesIn(std::vector<RuleCase>{
        {"IncomeWithDeductionsLargerThanRegularIncome", Single,
         "N158=120000 N201=30000 N213=40000 N214=10000 N211=50000 "
         "N116=200000",
         {{"FilingMode", ModeSingle}, {"CHachnasot.N213A", 17880}, {"CHachnasot.N214A", 0},
          {"CMeyuchad.N213B", 22120} /* what stays at 35% */, {"CMeyuchad.N214B", 10000},
          {"CMeyuchad.NET_214B", 0}, {"CMeyuchad.NET_213B", 0}, {"CMeyuchad.NET_211", 50000},
          {"CNikuim.TTLM1", 200000}, {"CNikuim.TTLM3", 120000 + 47880} /* both scales used up */,
          {"CNikuim.TTLM0", 0}, {"CHishuv.MSUM_TTL", 0}}},
        {"EarnedLossEatsPropertyThenSpecialRateLines", Single, "YegiaM=-50000 N201=20000 N211=100000 N241=10000",
         {{"CHishuv.MSUM_TTL", 0}, {"CMeyuchad.NET_241", 0}, {"CMeyuchad.NET_211", 80000},
          {"CMeyuchad.MAS_211", 12000}}},
        // The second pension limit beats the general one (16,236).
        {"DeductionsInTheirOrder", Single, "N150=300000 N136=20000 N112=5000 N135=30000 N030=25000",
         {{"CNikuim.N136H", 11835}, {"CNikuim.N112H", 5000}, {"CNikuim.N135H", 22968}, {"CNikuim.N030H", 13000},
          {"CNikuim.TTLM1", 52803}, {"CMain.HachnasaNetM", 247197}}}}),
    ruleName);

struct BracketCase {
    std::int32_t Y, L;
    std::int32_t sums[7];
    std::int32_t taxes[7];
    std::int32_t total;
};

class BracketTax : public ::testing::TestWithParam<BracketCase> {};

TEST_P(BracketTax, SpreadsEarnedAndStackedIncome) {
    const BracketCase& bc = GetParam();
    const CalcResult r = calc(with(single(), "N158=" + std::to_string(bc.Y) + " N201=" + std::to_string(bc.L)));
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(figure(r, "CHishuv.MSUM_" + std::to_string(i + 1)), bc.sums[i]) << "bracket " << i + 1;
        EXPECT_EQ(figure(r, "CHishuv.MMAS_" + std::to_string(i + 1)), bc.taxes[i]) << "bracket " << i + 1;
    }
    EXPECT_EQ(r.out.Hishuv.MMAS_TTL, bc.total);
    EXPECT_EQ(r.out.Hishuv.MSUM_TTL, bc.Y + bc.L);
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

}  // namespace
}  // namespace zelmor::testing
