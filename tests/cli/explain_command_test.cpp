// zelmor-cli explain: the derivation of one cell, as text and as data.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"

namespace zelmor::test {
namespace {

using nlohmann::json;

class ExplainCommand : public testing::Test {
protected:
    void SetUp() override { dir_ = freshTempDir("cli-explain"); }
    void TearDown() override { std::filesystem::remove_all(dir_); }
    CliRun explain(std::vector<std::string> args) const {
        args.insert(args.begin(), {"explain", std::string(ZELMOR_SOURCE_DIR) + "/tests/golden/reports/couple.json"});
        args.insert(args.end(), {"--today", "2016-06-30", "--data-dir", dir_ + "/data"});
        return runCli(args);
    }
    std::string dir_;
};

TEST_F(ExplainCommand, TaxDueReadsAsAFormulaDownToTheReportLines) {
    const CliRun r = explain({"CMain.MasMagiaM"});
    ASSERT_EQ(r.status, 0) << r.err;
    const auto text = lines(r.out);
    ASSERT_GE(text.size(), 3u);
    EXPECT_EQ(text[0], "חישוב נפרד");
    // The cell's own line: names, numbers with thousands separators, the value.
    EXPECT_EQ(text[1].rfind("מס מגיע (הנישום) = מס לפני זיכויים − זיכויים ממס = ", 0), 0u) << text[1];
    EXPECT_NE(text[1].find(","), std::string::npos);
    EXPECT_EQ(text[2].rfind("  מס לפני זיכויים", 0), 0u) << text[2];
    // Without a depth the tree goes down to the salary line of the report.
    EXPECT_NE(r.out.find("[Yegia.N158]"), std::string::npos);

    const CliRun shallow = explain({"CMain.MasMagiaM", "--depth", "1"});
    ASSERT_EQ(shallow.status, 0);
    EXPECT_EQ(lines(shallow.out).size(), 2u);
}

TEST_F(ExplainCommand, JsonTreeCarriesEveryValueAndAddsUp) {
    const CliRun r = explain({"CMain.HachnasaNetM", "--json"});
    ASSERT_EQ(r.status, 0) << r.err;
    const json doc = json::parse(r.out);
    EXPECT_EQ(doc["cell"], "CMain.HachnasaNetM");
    const json& root = doc["tree"];
    EXPECT_EQ(root["op"], "difference");
    ASSERT_EQ(root["children"].size(), 2u);
    EXPECT_EQ(root["value"].get<double>(),
              root["children"][0]["value"].get<double>() - root["children"][1]["value"].get<double>());
    // Every node has a value; leaves name where they come from.
    std::function<void(const json&)> walk = [&](const json& n) {
        ASSERT_TRUE(n.contains("value"));
        EXPECT_TRUE(n.contains("children") || n.contains("seenAbove") || n["op"] == "zero" || n.contains("source")) << n.dump();
        for (const json& k : n.value("children", json::array())) walk(k);
    };
    walk(root);
    // The filing mode comes with the figures it was decided on.
    EXPECT_EQ(doc["filing"]["op"], "decision");
    EXPECT_FALSE(doc["filing"]["children"].empty());
}

TEST_F(ExplainCommand, DatesReadAsDates) {
    const CliRun r = explain({"CMain.Ribit"});
    ASSERT_EQ(r.status, 0) << r.err;
    // The days of interest: today less the day the interest starts, both as dates.
    EXPECT_NE(r.out.find("ימים מתחילת הריבית = היום − קבוע RIBITBASICDATE = 30/06/2016 − 31/12/2015 = 182"),
              std::string::npos)
        << r.out;
    const CliRun data = explain({"CMain.RibitDate", "--json"});
    ASSERT_EQ(data.status, 0) << data.err;
    const json root = json::parse(data.out)["tree"];
    EXPECT_EQ(root["date"], "2016-06-30");
    EXPECT_EQ(root["value"].get<double>(), 42551);  // the day number stays the value
}

}  // namespace
}  // namespace zelmor::test
