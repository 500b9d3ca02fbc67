// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRectF>

class QPainter;
class QPalette;

// The background every list row paints under itself, one look for all lists: the accent
// colour when selected in the focused list, the quieter selection colour otherwise, a
// faint accent wash under the mouse, nothing else.
namespace RowBackground {

enum class State { Plain, Hovered, Selected, SelectedFocused };

constexpr qreal kRadius = 4;

void paint(QPainter &painter, const QRectF &rect, const QPalette &palette, State state);
// The state a row is in, from what its delegate knows.
State stateOf(bool selected, bool focused, bool hovered);

} // namespace RowBackground
