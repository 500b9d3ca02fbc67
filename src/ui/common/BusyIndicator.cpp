// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/BusyIndicator.h"

#include <QPainter>
#include <QTimer>

#include <cmath>
#include <numbers>

namespace {
constexpr int kSpokes = 8;
constexpr int kStepMs = 100;
} // namespace

BusyIndicator::BusyIndicator(int side, QWidget *parent)
    : QWidget(parent)
    , m_side(side)
    , m_timer(new QTimer(this))
{
    setFixedSize(side, side);
    m_timer->setInterval(kStepMs);
    connect(m_timer, &QTimer::timeout, this, [this] {
        m_step = (m_step + 1) % kSpokes;
        update();
    });
}

QSize BusyIndicator::sizeHint() const
{
    return {m_side, m_side};
}

void BusyIndicator::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_timer->start();
}

void BusyIndicator::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_timer->stop();
}

void BusyIndicator::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF centre = QRectF(rect()).center();
    const qreal outer = m_side / 2.0 - 1;
    const qreal inner = outer * 0.45;
    QColor ink = palette().color(QPalette::WindowText);
    for (int i = 0; i < kSpokes; ++i) {
        // The spoke at the current step is darkest; the ones behind it fade.
        const int age = (m_step - i + kSpokes) % kSpokes;
        ink.setAlphaF(static_cast<float>(1.0 - 0.8 * age / kSpokes));
        painter.setPen(QPen(ink, std::max(1.5, m_side / 9.0), Qt::SolidLine, Qt::RoundCap));
        const qreal angle = 2 * std::numbers::pi * i / kSpokes - std::numbers::pi / 2;
        const QPointF direction(std::cos(angle), std::sin(angle));
        painter.drawLine(centre + direction * inner, centre + direction * outer);
    }
}
