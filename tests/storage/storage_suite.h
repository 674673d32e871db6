#pragma once
// The fixture of the storage suite: each test gets a fresh, empty report
// database on the backend of the test binary (SQLite, or PostgreSQL on a
// throwaway local server).

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "storage/backend.h"
#include "storage/report_db.h"

namespace zelmor::storage::testing {

class StorageTest : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        if (GetParam() == "postgresql") {
            if (!PgServer::instance().available()) GTEST_SKIP() << PgServer::instance().whyNot();
            location_ = PgServer::instance().freshDatabase();
        } else {
            location_ = dir_.path() + "/2015/D2015.BRK";
        }
        db_ = std::make_unique<ReportDb>(location_);
    }
    bool sqlite() const { return GetParam() == "sqlite"; }
    long long count(const std::string& sql) { return std::stoll("0" + db_->queryScalar(sql)); }

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
