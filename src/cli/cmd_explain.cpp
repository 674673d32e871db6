// zelmor-cli explain: how one cell of the results came about.

#include <cstdio>
#include <iostream>

#include "cli/cli_common.h"
#include "cli/commands.h"
#include "core/nearest_name.h"
#include "engine/calc.h"
#include "engine/explain.h"
#include "engine/trace.h"
#include "results/nishum_output.h"
#include "results/sheet_rows.h"
#include "tables/madad_table.h"

namespace zelmor::cli {
namespace {

// The cell named SHEET.FIELD; nullptr after a message naming it and the nearest name.
const SheetFieldDef* findCell(const std::string& text) {
    const auto dot = text.find('.');
    const std::string sheet = text.substr(0, dot), field = dot == std::string::npos ? "" : text.substr(dot + 1);
    std::vector<std::string_view> sheets;
    for (const SheetDef& s : allSheets()) sheets.push_back(s.name);
    std::string message;
    const SheetDef* found = nullptr;
    for (const SheetDef& s : allSheets())
        if (sheet == s.name) found = &s;
    if (!found) {
        message = "unknown sheet '" + sheet + "'";
        if (const auto near = nearestName(sheet, sheets)) message += "; did you mean '" + *near + "'?";
    } else if (const SheetFieldDef* f = findSheetField(sheet, field)) {
        return f;
    } else {
        std::vector<std::string_view> fields;
        for (const SheetFieldDef& f2 : sheetFields(found->id)) fields.push_back(f2.name);
        message = "sheet " + sheet + " has no field '" + field + "'";
        if (const auto near = nearestName(field, fields)) message += "; did you mean '" + sheet + "." + *near + "'?";
    }
    std::fprintf(stderr, "zelmor-cli explain: %s\n", message.c_str());
    return nullptr;
}

}  // namespace

int runExplain(const Options& o) {
    if (o.positional.size() != 2) throw UsageError("explain takes one report document and one cell (SHEET.FIELD)");
    int depth = 0;
    if (o.has("--depth")) {
        const std::string text = o.value("--depth");
        try {
            std::size_t used = 0;
            depth = std::stoi(text, &used);
            if (used != text.size() || depth < 1) throw std::invalid_argument(text);
        } catch (const std::exception&) {
            throw UsageError("--depth takes a whole number of levels, 1 or more");
        }
    }
    const SheetFieldDef* cell = findCell(o.positional[1]);
    if (!cell) return 2;
    const Date today = resolveToday(o);
    const std::string dataDir = resolveDataDir(o);
    const auto table = openMadadTable(dataDir, "explain", false);
    if (!table) return 1;
    const MadadTable& madad = *table;
    const bool json = o.has("--json");
    const std::string id = std::string(cell->sheetName) + "." + cell->name;
    int status = 0;
    forEachReport(
        {o.positional[0]},
        [&](NishumInput& report, const DocumentPlace&) {
            try {
                trace::Trace t;
                const CalcResult r = CalcDoch(report, ConstDoch(), madad, today, &t);
                const int node = t.cell(id);
                if (node < 0) {  // a row the run left empty, or a figure whose rule records nothing yet
                    const double value = sheetValue(r.out, cell->sheet, cell->name);
                    if (json)
                        std::cout << "{\"cell\":\"" << id << "\",\"mode\":" << r.FilingMode
                                  << ",\"tree\":null,\"value\":" << value << "}\n";
                    else
                        std::cout << ModeTitle(r.FilingMode) << "\n"
                                  << id << " = " << trace::formatNumber(value) << " (אין הסבר רשום לתא זה)\n";
                    return;
                }
                if (json) {
                    std::cout << "{\"cell\":\"" << id << "\",\"mode\":" << r.FilingMode
                              << ",\"tree\":" << trace::explainJson(t, node, depth);
                    if (t.filing >= 0) std::cout << ",\"filing\":" << trace::explainJson(t, t.filing, depth);
                    std::cout << "}\n";
                } else {
                    std::cout << ModeTitle(r.FilingMode) << "\n" << trace::explainText(t, node, depth);
                }
            } catch (const OverflowError& e) {
                std::fprintf(stderr, "zelmor-cli explain: the calculation stopped: %s\n", e.what());
                status = 3;
            }
        },
        [&](const Refusal& r) {
            std::fprintf(stderr, "zelmor-cli explain: %s\n", r.message.c_str());
            status = std::max(status, r.status);
        });
    return status;
}

}  // namespace zelmor::cli
