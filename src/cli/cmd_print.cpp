// zelmor-cli print: the report's sections, the result sheets and the national
// insurance sheet into one PDF file. Each part asked for is a print job of its
// own (its own page head and page numbers from 1), in the order report,
// results, national insurance; without a part flag the report and the results
// print. --explain ends the results with the appendix of explanations. The file is written only when every job printed; "--pdf -" writes
// the PDF to standard output.

#include <QString>
#include <cstdio>
#include <optional>

#include "cli/cli_common.h"
#include "cli/commands.h"
#include "engine/calc.h"
#include "engine/trace.h"
#include "print/print_nishum.h"
#include "tables/madad_table.h"

namespace zelmor::cli {

int runPrint(const Options& o) {
    if (o.positional.size() != 1) throw UsageError("give exactly one report document to print");
    if (o.value("--pdf").empty()) throw UsageError("no output file given (--pdf OUT.pdf)");
    const Date today = resolveToday(o);
    const std::string dataDir = resolveDataDir(o);

    std::optional<NishumInput> report;
    int status = 0;
    forEachReport(
        o.positional, [&](NishumInput& r, const DocumentPlace&) { if (!report) report = r; },
        [&](const Refusal& r) {
            std::fprintf(stderr, "zelmor-cli print: %s\n", r.message.c_str());
            status = r.status;
        });
    if (status != 0) return status;
    if (!report) {
        std::fprintf(stderr, "zelmor-cli print: the input holds no report\n");
        return 2;
    }

    bool wantReport = o.has("--report"), wantResults = o.has("--results"), wantBL = o.has("--bl");
    if (!wantReport && !wantResults && !wantBL) wantReport = wantResults = true;
    const bool wantExplain = o.has("--explain");
    if (wantExplain && !wantResults) throw UsageError("--explain adds to the result sheets (--results)");

    QString fontWarning;
    ClsPrint::printFamily(&fontWarning);
    if (!fontWarning.isEmpty()) std::fprintf(stderr, "zelmor-cli print: %s\n", fontWarning.toStdString().c_str());

    PrintSetup setup{QString::fromStdString(dataDir), today, [](const QString& title, const QString& text) {
                         std::fprintf(stderr, "zelmor-cli print: %s: %s\n", title.toStdString().c_str(),
                                      text.toStdString().c_str());
                     }};

    NishumOutput out;
    trace::Trace trace;
    if (wantResults || wantBL) {
        const auto madad = openMadadTable(dataDir, "print", false);
        if (!madad) return 1;
        try {
            out = CalcDoch(*report, ConstDoch(), *madad, today, wantExplain ? &trace : nullptr).out;
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
    if (ok && wantResults)
        ok = PrintNishum(target, setup, *report, out, false, false, SheetId::CMain, wantExplain ? &trace : nullptr);
    if (ok && wantBL) ok = PrintNishum(target, setup, *report, out, false, true);
    if (!ok || !target.finish(&error)) {
        target.cancel();
        if (!error.isEmpty()) std::fprintf(stderr, "zelmor-cli print: %s\n", error.toStdString().c_str());
        return 1;
    }
    return 0;
}

}  // namespace zelmor::cli
