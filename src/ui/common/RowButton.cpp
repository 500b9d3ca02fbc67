// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/RowButton.h"

#include <QMouseEvent>

namespace RowButton {

Hit hit(const QEvent *event, const QRectF &button)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseButtonRelease && type != QEvent::MouseButtonDblClick)
        return Hit::Outside;
    const auto *mouse = static_cast<const QMouseEvent *>(event);
    if (mouse->button() != Qt::LeftButton || !button.contains(mouse->position()))
        return Hit::Outside;
    // The second press of a double click is a click of its own: two quick clicks
    // toggle twice, as two slow ones do.
    return type == QEvent::MouseButtonRelease ? Hit::Swallowed : Hit::Click;
}

QVariant checkState(int activationState)
{
    switch (activationState) {
    case 0: return Qt::Unchecked;
    case 1: return Qt::Checked;
    case 2: return Qt::PartiallyChecked;
    case 3: return Qt::Checked; // active for this session
    default: return {};
    }
}

} // namespace RowButton
