// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/preview/AxisSlider.h"

#include <QAccessibleValueInterface>
#include <QAccessibleWidget>

namespace {

class AccessibleAxisSlider : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit AccessibleAxisSlider(AxisSlider *slider)
        : QAccessibleWidget(slider, QAccessible::Slider)
    {
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Value)
            return QString::number(currentValue().toDouble(), 'f', 1);
        return QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override { return slider()->value() / slider()->stepsPerUnit(); }
    void setCurrentValue(const QVariant &value) override
    {
        slider()->setValue(qRound(value.toDouble() * slider()->stepsPerUnit()));
    }
    QVariant maximumValue() const override { return slider()->maximum() / slider()->stepsPerUnit(); }
    QVariant minimumValue() const override { return slider()->minimum() / slider()->stepsPerUnit(); }
    QVariant minimumStepSize() const override { return slider()->singleStep() / slider()->stepsPerUnit(); }

private:
    AxisSlider *slider() const { return static_cast<AxisSlider *>(widget()); }
};

QAccessibleInterface *accessibleAxisSlider(const QString &className, QObject *object)
{
    if (className == QLatin1StringView("AxisSlider") && object && object->isWidgetType())
        return new AccessibleAxisSlider(static_cast<AxisSlider *>(object));
    return nullptr;
}

} // namespace

AxisSlider::AxisSlider(double stepsPerUnit, QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
    , m_stepsPerUnit(stepsPerUnit)
{
    static const bool installed = [] {
        QAccessible::installFactory(accessibleAxisSlider);
        return true;
    }();
    Q_UNUSED(installed);
}
