// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/Symbols.h"

#include <algorithm>
#include <cmath>

#include <QPainter>
#include <QPainterPath>

namespace Symbols {

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

QColor green(const QPalette &palette)
{
    return isDark(palette) ? QColor(48, 209, 88) : QColor(52, 199, 89);
}

QColor forAppearance(const QColor &colour, const QPalette &palette)
{
    if (!isDark(palette))
        return colour;
    static const std::pair<QRgb, QRgb> kDark[] = {
        {qRgb(52, 199, 89), qRgb(48, 209, 88)},  {qRgb(255, 59, 48), qRgb(255, 69, 58)},
        {qRgb(255, 204, 0), qRgb(255, 214, 10)}, {qRgb(175, 82, 222), qRgb(191, 90, 242)},
        {qRgb(255, 149, 0), qRgb(255, 159, 10)},
    };
    for (const auto &[light, dark] : kDark) {
        if (colour.rgb() == light)
            return QColor::fromRgb(dark);
    }
    return colour;
}

namespace {

double luminance(const QColor &colour)
{
    const auto channel = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(colour.redF()) + 0.7152 * channel(colour.greenF()) + 0.0722 * channel(colour.blueF());
}

QColor over(const QColor &top, float alpha, const QColor &below)
{
    return QColor::fromRgbF(top.redF() * alpha + below.redF() * (1 - alpha), top.greenF() * alpha + below.greenF() * (1 - alpha),
                            top.blueF() * alpha + below.blueF() * (1 - alpha));
}

} // namespace

double contrast(const QColor &a, const QColor &b)
{
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QColor secondary(const QPalette &palette)
{
    QColor colour = palette.color(QPalette::WindowText);
    const QColor window = palette.color(QPalette::Window);
    float alpha = 0.55f;
    // Faint is a look, not a loss: small text stays readable (4.5:1 as drawn, with room
    // for the soft edges of small letters) on light and dark.
    while (alpha < 1.0f && contrast(over(colour, alpha, window), window) < 5.5)
        alpha += 0.05f;
    colour.setAlphaF(std::min(alpha, 1.0f));
    return colour;
}

QColor tertiary(const QPalette &palette)
{
    QColor colour = palette.color(QPalette::WindowText);
    colour.setAlphaF(0.3f);
    return colour;
}

QColor unemphasisedSelection(const QPalette &palette)
{
    const QColor inactive = palette.color(QPalette::Inactive, QPalette::Highlight);
    const QColor base = palette.color(QPalette::Base);
    if (inactive != palette.color(QPalette::Active, QPalette::Highlight) && contrast(inactive, base) >= 1.3)
        return inactive;
    // Text a fifth of the way over the list's colour: seen on a light list and a dark one
    // alike (a dark palette's Mid can be the list's own colour).
    return over(palette.color(QPalette::Text), 0.2f, base);
}

void drawActivation(QPainter &painter, const QRectF &box, ActivationState state, const QPalette &palette)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal side = std::min(box.width(), box.height());
    const QRectF circle(box.center().x() - side / 2, box.center().y() - side / 2, side, side);
    if (state == ActivationState::Inactive) {
        QColor ring = secondary(palette);
        ring.setAlphaF(ring.alphaF() * 0.5f);
        painter.setPen(QPen(ring, side / 12));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(circle.adjusted(side / 12, side / 12, -side / 12, -side / 12));
        painter.restore();
        return;
    }
    QColor fill = green(palette);
    if (state == ActivationState::Mixed)
        fill.setAlphaF(0.5f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawEllipse(circle);
    // The mark in the view's base colour, as if cut out of the disc.
    const QPen mark(palette.color(QPalette::Base), side / 9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(mark);
    painter.setBrush(Qt::NoBrush);
    const QPointF c = circle.center();
    if (state == ActivationState::Session) {
        // A clock's hands: active until the session ends.
        painter.drawLine(c, QPointF(c.x(), c.y() - side * 0.26));
        painter.drawLine(c, QPointF(c.x() + side * 0.2, c.y()));
    } else if (state == ActivationState::Active) {
        QPainterPath check;
        check.moveTo(c.x() - side * 0.22, c.y() + side * 0.02);
        check.lineTo(c.x() - side * 0.06, c.y() + side * 0.18);
        check.lineTo(c.x() + side * 0.24, c.y() - side * 0.16);
        painter.drawPath(check);
    } else {
        painter.drawLine(QPointF(c.x() - side * 0.22, c.y()), QPointF(c.x() + side * 0.22, c.y()));
    }
    painter.restore();
}

void drawFolder(QPainter &painter, const QRectF &box, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal w = box.width();
    const qreal h = w * 0.8;
    const QRectF body(box.left(), box.center().y() - h / 2, w, h);
    QPainterPath folder;
    folder.moveTo(body.left(), body.top() + h * 0.12);
    folder.lineTo(body.left() + w * 0.38, body.top() + h * 0.12);
    folder.lineTo(body.left() + w * 0.48, body.top() + h * 0.26);
    folder.lineTo(body.right(), body.top() + h * 0.26);
    folder.lineTo(body.right(), body.bottom());
    folder.lineTo(body.left(), body.bottom());
    folder.closeSubpath();
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPath(folder);
    painter.restore();
}

void drawFolderBadgePlus(QPainter &painter, const QRectF &box, const QColor &colour, const QColor &badgeInk)
{
    drawFolder(painter, box.adjusted(0, 0, -box.width() * 0.12, -box.height() * 0.08), colour);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal side = box.width() * 0.44;
    const QRectF badge(box.right() - side, box.bottom() - side, side, side);
    // A ring of the background's colour parts the badge from the folder.
    painter.setPen(QPen(badgeInk, side * 0.12));
    painter.setBrush(colour);
    painter.drawEllipse(badge);
    painter.setPen(QPen(badgeInk, side * 0.12, Qt::SolidLine, Qt::RoundCap));
    const QPointF c = badge.center();
    const qreal arm = side * 0.24;
    painter.drawLine(QPointF(c.x() - arm, c.y()), QPointF(c.x() + arm, c.y()));
    painter.drawLine(QPointF(c.x(), c.y() - arm), QPointF(c.x(), c.y() + arm));
    painter.restore();
}

void drawMagnifier(QPainter &painter, const QRectF &box, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal side = std::min(box.width(), box.height());
    const qreal stroke = std::max<qreal>(1.2, side * 0.12);
    const QRectF square(box.center().x() - side / 2, box.center().y() - side / 2, side, side);
    const QRectF lens(square.left() + stroke / 2, square.top() + stroke / 2, side * 0.66, side * 0.66);
    painter.setPen(QPen(colour, stroke, Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(lens);
    const qreal reach = lens.width() / 2 * 0.7071;
    painter.drawLine(lens.center() + QPointF(reach, reach), square.bottomRight() - QPointF(stroke / 2, stroke / 2));
    painter.restore();
}

void drawClear(QPainter &painter, const QRectF &box, const QColor &colour, const QColor &crossInk)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal side = std::min(box.width(), box.height());
    const QRectF circle(box.center().x() - side / 2, box.center().y() - side / 2, side, side);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(circle);
    painter.setPen(QPen(crossInk, side * 0.1, Qt::SolidLine, Qt::RoundCap));
    const QPointF c = circle.center();
    const qreal arm = side * 0.2;
    painter.drawLine(c + QPointF(-arm, -arm), c + QPointF(arm, arm));
    painter.drawLine(c + QPointF(-arm, arm), c + QPointF(arm, -arm));
    painter.restore();
}

void drawFontFile(QPainter &painter, const QRectF &box, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    // A large and a small "A", as a text-format symbol.
    QFont font = painter.font();
    font.setPixelSize(static_cast<int>(box.height() * 0.75));
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(box, Qt::AlignCenter, QStringLiteral("Aa"));
    painter.restore();
}

void drawChevron(QPainter &painter, const QRectF &box, const QColor &colour, bool pointsLeft)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal s = std::min(box.width(), box.height());
    const QPointF c = box.center();
    painter.setPen(QPen(colour, s / 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    QPainterPath chevron;
    const qreal way = pointsLeft ? -1 : 1;
    chevron.moveTo(c.x() - way * s * 0.15, c.y() - s * 0.35);
    chevron.lineTo(c.x() + way * s * 0.2, c.y());
    chevron.lineTo(c.x() - way * s * 0.15, c.y() + s * 0.35);
    painter.drawPath(chevron);
    painter.restore();
}

void drawArchiveBox(QPainter &painter, const QRectF &box, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF lid(box.left() + box.width() * 0.05, box.top() + box.height() * 0.18, box.width() * 0.9,
                     box.height() * 0.2);
    const QRectF body(box.left() + box.width() * 0.12, lid.bottom() + box.height() * 0.04, box.width() * 0.76,
                      box.bottom() - lid.bottom() - box.height() * 0.14);
    QPainterPath shape;
    shape.addRoundedRect(lid, box.width() * 0.06, box.width() * 0.06);
    shape.addRoundedRect(body, box.width() * 0.08, box.width() * 0.08);
    // The handle is cut out of the body.
    QPainterPath handle;
    const qreal handleHeight = box.height() * 0.08;
    handle.addRoundedRect(QRectF(box.center().x() - box.width() * 0.16, body.top() + box.height() * 0.1,
                                 box.width() * 0.32, handleHeight),
                          handleHeight / 2, handleHeight / 2);
    painter.fillPath(shape.subtracted(handle), colour);
    painter.restore();
}

void drawStar(QPainter &painter, const QRectF &box, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF centre = box.center() + QPointF(0, box.height() * 0.04);
    const qreal outer = std::min(box.width(), box.height()) * 0.5;
    const qreal inner = outer * 0.45;
    QPolygonF star;
    for (int i = 0; i < 10; ++i) {
        const qreal angle = -M_PI / 2 + i * M_PI / 5;
        const qreal radius = i % 2 == 0 ? outer : inner;
        star << centre + QPointF(std::cos(angle) * radius, std::sin(angle) * radius);
    }
    QPainterPath shape;
    shape.addPolygon(star);
    shape.closeSubpath();
    painter.fillPath(shape, colour);
    painter.restore();
}

void drawStack(QPainter &painter, const QRectF &box, const QColor &colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal w = box.width();
    const qreal h = box.height();
    // Three flattened diamonds, the top one solid, the ones below as their visible rims.
    for (int layer = 2; layer >= 0; --layer) {
        const qreal top = box.top() + h * (0.08 + 0.17 * layer);
        QPolygonF diamond;
        diamond << QPointF(box.left() + w * 0.5, top) << QPointF(box.right() - w * 0.04, top + h * 0.24)
                << QPointF(box.left() + w * 0.5, top + h * 0.48) << QPointF(box.left() + w * 0.04, top + h * 0.24);
        QPainterPath shape;
        shape.addPolygon(diamond);
        shape.closeSubpath();
        QColor fill = colour;
        fill.setAlphaF(colour.alphaF() * (layer == 0 ? 1.0 : layer == 1 ? 0.7 : 0.45));
        painter.fillPath(shape, fill);
    }
    painter.restore();
}

QColor amber()
{
    return QColor::fromRgbF(1.0f, 0.624f, 0.043f);
}

QColor purple(const QPalette &palette)
{
    return isDark(palette) ? QColor(191, 90, 242) : QColor(175, 82, 222);
}

} // namespace Symbols
