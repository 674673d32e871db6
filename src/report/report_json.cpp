#include "report/report_json.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <unordered_map>
#include <vector>

#include <nlohmann/json.hpp>

#include "core/values.h"
#include "report/entry_layout.h"
#include "engine/const_doch.h"

namespace zelmor {

InputError::InputError(std::string sec, std::string mem, const std::string& prob)
    : std::runtime_error([&] {
          std::string place = sec;
          if (!mem.empty()) place += (place.empty() ? "" : ".") + mem;
          return place.empty() ? prob : place + ": " + prob;
      }()),
      section(std::move(sec)),
      member(std::move(mem)),
      problem(prob) {}

InputError::InputError(std::size_t ln, std::size_t col, const std::string& prob)
    : std::runtime_error("line " + std::to_string(ln) + ", column " + std::to_string(col) + ": " + prob),
      problem(prob),
      line(ln),
      column(col) {}

namespace {

using json = nlohmann::json;

constexpr std::string_view kFormat = "zelmor-report";
constexpr std::int64_t kVersion = 1;
constexpr int kSectionSlots = 10;  // SectionId runs from 1 to 9

int slot(SectionId id) { return static_cast<int>(id); }

// --- Text helpers -----------------------------------------------------------

bool validUtf8(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        std::size_t len;
        std::uint32_t cp;
        if (c < 0x80) { ++i; continue; }
        if ((c & 0xE0) == 0xC0) { len = 2; cp = c & 0x1Fu; }
        else if ((c & 0xF0) == 0xE0) { len = 3; cp = c & 0x0Fu; }
        else if ((c & 0xF8) == 0xF0) { len = 4; cp = c & 0x07u; }
        else return false;
        if (i + len > s.size()) return false;
        for (std::size_t k = 1; k < len; ++k) {
            const auto cc = static_cast<unsigned char>(s[i + k]);
            if ((cc & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (cc & 0x3Fu);
        }
        // No overlong forms, no surrogates, nothing beyond U+10FFFF.
        if ((len == 2 && cp < 0x80) || (len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000) ||
            (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF)
            return false;
        i += len;
    }
    return true;
}

// A JSON string literal of s (s is valid UTF-8; non-ASCII characters pass as they are).
void appendQuoted(std::string& out, std::string_view s) {
    static const char kHex[] = "0123456789abcdef";
    out += '"';
    for (char ch : s) {
        const auto c = static_cast<unsigned char>(ch);
        switch (c) {
            case '"': out += "\\\""; break;
            case '\\': out += "\\\\"; break;
            case '\b': out += "\\b"; break;
            case '\f': out += "\\f"; break;
            case '\n': out += "\\n"; break;
            case '\r': out += "\\r"; break;
            case '\t': out += "\\t"; break;
            default:
                if (c < 0x20) {
                    out += "\\u00";
                    out += kHex[c >> 4];
                    out += kHex[c & 0xF];
                } else {
                    out += ch;
                }
        }
    }
    out += '"';
}

// A user's text quoted for a message, cut short when it is long.
std::string quotedForMessage(std::string_view s) {
    constexpr std::size_t kMaxChars = 40;
    std::string out;
    if (utf8Length(s) > kMaxChars) {
        std::size_t chars = 0, i = 0;
        for (; i < s.size(); ++i)
            if ((static_cast<unsigned char>(s[i]) & 0xC0) != 0x80 && chars++ == kMaxChars) break;
        appendQuoted(out, s.substr(0, i));
        out.insert(out.size() - 1, "...");
    } else {
        appendQuoted(out, s);
    }
    return out;
}

std::string jsonQuoted(std::string_view s) {
    std::string out;
    appendQuoted(out, s);
    return out;
}

// --- Names ------------------------------------------------------------------

// Edit distance with transpositions, letters compared without case.
std::size_t editDistance(std::string_view a, std::string_view b) {
    auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; };
    const std::size_t n = a.size(), m = b.size();
    std::vector<std::size_t> prev2(m + 1), prev(m + 1), cur(m + 1);
    for (std::size_t j = 0; j <= m; ++j) prev[j] = j;
    for (std::size_t i = 1; i <= n; ++i) {
        cur[0] = i;
        for (std::size_t j = 1; j <= m; ++j) {
            const std::size_t cost = lower(a[i - 1]) == lower(b[j - 1]) ? 0 : 1;
            cur[j] = std::min({prev[j] + 1, cur[j - 1] + 1, prev[j - 1] + cost});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]))
                cur[j] = std::min(cur[j], prev2[j - 2] + 1);
        }
        std::swap(prev2, prev);
        std::swap(prev, cur);
    }
    return prev[m];
}

