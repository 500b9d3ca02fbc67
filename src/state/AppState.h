// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ActivationBatch.h"
#include "CollectionContents.h"
#include "CollectionList.h"
#include "ColumnNavigation.h"
#include "IconCache.h"
#include "FolderSearch.h"
#include "LibraryCatalogue.h"
#include "LibraryCounts.h"
#include "LibraryRefresh.h"
#include "Notices.h"
#include "SaveStatus.h"
#include "SmartRenewals.h"
#include "SourceList.h"
#include "discovery/FileSystemService.h"
#include "model/ActivationState.h"
#include "model/CollectionRecords.h"
#include "model/FolderSearchResult.h"
#include "model/FolderSource.h"
#include "services/FontCatalog.h"
#include "model/FontNode.h"
#include "model/SidebarItem.h"
#include "services/FinderTagService.h"
#include "services/FontActivating.h"
#include "services/SourceWatcher.h"
#include "services/FontPreviewService.h"
#include "services/PersistenceService.h"

#include <QCoroTask>

#include <QCollator>
#include <QFuture>
#include <QHash>
#include <QImage>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPromise>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

// The one store every view observes. It holds the sources and collections, the
// browser's navigation, activation, collection operations and folder search, and it
// is the only caller of the discovery, activation and persistence services.
// Lives on the interface thread; every published field has a getter and a
// ...Changed signal, and changes only when given a different value unless noted.
class MountWatcher;

class AppState : public QObject
{
    Q_OBJECT

public:
    AppState(FontActivating &fontActivationService, PersistenceService &persistenceService,
             QObject *parent = nullptr);
    ~AppState() override;

    // ---- Library: sources and collections -------------------------------------
    const QList<FolderSource> &sources() const { return m_sourceList->all(); } // sidebar order
    const QList<FontCollection> &collections() const { return m_collectionList->all(); } // sidebar order
    // Tests put sources in place without the refresh that adding one starts.
    void setSourcesForTesting(QList<FolderSource> sources);

    // ---- Selection and column navigation (AppStateNavigation.cpp) --------------
    const std::optional<SidebarItem> &sidebarSelection() const { return m_sidebarSelection; }
    void setSidebarSelection(const std::optional<SidebarItem> &selection);
    // A font file opened from outside (the command line, a file manager's "Open With"):
    // the detail area shows it until anything in the sidebar is chosen. Empty: none.
    const QString &openedFontFile() const { return m_openedFontFile; }
    void openFontFile(const QString &path);
    // Source folders watched for fonts added, removed or renamed: a refresh follows a
    // quiet second. The application turns it on; tests that want it do.
    void setWatchingSources(bool watching);
    SourceWatcher *sourceWatcher() const { return m_sourceWatcher; }
    const QList<FontNode> &navigationPath() const { return m_navigation->path(); } // selection per column
    int activeColumnIndex() const { return m_navigation->activeColumn(); }        // column with focus
    const QList<QList<FontNode>> &cachedColumns() const { return m_navigation->columns(); } // always buildColumns()
    std::optional<FolderSource> selectedSource() const;         // looked up afresh by id
    std::optional<FontCollection> selectedCollection() const;   // looked up afresh by id
    std::optional<LibraryView> selectedLibraryView() const;
    std::optional<FontNode> selectedFont() const;               // path ends in a font
    QList<QList<FontNode>> buildColumns() const;
    std::optional<FontNode> selectedNode(int column) const;
    void selectNode(const FontNode &node, int level);
    // Back to the selected source's own level: no node selected, its first column active.
    void showSourceRoot();
    void handleArrowUp();
    void handleArrowDown();
    void handleArrowLeft();
    void handleArrowRight();
    static QList<FontNode> buildNavigationPath(const QString &rootPath, const QString &targetPath)
    {
        return ColumnNavigation::pathBetween(rootPath, targetPath);
    }
    void navigateToSearchResult(FolderSearchResult result); // by value: it empties the results
    void navigateToMember(const CollectionMember &member);

