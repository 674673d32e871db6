#include "engine/explain.h"

#include <cmath>
#include <cstdio>
#include <set>
#include <vector>

#include "core/json_writer.h"
#include "core/values.h"

namespace zelmor::trace {
namespace {

std::string grouped(long long whole) {
    std::string digits = std::to_string(whole < 0 ? -whole : whole);
    for (int i = static_cast<int>(digits.size()) - 3; i > 0; i -= 3) digits.insert(static_cast<std::size_t>(i), ",");
    return (whole < 0 ? "-" : "") + digits;
}

const char* spouseWord(char s) { return s == 'F' ? "בן הזוג" : s == 'M' ? "הנישום" : ""; }

bool anonymous(const Node& n) { return !n.leaf() && !n.named(); }

Date dateOf(const Node& n) { return Date::fromSerial(static_cast<std::int32_t>(n.value)); }

// A figure's value as a formula shows it: a date as a date.
std::string valueText(const Node& n) { return n.date ? FormatDate(dateOf(n)) : formatNumber(n.value); }

// What a figure is called in a formula: its name, a leaf's source, or the
// formula of a step that has no name of its own.
std::string label(const Trace& t, int i);

std::string formula(const Trace& t, int i, bool numbers) {
    const Node& n = t.at(i);
    // A name given to a step of a formula reads as the step itself.
    if (n.op == Op::Copy && anonymous(t.at(t.kids(i)[0]))) return formula(t, t.kids(i)[0], numbers);
    std::vector<std::string> parts;
    for (int k : t.kids(i)) {
        const Node& kid = t.at(k);
        if (!numbers)
            parts.push_back(label(t, k));
        else if (anonymous(kid) && (kid.op == Op::Sum || kid.op == Op::Difference))
            parts.push_back("(" + formatNumber(kid.value) + ")");
        else
            parts.push_back(valueText(kid));
    }
    const auto joined = [&](const char* sep) {
        std::string s;
        for (std::size_t k = 0; k < parts.size(); ++k) s += (k ? sep : "") + parts[k];
        return s;
    };
    switch (n.op) {
        case Op::Sum: return joined(" + ");
        case Op::Difference: return joined(" − ");
        case Op::Product: return joined(" × ");
        case Op::Quotient: return joined(" / ");
        case Op::Min: return std::string(opWord(n.op)) + " (" + joined(", ") + ")";
        case Op::Max: return std::string(opWord(n.op)) + " (" + joined(", ") + ")";
        case Op::Round: return "עיגול (" + joined("") + ")";
        case Op::Copy: return joined("");
        case Op::Zero: return "0 (" + std::string(opWord(n.op)) + ": " + joined("") + ")";
        case Op::Decision: return "לפי " + joined(", ");
        default: return "";
    }
}

std::string leafLabel(const Node& n) {
    switch (n.op) {
        case Op::Line: return std::string(n.caption()) + " [" + std::string(n.source()) + "]";
        case Op::Constant: return n.source() == "0" ? "0" : "קבוע " + std::string(n.source());
        case Op::Madad: {  // "madad 2015-11": the month
            std::string_view month = n.source();
            if (month.starts_with("madad ")) month.remove_prefix(6);
            return "מדד " + std::string(month);
        }
        case Op::Today: return n.source() == "today" ? "היום" : "תאריך הריבית שנבחר";
        default: return n.source().empty() ? "(לא מוסבר)" : std::string(n.source()) + " (לא מוסבר)";
    }
}

std::string label(const Trace& t, int i) {
    const Node& n = t.at(i);
    if (n.leaf()) return leafLabel(n);
    if (!n.caption().empty() || !n.rule().empty()) return t.name(i);
    if (!n.source().empty()) return std::string(n.source());
    return "(" + formula(t, i, false) + ")";
}

// The named figures and leaves a node is made of, through its unnamed steps.
void operands(const Trace& t, int i, std::vector<int>& out) {
    for (int k : t.kids(i)) {
        const Node& n = t.at(k);
        if (anonymous(n))
            operands(t, k, out);
        else if (!(n.op == Op::Constant && n.value == 0))  // a 0 says all in the formula
            out.push_back(k);
    }
}

void textTree(const Trace& t, int i, int level, int depth, std::set<int>& shown, std::string& out) {
    out += std::string(static_cast<std::size_t>(2 * level), ' ') + formulaLine(t, i);
    const Node& n = t.at(i);
    if (n.count && !shown.insert(i).second) {
        out += " (ראו לעיל)\n";
        return;
    }
    out += "\n";
    if (depth && level + 1 >= depth) return;
    std::vector<int> kids;
    operands(t, i, kids);
    for (int k : kids) textTree(t, k, level + 1, depth, shown, out);
}

void jsonTree(const Trace& t, int i, int level, int depth, std::set<int>& shown, JsonWriter& w) {
    const Node& n = t.at(i);
    w.beginObject();
    w.key("id").integer(i);
    w.key("name").string(n.leaf() ? leafLabel(n) : label(t, i));
    w.key("op").string(opKey(n.op));
    if (!n.source().empty()) w.key("source").string(n.source());
    if (n.op == Op::Decision) w.key("rule").string(n.rule());
    w.key("value").number(n.value);
    if (n.date) w.key("date").string(formatIsoDate(dateOf(n)));
    w.key("run").integer(n.run);
    if (n.spouse) w.key("spouse").string(std::string(1, n.spouse));
    if (!n.leaf()) {
        w.key("formula").string(formula(t, i, false));
        w.key("numbers").string(formula(t, i, true));
    }
    const bool again = n.count && !shown.insert(i).second;
    if (again) w.key("seenAbove").boolean(true);
    if (!again && n.count && !(depth && level + 1 >= depth)) {
        std::vector<int> kids;
        operands(t, i, kids);
        w.key("children").beginArray();
        for (int k : kids) jsonTree(t, k, level + 1, depth, shown, w.element());
        w.endArray();
    }
    w.endObject();
}

}  // namespace

std::string formatNumber(double v) {
    if (v == std::floor(v) && std::fabs(v) < 9e15) return grouped(static_cast<long long>(v));
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.6f", std::fabs(v));
    std::string s = buf;
    while (s.back() == '0') s.pop_back();
    if (s.back() == '.') s.pop_back();
    const auto dot = s.find('.');
    std::string whole = grouped(std::stoll(s.substr(0, dot)));
    return (v < 0 ? "-" : "") + whole + (dot == std::string::npos ? "" : s.substr(dot));
}

std::string formulaLine(const Trace& t, int i) {
    const Node& n = t.at(i);
    std::string line = n.leaf() ? leafLabel(n) : label(t, i);
    if (n.spouse && !n.leaf()) line += std::string(" (") + spouseWord(n.spouse) + ")";
    if (n.op == Op::Decision) return line + " = " + formula(t, i, false);
    if (!n.leaf()) {
        const std::string names = formula(t, i, false), numbers = formula(t, i, true);
        const std::string value = valueText(n);
        if (!n.named()) return names + " = " + numbers + " = " + value;
        line += " = " + names;
        if (numbers != names) line += " = " + numbers;
        if (n.op != Op::Copy || numbers != value) line += " = " + value;
        return line;
    }
    if (n.op == Op::Constant && n.source() == "0") return line;
    return line + " = " + valueText(n);
}

std::string explainText(const Trace& t, int node, int depth) {
    std::string out;
    std::set<int> shown;
    textTree(t, node, 0, depth, shown, out);
    return out;
}

std::string explainJson(const Trace& t, int node, int depth) {
    JsonWriter w;
    std::set<int> shown;
    jsonTree(t, node, 0, depth, shown, w);
    return w.take();
}

}  // namespace zelmor::trace
