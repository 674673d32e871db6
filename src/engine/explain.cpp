#include "engine/explain.h"

#include <cmath>
#include <cstdio>
#include <set>
#include <vector>

#include "core/json_writer.h"

namespace zelmor::trace {
namespace {

std::string grouped(long long whole) {
    std::string digits = std::to_string(whole < 0 ? -whole : whole);
    for (int i = static_cast<int>(digits.size()) - 3; i > 0; i -= 3) digits.insert(static_cast<std::size_t>(i), ",");
    return (whole < 0 ? "-" : "") + digits;
}

const char* spouseWord(char s) { return s == 'F' ? "בן הזוג" : s == 'M' ? "הנישום" : ""; }

bool anonymous(const Node& n) { return !n.leaf() && !n.named(); }

// What a figure is called in a formula: its name, a leaf's source, or the
// formula of a step that has no name of its own.
std::string label(const Trace& t, int i);

std::string formula(const Trace& t, int i, bool numbers) {
    const Node& n = t.at(i);
    std::vector<std::string> parts;
    for (int k : t.kids(i)) {
        const Node& kid = t.at(k);
        if (!numbers)
            parts.push_back(label(t, k));
        else if (anonymous(kid) && (kid.op == Op::Sum || kid.op == Op::Difference))
            parts.push_back("(" + formatNumber(kid.value) + ")");
        else
            parts.push_back(formatNumber(kid.value));
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
        case Op::Madad: return "מדד " + std::string(n.source());
        case Op::Today: return "היום";
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
        if (!n.named()) return names + " = " + numbers + " = " + formatNumber(n.value);
        line += " = " + names;
        if (numbers != names) line += " = " + numbers;
        if (n.op != Op::Copy || numbers != formatNumber(n.value)) line += " = " + formatNumber(n.value);
        return line;
    }
    if (n.op == Op::Constant && n.source() == "0") return line;
    return line + " = " + formatNumber(n.value);
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
