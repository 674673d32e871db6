#include "engine/trace.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
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
    // A report line's texts, kept small and together: a calculation reads hundreds.
    struct Line {
        const char* name;
        const char* source;
        char spouse;  // 'M', 'F' or 0
    };
    std::vector<std::string> lineNames, lineSources;  // the texts the lines point at
    struct Cell {
        std::string source, caption;
    };
    std::vector<Line> lines;
    std::vector<Cell> cells;
    std::vector<const Line*> lineAt;  // by half the byte offset in NishumInput
    // The texts of the cell by a quarter of the byte offset in NishumOutput, at
    // hand where the recorder looks (no source: no cell there).
    using CellText = engine::CellText;
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
            const char spouse = f.person == Person::M ? 'M' : f.person == Person::F ? 'F' : 0;
            lineNames.push_back(name);
            lineSources.push_back(std::string(f.sectionName) + "." + f.name);
            lines.push_back({nullptr, nullptr, spouse});
        }
        lineAt.assign(sizeof(NishumInput) / 2 + 1, nullptr);
        const auto reportFields = allFields();
        for (std::size_t i = 0; i < lines.size(); ++i) {  // the strings stay where they are from here on
            lines[i].name = lineNames[i].c_str();
            lines[i].source = lineSources[i].c_str();
            lineAt[static_cast<std::size_t>(at(&in, reportFields[i].address(in))) / 2] = &lines[i];
        }
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
            const Cell& c = cells[i];
            const char* caption = c.caption.empty() ? nullptr : c.caption.c_str();
            cellAt[static_cast<std::size_t>(cellOffset.back()) / 4] = {c.source.c_str(), caption};
        }
    }
};

const Catalogue& catalogue() {
    static const Catalogue c;
    return c;
}

// What lies at each 4 bytes of a calculation's record: a report line (in the
// run's copies of the sections) or a sheet cell. Every calculation's record
// is laid out alike: worked out on the first and kept.
struct Layout {
    // The record's size, then where the copies of the sections and the sheets lie in it.
    using Key = std::array<std::ptrdiff_t, 6>;
    Key key;
    std::vector<int> line;                         // by slot: the line's place in a report (half its offset), or -1
    std::vector<Catalogue::CellText> cell;         // by slot
    std::vector<std::size_t> cellSlot;             // by place in allSheetFields()
};

const Layout& layoutFor(const Layout::Key& key, std::span<const std::ptrdiff_t> sectionsInReport) {
    static std::mutex made;
    static std::vector<std::unique_ptr<Layout>> layouts;
    static std::atomic<const Layout*> last{nullptr};
    if (const Layout* l = last.load(std::memory_order_acquire); l && l->key == key) return *l;
    const std::lock_guard lock(made);
    for (const auto& l : layouts)
        if (l->key == key) {
            last.store(l.get(), std::memory_order_release);
            return *l;
        }
    const Catalogue& cat = catalogue();
    auto l = std::make_unique<Layout>();
    l->key = key;
    const auto slots = static_cast<std::size_t>(key[0]) / 4 + 1;
    l->line.assign(slots, -1);
    l->cell.assign(slots, Catalogue::CellText{});
    // The sections' copies: a line lies where its field begins, 2 bytes a place in a report.
    const std::size_t sizes[] = {sizeof(sections::Yegia), sizeof(sections::Rechush), sizeof(sections::Nikuim),
                                 sizeof(sections::Zikuim)};
    for (std::size_t s = 0; s < 4; ++s)
        for (std::size_t b = 0; b < sizes[s]; b += 2)
            if (const auto place = static_cast<std::size_t>(sectionsInReport[s]) / 2 + b / 2; cat.lineAt[place])
                l->line[(static_cast<std::size_t>(key[s + 1]) + b) / 4] = static_cast<int>(place);
    for (const std::ptrdiff_t at : cat.cellOffset) {
        const auto slot = static_cast<std::size_t>(key[5] + at) / 4;
        l->cell[slot] = cat.cellAt[static_cast<std::size_t>(at) / 4];
        l->cellSlot.push_back(slot);
    }
    layouts.push_back(std::move(l));
    last.store(layouts.back().get(), std::memory_order_release);
    return *layouts.back();
}

}  // namespace

