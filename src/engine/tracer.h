#pragma once
// How the calculation records its explanation while it computes. The rules
// compute with traced values (TA: an amount, TD: a double) that carry, beside
// the value, the node that explains it; the arithmetic on them is the
// calculation's own arithmetic. Without a sink every node is -1, nothing is
// recorded, and what is left is the bare arithmetic and one test per step.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/amount.h"
#include "core/tax_year.h"
#include "engine/trace.h"
#include "report/nishum_input.h"
#include "results/nishum_output.h"

namespace zelmor::engine {

struct TA {
    Amount v;
    int n = -1;
};
struct TD {
    double v;
    int n = -1;
};

// A sheet cell's texts, where the recorder looks them up.
struct CellText {
    const char* source = nullptr;  // null: no cell there
    const char* caption = nullptr;
};

class Recorder {
public:
    // `calc` is the calculation's own record (working figures, sheets, the
    // run's copies of sections), `size` its size.
    Recorder(trace::Trace& t, const void* calc, std::size_t size);

    // Where the report's fields and the sheets' cells lie, so that a figure
    // read from them is named.
    void mapReport(const NishumInput& report, const sections::Yegia& y, const sections::Rechush& r,
                   const sections::Nikuim& n, const sections::Zikuim& z);
    void mapSheets(const NishumOutput& out);
    // Figures in [begin, end) outlive the runs.
    void keep(const void* begin, const void* end);

    void beginRun();
    void forget(const void* begin, const void* end);  // the figures there were reset from the report
    void finish();                                    // the cells of the run that stands

    // The node of a figure read: the one it holds, or a new one.
    int nodeOf(const void* addr, double value) {
        const auto p = static_cast<const char*>(addr);
        if (const auto at = static_cast<std::size_t>(p - calc_); p >= calc_ && at < calcBytes_) {
            const int n = calcSlots_[at / 4];
            return n >= 0 ? n : firstReadInCalc(at / 4, value);
        }
        int* s = slot(addr);
        return s && *s >= 0 ? *s : firstRead(addr, value, s);
    }
    int constant(const char* name, double value) {
        const ConstantSlot& c = constants_[constantPlace(name)];
        return c.name == name && t_.at(c.node).value == value ? c.node : newConstant(name, value);
    }
    // The date taken for today ("today") or the one chosen for the interest
    // ("interestDate"), as its day number.
    int day(const char* source, double value);
    int dateConstant(const char* name, double value);  // a date of the year, as its day number
    int madad(Date month, double value);          // the price index of a month
    int op(trace::Op op, double value, int a, int b = -1);
    // a + b where a is a sum nothing else holds: b joins a's terms.
    int extend(double value, int a, int b);
    int decision(const char* title, const char* rule, double value, std::initializer_list<int> kids);
    // The rule's word: a text that lives as long as the program, or "" for none.
    void bind(const void* addr, int node, const char* rule) {
        if (node == openSum_) openSum_ = -1;  // the figure holds it now
        const auto at = static_cast<std::size_t>(static_cast<const char*>(addr) - calc_);
        // A working figure taken over as it is is explained by what it holds.
        if (!*rule && at < calcBytes_ && !cells_[at / 4].source)
            calcSlots_[at / 4] = node;
        else
            bindNamed(addr, node, rule);
    }
    int name(int node, const char* rule);
    int datePart(const void* addr, const char* part, double value);
    void decided(int node) { t_.filing = node; }

    char spouse = 0;

private:
    [[gnu::always_inline]] trace::Node& add(trace::Op op, double value, int& index);
    int copyOf(int node, const char* caption, const char* rule, const char* source);
    void bindNamed(const void* addr, int node, const char* rule);
    static std::size_t constantPlace(const char* name) {
        // Names lie close together: a multiplication spreads them.
        return static_cast<std::size_t>((static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(name)) *
                                         0x9E3779B97F4A7C15ull) >> 55);  // 9 bits: 512 places
    }
    int newConstant(const char* name, double value);
    int chain(double value, int sum, int b);  // a new sum of the terms of `sum` and b
    // The node a figure of the calculation or report holds, or null.
    int* slot(const void* addr) {
        const auto p = static_cast<const char*>(addr);
        if (p >= calc_ && p < calc_ + calcSlots_.size() * 4) return &calcSlots_[static_cast<std::size_t>(p - calc_) / 4];
        if (p >= report_ && p < report_ + reportSlots_.size() * 2)
            return &reportSlots_[static_cast<std::size_t>(p - report_) / 2];
        return nullptr;
    }
    int firstRead(const void* addr, double value, int* slot);
    int firstReadInCalc(std::size_t slot, double value);
    int lineNode(const void* line, double value);  // a node for a report line read
    const void* lineAt(const void* addr) const;  // the report line there, or null
    void clear(const char* begin, const char* end);

