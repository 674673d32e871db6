// What lies at the database's place decides what may be done there: another
// program's database is never written to, and the journal suits shared and
// read-only folders.
#include <QSqlDatabase>
#include <QSqlQuery>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "cli/cli_runner.h"
#include "storage/storage_suite.h"

namespace zelmor::storage::testing {
namespace {

namespace fs = std::filesystem;
using zelmor::test::readFile;
using zelmor::test::runCli;

using DatabaseFileTest = StorageTest;
const std::string kSingle = ZELMOR_SOURCE_DIR "/tests/golden/reports/single.json";

// Runs a statement on the database behind our back, on a connection of its own.
void rawSql(const std::string& location, bool postgres, const std::string& sql) {
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(postgres ? "QPSQL" : "QSQLITE", "raw");
        if (postgres) {
            // The test server's URI: postgresql://zelmor@localhost/NAME?host=DIR
            const std::size_t slash = location.find('/', 13), q = location.find('?');
            db.setUserName("zelmor");
            db.setDatabaseName(QString::fromStdString(location.substr(slash + 1, q - slash - 1)));
            db.setHostName(QString::fromStdString(location.substr(q + 6)));
        } else {
            db.setDatabaseName(QString::fromStdString(location));
        }
        ASSERT_TRUE(db.open());
        QSqlQuery query(db);
        ASSERT_TRUE(query.exec(QString::fromStdString(sql))) << sql;
    }
    QSqlDatabase::removeDatabase("raw");
}

TEST_P(DatabaseFileTest, AnotherProgramsDatabaseIsRefusedByEveryCommandAndLeftAlone) {
    if (sqlite()) fs::create_directories(fs::path(location_).parent_path());
    rawSql(location_, !sqlite(), "CREATE TABLE \"Madad\" (\"Month\" TEXT PRIMARY KEY, \"Basis51\" REAL)");
    rawSql(location_, !sqlite(), "INSERT INTO \"Madad\" VALUES ('190101', 1.5)");
    const std::string before = sqlite() ? readFile(location_) : "";

    for (ReportDb::Mode mode : {ReportDb::Mode::CreateIfMissing, ReportDb::Mode::MustExist, ReportDb::Mode::ReadOnly}) {
        ReportDb db(location_, mode);
        NishumInput r = patternReport("123", 1);
        EXPECT_EQ(db.saveNishum(r).error, StoreError::ForeignDatabase);
        EXPECT_EQ(db.saveMany({r, patternReport("124", 1)}).error, StoreError::ForeignDatabase);
        EXPECT_EQ(db.openNishum("123", r).error, StoreError::ForeignDatabase);
        EXPECT_EQ(db.deleteNishum("123").error, StoreError::ForeignDatabase);
        EXPECT_EQ(thrownKind([&] { db.listNames(ListOrder::ById); }), StoreError::ForeignDatabase);
    }
    for (std::vector<std::string> args : std::vector<std::vector<std::string>>{
             {"import", kSingle}, {"list"}, {"export", "123"}, {"calc-all"}}) {
        args.insert(args.end(), {"--db", location_, "--data-dir", dir_.path() + "/data"});
        const auto run = runCli(args);
        EXPECT_EQ(run.status, 1) << args[0] << ": " << run.err;
        EXPECT_NE(run.err.find("no report database"), std::string::npos) << args[0] << ": " << run.err;
    }
    if (sqlite()) {
        EXPECT_EQ(readFile(location_), before) << "the foreign file was changed";
        // A file that is no database at all is another program's too.
        std::ofstream(location_, std::ios::binary | std::ios::trunc) << "just some text\n";
        const StoreOutcome text = ReportDb(location_).saveNishum(patternReport("1", 1));
        EXPECT_EQ(text.error, StoreError::ForeignDatabase) << text.detail;
        EXPECT_EQ(readFile(location_), "just some text\n");
        // An empty file is ours to set up.
        std::ofstream(location_, std::ios::binary | std::ios::trunc).flush();
        EXPECT_TRUE(ReportDb(location_).saveNishum(patternReport("1", 1)).ok);
    }
}

// The rollback journal: an existing WAL file is switched on its first open for
// writing, and a database in a folder that the user cannot write to can
// still be listed and exported.
TEST_P(DatabaseFileTest, TheRollbackJournalLetsAReadOnlyFolderBeRead) {
    if (!sqlite()) GTEST_SKIP() << "a file's journal";
    ASSERT_TRUE(db_->saveNishum(patternReport("123", 4)).ok);
    EXPECT_EQ(db_->queryScalar("PRAGMA journal_mode"), "delete");
    db_.reset();

    rawSql(location_, false, "PRAGMA journal_mode=WAL");  // as an older build left it
    {
        ReportDb reader(location_, ReportDb::Mode::ReadOnly);
        EXPECT_EQ(reader.listNames(ListOrder::ById).size(), 1u);
        EXPECT_EQ(reader.queryScalar("PRAGMA journal_mode"), "wal") << "a reader switched the journal";
    }
    {
        ReportDb writer(location_);
        EXPECT_TRUE(writer.saveNishum(patternReport("124", 4)).ok);
        EXPECT_EQ(writer.queryScalar("PRAGMA journal_mode"), "delete");
    }
    EXPECT_FALSE(fs::exists(location_ + "-wal"));

    // The folder and the file made read-only for the user that runs the
    // commands (root passes every permission, so then another user runs them).
    const std::string folder = fs::path(location_).parent_path().string();
    ASSERT_EQ(chmod(dir_.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    ASSERT_EQ(chmod(location_.c_str(), 0444), 0);
    const std::string log = dir_.path() + "/run.log";
    auto run = [&](std::vector<std::string> args) {
        args.insert(args.begin(), zelmor::test::cliPath());
        if (geteuid() == 0) args.insert(args.begin(), {"runuser", "-u", "nobody", "--"});
        fs::remove(log);
        const int status = waitFor(spawnProgram(args, {{}, {}, log, log}));
        return std::make_pair(status, readFile(log));
    };
    const auto [listed, listText] = run({"list", "--db", location_, "--sort", "id"});
    EXPECT_EQ(listed, 0) << listText;
    EXPECT_TRUE(listText.starts_with("123\t") && listText.find("\n124\t") != std::string::npos) << listText;
    const auto [exported, exportText] = run({"export", "124", "--db", location_});
    EXPECT_EQ(exported, 0) << exportText;
    EXPECT_NE(exportText.find("\"IDM\": \"124\""), std::string::npos) << exportText;
    const auto [imported, importText] = run({"import", kSingle, "--db", location_});
    EXPECT_EQ(imported, 1) << "a write to a read-only folder must fail: " << importText;
    chmod(folder.c_str(), 0755);
}

ZELMOR_STORAGE_BACKENDS(DatabaseFileTest);

}  // namespace
}  // namespace zelmor::storage::testing
