// zelmor-cli calc: the result document of each report.

#include <QString>
#include <cstdio>
#include <iostream>

#include "cli/cli_common.h"
#include "cli/commands.h"
#include "cli/result_json.h"
#include "engine/calc.h"
#include "tables/madad_table.h"

namespace zelmor::cli {

int runCalc(const Args& args) {
    Options o;
    Date today;
    std::string dataDir;
    try {
        o = parseOptions(args, {"--today", "--data-dir"});
        if (o.positional.empty()) throw UsageError("no report given (a file name, or - for JSON Lines on standard input)");
        today = resolveToday(o);
        dataDir = resolveDataDir(o);
    } catch (const UsageError& e) {
        std::fprintf(stderr, "zelmor-cli calc: %s\n", e.what());
        return 2;
    }
    MadadTable madad(QString::fromStdString(dataDir));
    if (!madad.ok()) {
        std::fprintf(stderr, "zelmor-cli calc: the price index table cannot be read: %s\n",
                     madad.errorString().toStdString().c_str());
        std::cout << errorDocument("environment", madad.errorString().toStdString()) << '\n';
        return 1;
    }
    const ConstDoch constants;
    const bool pretty = !manyOutputs(o.positional);
    return processReportsInOrder(
        o.positional,
        [&](NishumInput& report) {
            try {
                return Outcome{resultDocument(CalcDoch(report, constants, madad, today), pretty), {}, 0};
            } catch (const OverflowError& e) {
                return Outcome{errorDocument("overflow", e.what()),
                               "zelmor-cli calc: report " +
                                   (report.NishumID().empty() ? std::string("with no id") : report.NishumID()) +
                                   ": the calculation stopped: " + e.what(),
                               3};
            }
        },
        [&](const std::string& message, int exitStatus) {
            return Outcome{errorDocument(errorKind(exitStatus), message), "zelmor-cli calc: " + message, exitStatus};
        });
}

}  // namespace zelmor::cli
