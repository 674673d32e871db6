// zelmor-cli list [--db DB] [--data-dir DIR] [--sort name|id] [--json]
// The taxpayer list: one line a stored report, "id<TAB>name" (family name, a
// blank, first name), sorted by name (the default) or by id. With --json, one
// {"dID": .., "dName": ..} object a line.
#include <iostream>
#include <nlohmann/json.hpp>

#include "cli/cli_common.h"
#include "storage/report_db.h"

namespace zelmor::cli {
namespace {

// A tab or line break inside a name would break the line format.
std::string oneLine(std::string s) {
    for (char& c : s)
        if (c == '\t' || c == '\n' || c == '\r') c = ' ';
    return s;
}

}  // namespace

int runList(const Args& args) {
    constexpr const char* kUsage = "usage: zelmor-cli list [--db DB] [--data-dir DIR] [--sort name|id] [--json]";
    Options o;
    std::string location;
    storage::ListOrder order = storage::ListOrder::ByName;
    try {
        o = parseOptions(args, {"--db", "--data-dir", "--sort"}, {"--json"});
        if (!o.positional.empty()) throw UsageError("unexpected argument '" + o.positional.front() + "'");
        const std::string sort = o.value("--sort", "name");
        if (sort == "id") order = storage::ListOrder::ById;
        else if (sort != "name") throw UsageError("--sort takes name or id, not '" + sort + "'");
        location = o.has("--db") ? o.value("--db") : storage::defaultDbPath(resolveDataDir(o));
    } catch (const UsageError& e) {
        std::cerr << "zelmor-cli list: " << e.what() << '\n' << kUsage << '\n';
        return 2;
    }
    try {
        storage::ReportDb db(location, storage::ReportDb::Mode::ReadOnly);
        const bool json = o.has("--json");
        for (const storage::NameRow& row : db.listNames(order)) {
            if (json)
                std::cout << nlohmann::json{{"dID", row.dID}, {"dName", row.dName}}.dump(
                                 -1, ' ', false, nlohmann::json::error_handler_t::replace)
                          << '\n';
            else
                std::cout << oneLine(row.dID) << '\t' << oneLine(row.dName) << '\n';
        }
    } catch (const std::exception& e) {
        std::cerr << "zelmor-cli list: " << e.what() << '\n';
        return 1;
    }
    std::cout.flush();
    return std::cout ? 0 : 1;
}

}  // namespace zelmor::cli
