#pragma once
// The result document of a calculation.

#include <string>

#include "engine/calc.h"

namespace zelmor::cli {

// {"format": "zelmor-results", "version": 1, "year": 2015, "id": .., "FilingMode": .., "ModeTitle": ..,
//  "comparison": {..} or null, "CMain": {..}, ..., "CBL": {..}} with every field of every sheet.
// One line, or indented for a person to read (one field a line). id: the report's id.
std::string resultDocument(const CalcResult& result, const std::string& id, bool pretty = false);

}  // namespace zelmor::cli
