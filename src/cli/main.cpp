#include <QCoreApplication>
#include <QGuiApplication>
#include <algorithm>
#include <iterator>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/cli_common.h"
#include "cli/commands.h"
#include "core/nearest_name.h"
#include "core/version.h"

namespace {

using zelmor::cli::Options;

struct Command {
    const char* name;
    int (*run)(const Options&);
    const char* synopsis;  // the words after "zelmor-cli"
    const char* what;      // one line
    std::vector<const char*> valueOptions, flagOptions;
};

const std::vector<Command>& commands() {
    using namespace zelmor::cli;
    static const std::vector<Command> list = {
        {"check", runCheck, "check REPORT.json... | -", "validate; print the normalised document", {}, {}},
        {"calc", runCalc, "calc REPORT.json... | - [--today YYYY-MM-DD] [--data-dir DIR] [--summary]",
         "the result document of each report", {"--today", "--data-dir"}, {"--summary"}},
        {"solve", runSolve, "solve --question 1|2|3|4 [--sum N] REPORT.json [--today ...] [--data-dir ...]",
         "the questions of the solving dialog", {"--question", "--sum", "--today", "--data-dir"}, {}},
        {"print", runPrint,
         "print REPORT.json --pdf OUT.pdf [--report] [--results] [--bl] [--explain] [--today ...] [--data-dir ...]",
         "the report and its results on paper, as a PDF file; --explain ends the results with the appendix of "
         "explanations",
         {"--pdf", "--today", "--data-dir"}, {"--report", "--results", "--bl", "--explain"}},
        {"import", runImport, "import REPORT.json... | - [--db DB] [--data-dir DIR]", "store each report under its id",
         {"--db", "--data-dir"}, {}},
        {"export", runExport, "export ID... [--db DB] [--data-dir DIR]", "the stored report as a document",
         {"--db", "--data-dir"}, {}},
        {"list", runList, "list [--db DB] [--data-dir DIR] [--sort name|id] [--json]", "the taxpayer list",
         {"--db", "--data-dir", "--sort"}, {"--json"}},
        {"calc-all", runCalcAll, "calc-all [--db DB] [--today YYYY-MM-DD] [--data-dir DIR]",
         "one result line per stored report", {"--db", "--today", "--data-dir"}, {}},
        {"explain", runExplain, "explain REPORT.json SHEET.FIELD [--depth N] [--json] [--today YYYY-MM-DD] [--data-dir DIR]",
         "how one cell of the results came about, down to the report's lines", {"--depth", "--today", "--data-dir"},
         {"--json"}},
        {"update-tables", runUpdateTables, "update-tables [--url URL] [--data-dir DIR]",
         "replace the index table with the published one", {"--url", "--data-dir"}, {}},
    };
    return list;
}

// Options that every command that has them takes before the command name too.
constexpr const char* kGlobalValueOptions[] = {"--data-dir", "--db", "--today"};

void generalUsage(std::FILE* to) {
    std::fprintf(to, "usage: zelmor-cli COMMAND ...\n");
    for (const auto& c : commands()) std::fprintf(to, "  zelmor-cli %s\n", c.synopsis);
    std::fprintf(to, "  zelmor-cli --version\n");
    std::fprintf(to, "'zelmor-cli COMMAND --help' tells more about a command.\n");
}

void commandUsage(const Command& c, std::FILE* to) {
    std::fprintf(to, "usage: zelmor-cli %s\n  %s\n", c.synopsis, c.what);
    std::fprintf(to, "exit status: 0 done, 1 a file or database failed, 2 bad input, 3 the calculation overflowed\n");
}

bool asksForHelp(const std::vector<std::string>& words) {
    for (const std::string& w : words) {
        if (w == "--") return false;
        if (w == "--help" || w == "-h") return true;
    }
    return false;
}

int runCommand(const Command& c, const std::vector<std::string>& args) {
    if (asksForHelp(args)) {
        commandUsage(c, stdout);
        return 0;
    }
    int status;
    try {
        status = c.run(zelmor::cli::parseOptions(args, c.valueOptions, c.flagOptions));
    } catch (const zelmor::cli::UsageError& e) {
        std::fprintf(stderr, "zelmor-cli %s: %s\n", c.name, e.what());
        commandUsage(c, stderr);
        status = 2;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "zelmor-cli %s: %s\n", c.name, e.what());
        status = 1;
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    // Global options before the command go after it, where the command reads them.
    std::vector<std::string> leading;
    while (!words.empty() && words.front().size() > 1 && words.front()[0] == '-' && words.front() != "--") {
        const std::string w = words.front();
        const std::string name = w.substr(0, w.find('='));
        const bool global = std::any_of(std::begin(kGlobalValueOptions), std::end(kGlobalValueOptions),
                                        [&](const char* g) { return name == g; });
        if (!global) break;
        leading.push_back(w);
        words.erase(words.begin());
        if (w.find('=') == std::string::npos && !words.empty()) {
            leading.push_back(words.front());
            words.erase(words.begin());
        }
    }
    const std::string commandName = words.empty() ? std::string() : words.front();

    // Qt's SQL and network plugins need an application object; printing lays out
    // text, which needs a GUI application (offscreen: no display is used).
    std::unique_ptr<QCoreApplication> app;
    if (commandName == "print") {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication::setOrganizationName("Zelmor");
    QCoreApplication::setApplicationName("Zelmor");
    std::ios::sync_with_stdio(false);

    if (commandName == "--version") {
        std::printf("zelmor-cli %s\n", zelmor::kVersion);
        if (zelmor::cli::closeStandardOutput()) return 0;
        std::fprintf(stderr, "zelmor-cli: cannot write to standard output\n");
        return 1;
    }
    if (commandName == "--help" || commandName == "-h") {
        generalUsage(stdout);
        if (zelmor::cli::closeStandardOutput()) return 0;
        std::fprintf(stderr, "zelmor-cli: cannot write to standard output\n");
        return 1;
    }
    if (commandName.empty() || commandName[0] == '-') {
        if (!commandName.empty()) std::fprintf(stderr, "zelmor-cli: unknown option %s\n", commandName.c_str());
        generalUsage(stderr);
        return 2;
    }
    for (const auto& c : commands()) {
        if (commandName != c.name) continue;
        std::vector<std::string> args = leading;
        args.insert(args.end(), words.begin() + 1, words.end());
        int status = runCommand(c, args);
        if (!zelmor::cli::closeStandardOutput()) {
            std::fprintf(stderr, "zelmor-cli %s: cannot write to standard output\n", c.name);
            status = std::max(status, 1);
        }
        return status;
    }
    std::vector<std::string_view> names;
    for (const auto& c : commands()) names.push_back(c.name);
    std::string message = "zelmor-cli: unknown command '" + commandName + "'";
    if (const auto near = zelmor::nearestName(commandName, names)) message += "; did you mean '" + *near + "'?";
    std::fprintf(stderr, "%s\n", message.c_str());
    generalUsage(stderr);
    return 2;
}