    trace::Trace& t_;
    int run_ = 0;
    // The node each figure holds, by its place: 4 bytes a figure in the
    // calculation, 2 in the report (whose counts are 16 bits).
    const char* calc_;
    std::size_t calcBytes_;
    std::span<int> calcSlots_;
    const char* report_ = nullptr;
    std::span<int> reportSlots_;
    const char* keepBegin_ = nullptr;
    const char* keepEnd_ = nullptr;
    // The report and the run's copies of its sections: where each lies and
    // where its first byte lies within a report.
    struct Range {
        const char* begin;
        std::size_t size;
        std::ptrdiff_t offset;
    };
    std::array<Range, 5> reportRanges_{};
    const void* catalogue_;
    const void* layout_ = nullptr;  // what lies at each slot of the calculation's record
    const CellText* cells_ = nullptr;  // the cells there, by slot
    int openSum_ = -1;  // the sum made last, while only the figure in hand holds it
    // The constants recorded so far, by the address of their name (open
    // addressing; a name is a literal of the rule that uses it).
    struct ConstantSlot {
        const char* name = nullptr;
        int node = -1;
    };
    static constexpr std::size_t kConstantPlaces = 512;  // constantPlace() gives 9 bits
    std::array<ConstantSlot, kConstantPlaces> constants_{};
};

// A new node at the end, written in place.
inline trace::Node& Recorder::add(trace::Op op, double value, int& index) {
    index = static_cast<int>(t_.nodes.size());
    trace::Node& n = t_.nodes.emplace_back();
    n.op = op;
    n.value = value;
    n.run = static_cast<std::uint8_t>(run_);
    return n;
}

inline int Recorder::op(trace::Op o, double value, int a, int b) {
    // A chain of sums reads as one sum: a + b + c, added left to right.
    const trace::Node& left = t_.at(a);
    if (o == trace::Op::Sum && left.op == trace::Op::Sum && !left.named()) return chain(value, a, b);
    int i;
    trace::Node& n = add(o, value, i);
    n.spouse = spouse;
    n.kids_[0] = a;
    n.kids_[1] = b;
    n.count = b >= 0 ? 2 : 1;
    openSum_ = o == trace::Op::Sum ? i : -1;
    return i;
}

inline int Recorder::extend(double value, int a, int b) {
    if (a != openSum_) return op(trace::Op::Sum, value, a, b);
    trace::Node& n = t_.nodes[static_cast<std::size_t>(a)];
    auto& pool = t_.kidPool;
    if (n.count <= trace::Node::kHere) {  // its two terms move to the pool's end
        const int first = static_cast<int>(pool.size());
        pool.insert(pool.end(), n.kids_, n.kids_ + n.count);
        n.kids_[0] = first;
    } else if (static_cast<std::size_t>(n.kids_[0] + n.count) != pool.size()) {
        return op(trace::Op::Sum, value, a, b);
    }
    pool.push_back(b);
    ++n.count;
    n.value = value;
    return a;
}

// The recorder of the calculation running on this thread, or null.
extern thread_local Recorder* tlRecorder;

inline bool traced(int a, int b) { return (a | b) >= 0; }

