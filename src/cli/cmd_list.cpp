// zelmor-cli list [--db DB] [--data-dir DIR] [--sort name|id] [--json]
// The taxpayer list: one line a stored report, "id<TAB>name" (family name, a
// blank, first name), sorted by name (the default) or by id. With --json, one
// {"dID": .., "dName": ..} object a line.
#include <iostream>

#include "cli/cli_common.h"
#include "core/json_writer.h"
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

int runList(const Options& o) {
    if (!o.positional.empty()) throw UsageError("unexpected argument '" + o.positional.front() + "'");
    storage::ListOrder order = storage::ListOrder::ByName;
    const std::string sort = o.value("--sort", "name");
    if (sort == "id")
        order = storage::ListOrder::ById;
    else if (sort != "name")
        throw UsageError("--sort takes name or id, not '" + sort + "'");
    const std::string location = o.has("--db") ? o.value("--db") : storage::defaultDbPath(resolveDataDir(o));
    try {
        storage::ReportDb db(location, storage::ReportDb::Mode::ReadOnly);
        const bool json = o.has("--json");
        for (const storage::NameRow& row : db.listNames(order)) {
            if (json) {
                JsonWriter w;
                w.beginObject().key("dID").string(row.dID).key("dName").string(row.dName).endObject();
                std::cout << w.text() << '\n';
            } else {
                std::cout << oneLine(row.dID) << '\t' << oneLine(row.dName) << '\n';
            }
        }
    } catch (const std::exception& e) {
        std::cerr << "zelmor-cli list: " << e.what() << '\n';
        return 1;
    }
    return 0;
}

}  // namespace zelmor::cli
