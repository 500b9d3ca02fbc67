// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRectF>
#include <QStyledItemDelegate>

// Paints one sidebar row by its kind: a source (activation button, archive box, name,
// font count), a collection (button, its icon, name, counts), or the placeholder shown
// when there are no sources. A collection's name is edited in place in a field with the prompt "Name".
class SidebarDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    struct Layout
    {
        QRectF background;
        QRectF button;
        QRectF icon;
        QRectF name;
        QRectF caption;
    };
    static Layout layout(const QRect &row, int kind, Qt::LayoutDirection direction = Qt::LeftToRight);
    // A collection's icon: its custom image stretched to the box, the amber star for
    // Favorites, the funnel for a smart collection, or the purple stack.
    static void drawCollectionIcon(QPainter &painter, const QRectF &box, const QImage &custom, bool favorites,
                                   const QPalette &palette, bool smart = false);
    static void drawFunnel(QPainter &painter, const QRectF &box, const QColor &colour);
    static constexpr int kCollectionsHeaderGap = 15;

    using QStyledItemDelegate::QStyledItemDelegate;
    // The row a drag hovers over, outlined to show that it takes the drop; -1 for none.
    void setDropRow(int row) { m_dropRow = row; }
    void setEmphasised(bool emphasised) { m_emphasised = emphasised; }

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

Q_SIGNALS:
    // A source's or collection's activation button was clicked; the row isn't selected.
    void activationClicked(const QModelIndex &index);

private:
    void paintPlaceholder(QPainter *painter, const QStyleOptionViewItem &option) const;
    void paintIcon(QPainter *painter, const QRectF &box, const QModelIndex &index, const QPalette &palette) const;

    int m_dropRow = -1;
    bool m_emphasised = false;
};