    // One view hands the keyboard to another (Left from the first column, Enter on a
    // source): said, not kept; whoever takes it acts on the signal.
    void requestBrowserFocus() { Q_EMIT browserFocusRequested(); }
    void requestSidebarFocus() { Q_EMIT sidebarFocusRequested(); }

    // ---- Activation (AppStateActivation.cpp) -----------------------------------------
    const QSet<QString> &activatedFonts() const { return m_activatedFonts; } // paths we activated
    bool isProcessing() const { return m_isProcessing; }                     // a batch runs
    double processingProgress() const { return m_processingProgress; }       // 0 to 1
    const QString &processingMessage() const { return m_processingMessage; }
    ActivationState activationState(const FontNode &node);                   // memoised for folders
    ActivationState collectionActivationState(const FontCollection &collection);
    // Asynchronous: ignored while a batch runs or the library is indexed; save when done.
    QCoro::Task<> toggleActivation(FontNode node);
    // The road for every other set of fonts a view switches (a family, a selection, a
    // document's fonts): the same guard, the same batch, the same save.
    QCoro::Task<> setActivation(QList<FontNode> fonts, bool activate);
    QCoro::Task<> toggleCollectionActivation(FontCollection collection);
    // `keep` active and every one of `others` (files of the same PostScript name) not,
    // in one go (AppStateDuplicates.cpp).
    QCoro::Task<> keepOnlyActive(FontNode keep, QList<FontNode> others);
    // A font about to be activated whose PostScript name an active file of another
    // path already has: fontconfig would pick one of the two for every program.
    struct ActivationConflict
    {
        QString postScriptName;
        QString font;         // being activated
        QStringList active;   // already active, claiming the same name
    };
    enum class ConflictChoice { Replace, KeepBoth, Cancel };
    // Asked before the user's activations (not restores) when they would make such
    // conflicts: Replace switches the active namesakes off first. Without a guard (no
    // window) both are kept.
    using ActivationGuard = std::function<ConflictChoice(const QList<ActivationConflict> &)>;
    void setActivationGuard(ActivationGuard guard) { m_activationGuard = std::move(guard); }
    // Every active font, in the sources or not (collection folders outside them too).
    QCoro::Task<> deactivateAllFonts();
    // A batch whose job has made no progress for a while (a file system that stopped
    // answering): the window says so and offers to stop waiting.
    bool isProcessingStalled() const { return m_isProcessingStalled; }
    // Stops the running batch after the chunk in flight (at once when it stalled): what
    // was done stays done, the rest is left as it was, and the notice says how far it got.
    void cancelBatch();
    // Saved activations that can't be made now: their source folder is missing or
    // unreadable (a drive not mounted), their file can't be reached, or our font folder
    // can't be written. They stay in the saved list and are made once that is fixed.
    const QSet<QString> &waitingActivations() const { return m_waitingActivations; }
    // Waits, without an event loop, up to `msecs` for every background job the store
    // started; false when one is still running (stuck in the kernel).
    bool waitForBackgroundWork(int msecs);
    void setStallTimeoutForTesting(int msecs) { m_stallTimer.setInterval(msecs); }

    // ---- For this session only (AppStateSession.cpp) -----------------------------------
    // Fonts active until Morvane quits, or until the user logs out (a preference): shown
    // as ActivationState::Session, never saved as active. Activating one for good makes
    // it an ordinary active font.
    bool isSessionFont(const QString &path) const { return m_sessionFonts.contains(path); }
    QCoro::Task<> activateForSession(FontNode node); // a font, or every font of a folder
    QCoro::Task<> activateCollectionForSession(FontCollection collection);
    bool sessionFontsLastUntilLogout() const;
    void setSessionFontsLastUntilLogout(bool untilLogout);
    // In $XDG_RUNTIME_DIR, which logging out empties.
    static QString sessionRecordPath();

    // ---- Links that sandboxed programs see (AppStateLinks.cpp) -------------------------
    // Whether fonts that no hard link or clone can put in our font folder are copied
    // there, so programs in a sandbox see them; a preference, applied to the active
    // fonts at once through the same guard as a batch.
    bool copiesForSandboxes() const;
    QCoro::Task<> setCopiesForSandboxes(bool allowed);
    // What copying those fonts would take, in bytes (asked off the interface thread).
    QCoro::Task<qint64> spaceForCopies();
    // Refreshes asked for, and the latest whose scan was followed by a check of our links
    // against their files (activationLinksChecked): a caller waits for the one it asked.
    quint64 refreshRequests() const { return m_refreshRequests; }
    quint64 linksCheckedThrough() const { return m_linksCheckedThrough; }

