// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fonts/FontMetadata.h"
#include "fonts/SampleRenderer.h"

#include <QHash>
#include <QList>
#include <QWidget>

class QComboBox;
class QLabel;
class QSlider;

// The variable-font controls of the preview pane: a named-instance chooser, "Reset to
// Defaults", and one slider per axis with its name and value. The sliders are made
// once per font and never rebuilt, so a drag is never cut short.
class AxisControls : public QWidget
{
    Q_OBJECT

public:
    AxisControls(const QList<VariationAxis> &axes, const QList<NamedInstance> &instances, QWidget *parent = nullptr);

    // Every axis's current value, by axis id (its tag).
    const QHash<quint32, double> &values() const { return m_values; }
    void resetToDefaults();
    // Sets the axes the map names (each held inside its range); the others keep their values.
    void setValues(const QHash<quint32, double> &values);

    static QString formatValue(double value);

Q_SIGNALS:
    void valuesChanged();

private:
    struct Row
    {
        VariationAxis axis;
        QSlider *slider = nullptr;
        QLabel *value = nullptr;
    };
    static constexpr double kSteps = 100; // slider steps per axis unit

    void syncRow(const Row &row);
    void syncInstance();

    QList<Row> m_rows;
    QList<NamedInstance> m_instances;
    QComboBox *m_instanceBox = nullptr;
    QHash<quint32, double> m_values;
};
