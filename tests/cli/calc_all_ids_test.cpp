// Every line of calc-all over a database of generated reports belongs to the
// report it names: it equals calc of that report as export gives it back.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"
#include "report/report_json.h"
#include "support/report_generator.h"

namespace zelmor::test {
namespace {

using nlohmann::json;

TEST(CalcAll, EveryLineCarriesTheIdOfItsReport) {
    const std::string dir = freshTempDir("calc-all-ids");
    const std::string db = dir + "/reports.db", data = dir + "/data";
    testing::ReportGenerator generator(7);
    std::string batch;
    constexpr int kReports = 60;
    for (int i = 0; i < kReports; ++i) batch += writeReportDocument(generator.next(), false) + "\n";
    const CliRun imported = runCli({"import", "-", "--db", db}, batch);
    ASSERT_EQ(imported.status, 0) << imported.err;
    EXPECT_NE(imported.err.find(std::to_string(kReports) + " reports: " + std::to_string(kReports) + " stored, 0 refused"),
              std::string::npos)
        << imported.err;

    const CliRun all = runCli({"calc-all", "--db", db, "--today", "2016-06-30", "--data-dir", data});
    ASSERT_LE(all.status, 3) << all.err;
    const auto results = lines(all.out);
    ASSERT_EQ(results.size(), static_cast<std::size_t>(kReports));
    EXPECT_NE(all.err.find(std::to_string(kReports) + " reports: "), std::string::npos) << all.err;
    EXPECT_EQ(all.err.find('\r'), std::string::npos) << "progress shown where standard error is no terminal";

    std::vector<std::string> ids{"export"};
    for (const std::string& line : results) ids.push_back(json::parse(line).at("id"));
    EXPECT_EQ(std::set<std::string>(ids.begin() + 1, ids.end()).size(), static_cast<std::size_t>(kReports));
    ids.insert(ids.end(), {"--db", db});
    const CliRun exported = runCli(ids);
    ASSERT_EQ(exported.status, 0) << exported.err;
    const CliRun one = runCli({"calc", "-", "--today", "2016-06-30", "--data-dir", data}, exported.out);
    const auto each = lines(one.out);
    ASSERT_EQ(each.size(), results.size());
    for (std::size_t i = 0; i < results.size(); ++i)
        EXPECT_EQ(json::parse(results[i]), json::parse(each[i])) << "report " << ids[i + 1];
    std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace zelmor::test
