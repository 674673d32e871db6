#include "cli/result_json.h"

#include <vector>

#include "core/json_writer.h"

namespace zelmor::cli {

std::string resultDocument(const CalcResult& result, const std::string& id, bool pretty) {
    static const std::vector<JsonName> names = [] {
        std::vector<JsonName> out;
        for (const SheetFieldDef& f : allSheetFields()) out.emplace_back(f.name);
        return out;
    }();
    const SheetFieldDef* const first = allSheetFields().data();
    JsonWriter w(pretty ? JsonWriter::Layout::Indented : JsonWriter::Layout::Compact, pretty ? 20000 : 12000);
    w.beginObject();
    w.key("format").string("zelmor-results");
    w.key("version").integer(1);
    w.key("year").integer(ConstDoch().YEARDOCH());
    w.key("id").string(id);
    w.key("FilingMode").integer(result.FilingMode);
    w.key("ModeTitle").string(ModeTitle(result.FilingMode));
    w.key("comparison");
    if (result.compared) {
        w.beginObject();
        w.key("joint").integer(result.MasMeuchad.value());
        w.key("separate").integer(result.MasNifrad.value());
        w.endObject();
    } else {
        w.null();
    }
    for (const SheetDef& sheet : allSheets()) {
        w.key(sheet.name).beginObject();
        for (const SheetFieldDef& f : sheetFields(sheet.id)) {
            w.key(names[static_cast<std::size_t>(&f - first)]);
            switch (f.type) {
                case SheetFieldType::Amount: w.integer(f.ref<Amount>(result.out).value()); break;
                case SheetFieldType::Double: w.number(f.ref<double>(result.out)); break;
                case SheetFieldType::Date: {
                    const Date d = f.ref<Date>(result.out);
                    if (d.isNull())
                        w.null();
                    else
                        w.string(formatIsoDate(d));
                    break;
                }
            }
        }
        w.endObject();
    }
    w.endObject();
    return w.take();
}

}  // namespace zelmor::cli
