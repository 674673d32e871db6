// The solving questions: the search, its refusals and its limits.

#include "engine/calc_test_util.h"
#include "engine/solve.h"

namespace zelmor::testing {
namespace {

const FixedMadad kFlat;
const Date kToday = ymd(2016, 6, 30);

SimResult simulate(SimQuestion q, Amount sum, NishumInput n) {
    WorkOutDerived(n);
    return Simulate(q, sum, n, ConstDoch(), kFlat, kToday);
}

Amount taxWith(NishumInput n, Amount n150) {
    WorkOutDerived(n);
    n.Yegia.N150 = n150;  // the income the search tries; the total stays as the report had it
    const CalcResult r = CalcDoch(n, ConstDoch(), kFlat, kToday);
    return r.out.Main.MasMagiaM + r.out.Main.MasMagiaF;
}

TEST(Solve, TargetHitOnTheFirstMeanTakesOneTrial) {
    // With no business income and no deductions, the first mean is
    // R((5 × (target + lost credits) + 100,000) / 2); look for a report whose
    // tax at that mean is exactly the target.
    bool found = false;
    for (std::int32_t salary = 0; salary < 200 && !found; ++salary) {
        NishumInput n = single();
        n.Yegia.N158 = salary;
        for (std::int32_t target = 500; target < 1200 && !found; ++target) {
            const Amount mean = R((5.0 * (target + 5886) + 100000) / 2);
            if (taxWith(n, mean) != target) continue;
            found = true;
            const SimResult r = simulate(SimQuestion::IncomeForBalance, target, n);
            EXPECT_FALSE(r.isSimFail);
            EXPECT_EQ(r.SimCount, 1);
            EXPECT_EQ(r.SimValue, mean);
        }
    }
    EXPECT_TRUE(found);
}

TEST(Solve, RefusesABalanceBelowMinusThePayments) {
    const SimResult r = simulate(SimQuestion::IncomeForBalance, -5001, with(single(), "N150=100000 N042M=5000"));
    EXPECT_TRUE(r.isSimFail);
    EXPECT_EQ(r.message, "לא ניתן להגיע ליתרת החזר גבוהה מהסכומים ששולמו בפועל ע\"ח המס");
    EXPECT_EQ(r.SimCount, 0);
}

TEST(Solve, RefusesABalanceThatOtherIncomeAlreadyExceeds) {
    // The salary alone gives more tax than the target.
    const SimResult r = simulate(SimQuestion::IncomeForBalance, 1000, with(single(), "N150=100000 N158=300000"));
    EXPECT_TRUE(r.isSimFail);
    EXPECT_EQ(r.message, "לא ניתן להגיע ליתרת התשלום הנדרשת, גם כאשר הכנסה מעסק = 0");
}

TEST(Solve, TaxPaidOfZeroEndsAtTheHighestIncomeWithNoTax) {
    const NishumInput n = with(single(), "N150=50000");
    const SimResult r = simulate(SimQuestion::IncomeForTaxPaid, 0, n);
    ASSERT_FALSE(r.isSimFail);
    EXPECT_EQ(taxWith(n, r.SimValue), 0);
    EXPECT_GT(taxWith(n, r.SimValue + 1), 0);
}

TEST(Solve, TaxChangeBetweenTwoTaxStepsRunsOut) {
    // The spouse born in 1950 has only the earned scale; the couple's property
    // goes to whoever earned more, so when the business income passes the
    // spouse's salary the tax jumps.
    const NishumInput n = with(couple(), "BirthDateF=1950-05-05 N150=70000 N172=100000 N059=300000");
    const Amount before = taxWith(n, 99999), after = taxWith(n, 100000);
    ASSERT_GT(after - before, 1);
    const Amount base = taxWith(n, 70000);
    const SimResult r = simulate(SimQuestion::TaxChange, before + 1 - base, n);
    EXPECT_FALSE(r.isSimFail);
    EXPECT_EQ(r.SimValue, 999999999);
    EXPECT_EQ(r.SimBase, 70000);
    EXPECT_EQ(r.SimHefresh, 999999999 - 70000);
    EXPECT_EQ(r.SimCount, 101);
}

TEST(Solve, TaxChangeFindsTheIncome) {
    const NishumInput n = with(single(), "N150=150000");
    const SimResult r = simulate(SimQuestion::TaxChange, 3000, n);
    ASSERT_FALSE(r.isSimFail);
    EXPECT_EQ(taxWith(n, r.SimValue), taxWith(n, 150000) + 3000);
    EXPECT_EQ(r.SimHefresh, r.SimValue - 150000);
}

TEST(Solve, IncomeChangeOfZeroChangesNothing) {
    const NishumInput n = with(single(), "N150=150000 MikdamotM=10000");
    const SimResult r = simulate(SimQuestion::IncomeChange, 0, n);
    EXPECT_EQ(r.SimHefresh, 0);
    EXPECT_EQ(r.SimValue, r.SimBase);
    const SimResult more = simulate(SimQuestion::IncomeChange, 10000, n);
    EXPECT_GT(more.SimHefresh, 0);
}

}  // namespace
}  // namespace zelmor::testing
