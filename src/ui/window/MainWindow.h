// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>

#include <functional>
#include <memory>

class AppState;
class CollectionView;
class ColumnBrowserView;
class EmptyStateView;
class OpenedFontView;
class FontListView;
class FontActivating;
class PersistenceService;
class ProcessingOverlay;
class MessageArea;
class QLabel;
class QSplitter;
class QStackedWidget;
class QToolBar;
class ReindexingStrip;
class SearchResultsView;
class SidebarView;
class ToolbarInputField;
class UnavailableSourceView;
class QPushButton;

// Morvane's one window: the sidebar beside the detail area, the search field in the
// toolbar, the re-indexing strip and the batch-job overlay. It owns the store and the
// services it is built on, and restores the saved library the first time it is shown.
// What the window is built on: the services and the one store over them. The
// application shell makes them (src/app/Assembly); the window owns them for its life.
struct WindowStore
{
    std::unique_ptr<FontActivating> activation;
    std::unique_ptr<PersistenceService> persistence;
    std::unique_ptr<AppState> state;
    WindowStore();
    WindowStore(WindowStore &&) noexcept;
    ~WindowStore();
};

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(WindowStore store, QWidget *parent = nullptr);
    ~MainWindow() override;

    AppState &state() { return *m_state; }
    ColumnBrowserView &browser() { return *m_browser; }
    SidebarView &sidebar() { return *m_sidebar; }
    ToolbarInputField &searchField() { return *m_search; }
    SearchResultsView &searchResults() { return *m_results; }
    EmptyStateView &emptyState() { return *m_empty; }
    FontListView *fontList() const { return m_fontList; }
    ReindexingStrip &reindexingStrip() { return *m_strip; }
    ProcessingOverlay &overlay() { return *m_overlay; }
    QSplitter &splitter() { return *m_split; }
    QToolBar &toolbar() { return *m_toolbar; }
    // The selected collection's view; none unless a collection is shown.
    CollectionView *collectionView() const { return m_collection; }
    // What the detail area shows now.
    QWidget *detail() const;
    // The folder chooser, as the menu and the empty state's button run it.
    void addFolders();
    QMenu *createPopupMenu() override { return nullptr; } // nothing to hide or move
    // A second start of Morvane asked for this window.
    void bringToFront();
    // Files and folders given on the command line or handed over by a second start: a
    // font file is shown with its preview; a folder is offered as a source (`ask`
    // answers the question, a dialog when none is given); anything else is named in
    // the message area.
    void openPaths(const QStringList &paths, std::function<bool(const QString &folder)> ask = {});
    // After the event loop: waits up to `msecs` for the running background job and the
    // saves. False when a job is stuck in the kernel (a drive that stopped answering):
    // the saves are on disk then, and the process may end without waiting for it.
    bool finishBackgroundWork(int msecs);
    // What closing asks when the latest changes can't be saved; true quits anyway.
    using QuitConfirmation = std::function<bool(const QString &reason)>;
    void setQuitConfirmationForTesting(QuitConfirmation confirm) { m_confirmQuit = std::move(confirm); }
    UnavailableSourceView &unavailableView() { return *m_unavailable; }
    MessageArea &messageArea() { return *m_messages; }
    // "the disk is full" for ENOSPC and the like; the system's words otherwise.
    static QString plainReason(const QString &systemError);


protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *buildDetailColumn(QWidget *parent);
    void buildToolbar();
    void watchSearch();
    void showDetail();
    void showCollection(const QUuid &id);
    void retireCollectionView();
    void updateSaveFailure();

    std::unique_ptr<FontActivating> m_activation;
    std::unique_ptr<PersistenceService> m_persistence;
    std::unique_ptr<AppState> m_state;
    QLabel *m_saveFailure = nullptr;
    MessageArea *m_messages = nullptr;
    UnavailableSourceView *m_unavailable = nullptr;
    QuitConfirmation m_confirmQuit;
    QToolBar *m_toolbar = nullptr;
    ToolbarInputField *m_search = nullptr;
    QSplitter *m_split = nullptr;
    SidebarView *m_sidebar = nullptr;
    ReindexingStrip *m_strip = nullptr;
    QStackedWidget *m_detail = nullptr;
    SearchResultsView *m_results = nullptr;
    ColumnBrowserView *m_browser = nullptr;
    EmptyStateView *m_empty = nullptr;
    OpenedFontView *m_opened = nullptr; // the font file opened from outside, while shown
    CollectionView *m_collection = nullptr;
    FontListView *m_fontList = nullptr; // made when first shown
    ProcessingOverlay *m_overlay = nullptr;
};
