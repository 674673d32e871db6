// zelmor-cli check as a script sees it: documents on standard output, messages
// on standard error, the exit status the highest met.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"

namespace zelmor::test {
namespace {

using nlohmann::json;

const std::string kHead = R"({"format":"zelmor-report","version":1,"year":2015)";

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

TEST(CheckCommand, JsonLinesGoOnPastARefusedDocument) {
    const std::string input = kHead + R"(,"Yegia":{"N150":1000}})" + "\n" +  //
                              "\n" +                                                    // blank: skipped
                              kHead + R"(,"Yegia":{"N15O":1000}})" + "\n" +           // refused
                              kHead + R"(,"Yegia":{"N158":5}})" + "\r\n";
    const CliRun run = runCli({"check", "-"}, input);
    EXPECT_EQ(run.status, 2);

    const auto out = lines(run.out);
    ASSERT_EQ(out.size(), 3u) << run.out;
    EXPECT_EQ(json::parse(out[0])["Yegia"]["TTLM"], 1000);
    const json refused = json::parse(out[1]);
    EXPECT_EQ(refused["format"], "zelmor-results");
    EXPECT_EQ(refused["error"]["kind"], "input");
    EXPECT_EQ(refused["error"]["message"],
              "standard input, line 3: Yegia.N15O: unknown member; did you mean \"N150\"?");
    EXPECT_EQ(json::parse(out[2])["Yegia"]["TTLM"], 5);
    EXPECT_NE(run.err.find("standard input, line 3: Yegia.N15O"), std::string::npos) << run.err;
}

TEST(CheckCommand, MalformedLineIsPlacedOnItsInputLine) {
    const CliRun run = runCli({"check", "-"}, kHead + "}\n" + kHead + ",}\n");
    EXPECT_EQ(run.status, 2);
    const auto out = lines(run.out);
    ASSERT_EQ(out.size(), 2u);
    const std::string message = json::parse(out[1])["error"]["message"];
    EXPECT_EQ(message.rfind("standard input, line 2, column 51: malformed JSON (", 0), 0u) << message;
}

TEST(CheckCommand, SeveralFilesGiveOneLineEachAndAMissingFileIsAnEnvironmentFailure) {
    const std::string dir = freshTempDir("check-files");
    writeFile(dir + "/a.json", kHead + "}");
    const CliRun run = runCli({"check", "a.json", "missing.json", "a.json"}, {}, dir);
    EXPECT_EQ(run.status, 1);
    const auto out = lines(run.out);
    ASSERT_EQ(out.size(), 3u);
    EXPECT_EQ(out[0], out[2]);
    EXPECT_EQ(json::parse(out[1])["error"]["kind"], "environment");
    EXPECT_NE(run.err.find("missing.json: cannot read"), std::string::npos) << run.err;
}

TEST(CheckCommand, OneFileIsPrintedIndentedAndReadsBackTheSame) {
    const std::string dir = freshTempDir("check-one");
    writeFile(dir + "/r.json", kHead + R"(,"Pratim":{"LastNameM":"כהן"}})");
    const CliRun first = runCli({"check", "r.json"}, {}, dir);
    ASSERT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(first.out.rfind("{\n  \"format\": \"zelmor-report\",\n", 0), 0u) << first.out;
    EXPECT_TRUE(first.err.empty());

    writeFile(dir + "/n.json", first.out);
    const CliRun second = runCli({"check", "n.json"}, {}, dir);
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.out, first.out);
}

TEST(CheckCommand, UsageMistakesExitWithTwo) {
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"check"}, std::vector<std::string>{"check", "--bogus", "a.json"}}) {
        const CliRun run = runCli(args);
        EXPECT_EQ(run.status, 2);
        EXPECT_TRUE(run.out.empty());
        EXPECT_NE(run.err.find("usage: zelmor-cli check"), std::string::npos) << run.err;
    }
}

}  // namespace
}  // namespace zelmor::test
