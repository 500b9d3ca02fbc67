// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

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

} // namespace Reading
