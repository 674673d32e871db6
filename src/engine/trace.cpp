#include "engine/trace.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

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
    const auto kids = t.kids(i);
    const auto kid = [&](std::size_t k) { return evaluateOnce(t, kids[k], memo, done); };
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
            for (std::size_t k = 1; k < kids.size(); ++k) v += kid(k);
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

namespace {

// What the report's fields and the sheets' cells are called, by their place in
// their record: worked out once.
struct Catalogue {
    struct Line {
        const FieldDef* field;
        std::string name, source;
    };
    struct Cell {
        std::string source, caption;
    };
    std::vector<Line> lines;
    std::vector<Cell> cells;
    std::vector<const Line*> lineAt;  // by half the byte offset in NishumInput
    // The texts of the cell by a quarter of the byte offset in NishumOutput, at
    // hand where the recorder looks (no source: no cell there).
    struct CellText {
        std::string_view source, caption;
    };
    std::vector<CellText> cellAt;
    std::vector<std::ptrdiff_t> cellOffset;  // by place in allSheetFields(): the byte offset in NishumOutput
    std::unordered_map<std::string, std::string> captions;

    Catalogue() {
        static NishumInput in;
        static NishumOutput out;
        const auto at = [](const void* base, const void* p) {
            return static_cast<const char*>(p) - static_cast<const char*>(base);
        };
        for (const FieldDef& f : allFields()) {
            std::string name = *f.caption ? f.caption : f.name;
            while (!name.empty() && (name.back() == ' ' || name.back() == ':')) name.pop_back();
            if (*f.code) name += std::string(" (") + f.code + ")";
            lines.push_back({&f, name, std::string(f.sectionName) + "." + f.name});
        }
        lineAt.assign(sizeof(NishumInput) / 2 + 1, nullptr);
        for (const Line& l : lines) lineAt[static_cast<std::size_t>(at(&in, l.field->address(in))) / 2] = &l;
        for (const SheetDef& s : allSheets())
            for (const SheetRow& row : sheetRows(s.id))
                for (const char* f : row.fields)
                    if (f && *row.screenCaption) captions.emplace(std::string(s.name) + "." + f, row.screenCaption);
        for (const SheetFieldDef& f : allSheetFields()) {
            Cell c{std::string(f.sheetName) + "." + f.name, ""};
            if (const auto cap = captions.find(c.source); cap != captions.end()) c.caption = cap->second;
            cells.push_back(std::move(c));
        }
        cellAt.assign(sizeof(NishumOutput) / 4 + 1, CellText{});
        const auto fields = allSheetFields();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            cellOffset.push_back(at(&out, fields[i].address(out)));
            cellAt[static_cast<std::size_t>(cellOffset.back()) / 4] = {cells[i].source, cells[i].caption};
        }
    }
};

const Catalogue& catalogue() {
    static const Catalogue c;
    return c;
}

}  // namespace

Recorder::Recorder(trace::Trace& t, const void* calc, std::size_t size)
    : t_(t), calc_(static_cast<const char*>(calc)), catalogue_(&catalogue()) {
    t_.clear();
    // One slot for every 4 bytes of the calculation, then one for every 2 of the report.
    const std::size_t calcSlots = size / 4 + 1, reportSlots = sizeof(NishumInput) / 2 + 1;
    t_.scratch.assign(calcSlots + reportSlots, -1);
    calcSlots_ = std::span<int>(t_.scratch.data(), calcSlots);
    reportSlots_ = std::span<int>(t_.scratch.data() + calcSlots, reportSlots);
    t_.nodes.reserve(2048);
    t_.kidPool.reserve(4096);
    t_.cellNodes.assign(allSheetFields().size(), -1);
}

void Recorder::mapReport(const NishumInput& report, const sections::Yegia& y, const sections::Rechush& r,
                         const sections::Nikuim& n, const sections::Zikuim& z) {
    const auto base = [&](const void* section) { return static_cast<const char*>(section); };
    report_ = base(&report);
    reportRanges_ = {{report_, sizeof(NishumInput), 0},
                     {base(&y), sizeof y, base(&report.Yegia) - report_},
                     {base(&r), sizeof r, base(&report.Rechush) - report_},
                     {base(&n), sizeof n, base(&report.Nikuim) - report_},
                     {base(&z), sizeof z, base(&report.Zikuim) - report_}};
}

void Recorder::keep(const void* begin, const void* end) {
    keepBegin_ = static_cast<const char*>(begin);
    keepEnd_ = static_cast<const char*>(end);
}

