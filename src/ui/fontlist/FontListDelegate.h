// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

class FontSampleCache;

// A font list row: the round activation button, the family (or style) name in
// interface text with "8 styles" beneath, then the sample drawn in the face itself on
// one line, clipped. A sample not drawn yet leaves its place empty until it comes; a face
// that can't be drawn says "Unable to preview".
class FontListDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    struct Layout
    {
        QRectF background, button, name, caption, sample;
    };
    static Layout layout(const QRect &row, Qt::LayoutDirection direction = Qt::LeftToRight);

    FontListDelegate(FontSampleCache &samples, QObject *parent = nullptr);
    void setSample(const QString &text, int pixelSize);
    QString sampleText() const { return m_text; }
    int samplePixelSize() const { return m_pixelSize; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

Q_SIGNALS:
    void activationClicked(const QModelIndex &index);

private:
    FontSampleCache &m_samples;
    QString m_text;
    int m_pixelSize = 24;
};
