// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/ProcessingOverlay.h"

#include "ui/common/TextStyles.h"

#include "state/AppState.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QProgressBar>
#include <QPropertyAnimation>
#include <QVBoxLayout>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr int kCardContentWidth = 300;
constexpr int kCardPadding = 24;
constexpr qreal kCardRadius = 12;
constexpr int kFadeMs = 150;
constexpr int kBarSteps = 1000;
// A batch over sooner shows nothing: a card that flashes for a few milliseconds is noise,
// and a screen reader would announce it.
constexpr int kShowDelayMs = 200;

} // namespace

QString ProcessingOverlay::percentText(double progress)
{
    // Cut, never rounded up; the tiny nudge keeps 29 of 100 (0.29 × 100 = 28.999…) at 29.
    return u"%1%"_s.arg(static_cast<long long>(std::trunc(progress * 100 + 1e-9)));
}

ProcessingOverlay::ProcessingOverlay(AppState &state, QWidget *window)
    : QWidget(window)
    , m_state(state)
    , m_card(new QWidget(this))
    , m_message(new QLabel(m_card))
    , m_bar(new QProgressBar(m_card))
    , m_percentage(new QLabel(m_card))
    , m_stalled(new QLabel(m_card))
    , m_cancel(new QPushButton(m_card))
    , m_fade(new QGraphicsOpacityEffect(this))
    , m_animation(new QPropertyAnimation(m_fade, "opacity", this))
{
    setAccessibleName(tr("Working"));
    setFocusPolicy(Qt::StrongFocus);
    auto *outer = new QVBoxLayout(this);
    outer->addWidget(m_card, 0, Qt::AlignCenter);
    auto *column = new QVBoxLayout(m_card);
    column->setContentsMargins(kCardPadding, kCardPadding, kCardPadding, kCardPadding);
    column->setSpacing(14);
    m_card->setFixedWidth(kCardContentWidth + 2 * kCardPadding);
    QFont headline = m_message->font();
    headline.setWeight(QFont::DemiBold);
    m_message->setFont(headline);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_bar->setRange(0, kBarSteps);
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(tr("Progress"));
    m_percentage->setAlignment(Qt::AlignCenter);
    TextStyles::applyCaption(m_percentage);
    column->addWidget(m_message);
    column->addWidget(m_bar);
    column->addWidget(m_percentage);
    m_stalled->setText(tr("This is taking longer than it should: a font file or the drive it is on isn't answering."));
    m_stalled->setWordWrap(true);
    m_stalled->setAlignment(Qt::AlignCenter);
    TextStyles::applySecondary(m_stalled);
    m_stalled->hide();
    column->addWidget(m_stalled);
    m_cancel->setText(tr("Cancel"));
    m_cancel->setAccessibleName(m_cancel->text());
    m_cancel->setAccessibleDescription(tr("Stops after the fonts being worked on now; what is done stays done"));
    connect(m_cancel, &QPushButton::clicked, &state, &AppState::cancelBatch);
    column->addWidget(m_cancel, 0, Qt::AlignHCenter);
    connect(&state, &AppState::isProcessingStalledChanged, this, [this] {
        const bool stalled = m_state.isProcessingStalled();
        m_stalled->setVisible(stalled);
        if (stalled && m_state.isProcessing())
            appear(); // a stuck job shows at once, however young
    });
    m_showDelay.setSingleShot(true);
    m_showDelay.setInterval(kShowDelayMs);
    connect(&m_showDelay, &QTimer::timeout, this, [this] {
        if (m_state.isProcessing())
            appear();
    });

    setGraphicsEffect(m_fade);
    m_animation->setDuration(kFadeMs);
    m_animation->setEasingCurve(QEasingCurve::InOutQuad);
    connect(m_animation, &QPropertyAnimation::finished, this, [this] {
        if (!m_state.isProcessing())
            hide();
        m_fade->setEnabled(false); // no offscreen redraws while it stands still
    });
    window->installEventFilter(this);
    setGeometry(window->rect());
    hide();
    connect(&state, &AppState::isProcessingChanged, this, &ProcessingOverlay::follow);
    connect(&state, &AppState::processingProgressChanged, this, &ProcessingOverlay::refresh);
    connect(&state, &AppState::processingMessageChanged, this, &ProcessingOverlay::refresh);
    refresh();
}

