#pragma once
// The storage suite: each test gets a fresh, empty report database on the
// backend of the test binary, a temporary SQLite file or a fresh database on a
// throwaway PostgreSQL server that listens on a socket of its own folder only
// and lives as long as the test process.

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "cli/cli_runner.h"
#include "storage/report_db.h"
#include "storage/report_pattern.h"

namespace zelmor::storage::testing {

// A temporary folder, removed with everything in it when the object goes.
struct TempDir {
    QTemporaryDir dir;
    std::string path() const { return dir.path().toStdString(); }
};

using zelmor::test::spawnProgram;
using zelmor::test::waitFor;

// The kind of the StorageError that fn throws; None when it throws none.
template <class Fn>
StoreError thrownKind(Fn&& fn) {
    try {
        fn();
    } catch (const StorageError& e) {
        return e.kind();
    }
    return StoreError::None;
}

class StorageTest : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override;
    bool sqlite() const { return GetParam() == "sqlite"; }
    long long count(const std::string& sql) { return std::stoll("0" + db_->queryScalar(sql)); }
    // The stored report of this id; a failure to open it fails the test.
    NishumInput load(const std::string& id) {
        NishumInput r;
        const StoreOutcome out = db_->openNishum(id, r);
        EXPECT_TRUE(out.ok) << id << ": " << out.detail;
        return r;
    }

    TempDir dir_;
    std::string location_;
    std::unique_ptr<ReportDb> db_;
};

}  // namespace zelmor::storage::testing

// Each test binary runs the suite on its one backend.
#ifdef ZELMOR_TEST_POSTGRES
#define ZELMOR_STORAGE_BACKENDS(suite) \
    INSTANTIATE_TEST_SUITE_P(Postgres, suite, ::testing::Values(std::string("postgresql")))
#else
#define ZELMOR_STORAGE_BACKENDS(suite) \
    INSTANTIATE_TEST_SUITE_P(Sqlite, suite, ::testing::Values(std::string("sqlite")))
#endif
