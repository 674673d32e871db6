#pragma once
// The sub-commands of zelmor-cli. Each lives in its own cmd_<name>.cpp and
// returns the process exit status: 0 done, 1 environment (file, database),
// 2 bad input, 3 calculation overflow. The options are parsed before a
// command runs; a command throws UsageError for a command line it cannot take.

#include <string>
#include <vector>

namespace zelmor::cli {

using Args = std::vector<std::string>;  // the words after the sub-command
struct Options;

int runCheck(const Options& o);
int runCalc(const Options& o);
int runSolve(const Options& o);
int runPrint(const Options& o);
int runImport(const Options& o);
int runExport(const Options& o);
int runList(const Options& o);
int runCalcAll(const Options& o);
int runUpdateTables(const Options& o);
int runExplain(const Options& o);

}  // namespace zelmor::cli
