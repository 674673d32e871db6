// The explanation of a calculation: recorded from the computing code, it must
// add up to the very figures the sheets show, and end in the report's lines,
// the year's constants, the price index and today.

#include <set>

#include "engine/calc_test_util.h"
#include "engine/explain.h"
#include "engine/trace.h"
#include "results/sheet_rows.h"
#include "support/report_generator.h"

namespace zelmor::testing {
namespace {

using trace::Op;

// The nodes under a node (itself included), each once.
std::set<int> below(const trace::Trace& t, int i) {
    std::set<int> seen;
    std::vector<int> todo{i};
    while (!todo.empty()) {
        const int n = todo.back();
        todo.pop_back();
        if (!seen.insert(n).second) continue;
        for (int k : t.kids(n)) todo.push_back(k);
    }
    return seen;
}

TEST(Explain, TreesAddUpToTheCellsOverGeneratedReports) {
    ReportGenerator gen(20160101);
    // An index that moves, and days of the next year before, in and after the
    // months of the interest exemption, and one before the interest starts.
    FixedMadad madad;
    madad.set(2015, 10, 100.3);
    madad.set(2015, 11, 99.9);
    madad.set(2016, 1, 99.6);
    madad.set(2016, 4, 100.7);
    const Date days[] = {ymd(2016, 6, 30), ymd(2016, 1, 20), ymd(2016, 2, 14), ymd(2016, 3, 15), ymd(2015, 12, 20)};
    const ConstDoch c;
    int modes[5] = {};
    std::set<Op> leafKinds;
    int exempt = 0, insured = 0, jointAgain = 0;
    for (int i = 0; i < 2000; ++i) {
        const NishumInput n = gen.next();
        CalcResult plain;
        try {
            plain = CalcDoch(n, c, madad, days[i % 5]);
        } catch (const OverflowError&) {
            continue;
        }
        trace::Trace t;
        const CalcResult r = CalcDoch(n, c, madad, days[i % 5], &t);
        SCOPED_TRACE("report " + n.Pratim.IDM + ", mode " + std::to_string(r.FilingMode));
        ++modes[r.FilingMode];
        ASSERT_EQ(r.FilingMode, plain.FilingMode);
        // Every figure recorded, worked out again from its leaves, is the figure computed.
        const std::vector<double> again = trace::evaluateAll(t);
        for (std::size_t k = 0; k < t.nodes.size(); ++k) {
            const trace::Node& n = t.nodes[k];
            ASSERT_EQ(again[k], n.value) << "node " << k << " " << t.name(static_cast<int>(k)) << " " << n.source();
            if (n.count == 0) {
                ASSERT_TRUE(n.leaf() && !n.source().empty()) << "node " << k;
                leafKinds.insert(n.op);
            }
        }
        // Recording changes nothing the calculation computes, and every cell of every sheet is
        // explained down to the report's lines, the year's constants, the price index and today.
        for (std::size_t k = 0; const SheetFieldDef& f : allSheetFields()) {
            const int node = t.cellNodes[k++];
            const double value = sheetValue(r.out, f.sheet, f.name);
            const std::string cell = std::string(f.sheetName) + "." + f.name;
            ASSERT_EQ(value, sheetValue(plain.out, f.sheet, f.name)) << cell;
            if (node < 0) {  // a row the run left empty
                ASSERT_EQ(value, 0) << cell;
                continue;
            }
            ASSERT_EQ(again[static_cast<std::size_t>(node)], value) << cell;
            for (int b : below(t, node)) ASSERT_NE(t.at(b).op, Op::Untraced) << cell << " rests on " << t.at(b).source();
        }
        exempt += r.out.Main.PtorRibit != 0;
        insured += r.out.BL.BLM_TOTAL_TASH != 0 && r.out.BL.BLF_TOTAL_TASH != 0;
        jointAgain += r.compared && r.FilingMode == ModeJoint;  // cells explained by the first run
        // The filing mode is explained by the figures compared.
        ASSERT_GE(t.filing, 0);
        EXPECT_EQ(t.at(t.filing).value, r.FilingMode);
        EXPECT_GT(t.at(t.filing).count, 0);
        if (r.compared) {
            const auto kids = t.kids(t.filing);
            ASSERT_EQ(kids.size(), 2u);
            std::set<double> sums{t.at(kids[0]).value, t.at(kids[1]).value};
            EXPECT_EQ(sums, (std::set<double>{static_cast<double>(r.MasMeuchad.value()), static_cast<double>(r.MasNifrad.value())}));
            for (int k : kids) EXPECT_EQ(trace::evaluate(t, k), t.at(k).value);
        }
    }
    for (int m = 0; m < 5; ++m) EXPECT_GT(modes[m], 20) << "mode " << m;
    // The leaves are of the four kinds only, and each kind was met.
    EXPECT_EQ(leafKinds, (std::set<Op>{Op::Line, Op::Constant, Op::Madad, Op::Today}));
    EXPECT_GT(exempt, 20);
    EXPECT_GT(insured, 20);
    EXPECT_GT(jointAgain, 20);
}

TEST(Explain, NumbersReadAsInAFormula) {
    const std::pair<double, const char*> cases[] = {
        {0, "0"},          {-0.0, "0"},          {41422, "41,422"},      {-1234567, "-1,234,567"},
        {999, "999"},      {1000, "1,000"},      {0.025, "0.025"},       {-2616.5, "-2,616.5"},
        {1.0 / 6, "0.166667"}, {2147483647, "2,147,483,647"},
    };
    for (const auto& [value, text] : cases) EXPECT_EQ(trace::formatNumber(value), text) << value;
}

}  // namespace
}  // namespace zelmor::testing
