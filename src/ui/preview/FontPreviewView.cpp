// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/preview/FontPreviewView.h"

#include "ui/preview/AxisControls.h"
#include "ui/preview/FeatureToggles.h"
#include "ui/preview/SampleView.h"
#include "ui/common/Symbols.h"
#include "ui/common/TextStyles.h"
#include "state/AppState.h"

#include <QAction>
#include <QCheckBox>
#include <QFrame>
#include <QFutureWatcher>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Each row's English name is also its value label's object name.
const char *const kRowNames[] = {QT_TRANSLATE_NOOP("FontPreviewView", "Family"), QT_TRANSLATE_NOOP("FontPreviewView", "Style"),
                                 QT_TRANSLATE_NOOP("FontPreviewView", "PostScript"), QT_TRANSLATE_NOOP("FontPreviewView", "Format"),
                                 QT_TRANSLATE_NOOP("FontPreviewView", "Size"), QT_TRANSLATE_NOOP("FontPreviewView", "Glyphs"),
                                 QT_TRANSLATE_NOOP("FontPreviewView", "Type")};
const QStringList kRows = [] {
    QStringList rows;
    for (const char *name : kRowNames)
        rows.append(QString::fromLatin1(name));
    return rows;
}();

QIcon activationIcon(ActivationState state, const QPalette &palette)
{
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    Symbols::drawActivation(painter, QRectF(2, 2, 28, 28), state, palette);
    return QIcon(pixmap);
}

// A text box with letters in it, where the desktop's theme has no icon for text.
QPixmap textSymbol(const QPalette &palette)
{
    const QIcon themed = QIcon::fromTheme(u"insert-text"_s);
    if (!themed.isNull())
        return themed.pixmap(16, 16);
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor colour = Symbols::secondary(palette);
    painter.setPen(QPen(colour, 2));
    painter.drawRoundedRect(QRectF(3, 5, 26, 22), 4, 4);
    Symbols::drawFontFile(painter, QRectF(7, 8, 18, 16), colour);
    painter.end();
    pixmap.setDevicePixelRatio(2);
    return pixmap;
}

QFrame *divider(QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

} // namespace

FontPreviewView::FontPreviewView(AppState &state, FontNode fontNode, QWidget *parent)
    : QScrollArea(parent)
    , m_state(state)
    , m_fontNode(std::move(fontNode))
{
    setAccessibleName(tr("Preview"));
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    auto *content = new QWidget(this);
    m_layout = new QVBoxLayout(content);
    m_layout->setContentsMargins(20, 20, 20, 20);
    m_layout->setSpacing(16);
    m_layout->addWidget(buildMetadataSection());
    m_layout->addWidget(divider(content));
    m_layout->addWidget(buildPreviewSection());
    m_layout->addWidget(buildCharacterSet());
    m_layout->addStretch(1);
    setWidget(content);

    // Ctrl+Plus / Ctrl+Minus while the pane is shown, wherever the focus is in the window.
    auto *larger = new QAction(tr("Larger Preview"), this);
    larger->setShortcuts({QKeySequence::ZoomIn, QKeySequence(Qt::CTRL | Qt::Key_Equal)});
    connect(larger, &QAction::triggered, this, [this] { stepSize(+1); });
    auto *smaller = new QAction(tr("Smaller Preview"), this);
    smaller->setShortcuts({QKeySequence::ZoomOut});
    connect(smaller, &QAction::triggered, this, [this] { stepSize(-1); });
    for (QAction *action : {larger, smaller}) {
        action->setShortcutContext(Qt::WindowShortcut);
        addAction(action);
    }

    connect(&m_state, &AppState::previewTextChanged, this, &FontPreviewView::syncText);
    connect(&m_state, &AppState::previewSizeChanged, this, &FontPreviewView::syncSize);
    connect(&m_state, &AppState::activatedFontsChanged, this, &FontPreviewView::syncActivation);
    syncText();
    syncSize();
    syncActivation();
    for (SampleView *view : {m_sample, m_characters})
        connect(view, &SampleView::fileChanged, this, &FontPreviewView::reloadChangedFile, Qt::QueuedConnection);
    startLoading();
}

FontPreviewView::~FontPreviewView()
{
    m_cancellation.cancel(); // a request still queued does no work for a pane that's gone
}

