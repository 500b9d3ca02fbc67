// SPDX-License-Identifier: GPL-3.0-or-later
// The preview pane on real widgets (offscreen) and real fonts: selecting a font until
// its metadata and first sample are painted, a redraw after the weight axis moves, and
// the seven-line waterfall.
#include "BenchFigures.h"
#include "FontCorpus.h"

#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/preview/FontPreviewView.h"
#include "ui/preview/SampleView.h"

#include <QApplication>
#include <QCheckBox>
#include <QFileInfo>
#include <QImage>
#include <QSlider>

#include <benchmark/benchmark.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int kFonts = 72; // enough distinct paths for every cold open

// A store over one folder of corpus fonts, shown in a column browser.
struct PreviewWindow
{
    PreviewWindow()
    {
        fonts = FontCorpus::fonts(u"preview"_s, kFonts);
        const QString folder = QFileInfo(fonts.value(0)).absolutePath();
        const FolderSource source{QUuid::createUuid(), folder, u"Preview"_s};
        store.setSourcesForTesting({source});
        store.setSidebarSelection(SidebarItem(source));
        auto service = std::make_shared<FileSystemService>();
        service->insertPreScannedRoot(folder);
        service->deepScan(folder);
        service->freeze();
        store.installLibrary(service, {});
        view.resize(1400, 900);
        view.show();
        QApplication::processEvents();
    }
    // Selects the font as a click on its row does, and waits until its pane has loaded.
    FontPreviewView *open(const QString &path)
    {
        store.selectNode(FontNode::fontFile(path), 0);
        FontPreviewView *pane = view.previewPane();
        while (pane && pane->isLoading())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QApplication::sendPostedEvents(); // the layout the loaded pane asks for
        return pane;
    }
    QString inter() const
    {
        for (const QString &font : fonts) {
            if (QFileInfo(font).symLinkTarget().endsWith(u"Inter-roman.var.ttf"_s))
                return font;
        }
        return {};
    }

    QStringList fonts;
    BenchFigures::NoActivation activation;
    PersistenceService persistence;
    AppState store{activation, persistence};
    ColumnBrowserView view{store};
};

void previewOpen(benchmark::State &state)
{
    PreviewWindow window;
    window.store.setPreviewSize(36);
    qsizetype next = 0;
    for (auto _ : state) {
        // Each time a font not seen before: the metadata cache is cold.
        FontPreviewView *pane = window.open(window.fonts.value(next++));
        if (!pane || !pane->metadata() || !pane->sample()->isVisible()) {
            state.SkipWithError("the font did not load");
            break;
        }
        pane->repaint();
    }
}
BENCHMARK(previewOpen)->Unit(benchmark::kMillisecond)->Iterations(20)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void previewAxisRedraw(benchmark::State &state)
{
    PreviewWindow window;
    window.store.setPreviewSize(96);
    window.store.setPreviewText(PersistenceService::defaultPreviewText());
    FontPreviewView *pane = window.open(window.inter());
    QSlider *weight = nullptr;
    for (QSlider *slider : pane ? pane->findChildren<QSlider *>() : QList<QSlider *>{}) {
        if (slider->accessibleName() == u"Weight"_s)
            weight = slider;
    }
    if (!weight) {
        state.SkipWithError("no weight slider");
        return;
    }
    SampleView *sample = pane->sample();
    for (int round = 0; round < 100 && sample->height() != sample->heightForWidth(sample->width()); ++round)
        QApplication::processEvents();
    QImage image(sample->size(), QImage::Format_ARGB32_Premultiplied);
    int step = 0;
    for (auto _ : state) {
        // A weight not drawn before, so every outline is made afresh.
        weight->setValue(weight->minimum() + (++step * 1237) % (weight->maximum() - weight->minimum()));
        sample->render(&image);
    }
}
BENCHMARK(previewAxisRedraw)->Unit(benchmark::kMillisecond)->Iterations(50)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void previewWaterfall(benchmark::State &state)
{
    PreviewWindow window;
    window.store.setPreviewText(PersistenceService::defaultPreviewText());
    FontPreviewView *pane = window.open(window.inter());
    QCheckBox *waterfall = nullptr;
    for (QCheckBox *box : pane ? pane->findChildren<QCheckBox *>() : QList<QCheckBox *>{}) {
        if (box->accessibleName() == u"Waterfall"_s)
            waterfall = box;
    }
    if (!waterfall) {
        state.SkipWithError("no waterfall toggle");
        return;
    }
    waterfall->click();
    SampleView *sample = pane->sample();
    for (int round = 0; round < 100 && sample->height() != sample->heightForWidth(sample->width()); ++round)
        QApplication::processEvents(); // the pane's layout gives the sample its new height
    if (sample->height() != sample->heightForWidth(sample->width())) {
        state.SkipWithError("the waterfall was not laid out");
        return;
    }
    QImage image(sample->size(), QImage::Format_ARGB32_Premultiplied);
    state.counters["height"] = sample->height();
    for (auto _ : state) {
        sample->relayout(); // shaped again, as after a change of text or feature
        sample->render(&image);
    }
}
BENCHMARK(previewWaterfall)->Unit(benchmark::kMillisecond)->Iterations(50)->Repetitions(3)
    ->ComputeStatistics("min", BenchFigures::fastest)->ReportAggregatesOnly(true);

void addPreviewFigures()
{
    BenchFigures::set("preview-open-ms", BenchFigures::milliseconds("previewOpen"));
    BenchFigures::set("preview-axis-redraw-ms", BenchFigures::milliseconds("previewAxisRedraw"));
    BenchFigures::set("preview-waterfall-ms", BenchFigures::milliseconds("previewWaterfall"));
}

const bool registered = BenchFigures::onFinish(addPreviewFigures);

} // namespace
