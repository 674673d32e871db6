#include "cli/cli_common.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"

namespace zelmor::cli {
namespace {

namespace fs = std::filesystem;

TEST(ParseOptions, SeparatesValuesFlagsAndPositionalWordsAndRefusesTheRest) {
    const Options o = parseOptions({"a.json", "--today", "2016-06-30", "-", "--report", "--data-dir=/x/y", "--",
                                    "--not-an-option"},
                                   {"--today", "--data-dir", "--sum"}, {"--report", "--bl"});
    EXPECT_EQ(o.positional, (std::vector<std::string>{"a.json", "-", "--not-an-option"}));
    EXPECT_EQ(o.value("--today"), "2016-06-30");
    EXPECT_EQ(o.value("--data-dir"), "/x/y");
    EXPECT_TRUE(o.has("--report"));
    EXPECT_FALSE(o.has("--bl"));
    EXPECT_EQ(o.value("--sum", "7"), "7");
    // A negative number is a value, not an option.
    EXPECT_EQ(parseOptions({"--sum", "-500"}, {"--sum"}).value("--sum"), "-500");

    EXPECT_THROW(parseOptions({"a.json", "--today"}, {"--today"}), UsageError);                  // no value
    EXPECT_THROW(parseOptions({"--today", "--report"}, {"--today"}, {"--report"}), UsageError);  // no value
    EXPECT_THROW(parseOptions({"--today", "x", "--today", "y"}, {"--today"}), UsageError);
    EXPECT_THROW(parseOptions({"--report=1"}, {}, {"--report"}), UsageError);
    EXPECT_THROW(parseOptions({"--tday", "2016-01-01"}, {"--today"}), UsageError);
}

TEST(ResolveToday, TakesTheGivenDateOrRefusesIt) {
    EXPECT_EQ(resolveToday(parseOptions({"--today", "2016-06-30"}, {"--today"})), *Date::fromYmd(2016, 6, 30));
    for (const char* bad : {"30/06/2016", "2016-02-30"})
        EXPECT_THROW(resolveToday(parseOptions({"--today", bad}, {"--today"})), UsageError) << bad;
    EXPECT_FALSE(resolveToday(Options{}).isNull());  // the real date
}

TEST(ResolveDataDir, GivenFolderElseTheXdgDataHomeAndCreatesIt) {
    const std::string tmp = test::freshTempDir("datadir");
    EXPECT_EQ(resolveDataDir(parseOptions({"--data-dir", tmp + "/given/deep"}, {"--data-dir"})), tmp + "/given/deep");
    EXPECT_TRUE(fs::is_directory(tmp + "/given/deep"));

    const char* oldXdg = std::getenv("XDG_DATA_HOME");
    const std::string saved = oldXdg ? oldXdg : "";
    ::setenv("XDG_DATA_HOME", (tmp + "/xdg").c_str(), 1);
    EXPECT_EQ(resolveDataDir(Options{}), tmp + "/xdg/Zelmor");
    EXPECT_TRUE(fs::is_directory(tmp + "/xdg/Zelmor"));
    oldXdg ? ::setenv("XDG_DATA_HOME", saved.c_str(), 1) : ::unsetenv("XDG_DATA_HOME");

    test::writeFile(tmp + "/file", "x");
    EXPECT_THROW(resolveDataDir(parseOptions({"--data-dir", tmp + "/file"}, {"--data-dir"})), std::runtime_error);
    fs::remove_all(tmp);
}

TEST(ErrorDocument, IsOneLineOfValidJsonWhateverTheMessageHolds) {
    const std::string doc = errorDocument("input", "a \"quoted\"\nword \xff and עברית");
    EXPECT_EQ(doc.find('\n'), std::string::npos);
    EXPECT_EQ(nlohmann::json::parse(doc)["error"]["message"], "a \"quoted\"\nword \xef\xbf\xbd and עברית");
    EXPECT_EQ(errorDocument("overflow", "x"),
              R"({"format": "zelmor-results", "version": 1, "error": {"kind": "overflow", "message": "x"}})");
}

}  // namespace
}  // namespace zelmor::cli
