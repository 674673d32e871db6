#pragma once
// What every sub-command of zelmor-cli shares: options, today's date, the data
// folder, error documents and the reading of report documents.

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <memory>

#include "cli/commands.h"
#include "core/date.h"
#include "report/nishum_input.h"

namespace zelmor {
class MadadTable;
}

namespace zelmor::cli {

// A command line the command cannot take; reported on standard error, exit status 2.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Options {
    std::vector<std::string> positional;
    std::map<std::string, std::string, std::less<>> values;  // "--today" -> "2016-06-30"
    std::set<std::string, std::less<>> flags;                // "--report"
    bool has(std::string_view name) const;                    // value option or flag given
    std::string value(std::string_view name, std::string fallback = {}) const;
};

// Words beginning with "--" are options: "--name value" or "--name=value" for a
// value option, "--name" for a flag. "-" alone is a positional word (standard
// input), and every word after "--" is positional.
// Throws UsageError for an unknown option, a value option without its value, a
// value option given twice or a value given to a flag.
Options parseOptions(const Args& args, std::initializer_list<const char*> valueOptions,
                     std::initializer_list<const char*> flagOptions = {});

// --today YYYY-MM-DD, else the real local date; UsageError on bad text.
Date resolveToday(const Options& o);

// --data-dir, else $XDG_DATA_HOME/Zelmor, else ~/.local/share/Zelmor; created
// when missing (std::runtime_error when that fails).
std::string resolveDataDir(const Options& o);

// {"format": "zelmor-results", "version": 1, "error": {"kind": "...", "message": "..."}} on one line.
std::string errorDocument(std::string_view kind, std::string_view message);

// The kind of error document for an exit status: 1 "environment", 2 "input", 3 "overflow".
const char* errorKind(int exitStatus);

// Every report of the inputs in input order: a file name is one document; "-" is
// JSON Lines on standard input (one document per line, blank lines skipped). A
// refused document (exit status 2) or an unreadable file (exit status 1) calls
// onRefused with its message, which begins with where it was met ("a.json: ...",
// "standard input, line 3: ..."), and the reading goes on. Returns the number
// of documents met.
std::size_t forEachReport(const std::vector<std::string>& inputs,
                          const std::function<void(NishumInput&)>& onReport,
                          const std::function<void(const std::string& message, int exitStatus)>& onRefused);

// What one report gives: a line for standard output, a message for standard
// error (or none) and an exit status.
struct Outcome {
    std::string line;
    std::string message;
    int status = 0;
};

// Every report of the inputs (read as forEachReport reads them), processed on
// all cores; the outcomes are written in input order. onReport and onRefused
// run on several threads at once and must not share what they change.
// Returns the highest exit status met.
int processReportsInOrder(const std::vector<std::string>& inputs, const std::function<Outcome(NishumInput&)>& onReport,
                          const std::function<Outcome(const std::string& message, int exitStatus)>& onRefused);

// The price index table of the data folder. When it cannot be read the
// command's message goes to standard error (and, with errorDocumentOut, an
// error document of kind "environment" to standard output) and the result is
// empty: the command ends with exit status 1.
std::unique_ptr<MadadTable> openMadadTable(const std::string& dataDir, const char* command,
                                           bool errorDocumentOut = true);

// More than one report may come: the output is JSON Lines.
bool manyOutputs(const std::vector<std::string>& inputs);

}  // namespace zelmor::cli
