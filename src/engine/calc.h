#pragma once
// The tax calculation: a pure function of the report, the year's constants,
// the price index and the date taken for today.

#include <optional>

#include "core/amount.h"
#include "core/date.h"
#include "core/madad_lookup.h"
#include "core/tax_year.h"
#include "report/nishum_input.h"
#include "results/nishum_output.h"

namespace zelmor {

namespace trace {
struct Trace;
}

// 0 M alone, 1 single, 2 separate, 3 separate on property, 4 joint.
enum FilingModeValue : int { ModeAlone = 0, ModeSingle = 1, ModeSeparate = 2, ModeSeparateProperty = 3, ModeJoint = 4 };

// The title of a filing mode on the sheets ("חישוב נפרד", ...).
const char* ModeTitle(int filingMode);

struct CalcResult {
    NishumOutput out;  // the sheets of the run that stands last
    int FilingMode = 0;
    // The compared sums (tax due of both persons) when two modes were compared.
    bool compared = false;
    Amount MasMeuchad = 0;  // joint run
    Amount MasNifrad = 0;   // separate run
};

// The whole calculation. The report is not changed. Raises OverflowError when a
// sum leaves the 32-bit range; nothing is returned then.
CalcResult CalcDoch(const NishumInput& report, const ConstDoch& c, const MadadLookup& madad, Date today);
// The same calculation, recording into `sink` how every figure came about
// (engine/trace.h). The result is the same as without a sink. With an
// `interestDate`, the balance is carried to it instead of today, as CalcRibit
// carries the summary on show to a date chosen there.
CalcResult CalcDoch(const NishumInput& report, const ConstDoch& c, const MadadLookup& madad, Date today,
                    trace::Trace* sink, Date interestDate = Date());

// Interest and linkage of the balance on the summary sheet to a date (no date:
// today), without a new calculation. Writes Ribit, RibitDate, PtorRibit, Itra,
// ItraDate of out.Main.
void CalcRibit(sheets::CMain& main, Date date, const ConstDoch& c, const MadadLookup& madad, Date today);

}  // namespace zelmor
