// zelmor-cli import REPORT.json... | - [--db DB] [--data-dir DIR]
// Stores each report document under its id in the report database, replacing
// what was stored under that id. A refused document gives its error document on
// standard output and the others go on. Many reports (JSON Lines) are stored in
// transactions of up to a thousand reports each.
#include <algorithm>
#include <iostream>
#include <memory>

#include "cli/cli_common.h"
#include "cli/progress.h"
#include "cli/store_words.h"
#include "storage/report_db.h"

namespace zelmor::cli {

int runImport(const Options& o) {
    if (o.positional.empty()) throw UsageError("no report document given");
    const std::string location = o.has("--db") ? o.value("--db") : storage::defaultDbPath(resolveDataDir(o));

    std::unique_ptr<storage::ReportDb> db;
    try {
        db = std::make_unique<storage::ReportDb>(location);
        db->ensureReady();
    } catch (const std::exception& e) {
        // A file of another program is refused here, before anything is written.
        std::cerr << "zelmor-cli import: " << e.what() << '\n';
        std::cout << errorDocument("environment", e.what()) << '\n';
        return 1;
    }

    int status = 0;
    bool broken = false;  // the database failed: nothing more is tried
    std::size_t stored = 0, refused = 0;
    std::vector<NishumInput> batch;
    Progress progress("zelmor-cli import", "reports stored");
    auto refuse = [&](const Refusal& r) {
        progress.finish();
        std::cerr << "zelmor-cli import: " << r.message << '\n';
        std::cout << errorDocument(errorKind(r.status), r.message, r.id) << '\n';
        status = std::max(status, r.status);
        ++refused;
    };
    auto flush = [&] {
        if (batch.empty() || broken) return;
        const storage::StoreOutcome out = batch.size() == 1 ? db->saveNishum(batch.front()) : db->saveMany(batch);
        if (out.ok) {
            stored += batch.size();
            progress.step(stored);
        } else {
            refuse(Refusal{storeFailureText(out), storeExitStatus(out.error), std::nullopt});
            refused += batch.size() - 1;
            broken = true;
        }
        batch.clear();
    };
    const std::size_t met = forEachReport(
        o.positional,
        [&](NishumInput& report, const DocumentPlace& place) {
            const std::string id = reportId(report);
            if (const std::string why = importIdRefusal(id); !why.empty()) {
                // An id that was refused for its characters is not repeated in the error document.
                refuse(Refusal{place.where + ": " + why, 2, id.empty() ? std::optional<std::string>(id) : std::nullopt});
                return;
            }
            if (broken) {
                ++refused;
                return;
            }
            batch.push_back(std::move(report));
            if (batch.size() >= 1000) flush();
        },
        refuse);
    flush();
    progress.finish();
    if (met > 1 || stored != 1)
        std::cerr << "zelmor-cli import: " << met << " reports: " << stored << " stored, " << refused << " refused\n";
    return status;
}

}  // namespace zelmor::cli
