// zelmor-cli check REPORT.json... | -
// Reads each report document and prints it normalised: every member present, in
// catalogue order, the derived members worked out. One document alone gives an
// indented document; several inputs or JSON Lines give one line a document. A
// refused document gives its error document on its line and the reading goes on.
#include "cli/cli_common.h"
#include "report/report_json.h"

namespace zelmor::cli {

int runCheck(const Options& o) {
    if (o.positional.empty()) throw UsageError("no report document given");
    return processReportsInOrder(
        o.positional,
        [](NishumInput& report, const DocumentPlace& place) {
            return Outcome{writeReportDocument(report, place.alone), {}, 0};
        },
        [](const Refusal& r) {
            return Outcome{errorDocument(errorKind(r.status), r.message, r.id), "zelmor-cli check: " + r.message,
                           r.status};
        });
}

}  // namespace zelmor::cli
