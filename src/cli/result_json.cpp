#include "cli/result_json.h"

#include <charconv>

namespace zelmor::cli {
namespace {

void appendInt(std::string& s, std::int64_t v) {
    char buf[24];
    auto r = std::to_chars(buf, buf + sizeof buf, v);
    s.append(buf, r.ptr);
}

void appendDouble(std::string& s, double v) {
    char buf[32];
    auto r = std::to_chars(buf, buf + sizeof buf, v);  // shortest text that reads back the same double
    s.append(buf, r.ptr);
}

}  // namespace

// Written directly rather than through a document tree: a batch writes tens of
// thousands of these.
std::string resultDocument(const CalcResult& result) {
    std::string s;
    s.reserve(12000);
    s += R"({"format":"zelmor-results","version":1,"year":)";
    appendInt(s, ConstDoch().YEARDOCH());
    s += R"(,"FilingMode":)";
    appendInt(s, result.FilingMode);
    s += R"(,"ModeTitle":")";
    s += ModeTitle(result.FilingMode);
    s += R"(","comparison":)";
    if (result.compared) {
        s += R"({"joint":)";
        appendInt(s, result.MasMeuchad.value());
        s += R"(,"separate":)";
        appendInt(s, result.MasNifrad.value());
        s += '}';
    } else {
        s += "null";
    }
    SheetId open{};
    for (const SheetFieldDef& f : allSheetFields()) {
        if (f.sheet != open) {
            s += open == SheetId{} ? ",\"" : "},\"";
            s += f.sheetName;
            s += "\":{";
            open = f.sheet;
        } else {
            s += ',';
        }
        s += '"';
        s += f.name;
        s += "\":";
        switch (f.type) {
            case SheetFieldType::Amount: appendInt(s, f.ref<Amount>(result.out).value()); break;
            case SheetFieldType::Double: appendDouble(s, f.ref<double>(result.out)); break;
            case SheetFieldType::Date: {
                const Date d = f.ref<Date>(result.out);
                if (d.isNull()) {
                    s += "null";
                } else {
                    s += '"';
                    s += formatIsoDate(d);
                    s += '"';
                }
                break;
            }
        }
    }
    s += "}}";
    return s;
}

}  // namespace zelmor::cli