QString FontPreviewView::typeText(const FontMetadata &metadata)
{
    const qsizetype axes = metadata.variationAxes.size();
    if (axes == 0)
        return tr("Static Font");
    return u"Variable Font (%1 %2)"_s.arg(axes).arg(axes == 1 ? u"axis"_s : u"axes"_s);
}

QWidget *FontPreviewView::buildMetadataSection()
{
    auto *section = new QWidget;
    auto *layout = new QVBoxLayout(section);
    layout->setContentsMargins(0, 0, 0, 0);
    m_status = new QLabel(tr("Loading font…"), section);
    // A screen reader hears a label's own text; what it is goes to the description.
    m_status->setObjectName(u"Font status"_s);
    m_status->setAccessibleDescription(tr("Font status"));
    layout->addWidget(m_status);

    m_details = new QWidget(section);
    auto *details = new QVBoxLayout(m_details);
    details->setContentsMargins(0, 0, 0, 0);
    m_heading = new QLabel(m_details);
    m_heading->setFont(TextStyles::title2(font()));
    m_heading->setObjectName(u"Font family"_s);
    m_heading->setAccessibleDescription(tr("Font family"));
    m_heading->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_heading->setWordWrap(true);
    details->addWidget(m_heading);
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(4);
    for (const QString &row : kRows) {
        const QString shown = tr(row.toLatin1().constData());
        auto *label = new QLabel(shown, m_details);
        TextStyles::applySecondary(label);
        auto *value = new QLabel(m_details);
        value->setObjectName(row);
        value->setAccessibleDescription(shown);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        value->setTextFormat(Qt::PlainText);
        label->setBuddy(value);
        const int line = static_cast<int>(m_values.size());
        grid->addWidget(label, line, 0, Qt::AlignLeft | Qt::AlignTop);
        grid->addWidget(value, line, 1, Qt::AlignLeft | Qt::AlignTop);
        m_values.insert(row, value);
    }
    grid->setColumnStretch(1, 1);
    details->addLayout(grid);
    m_details->hide();
    layout->addWidget(m_details);

    m_activate = new QPushButton(section);
    connect(m_activate, &QPushButton::clicked, this, [this] { m_state.toggleActivation(m_fontNode); });
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addWidget(m_activate);
    buttonRow->addStretch(1);
    layout->addLayout(buttonRow);
    return section;
}

QWidget *FontPreviewView::buildPreviewSection()
{
    auto *section = new QWidget;
    auto *layout = new QVBoxLayout(section);
    layout->setContentsMargins(0, 0, 0, 0);

    auto *textRow = new QHBoxLayout;
    auto *symbol = new QLabel(section);
    symbol->setPixmap(textSymbol(palette()));
    symbol->setAccessibleName(tr("Preview text")); // the field's picture, nothing to press
    textRow->addWidget(symbol);
    m_textField = new QLineEdit(section);
    m_textField->setPlaceholderText(tr("Preview text…"));
    m_textField->setAccessibleName(tr("Preview text"));
    connect(m_textField, &QLineEdit::textEdited, &m_state, &AppState::setPreviewText);
    textRow->addWidget(m_textField, 1);
    m_clear = new QPushButton(tr("Clear"), section);
    m_clear->setAccessibleName(m_clear->text());
    connect(m_clear, &QPushButton::clicked, this, [this] { m_state.setPreviewText({}); });
    textRow->addWidget(m_clear);
    layout->addLayout(textRow);

    auto *sizeRow = new QHBoxLayout;
    m_sizeLabel = new QLabel(section);
    TextStyles::applyCaption(m_sizeLabel);
    m_sizeLabel->setFixedWidth(40);
    m_sizeLabel->setAccessibleName(tr("Preview size value"));
    sizeRow->addWidget(m_sizeLabel);
    m_sizeSlider = new QSlider(Qt::Horizontal, section);
    m_sizeSlider->setRange(kMinimumSize, kMaximumSize);
    m_sizeSlider->setPageStep(12);
    m_sizeSlider->setAccessibleName(tr("Preview size"));
    connect(m_sizeSlider, &QSlider::valueChanged, this, [this](int size) { m_state.setPreviewSize(size); });
    sizeRow->addWidget(m_sizeSlider, 1);
    m_waterfall = new QCheckBox(tr("Waterfall"), section);
    m_waterfall->setAccessibleName(m_waterfall->text());
    m_waterfall->setToolTip(tr("Show the text at 12, 18, 24, 36, 48, 72 and 96 pt"));
    connect(m_waterfall, &QCheckBox::toggled, this, [this](bool on) {
        m_sample->setWaterfall(on ? QList<double>(kWaterfallSizes.cbegin(), kWaterfallSizes.cend()) : QList<double>{});
    });
    sizeRow->addWidget(m_waterfall);
    layout->addLayout(sizeRow);

    m_sample = new SampleView(section);
    m_sample->setAccessibleName(tr("Sample"));
    m_sample->hide();
    layout->addWidget(m_sample);
    m_noPreview = new QLabel(tr("Unable to preview this font"), section);
    m_noPreview->setAccessibleName(tr("Sample"));
    TextStyles::applySecondary(m_noPreview);
    m_noPreview->hide();
    layout->addWidget(m_noPreview);
    return section;
}