// The candidate nearest to a mistyped name, when one is near enough to be meant.
template <class Names>
std::optional<std::string> nearestName(std::string_view name, const Names& candidates) {
    std::optional<std::string> best;
    std::size_t bestDistance = std::numeric_limits<std::size_t>::max();
    for (std::string_view c : candidates) {
        const std::size_t d = editDistance(name, c);
        const std::size_t allowed = std::max<std::size_t>(1, std::max(name.size(), c.size()) / 3);
        if (d <= allowed && d < bestDistance) {
            bestDistance = d;
            best = std::string(c);
        }
    }
    return best;
}

struct SectionIndex {
    const SectionDef* def = nullptr;
    std::span<const FieldDef> fields;
    std::unordered_map<std::string_view, const FieldDef*> byName;
};

const std::array<SectionIndex, kSectionSlots>& sectionIndex() {
    static const std::array<SectionIndex, kSectionSlots> index = [] {
        std::array<SectionIndex, kSectionSlots> out{};
        for (const SectionDef& s : allSections()) {
            SectionIndex& si = out[slot(s.id)];
            si.def = &s;
            si.fields = sectionFields(s.id);
            for (const FieldDef& f : si.fields) si.byName.emplace(f.name, &f);
        }
        return out;
    }();
    return index;
}

// --- Derived members --------------------------------------------------------

struct DerivedInfo {
    const DerivedTotal* total;
    const FieldDef* field;
    std::string parts;  // "N042M + N042F", for messages
};

const std::vector<DerivedInfo>& derivedInfo() {
    static const std::vector<DerivedInfo> info = [] {
        std::vector<DerivedInfo> out;
        for (const DerivedTotal& t : derivedTotals()) {
            DerivedInfo d{&t, sectionIndex()[slot(t.section)].byName.at(t.total), {}};
            for (const char* part : t.parts) {
                if (!d.parts.empty()) d.parts += " + ";
                d.parts += part;
            }
            out.push_back(std::move(d));
        }
        return out;
    }();
    return info;
}

// --- Reading ----------------------------------------------------------------

// One scalar (or the start of a container) as the JSON reader met it.
struct Value {
    enum Kind { Null, Bool, Integer, Float, String, Object, Array } kind = Null;
    bool b = false;
    std::int64_t i = 0;
    std::uint64_t u = 0;        // an unsigned integer beyond the signed 64-bit range
    bool beyond64 = false;      // the integer does not fit in 64 signed bits
    std::string_view text;      // the number as written (Float), or the string (String)
};

std::string describe(const Value& v) {
    switch (v.kind) {
        case Value::Null: return "null";
        case Value::Bool: return v.b ? "true" : "false";
        case Value::Integer:
            if (!v.beyond64) return std::to_string(v.i);
            return v.text.empty() ? std::to_string(v.u) : std::string(v.text);
        case Value::Float: return std::string(v.text);
        case Value::String: return quotedForMessage(v.text);
        case Value::Object: return "an object";
        case Value::Array: return "an array";
    }
    return {};
}

const char* rangeName(FieldType t) {
    switch (t) {
        case FieldType::Amount: return "an amount (-2147483648..2147483647)";
        case FieldType::Number: return "a number (-2147483648..2147483647)";
        case FieldType::Count: return "a count (-32768..32767)";
        default: return "";
    }
}

std::pair<std::int64_t, std::int64_t> rangeOf(FieldType t) {
    if (t == FieldType::Count) return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
    return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
}

// The line and column of a byte position (the last byte the reader took); the
// column counts characters, so that it matches what an editor shows.
std::pair<std::size_t, std::size_t> placeOf(std::string_view text, std::size_t position) {
    position = std::min(position, text.size());
    const std::string_view before = text.substr(0, position);
    const std::size_t line = 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    const std::size_t lastNewline = before.rfind('\n');
    const std::size_t lineStart = lastNewline == std::string_view::npos ? 0 : lastNewline + 1;
    return {line, utf8Length(before.substr(lineStart))};
}

class ReportReader final : public nlohmann::json_sax<json> {
public:
    explicit ReportReader(std::string_view text) : text_(text), year_(ConstDoch().YEARDOCH()) {}

    NishumInput finish() {
        if (state_ != State::Done) throw InputError("", "", "the document ends early");  // the parser says so first
        if (!seenFormat_) throw InputError("", "format", "missing (expected \"zelmor-report\")");
        if (!seenVersion_) throw InputError("", "version", "missing (expected 1)");
        if (!seenYear_) throw InputError("", "year", "missing (expected " + std::to_string(year_) + ")");
        workOutDerived();
        return std::move(report_);
    }

