// zelmor-cli update-tables: replaces the price index table with the file
// published at the update address.

#include <QSettings>
#include <QUrl>
#include <iostream>
#include <memory>

#include "cli/cli_common.h"
#include "cli/commands.h"
#include "tables/madad_table.h"

namespace zelmor::cli {

// The update address is a setting of the program (empty until someone sets it);
// --url overrides it for one run.
int runUpdateTables(const Args& args) {
    Options o;
    std::string dataDir;
    try {
        o = parseOptions(args, {"--url", "--data-dir"});
        if (!o.positional.empty()) throw UsageError("unexpected argument '" + o.positional.front() + "'");
        dataDir = resolveDataDir(o);
    } catch (const UsageError& e) {
        std::cerr << "zelmor-cli update-tables: " << e.what() << '\n';
        return 2;
    }
    // A table that cannot be used is what an update is for: it is replaced all the same.
    const auto table = std::make_unique<MadadTable>(QString::fromStdString(dataDir));
    if (!table->ok())
        std::cerr << "zelmor-cli update-tables: the price index table in use cannot be read: "
                  << table->errorString().toStdString() << '\n';
    const QString address = o.has("--url") ? QString::fromStdString(o.value("--url"))
                                           : QSettings().value(QStringLiteral("tables/updateAddress")).toString();
    QString message;
    const bool ok = table->UpdateMadadTable(QUrl(address), &message);
    (ok ? std::cout : std::cerr) << message.toStdString() << '\n';
    return ok ? 0 : 1;
}

}  // namespace zelmor::cli
