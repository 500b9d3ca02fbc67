// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/ToolbarInputField.h"

#include "ui/common/Symbols.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

constexpr int kFieldWidth = 400;
constexpr qreal kCornerRadius = 6;

// The leading magnifier, in the secondary text colour.
class Magnifier : public QWidget
{
public:
    using QWidget::QWidget;
    QSize sizeHint() const override
    {
        const int side = fontMetrics().height() * 12 / 16;
        return {side, side};
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Symbols::drawMagnifier(painter, QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Symbols::secondary(palette()));
    }
};

// The clear button's filled circle with its cross, in the tertiary text colour.
class ClearButton : public QToolButton
{
public:
    using QToolButton::QToolButton;
    QSize sizeHint() const override
    {
        const int side = fontMetrics().height() * 14 / 16 + 2;
        return {side, side};
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const qreal side = std::min(width(), height()) - 2;
        const QRectF box(QRectF(rect()).center() - QPointF(side / 2, side / 2), QSizeF(side, side));
        QColor circle = Symbols::tertiary(palette());
        if (isDown())
            circle = Symbols::secondary(palette());
        Symbols::drawClear(painter, box, circle, palette().color(QPalette::Base));
    }
};

} // namespace

ToolbarInputField::ToolbarInputField(const QString &placeholder, QWidget *parent)
    : QWidget(parent)
    , m_edit(new QLineEdit(this))
    , m_clear(new ClearButton(this))
{
    setFixedWidth(kFieldWidth);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(8, 5, 8, 5);
    row->setSpacing(6);
    auto *magnifier = new Magnifier(this);
    row->addWidget(magnifier);
    m_edit->setFrame(false);
    m_edit->setPlaceholderText(placeholder);
    m_edit->setStyleSheet(u"QLineEdit { background: transparent; }"_s);
    m_edit->installEventFilter(this);
    row->addWidget(m_edit, 1);
    m_clear->setToolTip(tr("Clear"));
    m_clear->setAccessibleName(tr("Clear"));
    m_clear->setCursor(Qt::ArrowCursor);
    m_clear->setFocusPolicy(Qt::NoFocus); // Escape clears from the keyboard
    // Keeps its place while hidden, so the field does not jump when text appears.
    QSizePolicy policy = m_clear->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_clear->setSizePolicy(policy);
    m_clear->setEnabled(false);
    m_clear->hide();
    row->addWidget(m_clear);
    setFocusProxy(m_edit);
    connect(m_clear, &QToolButton::clicked, this, &ToolbarInputField::clear);
    connect(m_edit, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_clear->setVisible(!text.isEmpty());
        m_clear->setEnabled(!text.isEmpty());
        Q_EMIT draftChanged(text);
    });
}

QString ToolbarInputField::draft() const
{
    return m_edit->text();
}

void ToolbarInputField::setDraft(const QString &draft)
{
    if (m_edit->text() != draft)
        m_edit->setText(draft);
}

void ToolbarInputField::focusField()
{
    m_edit->setFocus(Qt::ShortcutFocusReason);
    m_edit->selectAll();
}

void ToolbarInputField::clear()
{
    setDraft(QString());
    Q_EMIT cleared();
}

bool ToolbarInputField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_edit && (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut))
        update(); // the outline shows where the keyboard is
    if (watched == m_edit && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape && !m_edit->text().isEmpty()) {
        clear();
        return true;
    }
    if (watched == m_edit && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down) {
        Q_EMIT downPressed();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ToolbarInputField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(0.25, 0.25, -0.25, -0.25);
    QPainterPath outline;
    outline.addRoundedRect(box, kCornerRadius, kCornerRadius);
    painter.fillPath(outline, palette().color(QPalette::Base));
    QColor edge = palette().color(QPalette::Mid);
    edge.setAlphaF(0.5f);
    painter.setPen(QPen(m_edit->hasFocus() ? palette().color(QPalette::Highlight) : edge, m_edit->hasFocus() ? 1.0 : 0.5));
    painter.drawPath(outline);
}