    bool null() override { return scalar(Value{}); }
    bool boolean(bool val) override {
        Value v;
        v.kind = Value::Bool;
        v.b = val;
        return scalar(v);
    }
    bool number_integer(number_integer_t val) override {
        Value v;
        v.kind = Value::Integer;
        v.i = val;
        return scalar(v);
    }
    bool number_unsigned(number_unsigned_t val) override {
        Value v;
        v.kind = Value::Integer;
        if (val > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            v.beyond64 = true;
            v.u = val;
        } else {
            v.i = static_cast<std::int64_t>(val);
        }
        return scalar(v);
    }
    bool number_float(number_float_t, const string_t& s) override {
        Value v;
        v.text = s;
        // A whole number too long even for 64 bits arrives here; it is a whole
        // number out of range, not a fraction.
        const bool whole = !s.empty() && std::all_of(s.begin() + (s[0] == '-' ? 1 : 0), s.end(),
                                                      [](char c) { return c >= '0' && c <= '9'; });
        v.kind = whole ? Value::Integer : Value::Float;
        v.beyond64 = whole;
        return scalar(v);
    }
    bool string(string_t& val) override {
        Value v;
        v.kind = Value::String;
        v.text = val;
        return scalar(v);
    }
    bool binary(binary_t&) override {
        Value v;
        v.kind = Value::Array;
        return scalar(v);
    }

    bool start_object(std::size_t) override {
        switch (state_) {
            case State::Start: state_ = State::Top; return true;
            case State::Top:
                if (!section_) {
                    Value v;
                    v.kind = Value::Object;
                    return scalar(v);  // format, version or year given as an object
                }
                state_ = State::Section;
                std::fill(seenMembers_.begin(), seenMembers_.end(), false);
                return true;
            default: {
                Value v;
                v.kind = Value::Object;
                return scalar(v);
            }
        }
    }
    bool end_object() override {
        if (state_ == State::Section) {
            state_ = State::Top;
            section_ = nullptr;
        } else {
            state_ = State::Done;
        }
        return true;
    }
    bool start_array(std::size_t) override {
        Value v;
        v.kind = Value::Array;
        return scalar(v);
    }
    bool end_array() override { return true; }  // never reached: an array is refused where it starts

    bool key(string_t& val) override {
        if (state_ == State::Top)
            topKey(val);
        else
            memberKey(val);
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& ex) override {
        // nlohmann's text is "[json.exception...] parse error at line L, column C: what"; the
        // place is worked out again here in characters, and "what" is kept.
        std::string what = ex.what();
        const std::size_t at = what.find(", column ");
        if (at != std::string::npos) {
            const std::size_t colon = what.find(": ", at);
            if (colon != std::string::npos) what = what.substr(colon + 2);
        }
        const auto [line, column] = placeOf(text_, position);
        throw InputError(line, column, "malformed JSON (" + what + ")");
    }

private:
    enum class State { Start, Top, Section, Done };
    enum class TopKey { None, Format, Version, Year, Section };

    void topKey(const std::string& name) {
        section_ = nullptr;
        if (name == "format") return top(TopKey::Format, seenFormat_, name);
        if (name == "version") return top(TopKey::Version, seenVersion_, name);
        if (name == "year") return top(TopKey::Year, seenYear_, name);
        if (const SectionDef* s = findSection(name)) {
            if (seenSections_[slot(s->id)]) throw InputError(name, "", "given twice");
            seenSections_[slot(s->id)] = true;
            section_ = &sectionIndex()[slot(s->id)];
            seenMembers_.assign(section_->fields.size(), false);
            topKey_ = TopKey::Section;
            return;
        }
        // A member written outside its section is the likeliest slip; name its section.
        for (const SectionIndex& si : sectionIndex())
            if (si.def && si.byName.count(name))
                throw InputError(name, "", std::string("unknown section; ") + name + " is a member of " +
                                               si.def->name + " and belongs inside \"" + si.def->name + "\"");
        std::vector<std::string_view> names{"format", "version", "year"};
        for (const SectionDef& s : allSections()) names.push_back(s.name);
        std::string problem = "unknown section";
        if (auto near = nearestName(name, names)) problem += "; did you mean " + jsonQuoted(*near) + "?";
        throw InputError(name, "", problem);
    }

    void top(TopKey k, bool& seen, const std::string& name) {
        if (seen) throw InputError("", name, "given twice");
        seen = true;
        topKey_ = k;
    }