    // ---- Saving -----------------------------------------------------------------------
    // Why the last save of some file failed (the system's words), or empty once every
    // file's latest save succeeded. While set, changes live only in this run.
    const QString &saveFailure() const { return m_saveStatus->failure(); }

    // ---- Messages -----------------------------------------------------------------------
    // A problem the user must hear of that no view shows by itself (a font folder that
    // can't be written, an icon that can't be used); stays until dismissed or replaced.
    const QString &notice() const { return m_notices->text(); }
    // The files a notice is about, one line each with what went wrong; often none.
    const QStringList &noticeDetails() const { return m_notices->details(); }
    void setNotice(const QString &notice, const QStringList &details = {}) { m_notices->say(notice, details); }
    void dismissNotice() { setNotice(QString()); }

    // ---- Preview settings (saved in the preferences at once) --------------------
    const QString &previewText() const { return m_previewText; }
    void setPreviewText(const QString &text);
    double previewSize() const { return m_previewSize; }
    // The font list's own sample size, saved with the preferences.
    double listSize() const { return m_persistenceService.listSize(); }
    void setListSize(double size) { m_persistenceService.setListSize(size); }
    void setPreviewSize(double size);

    // ---- Folder search (FolderSearch) -----------------------------------------------
    const QString &searchQuery() const { return m_folderSearch->query(); }
    void setSearchQuery(const QString &query) { m_folderSearch->setQuery(query); } // a different value schedules a search
    const QList<FolderSearchResult> &searchResults() const { return m_folderSearch->results(); }
    bool isSearchingFolders() const { return m_folderSearch->isSearchingFolders(); } // a non-empty query awaits results
    bool isSearching() const { return m_folderSearch->isSearching(); }               // trimmed query not empty
    static QString trimmedQuery(const QString &query) { return FolderSearch::trimmedQuery(query); }
    const QList<FolderSearchResult> &searchIndex() const { return m_folderSearch->index(); } // every folder, by name
    // Filters the index after a 200 ms pause, off the interface thread; a newer query
    // supersedes it.
    void scheduleSearch() { m_folderSearch->schedule(); }
    static QList<FolderSearchResult> filterIndex(const QList<FolderSearchResult> &index, const QString &query,
                                                 const CancellationToken &cancellation)
    {
        return FolderSearch::filterIndex(index, query, cancellation);
    }
    // Tests may put another filter in its place (to count the runs).
    using SearchFilter = FolderSearch::Filter;
    void setSearchFilterForTesting(SearchFilter filter) { m_folderSearch->setFilter(std::move(filter)); }

    // ---- Sources and library loading (AppStateSources.cpp) -----------------------------
    bool isIndexing() const { return m_isIndexing; } // a library refresh runs
    // Restores sources, collections, preview settings and activations; once per store.
    void loadPersistedState();
    void addSource(const QString &path);
    QCoro::Task<> removeSource(FolderSource source); // deactivates its fonts first
    // How many fonts under the source removing it would deactivate.
    qsizetype activeFontCount(const FolderSource &source) const;
    // Looks at every source and collection folder again in the background after a 50 ms
    // pause; a burst of requests costs one scan, and only the latest result is applied.
    // Folders unchanged since the last scan are not read again, unless asked to (the
    // user's own Refresh Sources, for the file systems whose times can't be trusted).
    using Refresh = LibraryRefresh::Refresh;
    void refreshFileSystem(Refresh how = Refresh::Changed);
    // Sources whose folder the last scan could not open (a drive not mounted, a folder
    // made unreadable): shown as unavailable, their activations kept.
    const QSet<QUuid> &unavailableSources() const { return m_unavailableSources; }
    bool isSourceAvailable(const FolderSource &source) const { return !m_unavailableSources.contains(source.id); }
    // What a refresh's background job is given and produces; tests may put another job
    // in its place.
    using LibraryScanRequest = LibraryRefresh::Request;
    using LibraryScan = LibraryRefresh::Scan;
    using LibraryScanner = LibraryRefresh::Scanner;
    void setLibraryScannerForTesting(LibraryScanner scanner) { m_refresh->setScanner(std::move(scanner)); }
    static LibraryScan scanLibrary(const LibraryScanRequest &request, const CancellationToken &cancellation);
    // The last step of a refresh: puts a frozen scan and its search index in place,
    // empties every memo and rebuilds the columns.
    void installLibrary(std::shared_ptr<const FileSystemService> service, QList<FolderSearchResult> searchIndex);

