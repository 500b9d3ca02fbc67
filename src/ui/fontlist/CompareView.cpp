// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/fontlist/CompareView.h"

#include "fonts/FontMetadata.h"
#include "fonts/MappedFile.h"
#include "fonts/SampleRenderer.h"
#include "state/AppState.h"
#include "ui/common/Symbols.h"
#include "ui/common/TextStyles.h"
#include "ui/fontlist/FontSampleCache.h"
#include "ui/preview/AxisControls.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>

using namespace Qt::StringLiterals;

// The faces drawn one under another, or two over each other.
class CompareCanvas : public QWidget
{
public:
    explicit CompareCanvas(CompareView &view) : QWidget(&view), m_view(view)
    {
        setAccessibleName(CompareView::tr("Compared faces"));
    }

    int pixelSize() const { return int(std::lround(m_view.m_size->value() * logicalDpiY() / 72.0)); }
    int rowHeight() const { return int(pixelSize() * 1.6) + fontMetrics().height() + 12; }
    QSize sizeHint() const override
    {
        const int rows = m_view.m_overlay->isChecked() ? 1 : int(m_view.m_faces.size());
        return {800, std::max(1, rows) * rowHeight() + 8};
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Base));
        const qreal ratio = devicePixelRatioF();
        const QString text = m_view.m_state.previewText();
        const bool overlay = m_view.m_overlay->isChecked() && m_view.m_faces.size() == 2;
        const QColor colours[] = {palette().color(QPalette::Text), palette().color(QPalette::Active, QPalette::Highlight)};
        int y = 8;
        for (qsizetype i = 0; i < m_view.m_faces.size(); ++i) {
            const CompareView::Face &face = m_view.m_faces.at(i);
            const QColor colour = overlay ? colours[i % 2] : palette().color(QPalette::Text);
            const FontSampleCache::Sample sample =
                m_view.m_samples.sample(face.path, face.faceIndex, text, int(pixelSize() * ratio), colour,
                                        m_view.variations(i));
            // The label: over each face, or both names in their colours over the overlay.
            painter.setPen(overlay ? colour : Symbols::secondary(palette()));
            painter.setFont(font());
            const int labelX = overlay && i == 1 ? 16 + fontMetrics().horizontalAdvance(m_view.m_faces.at(0).label) + 24 : 12;
            painter.drawText(QPoint(labelX, y + fontMetrics().ascent()), face.label);
            const int baseline = y + fontMetrics().height() + 6 + int(pixelSize() * 1.15);
            if (sample.state == FontSampleCache::State::Ready) {
                const qreal imageBaseline = sample.image.text(u"baseline"_s).toDouble() / ratio;
                const QSizeF size = QSizeF(sample.image.size()) / ratio;
                if (overlay)
                    painter.setOpacity(0.75);
                painter.drawImage(QRectF(QPointF(12, baseline - imageBaseline), size), sample.image);
                painter.setOpacity(1);
            } else if (sample.state == FontSampleCache::State::Failed) {
                painter.setPen(Symbols::secondary(palette()));
                painter.drawText(QPoint(12, baseline), CompareView::tr("Unable to preview"));
            }
            if (!overlay)
                y += rowHeight();
        }
        if (overlay) { // the shared baseline
            const int baseline = y + fontMetrics().height() + 6 + int(pixelSize() * 1.15);
            painter.setPen(QPen(Symbols::secondary(palette()), 1, Qt::DotLine));
            painter.drawLine(8, baseline, width() - 8, baseline);
        }
    }

private:
    CompareView &m_view;
};

