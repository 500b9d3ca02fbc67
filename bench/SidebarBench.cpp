// SPDX-License-Identifier: GPL-3.0-or-later
// The sidebar and the collection view on real widgets (offscreen), over the 100k-font
// library: the first paint of 1,000 collections of 100 members after the store loads
// them, and opening a collection of 10,000 members.
#include "BenchFigures.h"

#include "discovery/FileSystemService.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/collection/CollectionView.h"
#include "ui/collection/CollectionMemberList.h"
#include "ui/sidebar/SidebarView.h"

#include <QApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QStackedWidget>

#include <benchmark/benchmark.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

// The library scanned once, as the store's refresh installs it.
std::shared_ptr<FileSystemService> libraryScan()
{
    static const std::shared_ptr<FileSystemService> scan = [] {
        auto service = std::make_shared<FileSystemService>();
        service->insertPreScannedRoot(BenchFigures::libraryRootPath());
        service->deepScan(BenchFigures::libraryRootPath());
        service->freeze();
        return service;
    }();
    return scan;
}

// `count` collections of `members` fonts each, saved where a store of their own loads them.
QString savedCollections(const QString &name, int count, int members)
{
    const QString folder = BenchFigures::dataDirectory() + u"/"_s + name;
    if (QFile::exists(folder + u"/collections.json"_s))
        return folder;
    QDir().mkpath(folder);
    const std::span<const FontNode> fonts = libraryScan()->allFonts(BenchFigures::libraryRootPath());
    QList<FontCollection> collections;
    qsizetype next = 0;
    for (int c = 0; c < count; ++c) {
        FontCollection collection = FontCollection::create(u"Collection %1"_s.arg(c, 4, 10, QChar(u'0')));
        for (int m = 0; m < members; ++m)
            collection.members.append({fonts[static_cast<size_t>((next += 7) % static_cast<qsizetype>(fonts.size()))].path(), false});
        collections.append(collection);
    }
    PersistenceService writer(folder);
    writer.saveCollections(collections);
    writer.waitForWrites();
    return folder;
}

// A store over the saved collections whose refresh installs the scanned library.
struct LoadedStore
{
    explicit LoadedStore(const QString &folder)
        : persistence(folder)
    {
        store.setLibraryScannerForTesting([](const AppState::LibraryScanRequest &, const CancellationToken &) {
            return AppState::LibraryScan{libraryScan(), {}, {}, 0};
        });
    }
    void load()
    {
        store.loadPersistedState();
        store.installLibrary(libraryScan(), {}); // what the refresh brings
    }
    BenchFigures::NoActivation activation;
    PersistenceService persistence;
    AppState store{activation, persistence};
};

void sidebarPaint1000Collections(benchmark::State &state)
{
    const QString folder = savedCollections(u"sidebar-1000x100"_s, 1000, 100);
    for (auto _ : state) {
        state.PauseTiming();
        auto loaded = std::make_unique<LoadedStore>(folder);
        auto sidebar = std::make_unique<SidebarView>(loaded->store);
        sidebar->resize(240, 900);
        sidebar->show();
        QApplication::processEvents();
        loaded->load(); // the lists are reset; their first paint is what a user waits for
        state.ResumeTiming();
        QApplication::sendPostedEvents(); // the layout the new rows ask for
        sidebar->repaint();
        state.PauseTiming();
        if (loaded->store.collections().size() != 1000)
            state.SkipWithError("the collections did not load");
        sidebar.reset();
        loaded.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(sidebarPaint1000Collections)->Unit(benchmark::kMillisecond)->Iterations(5)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void collectionViewOpen10k(benchmark::State &state)
{
    LoadedStore loaded(savedCollections(u"collection-10000"_s, 1, 10'000));
    loaded.load();
    const FontCollection collection = loaded.store.collections().value(0);
    // The window: the sidebar shows the collection's row before it is clicked, and
    // the detail area beside it takes the collection's view.
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *sidebar = new SidebarView(loaded.store);
    layout->addWidget(sidebar);
    auto *detail = new QStackedWidget;
    layout->addWidget(detail, 1);
    window.resize(1300, 800);
    window.show();
    QApplication::processEvents();
    std::unique_ptr<CollectionView> view;
    for (auto _ : state) {
        state.PauseTiming();
        view.reset();
        loaded.store.setSidebarSelection(std::nullopt);
        loaded.store.installLibrary(libraryScan(), {}); // every memo gone, as after a rescan
        QApplication::processEvents();
        sidebar->repaint(); // the row's counts, as the user sees them before the click
        state.ResumeTiming();
        // The click selects it; the window makes its view anew.
        loaded.store.setSidebarSelection(SidebarItem(collection));
        view = std::make_unique<CollectionView>(loaded.store, collection.id, detail);
        detail->addWidget(view.get());
        detail->setCurrentWidget(view.get());
        QApplication::processEvents(); // shown and laid out
        view->repaint();
        state.PauseTiming();
        if (view->memberList()->model()->rowCount() != 10'000)
            state.SkipWithError("the members did not show");
        state.ResumeTiming();
    }
    view.reset();
}
BENCHMARK(collectionViewOpen10k)->Unit(benchmark::kMillisecond)->Iterations(10)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void addSidebarFigures()
{
    BenchFigures::set("sidebar-paint-1000-collections-ms", BenchFigures::milliseconds("sidebarPaint1000Collections"));
    BenchFigures::set("collection-view-open-10k-ms", BenchFigures::milliseconds("collectionViewOpen10k"));
}

const bool registered = BenchFigures::onFinish(addSidebarFigures);

} // namespace
