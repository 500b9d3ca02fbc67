// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

// Scrolling a pane never changes a slider, combo box or spin box that passes under the
// pointer: they take the wheel only when they have the keys, and otherwise pass it to
// whatever scrolls around them. Installed once on the application.
class WheelGuard : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    static void install(QObject *owner);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
