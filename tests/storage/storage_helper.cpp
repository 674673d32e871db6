// A worker process of the storage tests, run many at once against one database.
//   storage_helper LOCATION WORKER COUNT
// saves and reads COUNT times: its own reports W<WORKER>-0..49, and S0..S19
// that every worker writes. Exit status 0 iff every step held; at the first
// failure it says what and stops with 1.
#include <QCoreApplication>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "storage/report_db.h"
#include "storage/report_pattern.h"

using namespace zelmor;
using namespace zelmor::storage;
using namespace zelmor::storage::testing;

namespace {

void expect(bool held, const std::string& what) {
    if (!held) throw std::runtime_error(what);
}

void work(ReportDb& db, int worker, int count) {
    for (int i = 0; i < count; ++i) {
        const int version = worker * 100000 + i;
        // A report of this worker alone: it must come back exactly.
        const std::string own = "W" + std::to_string(worker) + "-" + std::to_string(i % 50);
        StoreOutcome out = db.saveNishum(patternReport(own, version));
        expect(out.ok, "save " + own + ": " + out.detail);
        NishumInput r;
        out = db.openNishum(own, r);
        expect(out.ok, "open " + own + ": " + out.detail);
        expect(patternVersion(r) == version && patternProblem(r, own).empty(),
               own + " came back as another report: " + patternProblem(r, own));
        // A report that every worker writes: whole, whichever version.
        const std::string shared = "S" + std::to_string(i % 20);
        if (db.openNishum(shared, r).ok) expect(patternProblem(r, shared).empty(), shared + ": " + patternProblem(r, shared));
        out = db.saveNishum(patternReport(shared, version));
        expect(out.ok, "save " + shared + ": " + out.detail);
        if (i % 50 == 49) expect(!db.listNames(ListOrder::ByName).empty(), "empty list");
    }
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: storage_helper LOCATION WORKER COUNT\n");
        return 2;
    }
    try {
        ReportDb db(argv[1]);
        work(db, std::stoi(argv[2]), std::stoi(argv[3]));
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "storage_helper worker %s: %s\n", argv[2], e.what());
        return 1;
    }
}
