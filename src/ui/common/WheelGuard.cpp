// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/WheelGuard.h"

#include <QAbstractScrollArea>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QScrollBar>
#include <QWheelEvent>

void WheelGuard::install(QObject *owner)
{
    qApp->installEventFilter(new WheelGuard(owner));
}

bool WheelGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel || !watched->isWidgetType())
        return false;
    auto *widget = static_cast<QWidget *>(watched);
    const bool guarded = qobject_cast<QAbstractSlider *>(widget) || qobject_cast<QComboBox *>(widget) ||
                         qobject_cast<QAbstractSpinBox *>(widget);
    // A scroll bar is the wheel's own business; a control with the keys takes it too.
    if (!guarded || qobject_cast<QScrollBar *>(widget) || widget->hasFocus() || !widget->parentWidget())
        return false;
    // On to the pane that scrolls around it (Qt passes a wheel it was handed, rather
    // than one from the hardware, no further).
    QWidget *pane = widget->parentWidget();
    while (pane && !qobject_cast<QAbstractScrollArea *>(pane))
        pane = pane->parentWidget();
    if (!pane)
        return true; // nothing scrolls here: the wheel just does nothing
    QWidget *viewport = static_cast<QAbstractScrollArea *>(pane)->viewport();
    auto *wheel = static_cast<QWheelEvent *>(event);
    QWheelEvent passed(widget->mapTo(viewport->window(), wheel->position()) - viewport->mapTo(viewport->window(), QPointF()),
                       wheel->globalPosition(), wheel->pixelDelta(), wheel->angleDelta(), wheel->buttons(),
                       wheel->modifiers(), wheel->phase(), wheel->inverted(), wheel->source());
    QApplication::sendEvent(viewport, &passed);
    return true;
}
