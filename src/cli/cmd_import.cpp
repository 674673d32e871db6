// zelmor-cli import REPORT.json... | - [--db DB] [--data-dir DIR]
// Stores each report document under its id in the report database, replacing
// what was stored under that id. A refused document gives its error document on
// standard output and the others go on. Many reports (JSON Lines) are stored in
// transactions of up to a thousand reports each.
#include <algorithm>
#include <iostream>
#include <memory>

#include "cli/cli_common.h"
#include "cli/store_words.h"
#include "core/values.h"
#include "storage/batch_progress.h"
#include "storage/report_db.h"

namespace zelmor::cli {

int runImport(const Args& args) {
    constexpr const char* kUsage = "usage: zelmor-cli import REPORT.json... | - [--db DB] [--data-dir DIR]";
    Options o;
    std::string location;
    try {
        o = parseOptions(args, {"--db", "--data-dir"});
        if (o.positional.empty()) throw UsageError("no report document given");
        location = o.has("--db") ? o.value("--db") : storage::defaultDbPath(resolveDataDir(o));
    } catch (const UsageError& e) {
        std::cerr << "zelmor-cli import: " << e.what() << '\n' << kUsage << '\n';
        return 2;
    }

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
    std::size_t stored = 0;
    std::vector<NishumInput> batch;
    storage::BatchProgress progress("zelmor-cli import", "reports stored");
    auto refuse = [&](const std::string& message, int exitStatus) {
        std::cerr << "zelmor-cli import: " << message << '\n';
        std::cout << errorDocument(errorKind(exitStatus), message) << '\n';
        status = std::max(status, exitStatus);
    };
    auto flush = [&] {
        if (batch.empty() || broken) return;
        const storage::StoreOutcome out = batch.size() == 1 ? db->saveNishum(batch.front()) : db->saveMany(batch);
        if (out.ok) {
            stored += batch.size();
            progress.step(stored);
        } else {
            refuse(storeFailureText(out), storeExitStatus(out.error));
            broken = true;
        }
        batch.clear();
    };
    const std::size_t met = forEachReport(
        o.positional,
        [&](NishumInput& report) {
            if (const std::string why = importIdRefusal(trimmed(report.NishumID())); !why.empty()) {
                refuse(why, 2);
                return;
            }
            batch.push_back(std::move(report));
            if (batch.size() >= 1000) flush();
        },
        refuse);
    flush();
    progress.finish();
    if (met > 1 || stored != 1) std::cerr << "zelmor-cli import: " << stored << " of " << met << " reports stored\n";
    std::cout.flush();
    return status;
}

}  // namespace zelmor::cli