inline TA operator+(const TA& a, TA b) {
    TA r{a.v + b.v};
    if (traced(a.n, b.n)) r.n = tlRecorder->op(trace::Op::Sum, r.v.value(), a.n, b.n);
    return r;
}
// A sum in the middle of a chain (a + b + c) is held by nothing but the
// chain: the next term joins it instead of making a node of its own.
inline TA operator+(TA&& a, TA b) {
    TA r{a.v + b.v};
    if (traced(a.n, b.n)) r.n = tlRecorder->extend(r.v.value(), a.n, b.n);
    return r;
}
inline TA operator-(TA a, TA b) {
    TA r{a.v - b.v};
    if (traced(a.n, b.n)) r.n = tlRecorder->op(trace::Op::Difference, r.v.value(), a.n, b.n);
    return r;
}
inline TD operator+(const TD& a, TD b) {
    TD r{a.v + b.v};
    if (traced(a.n, b.n)) r.n = tlRecorder->op(trace::Op::Sum, r.v, a.n, b.n);
    return r;
}
inline TD operator+(TD&& a, TD b) {
    TD r{a.v + b.v};
    if (traced(a.n, b.n)) r.n = tlRecorder->extend(r.v, a.n, b.n);
    return r;
}
inline TD operator-(TD a, TD b) {
    TD r{a.v - b.v};
    if (traced(a.n, b.n)) r.n = tlRecorder->op(trace::Op::Difference, r.v, a.n, b.n);
    return r;
}
inline TD operator*(TD a, TD b) {
    TD r{a.v * b.v};
    if (traced(a.n, b.n)) r.n = tlRecorder->op(trace::Op::Product, r.v, a.n, b.n);
    return r;
}
inline TD operator/(TD a, TD b) {
    TD r{a.v / b.v};
    if (traced(a.n, b.n)) r.n = tlRecorder->op(trace::Op::Quotient, r.v, a.n, b.n);
    return r;
}
// An amount in double arithmetic keeps its node.
inline TD toD(TA a) { return {static_cast<double>(a.v.value()), a.n}; }
inline TD operator+(TA a, TD b) {
    const TD d = toD(a);  // a figure of its own: its sum may be held elsewhere
    return d + b;
}
inline TD operator+(const TD& a, TA b) { return a + toD(b); }
inline TD operator+(TD&& a, TA b) { return std::move(a) + toD(b); }
inline TD operator-(TA a, TD b) { return toD(a) - b; }
inline TD operator-(TD a, TA b) { return a - toD(b); }
inline TD operator*(TA a, TD b) { return toD(a) * b; }
inline TD operator*(TD a, TA b) { return a * toD(b); }
inline TD operator/(TA a, TD b) { return toD(a) / b; }
inline TD operator/(TD a, TA b) { return a / toD(b); }

// The plain forms stay in reach beside the traced ones.
using zelmor::MaxLong;
using zelmor::MinLong;
using zelmor::R;

inline TA R(TD x) {
    TA r{zelmor::R(x.v)};
    if (x.n >= 0) r.n = tlRecorder->op(trace::Op::Round, r.v.value(), x.n);
    return r;
}
inline TA MinLong(TA a, TA b) {
    TA r{zelmor::MinLong(a.v, b.v)};
    if (traced(a.n, b.n)) r.n = tlRecorder->op(trace::Op::Min, r.v.value(), a.n, b.n);
    return r;
}
inline TA MaxLong(TA a, TA b) {
    TA r{zelmor::MaxLong(a.v, b.v)};
    if (traced(a.n, b.n)) r.n = tlRecorder->op(trace::Op::Max, r.v.value(), a.n, b.n);
    return r;
}

// The value of a figure, traced or not.
inline Amount val(TA a) { return a.v; }
inline double val(TD d) { return d.v; }
inline Amount val(Amount a) { return a; }
inline double val(double d) { return d; }
inline double toD(Amount a) { return a.value(); }
// The node that explains a figure; -1 when nothing is recorded.
inline int idOf(TA a) { return a.n; }
inline int idOf(Amount) { return -1; }

template <bool On>
class Tracer;

// The calculation's handle on the recorder: reads figures into traced values
// and writes traced values into figures under the name of their rule.
template <>
class Tracer<true> {
public:
    using A = TA;
    using D = TD;
    Recorder* rec = nullptr;

    TA operator()(const Amount& a) const { return {a, rec ? rec->nodeOf(&a, a.value()) : -1}; }
    TD operator()(const double& d) const { return {d, rec ? rec->nodeOf(&d, d) : -1}; }
    // A whole-number field (a count, a rate in percents, months).
    template <class I>
    TD num(const I& i) const {
        return {static_cast<double>(i), rec ? rec->nodeOf(&i, static_cast<double>(i)) : -1};
    }
    TA k(const char* name, Amount v) const { return {v, rec ? rec->constant(name, v.value()) : -1}; }
    TD k(const char* name, double v) const { return {v, rec ? rec->constant(name, v) : -1}; }
    TA k(const char* name, int v) const { return k(name, Amount(v)); }  // whole percents, years
    TA operator()(const std::int32_t& i) const { return {Amount(i), rec ? rec->nodeOf(&i, i) : -1}; }
    // A rate in whole percents as a share.
    TD percent(TA rate) const { return toD(rate) / k("100", 100.0); }
    TA zero() const { return k("0", Amount(0)); }
    TA floor0(TA v) const { return MaxLong(v, zero()); }  // below 0 it is 0