Recorder::Recorder(trace::Trace& t, const void* calc, std::size_t size)
    : t_(t), calc_(static_cast<const char*>(calc)), calcBytes_(size), catalogue_(&catalogue()) {
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
    reportRanges_ = {{{report_, sizeof(NishumInput), 0},
                      {base(&y), sizeof y, base(&report.Yegia) - report_},
                      {base(&r), sizeof r, base(&report.Rechush) - report_},
                      {base(&n), sizeof n, base(&report.Nikuim) - report_},
                      {base(&z), sizeof z, base(&report.Zikuim) - report_}}};
}

void Recorder::mapSheets(const NishumOutput& out) {
    Layout::Key key{static_cast<std::ptrdiff_t>(calcBytes_)};
    std::array<std::ptrdiff_t, 4> inReport{};
    for (std::size_t s = 0; s < 4; ++s) {
        key[s + 1] = reportRanges_[s + 1].begin - calc_;
        inReport[s] = reportRanges_[s + 1].offset;
    }
    key[5] = static_cast<const char*>(static_cast<const void*>(&out)) - calc_;
    const Layout& layout = layoutFor(key, inReport);
    layout_ = &layout;
    cells_ = layout.cell.data();
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
    // Every figure of the calculation starts again, except those kept.
    clear(calc_, keepBegin_);
    clear(keepEnd_, calc_ + calcSlots_.size() * 4);
}

void Recorder::forget(const void* begin, const void* end) {
    clear(static_cast<const char*>(begin), static_cast<const char*>(end));
}

void Recorder::finish() {
    const auto& cellSlot = static_cast<const Layout*>(layout_)->cellSlot;
    for (std::size_t i = 0; i < cellSlot.size(); ++i) t_.cellNodes[i] = calcSlots_[cellSlot[i]];
}

const void* Recorder::lineAt(const void* addr) const {
    const auto p = static_cast<const char*>(addr);
    for (const Range& r : reportRanges_)
        if (p >= r.begin && p < r.begin + r.size) {
            return static_cast<const Catalogue*>(catalogue_)->lineAt[static_cast<std::size_t>(p - r.begin + r.offset) / 2];
        }
    return nullptr;
}

int Recorder::lineNode(const void* field, double value) {
    const auto* line = static_cast<const Catalogue::Line*>(field);
    int i;
    Node& n = add(Op::Line, value, i);
    n.caption_ = line->name;
    n.source_ = line->source;
    n.spouse = line->spouse;
    return i;
}

int Recorder::firstReadInCalc(std::size_t slot, double value) {
    const Layout& layout = *static_cast<const Layout*>(layout_);
    int i;
    if (const int place = layout.line[slot]; place >= 0) {
        // A line of the run's copy of a section, read as the report holds it, is
        // the report's line: one node for both, in every run.
        int& inReport = reportSlots_[static_cast<std::size_t>(place)];
        if (inReport >= 0 && t_.at(inReport).op == Op::Line && t_.at(inReport).value == value) {
            i = inReport;
        } else {
            i = lineNode(static_cast<const Catalogue*>(catalogue_)->lineAt[static_cast<std::size_t>(place)], value);
            if (inReport < 0) inReport = i;
        }
    } else if (value == 0) {
        // A working figure or cell the run has not written holds the 0 it started from.
        i = constant("0", 0);
    } else {
        Node& n = add(Op::Untraced, value, i);
        n.source_ = layout.cell[slot].source;
    }
    calcSlots_[slot] = i;
    return i;
}

int Recorder::firstRead(const void* addr, double value, int* s) {
    int i = -1;
    if (const void* line = lineAt(addr)) {
        i = lineNode(line, value);
    } else if (value == 0) {
        // A working figure or cell the run has not written holds the 0 it started from.
        i = constant("0", 0);
    } else {
        add(Op::Untraced, value, i);
    }
    if (s) *s = i;
    return i;
}

int Recorder::newConstant(const char* name, double value) {
    // The same name may stand in two places of the program with two addresses:
    // each is a slot of its own, and both nodes read the same.
    std::size_t h = constantPlace(name), tried = 0;
    while (constants_[h].name && constants_[h].name != name && ++tried < constants_.size())
        h = (h + 1) % constants_.size();
    ConstantSlot& c = constants_[h];
    if (c.name == name && t_.at(c.node).value == value) return c.node;
    int i;
    add(Op::Constant, value, i).source_ = name;
    if (tried < constants_.size()) c = {name, i};  // when every place is taken, the node stands alone
    return i;
}

