// SPDX-License-Identifier: GPL-3.0-or-later
// The font catalogue through the store: a first index of 2,000 real font files against
// fc-cache on the same folder, a refresh of 100,000 unchanged ones, queries over them,
// and the database's size per face.
#include "BenchFigures.h"
#include "CatalogStore.h"
#include "FontCorpus.h"

#include "state/AppState.h"

#include <QCoroTask>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

CatalogStore::CatalogStore(const QString &name, const QString &folder)
    : m_persistence(BenchFigures::dataDirectory() + u"/catalog-store-"_s + name)
    , m_store(m_activation, m_persistence)
{
    m_store.setCatalogueFile(catalogueFile(name));
    m_store.setCatalogueSettleTime(0);
    m_store.setSourcesForTesting({FolderSource{QUuid::createUuid(), folder, name}});
}

QString CatalogStore::catalogueFile(const QString &name)
{
    return BenchFigures::dataDirectory() + u"/catalog-"_s + name + u".sqlite"_s;
}

void CatalogStore::refreshAndIndex()
{
    QEventLoop loop;
    bool refreshed = false;
    const auto check = [&] {
        if (refreshed && !m_store.isIndexing() && !m_store.isCataloguing())
            loop.quit();
    };
    QObject::connect(&m_store, &AppState::catalogueProgressChanged, &loop, check);
    QObject::connect(&m_store, &AppState::isIndexingChanged, &loop, check);
    m_store.refreshFileSystem();
    refreshed = true;
    loop.exec();
}

CatalogStore &CatalogStore::library100k()
{
    static CatalogStore *bench = [] {
        FontCorpus::fonts(u"store/Active"_s, 10'000);
        FontCorpus::fonts(u"store/Batch"_s, 10'000);
        FontCorpus::fonts(u"store/More"_s, 80'000);
        auto *made = new CatalogStore(u"100k"_s, BenchFigures::dataDirectory() + u"/fonts/store"_s);
        made->refreshAndIndex();
        return made;
    }();
    return *bench;
}

CatalogStore &CatalogStore::families100k()
{
    static CatalogStore *bench = [] {
        const QString folder = BenchFigures::dataDirectory() + u"/fonts/families"_s;
        if (QProcess::execute(QStringLiteral(MORVANE_PYTHON),
                              {QStringLiteral(MORVANE_SOURCE_DIR) + u"/tools/fonts/make_family_corpus.py"_s, folder,
                               u"50000"_s}) != 0)
            qFatal("The family corpus could not be made: run make deps");
        auto *made = new CatalogStore(u"families100k"_s, folder);
        made->refreshAndIndex();
        return made;
    }();
    return *bench;
}

namespace {

QString folderOf(const QStringList &fonts)
{
    return QFileInfo(fonts.constFirst()).absolutePath();
}

void removeCatalogue(const QString &file)
{
    for (const QString &suffix : {u""_s, u"-wal"_s, u"-shm"_s})
        QFile::remove(file + suffix);
}

void catalogBuild2000(benchmark::State &state)
{
    const QString folder = folderOf(FontCorpus::fonts(u"catalog-2000"_s, 2000));
    for (auto _ : state) {
        state.PauseTiming();
        removeCatalogue(CatalogStore::catalogueFile(u"2000"_s));
        CatalogStore bench(u"2000"_s, folder);
        state.ResumeTiming();
        bench.refreshAndIndex();
        state.PauseTiming();
        if (QCoro::waitFor(bench.store().queryFonts(FontQuery{})).faceCount() != 2000)
            state.SkipWithError("not every font was indexed");
        state.ResumeTiming();
    }
}
BENCHMARK(catalogBuild2000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// fontconfig's own scan of the same folder into an empty cache folder.
void catalogFcCache2000(benchmark::State &state)
{
    const QString folder = folderOf(FontCorpus::fonts(u"catalog-2000"_s, 2000));
    const QString cache = BenchFigures::dataDirectory() + u"/fc-cache-2000"_s;
    QProcess fcCache;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_CACHE_HOME"_s, cache);
    fcCache.setProcessEnvironment(environment);
    for (auto _ : state) {
        state.PauseTiming();
        QDir(cache).removeRecursively();
        QDir().mkpath(cache);
        state.ResumeTiming();
        fcCache.start(u"fc-cache"_s, {u"-f"_s, folder});
        fcCache.waitForFinished(-1);
    }
}
BENCHMARK(catalogFcCache2000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void catalogRefresh100kUnchanged(benchmark::State &state)
{
    CatalogStore &bench = CatalogStore::library100k();
    for (auto _ : state)
        bench.refreshAndIndex();
}
BENCHMARK(catalogRefresh100kUnchanged)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void ask(benchmark::State &state, const FontQuery &query)
{
    AppState &store = CatalogStore::library100k().store();
    qsizetype found = 0;
    for (auto _ : state)
        found = QCoro::waitFor(store.queryFonts(query)).faceCount();
    if (found == 0)
        state.SkipWithError("the question found nothing");
    state.counters["faces"] = double(found);
}

void catalogQueryName100k(benchmark::State &state)
{
    ask(state, FontQuery{.text = u"de"_s});
}
BENCHMARK(catalogQueryName100k)->Unit(benchmark::kMillisecond)->Iterations(3)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void catalogQueryLanguage100k(benchmark::State &state)
{
    ask(state, FontQuery{.languages = {u"hu"_s}, .classifications = {FaceRecord::Classification::SansSerif}});
}
BENCHMARK(catalogQueryLanguage100k)->Unit(benchmark::kMillisecond)->Iterations(3)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void catalogQueryCharacters100k(benchmark::State &state)
{
    ask(state, FontQuery{.requiredCharacters = u"Ő ő ű"_s});
}
BENCHMARK(catalogQueryCharacters100k)->Unit(benchmark::kMillisecond)->Iterations(3)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void addCatalogFigures()
{
    const double ours = BenchFigures::milliseconds("catalogBuild2000");
    const double fcCache = BenchFigures::milliseconds("catalogFcCache2000");
    BenchFigures::set("catalog-build-2000-ms", ours);
    BenchFigures::set("catalog-fccache-2000-ms", fcCache);
    if (ours > 0 && fcCache > 0)
        BenchFigures::set("catalog-build-ratio-vs-fccache", ours / fcCache);
    BenchFigures::set("catalog-refresh-100k-unchanged-ms", BenchFigures::milliseconds("catalogRefresh100kUnchanged"));
    BenchFigures::set("catalog-query-name-100k-ms", BenchFigures::milliseconds("catalogQueryName100k"));
    BenchFigures::set("catalog-query-language-100k-ms", BenchFigures::milliseconds("catalogQueryLanguage100k"));
    BenchFigures::set("catalog-query-characters-100k-ms", BenchFigures::milliseconds("catalogQueryCharacters100k"));
    // The whole database, its log folded in, over the faces it holds.
    const QString file = CatalogStore::catalogueFile(u"100k"_s);
    const qint64 bytes = QFileInfo(file).size() + QFileInfo(file + u"-wal"_s).size();
    const qsizetype faces = FontCatalog(file).faceCount();
    if (faces > 0)
        BenchFigures::set("catalog-db-bytes-per-face", double(bytes) / double(faces));
}

const bool registered = BenchFigures::onFinish(addCatalogFigures);

} // namespace
