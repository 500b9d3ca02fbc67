// SPDX-License-Identifier: GPL-3.0-or-later
// Saving and loading 100,000 activated fonts, and reading the tags of 10,000
// files with a fresh (cold) tag cache.
#include "BenchFigures.h"

#include "services/FinderTagService.h"
#include "services/PersistenceService.h"

#include <QDir>
#include <QFile>

#include <benchmark/benchmark.h>

#include <sys/xattr.h>

using namespace Qt::StringLiterals;

namespace {

QSet<QString> activatedPaths()
{
    QSet<QString> paths;
    paths.reserve(100'000);
    for (int i = 0; i < 100'000; ++i)
        paths.insert(u"/home/designer/Fonts/Library/Foundry %1/Family %2/Family-Style %3.otf"_s.arg(i % 97)
                         .arg(i % 1013).arg(i));
    return paths;
}

QString storageFolder()
{
    return BenchFigures::dataDirectory() + u"/storage"_s;
}

void persistSave100k(benchmark::State &state)
{
    const QSet<QString> paths = activatedPaths();
    PersistenceService persistence(storageFolder());
    // Saves are written by a background writer: the figure is the whole write, from
    // the request until the file is on disk.
    for (auto _ : state) {
        persistence.saveActivatedFonts(paths);
        persistence.waitForWrites();
    }
}
BENCHMARK(persistSave100k)->Unit(benchmark::kMillisecond)->Iterations(5);

void persistLoad100k(benchmark::State &state)
{
    PersistenceService persistence(storageFolder());
    persistence.saveActivatedFonts(activatedPaths());
    for (auto _ : state)
        benchmark::DoNotOptimize(persistence.loadActivatedFonts().size());
}
BENCHMARK(persistLoad100k)->Unit(benchmark::kMillisecond)->Iterations(5);

QStringList taggedFiles()
{
    const QString folder = BenchFigures::dataDirectory() + u"/tagged"_s;
    QDir().mkpath(folder);
    QStringList files;
    for (int i = 0; i < 10'000; ++i) {
        const QString path = folder + u"/Font %1.otf"_s.arg(i);
        if (!QFile::exists(path)) {
            QFile(path).open(QIODevice::WriteOnly);
            const QByteArray tags = (i % 3 == 0) ? "Red,Licensed" : "Client";
            ::setxattr(QFile::encodeName(path).constData(), "user.xdg.tags", tags.constData(),
                       static_cast<size_t>(tags.size()), 0);
        }
        files.append(path);
    }
    return files;
}

void tagsCold10k(benchmark::State &state)
{
    const QStringList files = taggedFiles();
    for (auto _ : state) {
        FinderTagService service;
        qsizetype count = 0;
        for (const QString &file : files)
            count += service.tags(file).size();
        benchmark::DoNotOptimize(count);
    }
}
BENCHMARK(tagsCold10k)->Unit(benchmark::kMillisecond)->Iterations(5);

void addPersistenceFigures()
{
    BenchFigures::set("persist-100k-save-ms", BenchFigures::milliseconds("persistSave100k"));
    BenchFigures::set("persist-100k-load-ms", BenchFigures::milliseconds("persistLoad100k"));
    BenchFigures::set("tags-10k-cold-ms", BenchFigures::milliseconds("tagsCold10k"));
}

const bool registered = BenchFigures::onFinish(addPersistenceFigures);

} // namespace
