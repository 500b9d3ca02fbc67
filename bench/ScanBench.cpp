// SPDX-License-Identifier: GPL-3.0-or-later
// Scanning the 100k-font synthetic library, against a bare readdir walk of the
// same tree, and the memory the scanned service holds.
#include "BenchFigures.h"
#include "LibraryCorpus.h"

#include "discovery/FileSystemService.h"

#include <QFile>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include <dirent.h>

using namespace Qt::StringLiterals;

namespace {

} // namespace

const QString &BenchFigures::libraryRootPath()
{
    static const QString root = [] {
        const QString path = BenchFigures::dataDirectory() + u"/library-100k"_s;
        ensureLibraryCorpus(path, CorpusShape{});
        return path;
    }();
    return root;
}

namespace {

// The floor: list every folder once and count its entries, nothing more.
size_t countEntries(const std::string &path)
{
    DIR *dir = ::opendir(path.c_str());
    if (!dir)
        return 0;
    size_t count = 0;
    std::vector<std::string> subfolders;
    while (const dirent *entry = ::readdir(dir)) {
        if (entry->d_name[0] == '.')
            continue;
        ++count;
        if (entry->d_type == DT_DIR)
            subfolders.push_back(path + '/' + entry->d_name);
    }
    ::closedir(dir);
    for (const std::string &sub : subfolders)
        count += countEntries(sub);
    return count;
}

void scan100k(benchmark::State &state)
{
    const QString root = BenchFigures::libraryRootPath();
    for (auto _ : state) {
        auto service = std::make_unique<FileSystemService>();
        benchmark::DoNotOptimize(service->deepScan(root).allFonts.size());
        state.PauseTiming();
        service.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(scan100k)->Unit(benchmark::kMillisecond)->Iterations(2)->Repetitions(7)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void scanFloor(benchmark::State &state)
{
    const std::string root = QFile::encodeName(BenchFigures::libraryRootPath()).toStdString();
    for (auto _ : state)
        benchmark::DoNotOptimize(countEntries(root));
}
BENCHMARK(scanFloor)->Unit(benchmark::kMillisecond)->Iterations(2)->Repetitions(7)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

double bytesPerFont()
{
    const QString root = BenchFigures::libraryRootPath();
    { // warm up the collator and any lazily built tables
        FileSystemService warm;
        warm.deepScan(root + u"/Serif"_s);
    }
    const size_t before = BenchFigures::allocatedBytes();
    FileSystemService service;
    service.deepScan(root);
    service.freeze();
    const size_t after = BenchFigures::allocatedBytes();
    return static_cast<double>(after - before) / static_cast<double>(service.fontCount());
}

void addScanFigures()
{
    const double scan = BenchFigures::milliseconds("scan100k");
    const double floor = BenchFigures::milliseconds("scanFloor");
    if (scan <= 0 || floor <= 0)
        return;
    BenchFigures::set("scan-100k-ms", scan);
    BenchFigures::set("scan-floor-ms", floor);
    BenchFigures::set("scan-ratio-vs-floor", scan / floor);
    BenchFigures::set("scan-bytes-per-font", bytesPerFont());
}

const bool registered = BenchFigures::onFinish(addScanFigures);

} // namespace
