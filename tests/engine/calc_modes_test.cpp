// The filing tests and the choice between modes.

#include "engine/calc_test_util.h"

namespace zelmor::testing {
namespace {

constexpr auto C = Couple, D = Dependent;
constexpr double kAlone = ModeAlone, kSingle = ModeSingle, kSeparate = ModeSeparate, kProperty = ModeSeparateProperty,
                 kJoint = ModeJoint;

INSTANTIATE_TEST_SUITE_P(
    FilingModes, Rules,
    ::testing::ValuesIn(std::vector<RuleCase>{
        // A spouse's income up to 8.75 points (22,890), or 10 points (26,160) with a child, stays out.
        {"SpouseAtTheThresholdStaysOut", C, "N150=200000 N172=22890", {{"FilingMode", kAlone}}},
        {"SpouseAboveTheThreshold", C, "N150=200000 N172=22891", {{"FilingMode", kSeparate}}},
        {"SpouseWithChildAtTheThreshold", C, "N150=200000 N172=26160 N260_5=1", {{"FilingMode", kAlone}}},
        {"SpouseWithChildAboveIt", C, "N150=200000 N172=26161 N260_5=1", {{"FilingMode", kSeparate}}},
        // Unmarried: F's lines are not computed, but shown as entered.
        {"UnmarriedIsSingle", C, "N150=200000 N172=100000 isNasuy=0 isGarush=1",
         {{"FilingMode", kSingle}, {"CMain.MasBrutoF", 0}, {"CHishuv.FSUM_TTL", 0}, {"CHachnasot.N172", 100000}}},
        {"NoSpouseIncomeIsSingle", C, "N150=200000", {{"FilingMode", kSingle}}},
        // Both above the joint limit file separately; at exactly the limit the joint way is tried.
        {"BothAboveTheJointLimit", C, "N158=65401 N172=65401", {{"FilingMode", kSeparate}, {"compared", 0}}},
        {"OneAtTheJointLimit", C, "N158=65401 N172=65400", {{"compared", 1}}},
        // A business income under the deductions of the registered spouse: in the joint way they meet the
        // spouse's salary. The credit fields of both are added while the run computes; the sheets show
        // each person's figures as entered, all income with M, and the allowed bases rest on both.
        {"JointWinsWhenCheaperAndPublishesTheUsersFigures", C,
         "N150=30000 N172=120000 N116=60000 N030=1000 N089=500 AcherimM=100 AcherimF=50",
         {{"FilingMode", kJoint}, {"compared", 1}, {"MasMeuchad", 0}, {"MasNifrad", 7811}, {"CMain.MasMagiaM", 0},
          {"CMain.MasMagiaF", 0}, {"CMain.HachnasotF", 0}, {"CHachnasot.N172", 120000}, {"CZikuim.AcherimM", 100},
          {"CZikuim.HUTAR_AcherimM", 150}, {"CNikuim.N030S", 1000}, {"CNikuim.N089S", 500},
          {"CNikuim.N030H", 780} /* 52% of both payments */}},
        // Dependence: joint without F's property; with a large one, separate on the property while F's
        // earned income moves to M's total.
        {"DependenceWithoutSpousePropertyStaysJoint", D, "N150=150000 N172=80000",
         {{"FilingMode", kJoint}, {"compared", 0}}},
        {"DependenceWithLargePropertyIsSeparateOnProperty", D, "N150=150000 N172=80000 N301=70000",
         {{"FilingMode", kProperty}, {"CMain.HachnasotM", 150000 + 80000}, {"CMain.HachnasotF", 70000},
          {"CHachnasot.N172", 80000}, {"CHachnasot.N301", 70000}}},
        // One shekel of F's property is enough for the separate run on property to be tried; both tests
        // above the joint limit: separate on property without a joint run.
        {"PropertyOfOne", D, "N158=40000 N172=80000 N301=1", {{"FilingMode", kJoint}, {"compared", 1}}},
        {"PropertyAtLimit", D, "N158=40000 N172=80000 N301=65400", {{"FilingMode", kProperty}, {"compared", 1}}},
        {"PropertyAboveLimit", D, "N158=40000 N172=80000 N301=65401", {{"FilingMode", kProperty}, {"compared", 0}}},
        {"MWithFEarnedAtLimit", D, "N158=40000 N172=25400 N301=70000", {{"FilingMode", kProperty}, {"compared", 1}}},
        {"MWithFEarnedAboveLimit", D, "N158=40000 N172=25401 N301=70000", {{"FilingMode", kProperty}, {"compared", 0}}},
        // Lines of both spouses go with the one who earned more, with M on a tie.
        {"SharedRegularLineWithMOnTie", C, "N158=20000 N172=20000 N059=10000",
         {{"FilingMode", kAlone}, {"compared", 0}}},
        {"SharedRegularLineWithFWhenMore", C, "N158=20000 N172=20001 N059=10000",
         {{"FilingMode", kSeparate}, {"compared", 1}}},
        {"SharedSpecialLineWithMOnTie", C, "N158=20000 N172=20000 N060=10000",
         {{"FilingMode", kAlone}, {"compared", 0}}},
        {"SharedSpecialLineWithFWhenMore", C, "N158=20000 N172=20001 N060=10000",
         {{"FilingMode", kSeparate}, {"compared", 1}}}}),
    ruleName);

// Both comparisons of the joint run with a separate one, at a tie and one
// shekel off it. A tie leaves the separate run on the sheets, at 0 as above
// it; the joint run shows all income with M.
INSTANTIATE_TEST_SUITE_P(
    ModeTies, Rules,
    ::testing::ValuesIn(std::vector<RuleCase>{
        // Both taxes wholly under the credits.
        {"SeparateBothZero", C, "N158=30000 N172=30000",
         {{"FilingMode", kSeparate}, {"MasMeuchad", 0}, {"MasNifrad", 0}, {"CMain.HachnasotF", 30000}}},
        // The joint way uses M's oil deduction against F's salary.
        {"SeparateEqual", C, "N150=30000 N172=120000 N116=14427",
         {{"FilingMode", kSeparate}, {"MasMeuchad", 7916}, {"MasNifrad", 7916}, {"CMain.HachnasotF", 120000}}},
        {"SeparateJointOneLess", C, "N150=30000 N172=120000 N116=14431",
         {{"FilingMode", kJoint}, {"MasMeuchad", 7915}, {"MasNifrad", 7916}, {"CMain.HachnasotF", 0}}},
        {"PropertyBothZero", D, "N158=30000 N172=20000 N301=3000",
         {{"FilingMode", kProperty}, {"MasMeuchad", 0}, {"MasNifrad", 0}, {"CMain.HachnasotF", 3000}}},
        // F's property against the spouse points of the joint way.
        {"PropertyEqual", D, "N158=150000 N172=30000 N301=14766",
         {{"FilingMode", kProperty}, {"MasMeuchad", 23036}, {"MasNifrad", 23036}, {"CMain.HachnasotF", 14766}}},
        {"PropertyJointOneLess", D, "N158=150000 N172=30000 N301=14765",
         {{"FilingMode", kJoint}, {"MasMeuchad", 23035}, {"MasNifrad", 23036}, {"CMain.HachnasotF", 0}}}}),
    ruleName);

TEST(FilingModes, TitlesOfTheWays) {
    EXPECT_STREQ(ModeTitle(ModeSeparate), "חישוב נפרד");
    EXPECT_STREQ(ModeTitle(ModeSeparateProperty), "חישוב נפרד רכוש");
    EXPECT_STREQ(ModeTitle(ModeJoint), "חישוב מאוחד");
}

}  // namespace
}  // namespace zelmor::testing
