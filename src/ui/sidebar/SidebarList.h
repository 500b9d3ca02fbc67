// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>

#include <functional>

class AppState;
class SidebarDelegate;
class SidebarModel;
class SidebarSectionProxy;
class SidebarView;

// One section's list in the sidebar: the sources, or the collections. Both show the
// same model, each hiding the other's rows. Files and folders dropped on a collection
// join it; dropped on the sources, their folder becomes a source (a folder as it is, a
// font file's own folder); a drop never moves or copies a file.
class SidebarList : public QListView
{
    Q_OBJECT

public:
    SidebarList(SidebarView &sidebar, AppState &state, SidebarModel *model, bool collections);

    // Mirrors the store's selection; `reveal` scrolls the row into view even when it was
    // the current row already.
    void syncSelection(bool reveal = false);
    int contentHeight() const;
    bool showsRow(int row) const;
    // Between the sidebar model's rows and this list's own indexes.
    QModelIndex indexForRow(int row) const;
    int rowOf(const QModelIndex &index) const;
    // The sidebar model's row of this list's first or last selectable row; -1 for none.
    int edgeRow(bool last) const;
    // Which folder to add when a drop brings fonts from several (a dialog unless set);
    // an empty answer adds none.
    void setFolderChooser(std::function<QString(const QStringList &folders)> choose) { m_chooseFolder = std::move(choose); }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;

private:
    int collectionRowAt(const QPoint &point) const;
    void toggle(const QModelIndex &index); // the row's activation
    void setDropRow(int row);

    SidebarView &m_sidebar;
    AppState &m_state;
    SidebarModel *m_model;
    SidebarSectionProxy *m_section;
    SidebarDelegate *m_delegate;
    bool m_collections;
    bool m_syncing = false;
    std::function<QString(const QStringList &folders)> m_chooseFolder;
};
