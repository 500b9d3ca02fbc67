// SPDX-License-Identifier: GPL-3.0-or-later
// The font list on real widgets (offscreen) over 100,000 catalogued faces in 50,000
// families: All Fonts until its first screen is drawn with samples, a page down, a
// language and classification filter until the list repaints, twelve faces in compare,
// and the resident memory of a process that has scrolled through 2,000 families.
#include "BenchFigures.h"
#include "CatalogStore.h"

#include "ui/fontlist/CompareView.h"
#include "ui/fontlist/FontFilterBar.h"
#include "ui/fontlist/FontListModel.h"
#include "ui/fontlist/FontListView.h"
#include "ui/fontlist/FontSampleCache.h"

#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QMenu>
#include <QProcess>
#include <QToolButton>

#include <benchmark/benchmark.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

// Until the answer is in and every row on screen has its sample, then one paint.
void untilDrawn(FontListView &view)
{
    while (view.isQuerying() || view.model()->rowCount() == 0)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QApplication::processEvents();
    view.tree()->viewport()->repaint(); // asks for the samples of the rows shown
    while (view.samples()->isDrawing())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    view.tree()->viewport()->repaint();
}

std::unique_ptr<FontListView> shownList()
{
    auto view = std::make_unique<FontListView>(CatalogStore::families100k().store());
    view->resize(1100, 800);
    view->show();
    return view;
}

