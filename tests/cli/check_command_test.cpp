// zelmor-cli check as a script sees it: documents on standard output, messages
// on standard error, the exit status the highest met; and update-tables.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"

namespace zelmor::test {
namespace {

using nlohmann::json;

const std::string kHead = R"({"format":"zelmor-report","version":1,"year":2015)";

TEST(CheckCommand, JsonLinesGoOnPastARefusedDocument) {
    const std::string input = kHead + R"(,"Yegia":{"N150":1000}})" + "\n" +  //
                              "\n" +                                                    // blank: skipped
                              kHead + R"(,"Yegia":{"N15O":1000}})" + "\n" +           // refused
                              kHead + ",}\n" +                                          // malformed
                              kHead + R"(,"Yegia":{"N158":5}})" + "\r\n";
    const CliRun run = runCli({"check", "-"}, input);
    EXPECT_EQ(run.status, 2);

    const auto out = lines(run.out);
    ASSERT_EQ(out.size(), 4u) << run.out;
    EXPECT_EQ(json::parse(out[0])["Yegia"]["TTLM"], 1000);
    const json refused = json::parse(out[1]);
    EXPECT_EQ(refused["format"], "zelmor-results");
    EXPECT_EQ(refused["error"]["kind"], "input");
    EXPECT_EQ(refused["error"]["message"],
              "standard input, line 3: Yegia.N15O: unknown member; did you mean \"N150\"?");
    const std::string malformed = json::parse(out[2])["error"]["message"];
    EXPECT_TRUE(malformed.starts_with("standard input, line 4, column 51: malformed JSON (")) << malformed;
    EXPECT_EQ(json::parse(out[3])["Yegia"]["TTLM"], 5);
    EXPECT_NE(run.err.find("standard input, line 3: Yegia.N15O"), std::string::npos) << run.err;
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

TEST(UpdateTablesCommand, AFailedDownloadKeepsTheTableAndFails) {
    const std::string dir = freshTempDir("update-tables");
    const CliRun first = runCli({"update-tables", "--url", "http://127.0.0.1:1/Madad.brk", "--data-dir", dir});
    EXPECT_EQ(first.status, 1);
    EXPECT_NE(first.err.find("2026/08"), std::string::npos) << first.err;  // how far the kept table reaches
    const std::string before = readFile(dir + "/Madad.BRK");
    EXPECT_EQ(runCli({"update-tables", "--url", "http://127.0.0.1:1/Madad.brk", "--data-dir", dir}).status, 1);
    EXPECT_EQ(readFile(dir + "/Madad.BRK"), before);
}

}  // namespace
}  // namespace zelmor::test
