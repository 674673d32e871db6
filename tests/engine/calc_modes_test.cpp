// The filing tests and the choice between modes.

#include <functional>

#include "engine/calc_test_util.h"

namespace zelmor::testing {
namespace {

NishumInput withDependence(NishumInput n) {
    n.Klaliim.isTlutNo = false;
    n.Klaliim.isTlutYes = true;
    return n;
}

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

// Both comparisons of the joint run with a separate one, at a tie and one
// shekel off it. A tie leaves the separate run on the sheets, at 0 as above it.
struct TieCase {
    const char* name;
    std::function<NishumInput()> report;
    int mode;
    const char* title;
    std::int32_t joint, separate;
    std::int32_t incomeF;  // F's income on the summary; the joint run shows all of it with M
};

class ModeTie : public ::testing::TestWithParam<TieCase> {};

TEST_P(ModeTie, SeparateRunStandsOnEqualTax) {
    const TieCase& tc = GetParam();
    const CalcResult r = calc(tc.report());
    ASSERT_TRUE(r.compared);
    EXPECT_EQ(r.MasMeuchad, tc.joint);
    EXPECT_EQ(r.MasNifrad, tc.separate);
    EXPECT_EQ(r.FilingMode, tc.mode);
    EXPECT_STREQ(ModeTitle(r.FilingMode), tc.title);
    EXPECT_EQ(r.out.Main.MasMagiaM + r.out.Main.MasMagiaF, std::min(tc.joint, tc.separate));
    EXPECT_EQ(r.out.Main.HachnasotF, tc.incomeF);
}

NishumInput lowSalaries() {
    NishumInput n = couple();
    n.Yegia.N158 = n.Yegia.N172 = 30000;  // both taxes wholly under the credits
    return n;
}
NishumInput businessUnderOil(std::int32_t oil) {  // the joint way uses M's oil deduction against F's salary
    NishumInput n = couple();
    n.Yegia.N150 = 30000;
    n.Yegia.N172 = 120000;
    n.Nikuim.N116 = oil;
    return n;
}
NishumInput lowSalariesSmallProperty() {
    NishumInput n = withDependence(couple());
    n.Yegia.N158 = 30000;
    n.Yegia.N172 = 20000;
    n.Yegia.N301 = 3000;
    return n;
}
NishumInput spouseProperty(std::int32_t property) {  // F's property against the spouse points of the joint way
    NishumInput n = withDependence(couple());
    n.Yegia.N158 = 150000;
    n.Yegia.N172 = 30000;
    n.Yegia.N301 = property;
    return n;
}

const char* const kSeparate = "חישוב נפרד";
const char* const kSeparateProperty = "חישוב נפרד רכוש";
const char* const kJoint = "חישוב מאוחד";

INSTANTIATE_TEST_SUITE_P(
    FilingModes, ModeTie,
    ::testing::Values(
        TieCase{"SeparateBothZero", lowSalaries, ModeSeparate, kSeparate, 0, 0, 30000},
        TieCase{"SeparateEqual", [] { return businessUnderOil(14427); }, ModeSeparate, kSeparate, 7916, 7916, 120000},
        TieCase{"SeparateJointOneLess", [] { return businessUnderOil(14431); }, ModeJoint, kJoint, 7915, 7916, 0},
        TieCase{"PropertyBothZero", lowSalariesSmallProperty, ModeSeparateProperty, kSeparateProperty, 0, 0, 3000},
        TieCase{"PropertyEqual", [] { return spouseProperty(14766); }, ModeSeparateProperty, kSeparateProperty, 23036,
                23036, 14766},
        TieCase{"PropertyJointOneLess", [] { return spouseProperty(14765); }, ModeJoint, kJoint, 23035, 23036, 0}),
    [](const ::testing::TestParamInfo<TieCase>& info) { return std::string(info.param.name); });

// The filing tests at their bounds: who is compared, and which way.
TEST(FilingModes, TestsAtTheirBounds) {
    struct Case {
        const char* name;
        std::function<NishumInput()> report;
        int mode;
        bool compared;
    };
    auto dependence = [](std::int32_t salaryF, std::int32_t propertyF) {
        NishumInput n = withDependence(couple());
        n.Yegia.N158 = 40000;
        n.Yegia.N172 = salaryF;
        n.Yegia.N301 = propertyF;
        return n;
    };
    // Lines of both spouses go with the one who earned more, with M on a tie.
    enum Line { regular, special };
    auto sharedLine = [](std::int32_t salaryF, Line line) {
        NishumInput n = couple();
        n.Yegia.N158 = 20000;
        n.Yegia.N172 = salaryF;
        (line == regular ? n.Yegia.N059 : n.Rechush.N060) = 10000;
        return n;
    };
    const Case cases[] = {
        // One shekel of F's property is enough for the separate run on property to be tried.
        {"PropertyOfOne", [&] { return dependence(80000, 1); }, ModeJoint, true},
        // Both tests above the joint limit: separate on property without a joint run.
        {"PropertyAtLimit", [&] { return dependence(80000, 65400); }, ModeSeparateProperty, true},
        {"PropertyAboveLimit", [&] { return dependence(80000, 65401); }, ModeSeparateProperty, false},
        {"MWithFEarnedAtLimit", [&] { return dependence(25400, 70000); }, ModeSeparateProperty, true},
        {"MWithFEarnedAboveLimit", [&] { return dependence(25401, 70000); }, ModeSeparateProperty, false},
        {"SharedRegularLineWithMOnTie", [&] { return sharedLine(20000, regular); }, ModeAlone, false},
        {"SharedRegularLineWithFWhenMore", [&] { return sharedLine(20001, regular); }, ModeSeparate, true},
        {"SharedSpecialLineWithMOnTie", [&] { return sharedLine(20000, special); }, ModeAlone, false},
        {"SharedSpecialLineWithFWhenMore", [&] { return sharedLine(20001, special); }, ModeSeparate, true},
    };
    for (const Case& c : cases) {
        const CalcResult r = calc(c.report());
        EXPECT_EQ(r.FilingMode, c.mode) << c.name;
        EXPECT_EQ(r.compared, c.compared) << c.name;
    }
}

}  // namespace
}  // namespace zelmor::testing