QWidget *FontPreviewView::buildCharacterSet()
{
    m_characterSet = new QWidget;
    auto *layout = new QVBoxLayout(m_characterSet);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *caption = new QLabel(tr("Character Set"), m_characterSet);
    TextStyles::applyCaption(caption);
    layout->addWidget(caption);
    m_characters = new SampleView(m_characterSet);
    m_characters->setAccessibleName(tr("Character Set"));
    m_characters->setText(u"ABCDEFGHIJKLMNOPQRSTUVWXYZ\nabcdefghijklmnopqrstuvwxyz\n0123456789\n!@#$%^&*(){}[]<>/?|\\~`+=_-"_s);
    m_characters->setPointSize(18);
    layout->addWidget(m_characters);
    m_characterSet->hide();
    return m_characterSet;
}

void FontPreviewView::reloadChangedFile()
{
    if (m_isLoading)
        return; // already on its way
    // Drop everything drawn from the old bytes, then read the file as it is now: the
    // service sees the new size or time and reads it afresh.
    m_sample->setRenderer(nullptr);
    m_characters->setRenderer(nullptr);
    m_renderer.reset();
    for (QWidget *section : {static_cast<QWidget *>(m_axes), static_cast<QWidget *>(m_features)}) {
        if (section) {
            section->hide();
            section->deleteLater();
        }
    }
    m_axes = nullptr;
    m_features = nullptr;
    m_axisValues.clear();
    m_metadata.reset();
    m_isLoading = true;
    m_details->hide();
    m_status->setText(tr("Loading font…"));
    m_status->show();
    startLoading();
}

void FontPreviewView::startLoading()
{
    auto *watcher = new QFutureWatcher<std::optional<FontMetadata>>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
        watcher->deleteLater();
        if (m_cancellation.isCancelled())
            return; // superseded: change nothing
        applyMetadata(watcher->result());
    });
    watcher->setFuture(m_state.previewService().load(m_fontNode.path(), m_cancellation));
}

void FontPreviewView::applyMetadata(std::optional<FontMetadata> metadata)
{
    m_metadata = std::move(metadata);
    m_isLoading = false;
    if (m_metadata) {
        if (const auto file = m_state.previewService().registry()->fontFile(m_fontNode.path()))
            m_renderer = SampleRenderer::open(file);
        showMetadata(*m_metadata);
    } else {
        m_status->setText(tr("Unable to read font metadata"));
    }
    m_sample->setRenderer(m_renderer.get());
    m_characters->setRenderer(m_renderer.get());
    m_sample->setVisible(m_renderer != nullptr);
    m_characterSet->setVisible(m_renderer != nullptr);
    m_noPreview->setVisible(m_renderer == nullptr);
    Q_EMIT loaded();
}

