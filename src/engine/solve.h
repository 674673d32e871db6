#pragma once
// Solving backwards for the business income of the registered spouse, and
// what a change of income does. Every question works on a copy of the report:
// the user's report is never left changed.

#include <string>

#include "engine/calc.h"

namespace zelmor {

enum class SimQuestion : int {
    IncomeForBalance = 1,  // what income gives this balance?
    IncomeForTaxPaid = 2,  // what income makes the tax equal to what was paid?
    IncomeChange = 3,      // what does a change of income do to the balance?
    TaxChange = 4,         // what change of income goes with a change of tax?
};

struct SimResult {
    bool isSimFail = false;  // the question was refused with a message
    std::string message;     // the refusal, or empty
    Amount SimValue = 0;     // the answer (999,999,999 when the search ran out)
    Amount SimBase = 0;      // the figure before the change (questions 3 and 4)
    Amount SimHefresh = 0;   // the answer less SimBase
    std::int32_t SimCount = 0;  // trials of the search
};

// The answer to one question for a sum (question 2 takes no sum). Raises
// OverflowError when a trial's calculation overflows.
SimResult Simulate(SimQuestion question, Amount sum, const NishumInput& report, const ConstDoch& c,
                   const MadadLookup& madad, Date today);

}  // namespace zelmor
