// SPDX-License-Identifier: GPL-3.0-or-later
// A whole folder of static fonts through the store with the real fontconfig service,
// once the library's folders have been made ready after its scan: from the click until
// `fc-list`, run as another process, lists every font of it (or none, switched off).
#include "BenchFigures.h"
#include "FontCorpus.h"

#include "services/FontActivationService.h"
#include "state/AppState.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QEventLoop>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QThread>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

QString root()
{
    return BenchFigures::dataDirectory() + u"/fonts/folders"_s;
}

// The fonts of ours another program's fontconfig lists now.
qsizetype listedByAnotherProgram(const QString &linkFolder)
{
    QProcess fcList;
    fcList.start(u"fc-list"_s, {u"--format=%{file}\\n"_s});
    fcList.waitForFinished(600'000);
    QSet<QByteArray> files; // a variable font is listed once per named instance
    const QByteArray prefix = QFile::encodeName(linkFolder) + '/';
    for (const QByteArray &line : fcList.readAllStandardOutput().split('\n')) {
        if (line.startsWith(prefix))
            files.insert(line);
    }
    return files.size();
}

class FolderStore
{
public:
    static FolderStore &instance()
    {
        static FolderStore store;
        return store;
    }

    static QString linkFolder()
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts/MorvaneFolders"_s;
    }

    // A click on the folder's button, until the card goes and another program agrees.
    bool toggleUntilVisible(const QString &name, qsizetype expectListed)
    {
        m_store.toggleActivation(FontNode::folder(root() + u'/' + name));
        QEventLoop loop;
        QObject::connect(&m_store, &AppState::isProcessingChanged, &loop, [&] {
            if (!m_store.isProcessing())
                loop.quit();
        });
        if (m_store.isProcessing())
            loop.exec();
        return listedByAnotherProgram(linkFolder()) == expectListed;
    }
    bool isReady() const { return m_ready; }

private:
    FolderStore()
        : m_activation(linkFolder())
        , m_persistence(BenchFigures::dataDirectory() + u"/folder-store"_s)
        , m_store(m_activation, m_persistence)
    {
        FontCorpus::fonts(u"folders/F1000"_s, 1'000, false);
        FontCorpus::fonts(u"folders/F10000"_s, 10'000, false);
        m_activation.removeLinks(m_activation.links().keys()); // whatever an interrupted run left
        m_store.setCatalogueFile(BenchFigures::dataDirectory() + u"/catalog-folders.sqlite"_s);
        m_store.setCatalogueSettleTime(0);
        m_store.setSourcesForTesting({FolderSource{QUuid::createUuid(), root(), u"folders"_s}});
        m_store.refreshFileSystem();
        // The scan, the catalogue, then the folders made ready: what a user's library
        // has long done by the time anyone clicks.
        QElapsedTimer waited;
        waited.start();
        while ((m_store.isIndexing() || !m_store.waitForCatalogue(50) || m_activation.readyFonts() < 11'000)
               && waited.elapsed() < 30 * 60'000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
            QThread::msleep(50);
        }
        m_ready = m_activation.readyFonts() >= 11'000;
    }

    FontActivationService m_activation;
    PersistenceService m_persistence;
    AppState m_store;
    bool m_ready = false;
};

void folderOnOff(benchmark::State &state, const QString &name, qsizetype fonts, bool measureOn)
{
    FolderStore &bench = FolderStore::instance();
    if (!bench.isReady()) {
        state.SkipWithError("the folders were not made ready");
        return;
    }
    for (auto _ : state) {
        if (!measureOn)
            state.PauseTiming();
        const bool on = bench.toggleUntilVisible(name, fonts);
        if (!measureOn)
            state.ResumeTiming();
        else
            state.PauseTiming();
        const bool off = bench.toggleUntilVisible(name, 0);
        if (measureOn)
            state.ResumeTiming();
        if (!on || !off) {
            state.SkipWithError("fc-list did not agree");
            break;
        }
    }
}

void activateFolder1000Visible(benchmark::State &state)
{
    folderOnOff(state, u"F1000"_s, 1'000, true);
}
BENCHMARK(activateFolder1000Visible)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void deactivateFolder1000Visible(benchmark::State &state)
{
    folderOnOff(state, u"F1000"_s, 1'000, false);
}
BENCHMARK(deactivateFolder1000Visible)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void activateFolder10000Visible(benchmark::State &state)
{
    folderOnOff(state, u"F10000"_s, 10'000, true);
}
BENCHMARK(activateFolder10000Visible)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void addFolderFigures()
{
    BenchFigures::set("activate-folder-1000-visible-ms", BenchFigures::milliseconds("activateFolder1000Visible"));
    BenchFigures::set("deactivate-folder-1000-visible-ms", BenchFigures::milliseconds("deactivateFolder1000Visible"));
    BenchFigures::set("activate-folder-10000-visible-ms", BenchFigures::milliseconds("activateFolder10000Visible"));
}

const bool registered = BenchFigures::onFinish(addFolderFigures);

} // namespace