    // ---- Collections (AppStateCollections.cpp) -------------------------------------
    // "New Collection" unless named otherwise.
    void createCollection(const QString &name = defaultCollectionName());
    static QString defaultCollectionName();
    void deleteCollection(const FontCollection &collection);
    void renameCollection(const QUuid &id, const QString &name);
    void sortCollections();
    void addToCollection(const QUuid &id, const FontNode &node);
    // Several at once (a drop): members already there are skipped.
    void addToCollection(const QUuid &id, const QList<FontNode> &nodes);
    void removeFromCollection(const QUuid &id, const CollectionMember &member);
    void setCollectionIcon(const QUuid &id, const std::optional<QString> &imagePath);
    QList<FontNode> allFontsInCollection(const FontCollection &collection);
    QList<CollectionMember> sortedMembers(const FontCollection &collection);
    std::optional<QImage> collectionIcon(const QString &iconPath);
    // Turns an icon file's bytes into an image. The core reads the formats Qt's image
    // readers know; the interface puts one in place that also draws SVG.
    using IconDecoder = IconCache::Decoder;
    void setIconDecoder(IconDecoder decoder);

    // ---- Services -------------------------------------------------------------------
    const FileSystemService &fileSystemService() const { return *m_fileSystemService; }
    FontPreviewService &previewService() { return *m_previewService; }
    // Tests put a service with a metadata reader of their own in its place.
    void setPreviewServiceForTesting(std::unique_ptr<FontPreviewService> service) { m_previewService = std::move(service); }
    FinderTagService &finderTagService() { return m_finderTagService; }
    // Sets a file's licence status (its tags) and tells the views, which repaint.
    void setLicenseStatus(LicenseStatus status, const QString &path);

