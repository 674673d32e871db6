// zelmor-cli calc: the result document of each report.

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

int runCalc(const Options& o) {
    if (o.positional.empty()) throw UsageError("no report given (a file name, or - for JSON Lines on standard input)");
    const Date today = resolveToday(o);
    const std::string dataDir = resolveDataDir(o);
    const auto table = openMadadTable(dataDir, "calc");
    if (!table) return 1;
    const MadadTable& madad = *table;
    const ConstDoch constants;
    const bool summary = o.has("--summary");
    return processReportsInOrder(
        o.positional,
        [&](NishumInput& report, const DocumentPlace& place) {
            const std::string id = reportId(report);
            try {
                const CalcResult result = CalcDoch(report, constants, madad, today);
                return Outcome{summary ? summaryText(result) : resultDocument(result, id, place.alone), {}, 0};
            } catch (const OverflowError& e) {
                return Outcome{errorDocument("overflow", e.what(), id),
                               "zelmor-cli calc: report " + (id.empty() ? std::string("with no id") : id) +
                                   ": the calculation stopped: " + e.what(),
                               3};
            }
        },
        [&](const Refusal& r) {
            return Outcome{errorDocument(errorKind(r.status), r.message, r.id), "zelmor-cli calc: " + r.message,
                           r.status};
        });
}

}  // namespace zelmor::cli
