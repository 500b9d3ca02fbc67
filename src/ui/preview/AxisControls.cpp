// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/preview/AxisControls.h"

#include "ui/common/TextStyles.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include "ui/preview/AxisSlider.h"

#include <QSlider>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

AxisControls::AxisControls(const QList<VariationAxis> &axes, const QList<NamedInstance> &instances, QWidget *parent)
    : QWidget(parent)
    , m_instances(instances)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *header = new QHBoxLayout;
    auto *caption = new QLabel(tr("Variable Font Axes"), this);
    TextStyles::applyCaption(caption);
    header->addWidget(caption);
    header->addStretch(1);
    auto *reset = new QPushButton(tr("Reset to Defaults"), this);
    reset->setAccessibleName(reset->text());
    connect(reset, &QPushButton::clicked, this, &AxisControls::resetToDefaults);
    header->addWidget(reset);
    layout->addLayout(header);

    if (!m_instances.isEmpty()) {
        m_instanceBox = new QComboBox(this);
        m_instanceBox->setAccessibleName(tr("Named instance"));
        m_instanceBox->setPlaceholderText(tr("Custom"));
        for (const NamedInstance &instance : std::as_const(m_instances))
            m_instanceBox->addItem(instance.name);
        connect(m_instanceBox, &QComboBox::activated, this,
                [this](int index) { setValues(m_instances.value(index).values); });
        // Screen readers on Linux name a combo box by its text and find its label through the buddy.
        auto *row = new QHBoxLayout;
        auto *label = new QLabel(tr("Instance"), this);
        label->setBuddy(m_instanceBox);
        row->addWidget(label);
        row->addWidget(m_instanceBox, 1);
        layout->addLayout(row);
    }

    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(4);
    QFont digits = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    digits.setPointSizeF(TextStyles::captionSize(font()));
    for (const VariationAxis &axis : axes) {
        const QString name = axis.name.isEmpty() ? axis.tag : axis.name;
        Row row{axis, new AxisSlider(kSteps, this), new QLabel(this)};
        auto *label = new QLabel(name, this);
        row.slider->setAccessibleName(name);
        row.slider->setRange(qRound(axis.minValue * kSteps), qRound(axis.maxValue * kSteps));
        row.slider->setSingleStep(qRound(kSteps));
        row.slider->setPageStep(std::max(1, qRound((axis.maxValue - axis.minValue) * kSteps / 10)));
        row.value->setFont(digits);
        row.value->setAccessibleName(name + u" value"_s);
        row.value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        row.value->setMinimumWidth(QFontMetrics(digits).horizontalAdvance(u"-00000.0"_s));
        const int line = static_cast<int>(m_rows.size());
        grid->addWidget(label, line, 0);
        grid->addWidget(row.slider, line, 1);
        grid->addWidget(row.value, line, 2);
        m_values.insert(axis.id, axis.defaultValue);
        connect(row.slider, &QSlider::valueChanged, this, [this, id = axis.id, line](int value) {
            m_values.insert(id, value / kSteps);
            syncRow(m_rows.at(line));
            syncInstance();
            Q_EMIT valuesChanged();
        });
        m_rows.append(row);
        syncRow(row);
    }
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);
    syncInstance();
}

QString AxisControls::formatValue(double value)
{
    return QString::asprintf("%.1f", value);
}

void AxisControls::resetToDefaults()
{
    QHash<quint32, double> defaults;
    for (const Row &row : std::as_const(m_rows))
        defaults.insert(row.axis.id, row.axis.defaultValue);
    setValues(defaults);
}

void AxisControls::setValues(const QHash<quint32, double> &values)
{
    bool changed = false;
    for (const Row &row : std::as_const(m_rows)) {
        const auto given = values.constFind(row.axis.id);
        if (given == values.cend())
            continue;
        const double value = std::clamp(*given, row.axis.minValue, row.axis.maxValue);
        if (m_values.value(row.axis.id) == value)
            continue;
        m_values.insert(row.axis.id, value);
        syncRow(row);
        changed = true;
    }
    syncInstance();
    if (changed)
        Q_EMIT valuesChanged(); // once, however many axes moved
}

void AxisControls::syncRow(const Row &row)
{
    const double value = m_values.value(row.axis.id);
    const QSignalBlocker quiet(row.slider);
    row.slider->setValue(qRound(value * kSteps));
    row.value->setText(formatValue(value));
}

void AxisControls::syncInstance()
{
    if (!m_instanceBox)
        return;
    const auto matches = [this](const NamedInstance &instance) {
        for (const Row &row : std::as_const(m_rows)) {
            if (qAbs(instance.values.value(row.axis.id, row.axis.defaultValue) - m_values.value(row.axis.id)) > 0.005)
                return false;
        }
        return true;
    };
    const auto found = std::find_if(m_instances.cbegin(), m_instances.cend(), matches);
    const QSignalBlocker quiet(m_instanceBox);
    m_instanceBox->setCurrentIndex(found == m_instances.cend() ? -1 : static_cast<int>(found - m_instances.cbegin()));
}
