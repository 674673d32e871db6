// Sub-commands that are not built yet answer so, with the environment status.
#include <cstdio>

#include "cli/commands.h"

namespace zelmor::cli {
namespace {
int notYet(const char* name) {
    std::fprintf(stderr, "zelmor-cli %s: not available in this build\n", name);
    return 1;
}
}  // namespace

int runSolve(const Args&) { return notYet("solve"); }
int runImport(const Args&) { return notYet("import"); }
int runExport(const Args&) { return notYet("export"); }
int runList(const Args&) { return notYet("list"); }
int runCalcAll(const Args&) { return notYet("calc-all"); }

}  // namespace zelmor::cli
