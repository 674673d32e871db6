#pragma once
// Where the storage tests put their databases: a temporary SQLite file, or a
// fresh database on a throwaway PostgreSQL server that listens on 127.0.0.1
// only and lives as long as the test process.

#include <string>

namespace zelmor::storage::testing {

// A temporary folder, removed with everything in it when the object goes.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

// The throwaway PostgreSQL server, started on first use. available() is false
// (with the reason in whyNot()) when PostgreSQL is not installed or does not
// start; tests then skip.
class PgServer {
public:
    static PgServer& instance();
    bool available();
    const std::string& whyNot() const { return whyNot_; }
    // A new empty database on the server, as a connection URI.
    std::string freshDatabase();
    void stop();

private:
    bool tried_ = false;
    bool running_ = false;
    std::string whyNot_;
    std::string dir_, binDir_;
    int port_ = 0;
    int databases_ = 0;
};

// The helper program of the process tests (load and crash).
std::string helperPath();

}  // namespace zelmor::storage::testing