void Recorder::clear(const char* begin, const char* end) {
    const auto index = [&](const char* p) {
        return std::clamp<std::ptrdiff_t>((p - calc_ + 3) / 4, 0, static_cast<std::ptrdiff_t>(calcSlots_.size()));
    };
    if (begin >= calc_ && begin < calc_ + calcSlots_.size() * 4) {
        std::fill(calcSlots_.begin() + index(begin), calcSlots_.begin() + index(end), -1);
        return;
    }
    for (const char* p = begin; p < end; p += 2)  // in the report
        if (int* s = slot(p)) *s = -1;
}

void Recorder::beginRun() {
    ++run_;
    t_.runs = run_;
    // Every figure of the calculation starts again, except those kept.
    clear(calc_, keepBegin_);
    clear(keepEnd_, calc_ + calcSlots_.size() * 4);
}

void Recorder::forget(const void* begin, const void* end) {
    clear(static_cast<const char*>(begin), static_cast<const char*>(end));
}

void Recorder::finish(NishumOutput& out) {
    const auto& offsets = static_cast<const Catalogue*>(catalogue_)->cellOffset;
    const char* base = static_cast<const char*>(static_cast<const void*>(&out));
    for (std::size_t i = 0; i < offsets.size(); ++i)
        if (const int* s = slot(base + offsets[i])) t_.cellNodes[i] = *s;
}

const void* Recorder::lineAt(const void* addr) const {
    const auto p = static_cast<const char*>(addr);
    for (const Range& r : reportRanges_)
        if (p >= r.begin && p < r.begin + r.size) {
            return static_cast<const Catalogue*>(catalogue_)->lineAt[static_cast<std::size_t>(p - r.begin + r.offset) / 2];
        }
    return nullptr;
}

const void* Recorder::cellAt(const void* addr) const {
    const auto p = static_cast<const char*>(addr);
    if (!out_ || p < out_ || p >= out_ + sizeof(NishumOutput)) return nullptr;
    const auto& cell = static_cast<const Catalogue*>(catalogue_)->cellAt[static_cast<std::size_t>(p - out_) / 4];
    return cell.source.empty() ? nullptr : &cell;
}

// A new node at the end, written in place.
Node& Recorder::add(Op op, double value, int& index) {
    index = static_cast<int>(t_.nodes.size());
    Node& n = t_.nodes.emplace_back();
    n.op = op;
    n.value = value;
    n.run = run_;
    return n;
}

int Recorder::firstRead(const void* addr, double value, int* s) {
    int i = -1;
    if (const auto* line = static_cast<const Catalogue::Line*>(lineAt(addr))) {
        Node& n = add(Op::Line, value, i);
        n.caption = line->name;
        n.source = line->source;
        const Person who = line->field->person;
        n.spouse = who == Person::M ? 'M' : who == Person::F ? 'F' : 0;
    } else if (value == 0) {
        // A working figure or cell the run has not written holds the 0 it started from.
        i = constant("0", 0);
    } else {
        Node& n = add(Op::Untraced, value, i);
        if (const auto* cell = static_cast<const Catalogue::CellText*>(cellAt(addr))) n.source = cell->source;
    }
    if (s) *s = i;
    return i;
}

int Recorder::constant(const char* name, double value) {
    // The same name may stand in two places of the program with two addresses:
    // each is a slot of its own, and both nodes read the same.
    std::size_t h = (reinterpret_cast<std::uintptr_t>(name) >> 3) % constants_.size();
    while (constants_[h].name && constants_[h].name != name) h = (h + 1) % constants_.size();
    ConstantSlot& c = constants_[h];
    if (c.name && c.value == value) return c.node;
    c.name = name;
    c.value = value;
    add(Op::Constant, value, c.node).source = name;
    return c.node;
}

int Recorder::today(double value) {
    int i;
    add(Op::Today, value, i).source = "today";
    return i;
}

int Recorder::madad(Date month, double value) {
    // The months' names, made once.
    constexpr int kFirst = 1950, kLast = 2099;
    static const std::vector<std::string> names = [] {
        std::vector<std::string> v;
        for (int y = kFirst; y <= kLast; ++y)
            for (int m = 1; m <= 12; ++m) v.push_back("madad " + std::to_string(y) + (m < 10 ? "-0" : "-") + std::to_string(m));
        return v;
    }();
    const int y = month.year();
    int i;
    Node& n = add(Op::Madad, value, i);
    n.source = y >= kFirst && y <= kLast ? std::string_view(names[static_cast<std::size_t>((y - kFirst) * 12 + month.month() - 1)])
                                         : std::string_view("madad");
    return i;
}

