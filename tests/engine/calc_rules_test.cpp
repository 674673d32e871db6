// Rules whose edges guard real faults: ages on their exact dates, the limits
// of deductions, the exempt-interest pool, credit points and the caps of the
// credits, national insurance bands. One row a case: a report built from a
// single resident man or a married couple, with the fields named set, and the
// figures it must give.

#include "engine/calc_test_util.h"

namespace zelmor::testing {

TEST_P(Rules, GiveTheirFigures) {
    const RuleCase& c = GetParam();
    NishumInput n = c.base == Single ? single() : couple();
    if (c.base == Dependent) n = with(n, "isTlutNo=0 isTlutYes=1");
    const CalcResult r = calc(with(n, c.fields));
    for (const auto& [name, value] : c.figures) EXPECT_NEAR(figure(r, name), value, 1e-9) << c.rule << ": " << name;
}

namespace {

constexpr auto S = Single, C = Couple;

INSTANTIATE_TEST_SUITE_P(
    Calculation, Rules,
    ::testing::ValuesIn(std::vector<RuleCase>{
        // Born in or before 1955: all income on the earned scale; no date never passes an age test.
        {"EarnedScaleFromBirthYear", S, "N201=100000 BirthDateM=1955-12-31", {{"CHishuv.MSUM_1", 63240}}},
        {"NonEarnedScaleAfterIt", S, "N201=100000 BirthDateM=1956-01-01", {{"CHishuv.MSUM_4", 100000}}},
        {"NoBirthDateNoAgeRule", S, "N201=100000 BirthDateM=", {{"CHishuv.MSUM_4", 100000}}},
        // Study fund: nothing below 2.5% of the base, nothing when an employer's fund fills the ceiling.
        {"StudyFundBelowTwoAndAHalf", S, "N150=200000 N136=4000", {{"CNikuim.N136H", 0}}},
        {"StudyFundNoBase", S, "N150=200000 N136=20000 N218=300000", {{"CNikuim.N136H", 0}}},
        // Research takes 40% first, research and film share 45%.
        {"ResearchAndFilm", S, "N150=100000 N005=50000 N118=50000",
         {{"CNikuim.N005H", 40000}, {"CNikuim.N118H", 5000}}},
        // A loss that makes the base of work-disability insurance negative allows nothing.
        {"WorkDisabilityLoss", S, "N150=-80000 N158=50000 N112=3000", {{"CNikuim.N112S", 3000}, {"CNikuim.N112H", 0}}},
        // The low-income pool of exempt interest; total income includes the savings line.
        {"PoolWhole", S, "N158=42640 N217=20000", {{"CMeyuchad.NET_217", 20000 - 9840}}},
        {"PoolOneShekelLess", S, "N158=42641 N217=20000", {{"CMeyuchad.NET_217", 20000 - 9839}}},
        {"PoolGone", S, "N158=52480 N217=20000", {{"CMeyuchad.NET_217", 20000}}},
        // The pool serves the savings lines in order, not other interest.
        {"PoolInOrder", S, "N217=5000 N226=5000 N211=5000 N158=45000",
         {{"CMeyuchad.NET_217", 0}, {"CMeyuchad.NET_226", 160}, {"CMeyuchad.NIKUY_226", 4840},
          {"CMeyuchad.RATE_226", 20}, {"CMeyuchad.NET_211", 5000}}},
        // Both 65 or older: the larger addition in place of the smaller.
        {"PoolBothOld", C, "BirthDateM=1949-01-01 BirthDateF=1950-01-01 N158=200000 N217=30000",
         {{"CMeyuchad.NET_217", 30000 - 16560}}},
        {"PoolOneOld", C, "BirthDateM=1949-01-01 N158=200000 N217=30000", {{"CMeyuchad.NET_217", 30000 - 13440}}},
        // Rent keeps its tax against a loss, and credits do not go below it.
        {"RentUntouched", S, "N222=10000 N150=-50000 N212=10000",
         {{"CMeyuchad.MAS_222", 1000}, {"CMeyuchad.NET_212", 0}, {"CMain.MasMagiaM", 1000},
          {"CZikuim.ZIKUY_ODEF_M", -5886}, {"CZikuim.ZIKUY_TTL_M", 0}}},
        {"Reali25AtThirty", S, "Reali25=10000 N158=200000", {{"CMeyuchad.N212", 10000}, {"CMeyuchad.MAS_212", 3000}}},
        // Credit points.
        {"ResidentMan", S, "", {{"CZikuim.NEKUDA_020M", 2.25}, {"CZikuim.ZIKUY_020M", 5886}}},
        {"ResidentWoman", S, "isFemale=1 isMale=0", {{"CZikuim.NEKUDA_020M", 2.75}}},
        {"NonResidentWoman", S, "isFemale=1 isMale=0 N020=0", {{"CZikuim.NEKUDA_020M", 0.5}}},
        {"WidowerWithChildren", S, "isRavak=0 isAlman=1 N260_4=1 N260_5=1",
         {{"CZikuim.NEKUDA_260M", 3}, {"CZikuim.NEKUDA_026M", 1}}},
        {"SeparateCoupleSplitsChildren", C, "N158=100000 N172=100000 N260_1=1 N260_3=1",
         {{"CZikuim.NEKUDA_260F", 2.5}, {"CZikuim.NEKUDA_260M", 2}}},
        {"SupportedPersonsSeparate", C, "N158=100000 N172=100000 N023=1 N131=1",
         {{"CZikuim.NEKUDA_023", 2}, {"CZikuim.NEKUDA_131", 2}}},
        {"SupportedPersonsFoldWhenSingle", C, "isNasuy=0 isGarush=1 N023=1 N131=1",
         {{"CZikuim.NEKUDA_023", 3}, {"CZikuim.NEKUDA_131", 0}}},
        // The immigrant's 42-month walk: months 10 to 21, then 27 to 38, fall in the year.
        {"ImmigrantMarch", S, "OleDateM=2014-03-15", {{"CZikuim.NEKUDA_OleM", 8 / 4.0 + 4 / 6.0}}},
        {"ImmigrantOctober31", S, "OleDateM=2012-10-31", {{"CZikuim.NEKUDA_OleM", 3 / 6.0 + 9 / 12.0}}},
        // A discharged soldier: the months of service, counted back from December of the year of discharge.
        {"SoldierDischargedInDecember", S, "N224=2015-12-10 N024=24", {{"CZikuim.NEKUDA_224", 0}}},
        {"SoldierNovember23Months", S, "N224=2015-11-01 N024=23", {{"CZikuim.NEKUDA_224", 1 / 12.0}}},
        {"SoldierNovember24Months", S, "N224=2015-11-01 N024=24", {{"CZikuim.NEKUDA_224", 2 / 12.0}}},
        {"SoldierJanuary12Months", S, "N224=2015-01-31 N024=12", {{"CZikuim.NEKUDA_224", 11 / 12.0}}},
        {"SoldierDecember2013", S, "N224=2013-12-01 N024=12", {{"CZikuim.NEKUDA_224", 1}}},
        {"SoldierNovember2013", S, "N224=2013-11-01 N024=12", {{"CZikuim.NEKUDA_224", 11 / 12.0}}},
        {"SoldierDecember2012", S, "N224=2012-12-01 N024=12", {{"CZikuim.NEKUDA_224", 0}}},
        {"SoldierNoMonths", S, "N224=2014-06-01 N024=0", {{"CZikuim.NEKUDA_224", 0}}},
        // Credits for sums paid.
        {"SmallPensionNoIncome", S, "N045=1000", {{"CZikuim.HUTAR_045", 1000}, {"CZikuim.ZIKUY_045", 350}}},
        {"InstitutionTieKeepsLine61", S, "N023=1 N132=14949",  // R(5232.15) = 5,232 = 2 points
         {{"CZikuim.HUTAR_132", 0}, {"CZikuim.ZIKUY_023", 5232}}},
        {"InstitutionOneMore", S, "N023=1 N132=14952",
         {{"CZikuim.HUTAR_132", 14952}, {"CZikuim.ZIKUY_023", 0}, {"CZikuim.NEKUDA_023", 2}}},
        {"DonationBelowMinimum", S, "N158=200000 N037=189", {{"CZikuim.HUTAR_037", 0}}},
        {"DonationAtMinimum", S, "N158=200000 N037=190", {{"CZikuim.HUTAR_037", 190}}},
        {"SettlementCappedThenMonths", S, "N158=400000 N093=1 N093Rate=13 N093Month=6",
         {{"CZikuim.HUTAR_093", 120540}, {"CZikuim.RATE_093", 13}, {"CZikuim.ZIKUY_093", 15670}}},
        {"ShiftWork", S, "N068=100000 N158=50000",
         {{"CZikuim.HUTAR_MishmarotM", 75200}, {"CZikuim.ZIKUY_MishmarotM", 11280}, {"CZikuim.MishmarotM", 100000}}},
        // National insurance.
        {"SalaryOnlyNotCharged", S, "N158=100000 N201=20000",
         {{"CBL.BLM_AZMAI", 0}, {"CBL.BLM_HEINO", 20000}, {"CBL.BLM_TOTAL_TASH", 0}}},
        {"SmallBusinessMovesToOther", S, "N150=16668",
         {{"CBL.BLM_AZMAI", 16668}, {"CBL.BLM_AZMAI_TTL", 0}, {"CBL.BLM_HEINO_TTL", 16668}}},
        {"BusinessRaisedToMinimum", S, "N150=20000", {{"CBL.BLM_AZMAI_TTL", 27780}, {"CBL.BLM_AZMAI_0613", 2728}}},
        {"BusinessBothBands", S, "N150=300000",
         {{"CBL.BLM_AZMAI_TTL", 285103}, {"CBL.BLM_AZMAI_MUF", 66672}, {"CBL.BLM_AZMAI_1236", 35451},
          {"CBL.BLM_TOTAL_TASH", 35451 + 6547}}}}),
    ruleName);

// Comparisons of the calculation on each side of their bound.
INSTANTIATE_TEST_SUITE_P(
    Boundaries, Rules,
    ::testing::ValuesIn(std::vector<RuleCase>{
        // The lines of both spouses go with the one who earned more; with M on a tie.
        {"SharedLinesWithMOnTie", C, "N158=70000 N172=70000 N059=10000",
         {{"CHachnasot.N201", 10000}, {"CHachnasot.N301", 0}, {"CBL.BLM_HEINO", 10000}, {"CBL.BLF_HEINO", 0}}},
        {"SharedLinesWithFWhenMore", C, "N158=70000 N172=70001 N059=10000",
         {{"CHachnasot.N201", 0}, {"CHachnasot.N301", 10000}, {"CBL.BLM_HEINO", 0}, {"CBL.BLF_HEINO", 10000}}},
        // A single person's lines of both spouses count in the income that shrinks the exempt-interest pool.
        {"SharedRegularLineInTheSinglesTotal", S, "N059=50000 N217=20000", {{"CMeyuchad.NET_217", 20000 - 2480}}},
        {"SharedSpecialLineInTheSinglesTotal", S, "N060=50000 N217=20000", {{"CMeyuchad.NET_217", 20000 - 2480}}},
        // Deposits of KIZVA_MIN (16,890) open the second pension limit...
        {"PensionBelowSecondLimit", S, "N150=200000 N135=16889", {{"CNikuim.N135H", 10332}}},
        {"PensionAtSecondLimit", S, "N150=200000 N135=16890", {{"CNikuim.N135H", 16890}}},
        // ...also for the credit, where the employer's deposits of line 53 count with the own ones.
        {"PensionCreditBelowSecondLimit", S, "N150=200000 N135=10000 N248=6889 N045=9000",
         {{"CZikuim.HUTAR_045", 7380}}},
        {"PensionCreditAtSecondLimit", S, "N150=200000 N135=10000 N248=6890 N045=9000", {{"CZikuim.HUTAR_045", 9000}}},
        // The older person's pension limit from the first of January of the birth year.
        {"OlderPensionLimitFromFirstJanuary", S, "BirthDateM=1965-01-01 N150=200000 N135=16000",
         {{"CNikuim.N135H", 13261}}},
        {"OlderPensionLimitEarlierInTheYear", S, "BirthDateM=1964-06-30 N150=200000 N135=16000",
         {{"CNikuim.N135H", 13261}}},
        {"YoungerPensionLimitFromSecondJanuary", S,
         "BirthDateM=1965-01-02 N150=200000 N135=16000", {{"CNikuim.N135H", 10332}}},
        {"YoungerPensionLimitWithoutBirthDate", S, "BirthDateM= N150=200000 N135=16000", {{"CNikuim.N135H", 10332}}},
        // The limited-rate line: up to 30% it keeps its rate; above, it moves into regular income while
        // that is low, up to the top of bracket 3, or of bracket 4 above 45%.
        {"LimitedRateAt30", S, "N158=50000 AcheretM=10000 AcheretRate=30",
         {{"CHachnasot.AcheretMB1", 0}, {"CMeyuchad.MAS_AcheretM", 3000}}},
        {"LimitedRateAt31", S, "N158=50000 AcheretM=10000 AcheretRate=31",
         {{"CHachnasot.AcheretMB1", 10000}, {"CMeyuchad.MAS_AcheretM", 0}}},
        {"LimitedRateAt45", S, "N158=200000 AcheretM=10000 AcheretRate=45",
         {{"CHachnasot.AcheretMB1", 0}, {"CMeyuchad.MAS_AcheretM", 4500}}},
        {"LimitedRateAt46", S, "N158=200000 AcheretM=10000 AcheretRate=46",
         {{"CHachnasot.AcheretMB1", 10000}, {"CMeyuchad.MAS_AcheretM", 0}}},
        // Youth: 16 or 17 in the tax year.
        {"YouthAt15", S, "BirthDateM=2000-01-01", {{"CZikuim.NEKUDA_020AM", 0}}},
        {"YouthAt16", S, "BirthDateM=1999-12-31", {{"CZikuim.NEKUDA_020AM", 1}}},
        {"YouthAt17", S, "BirthDateM=1998-01-01", {{"CZikuim.NEKUDA_020AM", 1}}},
        {"YouthSpouseAt16", C, "BirthDateF=1999-06-01 N158=70000 N172=70000", {{"CZikuim.NEKUDA_020AM", 1}}},
        {"YouthAt18", S, "BirthDateM=1997-12-31", {{"CZikuim.NEKUDA_020AM", 0}}},
        // National insurance: business income one shekel above the floor of other income is charged as such,
        // raised to the minimum; other income charged only above the salary, or above business income.
        {"BusinessAboveOtherFloor", S, "N150=16669", {{"CBL.BLM_AZMAI_TTL", 27780}, {"CBL.BLM_HEINO_TTL", 0}}},
        {"OtherEqualToSalary", S, "N158=20000 N201=20000", {{"CBL.BLM_HEINO_TTL", 0}}},
        {"OtherAboveSalary", S, "N158=20000 N201=20001", {{"CBL.BLM_HEINO_TTL", 19533}}},
        {"OtherEqualToBusiness", S, "N150=30000 N201=30000", {{"CBL.BLM_HEINO_TTL", 0}}},
        {"OtherAboveBusiness", S, "N150=30000 N201=30001", {{"CBL.BLM_HEINO_TTL", 29299}}},
        // The older rates of national insurance from the year before the bound year of birth.
        {"InsuranceOlderRates", S, "N150=100000 BirthDateM=1949-06-01",
         {{"CBL.BLM_AZMAI_TTL", 95570}, {"CBL.BLM_AZMAI_TASH", 445}}},  // a lower rate on the same base
        {"InsuranceOrdinaryRates", S, "N150=100000 BirthDateM=1950-06-01",
         {{"CBL.BLM_AZMAI_TTL", 95570}, {"CBL.BLM_AZMAI_TASH", 11237}}}}),
    ruleName);

TEST(Overflow, StopsTheCalculation) {
    EXPECT_THROW(calc(with(single(), "N150=2000000000 N201=2000000000")), OverflowError);
}

}  // namespace
}  // namespace zelmor::testing
