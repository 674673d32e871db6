#pragma once
// The explanation of one figure in words and numbers, as a formula reads:
// "מס מגיע = מס לפני זיכויים − זיכויים ממס = 51,438 − 10,016 = 41,422",
// then each named figure it was made of, indented, down to the report's lines.

#include <string>

#include "engine/trace.h"

namespace zelmor::trace {

// An amount as a formula shows it: thousands separators, "0" for zero, a
// leading minus; a share or a fraction with up to six decimals.
std::string formatNumber(double v);

// The node's own line: its name, its formula in names and in numbers, its value.
std::string formulaLine(const Trace& t, int node);

// The tree under a node, one line a figure, two blanks a level. depth 0: no
// limit; 1: the node's own line only. A figure met again is named, not repeated.
std::string explainText(const Trace& t, int node, int depth = 0);

// The same tree as a JSON document (compact, one line).
std::string explainJson(const Trace& t, int node, int depth = 0);

}  // namespace zelmor::trace
