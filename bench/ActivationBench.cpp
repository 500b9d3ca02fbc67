// SPDX-License-Identifier: GPL-3.0-or-later
// Activation through the store with the real fontconfig service, as a user's clicks
// and a start-up take it: a folder of 10,000 fonts with 10,000 already active, one
// toggle with 20,000 and 100,000 active, and a start-up that restores 20,000.
#include "BenchFigures.h"
#include "FontCorpus.h"

#include "services/FontActivationService.h"
#include "state/AppState.h"

#include <QCoroTask>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <benchmark/benchmark.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

QString corpusRoot()
{
    return BenchFigures::dataDirectory() + u"/fonts/store"_s;
}

// Returns once the store has no batch and no refresh running.
void waitUntilIdle(AppState &store)
{
    QEventLoop loop;
    const auto check = [&] {
        if (!store.isProcessing() && !store.isIndexing())
            loop.quit();
    };
    QObject::connect(&store, &AppState::isProcessingChanged, &loop, check);
    QObject::connect(&store, &AppState::isIndexingChanged, &loop, check);
    if (store.isProcessing() || store.isIndexing())
        loop.exec();
}

// A store over the corpus with its own link folder, so no other benchmark's service
// shares its links.
class ActivationStore
{
public:
    static ActivationStore &instance()
    {
        static ActivationStore store;
        return store;
    }

    static QString linkFolder()
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts/MorvaneBench"_s;
    }
    static QString storageFolder() { return BenchFigures::dataDirectory() + u"/activation-store"_s; }

    AppState &store() { return m_store; }
    PersistenceService &persistence() { return m_persistence; }

    // Flips a folder or a font below the corpus, as the row's button does.
    void toggle(const FontNode &node)
    {
        m_store.toggleActivation(node);
        waitUntilIdle(m_store);
    }
    FontNode folder(const QString &name) const { return FontNode::folder(corpusRoot() + u'/' + name); }
    // Active fonts kept across the benchmarks, in steps: 10,000, then 20,000, then 100,000.
    bool ensureActive(qsizetype count)
    {
        for (const QString &name : {u"Active"_s, u"Batch"_s, u"More"_s}) {
            if (m_store.activatedFonts().size() >= count)
                break;
            if (m_store.activationState(folder(name)) != ActivationState::Active)
                toggle(folder(name));
        }
        return m_store.activatedFonts().size() == count;
    }
    // Deactivated at the end, so the next run starts from nothing: through the store, as
    // "Deactivate All Fonts" does, so whole folders go back ready for the next benchmark.
    void clear()
    {
        QCoro::waitFor(m_store.deactivateAllFonts());
        waitUntilIdle(m_store);
        m_activation.removeLinks(m_activation.links().keys()); // whatever an interrupted run left
    }

