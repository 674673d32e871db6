// zelmor-cli calc-all [--db DB] [--today YYYY-MM-DD] [--data-dir DIR]
// One result line (JSON) for every stored report, in id order, the template row
// excluded. All reports are read in one query; a report whose rows cannot be
// read or whose calculation overflows gives its error document on its line.
#include <algorithm>
#include <iostream>

#include "cli/cli_common.h"
#include "cli/result_json.h"
#include "engine/calc.h"
#include "storage/batch_progress.h"
#include "storage/report_db.h"
#include "tables/madad_table.h"

namespace zelmor::cli {

int runCalcAll(const Args& args) {
    constexpr const char* kUsage = "usage: zelmor-cli calc-all [--db DB] [--today YYYY-MM-DD] [--data-dir DIR]";
    Options o;
    Date today;
    std::string dataDir, location;
    try {
        o = parseOptions(args, {"--db", "--today", "--data-dir"});
        if (!o.positional.empty()) throw UsageError("unexpected argument '" + o.positional.front() + "'");
        today = resolveToday(o);
        dataDir = resolveDataDir(o);
        location = o.has("--db") ? o.value("--db") : storage::defaultDbPath(dataDir);
    } catch (const UsageError& e) {
        std::cerr << "zelmor-cli calc-all: " << e.what() << '\n' << kUsage << '\n';
        return 2;
    }
    const auto table = openMadadTable(dataDir, "calc-all");
    if (!table) return 1;
    const MadadTable& madad = *table;

    const ConstDoch constants;
    int status = 0;
    try {
        storage::ReportDb db(location, storage::ReportDb::Mode::ReadOnly);
        storage::BatchProgress progress("zelmor-cli calc-all", "reports", db.countStored());
        std::size_t done = 0;
        std::string line;
        db.forEachStored([&](const storage::StoredReport& stored) {
            if (!stored.ok) {
                std::cerr << "zelmor-cli calc-all: " << stored.error << '\n';
                line = errorDocument("environment", stored.error);
                status = std::max(status, 1);
            } else {
                try {
                    line = resultDocument(CalcDoch(stored.report, constants, madad, today));
                } catch (const OverflowError& e) {
                    std::cerr << "zelmor-cli calc-all: report " << stored.id << ": the calculation stopped: " << e.what()
                              << '\n';
                    line = errorDocument("overflow", e.what());
                    status = std::max(status, 3);
                }
            }
            std::cout << line << '\n';
            progress.step(++done);
        });
        progress.finish();
    } catch (const std::exception& e) {
        std::cerr << "zelmor-cli calc-all: " << e.what() << '\n';
        std::cout << errorDocument("environment", e.what()) << '\n';
        status = std::max(status, 1);
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "zelmor-cli calc-all: cannot write to standard output\n";
        return std::max(status, 1);
    }
    return status;
}

}  // namespace zelmor::cli