int Recorder::op(Op o, double value, int a, int b) {
    int first = static_cast<int>(t_.kidPool.size());
    // A chain of sums reads as one sum: a + b + c, added left to right. The
    // left sum's children are taken over where they lie when they end the pool.
    const Node& left = t_.at(a);
    if (o == Op::Sum && left.op == Op::Sum && !left.named()) {
        if (static_cast<std::size_t>(left.first + left.count) == t_.kidPool.size())
            first = left.first;
        else
            for (int k = 0; k < left.count; ++k)
                t_.kidPool.push_back(t_.kidPool[static_cast<std::size_t>(left.first + k)]);
    } else {
        t_.kidPool.push_back(a);
    }
    if (b >= 0) t_.kidPool.push_back(b);
    int i;
    Node& n = add(o, value, i);
    n.spouse = spouse;
    n.first = first;
    n.count = static_cast<int>(t_.kidPool.size()) - first;
    openSum_ = o == Op::Sum ? i : -1;
    return i;
}

int Recorder::extend(double value, int a, int b) {
    Node& n = t_.nodes[static_cast<std::size_t>(a)];
    if (a != openSum_ || static_cast<std::size_t>(n.first + n.count) != t_.kidPool.size())
        return op(Op::Sum, value, a, b);
    t_.kidPool.push_back(b);
    ++n.count;
    n.value = value;
    return a;
}

int Recorder::decision(const char* title, const char* rule, double value, std::initializer_list<int> kids) {
    openSum_ = -1;
    int i;
    Node& n = add(Op::Decision, value, i);
    n.caption = title;
    n.rule = rule;
    n.first = static_cast<int>(t_.kidPool.size());
    n.count = static_cast<int>(kids.size());
    t_.kidPool.insert(t_.kidPool.end(), kids.begin(), kids.end());
    return i;
}

int Recorder::copyOf(int node, std::string_view caption, std::string_view rule, std::string_view source) {
    openSum_ = -1;
    const double value = t_.at(node).value;
    int i;
    Node& copy = add(Op::Copy, value, i);
    copy.caption = caption;
    copy.rule = rule;
    copy.source = source;
    copy.spouse = spouse;
    copy.first = static_cast<int>(t_.kidPool.size());
    copy.count = 1;
    t_.kidPool.push_back(node);
    return i;
}

int Recorder::name(int node, std::string_view rule) { return copyOf(node, {}, rule, {}); }

int Recorder::datePart(const void* addr, const char* part, double value) {
    const auto* line = static_cast<const Catalogue::Line*>(lineAt(addr));
    int i;
    Node& n = add(Op::Line, value, i);
    n.caption = part;
    if (line) n.source = line->source;
    n.spouse = spouse;
    return i;
}

void Recorder::bind(const void* addr, int node, std::string_view rule) {
    if (node == openSum_) openSum_ = -1;  // the figure holds it now
    std::string_view caption, source;
    if (const auto* cell = static_cast<const Catalogue::CellText*>(cellAt(addr))) {
        source = cell->source;
        caption = cell->caption;
    }
    int bound = node;
    Node& n = t_.nodes[static_cast<std::size_t>(node)];
    // A working figure taken over as it is is explained by what it holds; a
    // step of a formula takes the figure's name; a figure already named is
    // taken over by a new node.
    if (rule.empty() && caption.empty() && source.empty()) {
    } else if (!n.leaf() && !n.named() && n.run == run_) {
        n.caption = caption;
        n.rule = rule;
        n.source = source;
        n.spouse = spouse;
    } else {
        bound = copyOf(node, caption, rule, source);
    }
    if (int* s = slot(addr)) *s = bound;
}

}  // namespace engine

namespace trace {

int Trace::cell(std::string_view id) const {
    const auto dot = id.find('.');
    if (dot == std::string_view::npos) return -1;
    const SheetFieldDef* f = findSheetField(id.substr(0, dot), id.substr(dot + 1));
    if (!f || cellNodes.empty()) return -1;
    return cellNodes[static_cast<std::size_t>(f - allSheetFields().data())];
}

std::string Trace::name(int i) const {
    const Node& n = at(i);
    if (n.caption.empty()) return std::string(n.rule);
    if (n.rule.empty() || n.rule == n.caption) return std::string(n.caption);
    return std::string(n.caption) + " — " + std::string(n.rule);
}

}  // namespace trace
}  // namespace zelmor
