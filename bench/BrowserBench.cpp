// SPDX-License-Identifier: GPL-3.0-or-later
// The column browser on real widgets (offscreen), over the 100k-font library: a click
// on a folder of 10,000 fonts until its column is laid out and painted, and the
// repaint of a full column of rows.
#include "BenchFigures.h"

#include "BenchStore.h"

#include "ui/browser/ColumnBrowserView.h"
#include "ui/browser/FontNodeListModel.h"
#include "ui/browser/SingleColumnView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMouseEvent>

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

QString sansSerif()
{
    return BenchFigures::libraryRootPath() + u"/Sans Serif"_s;
}

// A press and release at the row's centre, as a user's click.
void clickRow(SingleColumnView *column, const QString &path)
{
    const QModelIndex index = column->nodeModel()->index(column->nodeModel()->rowOf(path));
    const QPointF at = column->visualRect(index).center();
    const QPointF global = column->viewport()->mapToGlobal(at);
    QMouseEvent press(QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(column->viewport(), &press);
    QMouseEvent release(QEvent::MouseButtonRelease, at, global, Qt::LeftButton, {}, {});
    QApplication::sendEvent(column->viewport(), &release);
}

struct BrowserWindow
{
    BrowserWindow()
    {
        AppState &state = BenchStore::instance().store();
        state.showSourceRoot();
        state.selectNode(FontNode::folder(sansSerif()), 0);
        view->resize(1400, 800);
        view->show();
        QApplication::processEvents();
    }
    std::unique_ptr<ColumnBrowserView> view = std::make_unique<ColumnBrowserView>(BenchStore::instance().store());
};

void browserOpen10kFolder(benchmark::State &state)
{
    BrowserWindow window;
    SingleColumnView *second = window.view->columns().value(1);
    const QString wide = sansSerif() + u"/Mega Family"_s;
    if (!second || second->nodeModel()->rowOf(wide) < 0) {
        state.SkipWithError("the wide folder is missing");
        return;
    }
    const QString other = second->nodeModel()->node(second->nodeModel()->rowOf(wide) == 0 ? 1 : 0).path();
    for (auto _ : state) {
        clickRow(second, wide);
        QApplication::sendPostedEvents(); // the layout the new column asks for
        SingleColumnView *opened = window.view->columns().value(2);
        if (!opened || opened->nodeModel()->rowCount() < 10'000) {
            state.SkipWithError("the column did not open");
            break;
        }
        opened->viewport()->repaint();
        state.PauseTiming();
        clickRow(second, other); // back to a small folder
        QApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(browserOpen10kFolder)->Unit(benchmark::kMillisecond)->Iterations(10)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void browserPaintColumn(benchmark::State &state)
{
    BrowserWindow window;
    BenchStore::instance().store().selectNode(FontNode::folder(sansSerif() + u"/Mega Family"_s), 1);
    QApplication::processEvents();
    SingleColumnView *column = window.view->columns().value(2);
    if (!column || column->viewport()->height() < 700) {
        state.SkipWithError("no full column");
        return;
    }
    for (auto _ : state)
        column->viewport()->repaint();
}
BENCHMARK(browserPaintColumn)->Unit(benchmark::kMillisecond)->Iterations(50)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// A font copied into a folder of the watched 100k library, until its row is in the
// browser's open column: inotify, the quiet second the watch waits for, the refresh and
// the column built again.
void liveNewFontVisible(benchmark::State &state)
{
    BrowserWindow window;
    AppState &store = BenchStore::instance().store();
    store.setWatchingSources(true);
    const auto column = [&] { return window.view->columns().value(1); };
    const auto shown = [&](const QString &path) { return column() && column()->nodeModel()->rowOf(path) >= 0; };
    const auto waitFor = [&](const std::function<bool()> &done) {
        QElapsedTimer waited;
        waited.start();
        while (!done() && waited.elapsed() < 30'000)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        return done();
    };
    int n = 0;
    for (auto _ : state) {
        const QString font = sansSerif() + u"/Live %1.ttf"_s.arg(n++);
        QFile file(font);
        if (!file.open(QIODevice::WriteOnly)) {
            state.SkipWithError("the library can't be written");
            break;
        }
        file.close();
        const bool appeared = waitFor([&] { return shown(font); });
        state.PauseTiming();
        QFile::remove(font);
        const bool went = waitFor([&] { return !shown(font); });
        state.ResumeTiming();
        if (!appeared || !went) {
            state.SkipWithError("the new font did not show");
            break;
        }
    }
    store.setWatchingSources(false);
}
BENCHMARK(liveNewFontVisible)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void addBrowserFigures()
{
    BenchFigures::set("live-new-font-visible-ms", BenchFigures::milliseconds("liveNewFontVisible"));
    BenchFigures::set("browser-open-10k-folder-ms", BenchFigures::milliseconds("browserOpen10kFolder"));
    BenchFigures::set("browser-paint-column-ms", BenchFigures::milliseconds("browserPaintColumn"));
}

const bool registered = BenchFigures::onFinish(addBrowserFigures);

} // namespace
