// zelmor-cli calc: the result document of each report.

#include <cstdio>
#include <iostream>

#include "cli/cli_common.h"
#include "cli/commands.h"
#include "cli/result_json.h"
#include "core/values.h"
#include "engine/calc.h"
#include "results/sheet_rows.h"
#include "tables/madad_table.h"

namespace zelmor::cli {
namespace {

// The summary sheet as lines of text: each shown row's caption and its
// figures, the registered spouse's first.
std::string summaryText(const CalcResult& r) {
    std::string text = std::string(ModeTitle(r.FilingMode)) + "\n";
    for (const SheetRow& row : sheetRows(SheetId::CMain)) {
        if (!rowShown(r.out, SheetId::CMain, row, ConstDoch().YEARDOCH())) continue;
        std::string line = row.screenCaption;
        for (const char* field : row.fields) {
            if (!field) continue;
            const SheetFieldDef* f = findSheetField("CMain", field);
            line += f->type == SheetFieldType::Date ? " " + FormatDate(f->ref<Date>(r.out))
                                                    : " | " + FormatAmount(f->ref<Amount>(r.out).value());
        }
        text += line + "\n";
    }
    return text;
}

}  // namespace

int runCalc(const Args& args) {
    Options o;
    Date today;
    std::string dataDir;
    try {
        o = parseOptions(args, {"--today", "--data-dir"}, {"--summary"});
        if (o.positional.empty()) throw UsageError("no report given (a file name, or - for JSON Lines on standard input)");
        today = resolveToday(o);
        dataDir = resolveDataDir(o);
    } catch (const UsageError& e) {
        std::fprintf(stderr, "zelmor-cli calc: %s\n", e.what());
        return 2;
    }
    const auto table = openMadadTable(dataDir, "calc");
    if (!table) return 1;
    const MadadTable& madad = *table;
    const ConstDoch constants;
    const bool pretty = !manyOutputs(o.positional);
    const bool summary = o.has("--summary");
    return processReportsInOrder(
        o.positional,
        [&](NishumInput& report) {
            try {
                const CalcResult result = CalcDoch(report, constants, madad, today);
                return Outcome{summary ? summaryText(result) : resultDocument(result, pretty), {}, 0};
            } catch (const OverflowError& e) {
                return Outcome{errorDocument("overflow", e.what()),
                               "zelmor-cli calc: report " +
                                   (report.NishumID().empty() ? std::string("with no id") : report.NishumID()) +
                                   ": the calculation stopped: " + e.what(),
                               3};
            }
        },
        [&](const std::string& message, int exitStatus) {
            return Outcome{errorDocument(errorKind(exitStatus), message), "zelmor-cli calc: " + message, exitStatus};
        });
}

}  // namespace zelmor::cli
