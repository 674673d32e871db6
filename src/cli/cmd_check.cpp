// zelmor-cli check REPORT.json... | -
// Reads each report document and prints it normalised: every member present, in
// catalogue order, the derived members worked out. One file gives an indented
// document; several inputs or standard input give one line a document. A refused
// document gives its error document on its line and the reading goes on.
#include <algorithm>
#include <iostream>

#include "cli/cli_common.h"
#include "report/report_json.h"

namespace zelmor::cli {

int runCheck(const Args& args) {
    constexpr const char* kUsage = "usage: zelmor-cli check REPORT.json... | -";
    Options options;
    try {
        options = parseOptions(args, {});
        if (options.positional.empty()) throw UsageError("no report document given");
    } catch (const UsageError& e) {
        std::cerr << "zelmor-cli check: " << e.what() << '\n' << kUsage << '\n';
        return 2;
    }

    const bool many = manyOutputs(options.positional);
    int status = 0;
    forEachReport(
        options.positional,
        [&](NishumInput& report) { std::cout << writeReportDocument(report, !many) << '\n'; },
        [&](const std::string& message, int exitStatus) {
            std::cerr << "zelmor-cli check: " << message << '\n';
            std::cout << errorDocument(errorKind(exitStatus), message) << '\n';
            status = std::max(status, exitStatus);
        });
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "zelmor-cli check: cannot write to standard output\n";
        return std::max(status, 1);
    }
    return status;
}

}  // namespace zelmor::cli