CompareView::CompareView(AppState &state, FontSampleCache &samples, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_samples(samples)
    , m_size(new QSlider(Qt::Horizontal, this))
    , m_overlay(new QToolButton(this))
    , m_axesPanel(new QWidget(this))
    , m_axesLayout(new QVBoxLayout(m_axesPanel))
{
    setAccessibleName(tr("Compare"));
    auto *back = new QToolButton(this);
    back->setText(tr("Back"));
    back->setAccessibleName(tr("Back to the font list"));
    back->setAutoRaise(true);
    connect(back, &QToolButton::clicked, this, &CompareView::closeRequested);
    m_size->setRange(12, 144);
    m_size->setValue(48);
    m_size->setFixedWidth(160);
    m_size->setAccessibleName(tr("Size"));
    m_overlay->setText(tr("Overlay"));
    m_overlay->setAccessibleName(tr("Overlay"));
    m_overlay->setCheckable(true);
    m_overlay->setAutoRaise(true);
    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(8, 6, 8, 6);
    bar->addWidget(back);
    bar->addStretch(1);
    bar->addWidget(m_overlay);
    bar->addWidget(m_size);
    auto *scroll = new QScrollArea(this);
    auto *canvas = new CompareCanvas(*this);
    m_canvas = canvas;
    scroll->setWidget(canvas);
    scroll->setWidgetResizable(true);
    // The variable faces' axes, beside the samples so moving one shows its effect at once.
    m_axesScroll = new QScrollArea(this);
    m_axesScroll->setWidget(m_axesPanel);
    m_axesScroll->setWidgetResizable(true);
    m_axesScroll->setFixedWidth(300);
    m_axesScroll->setFrameShape(QFrame::NoFrame);
    m_axesScroll->hide();
    m_axesPanel->setAccessibleName(tr("Axes"));
    m_axesLayout->setContentsMargins(10, 8, 10, 8);
    auto *body = new QHBoxLayout;
    body->setSpacing(0);
    body->addWidget(scroll, 1);
    body->addWidget(m_axesScroll);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addLayout(body, 1);
    const auto relayout = [canvas] {
        canvas->setMinimumHeight(canvas->sizeHint().height());
        canvas->update();
    };
    connect(m_size, &QSlider::valueChanged, this, relayout);
    connect(m_overlay, &QToolButton::toggled, this, relayout);
    connect(&samples, &FontSampleCache::sampleReady, canvas, qOverload<>(&QWidget::update));
    connect(&state, &AppState::previewTextChanged, canvas, qOverload<>(&QWidget::update));
    setFocusPolicy(Qt::StrongFocus);
}

QHash<quint32, double> CompareView::variations(qsizetype index) const
{
    const AxisControls *axes = m_axes.value(index);
    return axes ? axes->values() : QHash<quint32, double>{};
}

void CompareView::setFaces(const QList<Face> &faces)
{
    m_faces = faces.mid(0, kMostFaces);
    // Sliders of the faces compared before go; each variable face gets its own.
    while (QLayoutItem *item = m_axesLayout->takeAt(0)) {
        if (QWidget *widget = item->widget())
            widget->deleteLater();
        delete item;
    }
    m_axes.clear();
    bool anyAxes = false;
    for (const Face &face : std::as_const(m_faces)) {
        // The axes read are the file's first face's: a variable collection file is rare.
        const std::optional<FontMetadata> metadata = face.faceIndex == 0 ? FontMetadata::load(face.path) : std::nullopt;
        if (!metadata || metadata->variationAxes.isEmpty()) {
            m_axes.append(nullptr);
            continue;
        }
        const std::shared_ptr<const MappedFile> file = MappedFile::open(face.path);
        const std::unique_ptr<SampleRenderer> renderer = file ? SampleRenderer::open(file, face.faceIndex) : nullptr;
        auto *name = new QLabel(face.label, m_axesPanel);
        QFont headline = name->font();
        headline.setWeight(QFont::DemiBold);
        name->setFont(headline);
        auto *axes = new AxisControls(metadata->variationAxes,
                                      renderer ? renderer->namedInstances() : QList<NamedInstance>{}, m_axesPanel);
        axes->setAccessibleName(tr("Axes of %1").arg(face.label));
        connect(axes, &AxisControls::valuesChanged, m_canvas, qOverload<>(&QWidget::update));
        m_axesLayout->addWidget(name);
        m_axesLayout->addWidget(axes);
        m_axes.append(axes);
        anyAxes = true;
    }
    m_axesLayout->addStretch(1);
    m_axesScroll->setVisible(anyAxes);
    m_overlay->setEnabled(m_faces.size() == 2);
    if (m_faces.size() != 2)
        m_overlay->setChecked(false);
    m_canvas->setMinimumHeight(m_canvas->sizeHint().height());
    m_canvas->update();
}

void CompareView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT closeRequested();
        return;
    }
    QWidget::keyPressEvent(event);
}
