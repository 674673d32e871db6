#pragma once
// Reports whose every stored field follows from an id and a version number, so
// that a report read back can be told whole (all fields of one version) or
// torn (fields of two versions, or missing).

#include <string>

#include "report/nishum_input.h"

namespace zelmor::storage::testing {

// Every field of the catalogue set to a value of its own for this version:
// texts (Hebrew, within their length), dates, flags, amounts, counts. The
// version also stands in LastNameM as "v<version>".
NishumInput patternReport(const std::string& id, int version);

// The version that a report read back claims (from LastNameM); -1 if none.
int patternVersion(const NishumInput& r);

// One field from one report into another.
void copyField(const FieldDef& f, const NishumInput& from, NishumInput& to);

// "" when the two reports agree in every field, else the first field that differs.
std::string firstDifference(const NishumInput& a, const NishumInput& b);

// "" when the report is one whole version of the pattern, else what is wrong.
std::string patternProblem(const NishumInput& r, const std::string& id);

}  // namespace zelmor::storage::testing