private:
    ActivationStore()
        : m_activation(linkFolder())
        , m_persistence(storageFolder())
        , m_store(m_activation, m_persistence)
    {
        FontCorpus::fonts(u"store/Active"_s, 10'000);
        FontCorpus::fonts(u"store/Batch"_s, 10'000);
        FontCorpus::fonts(u"store/More"_s, 80'000);
        FontCorpus::fonts(u"store/Single"_s, 1);
        m_activation.removeLinks(m_activation.links().keys()); // whatever an interrupted run left
        const FolderSource source{QUuid::createUuid(), corpusRoot(), u"store"_s};
        m_store.setCatalogueFile(BenchFigures::dataDirectory() + u"/catalog-activation.sqlite"_s);
        m_store.setCatalogueSettleTime(0);
        m_store.setSourcesForTesting({source});
        m_store.refreshFileSystem();
        waitUntilIdle(m_store);
        // After the scan the library is catalogued and its folders made ready, as a
        // user's long have been by the time they click.
        QElapsedTimer waited;
        waited.start();
        while ((!m_store.waitForCatalogue(50) || m_activation.readyFonts() < 100'000) && waited.elapsed() < 30 * 60'000)
            QThread::msleep(50);
    }

    FontActivationService m_activation;
    PersistenceService m_persistence;
    AppState m_store;
};

void activate10000(benchmark::State &state)
{
    ActivationStore &bench = ActivationStore::instance();
    if (!bench.ensureActive(10'000)) {
        state.SkipWithError("the first 10,000 fonts did not activate");
        return;
    }
    for (auto _ : state) {
        bench.toggle(bench.folder(u"Batch"_s));
        const qsizetype active = bench.store().activatedFonts().size();
        state.PauseTiming();
        bench.toggle(bench.folder(u"Batch"_s));
        state.ResumeTiming();
        if (active != 20'000) {
            state.SkipWithError("a font did not activate");
            break;
        }
    }
}
BENCHMARK(activate10000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(2)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// By hand: `ln -s` of the same fonts into one folder, then one `fc-cache` of it.
void activate10000Manual(benchmark::State &state)
{
    const QString list = BenchFigures::dataDirectory() + u"/batch-10000.txt"_s;
    {
        QFile file(list);
        if (!file.open(QIODevice::WriteOnly)) {
            state.SkipWithError("can't write the font list");
            return;
        }
        for (const QString &font : FontCorpus::fonts(u"store/Batch"_s, 10'000))
            file.write(QFile::encodeName(font) + '\n');
    }
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts/by-hand-10000"_s;
    for (auto _ : state) {
        state.PauseTiming();
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        state.ResumeTiming();
        QProcess::execute(u"sh"_s, {u"-c"_s, u"xargs -d '\\n' ln -s -t \"$1\" < \"$2\""_s, u"sh"_s, folder, list});
        QProcess::execute(u"fc-cache"_s, {folder});
    }
    QDir(folder).removeRecursively();
    QProcess::execute(u"fc-cache"_s, {folder.section(u'/', 0, -2)});
}
BENCHMARK(activate10000Manual)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(2)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// One font on, then off, each a toggle; the save is scheduled, and written between
// toggles as it is between a user's clicks.
void toggleOne(benchmark::State &state, qsizetype active)
{
    ActivationStore &bench = ActivationStore::instance();
    if (!bench.ensureActive(active)) {
        state.SkipWithError("the active set could not be built");
        return;
    }
    const FontNode font = FontNode::fontFile(FontCorpus::fonts(u"store/Single"_s, 1).first());
    for (auto _ : state) {
        bench.toggle(font);
        const qsizetype now = bench.store().activatedFonts().size();
        const bool toggled = now == active + 1 || now == active;
        state.PauseTiming();
        bench.persistence().waitForWrites();
        state.ResumeTiming();
        if (!toggled) {
            state.SkipWithError("the toggle did not take");
            break;
        }
    }
    if (bench.store().activatedFonts().contains(font.path()))
        bench.toggle(font);
}

void toggleOneWith20000(benchmark::State &state)
{
    toggleOne(state, 20'000);
}
BENCHMARK(toggleOneWith20000)->Unit(benchmark::kMillisecond)->Iterations(10)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// A start-up: new services and store, the saved `count` restored (already linked),
// until the restore's card goes.
void restore(benchmark::State &state, qsizetype count)
{
    ActivationStore &bench = ActivationStore::instance();
    if (!bench.ensureActive(count)) {
        state.SkipWithError("the active set could not be built");
        return;
    }
    bench.persistence().waitForWrites();
    for (auto _ : state) {
        auto activation = std::make_unique<FontActivationService>(ActivationStore::linkFolder());
        auto persistence = std::make_unique<PersistenceService>(ActivationStore::storageFolder());
        auto store = std::make_unique<AppState>(*activation, *persistence);
        // One Morvane runs per account: this one's library work (cataloguing, making
        // folders ready) would run beside the first store's, as no real start does.
        store->setCatalogueSettleTime(24 * 3600 * 1000);
        store->loadPersistedState();
        waitUntilIdle(*store);
        state.PauseTiming();
        const qsizetype restored = store->activatedFonts().size();
        store.reset();
        persistence.reset();
        activation.reset();
        state.ResumeTiming();
        if (restored != count) {
            state.SkipWithError("the restore lost fonts");
            break;
        }
    }
}

void restore20000(benchmark::State &state)
{
    restore(state, 20'000);
}
BENCHMARK(restore20000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void toggleOneWith100000(benchmark::State &state)
{
    toggleOne(state, 100'000);
    ActivationStore::instance().clear();
}
BENCHMARK(toggleOneWith100000)->Unit(benchmark::kMillisecond)->Iterations(10)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// The whole library on, until the card goes; then "Deactivate All Fonts" likewise.
void activateAll100k(benchmark::State &state)
{
    ActivationStore &bench = ActivationStore::instance();
    bench.clear();
    const FontNode all = FontNode::folder(corpusRoot());
    for (auto _ : state) {
        bench.toggle(all);
        state.PauseTiming();
        const qsizetype active = bench.store().activatedFonts().size();
        QElapsedTimer off;
        off.start();
        QCoro::waitFor(bench.store().deactivateAllFonts());
        waitUntilIdle(bench.store());
        BenchFigures::recordMilliseconds("deactivateAll100k", off.nsecsElapsed() / 1e6);
        state.ResumeTiming();
        if (active != 100'001 || !bench.store().activatedFonts().isEmpty()) {
            state.SkipWithError("the library did not go on and off whole");
            break;
        }
    }
}
BENCHMARK(activateAll100k)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(1);

void restore100000(benchmark::State &state)
{
    restore(state, 100'000);
    ActivationStore::instance().clear(); // no other benchmark's fc-list reads 100,000 fonts of ours
}
BENCHMARK(restore100000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(2)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void addActivationFigures()
{
    const double ours = BenchFigures::milliseconds("activate10000");
    const double manual = BenchFigures::milliseconds("activate10000Manual");
    BenchFigures::set("activate-10000-ms", ours);
    BenchFigures::set("activate-10000-manual-ms", manual);
    if (ours > 0 && manual > 0)
        BenchFigures::set("activate-10000-ratio-vs-manual", ours / manual);
    BenchFigures::set("toggle-one-with-20000-ms", BenchFigures::milliseconds("toggleOneWith20000"));
    BenchFigures::set("toggle-one-with-100000-ms", BenchFigures::milliseconds("toggleOneWith100000"));
    BenchFigures::set("restore-20000-ms", BenchFigures::milliseconds("restore20000"));
    BenchFigures::set("restore-100000-ms", BenchFigures::milliseconds("restore100000"));
    BenchFigures::set("activate-all-100k-s", BenchFigures::milliseconds("activateAll100k") / 1000);
    BenchFigures::set("deactivate-all-100k-s", BenchFigures::milliseconds("deactivateAll100k") / 1000);
}

const bool registered = BenchFigures::onFinish(addActivationFigures);

} // namespace
