// The desktop program on the offscreen platform: from nothing to the first
// entry screen shown (a new data folder, so the database is made on the way),
// the turn of an entry page (the page left taken into the fields, the next
// one built, filled and painted), Calculate to the summary sheet shown, and a
// change of result sheet.
//   build/bin/bench_shell
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include "report/report_json.h"
#include "shell/main_window.h"
#include "shell/messages.h"

namespace {

using zelmor::Date;
using zelmor::shell::AppOptions;
using zelmor::shell::MainWindow;

AppOptions optionsIn(const QTemporaryDir& dir) {
    return {dir.path(), dir.filePath("D2015.BRK"), *Date::fromYmd(2016, 6, 30)};
}

// The example couple's report, opened as the user would have typed it.
void fillExample(MainWindow& w) {
    QFile f(QStringLiteral(ZELMOR_SOURCE_DIR "/examples/couple.json"));
    if (!f.open(QIODevice::ReadOnly)) std::abort();
    const QByteArray text = f.readAll();
    w.loadReport(zelmor::parseReportDocument(std::string_view(text.constData(), text.size())));
}

// Constructed, shown and painted: what the user waits for at start.
std::unique_ptr<MainWindow> firstScreen(const AppOptions& options) {
    auto w = std::make_unique<MainWindow>(options);
    w->show();
    if (!QTest::qWaitForWindowExposed(w.get())) std::abort();
    QCoreApplication::processEvents();
    return w;
}

// The first start of the run pays for what a process starting cold pays for
// (fonts, styles, the database driver), so it is measured once on its own.
void BM_ColdStartToFirstScreen(benchmark::State& state) {
    for (auto _ : state) {
        QTemporaryDir dir;
        auto w = firstScreen(optionsIn(dir));
        benchmark::DoNotOptimize(w.get());
        state.PauseTiming();
        w.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ColdStartToFirstScreen)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_StartToFirstScreen(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto dir = std::make_unique<QTemporaryDir>();
        state.ResumeTiming();
        auto w = firstScreen(optionsIn(*dir));
        benchmark::DoNotOptimize(w.get());
        state.PauseTiming();
        w.reset();
        dir.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_StartToFirstScreen)->Unit(benchmark::kMillisecond);

void BM_PageTurn(benchmark::State& state) {
    QTemporaryDir dir;
    auto w = firstScreen(optionsIn(dir));
    int page = 1;
    for (auto _ : state) {
        page = page % 9 + 1;
        w->goPage(page);
        QCoreApplication::processEvents();  // the old page goes, the new one is painted
    }
    state.SetLabel("pages 1 to 9 in turn");
}
BENCHMARK(BM_PageTurn)->Unit(benchmark::kMillisecond);

// Part of every page turn: the draft made into text and handed to its writer
// (the disk is waited for on the writer's thread).
void BM_DraftWrite(benchmark::State& state) {
    QTemporaryDir dir;
    auto w = firstScreen(optionsIn(dir));
    for (auto _ : state) w->writeDraft();
}
BENCHMARK(BM_DraftWrite)->Unit(benchmark::kMillisecond);

// Calculate from an entry page to the summary sheet shown and painted, and
// back; the example couple's report is on the page.
void BM_CalculateToSummary(benchmark::State& state) {
    QTemporaryDir dir;
    auto w = firstScreen(optionsIn(dir));
    fillExample(*w);
    for (auto _ : state) {
        w->calculate();
        QCoreApplication::processEvents();
        state.PauseTiming();
        w->backToEditing();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_CalculateToSummary)->Unit(benchmark::kMillisecond);

void BM_SheetChange(benchmark::State& state) {
    QTemporaryDir dir;
    auto w = firstScreen(optionsIn(dir));
    fillExample(*w);
    w->calculate();
    int sheet = 1;
    for (auto _ : state) {
        sheet = sheet % 8 + 1;
        w->goSheet(sheet);
        QCoreApplication::processEvents();
    }
    state.SetLabel("sheets 1 to 8 in turn");
}
BENCHMARK(BM_SheetChange)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setLayoutDirection(Qt::RightToLeft);
    zelmor::shell::MessageRecorder quiet;  // no box may wait for an answer here
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
