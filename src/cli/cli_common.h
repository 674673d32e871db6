#pragma once
// What every sub-command of zelmor-cli shares: options, today's date, the data
// folder, error documents and the reading of report documents.

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands.h"
#include "core/date.h"
#include "report/nishum_input.h"

namespace zelmor {
class MadadTable;
}

namespace zelmor::cli {

// A command line the command cannot take; reported on standard error with the
// command's usage, exit status 2.
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

// Words beginning with "-" are options: "--name value" or "--name=value" for a
// value option, "--name" for a flag. "-" alone is a positional word (standard
// input), and every word after "--" is positional.
// Throws UsageError for an unknown option, a value option without its value, a
// value option given twice or a value given to a flag.
Options parseOptions(const Args& args, std::initializer_list<const char*> valueOptions,
                     std::initializer_list<const char*> flagOptions = {});
Options parseOptions(const Args& args, const std::vector<const char*>& valueOptions,
                     const std::vector<const char*>& flagOptions);

// --today YYYY-MM-DD, else the real local date; UsageError on bad text.
Date resolveToday(const Options& o);

// --data-dir, else $XDG_DATA_HOME/Zelmor, else ~/.local/share/Zelmor; created
// when missing (std::runtime_error when that fails).
std::string resolveDataDir(const Options& o);

// {"format": "zelmor-results", "version": 1, "id": "...", "error": {"kind": "...", "message": "..."}}
// on one line; "id" only when the report's id is known.
std::string errorDocument(std::string_view kind, std::string_view message,
                          const std::optional<std::string>& id = std::nullopt);

// The kind of error document for an exit status: 1 "environment", 2 "input", 3 "overflow".
const char* errorKind(int exitStatus);

// Where a report document was met, and how it is answered.
struct DocumentPlace {
    std::string where;   // "a.json", "standard input, line 3"
    bool alone = false;  // the input's only document, from a file or one (indented) document on standard input
};

// A document that was not read: its message begins with where it was met
// ("a.json: ...", "standard input, line 3: ..."); exit status 1 for an input
// that cannot be read, 2 for a refused document.
struct Refusal {
    std::string message;
    int status = 2;
    std::optional<std::string> id;  // the report's id when the document was read far enough
};

// Every report of the inputs in input order. A file name is one document; "-"
// is standard input, which holds either JSON Lines (one document a line, blank
// lines skipped) or documents written over several lines and one after another;
// in the second form a syntax error ends the reading, as no line is left to
// resume at. Returns the number of documents met.
std::size_t forEachReport(const std::vector<std::string>& inputs,
                          const std::function<void(NishumInput&, const DocumentPlace&)>& onReport,
                          const std::function<void(const Refusal&)>& onRefused);

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
int processReportsInOrder(const std::vector<std::string>& inputs,
                          const std::function<Outcome(NishumInput&, const DocumentPlace&)>& onReport,
                          const std::function<Outcome(const Refusal&)>& onRefused);

// The price index table of the data folder. When it cannot be read the
// command's message goes to standard error (and, with errorDocumentOut, an
// error document of kind "environment" to standard output) and the result is
// empty: the command ends with exit status 1.
std::unique_ptr<MadadTable> openMadadTable(const std::string& dataDir, const char* command,
                                           bool errorDocumentOut = true);

// The report's id as result documents name it: Pratim.IDM, trimmed.
std::string reportId(const NishumInput& report);

// Flushes and closes standard output. False when anything written to it was
// lost (a full disk, a closed pipe).
bool closeStandardOutput();

}  // namespace zelmor::cli
