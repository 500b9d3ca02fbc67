// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/FontNode.h"

#include <QElapsedTimer>
#include "ui/common/TypeAhead.h"

#include <QListView>

class AppState;
class FontNodeListModel;
class FontNodeDelegate;

// One column of the browser: 240 wide, rows painted by FontNodeDelegate over a model of
// the store's list. Clicks and keys go to the store; the view only mirrors the
// store's selection, so the store stays the one place that knows it.
class SingleColumnView : public QListView
{
    Q_OBJECT

public:
    static constexpr int kWidth = 240;

    SingleColumnView(AppState &state, int columnIndex, QWidget *parent = nullptr);

    int columnIndex() const { return m_columnIndex; }
    FontNodeListModel *nodeModel() const { return m_model; }
    // The column's place and list; the first item decides the column's identity.
    void setColumn(int columnIndex, const QList<FontNode> &nodes);
    // Mirrors the store: the selected row, whether this is the active column; the
    // selected row scrolls to the centre when it changes.
    void syncWithStore();
    // The selected row to the centre again, wherever the user scrolled.
    void scrollToSelection();

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                         const QEvent *event = nullptr) const override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

public:
    // Chooses the row as a click does (a screen reader's "Press").
    Q_INVOKABLE void chooseRow(const QModelIndex &index);

private:
    // Letters typed within a second of each other select the next row they begin.
    bool typeAhead(const QString &text);
    bool typing() const; // a space then belongs to the typed name
    void selectRow(int row);
    void pressRow(const QModelIndex &index);

    AppState &m_state;
    int m_columnIndex;
    FontNodeListModel *m_model;
    FontNodeDelegate *m_row;
    QString m_shownSelection; // path of the row last scrolled to
    TypeAhead m_typeAhead;
    QElapsedTimer m_sinceTyped;
};
