// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QList>
#include <QPair>
#include <QWidget>

class QCheckBox;

// The font's OpenType features as check boxes ("liga", "smcp", "ss01", ...), those
// HarfBuzz applies by default checked at first.
class FeatureToggles : public QWidget
{
    Q_OBJECT

public:
    // `fontNames` holds the names the font gives some features (stylistic sets).
    FeatureToggles(const QList<quint32> &tags, const QHash<quint32, QString> &fontNames = {}, QWidget *parent = nullptr);

    // The features switched away from their defaults: what shaping is told.
    QList<QPair<quint32, bool>> changes() const;
    // "Standard Ligatures" for liga, "Stylistic Set 1" for ss01; empty when unknown.
    static QString describe(const QString &tag);

Q_SIGNALS:
    void changed();

private:
    QList<QPair<quint32, QCheckBox *>> m_boxes;
};
