// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRectF>
#include <QWidget>

#include <initializer_list>

// Left and Right as the reading goes: in Arabic or Hebrew the arrow that points along the
// text (Left) goes deeper, as Right does in left-to-right text. Other keys pass unchanged.
namespace Reading {

inline int logicalKey(const QWidget *widget, int key)
{
    if (widget->layoutDirection() != Qt::RightToLeft)
        return key;
    if (key == Qt::Key_Left)
        return Qt::Key_Right;
    if (key == Qt::Key_Right)
        return Qt::Key_Left;
    return key;
}

// A row's parts as the reading goes: mirrored about the row's middle in right-to-left.
inline void mirror(const QRect &row, Qt::LayoutDirection direction, std::initializer_list<QRectF *> parts)
{
    if (direction != Qt::RightToLeft)
        return;
    const qreal axis = row.left() + row.right() + 1;
    for (QRectF *part : parts)
        part->moveLeft(axis - part->right());
}

// Where a line of text starts: the left, or the right in right-to-left.
inline Qt::Alignment leading(Qt::LayoutDirection direction)
{
    return direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
}

} // namespace Reading
