#include "storage/storage_suite.h"

#include <QCoreApplication>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace zelmor::storage::testing {
namespace fs = std::filesystem;

namespace {

// The bin folder of the newest PostgreSQL installed, or "".
std::string findPgBin() {
    std::string best;
    std::error_code ec;
    for (const auto& e : fs::directory_iterator("/usr/lib/postgresql", ec))
        if (fs::exists(e.path() / "bin" / "initdb")) best = std::max(best, (e.path() / "bin").string());
    return best;
}

// A command as the user that runs the server: postgres when we are root.
std::vector<std::string> asServerUser(std::vector<std::string> args) {
    if (geteuid() == 0) args.insert(args.begin(), {"runuser", "-u", "postgres", "--"});
    return args;
}

// The throwaway PostgreSQL server, started on first use, that listens on a socket
// of its own folder only. available() is false (with the reason in whyNot_) when
// PostgreSQL is not installed or does not start; tests then skip.
class PgServer {
public:
    static PgServer& instance() {
        static PgServer server;
        return server;
    }
    ~PgServer() { stop(); }
    bool available();
    // A new empty database on the server, as a connection URI.
    std::string freshDatabase();
    void stop();
    std::string whyNot_;

private:
    bool tried_ = false, running_ = false;
    std::string dir_, binDir_;
    int databases_ = 0;
};

bool PgServer::available() {
    if (tried_) return running_;
    tried_ = true;
    auto fail = [this](const std::string& why) {
        whyNot_ = why;
        return false;
    };
    binDir_ = findPgBin();
    if (binDir_.empty()) return fail("PostgreSQL is not installed (no /usr/lib/postgresql/*/bin/initdb)");
    std::string pattern = "/tmp/zelmor-pg-XXXXXX";
    if (!mkdtemp(pattern.data())) return fail("cannot make a temporary folder");
    dir_ = pattern;
    const std::string log = dir_ + "/server.log";
    // The server refuses to run as root: then it runs as the postgres user,
    // which must own its folder.
    if (geteuid() == 0) {
        const passwd* pw = getpwnam("postgres");
        if (!pw || chown(dir_.c_str(), pw->pw_uid, pw->pw_gid) != 0)
            return fail("running as root and there is no postgres user to run the server");
    }
    auto cmd = [&](std::vector<std::string> args) { return waitFor(spawnProgram(asServerUser(args), {{}, {}, log, log})); };
    if (cmd({binDir_ + "/initdb", "-D", dir_ + "/data", "-U", "zelmor", "--auth=trust", "-E", "UTF8", "--locale=C",
             "--no-sync"}) != 0)
        return fail("initdb failed (see " + log + ")");
    // No TCP at all: the socket in the server's own folder, so no port is shared.
    const std::string options = "-k " + dir_ + " -c listen_addresses= -c fsync=off -c max_connections=60";
    if (cmd({binDir_ + "/pg_ctl", "-D", dir_ + "/data", "-o", options, "-w", "-l", dir_ + "/pg.log", "start"}) != 0)
        return fail("the PostgreSQL server did not start (see " + log + ")");
    return running_ = true;
}

std::string PgServer::freshDatabase() {
    const std::string name = "zt" + std::to_string(++databases_), log = dir_ + "/server.log";
    if (waitFor(spawnProgram({binDir_ + "/createdb", "-h", dir_, "-U", "zelmor", name}, {{}, {}, log, log})) != 0)
        throw std::runtime_error("cannot create a test database (see " + log + ")");
    return "postgresql://zelmor@localhost/" + name + "?host=" + dir_;
}

void PgServer::stop() {
    if (running_) {
        const std::vector<std::string> args = {binDir_ + "/pg_ctl", "-D", dir_ + "/data", "-m", "immediate", "-w", "stop"};
        waitFor(spawnProgram(asServerUser(args), {{}, {}, "/dev/null", "/dev/null"}));
        running_ = false;
    }
    if (!dir_.empty()) {
        std::error_code ec;
        fs::remove_all(dir_, ec);
        dir_.clear();
    }
}

}  // namespace

void StorageTest::SetUp() {
    // The Qt application object that the SQL plug-ins need.
    static int argc = 1;
    static char name[] = "storage_tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance()) new QCoreApplication(argc, argv);
    if (GetParam() == "postgresql") {
        if (!PgServer::instance().available()) GTEST_SKIP() << PgServer::instance().whyNot_;
        location_ = PgServer::instance().freshDatabase();
    } else {
        location_ = dir_.path() + "/2015/D2015.BRK";
    }
    db_ = std::make_unique<ReportDb>(location_);
}

}  // namespace zelmor::storage::testing
