// SPDX-License-Identifier: GPL-3.0-or-later
// Reading metadata of 1,000 real font files against fontconfig's own scanner, and
// activating fonts until fontconfig lists them against doing it by hand.
#include "BenchFigures.h"
#include "FontCorpus.h"

#include "services/FontActivationService.h"
#include "fonts/FontMetadata.h"
#include "services/FontPreviewService.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

QStringList fontSet(int count)
{
    return FontCorpus::fonts(u"set-%1"_s.arg(count), count);
}

void metadata1000(benchmark::State &state)
{
    const QStringList fonts = fontSet(1000);
    for (auto _ : state) {
        int read = 0;
        for (const QString &font : fonts)
            read += FontMetadata::load(font).has_value() ? 1 : 0;
        if (read != fonts.size()) {
            state.SkipWithError("a font did not read");
            break;
        }
    }
}
BENCHMARK(metadata1000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void fcScan1000(benchmark::State &state)
{
    const QString folder = fontSet(1000).first().section(u'/', 0, -2);
    for (auto _ : state) {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start(u"fc-scan"_s, {folder});
        process.waitForFinished(-1);
    }
}
BENCHMARK(fcScan1000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

FontActivationService &service()
{
    static FontActivationService instance; // shards created once, outside the timings
    instance.activateFonts({});
    return instance;
}

void activate1000(benchmark::State &state)
{
    const QStringList fonts = fontSet(1000);
    FontActivationService &activation = service();
    for (auto _ : state) {
        const QList<bool> results = activation.activateFonts(fonts);
        state.PauseTiming();
        activation.deactivateFonts(fonts);
        state.ResumeTiming();
        // Reported with the timer running: skipping while paused trips the library's checks.
        if (results.count(true) != fonts.size()) {
            state.SkipWithError("a font did not activate");
            break;
        }
    }
}
BENCHMARK(activate1000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// By hand: one `ln -s` of every font into one folder, then `fc-cache` on that folder.
void activate1000Manual(benchmark::State &state)
{
    const QStringList fonts = fontSet(1000);
    const QString folder = BenchFigures::dataDirectory() + u"/home/.local/share/fonts/by-hand"_s;
    for (auto _ : state) {
        state.PauseTiming();
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        state.ResumeTiming();
        QProcess::execute(u"ln"_s, QStringList{u"-s"_s} + fonts + QStringList{folder});
        QProcess::execute(u"fc-cache"_s, {folder});
    }
    QDir(folder).removeRecursively();
    QProcess::execute(u"fc-cache"_s, {folder.section(u'/', 0, -2)});
}
BENCHMARK(activate1000Manual)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void activateOneWith5000(benchmark::State &state)
{
    const QStringList fonts = fontSet(5001);
    FontActivationService &activation = service();
    activation.activateFonts(fonts.mid(0, 5000));
    for (auto _ : state) {
        const bool activated = activation.activateFont(fonts.last());
        state.PauseTiming();
        activation.deactivateFont(fonts.last());
        state.ResumeTiming();
        if (!activated) {
            state.SkipWithError("the font did not activate");
            break;
        }
    }
    activation.deactivateFonts(fonts);
}
BENCHMARK(activateOneWith5000)->Unit(benchmark::kMillisecond)->Iterations(3)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// Anonymous resident memory: what the process itself holds, not the page cache the
// system may reclaim (mapped files).
double residentAnonymousMegabytes()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("RssAnon:"))
            return line.mid(8).trimmed().split(' ').first().toDouble() / 1024.0;
    }
    return 0;
}

// 128 fonts of 10 MB or more loaded through the metadata cache, as a user previewing
// a CJK library does: every one stays registered for drawing.
void previewRegistry128Large(benchmark::State &state)
{
    const QString folder = BenchFigures::dataDirectory() + u"/large-fonts"_s;
    if (QProcess::execute(QStringLiteral(MORVANE_PYTHON), {QStringLiteral(MORVANE_SOURCE_DIR) + u"/tools/fonts/make_large_fonts.py"_s,
                                                 folder, u"128"_s, u"10000000"_s}) != 0) {
        state.SkipWithError("the large fonts could not be made");
        return;
    }
    double added = 0;
    for (auto _ : state) {
        FontPreviewService cache(FontPreviewService::kEvictionBound);
        const double before = residentAnonymousMegabytes();
        int loaded = 0;
        for (int i = 0; i < 128; ++i) {
            const QString font = folder + u"/Large %1.ttf"_s.arg(i, 3, 10, QChar(u'0'));
            loaded += cache.load(font, {}).result().has_value() ? 1 : 0;
        }
        added = residentAnonymousMegabytes() - before;
        if (loaded != 128 || cache.registry()->count() != 128) {
            state.SkipWithError("a large font did not load");
            break;
        }
    }
    BenchFigures::set("preview-registry-128-large-mb", std::max(added, 0.01));
}
BENCHMARK(previewRegistry128Large)->Unit(benchmark::kMillisecond)->Iterations(1);

void addFontFigures()
{
    const double metadata = BenchFigures::milliseconds("metadata1000");
    const double fcScan = BenchFigures::milliseconds("fcScan1000");
    const double ours = BenchFigures::milliseconds("activate1000");
    const double manual = BenchFigures::milliseconds("activate1000Manual");
    if (metadata > 0 && fcScan > 0) {
        BenchFigures::set("metadata-1000-ms", metadata);
        BenchFigures::set("fcscan-1000-ms", fcScan);
        BenchFigures::set("metadata-ratio-vs-fcscan", metadata / fcScan);
    }
    if (ours > 0 && manual > 0) {
        BenchFigures::set("activate-1000-ms", ours);
        BenchFigures::set("activate-1000-manual-ms", manual);
        BenchFigures::set("activate-1000-ratio-vs-manual", ours / manual);
    }
    if (const double one = BenchFigures::milliseconds("activateOneWith5000"); one > 0)
        BenchFigures::set("activate-one-with-5000-ms", one);
    BenchFigures::setCount("bench-font-faces-unreadable", FontCorpus::unreadableFaces());
}

const bool registered = BenchFigures::onFinish(addFontFigures);

} // namespace