int Recorder::day(const char* source, double value) {
    int i;
    Node& n = add(Op::Today, value, i);
    n.source_ = source;
    n.date = true;
    return i;
}

int Recorder::dateConstant(const char* name, double value) {
    const int i = constant(name, value);
    t_.nodes[static_cast<std::size_t>(i)].date = true;
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
    const auto at = static_cast<std::size_t>((y - kFirst) * 12 + month.month() - 1);
    n.source_ = y >= kFirst && y <= kLast ? names[at].c_str() : "madad";
    return i;
}

int Recorder::chain(double value, int sum, int b) {
    auto& pool = t_.kidPool;
    const Node& left = t_.at(sum);
    int first = static_cast<int>(pool.size());
    if (left.count <= Node::kHere) {
        pool.insert(pool.end(), left.kids_, left.kids_ + left.count);
    } else if (static_cast<std::size_t>(left.kids_[0] + left.count) == pool.size()) {
        first = left.kids_[0];  // the terms end the pool: the new sum shares them
    } else {
        const auto from = static_cast<std::size_t>(left.kids_[0]);
        for (std::size_t k = 0; k < left.count; ++k) pool.push_back(pool[from + k]);
    }
    pool.push_back(b);
    int i;
    Node& n = add(Op::Sum, value, i);
    n.spouse = spouse;
    n.kids_[0] = first;
    n.count = static_cast<std::uint16_t>(static_cast<int>(pool.size()) - first);
    openSum_ = i;
    return i;
}

int Recorder::decision(const char* title, const char* rule, double value, std::initializer_list<int> kids) {
    openSum_ = -1;
    int i;
    Node& n = add(Op::Decision, value, i);
    n.caption_ = title;
    n.rule_ = rule;
    n.count = static_cast<std::uint16_t>(kids.size());
    if (kids.size() <= Node::kHere) {
        std::copy(kids.begin(), kids.end(), n.kids_);
    } else {
        n.kids_[0] = static_cast<int>(t_.kidPool.size());
        t_.kidPool.insert(t_.kidPool.end(), kids.begin(), kids.end());
    }
    return i;
}

int Recorder::copyOf(int node, const char* caption, const char* rule, const char* source) {
    openSum_ = -1;
    const double value = t_.at(node).value;
    int i;
    Node& copy = add(Op::Copy, value, i);
    copy.caption_ = caption;
    copy.rule_ = rule;
    copy.source_ = source;
    copy.spouse = spouse;
    copy.date = t_.at(node).date;
    copy.kids_[0] = node;
    copy.count = 1;
    return i;
}

int Recorder::name(int node, const char* rule) { return copyOf(node, nullptr, *rule ? rule : nullptr, nullptr); }

int Recorder::datePart(const void* addr, const char* part, double value) {
    const auto* line = static_cast<const Catalogue::Line*>(lineAt(addr));
    int i;
    Node& n = add(Op::Line, value, i);
    n.caption_ = part;
    if (line) n.source_ = line->source;
    n.spouse = spouse;
    return i;
}

void Recorder::bindNamed(const void* addr, int node, const char* rule) {
    if (!*rule) rule = nullptr;
    const char *caption = nullptr, *source = nullptr;
    const auto p = static_cast<const char*>(addr);
    const auto at = static_cast<std::size_t>(p - calc_);
    const bool inCalc = p >= calc_ && at < calcBytes_;
    if (inCalc) {
        source = cells_[at / 4].source;
        caption = cells_[at / 4].caption;
    }
    int bound = node;
    Node& n = t_.nodes[static_cast<std::size_t>(node)];
    // A working figure taken over as it is is explained by what it holds; a
    // step of a formula takes the figure's name; a figure already named is
    // taken over by a new node.
    if (!rule && !caption && !source) {
    } else if (!n.leaf() && !n.named() && n.run == run_) {
        n.caption_ = caption;
        n.rule_ = rule;
        n.source_ = source;
        n.spouse = spouse;
    } else {
        bound = copyOf(node, caption, rule, source);
    }
    if (inCalc)
        calcSlots_[at / 4] = bound;
    else if (int* s = slot(addr))
        *s = bound;
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
    const std::string_view caption = n.caption(), rule = n.rule();
    if (caption.empty()) return std::string(rule);
    if (rule.empty() || rule == caption) return std::string(caption);
    return std::string(caption) + " — " + std::string(rule);
}

}  // namespace trace
}  // namespace zelmor
