// zelmor-cli solve: the four questions of the solving dialog.

#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>

#include "cli/cli_common.h"
#include "cli/commands.h"
#include "core/values.h"
#include "engine/solve.h"
#include "tables/madad_table.h"

namespace zelmor::cli {

int runSolve(const Args& args) {
    Options o;
    Date today;
    std::string dataDir;
    int question = 0;
    Amount sum = 0;
    try {
        o = parseOptions(args, {"--question", "--sum", "--today", "--data-dir"});
        const std::string q = o.value("--question");
        if (q.size() != 1 || q[0] < '1' || q[0] > '4') throw UsageError("--question takes 1, 2, 3 or 4");
        question = q[0] - '0';
        if (o.has("--sum")) {
            const std::string text = o.value("--sum");
            if (!IsValidAmount(text) || text.empty()) throw UsageError("--sum: \"" + text + "\" is not a whole sum");
            sum = ParseAmount(text);
        }
        if (o.positional.size() != 1) throw UsageError("solve takes one report document");
        today = resolveToday(o);
        dataDir = resolveDataDir(o);
    } catch (const UsageError& e) {
        std::fprintf(stderr, "zelmor-cli solve: %s\n", e.what());
        return 2;
    }
    const auto table = openMadadTable(dataDir, "solve");
    if (!table) return 1;
    const MadadTable& madad = *table;
    if (question == 2) sum = 0;  // the tax paid is the target: no sum is asked
    int status = 0;
    forEachReport(
        o.positional,
        [&](NishumInput& report) {
            try {
                const SimResult r =
                    Simulate(static_cast<SimQuestion>(question), sum, report, ConstDoch(), madad, today);
                nlohmann::ordered_json doc;
                doc["question"] = question;
                doc["sum"] = sum.value();
                doc["failed"] = r.isSimFail;
                doc["message"] = r.message.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(r.message);
                doc["SimValue"] = r.SimValue.value();
                doc["SimBase"] = r.SimBase.value();
                doc["SimHefresh"] = r.SimHefresh.value();
                doc["trials"] = r.SimCount;
                std::cout << doc.dump(-1, ' ', false) << std::endl;
                if (r.isSimFail) std::fprintf(stderr, "zelmor-cli solve: %s\n", r.message.c_str());
            } catch (const OverflowError& e) {
                std::fprintf(stderr, "zelmor-cli solve: the calculation stopped: %s\n", e.what());
                std::cout << errorDocument("overflow", e.what()) << '\n';
                status = 3;
            }
        },
        [&](const std::string& message, int exitStatus) {
            std::fprintf(stderr, "zelmor-cli solve: %s\n", message.c_str());
            std::cout << errorDocument(errorKind(exitStatus), message) << '\n';
            status = std::max(status, exitStatus);
        });
    return status;
}

}  // namespace zelmor::cli
