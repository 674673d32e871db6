#include "cli/result_json.h"

#include <charconv>
#include <vector>

namespace zelmor::cli {
namespace {

// A small writer of one JSON object with nested objects; written directly
// rather than through a document tree, since a batch writes tens of
// thousands of these.
class Writer {
public:
    explicit Writer(bool pretty) : pretty_(pretty) { s_.reserve(pretty ? 20000 : 12000); }

    void open() {
        s_ += '{';
        ++depth_;
        first_ = true;
    }
    void close() {
        --depth_;
        if (pretty_) newline();
        s_ += '}';
        first_ = false;
    }
    void key(const char* name) {
        if (!first_) s_ += ',';
        first_ = false;
        if (pretty_) newline();
        s_ += '"';
        s_ += name;
        s_ += pretty_ ? "\": " : "\":";
    }
    // A key given as its text with the quotes and colon ("\"N150\":"), for
    // the names that every document repeats.
    void quotedKey(const std::string& text) {
        if (!first_) s_ += ',';
        first_ = false;
        s_ += text;
    }
    void integer(std::int64_t v) {
        char buf[24];
        s_.append(buf, std::to_chars(buf, buf + sizeof buf, v).ptr);
    }
    void number(double v) {
        char buf[32];  // the shortest text that reads back the same double
        s_.append(buf, std::to_chars(buf, buf + sizeof buf, v).ptr);
    }
    void text(const char* t) {
        s_ += '"';
        s_ += t;  // the texts written here need no escaping
        s_ += '"';
    }
    void null() { s_ += "null"; }
    std::string take() { return std::move(s_); }

private:
    void newline() {
        s_ += '\n';
        s_.append(static_cast<std::size_t>(2 * depth_), ' ');
    }
    std::string s_;
    bool pretty_;
    bool first_ = true;
    int depth_ = 0;
};

}  // namespace

std::string resultDocument(const CalcResult& result, bool pretty) {
    static const std::vector<std::string> quotedNames = [] {
        std::vector<std::string> out;
        for (const SheetFieldDef& f : allSheetFields()) out.push_back("\"" + std::string(f.name) + "\":");
        return out;
    }();
    const SheetFieldDef* const first = allSheetFields().data();
    Writer w(pretty);
    w.open();
    w.key("format");
    w.text("zelmor-results");
    w.key("version");
    w.integer(1);
    w.key("year");
    w.integer(ConstDoch().YEARDOCH());
    w.key("FilingMode");
    w.integer(result.FilingMode);
    w.key("ModeTitle");
    w.text(ModeTitle(result.FilingMode));
    w.key("comparison");
    if (result.compared) {
        w.open();
        w.key("joint");
        w.integer(result.MasMeuchad.value());
        w.key("separate");
        w.integer(result.MasNifrad.value());
        w.close();
    } else {
        w.null();
    }
    for (const SheetDef& sheet : allSheets()) {
        w.key(sheet.name);
        w.open();
        for (const SheetFieldDef& f : sheetFields(sheet.id)) {
            if (pretty)
                w.key(f.name);
            else
                w.quotedKey(quotedNames[static_cast<std::size_t>(&f - first)]);
            switch (f.type) {
                case SheetFieldType::Amount: w.integer(f.ref<Amount>(result.out).value()); break;
                case SheetFieldType::Double: w.number(f.ref<double>(result.out)); break;
                case SheetFieldType::Date: {
                    const Date d = f.ref<Date>(result.out);
                    if (d.isNull())
                        w.null();
                    else
                        w.text(formatIsoDate(d).c_str());
                    break;
                }
            }
        }
        w.close();
    }
    w.close();
    return w.take();
}

}  // namespace zelmor::cli
