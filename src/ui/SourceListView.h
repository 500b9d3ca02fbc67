#pragma once

#include <QListView>

#include <functional>

class AppState;
class QFileDialog;
class SidebarModel;
class SidebarRow;

// The sidebar: sources and collections under their headers, each header with its add
// button. The highlighted row is the store's sidebar selection, both ways. A click on a
// row's round button toggles the source's root folder or the whole collection. Files
// and folders dropped on a collection are added to it.
class SourceListView : public QListView
{
    Q_OBJECT

public:
    explicit SourceListView(AppState &state, QWidget *parent = nullptr);

    SidebarModel *sidebarModel() const { return m_model; }
    // The choosers, as built for the add button and "Set Custom Icon…".
    static QFileDialog *makeFolderChooser(QWidget *parent);
    static QFileDialog *makeIconChooser(QWidget *parent);
    // Tests answer the choosers themselves: folders chosen, or the icon file (empty: cancelled).
    void setFolderChooser(std::function<QStringList()> chooser) { m_chooseFolders = std::move(chooser); }
    void setIconChooser(std::function<QString()> chooser) { m_chooseIcon = std::move(chooser); }

    void addSources();
    void newCollection();
    // Starts the inline rename of a collection's row.
    void renameCollection(int row);

Q_SIGNALS:
    // Right on a collection: the keyboard goes to its member list.
    void collectionFocusRequested();

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
    void installHeaders();
    void syncSelection();
    void handOverToBrowser();
    int collectionRowAt(const QPoint &point) const;
    void setDropRow(int row);

    AppState &m_state;
    SidebarModel *m_model;
    SidebarRow *m_delegate;
    bool m_syncing = false;
    std::function<QStringList()> m_chooseFolders;
    std::function<QString()> m_chooseIcon;
};
