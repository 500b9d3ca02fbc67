// SPDX-License-Identifier: GPL-3.0-or-later
// Runs every benchmark, then prints one `name: value unit` line per figure.
#include "BenchFigures.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocale>

#include <benchmark/benchmark.h>

namespace {

// Keeps the usual console table and remembers each benchmark's mean time.
class RecordingReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            // With repetitions, the fastest one is the figure: it is the least disturbed
            // by whatever else the machine was doing.
            const bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
            const bool fastest = run.run_type == Run::RT_Aggregate && run.aggregate_name == "min";
            if (run.error_occurred || !(single || fastest))
                continue;
            // The adjusted time is in the run's own unit; the multiplier is units per second.
            const double seconds = run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
            BenchFigures::recordMilliseconds(run.run_name.function_name, seconds * 1000.0);
        }
    }
};

} // namespace

// Benchmarks activate fonts and write caches: point HOME and the XDG folders into
// the build tree first, so the user's own fonts and settings are never touched.
void isolateFromTheUser()
{
    const QString home = BenchFigures::dataDirectory() + QStringLiteral("/home");
    const std::pair<const char *, QString> folders[] = {
        {"HOME", home}, {"XDG_DATA_HOME", home + QStringLiteral("/.local/share")},
        {"XDG_CONFIG_HOME", home + QStringLiteral("/.config")}, {"XDG_CACHE_HOME", home + QStringLiteral("/.cache")}};
    for (const auto &[variable, path] : folders) {
        QDir().mkpath(path);
        qputenv(variable, QFile::encodeName(path));
    }
    // Run as root, fontconfig would write caches to the system's folder first: caches
    // go only to the benchmark's own cache folder.
    QFile config(home + QStringLiteral("/fonts.conf"));
    if (config.open(QIODevice::WriteOnly)) {
        config.write("<?xml version=\"1.0\"?>\n<fontconfig>\n"
                     "  <dir>/usr/share/fonts</dir>\n  <dir prefix=\"xdg\">fonts</dir>\n"
                     "  <cachedir prefix=\"xdg\">fontconfig</cachedir>\n"
                     "  <include ignore_missing=\"yes\">/etc/fonts/conf.d</include>\n</fontconfig>\n");
        qputenv("FONTCONFIG_FILE", QFile::encodeName(config.fileName()));
    }
}

int main(int argc, char **argv)
{
    isolateFromTheUser();
    // The browser benchmarks draw real widgets, with no display needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (QLocale().language() == QLocale::C)
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    benchmark::Initialize(&argc, argv);
    RecordingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    BenchFigures::finish();
    std::printf("\n");
    BenchFigures::print();
    return 0;
}
