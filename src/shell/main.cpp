// zelmor: the desktop program.
//   zelmor [--data-dir DIR] [--db FILE-OR-URI] [--today YYYY-MM-DD]
// The options mean what they mean to zelmor-cli.

#include <QApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <cstdio>
#include <string_view>

#include "cli/cli_common.h"
#include "core/version.h"
#include "shell/main_window.h"
#include "storage/report_db.h"

namespace {
const char* const kUsage =
    "usage: zelmor [--data-dir DIR] [--db FILE-OR-URI] [--today YYYY-MM-DD]\n"
    "       zelmor --help | --version";
}  // namespace

int main(int argc, char** argv) {
    // These two answer without a display.
    for (int i = 1; i < argc; ++i) {
        const std::string_view w = argv[i];
        if (w == "--version") std::printf("zelmor %s\n", zelmor::kVersion);
        else if (w == "--help" || w == "-h") std::printf("%s\n", kUsage);
        else continue;
        return std::fflush(stdout) == 0 && !std::ferror(stdout) ? 0 : 1;
    }
    QApplication app(argc, argv);  // takes Qt's own options out of argv
    QApplication::setApplicationName(QStringLiteral("Zelmor"));
    QApplication::setLayoutDirection(Qt::RightToLeft);
    // Qt's own words (the buttons of the message boxes: כן, לא, ביטול) in Hebrew.
    QTranslator qtWords;
    if (qtWords.load(QStringLiteral("qtbase_he"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&qtWords);

    zelmor::shell::AppOptions options;
    try {
        const zelmor::cli::Options o =
            zelmor::cli::parseOptions(zelmor::cli::Args(argv + 1, argv + argc), {"--data-dir", "--db", "--today"});
        if (!o.positional.empty()) throw zelmor::cli::UsageError("unexpected word \"" + o.positional.front() + "\"");
        const std::string dataDir = zelmor::cli::resolveDataDir(o);
        options.dataDir = QString::fromStdString(dataDir);
        options.dbLocation =
            QString::fromStdString(o.has("--db") ? o.value("--db") : zelmor::storage::defaultDbPath(dataDir));
        options.today = zelmor::cli::resolveToday(o);
    } catch (const zelmor::cli::UsageError& e) {
        std::fprintf(stderr, "zelmor: %s\n%s\n", e.what(), kUsage);
        return 2;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "zelmor: %s\n", e.what());
        return 1;
    }

    zelmor::shell::MainWindow window(options);
    window.show();
    return app.exec();
}
