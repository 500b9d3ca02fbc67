// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/SidebarItem.h"
#include "ui/sidebar/SidebarList.h"

#include <QWidget>

#include <functional>
#include <optional>

class AppState;
class LibraryList;
class SidebarModel;

// The sidebar: "Library" (All Fonts, Active Fonts), then "Sources" and "Collections",
// each a header with its add button above its list. The highlighted row is the store's sidebar selection, both ways. A click on
// a row's round button toggles the source's root folder or the whole collection. Files
// and folders dropped on a collection are added to it.
class SidebarView : public QWidget
{
    Q_OBJECT

public:
    explicit SidebarView(AppState &state, QWidget *parent = nullptr);

    // However the window's divider is dragged.
    static constexpr int kMinimumWidth = 180;
    static constexpr int kMaximumWidth = 260;

    SidebarModel *sidebarModel() const { return m_model; }
    LibraryList *libraryList() const { return m_library; }
    SidebarList *sourcesList() const { return m_sources; }
    SidebarList *collectionsList() const { return m_collections; }
    // The sidebar's last stop for Tab: the "New Collection" button.
    QWidget *lastTabStop() const { return m_lastTabStop; }
    // The list that shows a model row.
    SidebarList *listShowing(int row) const;

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
    QWidget *header(const QString &title, const QString &tip, int gap, void (SidebarView::*add)());
    void fitSources();
    void syncSelection();

    AppState &m_state;
    SidebarModel *m_model;
    LibraryList *m_library;
    SidebarList *m_sources;
    SidebarList *m_collections;
    QWidget *m_lastTabStop = nullptr;
    std::optional<SidebarItem> m_jumpedTo; // the store's jump, until the rows show it
    std::function<QStringList()> m_chooseFolders;
    std::function<QString()> m_chooseIcon;
};
