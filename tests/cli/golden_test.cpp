// Golden files: the real zelmor-cli runs over every report document of
// tests/golden/reports, inside that folder, and what it prints is compared with
// the expected file of the same name in tests/golden/<command>.
//
// To accept a changed output, run this test binary with the environment
// variable ZELMOR_REGENERATE_GOLDEN=1: it then rewrites the expected files
// instead of comparing. Every rewritten file is reviewed by a person before it
// is committed.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"

namespace zelmor::test {
namespace {

namespace fs = std::filesystem;

const std::string kGolden = ZELMOR_SOURCE_DIR "/tests/golden/";
const char* const kCommands[] = {"check", "calc"};

struct GoldenCase {
    std::string command, file;  // "calc", "couple.json"
};

void PrintTo(const GoldenCase& c, std::ostream* os) { *os << c.command << " " << c.file; }

std::vector<GoldenCase> goldenCases() {
    std::vector<std::string> files;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(kGolden + "reports", ec))
        if (entry.path().extension() == ".json") files.push_back(entry.path().filename().string());
    std::sort(files.begin(), files.end());
    std::vector<GoldenCase> cases;
    for (const char* command : kCommands)
        for (const auto& f : files) cases.push_back({command, f});
    return cases;
}

std::string caseName(const testing::TestParamInfo<GoldenCase>& info) {
    std::string name = info.param.command + "_" + fs::path(info.param.file).stem().string();
    std::replace_if(name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}

// The exit status that goes with an output: an error document carries its kind,
// anything else is a success.
int expectedStatus(const std::string& out) {
    const auto doc = nlohmann::json::parse(out, nullptr, false);
    if (doc.is_discarded() || !doc.is_object() || !doc.contains("error")) return 0;
    const std::string kind = doc["error"].value("kind", "");
    return kind == "input" ? 2 : kind == "overflow" ? 3 : 1;
}

class Golden : public testing::TestWithParam<GoldenCase> {};

TEST_P(Golden, OutputMatchesExpectedFile) {
    const GoldenCase& c = GetParam();
    const std::string tmp = freshTempDir(caseName({c, 0}));
    std::vector<std::string> args{c.command, c.file};
    if (c.command == "calc") args.insert(args.end(), {"--today", "2016-06-30", "--data-dir", tmp + "/data"});
    const CliRun run = runCli(args, {}, kGolden + "reports");
    const std::string expectedPath = kGolden + c.command + "/" + c.file;

    if (const char* v = std::getenv("ZELMOR_REGENERATE_GOLDEN"); v && std::string(v) == "1") {
        fs::create_directories(kGolden + c.command);
        writeFile(expectedPath, run.out);
        std::cout << "rewrote " << expectedPath << '\n';
    }
    ASSERT_TRUE(fs::exists(expectedPath))
        << expectedPath << " is missing; run with ZELMOR_REGENERATE_GOLDEN=1 to write it, then review it";
    const std::string expected = readFile(expectedPath);
    EXPECT_EQ(run.out, expected) << "zelmor-cli " << c.command << " " << c.file << "\nstandard error:\n" << run.err;
    EXPECT_EQ(run.status, expectedStatus(expected)) << run.err;
    fs::remove_all(tmp);
}

INSTANTIATE_TEST_SUITE_P(Sets, Golden, testing::ValuesIn(goldenCases()), caseName);

// An expected file without its input would never be compared again.
TEST(GoldenSets, EveryExpectedFileHasItsInput) {
    for (const char* command : kCommands) {
        std::error_code ec;
        for (const auto& entry : fs::directory_iterator(kGolden + command, ec))
            EXPECT_TRUE(fs::exists(kGolden + "reports/" + entry.path().filename().string())) << entry.path();
    }
}

}  // namespace
}  // namespace zelmor::test
