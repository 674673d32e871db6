#include "cli/cli_runner.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

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

CliRun runCli(const std::vector<std::string>& args, const std::string& stdinText, const std::string& workDir,
              const std::string& stdoutPath) {
    // Standard input and both outputs go through files: no pipe can fill up and stall.
    static int serial = 0;
    const std::string dir = freshTempDir("run" + std::to_string(++serial));
    const std::string in = dir + "/stdin", out = stdoutPath.empty() ? dir + "/stdout" : stdoutPath,
                      err = dir + "/stderr";
    writeFile(in, stdinText);

    std::vector<std::string> argv{cliPath()};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char*> cargv;
    for (auto& a : argv) cargv.push_back(a.data());
    cargv.push_back(nullptr);

    const pid_t pid = ::fork();
    if (pid < 0) throw std::runtime_error("cannot start zelmor-cli");
    if (pid == 0) {
        if (!workDir.empty() && ::chdir(workDir.c_str()) != 0) ::_exit(126);
        const int fin = ::open(in.c_str(), O_RDONLY);
        const int fout = ::open(out.c_str(), O_WRONLY | O_CREAT | (stdoutPath.empty() ? O_TRUNC : 0), 0644);
        const int ferr = ::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fin < 0 || fout < 0 || ferr < 0) ::_exit(126);
        ::dup2(fin, 0);
        ::dup2(fout, 1);
        ::dup2(ferr, 2);
        ::execv(cargv[0], cargv.data());
        ::_exit(127);
    }
    int wstatus = 0;
    while (::waitpid(pid, &wstatus, 0) < 0 && errno == EINTR) {
    }
    CliRun r;
    r.status = WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : -1;
    if (stdoutPath.empty()) r.out = readFile(out);
    r.err = readFile(err);
    fs::remove_all(dir);
    return r;
}

}  // namespace zelmor::test
