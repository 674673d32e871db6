// Rules whose edges guard real faults: ages on their exact dates, the
// exempt-interest pool, the caps of the credits, national insurance bands.

#include "engine/calc_test_util.h"

namespace zelmor::testing {
namespace {

TEST(AgeRules, EarnedScaleAloneFromTheBirthYear) {
    NishumInput n = single();
    n.Yegia.N201 = 100000;  // property at regular rates
    n.Pratim.BirthDateM = ymd(1955, 12, 31);
    EXPECT_EQ(calc(n).out.Hishuv.MSUM_1, 63240);  // all of it on the earned scale
    n.Pratim.BirthDateM = ymd(1956, 1, 1);
    EXPECT_EQ(calc(n).out.Hishuv.MSUM_4, 100000);  // the non-earned scale starts at 31%
    n.Pratim.BirthDateM = Date();
    EXPECT_EQ(calc(n).out.Hishuv.MSUM_4, 100000);  // no date never passes an age test
}

TEST(AgeRules, OlderPersonsPensionLimitFromFirstJanuary) {
    auto pension = [](Date birth) {
        NishumInput n = single();
        n.Pratim.BirthDateM = birth;
        n.Yegia.N150 = 200000;
        n.Nikuim.N135 = 16000;  // below the deposits that open the second limit
        return calc(n).out.Nikuim.N135H;
    };
    const Amount younger = pension(ymd(1965, 1, 2));
    EXPECT_NE(pension(ymd(1965, 1, 1)), younger);
    EXPECT_EQ(pension(ymd(1965, 1, 1)), pension(ymd(1964, 6, 30)));
    EXPECT_EQ(pension(Date()), younger);
}

TEST(StudyFund, NoDeductionBelowTwoAndAHalfPercentOrAboveTheCeiling) {
    NishumInput n = single();
    n.Yegia.N150 = 200000;
    n.Nikuim.N136 = 4000;  // below 2.5% of 200,000
    EXPECT_EQ(calc(n).out.Nikuim.N136H, 0);
    n.Nikuim.N136 = 20000;
    n.Nikuim.N218 = 300000;  // salary with an employer's fund above the ceiling: no base
    EXPECT_EQ(calc(n).out.Nikuim.N136H, 0);
}

TEST(ResearchAndFilm, ShareOneLimitOfFortyFivePercent) {
    NishumInput n = single();
    n.Yegia.N150 = 100000;
    n.Nikuim.N005 = 50000;
    n.Nikuim.N118 = 50000;
    const CalcResult r = calc(n);
    EXPECT_EQ(r.out.Nikuim.N005H, 40000);
    EXPECT_EQ(r.out.Nikuim.N118H, 5000);
}

TEST(WorkDisability, LossMakingBaseAllowsNothing) {
    NishumInput n = single();
    n.Yegia.N150 = -80000;
    n.Yegia.N158 = 50000;
    n.Nikuim.N112 = 3000;
    const CalcResult r = calc(n);
    EXPECT_EQ(r.out.Nikuim.N112S, 3000);
    EXPECT_EQ(r.out.Nikuim.N112H, 0);
}

TEST(ExemptInterest, LowIncomePoolAndItsEdge) {
    auto net217 = [](std::int32_t salary) {
        NishumInput n = single();
        n.Yegia.N158 = salary;
        n.Rechush.N217 = 20000;
        return calc(n).out.Meyuchad.NET_217;
    };
    // Total income for the tests includes the savings line itself.
    EXPECT_EQ(net217(62640 - 20000), 20000 - 9840);
    EXPECT_EQ(net217(62640 - 20000 + 1), 20000 - 9839);
    EXPECT_EQ(net217(62640 + 9840 - 20000), 20000);
}

TEST(ExemptInterest, PoolServesSavingsLinesInOrderAndNotOtherInterest) {
    NishumInput n = single();
    n.Rechush.N217 = 5000;
    n.Rechush.N226 = 5000;
    n.Rechush.N211 = 5000;
    n.Yegia.N158 = 45000;  // total income 60,000: the whole pool of 9,840
    const CalcResult r = calc(n);
    EXPECT_EQ(r.out.Meyuchad.NET_217, 0);
    EXPECT_EQ(r.out.Meyuchad.NET_226, 160);
    EXPECT_EQ(r.out.Meyuchad.NIKUY_226, 4840);
    EXPECT_EQ(r.out.Meyuchad.NET_211, 5000);
    EXPECT_EQ(r.out.Meyuchad.RATE_226, 20);
}

TEST(ExemptInterest, CoupleBothOverSixtyFiveGetTheLargerAddition) {
    NishumInput n = couple();
    n.Pratim.BirthDateM = ymd(1949, 1, 1);
    n.Pratim.BirthDateF = ymd(1950, 1, 1);
    n.Yegia.N158 = 200000;  // no low-income pool
    n.Rechush.N217 = 30000;
    EXPECT_EQ(calc(n).out.Meyuchad.NET_217, 30000 - 16560);
    n.Pratim.BirthDateF = ymd(1960, 1, 1);
    EXPECT_EQ(calc(n).out.Meyuchad.NET_217, Amount(30000 - 13440));
}

TEST(SpecialRates, RentAndGamblingKeepTheirTaxAgainstLossesAndCredits) {
    NishumInput n = single();
    n.Rechush.N222 = 10000;
    n.Yegia.N150 = -50000;
    n.Rechush.N212 = 10000;  // 30% line; the loss reaches it, not the rent
    const CalcResult r = calc(n);
    EXPECT_EQ(r.out.Meyuchad.MAS_222, 1000);
    EXPECT_EQ(r.out.Main.MasMagiaM, 1000);  // credits do not go below it
    EXPECT_LT(r.out.Zikuim.ZIKUY_ODEF_M, 0);
    EXPECT_EQ(r.out.Zikuim.ZIKUY_TTL_M, r.out.Main.MasBrutoM - 1000);
}

TEST(SpecialRates, Reali25IsTaxedAtThirtyPercent) {
    NishumInput n = single();
    n.Pturot.Reali25 = 10000;
    n.Yegia.N158 = 200000;
    const CalcResult r = calc(n);
    EXPECT_EQ(r.out.Meyuchad.N212, 10000);
    EXPECT_EQ(r.out.Meyuchad.MAS_212, 3000);
}

TEST(CreditPoints, ResidentManAndWoman) {
    const CalcResult man = calc(single());
    EXPECT_DOUBLE_EQ(man.out.Zikuim.NEKUDA_020M, 2.25);
    EXPECT_DOUBLE_EQ(man.out.Zikuim.ZIKUY_020M, 5886);
    NishumInput w = single();
    w.Pratim.isFemale = true;
    w.Pratim.isMale = false;
    EXPECT_DOUBLE_EQ(calc(w).out.Zikuim.NEKUDA_020M, 2.75);
    w.Nekudot.N020 = false;
    EXPECT_DOUBLE_EQ(calc(w).out.Zikuim.NEKUDA_020M, 0.5);
}

TEST(CreditPoints, WidowerWithChildren) {
    NishumInput n = single();
    n.Pratim.isRavak = false;
    n.Pratim.isAlman = true;
    n.Nekudot.N260_4 = 1;
    n.Nekudot.N260_5 = 1;
    const auto& z = calc(n).out.Zikuim;
    EXPECT_DOUBLE_EQ(z.NEKUDA_260M, 3);
    EXPECT_DOUBLE_EQ(z.NEKUDA_026M, 1);
}

TEST(CreditPoints, SeparateCoupleSplitsTheChildren) {
    NishumInput n = couple();
    n.Yegia.N158 = 100000;
    n.Yegia.N172 = 100000;
    n.Nekudot.N260_1 = 1;
    n.Nekudot.N260_3 = 1;
    const CalcResult r = calc(n);
    ASSERT_EQ(r.FilingMode, ModeSeparate);
    EXPECT_DOUBLE_EQ(r.out.Zikuim.NEKUDA_260F, 2.5);  // the wife: 0.5 + 2
    EXPECT_DOUBLE_EQ(r.out.Zikuim.NEKUDA_260M, 2);    // the husband: 1 + 1
}

TEST(CreditPoints, SupportedPersonsFoldIntoOneColumnWhenComputedTogether) {
    NishumInput n = couple();
    n.Yegia.N158 = 100000;
    n.Yegia.N172 = 100000;
    n.Nekudot.N023 = 1;
    n.Nekudot.N131 = 1;
    const CalcResult separate = calc(n);
    ASSERT_EQ(separate.FilingMode, ModeSeparate);
    EXPECT_DOUBLE_EQ(separate.out.Zikuim.NEKUDA_023, 2);
    EXPECT_DOUBLE_EQ(separate.out.Zikuim.NEKUDA_131, 2);
    n.Pratim.isNasuy = false;
    n.Pratim.isGarush = true;  // single: F's count joins M's at one point
    EXPECT_DOUBLE_EQ(calc(n).out.Zikuim.NEKUDA_023, 3);
}

TEST(CreditPoints, ImmigrantMonthWalk) {
    NishumInput n = single();
    n.Nekudot.OleDateM = ymd(2014, 3, 15);  // months 10 to 21 fall in 2015
    EXPECT_NEAR(calc(n).out.Zikuim.NEKUDA_OleM, 8 / 4.0 + 4 / 6.0, 1e-12);
    n.Nekudot.OleDateM = ymd(2012, 10, 31);  // months 27 to 38: 3 at a sixth, 9 at a twelfth
    EXPECT_NEAR(calc(n).out.Zikuim.NEKUDA_OleM, 3 / 6.0 + 9 / 12.0, 1e-12);
}

TEST(CreditPoints, DischargedSoldierByMonthsToDecember) {
    auto points = [](Date d, std::int16_t months) {
        NishumInput n = single();
        n.Nekudot.N224 = d;
        n.Nekudot.N024 = months;
        return calc(n).out.Zikuim.NEKUDA_224;
    };
    EXPECT_DOUBLE_EQ(points(ymd(2015, 12, 10), 24), 0);
    EXPECT_DOUBLE_EQ(points(ymd(2015, 11, 1), 23), 1 / 12.0);
    EXPECT_DOUBLE_EQ(points(ymd(2015, 11, 1), 24), 2 / 12.0);
    EXPECT_DOUBLE_EQ(points(ymd(2015, 1, 31), 12), 11 / 12.0);
    EXPECT_DOUBLE_EQ(points(ymd(2013, 12, 1), 12), 1);
    EXPECT_DOUBLE_EQ(points(ymd(2013, 11, 1), 12), 11 / 12.0);
    EXPECT_DOUBLE_EQ(points(ymd(2012, 12, 1), 12), 0);
    EXPECT_DOUBLE_EQ(points(ymd(2014, 6, 1), 0), 0);
}

TEST(Credits, SmallPaymentWithNoIncomeStillCounts) {
    NishumInput n = single();
    n.Zikuim.N045 = 1000;
    const auto& z = calc(n).out.Zikuim;
    EXPECT_EQ(z.HUTAR_045, 1000);
    EXPECT_EQ(z.ZIKUY_045, 350);
}

TEST(Credits, InstitutionCareAgainstSupportedPersonTieKeepsLineSixtyOne) {
    NishumInput n = single();
    n.Nekudot.N023 = 1;  // 2 points: 5,232
    // HUTAR_132 worth exactly 5,232 at 35%: 14,949 gives R(5232.15) = 5232.
    n.Zikuim.N132 = 14949;
    auto z = calc(n).out.Zikuim;
    EXPECT_EQ(z.HUTAR_132, 0);
    EXPECT_DOUBLE_EQ(z.ZIKUY_023, 5232);
    n.Zikuim.N132 = 14952;  // R(5233.2): one shekel more
    z = calc(n).out.Zikuim;
    EXPECT_EQ(z.HUTAR_132, 14952);
    EXPECT_DOUBLE_EQ(z.ZIKUY_023, 0);
    EXPECT_DOUBLE_EQ(z.NEKUDA_023, 2);  // the points stay on the sheet
}

TEST(Credits, DonationsBelowTheMinimumCountForNothing) {
    NishumInput n = single();
    n.Yegia.N158 = 200000;
    n.Zikuim.N037 = 189;
    EXPECT_EQ(calc(n).out.Zikuim.HUTAR_037, 0);
    n.Zikuim.N037 = 190;
    EXPECT_EQ(calc(n).out.Zikuim.HUTAR_037, 190);
}

TEST(Credits, SettlementCappedThenScaledByMonths) {
    NishumInput n = single();
    n.Yegia.N158 = 400000;
    n.Zikuim.N093 = 1;
    n.Zikuim.N093Rate = 13;
    n.Zikuim.N093Month = 6;
    const auto& z = calc(n).out.Zikuim;
    EXPECT_EQ(z.HUTAR_093, 241080 / 2);
    EXPECT_EQ(z.RATE_093, 13);
    EXPECT_EQ(z.ZIKUY_093, R(0.13 * 120540));
}

TEST(Credits, ShiftWorkWithinBothCeilings) {
    NishumInput n = single();
    n.Yegia.N068 = 100000;
    n.Yegia.N158 = 50000;
    const auto& z = calc(n).out.Zikuim;
    EXPECT_EQ(z.HUTAR_MishmarotM, 75200);
    EXPECT_EQ(z.ZIKUY_MishmarotM, 11280);
    EXPECT_EQ(z.MishmarotM, 100000);
}

TEST(NationalInsurance, SalaryOnlyIsNotCharged) {
    NishumInput n = single();
    n.Yegia.N158 = 100000;
    n.Yegia.N201 = 20000;
    const auto& b = calc(n).out.BL;
    EXPECT_EQ(b.BLM_AZMAI, 0);
    EXPECT_EQ(b.BLM_HEINO, 20000);
    EXPECT_EQ(b.BLM_TOTAL_TASH, 0);
}

TEST(NationalInsurance, SmallBusinessIncomeMovesToOtherIncome) {
    NishumInput n = single();
    n.Yegia.N150 = 16668;
    const auto& b = calc(n).out.BL;
    EXPECT_EQ(b.BLM_AZMAI, 16668);  // the cell still shows it
    EXPECT_EQ(b.BLM_AZMAI_TTL, 0);
    EXPECT_EQ(b.BLM_HEINO_TTL, 16668);  // raised to the floor of other income
}

TEST(NationalInsurance, BusinessIncomeBandsAndTheFloor) {
    NishumInput n = single();
    n.Yegia.N150 = 20000;  // above the other-income floor, raised to the self-employed minimum
    auto b = calc(n).out.BL;
    EXPECT_EQ(b.BLM_AZMAI_TTL, 27780);
    EXPECT_EQ(b.BLM_AZMAI_0613, R(27780 * 0.0982));
    n.Yegia.N150 = 300000;
    b = calc(n).out.BL;
    const double ttl = (300000 + 847.37952) / 1.055224;
    EXPECT_EQ(b.BLM_AZMAI_TTL, R(ttl));
    EXPECT_EQ(b.BLM_AZMAI_MUF, 66672);
    EXPECT_EQ(b.BLM_AZMAI_1236, R((ttl - 66672) * 0.1623));
    EXPECT_EQ(b.BLM_TOTAL_TASH, b.BLM_AZMAI_0613 + b.BLM_AZMAI_1236);
}

TEST(NationalInsurance, OlderRatesFromTheYearBeforeTheBound) {
    NishumInput n = single();
    n.Yegia.N150 = 100000;
    n.Pratim.BirthDateM = ymd(1949, 6, 1);
    const auto older = calc(n).out.BL;
    n.Pratim.BirthDateM = ymd(1950, 6, 1);
    const auto ordinary = calc(n).out.BL;
    EXPECT_EQ(older.BLM_AZMAI_TTL, ordinary.BLM_AZMAI_TTL);
    EXPECT_LT(older.BLM_AZMAI_TASH, ordinary.BLM_AZMAI_TASH);
}

TEST(Overflow, StopsTheCalculationAndLeavesTheReport) {
    NishumInput n = single();
    n.Yegia.N150 = 2000000000;
    n.Yegia.N201 = 2000000000;
    EXPECT_THROW(calc(n), OverflowError);
}

}  // namespace
}  // namespace zelmor::testing
