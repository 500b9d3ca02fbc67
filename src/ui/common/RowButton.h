// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRectF>
#include <QVariant>

class QEvent;

// The round activation button a row draws at its left. Delegates hand it the mouse
// events their view passes on; a press inside is a click, and the release and double
// click that follow are swallowed so the row under the button is neither selected,
// opened nor dragged.
namespace RowButton {

enum class Hit { Outside, Click, Swallowed };

Hit hit(const QEvent *event, const QRectF &button);

// The button's state as item views tell screen readers: checked when active,
// partly checked when mixed, unchecked when inactive; none for a row without a button.
QVariant checkState(int activationState);

} // namespace RowButton
