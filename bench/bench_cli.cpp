// zelmor-cli calc - over 10,000 generated reports as JSON Lines, end to end:
// one process reads the documents, calculates and writes the results.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include "report/report_json.h"
#include "support/report_generator.h"

namespace {

namespace fs = std::filesystem;

void BM_CliCalcBatch(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    // A folder of this run's own: benchmarks started side by side must not share their input.
    const fs::path dir = fs::temp_directory_path() / ("zelmor-bench-cli-" + std::to_string(::getpid()));
    fs::create_directories(dir / "data");
    const fs::path input = dir / "reports.jsonl";
    {
        std::ofstream out(input);
        zelmor::testing::ReportGenerator gen(42);
        for (int i = 0; i < count; ++i) out << zelmor::writeReportDocument(gen.next(), false) << '\n';
    }
    const std::string cli = std::string(ZELMOR_BINARY_DIR) + "/bin/zelmor-cli";
    const std::string command = cli + " calc - --today 2016-06-30 --data-dir " + (dir / "data").string() + " < " +
                                input.string() + " > " + (dir / "results.jsonl").string();
    // Exit status 3 (a generated report that overflows) still measures the batch.
    if (std::system(command.c_str()) == -1) state.SkipWithError("cannot start zelmor-cli");
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        const int rc = std::system(command.c_str());
        const auto end = std::chrono::steady_clock::now();
        if (rc == -1 || (WIFEXITED(rc) && WEXITSTATUS(rc) != 0 && WEXITSTATUS(rc) != 3))
            state.SkipWithError("zelmor-cli calc failed");
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
    }
    fs::remove_all(dir);
    state.counters["reports_per_second"] =
        benchmark::Counter(static_cast<double>(count) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate);
}
BENCHMARK(BM_CliCalcBatch)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
