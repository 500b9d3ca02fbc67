// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/RowBackground.h"

#include "ui/common/Symbols.h"

#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace RowBackground {

State stateOf(bool selected, bool focused, bool hovered)
{
    if (selected)
        return focused ? State::SelectedFocused : State::Selected;
    return hovered ? State::Hovered : State::Plain;
}

void paint(QPainter &painter, const QRectF &rect, const QPalette &palette, State state)
{
    QColor fill;
    switch (state) {
    case State::Plain: return;
    case State::SelectedFocused: fill = palette.color(QPalette::Active, QPalette::Highlight); break;
    case State::Selected: fill = Symbols::unemphasisedSelection(palette); break;
    case State::Hovered:
        fill = palette.color(QPalette::Active, QPalette::Highlight);
        fill.setAlphaF(0.08f);
        break;
    }
    QPainterPath shape;
    shape.addRoundedRect(rect, kRadius, kRadius);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape, fill);
    painter.restore();
}

} // namespace RowBackground
