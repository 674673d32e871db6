// zelmor-cli calc-all [--db DB] [--today YYYY-MM-DD] [--data-dir DIR]
// One result line (JSON) for every stored report, in id order, the template row
// excluded, each naming its report's id. All reports are read in one query; a
// report whose rows cannot be read or whose calculation overflows gives its
// error document on its line. A summary closes the run on standard error.
#include <algorithm>
#include <iostream>

#include "cli/cli_common.h"
#include "cli/progress.h"
#include "cli/result_json.h"
#include "core/values.h"
#include "engine/calc.h"
#include "storage/report_db.h"
#include "tables/madad_table.h"

namespace zelmor::cli {

int runCalcAll(const Options& o) {
    if (!o.positional.empty()) throw UsageError("unexpected argument '" + o.positional.front() + "'");
    const Date today = resolveToday(o);
    const std::string dataDir = resolveDataDir(o);
    const std::string location = o.has("--db") ? o.value("--db") : storage::defaultDbPath(dataDir);
    const auto table = openMadadTable(dataDir, "calc-all");
    if (!table) return 1;
    const MadadTable& madad = *table;

    const ConstDoch constants;
    int status = 0;
    std::size_t calculated = 0, unreadable = 0, overflowed = 0;
    try {
        storage::ReportDb db(location, storage::ReportDb::Mode::ReadOnly);
        Progress progress("zelmor-cli calc-all", "reports", db.countStored());
        std::size_t done = 0;
        std::string line;
        auto message = [&](const std::string& text) {
            progress.finish();
            std::cerr << "zelmor-cli calc-all: " << text << '\n';
        };
        db.forEachStored([&](const storage::StoredReport& stored) {
            const std::string id = stored.ok ? reportId(stored.report) : trimmed(stored.id);
            if (!stored.ok) {
                message(stored.error);
                line = errorDocument("environment", stored.error, id);
                status = std::max(status, 1);
                ++unreadable;
            } else {
                try {
                    line = resultDocument(CalcDoch(stored.report, constants, madad, today), id);
                    ++calculated;
                } catch (const OverflowError& e) {
                    message("report " + id + ": the calculation stopped: " + e.what());
                    line = errorDocument("overflow", e.what(), id);
                    status = std::max(status, 3);
                    ++overflowed;
                }
            }
            std::cout << line << '\n';
            progress.step(++done);
        });
    } catch (const std::exception& e) {
        std::cerr << "zelmor-cli calc-all: " << e.what() << '\n';
        std::cout << errorDocument("environment", e.what()) << '\n';
        return std::max(status, 1);
    }
    std::cerr << "zelmor-cli calc-all: " << calculated + unreadable + overflowed << " reports: " << calculated
              << " calculated, " << unreadable << " unreadable, " << overflowed << " overflowed\n";
    return status;
}

}  // namespace zelmor::cli
