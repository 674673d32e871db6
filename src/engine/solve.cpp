// The search over the business income: a bisection on whole shekels, each
// trial a whole calculation.

#include "engine/solve.h"

namespace zelmor {
namespace {

constexpr std::int32_t kSearchFailed = 999999999;
constexpr const char* kBelowPayments = "לא ניתן להגיע ליתרת החזר גבוהה מהסכומים ששולמו בפועל ע\"ח המס";
constexpr const char* kUnreachable = "לא ניתן להגיע ליתרת התשלום הנדרשת, גם כאשר הכנסה מעסק = 0";

class Simulation {
public:
    Simulation(const NishumInput& report, const ConstDoch& c, const MadadLookup& madad, Date today)
        : work(report), c(c), madad(madad), today(today) {}

    SimResult SolveByBalance(Amount balance);
    SimResult SolveByTax(Amount payment);
    SimResult WhatIfIncome(Amount change);

private:
    void calc() { last = CalcDoch(work, c, madad, today); }
    Amount tax() const { return last.out.Main.MasMagiaF + last.out.Main.MasMagiaM; }
    Amount& N150() { return work.Yegia.N150; }
    // The search for the income whose tax is SimTarget; false when refused.
    bool Search(bool acceptNear);
    void StepDownToZero();

    NishumInput work;  // the report the trials change
    const ConstDoch& c;
    const MadadLookup& madad;
    const Date today;
    CalcResult last;
    SimResult r;
    Amount SimTarget, SimTax, SimLow, SimHigh, SimN150, SimResultValue;
    bool isSimZero = false;
};

bool Simulation::Search(bool acceptNear) {
    if (SimTarget < 0) {
        r.isSimFail = true;
        r.message = kBelowPayments;
        return false;
    }
    SimN150 = N150();
    N150() = 0;
    calc();
    SimTax = tax();
    if (SimTarget < SimTax) {
        r.isSimFail = true;
        r.message = kUnreachable;
        N150() = SimN150;
        return false;
    }
    if (SimTarget == 0) {
        SimTarget = 1;
        isSimZero = true;
    }
    const auto& z = work.Zikuim;
    const auto& n = work.Nikuim;
    r.SimCount = 0;
    SimLow = 0;
    SimHigh = 5 * (SimTarget - last.out.Zikuim.ZIKUY_ODEF_M + z.N036 + z.N045 + z.N268 + z.N132 + z.N037 + z.N143 +
                   z.AcherimM) +
              SimN150 + n.N116 + n.N118 + n.N135 + n.N030 + n.N005 + 100000;
    for (;;) {
        if (SimHigh < SimLow || r.SimCount > 100) {
            SimResultValue = kSearchFailed;
            return true;
        }
        N150() = R((static_cast<double>(SimHigh.value()) + SimLow.value()) / 2);
        calc();
        SimTax = tax();
        ++r.SimCount;
        if (SimTax == SimTarget) {
            if (isSimZero) StepDownToZero();
            SimResultValue = N150();
            return true;
        }
        // The tax moves in steps; after a hundred trials a tax within 4
        // shekels of the target is taken.
        if (acceptNear && r.SimCount >= 100 && SimTax - SimTarget > -5 && SimTax - SimTarget < 5) {
            SimResultValue = N150();
            return true;
        }
        if (SimTax < SimTarget) SimLow = N150();
        if (SimTax > SimTarget) SimHigh = N150();
    }
}

// From the income whose tax is 1, the highest income with no tax.
void Simulation::StepDownToZero() {
    do {
        N150() -= 1;
        calc();
        SimTax = tax();
    } while (SimTax > 0);
}

SimResult Simulation::SolveByBalance(Amount balance) {
    calc();
    SimTarget = balance + work.Tashlumim.TashTTL;  // the tax due that leaves the balance
    r.SimValue = balance;
    if (Search(true)) r.SimValue = SimResultValue;
    return r;
}

SimResult Simulation::SolveByTax(Amount payment) {
    calc();
    SimTarget = payment + last.out.Main.MasMagiaM + last.out.Main.MasMagiaF;
    r.SimValue = payment;
    if (Search(false)) {
        r.SimBase = SimN150;
        r.SimValue = SimResultValue;
        r.SimHefresh = SimResultValue - SimN150;
    }
    return r;
}

SimResult Simulation::WhatIfIncome(Amount change) {
    calc();
    const Amount base = last.out.Main.Itra;
    N150() = change + N150();
    calc();
    r.SimBase = base;
    r.SimValue = last.out.Main.Itra;
    r.SimHefresh = r.SimValue - base;
    return r;
}

}  // namespace

SimResult Simulate(SimQuestion question, Amount sum, const NishumInput& report, const ConstDoch& c,
                   const MadadLookup& madad, Date today) {
    Simulation sim(report, c, madad, today);
    switch (question) {
        case SimQuestion::IncomeForBalance: return sim.SolveByBalance(sum);
        case SimQuestion::IncomeForTaxPaid: return sim.SolveByBalance(0);
        case SimQuestion::IncomeChange: return sim.WhatIfIncome(sum);
        case SimQuestion::TaxChange: return sim.SolveByTax(sum);
    }
    return {};
}

}  // namespace zelmor
