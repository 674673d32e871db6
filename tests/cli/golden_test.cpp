// Golden files: the real zelmor-cli is run over every report document of an
// input folder and what it prints is compared with the expected file of the
// same name. A sheet of sets below says which command runs over which folder.
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

// One golden set: `zelmor-cli <command> FILE <extraArgs...>` for every *.json of
// inputDir, run inside inputDir, against expectedDir/FILE. Folders are relative
// to the source tree. In extraArgs, {tmp} stands for a fresh empty folder of the case.
struct GoldenSet {
    const char *command, *inputDir, *expectedDir;
    std::vector<std::string> extraArgs;
};

const std::vector<GoldenSet> kSets = {
    {"check", "tests/golden/reports", "tests/golden/check", {}},
    {"calc", "tests/golden/reports", "tests/golden/calc", {"--today", "2016-06-30", "--data-dir", "{tmp}/data"}},
};

struct GoldenCase {
    const GoldenSet* set;
    std::string file;  // "couple.json"
};

void PrintTo(const GoldenCase& c, std::ostream* os) { *os << c.set->command << " " << c.set->inputDir << "/" << c.file; }

std::string sourcePath(const std::string& rel) { return std::string(ZELMOR_SOURCE_DIR) + "/" + rel; }

std::vector<GoldenCase> goldenCases() {
    std::vector<GoldenCase> cases;
    for (const GoldenSet& set : kSets) {
        std::vector<std::string> files;
        std::error_code ec;
        for (const auto& entry : fs::directory_iterator(sourcePath(set.inputDir), ec))
            if (entry.is_regular_file() && entry.path().extension() == ".json")
                files.push_back(entry.path().filename().string());
        std::sort(files.begin(), files.end());
        for (auto& f : files) cases.push_back({&set, f});
    }
    return cases;
}

std::string caseName(const testing::TestParamInfo<GoldenCase>& info) {
    std::string name = std::string(info.param.set->command) + "_" + fs::path(info.param.file).stem().string();
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
}

std::string expand(std::string arg, const std::string& tmp) {
    if (const auto at = arg.find("{tmp}"); at != std::string::npos) arg.replace(at, 5, tmp);
    return arg;
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
    std::vector<std::string> args{c.set->command, c.file};
    for (const auto& a : c.set->extraArgs) args.push_back(expand(a, tmp));

    const CliRun run = runCli(args, {}, sourcePath(c.set->inputDir));
    const std::string expectedPath = sourcePath(std::string(c.set->expectedDir) + "/" + c.file);

    if (const char* v = std::getenv("ZELMOR_REGENERATE_GOLDEN"); v && std::string(v) == "1") {
        fs::create_directories(fs::path(expectedPath).parent_path());
        writeFile(expectedPath, run.out);
        std::cout << "rewrote " << expectedPath << '\n';
    }
    ASSERT_TRUE(fs::exists(expectedPath))
        << expectedPath << " is missing; run with ZELMOR_REGENERATE_GOLDEN=1 to write it, then review it";
    const std::string expected = readFile(expectedPath);
    EXPECT_EQ(run.out, expected) << "zelmor-cli " << c.set->command << " " << c.file << "\nstandard error:\n"
                                 << run.err;
    EXPECT_EQ(run.status, expectedStatus(expected)) << run.err;
    fs::remove_all(tmp);
}

INSTANTIATE_TEST_SUITE_P(Sets, Golden, testing::ValuesIn(goldenCases()), caseName);

// An expected file without its input would never be compared again.
TEST(GoldenSets, EveryExpectedFileHasItsInput) {
    for (const GoldenSet& set : kSets) {
        std::error_code ec;
        for (const auto& entry : fs::directory_iterator(sourcePath(set.expectedDir), ec)) {
            const fs::path input = fs::path(sourcePath(set.inputDir)) / entry.path().filename();
            EXPECT_TRUE(fs::exists(input)) << entry.path() << " has no input " << input;
        }
    }
}

}  // namespace
}  // namespace zelmor::test
