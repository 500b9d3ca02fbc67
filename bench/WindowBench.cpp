// SPDX-License-Identifier: GPL-3.0-or-later
// The whole window: Morvane itself started on a saved 100k-font library, from its
// application object to the first paint and its resident memory once the library is
// scanned and shown; and the search results view painting 10,000 hits.
#include "BenchFigures.h"
#include "FontCorpus.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/search/SearchResultsView.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

struct Startup
{
    double firstPaintMs = -1;
    double rssMb = -1;
};

bool writeSources(const QString &home, const QString &library)
{
    const QString data = home + u"/.local/share"_s;
    QDir().mkpath(data + u"/Morvane"_s);
    QFile sources(data + u"/Morvane/sources.json"_s);
    if (!sources.open(QIODevice::WriteOnly))
        return false;
    sources.write("[{\"id\":\"2B7F0C1E-5A8D-4C3B-9E21-7D6A4F0B9C11\",\"name\":\"Library\",\"path\":\"" + library.toUtf8()
                  + "\"}]");
    return true;
}

// One run of the real program in `home`, until it reports its start.
Startup startIn(const QString &home)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"HOME"_s, home);
    env.insert(u"XDG_DATA_HOME"_s, home + u"/.local/share"_s);
    env.insert(u"XDG_CONFIG_HOME"_s, home + u"/.config"_s);
    env.insert(u"XDG_CACHE_HOME"_s, home + u"/.cache"_s);
    env.insert(u"XDG_RUNTIME_DIR"_s, home);
    env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    env.insert(u"MORVANE_STARTUP_REPORT"_s, u"1"_s);
    QProcess morvane;
    morvane.setProcessEnvironment(env);
    morvane.start(QStringLiteral(MORVANE_BINARY), {});
    if (!morvane.waitForFinished(600'000) || morvane.exitCode() != 0)
        return {};
    Startup figures;
    for (const QByteArray &line : morvane.readAllStandardOutput().split('\n')) {
        if (line.startsWith("first-paint-ms: "))
            figures.firstPaintMs = line.mid(16).toDouble();
        else if (line.startsWith("rss-mb: "))
            figures.rssMb = line.mid(8).toDouble();
    }
    return figures;
}

// One run of the real program in a home of its own whose saved library is the 100k fonts.
Startup startOnSavedLibrary()
{
    QTemporaryDir home(BenchFigures::dataDirectory() + u"/window-home-XXXXXX"_s);
    if (!writeSources(home.path(), BenchFigures::libraryRootPath()))
        return {};
    return startIn(home.path());
}

// One start per iteration; the fastest start is the program's own cost, and memory is
// the same in every run (the largest is kept).
void reportStarts(benchmark::State &state, const std::function<Startup()> &start, const char *paintFigure,
                  const char *rssFigure)
{
    std::vector<double> paints;
    std::vector<double> rss;
    for (auto _ : state) {
        const Startup run = start();
        if (run.firstPaintMs < 0 || run.rssMb < 0) {
            state.SkipWithError("Morvane did not report its start");
            return;
        }
        paints.push_back(run.firstPaintMs);
        rss.push_back(run.rssMb);
    }
    BenchFigures::set(paintFigure, BenchFigures::fastest(paints));
    BenchFigures::set(rssFigure, *std::max_element(rss.begin(), rss.end()));
}

void windowStartup(benchmark::State &state)
{
    reportStarts(state, startOnSavedLibrary, "window-first-paint-100k-ms", "window-rss-100k-mb");
}
BENCHMARK(windowStartup)->Unit(benchmark::kMillisecond)->Iterations(3);

// A start with 100,000 fonts active, their links in place: the activation benchmarks'
// library of real fonts, all of it active in a home of its own (linked once, then kept).
void windowStartup100kActive(benchmark::State &state)
{
    const QString home = BenchFigures::dataDirectory() + u"/window-active-home"_s;
    const QString root = BenchFigures::dataDirectory() + u"/fonts/store"_s;
    QStringList fonts = FontCorpus::fonts(u"store/Active"_s, 10'000);
    fonts += FontCorpus::fonts(u"store/Batch"_s, 10'000);
    fonts += FontCorpus::fonts(u"store/More"_s, 80'000);
    {
        FontActivationService links(home + u"/.local/share/fonts/Morvane"_s);
        if (links.links().size() != fonts.size()) {
            links.removeLinks(links.links().keys());
            links.activateFonts(fonts);
        }
        PersistenceService saved(home + u"/.local/share/Morvane"_s);
        saved.saveActivatedFonts(QSet<QString>(fonts.cbegin(), fonts.cend()));
        saved.waitForWrites();
        if (links.links().size() != fonts.size() || !writeSources(home, root)) {
            state.SkipWithError("the 100,000 fonts could not be activated");
            return;
        }
    }
    reportStarts(state, [&] { return startIn(home); }, "window-first-paint-100k-active-ms", "window-rss-100k-active-mb");
}
BENCHMARK(windowStartup100kActive)->Unit(benchmark::kMillisecond)->Iterations(3);

// 10,000 folders whose names hold the query, as the library's refresh indexes them.
QList<FolderSearchResult> searchIndex(const FolderSource &source)
{
    QList<FolderSearchResult> index;
    const QString root = BenchFigures::libraryRootPath();
    for (int i = 0; i < 10'000; ++i) {
        index.append(FolderSearchResult::make(FontNode::folder(root + u"/Hit Family %1"_s.arg(i, 5, 10, QChar(u'0'))),
                                              source, {}));
    }
    return index;
}

void searchResultsPaint10k(benchmark::State &state)
{
    BenchFigures::NoActivation activation;
    PersistenceService persistence(BenchFigures::dataDirectory() + u"/search-results"_s);
    AppState store(activation, persistence);
    const FolderSource source{QUuid::createUuid(), BenchFigures::libraryRootPath(), u"Library"_s};
    store.setSourcesForTesting({source});
    auto scan = std::make_shared<FileSystemService>();
    scan->freeze();
    store.installLibrary(scan, searchIndex(source));
    SearchResultsView view(store);
    view.resize(900, 600);
    view.show();
    QApplication::processEvents();
    for (auto _ : state) {
        state.PauseTiming();
        // The user's query; its results arrive after the pause that typing gets.
        store.setSearchQuery(QString());
        store.setSearchQuery(u"Family"_s);
        while (store.isSearchingFolders())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        state.ResumeTiming();
        QApplication::processEvents(); // the list lays the new rows out
        view.list()->viewport()->repaint();
        state.PauseTiming();
        if (view.list()->model()->rowCount() != 10'000)
            state.SkipWithError("the hits did not show");
        state.ResumeTiming();
    }
}
BENCHMARK(searchResultsPaint10k)->Unit(benchmark::kMillisecond)->Iterations(20)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void addWindowFigures()
{
    BenchFigures::set("search-results-10k-paint-ms", BenchFigures::milliseconds("searchResultsPaint10k"));
}

const bool registered = BenchFigures::onFinish(addWindowFigures);

} // namespace
