// Several processes on one database: a load of saves and reads, and saves
// killed at random moments.
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>
#include <vector>

#include "storage/report_pattern.h"
#include "storage/storage_suite.h"

extern char** environ;

namespace zelmor::storage::testing {
namespace {

pid_t spawnHelper(std::vector<std::string> args) {
    args.insert(args.begin(), helperPath());
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) return -1;
    return pid;
}

// The exit status of a child; -signal when a signal ended it.
int waitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

using ProcessTest = StorageTest;

TEST_P(ProcessTest, EightProcessesSaveAndReadWithoutErrors) {
    // The full measurement runs 1,000 rounds a process: ZELMOR_STORAGE_LOAD_ROUNDS=1000.
    const char* env = std::getenv("ZELMOR_STORAGE_LOAD_ROUNDS");
    const int rounds = env ? std::atoi(env) : 60;
    db_->ensureReady();
    std::vector<pid_t> workers;
    for (int w = 1; w <= 8; ++w) {
        workers.push_back(spawnHelper({"load", location_, std::to_string(w), std::to_string(rounds)}));
        ASSERT_GT(workers.back(), 0);
    }
    for (pid_t p : workers) {
        EXPECT_EQ(waitFor(p), 0) << "a worker met an error (its messages are above)";
    }

    if (sqlite()) {
        EXPECT_EQ(db_->queryScalar("PRAGMA integrity_check"), "ok");
    }
    const long long own = 8 * std::min(rounds, 50);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\" WHERE \"IDM\" LIKE 'W%'"), own);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails1\" WHERE \"IDM\" LIKE 'W%'"), own);
    EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails\" WHERE \"IDM\" LIKE 'S%'"), std::min(rounds, 20));
    db_->forEachStored([](const StoredReport& s) {
        ASSERT_TRUE(s.ok) << s.error;
        EXPECT_EQ(patternProblem(s.report, s.id), "") << s.id;
    });
}

TEST_P(ProcessTest, KilledSavesNeverLeaveAReportMissingOrTorn) {
    constexpr int kReports = 12;
    for (int i = 0; i < kReports; ++i)
        ASSERT_TRUE(db_->saveNishum(patternReport("C" + std::to_string(i), 0)).ok);

    std::mt19937 random(20150401);  // fixed: the same kill moments every run
    int seed = 0;
    for (int round = 0; round < 6; ++round) {
        std::vector<pid_t> savers;
        for (int k = 0; k < 3; ++k)
            savers.push_back(spawnHelper({"crash", location_, std::to_string(++seed), std::to_string(kReports)}));
        // Let them get going (connection, structure check), then kill at a random moment.
        std::this_thread::sleep_for(std::chrono::milliseconds(150 + random() % 250));
        for (pid_t p : savers) {
            std::this_thread::sleep_for(std::chrono::milliseconds(random() % 15));
            kill(p, SIGKILL);
        }
        for (pid_t p : savers) {
            EXPECT_EQ(waitFor(p), -SIGKILL) << "a saver stopped before it was killed";
        }

        ReportDb after(location_);
        for (int i = 0; i < kReports; ++i) {
            const std::string id = "C" + std::to_string(i);
            NishumInput r;
            const StoreOutcome out = after.openNishum(id, r);
            ASSERT_TRUE(out.ok) << "round " << round << ": " << id << ": " << out.text;
            EXPECT_EQ(patternProblem(r, id), "") << "round " << round;
            EXPECT_EQ(count("SELECT COUNT(*) FROM \"tblDetails1\" WHERE \"IDM\" = '" + id + "'"), 1);
        }
        if (sqlite()) {
            EXPECT_EQ(after.queryScalar("PRAGMA integrity_check"), "ok");
        }
    }
    // Some saves did happen.
    int changed = 0;
    db_->forEachStored([&](const StoredReport& s) { changed += patternVersion(s.report) > 0; });
    EXPECT_GT(changed, 0);
}

ZELMOR_STORAGE_BACKENDS(ProcessTest);

}  // namespace
}  // namespace zelmor::storage::testing
