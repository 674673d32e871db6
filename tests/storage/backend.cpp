#include "storage/backend.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <vector>

extern char** environ;

namespace zelmor::storage::testing {
namespace fs = std::filesystem;

TempDir::TempDir() {
    std::string pattern = (fs::temp_directory_path() / "zelmor-storage-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make a temporary folder");
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ec;
    fs::remove_all(path_, ec);
}

namespace {

// Runs a program to its end with its output going to a log file; its exit status.
int runProgram(std::vector<std::string> args, const std::string& log) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    const int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) return -1;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int freePort() {
    const int s = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    a.sin_port = 0;
    socklen_t len = sizeof a;
    int port = 0;
    if (bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0 &&
        getsockname(s, reinterpret_cast<sockaddr*>(&a), &len) == 0)
        port = ntohs(a.sin_port);
    close(s);
    return port;
}

std::string findPgBin() {
    std::vector<fs::path> found;
    std::error_code ec;
    for (const auto& e : fs::directory_iterator("/usr/lib/postgresql", ec))
        if (fs::exists(e.path() / "bin" / "initdb")) found.push_back(e.path() / "bin");
    if (found.empty()) return {};
    std::sort(found.begin(), found.end());
    return found.back().string();
}

// The Qt application object that the SQL plug-ins need, and the end of the
// PostgreSQL server with the test process.
class StorageEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        if (!QCoreApplication::instance()) {
            static int argc = 1;
            static char name[] = "storage_tests";
            static char* argv[] = {name, nullptr};
            new QCoreApplication(argc, argv);
        }
    }
    void TearDown() override { PgServer::instance().stop(); }
};

[[maybe_unused]] ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new StorageEnvironment);

}  // namespace

PgServer& PgServer::instance() {
    static PgServer server;
    return server;
}

bool PgServer::available() {
    if (tried_) return running_;
    tried_ = true;
    binDir_ = findPgBin();
    if (binDir_.empty()) {
        whyNot_ = "PostgreSQL is not installed (no /usr/lib/postgresql/*/bin/initdb)";
        return false;
    }
    std::string pattern = "/tmp/zelmor-pg-XXXXXX";
    if (!mkdtemp(pattern.data())) {
        whyNot_ = "cannot make a temporary folder";
        return false;
    }
    dir_ = pattern;
    const std::string log = dir_ + "/server.log";
    // The server refuses to run as root: then it runs as the postgres user,
    // which must own its folder.
    std::vector<std::string> as;
    if (geteuid() == 0) {
        const passwd* pw = getpwnam("postgres");
        if (!pw || chown(dir_.c_str(), pw->pw_uid, pw->pw_gid) != 0) {
            whyNot_ = "running as root and there is no postgres user to run the server";
            return false;
        }
        as = {"runuser", "-u", "postgres", "--"};
    }
    auto cmd = [&](std::vector<std::string> args) {
        std::vector<std::string> all = as;
        all.insert(all.end(), args.begin(), args.end());
        return runProgram(all, log);
    };
    if (cmd({binDir_ + "/initdb", "-D", dir_ + "/data", "-U", "zelmor", "--auth=trust", "-E", "UTF8",
             "--locale=C", "--no-sync"}) != 0) {
        whyNot_ = "initdb failed (see " + log + ")";
        return false;
    }
    port_ = freePort();
    const std::string options = "-p " + std::to_string(port_) + " -k " + dir_ +
                                " -c listen_addresses=127.0.0.1 -c fsync=off -c max_connections=60";
    if (cmd({binDir_ + "/pg_ctl", "-D", dir_ + "/data", "-o", options, "-w", "-l", dir_ + "/pg.log", "start"}) != 0) {
        whyNot_ = "the PostgreSQL server did not start (see " + log + ")";
        return false;
    }
    running_ = true;
    return true;
}

std::string PgServer::freshDatabase() {
    const std::string name = "zt" + std::to_string(++databases_);
    {
        QSqlDatabase admin = QSqlDatabase::addDatabase("QPSQL", "zelmor-test-admin");
        admin.setHostName("127.0.0.1");
        admin.setPort(port_);
        admin.setUserName("zelmor");
        admin.setDatabaseName("postgres");
        if (!admin.open()) throw std::runtime_error("cannot reach the test server: " + admin.lastError().text().toStdString());
        QSqlQuery q(admin);
        if (!q.exec(QString::fromStdString("CREATE DATABASE " + name)))
            throw std::runtime_error("cannot create a test database: " + q.lastError().text().toStdString());
    }
    QSqlDatabase::removeDatabase("zelmor-test-admin");
    return "postgresql://zelmor@127.0.0.1:" + std::to_string(port_) + "/" + name;
}

void PgServer::stop() {
    if (running_) {
        std::vector<std::string> args;
        if (geteuid() == 0) args = {"runuser", "-u", "postgres", "--"};
        args.insert(args.end(), {binDir_ + "/pg_ctl", "-D", dir_ + "/data", "-m", "immediate", "-w", "stop"});
        runProgram(args, "/dev/null");
        running_ = false;
    }
    if (!dir_.empty()) {
        std::error_code ec;
        fs::remove_all(dir_, ec);
        dir_.clear();
    }
}

std::string helperPath() { return std::string(ZELMOR_BINARY_DIR) + "/bin/storage_helper"; }

}  // namespace zelmor::storage::testing
