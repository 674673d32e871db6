// zelmor-cli import, export, list and calc-all run as a user runs them.
#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"
#include "report/report_json.h"
#include "storage/storage_suite.h"
#include "support/report_generator.h"

namespace zelmor::storage::testing {
namespace {

using zelmor::test::lines;
using zelmor::test::runCli;

const std::string kGolden = ZELMOR_SOURCE_DIR "/tests/golden/reports/";

struct Golden {
    std::string path, id;
};

// The golden reports that are accepted, with their ids.
std::vector<Golden> goldenReports() {
    std::vector<Golden> out;
    for (const auto& e : std::filesystem::directory_iterator(kGolden)) {
        const std::string path = e.path().string();
        if (path.find("refused") != std::string::npos) continue;
        const auto doc = nlohmann::json::parse(zelmor::test::readFile(path));
        out.push_back({path, doc.at("Pratim").at("IDM").get<std::string>()});
    }
    return out;
}

using CliStorageTest = StorageTest;

TEST_P(CliStorageTest, ImportThenExportGivesBackTheNormalisedDocument) {
    const auto golden = goldenReports();
    ASSERT_GE(golden.size(), 3u);
    for (const Golden& g : golden) {
        const auto imported = runCli({"import", g.path, "--db", location_});
        ASSERT_EQ(imported.status, 0) << imported.err;
        const auto exported = runCli({"export", g.id, "--db", location_});
        ASSERT_EQ(exported.status, 0) << exported.err;
        EXPECT_EQ(exported.out, runCli({"check", g.path}).out) << g.path;
    }
    // A refused document stores nothing and says why.
    const auto refused = runCli({"import", kGolden + "refused-total.json", "--db", location_});
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.out.find("\"kind\": \"input\""), std::string::npos) << refused.out;
    EXPECT_EQ(lines(runCli({"list", "--db", location_}).out).size(), golden.size());

    // A missing report and a bad option are the user's fault; a database that
    // cannot be reached is the environment's.
    const auto missing = runCli({"export", "000000018", "--db", location_});
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.err.find("000000018"), std::string::npos);
    EXPECT_EQ(runCli({"list", "--db", location_, "--sort", "age"}).status, 2);
    const std::string nowhere = sqlite() ? dir_.path() + "/none/D2015.BRK" : location_ + "_missing";
    for (const char* command : {"list", "calc-all"})
        EXPECT_EQ(runCli({command, "--db", nowhere, "--data-dir", dir_.path() + "/data"}).status, 1) << command;
}

// Every line of calc-all belongs to the report it names, in id order: it equals calc of that
// report as export gives it back. Generated reports, enough of them to be worked on side by side.
TEST_P(CliStorageTest, CalcAllGivesTheResultOfEveryStoredReportInIdOrder) {
    zelmor::testing::ReportGenerator generator(7);
    constexpr std::size_t kReports = 60;
    std::string batch;
    for (std::size_t i = 0; i < kReports; ++i) batch += writeReportDocument(generator.next(), false) + "\n";
    const auto imported = runCli({"import", "-", "--db", location_}, batch);
    ASSERT_EQ(imported.status, 0) << imported.err;
    EXPECT_NE(imported.err.find("60 reports: 60 stored, 0 refused"), std::string::npos) << imported.err;

    auto dated = [&](std::vector<std::string> args) {
        args.insert(args.end(), {"--today", "2016-06-30", "--data-dir", dir_.path() + "/data"});
        return args;
    };
    const auto all = runCli(dated({"calc-all", "--db", location_}));
    ASSERT_LE(all.status, 3) << all.err;
    const auto results = lines(all.out);
    ASSERT_EQ(results.size(), kReports);
    EXPECT_NE(all.err.find("60 reports: "), std::string::npos) << all.err;
    EXPECT_EQ(all.err.find('\r'), std::string::npos) << "progress shown where standard error is no terminal";

    std::vector<std::string> ids{"export"};
    for (const std::string& line : results) ids.push_back(nlohmann::json::parse(line).at("id"));
    EXPECT_TRUE(std::is_sorted(ids.begin() + 1, ids.end()));
    EXPECT_EQ(std::adjacent_find(ids.begin() + 1, ids.end()), ids.end()) << "a report given twice";
    ids.insert(ids.end(), {"--db", location_});
    const auto exported = runCli(ids);
    ASSERT_EQ(exported.status, 0) << exported.err;
    const auto each = lines(runCli(dated({"calc", "-"}), exported.out).out);
    ASSERT_EQ(each.size(), kReports);
    for (std::size_t i = 0; i < kReports; ++i)
        EXPECT_EQ(nlohmann::json::parse(results[i]), nlohmann::json::parse(each[i])) << "report " << ids[i + 1];
}

TEST_P(CliStorageTest, ImportRefusesTheTemplateIdAndIdsThatLookLikeOthers) {
    auto doc = nlohmann::json::parse(zelmor::test::readFile(goldenReports().front().path));
    std::string batch;
    for (const char* id : {"NewInit", " NewInit ", "123\u200F", "\u202B123", "12\u00A03", "555"}) {
        doc["Pratim"]["IDM"] = id;
        batch += doc.dump() + "\n";
    }
    const auto run = runCli({"import", "-", "--db", location_}, batch);
    EXPECT_EQ(run.status, 2);
    const auto errors = lines(run.err);
    ASSERT_GE(errors.size(), 5u) << run.err;
    for (int i : {0, 1})  // the form of the empty-id message
        EXPECT_TRUE(errors[i].ends_with(": Pratim.IDM: לא ניתן לשמור בת.ז. NewInit, השמורה לתבנית הדו\"ח החדש"))
            << errors[i];
    for (int i : {2, 3, 4}) EXPECT_NE(errors[i].find("it would look like another id"), std::string::npos) << errors[i];
    EXPECT_NE(errors[2].find("U+200F"), std::string::npos) << errors[2];
    const auto list = runCli({"list", "--db", location_, "--sort", "id"});
    EXPECT_EQ(list.out.substr(0, 4), "555\t");
    EXPECT_EQ(lines(list.out).size(), 1u);
    NishumInput r;
    ASSERT_TRUE(ReportDb(location_).newNishum(r).ok);
    EXPECT_EQ(firstDifference(r, NishumInput()), "") << "the template was written";
}

ZELMOR_STORAGE_BACKENDS(CliStorageTest);

}  // namespace
}  // namespace zelmor::storage::testing
