// Several processes on one database: a load of saves and reads, and saves
// killed at random moments.
#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>
#include <vector>

#include "storage/storage_suite.h"

namespace zelmor::storage::testing {
namespace {

using ProcessTest = StorageTest;

std::vector<pid_t> startWorkers(const std::string& location, int first, int n, int rounds) {
    std::vector<pid_t> workers;
    for (int w = first; w < first + n; ++w)
        workers.push_back(spawnProgram({ZELMOR_BINARY_DIR "/bin/storage_helper", location, std::to_string(w), std::to_string(rounds)}));
    return workers;
}

// Every stored report is one whole version of the pattern.
void expectAllWhole(ReportDb& db) {
    db.forEachStored([](const StoredReport& s) {
        ASSERT_TRUE(s.ok) << s.error;
        EXPECT_EQ(patternProblem(s.report, s.id), "") << s.id;
    });
}

TEST_P(ProcessTest, EightProcessesSaveAndReadWithoutErrors) {
    // The full measurement runs 1,000 rounds a process: ZELMOR_STORAGE_LOAD_ROUNDS=1000.
    const char* env = std::getenv("ZELMOR_STORAGE_LOAD_ROUNDS");
    const int rounds = env ? std::atoi(env) : 60;
    db_->ensureReady();
    for (pid_t p : startWorkers(location_, 1, 8, rounds))
        EXPECT_EQ(waitFor(p), 0) << "a worker met an error (its message is above)";

    EXPECT_EQ(sqlite() ? db_->queryScalar("PRAGMA integrity_check") : "ok", "ok");
    const long long own = 8 * std::min(rounds, 50);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\" WHERE \"IDM\" LIKE 'W%'"), own);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails1\" WHERE \"IDM\" LIKE 'W%'"), own);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\" WHERE \"IDM\" LIKE 'S%'"), std::min(rounds, 20));
    expectAllWhole(*db_);
}

TEST_P(ProcessTest, KilledSavesNeverLeaveAReportMissingOrTorn) {
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(db_->saveNishum(patternReport("S" + std::to_string(i), 0)).ok);
    std::mt19937 random(20150401);  // fixed: the same kill moments every run
    for (int round = 0; round < 6; ++round) {
        const auto workers = startWorkers(location_, 1 + 3 * round, 3, 1000000);
        // Let them get going (connection, structure check), then kill at a random moment.
        std::this_thread::sleep_for(std::chrono::milliseconds(150 + random() % 250));
        for (pid_t p : workers) {
            std::this_thread::sleep_for(std::chrono::milliseconds(random() % 15));
            kill(p, SIGKILL);
        }
        for (pid_t p : workers) EXPECT_EQ(waitFor(p), -SIGKILL) << "a worker stopped before it was killed";

        ReportDb after(location_);
        for (int i = 0; i < 20; ++i) {
            const std::string id = "S" + std::to_string(i);
            NishumInput r;
            const StoreOutcome out = after.openNishum(id, r);
            ASSERT_TRUE(out.ok) << "round " << round << ": " << id << ": " << out.detail;
            EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails1\" WHERE \"IDM\" = '" + id + "'"), 1);
        }
        expectAllWhole(after);
        EXPECT_EQ(sqlite() ? after.queryScalar("PRAGMA integrity_check") : "ok", "ok");
    }
    // Some saves did happen.
    int changed = 0;
    db_->forEachStored([&](const StoredReport& s) { changed += patternVersion(s.report) > 0; });
    EXPECT_GT(changed, 0);
}

ZELMOR_STORAGE_BACKENDS(ProcessTest);

}  // namespace
}  // namespace zelmor::storage::testing
