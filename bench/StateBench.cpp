// SPDX-License-Identifier: GPL-3.0-or-later
// The store over the 100k-font library: opening a folder of 10,000 fonts, and
// expanding a collection of 1,000 folder members into its fonts.
#include "BenchFigures.h"

#include "BenchStore.h"

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

void selectNode10k(benchmark::State &state)
{
    AppState &store = BenchStore::instance().store();
    const FontNode wide = FontNode::folder(BenchFigures::libraryRootPath() + u"/Sans Serif/Mega Family"_s);
    store.selectNode(FontNode::folder(BenchFigures::libraryRootPath() + u"/Sans Serif"_s), 0);
    if (store.fileSystemService().children(wide.path()).size() < 10'000)
        state.SkipWithError("the wide folder is missing");
    for (auto _ : state)
        store.selectNode(wide, 1); // the 10,000-font column is rebuilt every time
}
BENCHMARK(selectNode10k)->Unit(benchmark::kMicrosecond)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

FontCollection thousandFolders()
{
    const QList<FontNode> folders = BenchStore::instance().store().fileSystemService().allFolders(BenchFigures::libraryRootPath());
    FontCollection collection = FontCollection::create(u"Many folders"_s);
    for (qsizetype i = 0; i < folders.size() && collection.members.size() < 1000; i += 9)
        collection.members.append({folders[i].path(), true});
    return collection;
}

void collectionFontsFirst(benchmark::State &state)
{
    AppState &store = BenchStore::instance().store();
    FontCollection collection = thousandFolders();
    for (auto _ : state) {
        collection.id = QUuid::createUuid(); // a new id: no memo to answer from
        benchmark::DoNotOptimize(store.allFontsInCollection(collection).size());
    }
}
BENCHMARK(collectionFontsFirst)->Unit(benchmark::kMillisecond)->Iterations(5)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void collectionFontsMemo(benchmark::State &state)
{
    AppState &store = BenchStore::instance().store();
    const FontCollection collection = thousandFolders();
    store.allFontsInCollection(collection);
    for (auto _ : state)
        benchmark::DoNotOptimize(store.allFontsInCollection(collection).size());
}
BENCHMARK(collectionFontsMemo)->Unit(benchmark::kMicrosecond)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void addStateFigures()
{
    BenchFigures::set("select-node-10k-us", BenchFigures::milliseconds("selectNode10k") * 1000.0);
    BenchFigures::set("collection-fonts-1000-members-ms", BenchFigures::milliseconds("collectionFontsFirst"));
    BenchFigures::set("collection-fonts-1000-members-memo-us", BenchFigures::milliseconds("collectionFontsMemo") * 1000.0);
}

const bool registered = BenchFigures::onFinish(addStateFigures);

} // namespace
