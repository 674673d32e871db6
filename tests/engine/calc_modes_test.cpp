// The filing tests and the choice between modes.

#include "engine/calc_test_util.h"

namespace zelmor::testing {
namespace {

NishumInput coupleWithSpouseIncome(std::int32_t spouseSalary) {
    NishumInput n = couple();
    n.Yegia.N150 = 200000;
    n.Yegia.N172 = spouseSalary;
    return n;
}

TEST(FilingModes, SpouseAtTheThresholdStaysOut) {
    // 8.75 points (22,890), or 10 points (26,160) with a child.
    EXPECT_EQ(calc(coupleWithSpouseIncome(22890)).FilingMode, ModeAlone);
    EXPECT_NE(calc(coupleWithSpouseIncome(22891)).FilingMode, ModeAlone);
    NishumInput withChild = coupleWithSpouseIncome(26160);
    withChild.Nekudot.N260_5 = 1;
    EXPECT_EQ(calc(withChild).FilingMode, ModeAlone);
    withChild.Yegia.N172 = 26161;
    EXPECT_NE(calc(withChild).FilingMode, ModeAlone);
}

TEST(FilingModes, UnmarriedOrNoSpouseIncomeIsSingle) {
    NishumInput n = coupleWithSpouseIncome(100000);
    n.Pratim.isNasuy = false;
    n.Pratim.isGarush = true;
    const CalcResult r = calc(n);
    EXPECT_EQ(r.FilingMode, ModeSingle);
    EXPECT_EQ(r.out.Main.MasBrutoF, 0);  // F's lines are not computed
    EXPECT_EQ(r.out.Hishuv.FSUM_TTL, 0);
    EXPECT_EQ(r.out.Hachnasot.N172, 100000);  // but shown as entered
    EXPECT_EQ(calc(coupleWithSpouseIncome(0)).FilingMode, ModeSingle);
}

TEST(FilingModes, BothAboveTheJointLimitFileSeparately) {
    NishumInput n = couple();
    n.Yegia.N158 = 65401;
    n.Yegia.N172 = 65401;
    const CalcResult r = calc(n);
    EXPECT_EQ(r.FilingMode, ModeSeparate);
    EXPECT_FALSE(r.compared);
    // At exactly the limit the joint way is tried.
    n.Yegia.N172 = 65400;
    EXPECT_TRUE(calc(n).compared);
}

TEST(FilingModes, JointWinsWhenCheaperAndPublishesTheUsersFigures) {
    // A business income under the deductions of the registered spouse: in the
    // joint way they meet the spouse's salary. The credit fields of both are
    // added while the run computes; the sheets show each person's figures as
    // entered and the allowed bases rest on both.
    NishumInput n = couple();
    n.Yegia.N150 = 30000;
    n.Yegia.N172 = 120000;
    n.Nikuim.N116 = 60000;
    n.Nikuim.N030 = 1000;
    n.Nikuim.N089 = 500;
    n.Zikuim.AcherimM = 100;
    n.Zikuim.AcherimF = 50;
    const CalcResult r = calc(n);
    ASSERT_TRUE(r.compared);
    EXPECT_LT(r.MasMeuchad, r.MasNifrad);
    EXPECT_EQ(r.FilingMode, ModeJoint);
    EXPECT_EQ(r.out.Main.MasMagiaM + r.out.Main.MasMagiaF, r.MasMeuchad);
    EXPECT_EQ(r.out.Main.HachnasotF, 0);  // all income shows with M
    EXPECT_EQ(r.out.Hachnasot.N172, 120000);
    EXPECT_EQ(r.out.Zikuim.AcherimM, 100);
    EXPECT_EQ(r.out.Zikuim.HUTAR_AcherimM, 150);
    EXPECT_EQ(r.out.Nikuim.N030S, 1000);
    EXPECT_EQ(r.out.Nikuim.N089S, 500);
    EXPECT_EQ(r.out.Nikuim.N030H, 780);  // 52% of both payments
}

TEST(FilingModes, DependenceWithoutSpousePropertyStaysJoint) {
    NishumInput n = couple();
    n.Klaliim.isTlutNo = false;
    n.Klaliim.isTlutYes = true;
    n.Yegia.N150 = 150000;
    n.Yegia.N172 = 80000;
    const CalcResult r = calc(n);
    EXPECT_EQ(r.FilingMode, ModeJoint);
    EXPECT_FALSE(r.compared);
}

TEST(FilingModes, DependenceWithLargePropertyIsSeparateOnProperty) {
    NishumInput n = couple();
    n.Klaliim.isTlutNo = false;
    n.Klaliim.isTlutYes = true;
    n.Yegia.N150 = 150000;
    n.Yegia.N172 = 80000;
    n.Yegia.N301 = 70000;
    const CalcResult r = calc(n);
    EXPECT_EQ(r.FilingMode, ModeSeparateProperty);
    // F's earned income moves to M's total; the property stays with F.
    EXPECT_EQ(r.out.Main.HachnasotM, 150000 + 80000);
    EXPECT_EQ(r.out.Main.HachnasotF, 70000);
    EXPECT_EQ(r.out.Hachnasot.N172, 80000);
    EXPECT_EQ(r.out.Hachnasot.N301, 70000);
}

}  // namespace
}  // namespace zelmor::testing
