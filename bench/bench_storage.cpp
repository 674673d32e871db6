// The report database: a save (one transaction, written through to disk), an
// open by id, and the batch read of all stored reports that calc-all runs on.
//
// The calc-all figure of the whole command (read, calculate, write a result
// line) is measured on the command itself, over 100,000 stored reports:
//   zelmor-cli import - --data-dir D < reports.jsonl
//   time zelmor-cli calc-all --data-dir D --today 2016-06-30 > /dev/null
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <unistd.h>

#include <memory>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "storage/report_db.h"

namespace {

using namespace zelmor;
using namespace zelmor::storage;

// A report with every field filled.
NishumInput filledReport(const std::string& id, int seed) {
    NishumInput r;
    int i = 0;
    for (const FieldDef& f : allFields()) {
        const int k = seed + i++;
        switch (f.type) {
            case FieldType::Text: f.ref<std::string>(r) = std::to_string(k % 100000); break;
            case FieldType::Date: f.ref<Date>(r) = Date::fromSerial(42000 + k % 300); break;
            case FieldType::Boolean: f.ref<bool>(r) = k % 2; break;
            case FieldType::Amount: f.ref<Amount>(r) = Amount(k % 500000); break;
            case FieldType::Number: f.ref<std::int32_t>(r) = k % 100; break;
            case FieldType::Count: f.ref<std::int16_t>(r) = static_cast<std::int16_t>(k % 5); break;
        }
    }
    r.Pratim.IDM = id;
    r.Nekudot.N260 = SumN260(r.Nekudot);
    return r;
}

struct BenchDb {
    explicit BenchDb(const char* name) {
        dir = std::filesystem::temp_directory_path() / ("zelmor-bench-" + std::string(name) + "-" +
                                                          std::to_string(::getpid()));
        std::filesystem::remove_all(dir);
        db = std::make_unique<ReportDb>((dir / "D2015.BRK").string());
        db->ensureReady();
    }
    ~BenchDb() {
        db.reset();
        std::filesystem::remove_all(dir);
    }
    void fill(int n) {
        std::vector<NishumInput> batch;
        for (int i = 0; i < n; ++i) {
            batch.push_back(filledReport(std::to_string(100000000 + i), i));
            if (batch.size() == 1000 || i == n - 1) {
                db->saveMany(batch);
                batch.clear();
            }
        }
    }
    std::filesystem::path dir;
    std::unique_ptr<ReportDb> db;
};

void BM_SaveReport(benchmark::State& state) {
    BenchDb b("save");
    int k = 0;
    for (auto _ : state) {
        const StoreOutcome out = b.db->saveNishum(filledReport(std::to_string(100 + k % 100), k));
        if (!out.ok) state.SkipWithError(out.detail.c_str());
        ++k;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SaveReport)->Unit(benchmark::kMillisecond);

void BM_OpenReport(benchmark::State& state) {
    BenchDb b("open");
    b.fill(1000);
    NishumInput r;
    int k = 0;
    for (auto _ : state) {
        const StoreOutcome out = b.db->openNishum(std::to_string(100000000 + k++ % 1000), r);
        if (!out.ok) state.SkipWithError(out.detail.c_str());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_OpenReport)->Unit(benchmark::kMicrosecond);

void BM_ReadAllStored(benchmark::State& state) {
    BenchDb b("readall");
    b.fill(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::int64_t sum = 0;
        b.db->forEachStored([&](const StoredReport& s) { sum += s.report.Yegia.N150.value(); });
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ReadAllStored)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);  // the SQL plug-ins need an application object
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
