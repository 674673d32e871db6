#include "cli/cli_runner.h"

#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

extern char** environ;

namespace zelmor::test {

namespace fs = std::filesystem;

std::string cliPath() { return std::string(ZELMOR_BINARY_DIR) + "/bin/zelmor-cli"; }

std::string freshTempDir(const std::string& name) {
    const fs::path dir = fs::path(ZELMOR_BINARY_DIR) / "test-tmp" / (name + "-" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir);
    return dir.string();
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + path);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    if (!out) throw std::runtime_error("cannot write " + path);
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

pid_t spawnProgram(std::vector<std::string> args, const Redirects& io) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!io.in.empty()) posix_spawn_file_actions_addopen(&actions, 0, io.in.c_str(), O_RDONLY, 0);
    if (!io.out.empty()) posix_spawn_file_actions_addopen(&actions, 1, io.out.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    if (!io.err.empty()) posix_spawn_file_actions_addopen(&actions, 2, io.err.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    if (!io.workDir.empty()) posix_spawn_file_actions_addchdir_np(&actions, io.workDir.c_str());
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    const int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return rc == 0 ? pid : -1;
}

int waitFor(pid_t pid) {
    int status = 0;
    if (pid <= 0) return -1000;
    while (waitpid(pid, &status, 0) < 0)
        if (errno != EINTR) return -1000;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

CliRun runCli(const std::vector<std::string>& args, const std::string& stdinText, const std::string& workDir,
              const std::string& stdoutPath) {
    // Standard input and both outputs go through files: no pipe can fill up and stall.
    static int serial = 0;
    const std::string dir = freshTempDir("run" + std::to_string(++serial));
    const Redirects io{workDir, dir + "/stdin", stdoutPath.empty() ? dir + "/stdout" : stdoutPath, dir + "/stderr"};
    writeFile(io.in, stdinText);
    std::vector<std::string> argv{cliPath()};
    argv.insert(argv.end(), args.begin(), args.end());
    CliRun r;
    r.status = std::max(waitFor(spawnProgram(argv, io)), -1);
    if (stdoutPath.empty()) r.out = readFile(io.out);
    r.err = readFile(io.err);
    fs::remove_all(dir);
    return r;
}

}  // namespace zelmor::test