    void set(Amount& dst, const char* name, TA x) const {
        dst = x.v;
        if (x.n >= 0) rec->bind(&dst, x.n, name);
    }
    void set(double& dst, const char* name, TD x) const {
        dst = x.v;
        if (x.n >= 0) rec->bind(&dst, x.n, name);
    }
    void set(Date& dst, const char* name, TD x) const {  // a date as its day number
        dst = Date::fromSerial(static_cast<std::int32_t>(x.v));
        if (x.n >= 0) rec->bind(&dst, x.n, name);
    }
    TD today(Date d) const { return {static_cast<double>(d.serial()), rec ? rec->day("today", d.serial()) : -1}; }
    TD chosenDate(Date d) const {
        return {static_cast<double>(d.serial()), rec ? rec->day("interestDate", d.serial()) : -1};
    }
    TD kDate(const char* name, Date d) const {
        return {static_cast<double>(d.serial()), rec ? rec->dateConstant(name, d.serial()) : -1};
    }
    TD madad(Date month, double v) const { return {v, rec ? rec->madad(month, v) : -1}; }
    // A part of a date of the report (its year, its month) as a figure.
    TD datePart(const Date& d, const char* part, int value) const {
        return {static_cast<double>(value), rec ? rec->datePart(&d, part, value) : -1};
    }
    // A figure of a rule that is kept nowhere, under its name.
    TD name(const char* name, TD x) const {
        if (x.n >= 0) x.n = rec->name(x.n, name);
        return x;
    }
    TA name(const char* name, TA x) const {
        if (x.n >= 0) x.n = rec->name(x.n, name);
        return x;
    }
    // The figure is moved elsewhere and becomes 0.
    void moved(Amount& dst, const char* name) const {
        const int from = rec ? rec->nodeOf(&dst, dst.value()) : -1;
        dst = 0;
        if (rec) rec->bind(&dst, rec->op(trace::Op::Zero, 0, from), name);
    }
    // The figure of a person (M, F) or of neither (0) is computed next.
    void who(char s) const {
        if (rec) rec->spouse = s;
    }
};

// Without a sink: the figures are the plain ones, nothing is recorded.
template <>
class Tracer<false> {
public:
    using A = Amount;
    using D = double;
    static constexpr Recorder* rec = nullptr;

    const Amount& operator()(const Amount& a) const { return a; }
    double operator()(const double& d) const { return d; }
    Amount operator()(const std::int32_t& i) const { return Amount(i); }
    template <class I>
    double num(const I& i) const { return static_cast<double>(i); }
    Amount k(const char*, Amount v) const { return v; }
    double k(const char*, double v) const { return v; }
    Amount k(const char*, int v) const { return Amount(v); }
    double percent(Amount rate) const { return Percent(rate.value()); }
    Amount zero() const { return 0; }
    Amount floor0(Amount v) const { return MaxLong(v, 0); }
    void set(Amount& dst, const char*, Amount x) const { dst = x; }
    void set(double& dst, const char*, double x) const { dst = x; }
    void set(Date& dst, const char*, double x) const { dst = Date::fromSerial(static_cast<std::int32_t>(x)); }
    double today(Date d) const { return d.serial(); }
    double chosenDate(Date d) const { return d.serial(); }
    double kDate(const char*, Date d) const { return d.serial(); }
    double madad(Date, double v) const { return v; }
    double datePart(const Date&, const char*, int value) const { return value; }
    Amount name(const char*, Amount x) const { return x; }
    double name(const char*, double x) const { return x; }
    void moved(Amount& dst, const char*) const { dst = 0; }
    void who(char) const {}
};

// A constant of the year by its name.
#define K(name) t.k(#name, c.name())

}  // namespace zelmor::engine
