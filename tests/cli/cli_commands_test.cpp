// zelmor-cli as scripts meet it: the words of its messages, its exit statuses,
// the id on every result line, the forms standard input may take, and a full
// standard output. Documents go to standard output, messages to standard error,
// and the exit status is the highest met.

#include <gtest/gtest.h>

#include <filesystem>

#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"

namespace zelmor::test {
namespace {

using nlohmann::json;

const std::string kHead = R"({"format":"zelmor-report","version":1,"year":2015)";
std::string goldenReport(const std::string& name) { return std::string(ZELMOR_SOURCE_DIR) + "/tests/golden/reports/" + name; }
// The documents a run wrote, one a line.
std::vector<json> docs(const CliRun& run) {
    std::vector<json> d;
    for (const std::string& line : lines(run.out)) d.push_back(json::parse(line));
    return d;
}

class CliCommands : public testing::Test {
protected:
    void SetUp() override { dir_ = freshTempDir("cli-commands"); }
    void TearDown() override { std::filesystem::remove_all(dir_); }
    std::vector<std::string> calcArgs(std::vector<std::string> args) const {
        args.insert(args.end(), {"--today", "2016-06-30", "--data-dir", dir_ + "/data"});
        return args;
    }
    std::string dir_;
};

TEST_F(CliCommands, AFullStandardOutputIsAFailureOfEveryCommand) {
    const std::string single = goldenReport("single.json");
    const std::vector<std::vector<std::string>> commands = {
        calcArgs({"calc", single}), calcArgs({"calc", single, "--summary"}), calcArgs({"calc", "-"}), {"check", single},
        {"check", "-"}, calcArgs({"solve", "--question", "1", "--sum", "100", single}), {"--help"}, {"calc", "--help"},
    };
    for (const auto& args : commands) {
        SCOPED_TRACE(testing::PrintToString(args));
        const CliRun run = runCli(args, readFile(single), {}, "/dev/full");
        EXPECT_EQ(run.status, 1);
        if (args[0] == "--help") continue;
        EXPECT_NE(run.err.find("zelmor-cli " + args[0] + ": cannot write to standard output"), std::string::npos) << run.err;
    }
}

// Each mistake's message, as a table: the words run, standard input, the exit
// status and what standard error says.
TEST_F(CliCommands, MessagesSayWhatHappened) {
    writeFile(dir_ + "/array.json", "[1,2");
    writeFile(dir_ + "/nul.json", kHead + std::string("}\0{\"more\":1}", 12));
    writeFile(dir_ + "/late-syntax.json", kHead + R"(,"Yegia":{"N15O":1},})");
    const std::string single = goldenReport("single.json");
    struct Case {
        std::vector<std::string> args;
        std::string stdinText;
        int status;
        std::string err;
    };
    const std::vector<Case> cases = {
        {{"check", "array.json"}, {}, 2, "array.json, line 1, column 4: malformed JSON ("},
        {{"check", "nul.json"}, {}, 2, "nul.json, line 1, column 51: malformed JSON (a NUL byte"},
        // A syntax error further on is named before what the document says.
        {{"check", "late-syntax.json"}, {}, 2, "late-syntax.json, line 1, column 70: malformed JSON ("},
        {{"import", "-", "--db", "r.db"}, kHead + R"(,"Pratim":{"IDM":"012345674"}})" + "\n" + kHead + "}\n", 2,
         "standard input, line 2: Pratim.IDM: "},
        {{"solve", "--question", "1", single, "--sum"}, {}, 2, "zelmor-cli solve: option --sum needs a value"},
        {calcArgs({"solve", "--question", "2", "--sum", "5000", single}), {}, 0,
         "--sum is not used by question 2"},
        {{"clac", "x.json"}, {}, 2, "unknown command 'clac'; did you mean 'calc'?"},
        {{"calc", "--tday", "2016-06-30", single}, {}, 2, "zelmor-cli calc: unknown option --tday\nusage: zelmor-cli calc"},
        {{"list", "--json=yes"}, {}, 2, "option --json takes no value"},
        {{"explain", single, "CMain.MasMagia"}, {}, 2, "sheet CMain has no field 'MasMagia'; did you mean 'CMain.MasMagia"},
        {{"explain", single, "CMian.MasMagiaM"}, {}, 2, "unknown sheet 'CMian'; did you mean 'CMain'?"},
        {{"explain", single, "CMain.MasMagiaM", "--depth", "0"}, {}, 2, "--depth takes a whole number"},
        {{"explain", single, "CMain.MasMagiaM", "--depth", "2x"}, {}, 2, "--depth takes a whole number"},
        {{"check"}, {}, 2, "usage: zelmor-cli check"},
        {{"print", single, "--report"}, {}, 2, "zelmor-cli print: no output file given (--pdf OUT.pdf)"},
        {{"print", single, "--bl", "--explain", "--pdf", "x.pdf"}, {}, 2, "--explain adds to the result sheets"},
        // A folder is refused as a file is, before anything is printed.
        {{"print", single, "--report", "--pdf", dir_, "--data-dir", "data"}, {}, 1,
         "zelmor-cli print: cannot write the PDF file " + dir_ + ": is a folder"},
        // A failed table update says how far the table it kept reaches.
        {{"update-tables", "--url", "http://127.0.0.1:1/Madad.brk", "--data-dir", "data"}, {}, 1, "2026/08"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        const CliRun run = runCli(c.args, c.stdinText, dir_);
        EXPECT_EQ(run.status, c.status) << run.err;
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
        EXPECT_EQ(run.err.find("מדפסת"), std::string::npos) << run.err;  // no word of a printer
    }
}

TEST_F(CliCommands, EveryCommandTakesHelpAndGlobalOptionsMayComeFirst) {
    for (const char* command : {"check", "calc", "solve", "print", "import", "export", "list", "calc-all",
                                "update-tables"}) {
        const CliRun run = runCli({command, "--help"});
        EXPECT_EQ(run.status, 0) << command;
        EXPECT_TRUE(run.out.starts_with(std::string("usage: zelmor-cli ") + command + " ")) << run.out;
    }
    const CliRun general = runCli({"--help"});
    EXPECT_EQ(general.status, 0);
    EXPECT_NE(general.out.find("zelmor-cli calc-all"), std::string::npos);

    const std::string single = goldenReport("single.json");
    const CliRun after = runCli(calcArgs({"calc", single}));
    const CliRun before = runCli({"--today", "2016-06-30", "--data-dir=" + dir_ + "/data", "calc", single});
    EXPECT_EQ(before.status, 0) << before.err;
    EXPECT_EQ(before.out, after.out);
}

// Standard input holds JSON Lines, or documents over several lines: one alone
// is answered as a file is, several give a line each, and a syntax error ends
// the batch where no line is left to resume at.
TEST_F(CliCommands, StandardInputTakesIndentedAndConcatenatedDocuments) {
    const std::string single = readFile(goldenReport("single.json"));
    const std::string widow = readFile(goldenReport("widow.json"));

    const CliRun alone = runCli({"check", "-"}, single);
    EXPECT_EQ(alone.status, 0) << alone.err;
    EXPECT_EQ(alone.out, runCli({"check", goldenReport("single.json")}).out);

    // Brackets and quotes inside texts do not end a document.
    const std::string tricky = "{\n  \"format\": \"zelmor-report\", \"version\": 1, \"year\": 2015,\n"
                               "  \"Pratim\": {\"LastNameM\": \"a}\\\"{b\"}\n}";
    const CliRun two = runCli({"check", "-"}, tricky + widow);
    const auto both = docs(two);
    ASSERT_EQ(both.size(), 2u) << two.out << two.err;
    EXPECT_EQ(both[0]["Pratim"]["LastNameM"], "a}\"{b");
    EXPECT_EQ(both[1]["Pratim"]["IDM"], "022334452");

    const std::string broken = "{\n  \"format\": \"zelmor-report\",\n  \"version\": 1,,\n}\n";
    const CliRun stopped = runCli(calcArgs({"calc", "-"}), single + broken + widow);
    EXPECT_EQ(stopped.status, 2);
    const auto out = docs(stopped);
    ASSERT_EQ(out.size(), 2u) << stopped.out;  // the widow's document is not reached
    EXPECT_EQ(out[0]["id"], "031112220");
    const std::string message = out[1]["error"]["message"];
    EXPECT_TRUE(message.starts_with("standard input, line 55, column 16: malformed JSON (")) << message;
}

// A refused line of a batch is answered and the batch goes on; every result
// line names its report when its id was read.
TEST_F(CliCommands, ABatchGoesOnPastARefusedLineAndNamesItsReports) {
    const std::string couple = json::parse(readFile(goldenReport("couple.json"))).dump();
    const std::string refusedWithId = kHead + R"(,"Pratim":{"IDM":"12345674 "},"Yegia":{"N150":2147483647,"N250":1}})";
    const std::string refusedEarly = kHead + R"(,"Yegia":{"N15O":1},"Pratim":{"IDM":"012345674"}})";
    const CliRun calc = runCli(calcArgs({"calc", "-"}), couple + "\n" + refusedWithId + "\n" + refusedEarly + "\n");
    EXPECT_EQ(calc.status, 2);
    const auto results = docs(calc);
    ASSERT_EQ(results.size(), 3u) << calc.out;
    EXPECT_EQ(results[0]["id"], "034567818");
    EXPECT_EQ(results[1]["id"], "12345674");  // trimmed
    EXPECT_EQ(results[1]["error"]["kind"], "input");
    EXPECT_FALSE(results[2].contains("id"));  // refused before the id was read

    const std::string input = kHead + R"(,"Yegia":{"N150":1000}})" + "\n\n" +  // a blank line is skipped
                              kHead + R"(,"Yegia":{"N15O":1000}})" + "\n" + kHead + ",}\n" +
                              kHead + R"(,"Yegia":{"N158":5}})" + "\r\n";
    const CliRun check = runCli({"check", "-"}, input);
    EXPECT_EQ(check.status, 2);
    const auto out = docs(check);
    ASSERT_EQ(out.size(), 4u) << check.out;
    EXPECT_EQ(out[0]["Yegia"]["TTLM"], 1000);
    EXPECT_EQ(out[1]["format"], "zelmor-results");
    EXPECT_EQ(out[1]["error"]["kind"], "input");
    EXPECT_EQ(out[1]["error"]["message"], "standard input, line 3: Yegia.N15O: unknown member; did you mean \"N150\"?");
    const std::string malformed = out[2]["error"]["message"];
    EXPECT_TRUE(malformed.starts_with("standard input, line 4, column 51: malformed JSON (")) << malformed;
    EXPECT_EQ(out[3]["Yegia"]["TTLM"], 5);
    EXPECT_NE(check.err.find("standard input, line 3: Yegia.N15O"), std::string::npos) << check.err;
}

TEST_F(CliCommands, SeveralFilesGiveOneLineEachAndAMissingFileIsAnEnvironmentFailure) {
    writeFile(dir_ + "/a.json", kHead + "}");
    const CliRun run = runCli({"check", "a.json", "missing.json", "a.json"}, {}, dir_);
    EXPECT_EQ(run.status, 1);
    const auto out = docs(run);
    ASSERT_EQ(out.size(), 3u);
    EXPECT_EQ(out[0], out[2]);
    EXPECT_EQ(out[1]["error"]["kind"], "environment");
    EXPECT_NE(run.err.find("missing.json: cannot read"), std::string::npos) << run.err;
}

}  // namespace
}  // namespace zelmor::test
