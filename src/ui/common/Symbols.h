// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ActivationState.h"

#include <QColor>
#include <QPalette>
#include <QRectF>

class QPainter;

// The symbols that carry state or colour, drawn with QPainter so they take exact
// colours, follow the palette and stay crisp at any scale; and the named colours.
namespace Symbols {

bool isDark(const QPalette &palette);
// Green as the desktop's light or dark appearance wants it.
QColor green(const QPalette &palette);
// A named colour (green, red, yellow, purple, orange) in its dark variant on a dark
// palette; any other colour as it is.
QColor forAppearance(const QColor &colour, const QPalette &palette);
// Primary text at the opacity of secondary (about 55 %) or tertiary (30 %) text.
// Secondary text is made no fainter than a contrast of 4.5:1 on the window's colour.
QColor secondary(const QPalette &palette);
// The WCAG contrast ratio of two opaque colours, 1 to 21.
double contrast(const QColor &a, const QColor &b);
QColor tertiary(const QPalette &palette);
// The unemphasised selection: the inactive group's highlight, or Mid when it is the same.
QColor unemphasisedSelection(const QPalette &palette);

// An empty circle, a check in a filled circle, or a minus in a filled circle.
void drawActivation(QPainter &painter, const QRectF &box, ActivationState state, const QPalette &palette);
void drawFolder(QPainter &painter, const QRectF &box, const QColor &colour);
void drawFontFile(QPainter &painter, const QRectF &box, const QColor &colour);
// Points right, or left for right-to-left reading.
void drawChevron(QPainter &painter, const QRectF &box, const QColor &colour, bool pointsLeft = false);
// A closed archive box: a source's folder.
void drawArchiveBox(QPainter &painter, const QRectF &box, const QColor &colour);
// A five-pointed star, filled: the "Favorites" collection.
void drawStar(QPainter &painter, const QRectF &box, const QColor &colour);
// Three stacked layers: any other collection.
void drawStack(QPainter &painter, const QRectF &box, const QColor &colour);
// A folder with a plus badge at its lower right: "add a folder".
void drawFolderBadgePlus(QPainter &painter, const QRectF &box, const QColor &colour, const QColor &badgeInk);
// A magnifying glass: search.
void drawMagnifier(QPainter &painter, const QRectF &box, const QColor &colour);
// A cross in a filled circle: clear a field.
void drawClear(QPainter &painter, const QRectF &box, const QColor &colour, const QColor &crossInk);
QColor amber();  // the star's colour
QColor purple(const QPalette &palette);

} // namespace Symbols
