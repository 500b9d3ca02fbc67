#pragma once

#include <QListView>
#include <QWidget>

#include <functional>

class AppState;
class QFileDialog;
class QSortFilterProxyModel;
class SidebarModel;
class SidebarRow;
class SourceListView;

// One section's list in the sidebar: the sources, or the collections. Both show the
// same model, each hiding the other's rows.
class SidebarList : public QListView
{
    Q_OBJECT

public:
    SidebarList(SourceListView &sidebar, AppState &state, SidebarModel *model, bool collections);

    void syncSelection();
    int contentHeight() const;
    bool showsRow(int row) const;
    // Between the sidebar model's rows and this list's own indexes.
    QModelIndex indexForRow(int row) const;
    int rowOf(const QModelIndex &index) const;
    // The sidebar model's row of this list's first or last selectable row; -1 for none.
    int edgeRow(bool last) const;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;

private:
    int collectionRowAt(const QPoint &point) const;
    void setDropRow(int row);

    SourceListView &m_sidebar;
    AppState &m_state;
    SidebarModel *m_model;
    QSortFilterProxyModel *m_section;
    SidebarRow *m_delegate;
    bool m_collections;
    bool m_syncing = false;
};

// The sidebar: "Sources" and "Collections", each a header with its add button above
// its list. The highlighted row is the store's sidebar selection, both ways. A click on
// a row's round button toggles the source's root folder or the whole collection. Files
// and folders dropped on a collection are added to it.
class SourceListView : public QWidget
{
    Q_OBJECT

public:
    explicit SourceListView(AppState &state, QWidget *parent = nullptr);

    SidebarModel *sidebarModel() const { return m_model; }
    SidebarList *sourcesList() const { return m_sources; }
    SidebarList *collectionsList() const { return m_collections; }
    // The list that shows a model row.
    SidebarList *listShowing(int row) const;

    // The choosers, as built for the add button and "Set Custom Icon…".
    static QFileDialog *makeFolderChooser(QWidget *parent);
    static QFileDialog *makeIconChooser(QWidget *parent);
    // Tests answer the choosers themselves: folders chosen, or the icon file (empty: cancelled).
    void setFolderChooser(std::function<QStringList()> chooser) { m_chooseFolders = std::move(chooser); }
    void setIconChooser(std::function<QString()> chooser) { m_chooseIcon = std::move(chooser); }

    void addSources();
    void newCollection();
    void pickIcon(const QUuid &collectionId);
    // Starts the inline rename of a collection's row.
    void renameCollection(int row);
    // Right on a row: to the browser for a source, to the member list for a collection.
    void handOver();
    // Up from the first row of a section, or Down from the last, into the other.
    void moveAcross(bool down);

Q_SIGNALS:
    void collectionFocusRequested();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *header(const QString &title, const QString &tip, int gap, void (SourceListView::*add)());
    void fitSources();
    void syncSelection();

    AppState &m_state;
    SidebarModel *m_model;
    SidebarList *m_sources;
    SidebarList *m_collections;
    std::function<QStringList()> m_chooseFolders;
    std::function<QString()> m_chooseIcon;
};
