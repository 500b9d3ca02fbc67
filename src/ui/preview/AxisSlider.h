// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSlider>

// A variable font axis's slider. It moves in hundredths of the axis unit (a QSlider
// counts in whole numbers), but tells a screen reader the axis's own value and range:
// "Weight, 400.0, from 100 to 900", not 40000.
class AxisSlider : public QSlider
{
    Q_OBJECT

public:
    AxisSlider(double stepsPerUnit, QWidget *parent = nullptr);
    double stepsPerUnit() const { return m_stepsPerUnit; }

private:
    double m_stepsPerUnit;
};
