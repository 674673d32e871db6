// Rules whose edges guard real faults: ages on their exact dates, the limits
// of deductions, the exempt-interest pool, credit points and the caps of the
// credits, national insurance bands. One row a case: a report built from a
// single resident man or a married couple, and the cells it must give.

#include <functional>
#include <string>
#include <vector>

#include "engine/calc_test_util.h"

namespace zelmor::testing {
namespace {

struct RuleCase {
    const char* rule;
    bool isCouple;
    std::function<void(NishumInput&)> setup;
    std::vector<std::pair<const char*, double>> cells;  // "Sheet.Field" and its value
};

double cell(const CalcResult& r, const std::string& name) {
    const auto dot = name.find('.');
    const SheetFieldDef* f = findSheetField(name.substr(0, dot), name.substr(dot + 1));
    if (!f) throw std::invalid_argument("no cell " + name);
    return f->type == SheetFieldType::Double ? f->ref<double>(r.out) : f->ref<Amount>(r.out).value();
}

class Rules : public ::testing::TestWithParam<RuleCase> {};

TEST_P(Rules, GiveTheirCells) {
    const RuleCase& c = GetParam();
    NishumInput n = c.isCouple ? couple() : single();
    c.setup(n);
    const CalcResult r = calc(n);
    for (const auto& [name, value] : c.cells) EXPECT_NEAR(cell(r, name), value, 1e-9) << c.rule << ": " << name;
}

std::string ruleName(const ::testing::TestParamInfo<RuleCase>& info) {
    std::string s = info.param.rule;
    for (char& ch : s)
        if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
    return s;
}

using N = NishumInput;

INSTANTIATE_TEST_SUITE_P(
    Calculation, Rules,
    ::testing::Values(
        // Born in or before 1955: all income on the earned scale; no date never passes an age test.
        RuleCase{"EarnedScaleFromBirthYear", false, [](N& n) { n.Yegia.N201 = 100000; n.Pratim.BirthDateM = ymd(1955, 12, 31); },
                 {{"CHishuv.MSUM_1", 63240}}},
        RuleCase{"NonEarnedScaleAfterIt", false, [](N& n) { n.Yegia.N201 = 100000; n.Pratim.BirthDateM = ymd(1956, 1, 1); },
                 {{"CHishuv.MSUM_4", 100000}}},
        RuleCase{"NoBirthDateNoAgeRule", false, [](N& n) { n.Yegia.N201 = 100000; n.Pratim.BirthDateM = Date(); },
                 {{"CHishuv.MSUM_4", 100000}}},
        // Study fund: nothing below 2.5% of the base, nothing when an employer's fund fills the ceiling.
        RuleCase{"StudyFundBelowTwoAndAHalf", false, [](N& n) { n.Yegia.N150 = 200000; n.Nikuim.N136 = 4000; },
                 {{"CNikuim.N136H", 0}}},
        RuleCase{"StudyFundNoBase", false,
                 [](N& n) { n.Yegia.N150 = 200000; n.Nikuim.N136 = 20000; n.Nikuim.N218 = 300000; },
                 {{"CNikuim.N136H", 0}}},
        // Research takes 40% first, research and film share 45%.
        RuleCase{"ResearchAndFilm", false,
                 [](N& n) { n.Yegia.N150 = 100000; n.Nikuim.N005 = 50000; n.Nikuim.N118 = 50000; },
                 {{"CNikuim.N005H", 40000}, {"CNikuim.N118H", 5000}}},
        // A loss that makes the base of work-disability insurance negative allows nothing.
        RuleCase{"WorkDisabilityLoss", false,
                 [](N& n) { n.Yegia.N150 = -80000; n.Yegia.N158 = 50000; n.Nikuim.N112 = 3000; },
                 {{"CNikuim.N112S", 3000}, {"CNikuim.N112H", 0}}},
        // The low-income pool of exempt interest; total income includes the savings line.
        RuleCase{"PoolWhole", false, [](N& n) { n.Yegia.N158 = 42640; n.Rechush.N217 = 20000; },
                 {{"CMeyuchad.NET_217", 20000 - 9840}}},
        RuleCase{"PoolOneShekelLess", false, [](N& n) { n.Yegia.N158 = 42641; n.Rechush.N217 = 20000; },
                 {{"CMeyuchad.NET_217", 20000 - 9839}}},
        RuleCase{"PoolGone", false, [](N& n) { n.Yegia.N158 = 52480; n.Rechush.N217 = 20000; },
                 {{"CMeyuchad.NET_217", 20000}}},
        // The pool serves the savings lines in order, not other interest.
        RuleCase{"PoolInOrder", false,
                 [](N& n) { n.Rechush.N217 = n.Rechush.N226 = n.Rechush.N211 = 5000; n.Yegia.N158 = 45000; },
                 {{"CMeyuchad.NET_217", 0}, {"CMeyuchad.NET_226", 160}, {"CMeyuchad.NIKUY_226", 4840},
                  {"CMeyuchad.RATE_226", 20}, {"CMeyuchad.NET_211", 5000}}},
        // Both 65 or older: the larger addition in place of the smaller.
        RuleCase{"PoolBothOld", true,
                 [](N& n) {
                     n.Pratim.BirthDateM = ymd(1949, 1, 1);
                     n.Pratim.BirthDateF = ymd(1950, 1, 1);
                     n.Yegia.N158 = 200000;
                     n.Rechush.N217 = 30000;
                 },
                 {{"CMeyuchad.NET_217", 30000 - 16560}}},
        RuleCase{"PoolOneOld", true,
                 [](N& n) {
                     n.Pratim.BirthDateM = ymd(1949, 1, 1);
                     n.Yegia.N158 = 200000;
                     n.Rechush.N217 = 30000;
                 },
                 {{"CMeyuchad.NET_217", 30000 - 13440}}},
        // Rent keeps its tax against a loss, and credits do not go below it.
        RuleCase{"RentUntouched", false,
                 [](N& n) { n.Rechush.N222 = 10000; n.Yegia.N150 = -50000; n.Rechush.N212 = 10000; },
                 {{"CMeyuchad.MAS_222", 1000}, {"CMeyuchad.NET_212", 0}, {"CMain.MasMagiaM", 1000},
                  {"CZikuim.ZIKUY_ODEF_M", -5886}, {"CZikuim.ZIKUY_TTL_M", 0}}},
        RuleCase{"Reali25AtThirty", false, [](N& n) { n.Pturot.Reali25 = 10000; n.Yegia.N158 = 200000; },
                 {{"CMeyuchad.N212", 10000}, {"CMeyuchad.MAS_212", 3000}}},
        // Credit points.
        RuleCase{"ResidentMan", false, [](N&) {}, {{"CZikuim.NEKUDA_020M", 2.25}, {"CZikuim.ZIKUY_020M", 5886}}},
        RuleCase{"ResidentWoman", false, [](N& n) { n.Pratim.isFemale = true; n.Pratim.isMale = false; },
                 {{"CZikuim.NEKUDA_020M", 2.75}}},
        RuleCase{"NonResidentWoman", false,
                 [](N& n) { n.Pratim.isFemale = true; n.Pratim.isMale = false; n.Nekudot.N020 = false; },
                 {{"CZikuim.NEKUDA_020M", 0.5}}},
        RuleCase{"WidowerWithChildren", false,
                 [](N& n) {
                     n.Pratim.isRavak = false;
                     n.Pratim.isAlman = true;
                     n.Nekudot.N260_4 = n.Nekudot.N260_5 = 1;
                 },
                 {{"CZikuim.NEKUDA_260M", 3}, {"CZikuim.NEKUDA_026M", 1}}},
        RuleCase{"SeparateCoupleSplitsChildren", true,
                 [](N& n) {
                     n.Yegia.N158 = n.Yegia.N172 = 100000;
                     n.Nekudot.N260_1 = n.Nekudot.N260_3 = 1;
                 },
                 {{"CZikuim.NEKUDA_260F", 2.5}, {"CZikuim.NEKUDA_260M", 2}}},
        RuleCase{"SupportedPersonsSeparate", true,
                 [](N& n) {
                     n.Yegia.N158 = n.Yegia.N172 = 100000;
                     n.Nekudot.N023 = n.Nekudot.N131 = 1;
                 },
                 {{"CZikuim.NEKUDA_023", 2}, {"CZikuim.NEKUDA_131", 2}}},
        RuleCase{"SupportedPersonsFoldWhenSingle", true,
                 [](N& n) {
                     n.Pratim.isNasuy = false;
                     n.Pratim.isGarush = true;
                     n.Nekudot.N023 = n.Nekudot.N131 = 1;
                 },
                 {{"CZikuim.NEKUDA_023", 3}, {"CZikuim.NEKUDA_131", 0}}},
        // The immigrant's 42-month walk: months 10 to 21, then 27 to 38, fall in the year.
        RuleCase{"ImmigrantMarch", false, [](N& n) { n.Nekudot.OleDateM = ymd(2014, 3, 15); },
                 {{"CZikuim.NEKUDA_OleM", 8 / 4.0 + 4 / 6.0}}},
        RuleCase{"ImmigrantOctober31", false, [](N& n) { n.Nekudot.OleDateM = ymd(2012, 10, 31); },
                 {{"CZikuim.NEKUDA_OleM", 3 / 6.0 + 9 / 12.0}}},
        // Credits for sums paid.
        RuleCase{"SmallPensionNoIncome", false, [](N& n) { n.Zikuim.N045 = 1000; },
                 {{"CZikuim.HUTAR_045", 1000}, {"CZikuim.ZIKUY_045", 350}}},
        RuleCase{"InstitutionTieKeepsLine61", false,
                 [](N& n) { n.Nekudot.N023 = 1; n.Zikuim.N132 = 14949; },  // R(5232.15) = 5,232 = 2 points
                 {{"CZikuim.HUTAR_132", 0}, {"CZikuim.ZIKUY_023", 5232}}},
        RuleCase{"InstitutionOneMore", false, [](N& n) { n.Nekudot.N023 = 1; n.Zikuim.N132 = 14952; },
                 {{"CZikuim.HUTAR_132", 14952}, {"CZikuim.ZIKUY_023", 0}, {"CZikuim.NEKUDA_023", 2}}},
        RuleCase{"DonationBelowMinimum", false, [](N& n) { n.Yegia.N158 = 200000; n.Zikuim.N037 = 189; },
                 {{"CZikuim.HUTAR_037", 0}}},
        RuleCase{"DonationAtMinimum", false, [](N& n) { n.Yegia.N158 = 200000; n.Zikuim.N037 = 190; },
                 {{"CZikuim.HUTAR_037", 190}}},
        RuleCase{"SettlementCappedThenMonths", false,
                 [](N& n) {
                     n.Yegia.N158 = 400000;
                     n.Zikuim.N093 = 1;
                     n.Zikuim.N093Rate = 13;
                     n.Zikuim.N093Month = 6;
                 },
                 {{"CZikuim.HUTAR_093", 120540}, {"CZikuim.RATE_093", 13}, {"CZikuim.ZIKUY_093", 15670}}},
        RuleCase{"ShiftWork", false, [](N& n) { n.Yegia.N068 = 100000; n.Yegia.N158 = 50000; },
                 {{"CZikuim.HUTAR_MishmarotM", 75200}, {"CZikuim.ZIKUY_MishmarotM", 11280},
                  {"CZikuim.MishmarotM", 100000}}},
        // National insurance.
        RuleCase{"SalaryOnlyNotCharged", false, [](N& n) { n.Yegia.N158 = 100000; n.Yegia.N201 = 20000; },
                 {{"CBL.BLM_AZMAI", 0}, {"CBL.BLM_HEINO", 20000}, {"CBL.BLM_TOTAL_TASH", 0}}},
        RuleCase{"SmallBusinessMovesToOther", false, [](N& n) { n.Yegia.N150 = 16668; },
                 {{"CBL.BLM_AZMAI", 16668}, {"CBL.BLM_AZMAI_TTL", 0}, {"CBL.BLM_HEINO_TTL", 16668}}},
        RuleCase{"BusinessRaisedToMinimum", false, [](N& n) { n.Yegia.N150 = 20000; },
                 {{"CBL.BLM_AZMAI_TTL", 27780}, {"CBL.BLM_AZMAI_0613", 2728}}},
        RuleCase{"BusinessBothBands", false, [](N& n) { n.Yegia.N150 = 300000; },
                 {{"CBL.BLM_AZMAI_TTL", 285103}, {"CBL.BLM_AZMAI_MUF", 66672},
                  {"CBL.BLM_AZMAI_1236", 35451}, {"CBL.BLM_TOTAL_TASH", 35451 + 6547}}}),
    ruleName);

// Pension deposits of 10,000 and `employer` more of the employer's, with a claim for the pension credit
// above its general ceiling.
std::function<void(NishumInput&)> pensionCredit(std::int32_t employer) {
    return [employer](NishumInput& n) {
        n.Yegia.N150 = 200000;
        n.Nikuim.N135 = 10000;
        n.Nikuim.N248 = employer;
        n.Zikuim.N045 = 9000;
    };
}

// A salary and 10,000 on the limited-rate line at `rate` percent.
std::function<void(NishumInput&)> limitedRate(std::int32_t salary, std::int32_t rate) {
    return [=](NishumInput& n) {
        n.Yegia.N158 = salary;
        n.Rechush.AcheretM = 10000;
        n.Rechush.AcheretRate = rate;
    };
}

// Comparisons of the calculation on each side of their bound.
INSTANTIATE_TEST_SUITE_P(
    Boundaries, Rules,
    ::testing::Values(
        // The lines of both spouses go with the one who earned more; with M on a tie.
        RuleCase{"SharedLinesWithMOnTie", true,
                 [](N& n) { n.Yegia.N158 = n.Yegia.N172 = 70000; n.Yegia.N059 = 10000; },
                 {{"CHachnasot.N201", 10000}, {"CHachnasot.N301", 0}, {"CBL.BLM_HEINO", 10000}, {"CBL.BLF_HEINO", 0}}},
        RuleCase{"SharedLinesWithFWhenMore", true,
                 [](N& n) { n.Yegia.N158 = 70000; n.Yegia.N172 = 70001; n.Yegia.N059 = 10000; },
                 {{"CHachnasot.N201", 0}, {"CHachnasot.N301", 10000}, {"CBL.BLM_HEINO", 0}, {"CBL.BLF_HEINO", 10000}}},
        // A single person's lines of both spouses count in the income that shrinks the exempt-interest pool.
        RuleCase{"SharedRegularLineInTheSinglesTotal", false,
                 [](N& n) { n.Yegia.N059 = 50000; n.Rechush.N217 = 20000; }, {{"CMeyuchad.NET_217", 20000 - 2480}}},
        RuleCase{"SharedSpecialLineInTheSinglesTotal", false,
                 [](N& n) { n.Rechush.N060 = 50000; n.Rechush.N217 = 20000; }, {{"CMeyuchad.NET_217", 20000 - 2480}}},
        // Deposits of KIZVA_MIN (16,890) open the second pension limit.
        RuleCase{"PensionBelowSecondLimit", false, [](N& n) { n.Yegia.N150 = 200000; n.Nikuim.N135 = 16889; },
                 {{"CNikuim.N135H", 10332}}},
        RuleCase{"PensionAtSecondLimit", false, [](N& n) { n.Yegia.N150 = 200000; n.Nikuim.N135 = 16890; },
                 {{"CNikuim.N135H", 16890}}},
        // ...also for the credit, where the deposits of line 53 count with the own ones.
        RuleCase{"PensionCreditBelowSecondLimit", false, pensionCredit(6889), {{"CZikuim.HUTAR_045", 7380}}},
        RuleCase{"PensionCreditAtSecondLimit", false, pensionCredit(6890), {{"CZikuim.HUTAR_045", 9000}}},
        // The limited-rate line: up to 30% it keeps its rate; above, it moves into regular income while
        // that is low, up to the top of bracket 3, or of bracket 4 above 45%.
        RuleCase{"LimitedRateAt30", false, limitedRate(50000, 30),
                 {{"CHachnasot.AcheretMB1", 0}, {"CMeyuchad.MAS_AcheretM", 3000}}},
        RuleCase{"LimitedRateAt31", false, limitedRate(50000, 31),
                 {{"CHachnasot.AcheretMB1", 10000}, {"CMeyuchad.MAS_AcheretM", 0}}},
        RuleCase{"LimitedRateAt45", false, limitedRate(200000, 45),
                 {{"CHachnasot.AcheretMB1", 0}, {"CMeyuchad.MAS_AcheretM", 4500}}},
        RuleCase{"LimitedRateAt46", false, limitedRate(200000, 46),
                 {{"CHachnasot.AcheretMB1", 10000}, {"CMeyuchad.MAS_AcheretM", 0}}},
        // Youth: 16 or 17 in the tax year.
        RuleCase{"YouthAt15", false, [](N& n) { n.Pratim.BirthDateM = ymd(2000, 1, 1); }, {{"CZikuim.NEKUDA_020AM", 0}}},
        RuleCase{"YouthAt16", false, [](N& n) { n.Pratim.BirthDateM = ymd(1999, 12, 31); }, {{"CZikuim.NEKUDA_020AM", 1}}},
        RuleCase{"YouthAt17", false, [](N& n) { n.Pratim.BirthDateM = ymd(1998, 1, 1); }, {{"CZikuim.NEKUDA_020AM", 1}}},
        RuleCase{"YouthSpouseAt16", true,
                 [](N& n) { n.Pratim.BirthDateF = ymd(1999, 6, 1); n.Yegia.N158 = n.Yegia.N172 = 70000; },
                 {{"CZikuim.NEKUDA_020AM", 1}}},
        RuleCase{"YouthAt18", false, [](N& n) { n.Pratim.BirthDateM = ymd(1997, 12, 31); }, {{"CZikuim.NEKUDA_020AM", 0}}},
        // National insurance: business income one shekel above the floor of other income is charged as such,
        // raised to the minimum; other income charged only above the salary, or above business income.
        RuleCase{"BusinessAboveOtherFloor", false, [](N& n) { n.Yegia.N150 = 16669; },
                 {{"CBL.BLM_AZMAI_TTL", 27780}, {"CBL.BLM_HEINO_TTL", 0}}},
        RuleCase{"OtherEqualToSalary", false, [](N& n) { n.Yegia.N158 = 20000; n.Yegia.N201 = 20000; },
                 {{"CBL.BLM_HEINO_TTL", 0}}},
        RuleCase{"OtherAboveSalary", false, [](N& n) { n.Yegia.N158 = 20000; n.Yegia.N201 = 20001; },
                 {{"CBL.BLM_HEINO_TTL", 19533}}},
        RuleCase{"OtherEqualToBusiness", false, [](N& n) { n.Yegia.N150 = 30000; n.Yegia.N201 = 30000; },
                 {{"CBL.BLM_HEINO_TTL", 0}}},
        RuleCase{"OtherAboveBusiness", false, [](N& n) { n.Yegia.N150 = 30000; n.Yegia.N201 = 30001; },
                 {{"CBL.BLM_HEINO_TTL", 29299}}}),
    ruleName);

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

TEST(CreditPoints, DischargedSoldierByMonthsToDecember) {
    const std::vector<std::tuple<Date, std::int16_t, double>> cases = {
        {ymd(2015, 12, 10), 24, 0},      {ymd(2015, 11, 1), 23, 1 / 12.0}, {ymd(2015, 11, 1), 24, 2 / 12.0},
        {ymd(2015, 1, 31), 12, 11 / 12.0}, {ymd(2013, 12, 1), 12, 1},      {ymd(2013, 11, 1), 12, 11 / 12.0},
        {ymd(2012, 12, 1), 12, 0},       {ymd(2014, 6, 1), 0, 0}};
    for (const auto& [date, months, points] : cases) {
        NishumInput n = single();
        n.Nekudot.N224 = date;
        n.Nekudot.N024 = months;
        EXPECT_DOUBLE_EQ(calc(n).out.Zikuim.NEKUDA_224, points) << formatIsoDate(date) << ", " << months;
    }
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

TEST(Overflow, StopsTheCalculation) {
    NishumInput n = single();
    n.Yegia.N150 = 2000000000;
    n.Yegia.N201 = 2000000000;
    EXPECT_THROW(calc(n), OverflowError);
}

}  // namespace
}  // namespace zelmor::testing