    // ---- The font catalogue (AppStateCatalog.cpp) ------------------------------------
    // After each library refresh the catalogue reads new and changed font files in the
    // background; queries answer meanwhile from what is indexed so far.
    bool isCataloguing() const;
    // "Indexing fonts (12,345 of 100,000)…" while it works.
    QString catalogueMessage() const;
    // Runs off the interface thread; a newer query stops an older one, which answers
    // nothing (marked cancelled).
    QCoro::Task<FontQueryAnswer> queryFonts(FontQuery query);
    // The same question as a future, for views: a watcher of it goes with the view, and
    // the view shows only its newest question's answer. A newer question makes this one
    // answer `cancelled` when it was still running.
    QFuture<FontQueryAnswer> askFonts(FontQuery query);
    // How many faces answer, asked beside the lists' questions (it cancels none of them).
    QFuture<qsizetype> countFonts(FontQuery query);
    // A collection whose members are the files that answer the question, renewed when the
    // catalogue has read a refresh's changes (AppStateSmart.cpp).
    void createSmartCollection(const QString &name, const FontQuery &query);
    void setSmartQuery(const QUuid &id, const FontQuery &query);
    void renewSmartCollections();
    // "Edit Filters…": the font list takes the collection's question to change it.
    void requestSmartEdit(const QUuid &id) { Q_EMIT smartEditRequested(id); }
    // The faces the library's own lists hold ("All Fonts", "Active Fonts"); -1 until the
    // catalogue has answered. Counted again shortly after the catalogue or the active
    // fonts change.
    qsizetype libraryFaceCount(LibraryView::Kind kind) const;
    // How long the catalogue lets a refresh stand before reading (benchmarks: none).
    void setCatalogueSettleTime(int msecs);
    // Where the catalogue lives, before its first use (benchmarks keep several).
    void setCatalogueFile(const QString &path);
    // Waits (tests, benchmarks) until the running indexing job has ended.
    bool waitForCatalogue(int msecs);

Q_SIGNALS:
    void catalogueProgressChanged();
    // Faces were indexed or dropped: said once an indexing job has ended, with the files
    // whose records came, changed or went; never when nothing changed.
    void catalogueChanged(const CatalogueChange &change);
    // Our links were checked against their files after a scan (some may have changed).
    void activationLinksChecked();
    void libraryCountsChanged();
    void smartEditRequested(const QUuid &id);
    void sourcesChanged();
    void collectionsChanged();
    void sidebarSelectionChanged();
    void openedFontFileChanged();
    void navigationPathChanged();
    void activeColumnIndexChanged();
    void cachedColumnsChanged();
    void activatedFontsChanged();
    void isProcessingChanged();
    void processingProgressChanged();
    void processingMessageChanged();
    void previewTextChanged();
    void previewSizeChanged();
    void searchQueryChanged();
    void searchResultsChanged();
    void isSearchingFoldersChanged();
    void isIndexingChanged();
    void browserFocusRequested();
    void sidebarFocusRequested();
    // The store itself jumped (a search hit, a collection member) to a place in this
    // sidebar item: said before the selection and columns change, so the views bring
    // the chosen rows into view even where they were chosen already and scrolled away.
    void jumped(const SidebarItem &target);
    void saveFailureChanged();
    void noticeChanged();
    void unavailableSourcesChanged();
    void isProcessingStalledChanged();
    void waitingActivationsChanged();
    void licenseTagsChanged(); // a status was set: rows read their tags again

private:
    void applyScan(const LibraryScan &scan);
    void indexCatalogue();
    QCoro::Task<> restoreActivations(QSet<QString> saved, bool savedSetIsWhole);
    // Activates the waiting fonts whose file can be reached again; drops those whose
    // source is back but whose file is gone.
    QCoro::Task<> restoreWaiting();
    // After a scan: links showing an older file are made again, file entries whose file
    // went are withdrawn (and wait for it).
    // Checks after the scan of the refresh numbered `request`; toggles are not held up.
    QCoro::Task<> refreshActivationLinks(quint64 request);
    void linksChecked(quint64 request);
    QCoro::Task<> sessionBatch(QList<FontNode> fonts);
    // The guard's say on activating `fonts`: the fonts to switch off first (none: go
    // on), or nothing at all when the user cancelled.
    QCoro::Task<std::optional<QList<FontNode>>> passGuard(QList<FontNode> fonts);
    // passGuard, then the namesakes off, then `fonts` on; false when cancelled.
    QCoro::Task<bool> guardedActivation(QList<FontNode> fonts, QString label, bool forSession = false);
    void saveSessionFonts();
    // The session's record, when the fonts in it are to stay (removed otherwise).
    QSet<QString> takeSessionRecord() const;
    // At quit: switches this session's fonts off, unless they last until logout.
    void endSession();
    // Activates saved fonts again ("Restoring"); those that fail for a reason not their
    // own go on waiting.
    QCoro::Task<BatchResult> reactivate(QList<FontNode> fonts);
    // The one worker behind every activation: chunks of 8, one background job each, in
    // turn. Never called from a view: they go through the guarded, saving entry points.
    QCoro::Task<BatchResult> batchProcess(QList<FontNode> fonts, bool activate, QString label);
    QCoro::Task<std::optional<QStringList>> awaitBatchJob(std::shared_ptr<ActivationBatch> batch, QFuture<QStringList> job);
    void setIsProcessingStalled(bool stalled);
    void setWaitingActivations(QSet<QString> waiting);
    void reportSystemFailures(const QStringList &failed, const QString &reason);
    void reportFontFailures(const QStringList &failed, const QHash<QString, QString> &reasons, qsizetype total,
                            bool activate);
    QStringList sourceRoots() const;
    QCoro::Task<> toggleFolder(FontNode node);
    void saveActivatedFonts();

