// zelmor-cli print: the report's sections, the result sheets and the national
// insurance sheet into one PDF file. Each part asked for is a print job of its
// own (its own page head and page numbers from 1), in the order report,
// results, national insurance; without a part flag the report and the results
// print. The file is written only when every job printed; "--pdf -" writes
// the PDF to standard output.

#include <QString>
#include <cstdio>
#include <optional>

#include "cli/cli_common.h"
#include "cli/commands.h"
#include "engine/calc.h"
#include "print/print_nishum.h"
#include "tables/madad_table.h"

namespace zelmor::cli {

int runPrint(const Args& args) {
    Options o;
    Date today;
    std::string dataDir;
    try {
        o = parseOptions(args, {"--pdf", "--today", "--data-dir"}, {"--report", "--results", "--bl"});
        if (o.positional.size() != 1) throw UsageError("give exactly one report document to print");
        if (o.value("--pdf").empty()) throw UsageError("no output file given (--pdf OUT.pdf)");
        today = resolveToday(o);
        dataDir = resolveDataDir(o);
    } catch (const UsageError& e) {
        std::fprintf(stderr, "zelmor-cli print: %s\n", e.what());
        return 2;
    }

    std::optional<NishumInput> report;
    int status = 0;
    forEachReport(
        o.positional, [&](NishumInput& r) { if (!report) report = r; },
        [&](const std::string& message, int exitStatus) {
            std::fprintf(stderr, "zelmor-cli print: %s\n", message.c_str());
            status = exitStatus;
        });
    if (status != 0) return status;
    if (!report) {
        std::fprintf(stderr, "zelmor-cli print: the input holds no report\n");
        return 2;
    }

    bool wantReport = o.has("--report"), wantResults = o.has("--results"), wantBL = o.has("--bl");
    if (!wantReport && !wantResults && !wantBL) wantReport = wantResults = true;

    QString fontWarning;
    ClsPrint::printFamily(&fontWarning);
    if (!fontWarning.isEmpty()) std::fprintf(stderr, "zelmor-cli print: %s\n", fontWarning.toStdString().c_str());

    PrintSetup setup{QString::fromStdString(dataDir), today, [](const QString& title, const QString& text) {
                         std::fprintf(stderr, "zelmor-cli print: %s: %s\n", title.toStdString().c_str(),
                                      text.toStdString().c_str());
                     }};

    NishumOutput out;
    if (wantResults || wantBL) {
        const auto madad = openMadadTable(dataDir, "print", false);
        if (!madad) return 1;
        try {
            out = CalcDoch(*report, ConstDoch(), *madad, today).out;
        } catch (const OverflowError& e) {
            std::fprintf(stderr, "zelmor-cli print: the calculation stopped: %s\n", e.what());
            return 3;
        }
    }

    // "--pdf -" is standard output. The place is checked before anything is printed.
    PdfFileTarget target(QString::fromStdString(o.value("--pdf")));
    QString error;
    if (!target.open(&error)) {
        std::fprintf(stderr, "zelmor-cli print: cannot write the PDF file %s\n", error.toStdString().c_str());
        return 1;
    }
    bool ok = true;
    if (ok && wantReport) ok = PrintNishum(target, setup, *report, false);
    if (ok && wantResults) ok = PrintNishum(target, setup, *report, out, false, false);
    if (ok && wantBL) ok = PrintNishum(target, setup, *report, out, false, true);
    if (!ok || !target.finish(&error)) {
        target.cancel();
        if (!error.isEmpty()) std::fprintf(stderr, "zelmor-cli print: %s\n", error.toStdString().c_str());
        return 1;
    }
    return 0;
}

}  // namespace zelmor::cli
