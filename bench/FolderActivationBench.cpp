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

// The same, seen from a Flatpak sandbox, made as Flatpak makes it: our font folder and
// fontconfig's caches bound read-only where Flatpak binds them, the folder read as the
// path its caches name, the home folder and the library out of sight. -1 when bwrap
// can't run here.
qsizetype listedInSandbox(const QString &linkFolder)
{
    const QString fonts = linkFolder.section(u'/', 0, -2);
    const QString conf = BenchFigures::dataDirectory() + u"/sandbox-fonts.conf"_s;
    if (QFile file(conf); file.open(QIODevice::WriteOnly))
        file.write("<?xml version=\"1.0\"?>\n<fontconfig><remap-dir as-path=\"" + QFile::encodeName(fonts)
                   + "\">/run/host/user-fonts</remap-dir><cachedir>/run/host/user-fonts-cache</cachedir>"
                     "<cachedir>/run/cache</cachedir></fontconfig>\n");
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/fontconfig"_s;
    QProcess bwrap;
    bwrap.start(u"bwrap"_s, {u"--ro-bind"_s, u"/"_s, u"/"_s, u"--tmpfs"_s, u"/run"_s,
                             u"--ro-bind"_s, conf, u"/run/host/fonts.conf"_s,
                             u"--tmpfs"_s, BenchFigures::dataDirectory(),
                             u"--ro-bind"_s, fonts, u"/run/host/user-fonts"_s,
                             u"--ro-bind"_s, caches, u"/run/host/user-fonts-cache"_s, u"--dir"_s, u"/run/cache"_s,
                             u"--setenv"_s, u"FONTCONFIG_FILE"_s, u"/run/host/fonts.conf"_s,
                             // Only files the sandbox can open: its caches may name others.
                             u"sh"_s, u"-c"_s,
                             u"fc-list --format='%{file}\\n' | while IFS= read -r f; do [ -r \"$f\" ] && printf '%s\\n' \"$f\"; done; true"_s});
    if (!bwrap.waitForFinished(600'000) || bwrap.exitCode() != 0)
        return -1;
    QSet<QByteArray> files;
    const QByteArray prefix = "/run/host/user-fonts/" + QFile::encodeName(linkFolder.section(u'/', -1)) + '/';
    for (const QByteArray &line : bwrap.readAllStandardOutput().split('\n')) {
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

    // A click on the folder's button, until the card goes and another program agrees
    // (one in a sandbox, when asked).
    bool toggleUntilVisible(const QString &name, qsizetype expectListed, bool sandboxed = false)
    {
        m_store.toggleActivation(FontNode::folder(root() + u'/' + name));
        QEventLoop loop;
        QObject::connect(&m_store, &AppState::isProcessingChanged, &loop, [&] {
            if (!m_store.isProcessing())
                loop.quit();
        });
        if (m_store.isProcessing())
            loop.exec();
        return (sandboxed ? listedInSandbox(linkFolder()) : listedByAnotherProgram(linkFolder())) == expectListed;
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

void folderOnOff(benchmark::State &state, const QString &name, qsizetype fonts, bool measureOn, bool sandboxed = false)
{
    FolderStore &bench = FolderStore::instance();
    if (!bench.isReady()) {
        state.SkipWithError("the folders were not made ready");
        return;
    }
    for (auto _ : state) {
        if (!measureOn)
            state.PauseTiming();
        const bool on = bench.toggleUntilVisible(name, fonts, sandboxed);
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

void activateFolder1000VisibleSandboxed(benchmark::State &state)
{
    if (listedInSandbox(FolderStore::linkFolder()) < 0) {
        state.SkipWithError("bwrap can't make a sandbox here");
        return;
    }
    folderOnOff(state, u"F1000"_s, 1'000, true, true);
}
BENCHMARK(activateFolder1000VisibleSandboxed)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)
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
    BenchFigures::set("activate-folder-1000-visible-sandboxed-ms",
                      BenchFigures::milliseconds("activateFolder1000VisibleSandboxed"));
    BenchFigures::set("deactivate-folder-1000-visible-ms", BenchFigures::milliseconds("deactivateFolder1000Visible"));
    BenchFigures::set("activate-folder-10000-visible-ms", BenchFigures::milliseconds("activateFolder10000Visible"));
}

const bool registered = BenchFigures::onFinish(addFolderFigures);

} // namespace
