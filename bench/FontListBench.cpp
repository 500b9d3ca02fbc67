// SPDX-License-Identifier: GPL-3.0-or-later
// The font list on real widgets (offscreen) over 100,000 catalogued faces: All Fonts
// until its first screen is drawn with samples, a page down through a family's faces,
// a language and classification filter until the list repaints, and twelve faces in compare.
#include "BenchFigures.h"
#include "CatalogStore.h"

#include "ui/fontlist/CompareView.h"
#include "ui/fontlist/FontFilterBar.h"
#include "ui/fontlist/FontListModel.h"
#include "ui/fontlist/FontListView.h"
#include "ui/fontlist/FontSampleCache.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
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
    auto view = std::make_unique<FontListView>(CatalogStore::library100k().store());
    view->resize(1100, 800);
    view->show();
    return view;
}

void fontlistFirstPageCold(benchmark::State &state)
{
    CatalogStore::library100k();
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
    // The first family's faces, tens of thousands of rows.
    view->tree()->expand(view->model()->index(0, 0));
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

// Twelve faces of the first family chosen, until compare has drawn them all (samples
// never drawn before: a list of its own each time).
void compare12Faces(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        std::unique_ptr<FontListView> view = shownList();
        untilDrawn(*view);
        const QModelIndex family = view->model()->index(0, 0);
        view->tree()->expand(family);
        QItemSelection twelve(view->model()->index(0, 0, family), view->model()->index(11, 0, family));
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

void addFontListFigures()
{
    BenchFigures::set("fontlist-first-page-cold-ms", BenchFigures::milliseconds("fontlistFirstPageCold"));
    BenchFigures::set("fontlist-page-down-ms", BenchFigures::milliseconds("fontlistPageDown"));
    BenchFigures::set("fontlist-filter-100k-ms", BenchFigures::milliseconds("fontlistFilter100k"));
    BenchFigures::set("compare-12-faces-ms", BenchFigures::milliseconds("compare12Faces"));
}

const bool registered = BenchFigures::onFinish(addFontListFigures);

} // namespace
