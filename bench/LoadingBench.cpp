// SPDX-License-Identifier: GPL-3.0-or-later
// The store's own costs: a full refresh of the 100k-font library from request to
// install, the folder-search filter over its index, and a batch of 2,000 fonts
// against a service that does nothing.
#include "BenchFigures.h"

#include "BenchStore.h"

#include <QElapsedTimer>
#include <QEventLoop>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

constexpr double kRefreshPauseMs = 50.0;

void refresh100k(benchmark::State &state)
{
    BenchStore &store = BenchStore::instance();
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        store.refresh();
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) / 1e9);
    }
}
BENCHMARK(refresh100k)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(2)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void searchFilter10k(benchmark::State &state)
{
    const QList<FolderSearchResult> index = BenchStore::instance().store().searchIndex();
    if (index.size() < 9'000)
        state.SkipWithError("the index is too small");
    for (auto _ : state)
        benchmark::DoNotOptimize(AppState::filterIndex(index, u"sans"_s, {}).size());
}
BENCHMARK(searchFilter10k)->Unit(benchmark::kMillisecond)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void batch2000(benchmark::State &state)
{
    AppState &store = BenchStore::instance().store();
    QList<FontNode> fonts;
    for (const FontNode &font : store.fileSystemService().allFonts(BenchFigures::libraryRootPath())) {
        fonts.append(font);
        if (fonts.size() == 2000)
            break;
    }
    for (auto _ : state) {
        QEventLoop loop;
        const auto connection = QObject::connect(&store, &AppState::isProcessingChanged, &loop, [&] {
            if (!store.isProcessing())
                loop.quit();
        });
        QElapsedTimer timer;
        timer.start();
        store.setActivation(fonts, store.activatedFonts().isEmpty());
        loop.exec();
        state.SetIterationTime(static_cast<double>(timer.nsecsElapsed()) / 1e9);
        QObject::disconnect(connection);
    }
}
BENCHMARK(batch2000)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(2)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void addLoadingFigures()
{
    const double refresh = BenchFigures::milliseconds("refresh100k");
    BenchFigures::set("refresh-100k-ms", refresh);
    if (refresh > kRefreshPauseMs) {
        BenchFigures::set("refresh-100k-after-pause-ms", refresh - kRefreshPauseMs);
        if (const double scan = BenchFigures::milliseconds("scan100k"); scan > 0)
            BenchFigures::set("refresh-after-pause-ratio-vs-scan", (refresh - kRefreshPauseMs) / scan);
    }
    BenchFigures::set("search-filter-10k-folders-ms", BenchFigures::milliseconds("searchFilter10k"));
    BenchFigures::set("batch-2000-overhead-ms", BenchFigures::milliseconds("batch2000"));
}

const bool registered = BenchFigures::onFinish(addLoadingFigures);

} // namespace
