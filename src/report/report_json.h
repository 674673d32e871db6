#pragma once
// The report as a JSON document: the interchange form of the command-line tool.
// Reading is strict and driven by the field catalogue; writing gives every
// member, in catalogue order.

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "report/nishum_input.h"

namespace zelmor {

// A report document that is refused. what() is the whole message, which names
// the place first: "Yegia.N15O: unknown member; did you mean "N150"?",
// "year: expected 2015, got 2016", "line 3, column 17: malformed JSON (...)".
struct InputError : std::runtime_error {
    InputError(std::string section, std::string member, const std::string& problem);
    // Malformed JSON at a line and column (counted from 1, in characters).
    InputError(std::size_t line, std::size_t column, const std::string& problem);

    std::string section;  // "Yegia"; empty for the document's own keys and for malformed JSON
    std::string member;   // "N150", or "format"/"version"/"year"; empty when the whole section is meant
    std::string problem;  // what is wrong, without the place
    std::size_t line = 0, column = 0;  // where malformed JSON breaks off; 0 otherwise
    // The report's id (trimmed) when the document was read far enough to know it.
    std::optional<std::string> reportId;
};

// Reads one report document. A member or section left out takes the value of a
// new report; derived members are worked out from their parts, and one that is
// given must equal its sum. Throws InputError on anything it refuses: either
// the whole report is read or nothing is.
NishumInput parseReportDocument(std::string_view text);

// Writes a report document with every member, derived ones as they stand in the
// report. Compact: one line, no newline at the end. Pretty: indented by two.
// Throws InputError for a text that is not valid UTF-8.
std::string writeReportDocument(const NishumInput& report, bool pretty);

}  // namespace zelmor
