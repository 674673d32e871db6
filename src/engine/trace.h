#pragma once
// The explanation of a calculation: for every figure it computes, the rule
// that produced it, the operation and the figures it was made of, down to the
// report's own lines, the year's constants, price index values and today.
// A plain tree of data, so that a screen, a page or a command line can show it.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelmor::engine {
class Recorder;
}

namespace zelmor::trace {

enum class Op {
    // Leaves.
    Line,      // a field of the report
    Constant,  // a figure of the tax year
    Madad,     // a price index value
    Today,     // the date taken for today, or the one chosen for the interest (as its day number)
    Untraced,  // a figure whose rule records no explanation yet
    // Operations; their value follows from their children's values.
    Sum,         // c0 + c1 + ...
    Difference,  // c0 - c1
    Product,     // c0 × c1
    Quotient,    // c0 / c1
    Min,         // the smaller of c0 and c1 (a cap)
    Max,         // the larger of c0 and c1 (a floor)
    Round,       // c0 rounded to the whole shekel
    Copy,        // c0 as it is (a figure taken over, or the branch a rule chose)
    Zero,        // 0 (a figure moved elsewhere; c0 says which)
    // A decision: the value is the choice made, the children the figures compared.
    Decision,
};

// The texts of a node are the program's own (captions, rule words, names of
// fields and constants): they live as long as the program. A node is small,
// as a calculation makes thousands of them: the texts are kept as pointers
// and read through the functions below.
struct Node {
    double value = 0;
    std::uint16_t count = 0;   // of children: Trace::kids
    Op op = Op::Untraced;
    char spouse = 0;           // 'M', 'F', or 0 when the figure belongs to neither alone
    // 0: the filing tests before the runs; 1, 2: the runs in order. The joint
    // run made again after a comparison repeats the first and records nothing.
    std::uint8_t run = 0;
    bool date = false;  // the value is a day number, shown as a date

    // The cell's caption on its sheet, the report line's caption, a filing mode's title.
    std::string_view caption() const { return text(caption_); }
    // The rule's word for the figure; empty, as the caption, for a step inside a formula.
    std::string_view rule() const { return text(rule_); }
    // "Yegia.N150", "SUM3", "CMain.MasMagiaM", "madad 2015-11", "today"; or empty.
    std::string_view source() const { return text(source_); }

    bool leaf() const { return op < Op::Sum; }
    bool named() const { return caption_ || rule_ || source_; }

private:
    friend class engine::Recorder;
    friend struct Trace;
    static std::string_view text(const char* s) { return s ? std::string_view(s) : std::string_view(); }
    // Two children or fewer lie here; more lie in Trace::kidPool, from kids_[0] on.
    static constexpr int kHere = 2;
    int kids_[kHere] = {0, 0};
    // Null when there is no text; never an empty one.
    const char* caption_ = nullptr;
    const char* rule_ = nullptr;
    const char* source_ = nullptr;
};

// What a calculation with a sink records.
struct Trace {
    std::vector<Node> nodes;
    std::vector<int> kidPool;   // the children of the nodes with more than two, one after another
    std::vector<int> cellNodes; // by place in allSheetFields(): the node of the cell in the run that stands, or -1
    int filing = -1;            // the node of the filing-mode decision
    std::vector<int> scratch;   // the recorder's working memory, kept for the next calculation

    // Emptied by every calculation it is given to; what it took of memory stays
    // for the next one.
    void clear() {
        nodes.clear();
        kidPool.clear();
        cellNodes.clear();
        scratch.clear();
        filing = -1;
    }

    const Node& at(int i) const { return nodes[static_cast<std::size_t>(i)]; }
    std::span<const int> kids(int i) const {
        const Node& n = at(i);
        return {n.count <= Node::kHere ? n.kids_ : kidPool.data() + n.kids_[0], static_cast<std::size_t>(n.count)};
    }
    // The node of a cell named "CMain.MasMagiaM", or -1.
    int cell(std::string_view id) const;
    // The figure's name: the caption, with the rule's word when it says more.
    std::string name(int i) const;
};

// The value of a node worked out again from its leaves, with the same
// arithmetic the calculation uses.
double evaluate(const Trace& t, int node);
std::vector<double> evaluateAll(const Trace& t);  // every node at once

// The operation's sign in a formula ("+", "−", "×", "/"), or its word ("הקטן מבין").
const char* opWord(Op op);
const char* opKey(Op op);  // "sum", "line", ... for the JSON form

}  // namespace zelmor::trace
