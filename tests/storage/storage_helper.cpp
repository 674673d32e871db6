// A worker process of the storage tests, run many at once against one database.
//   storage_helper load LOCATION WORKER COUNT  saves and reads COUNT times; exit 0 iff every step held
//   storage_helper crash LOCATION SEED REPORTS saves reports C0..C<REPORTS-1> until it is killed
#include <QCoreApplication>
#include <cstdio>
#include <random>
#include <string>

#include "storage/report_db.h"
#include "storage/report_pattern.h"

using namespace zelmor;
using namespace zelmor::storage;
using namespace zelmor::storage::testing;

namespace {

int load(ReportDb& db, int worker, int count) {
    int errors = 0;
    auto fail = [&](const std::string& what) {
        if (++errors <= 10) std::fprintf(stderr, "worker %d: %s\n", worker, what.c_str());
    };
    for (int i = 0; i < count; ++i) {
        const int version = worker * 100000 + i;
        // A report of this worker alone: it must come back exactly.
        const std::string own = "W" + std::to_string(worker) + "-" + std::to_string(i % 50);
        StoreOutcome out = db.saveNishum(patternReport(own, version));
        if (!out.ok) fail("save " + own + ": " + out.text);
        NishumInput r;
        out = db.openNishum(own, r);
        if (!out.ok) fail("open " + own + ": " + out.text);
        else if (patternVersion(r) != version || !patternProblem(r, own).empty())
            fail(own + " came back as another report: " + patternProblem(r, own));
        // A report that every worker writes: whole, whichever version.
        const std::string shared = "S" + std::to_string(i % 20);
        out = db.openNishum(shared, r);
        if (out.ok && !patternProblem(r, shared).empty()) fail(shared + ": " + patternProblem(r, shared));
        out = db.saveNishum(patternReport(shared, version));
        if (!out.ok) fail("save " + shared + ": " + out.text);
        if (i % 50 == 49) {
            try {
                if (db.listNames(ListOrder::ByName).empty()) fail("empty list");
            } catch (const std::exception& e) {
                fail(std::string("list: ") + e.what());
            }
        }
    }
    return errors ? 1 : 0;
}

int crash(ReportDb& db, int seed, int reports) {
    std::mt19937 random(seed);
    for (int k = 0;; ++k) {
        const std::string id = "C" + std::to_string(random() % reports);
        const StoreOutcome out = db.saveNishum(patternReport(id, seed * 100000 + k % 100000));
        if (!out.ok) {
            std::fprintf(stderr, "save %s: %s\n", id.c_str(), out.text.c_str());
            return 1;
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc != 5) {
        std::fprintf(stderr, "usage: storage_helper load|crash LOCATION N M\n");
        return 2;
    }
    const std::string mode = argv[1];
    try {
        ReportDb db(argv[2]);
        if (mode == "load") return load(db, std::stoi(argv[3]), std::stoi(argv[4]));
        if (mode == "crash") return crash(db, std::stoi(argv[3]), std::stoi(argv[4]));
    } catch (const std::exception& e) {
        std::fprintf(stderr, "storage_helper: %s\n", e.what());
        return 1;
    }
    return 2;
}