void FontPreviewView::showMetadata(const FontMetadata &metadata)
{
    m_status->hide();
    m_heading->setText(metadata.familyName);
    const QStringList values{metadata.familyName, metadata.styleName,  metadata.postScriptName,
                             metadata.fileType,   metadata.fileSize,   QString::number(metadata.glyphCount),
                             typeText(metadata)};
    for (qsizetype row = 0; row < kRows.size(); ++row) {
        QLabel *value = m_values.value(kRows.at(row));
        value->setText(values.at(row)); // heard as its name; the row's caption is its description
    }
    m_details->show();

    // The axes and features follow the sample; the character set stays last.
    const int at = m_layout->indexOf(m_characterSet);
    for (const VariationAxis &axis : metadata.variationAxes)
        m_axisValues.insert(axis.id, axis.defaultValue);
    if (!metadata.variationAxes.isEmpty()) {
        m_axes = new AxisControls(metadata.variationAxes, m_renderer ? m_renderer->namedInstances() : QList<NamedInstance>{},
                                  widget());
        connect(m_axes, &AxisControls::valuesChanged, this, &FontPreviewView::applyVariations);
        m_layout->insertWidget(at, m_axes);
        m_axes->show(); // at once, not when the layout gets round to it
    }
    const QList<quint32> features = m_renderer ? m_renderer->featureTags() : QList<quint32>{};
    if (!features.isEmpty()) {
        QHash<quint32, QString> named;
        for (const quint32 tag : features) {
            const char first = char(tag >> 24), second = char(tag >> 16);
            if ((first == 's' && second == 's') || (first == 'c' && second == 'v')) {
                if (const QString name = m_renderer->featureName(tag); !name.isEmpty())
                    named.insert(tag, name);
            }
        }
        m_features = new FeatureToggles(features, named, widget());
        connect(m_features, &FeatureToggles::changed, this, &FontPreviewView::applyFeatures);
        m_layout->insertWidget(m_layout->indexOf(m_characterSet), m_features);
        m_features->show();
    }
}

void FontPreviewView::applyVariations()
{
    m_axisValues = m_axes->values();
    if (!m_renderer)
        return;
    m_renderer->setVariations(m_axisValues);
    m_sample->relayout();
    m_characters->relayout();
}

void FontPreviewView::applyFeatures()
{
    m_renderer->setFeatures(m_features->changes());
    m_sample->relayout();
    m_characters->relayout();
}

void FontPreviewView::changeEvent(QEvent *event)
{
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_activate) {
        m_activate->setIcon({}); // drawn again in the new palette's green
        syncActivation();
    }
}

void FontPreviewView::syncActivation()
{
    const ActivationState now = m_state.activationState(m_fontNode);
    const bool active = isOn(now);
    const QString text = active ? tr("Deactivate") : tr("Activate");
    if (m_activate->text() == text && !m_activate->icon().isNull())
        return;
    m_activate->setText(text);
    m_activate->setAccessibleName(text);
    m_activate->setIcon(activationIcon(now == ActivationState::Mixed ? ActivationState::Active : now, palette()));
}

void FontPreviewView::syncText()
{
    const QString &text = m_state.previewText();
    if (m_textField->text() != text) {
        m_textField->setText(text);
        if (!m_textField->hasFocus())
            m_textField->setCursorPosition(0); // a long text shows its start, as it reads
    }
    m_clear->setEnabled(!text.isEmpty());
    m_sample->setText(text);
}

double FontPreviewView::shownSize() const
{
    return std::clamp<double>(m_state.previewSize(), kMinimumSize, kMaximumSize);
}

void FontPreviewView::syncSize()
{
    const double size = shownSize();
    m_sizeLabel->setText(u"%1 pt"_s.arg(static_cast<int>(size)));
    {
        const QSignalBlocker quiet(m_sizeSlider);
        m_sizeSlider->setValue(static_cast<int>(size));
    }
    m_sample->setPointSize(size);
}

void FontPreviewView::stepSize(int direction)
{
    // To the next of the waterfall's sizes, the steps type designers think in.
    const double size = shownSize();
    if (direction > 0) {
        const auto next = std::upper_bound(kWaterfallSizes.cbegin(), kWaterfallSizes.cend(), size);
        m_state.setPreviewSize(next == kWaterfallSizes.cend() ? kMaximumSize : *next);
    } else {
        const auto next = std::lower_bound(kWaterfallSizes.cbegin(), kWaterfallSizes.cend(), size);
        m_state.setPreviewSize(next == kWaterfallSizes.cbegin() ? kMinimumSize : *(next - 1));
    }
}
