#pragma once
// The explanation of a calculation: for every figure it computes, the rule
// that produced it, the operation and the figures it was made of, down to the
// report's own lines, the year's constants, price index values and today.
// A plain tree of data, so that a screen, a page or a command line can show it.

#include <map>
#include <string>
#include <vector>

namespace zelmor::trace {

enum class Op {
    // Leaves.
    Line,      // a field of the report
    Constant,  // a figure of the tax year
    Madad,     // a price index value
    Today,     // the date taken for today (as its day number)
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

struct Node {
    Op op = Op::Untraced;
    double value = 0;
    std::string name;    // Hebrew: the rule or the caption; "" for a step inside a formula
    std::string source;  // "Yegia.N150", "SUM3", "CMain.MasMagiaM", "madad 2015-11", "today"; or ""
    int run = 0;         // 0: the filing tests before the runs; 1, 2, 3: the runs in order
    char spouse = 0;     // 'M', 'F', or 0 when the figure belongs to neither alone
    std::vector<int> kids;

    bool leaf() const { return op < Op::Sum; }
};

// What a calculation with a sink records.
struct Trace {
    std::vector<Node> nodes;
    std::map<std::string, int> cells;  // "CMain.MasMagiaM" -> node, for the run that stands
    int filing = -1;                   // the node of the filing-mode decision
    int runs = 0;

    const Node& at(int i) const { return nodes[static_cast<std::size_t>(i)]; }
    int cell(const std::string& id) const {
        const auto it = cells.find(id);
        return it == cells.end() ? -1 : it->second;
    }
};

// The value of a node worked out again from its leaves, with the same
// arithmetic the calculation uses.
double evaluate(const Trace& t, int node);
std::vector<double> evaluateAll(const Trace& t);  // every node at once

// The operation's sign in a formula ("+", "−", "×", "/"), or its word ("הקטן מבין").
const char* opWord(Op op);
const char* opKey(Op op);  // "sum", "line", ... for the JSON form

}  // namespace zelmor::trace
