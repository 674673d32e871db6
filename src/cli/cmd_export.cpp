// zelmor-cli export ID... [--db DB] [--data-dir DIR]
// The stored report of each id as a report document on standard output: one id
// gives an indented document, several give one line each.
#include <algorithm>
#include <iostream>

#include "cli/cli_common.h"
#include "cli/store_words.h"
#include "core/values.h"
#include "report/report_json.h"
#include "storage/report_db.h"

namespace zelmor::cli {

int runExport(const Args& args) {
    constexpr const char* kUsage = "usage: zelmor-cli export ID... [--db DB] [--data-dir DIR]";
    Options o;
    std::string location;
    try {
        o = parseOptions(args, {"--db", "--data-dir"});
        if (o.positional.empty()) throw UsageError("no id given");
        location = o.has("--db") ? o.value("--db") : storage::defaultDbPath(resolveDataDir(o));
    } catch (const UsageError& e) {
        std::cerr << "zelmor-cli export: " << e.what() << '\n' << kUsage << '\n';
        return 2;
    }

    const bool many = o.positional.size() > 1;
    int status = 0;
    auto fail = [&](const std::string& message, int exitStatus) {
        std::cerr << "zelmor-cli export: " << message << '\n';
        std::cout << errorDocument(errorKind(exitStatus), message) << '\n';
        status = std::max(status, exitStatus);
    };
    try {
        storage::ReportDb db(location, storage::ReportDb::Mode::ReadOnly);
        db.ensureReady();
        for (const std::string& id : o.positional) {
            NishumInput report;
            const storage::StoreOutcome out = db.openNishum(id, report);
            if (!out.ok) {
                fail(storeFailureText(out), storeExitStatus(out.error));
                continue;
            }
            try {
                std::cout << writeReportDocument(report, !many) << '\n';
            } catch (const std::exception& e) {
                fail("the stored report " + trimmed(id) + ": " + e.what(), 1);
            }
        }
    } catch (const std::exception& e) {
        fail(e.what(), 1);
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "zelmor-cli export: cannot write to standard output\n";
        return std::max(status, 1);
    }
    return status;
}

}  // namespace zelmor::cli
