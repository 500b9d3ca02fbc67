// SPDX-License-Identifier: GPL-3.0-or-later
// What Morvane costs every other program: `fc-match sans` started with our link tree in
// the user's font folder against the same start without it, after a first start with
// nothing active, and with 20,000 fonts active against the same links in one plain
// folder with its cache. Caches are warm in every case; the fastest of several runs counts.
#include "BenchFigures.h"
#include "FontCorpus.h"

#include "services/FontActivationService.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include <benchmark/benchmark.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// A home whose font folder holds what `fill` puts there; caches are the benchmarks' own.
QProcessEnvironment homeEnvironment(const QString &home)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"HOME"_s, home);
    env.insert(u"XDG_DATA_HOME"_s, home + u"/.local/share"_s);
    return env;
}

double fastestFcMatch(const QProcessEnvironment &env, int runs)
{
    double fastest = 1e12;
    for (int i = 0; i < runs + 2; ++i) { // two to warm the caches up
        QProcess fcMatch;
        fcMatch.setProcessEnvironment(env);
        QElapsedTimer took;
        took.start();
        fcMatch.start(u"fc-match"_s, {u"sans"_s});
        fcMatch.waitForFinished(120'000);
        if (i >= 2)
            fastest = std::min(fastest, took.nsecsElapsed() / 1e6);
    }
    return fastest;
}

void fcClientStartRatio(benchmark::State &state)
{
    const QString root = BenchFigures::dataDirectory() + u"/fc-client"_s;
    const QString without = root + u"/without"_s, firstStart = root + u"/first-start"_s;
    const QString ours = root + u"/ours-20000"_s, flat = root + u"/flat-20000"_s;
    QStringList fonts = FontCorpus::fonts(u"fc-client/A"_s, 10'000, false);
    fonts += FontCorpus::fonts(u"fc-client/B"_s, 10'000, false);
    for (const QString &home : {without, firstStart, ours, flat})
        QDir().mkpath(home + u"/.local/share/fonts"_s);
    {
        // A first start: the service set up, nothing activated.
        FontActivationService first(firstStart + u"/.local/share/fonts/Morvane"_s);
        first.removeLinks(first.links().keys());
        // 20,000 active, as a user's two whole folders are, made ready first.
        FontActivationService active(ours + u"/.local/share/fonts/Morvane"_s);
        if (active.links().size() != fonts.size()) {
            active.prepareActivation({fonts.mid(0, 10'000), fonts.mid(10'000)}, [] { return false; });
            active.beginBatch();
            for (qsizetype start = 0; start < fonts.size(); start += 8)
                active.activateFonts(fonts.mid(start, 8));
            active.finishBatch();
        }
        if (active.links().size() != fonts.size()) {
            state.SkipWithError("the 20,000 fonts did not activate");
            return;
        }
    }
    const QString plain = flat + u"/.local/share/fonts/flat"_s;
    if (QDir(plain).entryList(QDir::System | QDir::Files).size() != fonts.size()) {
        QDir(plain).removeRecursively();
        QDir().mkpath(plain);
        for (const QString &font : std::as_const(fonts))
            QFile::link(font, plain + u'/' + FontActivationService::linkNameFor(font));
        QProcess cache;
        cache.setProcessEnvironment(homeEnvironment(flat));
        cache.start(u"fc-cache"_s, {plain});
        cache.waitForFinished(600'000);
    }
    double empty = 0, ratioEmpty = 0, ratioActive = 0;
    for (auto _ : state) {
        empty = fastestFcMatch(homeEnvironment(without), 10);
        ratioEmpty = fastestFcMatch(homeEnvironment(firstStart), 10) / empty;
        ratioActive = fastestFcMatch(homeEnvironment(ours), 10) / fastestFcMatch(homeEnvironment(flat), 10);
    }
    BenchFigures::set("fc-match-sans-ms", empty);
    BenchFigures::set("fc-client-start-ratio-0-active", ratioEmpty);
    BenchFigures::set("fc-client-start-ratio-20000-active", ratioActive);
}
BENCHMARK(fcClientStartRatio)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