    // The field of a member's name. Documents usually list the members in
    // declaration order, so the field after the last one is tried first.
    const FieldDef* lookUp(const std::string& name) const {
        if (field_ && field_->section == section_->def->id) {
            const FieldDef* next = field_ + 1;
            if (next < section_->fields.data() + section_->fields.size() && name == next->name) return next;
        } else if (!section_->fields.empty() && name == section_->fields.front().name) {
            return &section_->fields.front();
        }
        const auto it = section_->byName.find(name);
        return it == section_->byName.end() ? nullptr : it->second;
    }

    void memberKey(const std::string& name) {
        const FieldDef* found = lookUp(name);
        if (!found) {
            const char* sec = section_->def->name;
            std::string problem = "unknown member";
            std::optional<std::string> near;
            for (const SectionIndex& si : sectionIndex())
                if (si.def && si.def != section_->def && si.byName.count(name))
                    near = std::string(si.def->name) + "." + name;
            if (!near) {
                std::vector<std::string_view> names;
                names.reserve(section_->fields.size());
                for (const FieldDef& f : section_->fields) names.push_back(f.name);
                near = nearestName(name, names);
            }
            if (near) problem += "; did you mean " + jsonQuoted(*near) + "?";
            throw InputError(sec, name, problem);
        }
        field_ = found;
        const auto pos = static_cast<std::size_t>(field_ - section_->fields.data());
        if (seenMembers_[pos]) throw InputError(field_->sectionName, field_->name, "given twice");
        seenMembers_[pos] = true;
    }

    bool scalar(const Value& v) {
        switch (state_) {
            case State::Start:
                throw InputError("", "", "a report document is a JSON object, got " + describe(v));
            case State::Top: topValue(v); return true;
            case State::Section: memberValue(*field_, v); return true;
            case State::Done: return true;  // the parser refuses anything after the document
        }
        return true;
    }

    void topValue(const Value& v) {
        const std::string y = std::to_string(year_);
        switch (topKey_) {
            case TopKey::Format:
                if (v.kind != Value::String || v.text != kFormat)
                    throw InputError("", "format", "expected \"zelmor-report\", got " + describe(v));
                break;
            case TopKey::Version:
                if (v.kind != Value::Integer || v.beyond64 || v.i != kVersion)
                    throw InputError("", "version", "expected 1, got " + describe(v));
                break;
            case TopKey::Year:
                if (v.kind != Value::Integer || v.beyond64 || v.i != year_)
                    throw InputError("", "year", "expected " + y + " (the tax year of this program), got " + describe(v));
                break;
            case TopKey::Section:
                throw InputError(section_->def->name, "", "expected an object of members, got " + describe(v));
            case TopKey::None: break;
        }
    }

    [[noreturn]] static void refuse(const FieldDef& f, const std::string& problem) {
        throw InputError(f.sectionName, f.name, problem);
    }

    void memberValue(const FieldDef& f, const Value& v) {
        switch (f.type) {
            case FieldType::Text:
                if (v.kind != Value::String) refuse(f, "expected a text (a JSON string), got " + describe(v));
                if (f.maxLength > 0) {
                    const std::size_t n = utf8Length(v.text);
                    if (n > static_cast<std::size_t>(f.maxLength))
                        refuse(f, "text of " + std::to_string(n) + " characters is longer than the " +
                                      std::to_string(f.maxLength) + " the field takes");
                }
                f.ref<std::string>(report_).assign(v.text);
                return;
            case FieldType::Boolean:
                if (v.kind != Value::Bool) refuse(f, "expected true or false, got " + describe(v));
                f.ref<bool>(report_) = v.b;
                return;
            case FieldType::Date: {
                if (v.kind == Value::Null || (v.kind == Value::String && v.text.empty())) {
                    f.ref<Date>(report_) = Date();
                    return;
                }
                if (v.kind != Value::String)
                    refuse(f, "expected a date \"YYYY-MM-DD\" or null, got " + describe(v));
                const std::string text(v.text);
                const auto d = parseIsoDate(text);
                if (!d) {
                    const bool shaped = text.size() == 10 && text[4] == '-' && text[7] == '-';
                    refuse(f, describe(v) + (shaped ? " is not a date" : " is not a date of the form YYYY-MM-DD"));
                }
                if (d->isNull()) refuse(f, describe(v) + " is not a date the report can hold");
                f.ref<Date>(report_) = *d;
                return;
            }
            case FieldType::Amount:
            case FieldType::Number:
            case FieldType::Count: {
                if (v.kind != Value::Integer) refuse(f, "expected a whole number, got " + describe(v));
                const auto [lo, hi] = rangeOf(f.type);
                if (v.beyond64 || v.i < lo || v.i > hi)
                    refuse(f, describe(v) + " is outside the range of " + rangeName(f.type));
                if (f.derived()) {
                    given_.emplace_back(&f, v.i);
                    return;
                }
                if (f.type == FieldType::Amount)
                    f.ref<Amount>(report_) = Amount(static_cast<std::int32_t>(v.i));
                else if (f.type == FieldType::Number)
                    f.ref<std::int32_t>(report_) = static_cast<std::int32_t>(v.i);
                else
                    f.ref<std::int16_t>(report_) = static_cast<std::int16_t>(v.i);
                return;
            }
        }
    }

