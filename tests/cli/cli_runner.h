#pragma once
// Runs the built zelmor-cli, or another program, as a child process, the way a
// user or a script does, and captures what it prints and its exit status.

#include <sys/types.h>

#include <string>
#include <vector>

namespace zelmor::test {

struct CliRun {
    int status = -1;  // exit status; -1 when the program did not exit normally
    std::string out;  // standard output
    std::string err;  // standard error
};

// The zelmor-cli of this build tree.
std::string cliPath();

// Runs zelmor-cli with args in workDir (empty: the current folder), feeding
// stdinText on standard input. With stdoutPath, standard output goes to that
// file (a device such as /dev/full too) and out stays empty.
CliRun runCli(const std::vector<std::string>& args, const std::string& stdinText = {},
              const std::string& workDir = {}, const std::string& stdoutPath = {});

// Where a started program runs and what its standard files are (empty: as ours;
// outputs are appended to).
struct Redirects {
    std::string workDir, in, out, err;
};
// Starts a program (looked up on PATH); its process id, or -1.
pid_t spawnProgram(std::vector<std::string> args, const Redirects& io = {});
// The exit status of a child; -signal when a signal ended it, -1000 for no child.
int waitFor(pid_t pid);

// A fresh empty folder under the build tree for one test.
std::string freshTempDir(const std::string& name);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& text);
// The lines of a text, without their ends.
std::vector<std::string> lines(const std::string& text);

}  // namespace zelmor::test
