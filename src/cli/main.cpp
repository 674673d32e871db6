#include <QCoreApplication>
#include <QGuiApplication>
#include <memory>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "cli/commands.h"

namespace {

struct Command {
    const char* name;
    int (*run)(const zelmor::cli::Args&);
    const char* usage;
};

const Command kCommands[] = {
    {"check", zelmor::cli::runCheck, "check REPORT.json... | -            validate; print the normalised document"},
    {"calc", zelmor::cli::runCalc, "calc REPORT.json... | - [--today YYYY-MM-DD] [--data-dir DIR] [--summary]"},
    {"solve", zelmor::cli::runSolve, "solve --question 1|2|3|4 [--sum N] REPORT.json [--today ...] [--data-dir ...]"},
    {"print", zelmor::cli::runPrint, "print REPORT.json --pdf OUT.pdf [--report] [--results] [--bl] [--today ...]"},
    {"import", zelmor::cli::runImport, "import REPORT.json [--db DB]      store under its id"},
    {"export", zelmor::cli::runExport, "export ID [--db DB]               report document to standard output"},
    {"list", zelmor::cli::runList, "list [--db DB]                    the taxpayer list"},
    {"calc-all", zelmor::cli::runCalcAll, "calc-all [--db DB] [--today ...] one result line per stored report"},
    {"update-tables", zelmor::cli::runUpdateTables, "update-tables [--url URL] [--data-dir DIR] replace the index table"},
};

void usage() {
    std::fprintf(stderr, "usage: zelmor-cli COMMAND ...\n");
    for (const auto& c : kCommands) std::fprintf(stderr, "  zelmor-cli %s\n", c.usage);
}

}  // namespace

int main(int argc, char** argv) {
    // Qt's SQL and network plugins need an application object; printing lays out
    // text, which needs a GUI application (offscreen: no display is used).
    std::unique_ptr<QCoreApplication> app;
    if (argc >= 2 && std::strcmp(argv[1], "print") == 0) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication::setOrganizationName("Zelmor");
    QCoreApplication::setApplicationName("Zelmor");
    std::ios::sync_with_stdio(false);
    if (argc < 2 || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")) {
        usage();
        return argc < 2 ? 2 : 0;
    }
    for (const auto& c : kCommands) {
        if (std::strcmp(argv[1], c.name) == 0) {
            zelmor::cli::Args args(argv + 2, argv + argc);
            try {
                return c.run(args);
            } catch (const std::exception& e) {
                std::fprintf(stderr, "zelmor-cli %s: %s\n", c.name, e.what());
                return 1;
            }
        }
    }
    std::fprintf(stderr, "zelmor-cli: unknown command '%s'\n", argv[1]);
    usage();
    return 2;
}
