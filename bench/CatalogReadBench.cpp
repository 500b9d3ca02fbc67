// SPDX-License-Identifier: GPL-3.0-or-later
// Reading fonts for the catalogue: CPU time of the face reader against fontconfig's own
// fc-scan on the same real files, a collection whose header claims 65,535 faces, and a
// first index through the store while the machine is busy against the same when idle.
#include "BenchFigures.h"
#include "CatalogStore.h"
#include "FontCorpus.h"

#include "fonts/FaceReader.h"

#include <QCoroTask>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <sys/resource.h>
#include <time.h>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

double seconds(const timeval &t)
{
    return double(t.tv_sec) + double(t.tv_usec) / 1e6;
}

double threadCpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
}

// User and system time of every child waited for so far.
double childrenCpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The benchmarks' packaged fonts and whatever else the machine has under /usr/share/fonts:
// the same files for both readers.
QStringList realFontFiles()
{
    QStringList files;
    QDirIterator it(u"/usr/share/fonts"_s, {u"*.ttf"_s, u"*.otf"_s, u"*.ttc"_s, u"*.otc"_s}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(it.next());
    files.sort();
    return files;
}

double ourReadCpu = 0, fcScanCpu = 0, fcScanStartCpu = 0;
constexpr int kRounds = 5; // the fastest of them: the machine's other work is not ours

// Every face of every file, as the catalogue's readers read them (one thread: CPU time
// is the figure, not wall time).
void catalogReadCpu(benchmark::State &state)
{
    const QStringList files = realFontFiles();
    qsizetype faces = 0;
    for (auto _ : state) {
        ourReadCpu = 0;
        for (int round = 0; round < kRounds; ++round) {
            faces = 0;
            const double before = threadCpuSeconds();
            for (const QString &file : files)
                faces += FaceReader::read(file).size();
            const double took = threadCpuSeconds() - before;
            ourReadCpu = round == 0 ? took : std::min(ourReadCpu, took);
        }
    }
    state.counters["files"] = double(files.size());
    state.counters["faces"] = double(faces);
    state.counters["cpu_s"] = ourReadCpu;
}
BENCHMARK(catalogReadCpu)->Unit(benchmark::kMillisecond)->Iterations(1);

// CPU time of an fc-scan of these files, printing only each file's name.
double fcScan(benchmark::State &state, const QStringList &files)
{
    QProcess fcScan;
    fcScan.setStandardOutputFile(QProcess::nullDevice());
    fcScan.setStandardErrorFile(QProcess::nullDevice());
    const double before = childrenCpuSeconds();
    fcScan.start(u"fc-scan"_s, QStringList{u"--format=%{file}\\n"_s} + files);
    if (!fcScan.waitForFinished(-1))
        state.SkipWithError("fc-scan failed");
    return childrenCpuSeconds() - before;
}

// fontconfig's scan of the same files, charset and languages included, less what fc-scan
// spends starting (its configuration read, a file that is no font): reading alone.
void catalogFcScanCpu(benchmark::State &state)
{
    const QStringList files = realFontFiles();
    for (auto _ : state) {
        for (int round = 0; round < kRounds; ++round) {
            const double all = fcScan(state, files), start = fcScan(state, {u"/dev/null"_s});
            fcScanCpu = round == 0 ? all : std::min(fcScanCpu, all);
            fcScanStartCpu = round == 0 ? start : std::min(fcScanStartCpu, start);
        }
    }
    state.counters["cpu_s"] = fcScanCpu;
    state.counters["start_cpu_s"] = fcScanStartCpu;
}
BENCHMARK(catalogFcScanCpu)->Unit(benchmark::kMillisecond)->Iterations(1);

QString claimingCollection()
{
    const QString fonts = BenchFigures::dataDirectory() + u"/test-fonts"_s;
    const QString folder = BenchFigures::dataDirectory() + u"/fonts/ttc-65535"_s;
    const QString file = folder + u"/Claims65535.ttc"_s;
    if (!QFileInfo::exists(file)) {
        if (QProcess::execute(QStringLiteral(MORVANE_PYTHON),
                              {QStringLiteral(MORVANE_SOURCE_DIR) + u"/tools/fonts/make_test_fonts.py"_s, fonts})
            != 0)
            qFatal("The test fonts could not be made: run make deps");
        QDir().mkpath(folder);
        QFile::copy(fonts + u"/Claims65535.ttc"_s, file);
    }
    return folder;
}

void removeCatalogue(const QString &file)
{
    for (const QString &suffix : {u""_s, u"-wal"_s, u"-shm"_s})
        QFile::remove(file + suffix);
}

// A library of that one file through the store, from nothing to its three faces listed.
void catalogTtc65535Claimed(benchmark::State &state)
{
    const QString folder = claimingCollection();
    for (auto _ : state) {
        state.PauseTiming();
        removeCatalogue(CatalogStore::catalogueFile(u"ttc-65535"_s));
        CatalogStore bench(u"ttc-65535"_s, folder);
        state.ResumeTiming();
        bench.refreshAndIndex();
        state.PauseTiming();
        if (QCoro::waitFor(bench.store().queryFonts(FontQuery{})).faceCount() != 3)
            state.SkipWithError("not the three real faces");
        state.ResumeTiming();
    }
}
BENCHMARK(catalogTtc65535Claimed)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// Two processes that keep a core each busy for as long as they live.
class BusyMachine
{
public:
    BusyMachine()
    {
        for (QProcess &spinner : m_spinners)
            spinner.start(u"sh"_s, {u"-c"_s, u"while :; do :; done"_s});
    }
    ~BusyMachine()
    {
        for (QProcess &spinner : m_spinners) {
            spinner.kill();
            spinner.waitForFinished(-1);
        }
    }
    BusyMachine(const BusyMachine &) = delete;
    BusyMachine &operator=(const BusyMachine &) = delete;

private:
    QProcess m_spinners[2];
};

double buildIdleMs = 0, buildBusyMs = 0;

double firstIndex(benchmark::State &state, const QString &name)
{
    const QString folder = QFileInfo(FontCorpus::fonts(u"catalog-2000"_s, 2000).constFirst()).absolutePath();
    removeCatalogue(CatalogStore::catalogueFile(name));
    CatalogStore bench(name, folder);
    QElapsedTimer took;
    took.start();
    bench.refreshAndIndex();
    const double ms = double(took.nsecsElapsed()) / 1e6;
    if (QCoro::waitFor(bench.store().queryFonts(FontQuery{})).faceCount() != 2000)
        state.SkipWithError("not every font was indexed");
    return ms;
}

// The same first index of 2,000 real fonts on an idle machine and beside two processes
// that keep two cores busy: the catalogue's readers run at a lower nice value, never
// SCHED_IDLE, so they still progress.
void catalogBuildIdleAndBusy(benchmark::State &state)
{
    for (auto _ : state) {
        buildIdleMs = firstIndex(state, u"idle-2000"_s);
        const BusyMachine busy;
        buildBusyMs = firstIndex(state, u"busy-2000"_s);
    }
    state.counters["idle_ms"] = buildIdleMs;
    state.counters["busy_ms"] = buildBusyMs;
}
BENCHMARK(catalogBuildIdleAndBusy)->Unit(benchmark::kMillisecond)->Iterations(1);

void addCatalogReadFigures()
{
    BenchFigures::set("catalog-read-cpu-ms", ourReadCpu * 1000);
    BenchFigures::set("catalog-fcscan-cpu-ms", (fcScanCpu - fcScanStartCpu) * 1000);
    if (ourReadCpu > 0 && fcScanCpu > fcScanStartCpu)
        BenchFigures::set("catalog-read-cpu-ratio-vs-fcscan", ourReadCpu / (fcScanCpu - fcScanStartCpu));
    BenchFigures::set("catalog-ttc-65535-claimed-ms", BenchFigures::milliseconds("catalogTtc65535Claimed"));
    BenchFigures::set("catalog-build-idle-2000-ms", buildIdleMs);
    BenchFigures::set("catalog-build-busy-2000-ms", buildBusyMs);
    if (buildIdleMs > 0 && buildBusyMs > 0)
        BenchFigures::set("catalog-build-busy-ratio", buildBusyMs / buildIdleMs);
}

const bool registered = BenchFigures::onFinish(addCatalogReadFigures);

} // namespace
