#include "engine/trace.h"

#include <algorithm>

#include "core/amount.h"
#include "engine/tracer.h"
#include "results/sheet_rows.h"

namespace zelmor {
namespace trace {

namespace {

// Figures are shared by many others: each is worked out once.
double evaluateOnce(const Trace& t, int i, std::vector<double>& memo, std::vector<char>& done) {
    const auto at = static_cast<std::size_t>(i);
    if (done[at]) return memo[at];
    const Node& n = t.at(i);
    const auto kid = [&](std::size_t k) { return evaluateOnce(t, n.kids.at(k), memo, done); };
    double v = n.value;
    switch (n.op) {
        case Op::Line:
        case Op::Constant:
        case Op::Madad:
        case Op::Today:
        case Op::Untraced:
        case Op::Decision: break;
        case Op::Sum:
            // Left to right, as the calculation adds.
            v = kid(0);
            for (std::size_t k = 1; k < n.kids.size(); ++k) v += kid(k);
            break;
        case Op::Difference: v = kid(0) - kid(1); break;
        case Op::Product: v = kid(0) * kid(1); break;
        case Op::Quotient: v = kid(0) / kid(1); break;
        case Op::Min: v = std::min(kid(0), kid(1)); break;
        case Op::Max: v = std::max(kid(0), kid(1)); break;
        case Op::Round: v = R(kid(0)).value(); break;
        case Op::Copy: v = kid(0); break;
        case Op::Zero: v = 0; break;
    }
    memo[at] = v;
    done[at] = 1;
    return v;
}

}  // namespace

double evaluate(const Trace& t, int node) {
    std::vector<double> memo(t.nodes.size());
    std::vector<char> done(t.nodes.size());
    return evaluateOnce(t, node, memo, done);
}

std::vector<double> evaluateAll(const Trace& t) {
    std::vector<double> memo(t.nodes.size());
    std::vector<char> done(t.nodes.size());
    for (std::size_t i = 0; i < t.nodes.size(); ++i) evaluateOnce(t, static_cast<int>(i), memo, done);
    return memo;
}

const char* opWord(Op op) {
    switch (op) {
        case Op::Sum: return "+";
        case Op::Difference: return "−";
        case Op::Product: return "×";
        case Op::Quotient: return "/";
        case Op::Min: return "הקטן מבין";
        case Op::Max: return "הגדול מבין";
        case Op::Round: return "מעוגל";
        case Op::Zero: return "הועבר";
        default: return "";
    }
}

const char* opKey(Op op) {
    switch (op) {
        case Op::Line: return "line";
        case Op::Constant: return "constant";
        case Op::Madad: return "madad";
        case Op::Today: return "today";
        case Op::Untraced: return "untraced";
        case Op::Sum: return "sum";
        case Op::Difference: return "difference";
        case Op::Product: return "product";
        case Op::Quotient: return "quotient";
        case Op::Min: return "min";
        case Op::Max: return "max";
        case Op::Round: return "round";
        case Op::Copy: return "copy";
        case Op::Zero: return "zero";
        case Op::Decision: return "decision";
    }
    return "";
}

}  // namespace trace

namespace engine {

thread_local Recorder* tlRecorder = nullptr;

using trace::Node;
using trace::Op;

Recorder::Recorder(trace::Trace& t) : t_(t) {
    for (const SheetDef& s : allSheets())
        for (const SheetRow& row : sheetRows(s.id))
            for (const char* f : row.fields)
                if (f && *row.screenCaption) captions_.emplace(std::string(s.name) + "." + f, row.screenCaption);
}

void Recorder::mapReport(const NishumInput& report, const sections::Yegia& y, const sections::Rechush& r,
                         const sections::Nikuim& n, const sections::Zikuim& z) {
    for (const FieldDef& f : allFields()) {
        const void* working = nullptr;
        switch (f.section) {
            case SectionId::Yegia: working = &y; break;
            case SectionId::Rechush: working = &r; break;
            case SectionId::Nikuim: working = &n; break;
            case SectionId::Zikuim: working = &z; break;
            default: break;
        }
        lines_[f.address(const_cast<NishumInput&>(report))] = &f;
        if (working) lines_[f.inSection(const_cast<void*>(working))] = &f;
    }
}

void Recorder::mapSheets(NishumOutput& out) {
    for (const SheetFieldDef& f : allSheetFields()) cells_[f.address(out)] = &f;
}

void Recorder::beginRun() {
    ++run_;
    t_.runs = run_;
    live_.clear();
}

void Recorder::forget(const void* begin, const void* end) {
    std::erase_if(live_, [&](const auto& e) { return e.first >= begin && e.first < end; });
}

void Recorder::finish(NishumOutput& out) {
    for (const SheetFieldDef& f : allSheetFields()) {
        const auto it = live_.find(f.address(out));
        if (it != live_.end()) t_.cells[std::string(f.sheetName) + "." + f.name] = it->second;
    }
}

int Recorder::add(Node n) {
    n.run = run_;
    t_.nodes.push_back(std::move(n));
    return static_cast<int>(t_.nodes.size()) - 1;
}

int Recorder::nodeOf(const void* addr, double value) {
    if (const auto it = live_.find(addr); it != live_.end()) return it->second;
    if (const auto it = kept_.find(addr); it != kept_.end()) return it->second;
    Node n;
    n.value = value;
    if (const auto it = lines_.find(addr); it != lines_.end()) {
        const FieldDef& f = *it->second;
        n.op = Op::Line;
        n.name = *f.caption ? f.caption : f.name;
        while (!n.name.empty() && (n.name.back() == ' ' || n.name.back() == ':')) n.name.pop_back();
        if (*f.code) n.name += std::string(" (") + f.code + ")";
        n.source = std::string(f.sectionName) + "." + f.name;
        n.spouse = f.person == Person::M ? 'M' : f.person == Person::F ? 'F' : 0;
    } else if (const auto c = cells_.find(addr); c != cells_.end()) {
        n.op = Op::Untraced;
        n.source = std::string(c->second->sheetName) + "." + c->second->name;
    } else {
        n.op = Op::Untraced;
    }
    if (n.op == Op::Untraced && value == 0) {
        // A working figure or cell the run has not written holds the 0 it started from.
        const int zero = constant("0", 0);
        live_[addr] = zero;
        return zero;
    }
    const int i = add(std::move(n));
    live_[addr] = i;
    return i;
}

int Recorder::constant(const char* name, double value) {
    const std::string key = std::string(name) + "=" + std::to_string(value);
    if (const auto it = constants_.find(key); it != constants_.end()) return it->second;
    Node n;
    n.op = Op::Constant;
    n.value = value;
    n.source = name;
    const int i = add(std::move(n));
    constants_[key] = i;
    return i;
}

int Recorder::op(Op o, double value, int a, int b) {
    Node n;
    n.op = o;
    n.value = value;
    n.spouse = spouse;
    // A chain of sums reads as one sum: a + b + c, added left to right.
    const Node& left = t_.at(a);
    if (o == Op::Sum && left.op == Op::Sum && left.name.empty() && left.source.empty())
        n.kids = left.kids;
    else
        n.kids.push_back(a);
    if (b >= 0) n.kids.push_back(b);
    return add(std::move(n));
}

int Recorder::decision(const char* name, double value, std::initializer_list<int> kids) {
    Node n;
    n.op = Op::Decision;
    n.value = value;
    n.name = name;
    n.kids.assign(kids.begin(), kids.end());
    return add(std::move(n));
}

int Recorder::name(int node, const char* name) {
    Node copy;
    copy.op = Op::Copy;
    copy.value = t_.at(node).value;
    copy.name = name;
    copy.spouse = spouse;
    copy.kids = {node};
    return add(std::move(copy));
}

void Recorder::bind(const void* addr, int node, const char* name) {
    std::string source, caption = name;
    if (const auto c = cells_.find(addr); c != cells_.end()) {
        source = std::string(c->second->sheetName) + "." + c->second->name;
        // The sheet's caption names the cell; the rule's own word tells the cells of one row apart.
        if (const auto cap = captions_.find(source); cap != captions_.end())
            caption = caption.empty() || caption == cap->second ? cap->second : cap->second + " — " + caption;
    }
    Node& n = t_.nodes[static_cast<std::size_t>(node)];
    int bound = node;
    // A working figure taken over as it is is explained by what it holds; a
    // step of a formula takes the figure's name; a figure already named is
    // taken over by a new node.
    if (caption.empty() && source.empty()) {
    } else if (!n.leaf() && n.name.empty() && n.source.empty() && n.run == run_) {
        n.name = caption;
        n.source = source;
        n.spouse = spouse;
    } else {
        Node copy;
        copy.op = Op::Copy;
        copy.value = n.value;
        copy.name = caption;
        copy.source = source;
        copy.spouse = spouse;
        copy.kids = {node};
        bound = add(std::move(copy));
    }
    if (addr >= keepBegin_ && addr < keepEnd_)
        kept_[addr] = bound;
    else
        live_[addr] = bound;
}

}  // namespace engine
}  // namespace zelmor
