// The speed of the calculation and of the solving questions.

#include <benchmark/benchmark.h>

#include "engine/calc.h"
#include "engine/solve.h"
#include "engine/trace.h"
#include "support/fixed_madad.h"

namespace {

using namespace zelmor;

Date today() { return *Date::fromYmd(2016, 6, 30); }

NishumInput singleTaxpayer() {
    NishumInput n;
    n.Pratim.isMale = true;
    n.Pratim.isRavak = true;
    n.Pratim.BirthDateM = *Date::fromYmd(1970, 5, 1);
    n.Yegia.N150 = 300000;
    n.Yegia.N158 = 120000;
    n.Rechush.N211 = 20000;
    n.Nikuim.N135 = 30000;
    n.Nikuim.N030 = 25000;
    n.Nekudot.N020 = true;
    n.Zikuim.N036 = 5000;
    n.Tashlumim.N042M = 30000;
    WorkOutDerived(n);
    return n;
}

// Both earn above the joint limit: one separate run, no comparison.
NishumInput coupleSeparate() {
    NishumInput n = singleTaxpayer();
    n.Pratim.isRavak = false;
    n.Pratim.isNasuy = true;
    n.Pratim.BirthDateF = *Date::fromYmd(1972, 3, 3);
    n.Yegia.N172 = 180000;
    n.Nekudot.N260_4 = 1;
    n.Nekudot.N260_5 = 1;
    n.Klaliim.isTlutNo = true;
    WorkOutDerived(n);
    return n;
}

// The registered spouse under the joint limit with a cheaper joint way: joint,
// separate, joint again.
NishumInput coupleThreeRuns() {
    NishumInput n = coupleSeparate();
    n.Yegia.N150 = 30000;
    n.Yegia.N158 = 0;
    n.Yegia.N172 = 120000;
    n.Nikuim.N116 = 60000;
    WorkOutDerived(n);
    return n;
}

const testing::FixedMadad kMadad;

void calcBench(benchmark::State& state, const NishumInput& n, int expectedRuns) {
    const ConstDoch c;
    const CalcResult check = CalcDoch(n, c, kMadad, today());
    if ((expectedRuns == 3) != (check.compared && check.FilingMode == ModeJoint)) state.SkipWithError("wrong case");
    for (auto _ : state) benchmark::DoNotOptimize(CalcDoch(n, c, kMadad, today()));
}

void BM_CalcDoch_Single(benchmark::State& s) { calcBench(s, singleTaxpayer(), 1); }
void BM_CalcDoch_CoupleOneRun(benchmark::State& s) { calcBench(s, coupleSeparate(), 1); }
void BM_CalcDoch_CoupleThreeRuns(benchmark::State& s) { calcBench(s, coupleThreeRuns(), 3); }
BENCHMARK(BM_CalcDoch_Single);
BENCHMARK(BM_CalcDoch_CoupleOneRun);
BENCHMARK(BM_CalcDoch_CoupleThreeRuns);

// The same calculations recording their explanation, into one sink that each
// calculation empties (as a screen that explains one result after another).
void tracedBench(benchmark::State& state, const NishumInput& n) {
    const ConstDoch c;
    trace::Trace t;
    for (auto _ : state) benchmark::DoNotOptimize(CalcDoch(n, c, kMadad, today(), &t));
    state.counters["nodes"] = static_cast<double>(t.nodes.size());
}
void BM_CalcDochTraced_Single(benchmark::State& s) { tracedBench(s, singleTaxpayer()); }
void BM_CalcDochTraced_CoupleOneRun(benchmark::State& s) { tracedBench(s, coupleSeparate()); }
void BM_CalcDochTraced_CoupleThreeRuns(benchmark::State& s) { tracedBench(s, coupleThreeRuns()); }
BENCHMARK(BM_CalcDochTraced_Single);
BENCHMARK(BM_CalcDochTraced_CoupleOneRun);
BENCHMARK(BM_CalcDochTraced_CoupleThreeRuns);

void BM_Solve(benchmark::State& state) {
    const auto q = static_cast<SimQuestion>(state.range(0));
    const NishumInput n = coupleSeparate();
    const Amount sum = q == SimQuestion::IncomeForBalance ? 20000 : q == SimQuestion::IncomeChange ? 50000 : 5000;
    std::int64_t trials = 0;
    for (auto _ : state) {
        const SimResult r = Simulate(q, sum, n, ConstDoch(), kMadad, today());
        trials = r.SimCount;
        benchmark::DoNotOptimize(r);
    }
    state.counters["trials"] = static_cast<double>(trials);
}
BENCHMARK(BM_Solve)->DenseRange(1, 4)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