    // Published setters: assign and notify only when the value differs.
    void setActivatedFonts(QSet<QString> fonts); // always empties the state memos
    void setIsProcessing(bool processing);
    void setProcessing(double progress, const QString &message);
    void setIsIndexing(bool indexing);
    void jumpTo(const FolderSource &source, const QList<FontNode> &path);
    void clearCollectionMemos();
    void refuseSmartEdit(const QUuid &id);
    // Says so and returns true when a smart collection's question is too large to ask.
    bool refuseLargeQuestion(const QJsonObject &question, const QString &name);
    void sayQuestionTooLarge(const QString &name, qsizetype size);
    void applySmartAnswer(const QUuid &id, const QList<CollectionMember> &members);
    SmartRenewals *m_smartRenewals; // a child

    // Library
    SourceList *m_sourceList; // a child
    CollectionList *m_collectionList; // a child
    // Navigation
    std::optional<SidebarItem> m_sidebarSelection;
    QString m_openedFontFile;
    SourceWatcher *m_sourceWatcher = nullptr;
    bool m_watchLimitSaid = false; // the message is said once
    void watchSources();
    ColumnNavigation *m_navigation; // a child
    // Activation
    QSet<QString> m_activatedFonts;
    QHash<QString, QString> m_refusedFonts; // turned down when last activated, with the reason
    QSet<QString> m_sessionFonts;           // active until the session ends, never saved
    bool m_nextBatchForSession = false;     // the next batch activates for this session
    bool m_sessionRecorded = false;
    ActivationGuard m_activationGuard;
    // How many of a folder's or a collection's fonts are active, of how many: a batch
    // moves the counts of the rows asked for so far by its own fonts, chunk by chunk,
    // rather than have every repaint count 100,000 fonts again.
    struct ActiveCount
    {
        qint64 active = 0;
        qint64 total = 0;
    };
    // Moves the rows' counts; true when some font lies outside the scan.
    bool countChanged(const QStringList &fonts, bool nowActive);
    QHash<QString, ActiveCount> m_activationStateCache; // folder path -> its fonts
    bool m_isProcessing = false;
    double m_processingProgress = 0;
    QString m_processingMessage;
    // Preview
    QString m_previewText = PersistenceService::defaultPreviewText();
    double m_previewSize = PersistenceService::defaultPreviewSize;
    FolderSearch *m_folderSearch; // a child
    LibraryCatalogue *m_catalogue; // a child
    LibraryCatalogue::Knowledge knowledgeFor(const FontQuery &query) const;
    LibraryCounts *m_libraryCounts; // a child
    // Loading
    bool m_isIndexing = false;
    quint64 m_refreshRequests = 0;
    quint64 m_linksCheckedThrough = 0;
    LibraryRefresh *m_refresh; // a child
    bool m_hasLoaded = false;
    bool m_isProcessingStalled = false;
    QTimer m_stallTimer;           // runs while a batch job runs without progress
    std::shared_ptr<ActivationBatch> m_batch; // the running batch's own state; none when idle
    QSet<QString> m_waitingActivations;
    QSet<QUuid> m_unavailableSources;
    QSet<QUuid> m_unreachableSources; // the last scan's: their folder could not be listed
    void updateUnavailableSources();
    Notices *m_notices; // a child
    SaveStatus *m_saveStatus; // a child
    BackgroundJobs m_jobs; // batches' and restores' jobs, which hold the activation service
    // Collection memos, emptied wholesale, never patched
    CollectionContents m_collectionContents;
    QHash<QUuid, ActiveCount> m_collectionStateCache;
    IconCache m_collectionIcons;
    // Services
    std::shared_ptr<const FileSystemService> m_fileSystemService; // frozen; replaced by each refresh
    FontActivating &m_fontActivationService;
    PersistenceService &m_persistenceService;
    FinderTagService m_finderTagService;
    std::unique_ptr<FontPreviewService> m_previewService;
    MountWatcher *m_mountWatcher = nullptr; // a child: a drive mounted brings its source back
    QCollator m_collator; // the user's locale, case-insensitive
};
