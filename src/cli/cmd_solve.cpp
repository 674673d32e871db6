// zelmor-cli solve: the four questions of the solving dialog.

#include <cstdio>
#include <iostream>

#include "cli/cli_common.h"
#include "cli/commands.h"
#include "core/json_writer.h"
#include "core/values.h"
#include "engine/solve.h"
#include "tables/madad_table.h"

namespace zelmor::cli {

int runSolve(const Options& o) {
    const std::string q = o.value("--question");
    if (q.size() != 1 || q[0] < '1' || q[0] > '4') throw UsageError("--question takes 1, 2, 3 or 4");
    const int question = q[0] - '0';
    Amount sum = 0;
    if (o.has("--sum")) {
        const std::string text = o.value("--sum");
        if (!IsValidAmount(text) || text.empty()) throw UsageError("--sum: \"" + text + "\" is not a whole sum");
        sum = ParseAmount(text);
        // The second question's target is the tax paid: it asks for no sum.
        if (question == 2) {
            std::fprintf(stderr, "zelmor-cli solve: --sum is not used by question 2 (its target is the tax paid)\n");
            sum = 0;
        }
    }
    if (o.positional.size() != 1) throw UsageError("solve takes one report document");
    const Date today = resolveToday(o);
    const std::string dataDir = resolveDataDir(o);
    const auto table = openMadadTable(dataDir, "solve");
    if (!table) return 1;
    const MadadTable& madad = *table;
    int status = 0;
    forEachReport(
        o.positional,
        [&](NishumInput& report, const DocumentPlace&) {
            try {
                const SimResult r =
                    Simulate(static_cast<SimQuestion>(question), sum, report, ConstDoch(), madad, today);
                JsonWriter w;
                w.beginObject();
                w.key("question").integer(question);
                w.key("sum").integer(sum.value());
                w.key("failed").boolean(r.isSimFail);
                w.key("message");
                if (r.message.empty())
                    w.null();
                else
                    w.string(r.message);
                w.key("SimValue").integer(r.SimValue.value());
                w.key("SimBase").integer(r.SimBase.value());
                w.key("SimHefresh").integer(r.SimHefresh.value());
                w.key("trials").integer(r.SimCount);
                w.endObject();
                std::cout << w.text() << std::endl;
                if (r.isSimFail) std::fprintf(stderr, "zelmor-cli solve: %s\n", r.message.c_str());
            } catch (const OverflowError& e) {
                std::fprintf(stderr, "zelmor-cli solve: the calculation stopped: %s\n", e.what());
                std::cout << errorDocument("overflow", e.what(), reportId(report)) << '\n';
                status = 3;
            }
        },
        [&](const Refusal& r) {
            std::fprintf(stderr, "zelmor-cli solve: %s\n", r.message.c_str());
            std::cout << errorDocument(errorKind(r.status), r.message, r.id) << '\n';
            status = std::max(status, r.status);
        });
    return status;
}

}  // namespace zelmor::cli