void ProcessingOverlay::follow()
{
    refresh();
    if (m_state.isProcessing()) {
        if (isHidden() && !m_showDelay.isActive())
            m_showDelay.start();
        return;
    }
    m_showDelay.stop();
    if (isHidden())
        return; // over before it showed
    // Keys go back where they were while the overlay fades.
    clearFocus();
    if (m_focusBefore)
        m_focusBefore->setFocus(Qt::OtherFocusReason);
    m_animation->stop();
    m_fade->setEnabled(true);
    m_animation->setStartValue(m_fade->opacity());
    m_animation->setEndValue(0.0);
    m_animation->start();
}

void ProcessingOverlay::appear()
{
    m_showDelay.stop();
    if (isHidden()) {
        QWidget *focus = window()->focusWidget();
        m_focusBefore = focus != this ? focus : nullptr;
        m_animation->stop();
        m_fade->setEnabled(true);
        m_fade->setOpacity(0);
        m_animation->setStartValue(0.0);
        m_animation->setEndValue(1.0);
        m_animation->start();
    }
    setGeometry(parentWidget()->rect());
    show();
    raise();
    // The one button takes the keys: Space or Enter cancel, as Escape does anywhere here.
    m_cancel->setFocus(Qt::OtherFocusReason);
}

void ProcessingOverlay::refresh()
{
    const double progress = std::clamp(m_state.processingProgress(), 0.0, 1.0);
    m_message->setText(m_state.processingMessage());
    m_bar->setValue(static_cast<int>(std::lround(progress * kBarSteps)));
    m_percentage->setText(percentText(m_state.processingProgress()));
}

bool ProcessingOverlay::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

// Everything aimed at the window beneath ends here while the job runs.
bool ProcessingOverlay::event(QEvent *event)
{
    if (!m_state.isProcessing())
        return QWidget::event(event);
    if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        // Quitting is never held up by a job (it waits for the chunk in flight).
        if (key->matches(QKeySequence::Quit) || key->keyCombination() == QKeyCombination(Qt::ControlModifier, Qt::Key_Q))
            return QWidget::event(event);
        if (key->key() == Qt::Key_Escape && event->type() == QEvent::KeyPress) {
            m_state.cancelBatch();
            return true;
        }
    }
    switch (event->type()) {
    case QEvent::ShortcutOverride: // taking it keeps menu shortcuts from firing
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        event->accept();
        return true;
    default:
        return QWidget::event(event);
    }
}

bool ProcessingOverlay::focusNextPrevChild(bool next)
{
    return m_state.isProcessing() || QWidget::focusNextPrevChild(next); // Tab stays here meanwhile
}

void ProcessingOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(0, 0, 0, 64)); // black at 25 %
    const QRectF card = QRectF(m_card->geometry());
    // A soft shadow below the card: rings of fading black, 4 px lower.
    for (int ring = 10; ring >= 1; --ring) {
        QPainterPath shadow;
        const qreal grow = ring * 2.0;
        shadow.addRoundedRect(card.translated(0, 4).adjusted(-grow, -grow, grow, grow), kCardRadius + grow,
                              kCardRadius + grow);
        painter.fillPath(shadow, QColor(0, 0, 0, 8));
    }
    QPainterPath body;
    body.addRoundedRect(card, kCardRadius, kCardRadius);
    QColor material = palette().color(QPalette::Window);
    material.setAlphaF(0.92f);
    painter.fillPath(body, material);
}
