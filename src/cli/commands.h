#pragma once
// The sub-commands of zelmor-cli. Each lives in its own cmd_<name>.cpp and
// returns the process exit status: 0 done, 1 environment (file, database),
// 2 bad input, 3 calculation overflow.

#include <string>
#include <vector>

namespace zelmor::cli {

using Args = std::vector<std::string>;  // the words after the sub-command

int runCheck(const Args& args);
int runCalc(const Args& args);
int runSolve(const Args& args);
int runPrint(const Args& args);
int runImport(const Args& args);
int runExport(const Args& args);
int runList(const Args& args);
int runCalcAll(const Args& args);
int runUpdateTables(const Args& args);

}  // namespace zelmor::cli