void fontlistFirstPageCold(benchmark::State &state)
{
    CatalogStore::families100k();
    for (auto _ : state) {
        std::unique_ptr<FontListView> view = shownList(); // a cache of samples of its own: nothing drawn before
        untilDrawn(*view);
        state.PauseTiming();
        state.counters["families"] = double(view->model()->rowCount());
        view.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(fontlistFirstPageCold)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void fontlistPageDown(benchmark::State &state)
{
    std::unique_ptr<FontListView> view = shownList();
    untilDrawn(*view);
    view->tree()->setFocus();
    view->tree()->setCurrentIndex(view->model()->index(0, 0));
    untilDrawn(*view);
    for (auto _ : state) {
        QKeyEvent down(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
        QApplication::sendEvent(view->tree(), &down);
        untilDrawn(*view);
        state.PauseTiming();
        QKeyEvent up(QEvent::KeyPress, Qt::Key_PageUp, Qt::NoModifier);
        QApplication::sendEvent(view->tree(), &up);
        untilDrawn(*view);
        state.ResumeTiming();
    }
}
BENCHMARK(fontlistPageDown)->Unit(benchmark::kMillisecond)->Iterations(5)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

QAction *menuItem(FontFilterBar &bar, const QString &menu, const QString &item)
{
    QMenu *shown = bar.button(menu)->menu();
    Q_EMIT shown->aboutToShow();
    for (QAction *action : shown->actions()) {
        if (action->text() == item || action->data().toString() == item)
            return action;
    }
    return nullptr;
}

void fontlistFilter100k(benchmark::State &state)
{
    std::unique_ptr<FontListView> view = shownList();
    untilDrawn(*view);
    FontFilterBar &bar = *view->filterBar();
    for (auto _ : state) {
        QAction *hungarian = menuItem(bar, u"Language"_s, u"hu"_s);
        QAction *sans = menuItem(bar, u"Classification"_s, u"Sans Serif"_s);
        if (!hungarian || !sans) {
            state.SkipWithError("no such filter");
            break;
        }
        hungarian->trigger();
        sans->trigger();
        untilDrawn(*view);
        state.PauseTiming();
        bar.clear();
        untilDrawn(*view);
        state.ResumeTiming();
    }
}
BENCHMARK(fontlistFilter100k)->Unit(benchmark::kMillisecond)->Iterations(3)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// "Duplicates" chosen over the 100,000 faces, until the answer is in, every family open,
// and the rows on screen drawn (the library's faces have names of their own: the whole
// question is asked, and few rows answer).
void duplicates100k(benchmark::State &state)
{
    std::unique_ptr<FontListView> view = shownList();
    untilDrawn(*view);
    for (auto _ : state) {
        view->setLibraryView(LibraryView::Duplicates);
        while (view->isQuerying())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        view->tree()->viewport()->repaint();
        while (view->samples()->isDrawing())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        view->tree()->viewport()->repaint();
        state.PauseTiming();
        state.counters["families"] = double(view->model()->rowCount());
        view->setLibraryView(LibraryView::AllFonts);
        untilDrawn(*view);
        state.ResumeTiming();
    }
}
BENCHMARK(duplicates100k)->Unit(benchmark::kMillisecond)->Iterations(3)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

// Twelve families chosen, until compare has drawn their faces (samples never drawn
// before: a list of its own each time).
void compare12Faces(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        std::unique_ptr<FontListView> view = shownList();
        untilDrawn(*view);
        QItemSelection twelve(view->model()->index(0, 0), view->model()->index(11, 0));
        view->tree()->selectionModel()->select(twelve, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        QApplication::processEvents();
        state.ResumeTiming();
        view->compareSelected();
        view->compareView()->canvas()->repaint(); // asks for the twelve samples
        while (view->samples()->isDrawing())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        view->compareView()->canvas()->repaint();
        state.PauseTiming();
        if (view->compareView()->faces().size() != 12)
            state.SkipWithError("twelve faces were not compared");
        view.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(compare12Faces)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

double residentMegabytes()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024.0;
    }
    return -1;
}

// Run alone in a process of its own (see fontlistRss100k): All Fonts shown, then page
// after page down until 2,000 families have been drawn, and what the process then holds.
constexpr const char *kRssChild = "MORVANE_BENCH_FONTLIST_RSS";

void fontlistScroll2000(benchmark::State &state)
{
    for (auto _ : state) {
        std::unique_ptr<FontListView> view = shownList();
        untilDrawn(*view);
        view->tree()->setFocus();
        view->tree()->setCurrentIndex(view->model()->index(0, 0));
        while (view->tree()->currentIndex().row() < 2000) {
            QKeyEvent down(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
            QApplication::sendEvent(view->tree(), &down);
            untilDrawn(*view);
        }
        BenchFigures::set("fontlist-rss-100k-mb", residentMegabytes());
    }
}
const bool scrollRegistered = qEnvironmentVariableIsSet(kRssChild)
    && benchmark::RegisterBenchmark("fontlistScroll2000", fontlistScroll2000)->Iterations(1) != nullptr;

// Memory is the whole process's: the other benchmarks' stores must not count, so the
// scroll runs in a process of its own, this program started again for it alone.
void fontlistRss100k(benchmark::State &state)
{
    if (qEnvironmentVariableIsSet(kRssChild)) {
        state.SkipWithError("runs only in its own process");
        return;
    }
    CatalogStore::families100k(); // made and indexed here, so the child only reads it
    for (auto _ : state) {
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QString::fromLatin1(kRssChild), u"1"_s);
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(), {u"--benchmark_filter=^fontlistScroll2000/"_s});
        if (!child.waitForFinished(600'000) || child.exitCode() != 0) {
            state.SkipWithError("the scrolling process failed");
            return;
        }
        for (const QByteArray &line : child.readAllStandardOutput().split('\n')) {
            if (line.startsWith("fontlist-rss-100k-mb: "))
                BenchFigures::set("fontlist-rss-100k-mb", line.mid(22).trimmed().toDouble());
        }
    }
}
BENCHMARK(fontlistRss100k)->Unit(benchmark::kMillisecond)->Iterations(1);

void addFontListFigures()
{
    BenchFigures::set("fontlist-first-page-cold-ms", BenchFigures::milliseconds("fontlistFirstPageCold"));
    BenchFigures::set("fontlist-page-down-ms", BenchFigures::milliseconds("fontlistPageDown"));
    BenchFigures::set("fontlist-filter-100k-ms", BenchFigures::milliseconds("fontlistFilter100k"));
    BenchFigures::set("compare-12-faces-ms", BenchFigures::milliseconds("compare12Faces"));
    BenchFigures::set("duplicates-100k-ms", BenchFigures::milliseconds("duplicates100k"));
}

const bool registered = BenchFigures::onFinish(addFontListFigures);

} // namespace