    // Works every derived member out from its parts; one that was given must agree.
    void workOutDerived() {
        const auto& info = derivedInfo();
        std::vector<std::int64_t> values(info.size());
        for (std::size_t k = 0; k < info.size(); ++k) {
            const FieldDef& f = *info[k].field;
            try {
                values[k] = sumOfParts(*info[k].total, report_);
            } catch (const OverflowError&) {
                refuse(f, "the sum " + info[k].parts + " is outside the range of " + rangeName(f.type));
            }
            for (const auto& [given, value] : given_)
                if (given == &f && value != values[k])
                    refuse(f, "given as " + std::to_string(value) + " but " + info[k].parts + " is " +
                                  std::to_string(values[k]));
        }
        for (std::size_t k = 0; k < info.size(); ++k) {
            const FieldDef& f = *info[k].field;
            if (f.type == FieldType::Count)
                f.ref<std::int16_t>(report_) = static_cast<std::int16_t>(values[k]);
            else
                f.ref<Amount>(report_) = Amount(static_cast<std::int32_t>(values[k]));
        }
    }

    std::string_view text_;
    const int year_;
    NishumInput report_;
    State state_ = State::Start;
    TopKey topKey_ = TopKey::None;
    bool seenFormat_ = false, seenVersion_ = false, seenYear_ = false;
    std::array<bool, kSectionSlots> seenSections_{};
    const SectionIndex* section_ = nullptr;
    const FieldDef* field_ = nullptr;
    std::vector<bool> seenMembers_;
    std::vector<std::pair<const FieldDef*, std::int64_t>> given_;  // derived members as the document gives them
};

// --- Writing ----------------------------------------------------------------

void appendInt(std::string& out, std::int64_t v) {
    char buf[24];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    out.append(buf, r.ptr);
}

void appendValue(std::string& out, const FieldDef& f, const NishumInput& r) {
    switch (f.type) {
        case FieldType::Text: {
            const std::string& s = f.ref<std::string>(r);
            if (!validUtf8(s)) throw InputError(f.sectionName, f.name, "text is not valid UTF-8");
            appendQuoted(out, s);
            return;
        }
        case FieldType::Date: {
            const Date d = f.ref<Date>(r);
            if (d.isNull())
                out += "null";
            else
                appendQuoted(out, formatIsoDate(d));
            return;
        }
        case FieldType::Boolean: out += f.ref<bool>(r) ? "true" : "false"; return;
        case FieldType::Amount: appendInt(out, f.ref<Amount>(r).value()); return;
        case FieldType::Number: appendInt(out, f.ref<std::int32_t>(r)); return;
        case FieldType::Count: appendInt(out, f.ref<std::int16_t>(r)); return;
    }
}

}  // namespace

NishumInput parseReportDocument(std::string_view text) {
    ReportReader reader(text);
    json::sax_parse(text.begin(), text.end(), &reader);
    return reader.finish();
}

std::string writeReportDocument(const NishumInput& report, bool pretty) {
    const char* const colon = pretty ? ": " : ":";
    const char* const indent1 = pretty ? "\n  " : "";
    const char* const indent2 = pretty ? "\n    " : "";
    std::string out;
    out.reserve(pretty ? 10000 : 7000);
    out += '{';
    out += indent1;
    out += "\"format\"";
    out += colon;
    appendQuoted(out, kFormat);
    out += ',';
    out += indent1;
    out += "\"version\"";
    out += colon;
    appendInt(out, kVersion);
    out += ',';
    out += indent1;
    out += "\"year\"";
    out += colon;
    appendInt(out, ConstDoch().YEARDOCH());
    for (const SectionDef& s : allSections()) {
        out += ',';
        out += indent1;
        appendQuoted(out, s.name);
        out += colon;
        out += '{';
        bool first = true;
        for (const FieldDef& f : sectionFields(s.id)) {
            if (!first) out += ',';
            first = false;
            out += indent2;
            appendQuoted(out, f.name);
            out += colon;
            appendValue(out, f, report);
        }
        out += indent1;
        out += '}';
    }
    out += pretty ? "\n}" : "}";
    return out;
}

}  // namespace zelmor
