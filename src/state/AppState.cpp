// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppState.h"

#include "services/MountWatcher.h"
#include "services/FreedMemory.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QThreadPool>

namespace {

// A fontconfig scan of one small shard takes milliseconds; this long without progress
// means a file or a file system that stopped answering.
constexpr int kStallMs = 5000;

} // namespace

AppState::AppState(FontActivating &fontActivationService, PersistenceService &persistenceService, QObject *parent)
    : QObject(parent)
    , m_folderSearch(new FolderSearch(this))
    , m_fileSystemService(std::make_shared<FileSystemService>())
    , m_fontActivationService(fontActivationService)
    , m_persistenceService(persistenceService)
    , m_previewService(std::make_unique<FontPreviewService>(FontPreviewService::kEvictionBound))
    , m_collator(QLocale())
{
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    // The user's own records first: every other concern reads them.
    m_sourceList = new SourceList(m_persistenceService, this);
    connect(m_sourceList, &SourceList::changed, this, &AppState::sourcesChanged);
    m_collectionList = new CollectionList(m_persistenceService, QLocale(), this);
    connect(m_collectionList, &CollectionList::changed, this, [this] {
        clearCollectionMemos(); // before anyone told reads them
        Q_EMIT collectionsChanged();
    });
    connect(m_folderSearch, &FolderSearch::queryChanged, this, &AppState::searchQueryChanged);
    connect(m_folderSearch, &FolderSearch::resultsChanged, this, &AppState::searchResultsChanged);
    connect(m_folderSearch, &FolderSearch::isSearchingFoldersChanged, this, &AppState::isSearchingFoldersChanged);
    m_navigation = new ColumnNavigation(
        [this]() -> std::optional<QString> {
            const std::optional<FolderSource> source = selectedSource();
            return source ? std::optional<QString>(source->path) : std::nullopt;
        },
        [this](const QString &folder) { return m_fileSystemService->children(folder); }, this); // the scan's lists, shared
    connect(m_navigation, &ColumnNavigation::pathChanged, this, &AppState::navigationPathChanged);
    connect(m_navigation, &ColumnNavigation::activeColumnChanged, this, &AppState::activeColumnIndexChanged);
    connect(m_navigation, &ColumnNavigation::columnsChanged, this, &AppState::cachedColumnsChanged);
    m_refresh = new LibraryRefresh(
        [this] {
            LibraryScanRequest request{sources(), {}, m_fileSystemService};
            for (const FontCollection &collection : m_collectionList->all())
                request.members.append(collection.members);
            return request;
        },
        this);
    connect(m_refresh, &LibraryRefresh::scanned, this, &AppState::applyScan);
    m_notices = new Notices(this);
    connect(m_notices, &Notices::changed, this, &AppState::noticeChanged);
    m_saveStatus = new SaveStatus(m_persistenceService, this);
    connect(m_saveStatus, &SaveStatus::failureChanged, this, &AppState::saveFailureChanged);
    // Empty and frozen until the first refresh brings a scan.
    std::const_pointer_cast<FileSystemService>(m_fileSystemService)->freeze();
    qRegisterMetaType<CatalogueChange>(); // the views queue it, tests spy on it
    m_stallTimer.setSingleShot(true);
    m_stallTimer.setInterval(kStallMs);
    connect(&m_stallTimer, &QTimer::timeout, this, [this] { setIsProcessingStalled(true); });
    m_catalogue = new LibraryCatalogue(m_fontActivationService, this);
    connect(m_catalogue, &LibraryCatalogue::progressChanged, this, &AppState::catalogueProgressChanged);
    connect(m_catalogue, &LibraryCatalogue::changed, this, &AppState::catalogueChanged);
    connect(m_catalogue, &LibraryCatalogue::rebuilt, this, &AppState::indexCatalogue);
    connect(m_catalogue, &LibraryCatalogue::finished, this, &AppState::renewSmartCollections); // a refresh's changes are read
    // The library's own lists say how many faces they hold.
    m_libraryCounts = new LibraryCounts([this] { return m_catalogue->catalog(); }, [this] { return m_activatedFonts; }, this);
    connect(m_libraryCounts, &LibraryCounts::changed, this, &AppState::libraryCountsChanged);
    connect(this, &AppState::catalogueChanged, m_libraryCounts, &LibraryCounts::countSoon);
    connect(this, &AppState::activatedFontsChanged, m_libraryCounts, &LibraryCounts::countSoon);
    // Smart collections follow what their questions ask about: activation (once a batch
    // has ended) and licence tags; the catalogue renews them after each of its jobs.
    const auto asksActive = [](const FontQuery &query) { return query.active.has_value(); };
    const auto asksLicence = [](const FontQuery &query) { return !query.licenseStatuses.isEmpty(); };
    m_smartRenewals = new SmartRenewals([this](FontQuery query) {
                                            LibraryCatalogue::Knowledge knowledge = knowledgeFor(query);
                                            return m_catalogue->answer(std::move(query), std::move(knowledge));
                                        },
                                        [this] { return m_collectionList->all(); }, this);
    connect(m_smartRenewals, &SmartRenewals::answered, this, &AppState::applySmartAnswer);
    connect(m_smartRenewals, &SmartRenewals::tooLarge, this, &AppState::sayQuestionTooLarge);
    connect(this, &AppState::activatedFontsChanged, this, [this, asksActive] {
        if (!m_isProcessing)
            m_smartRenewals->renewSoon(asksActive);
    });
    connect(this, &AppState::isProcessingChanged, this, [this, asksActive] {
        if (!m_isProcessing)
            m_smartRenewals->renewSoon(asksActive);
    });
    connect(this, &AppState::licenseTagsChanged, this, [this, asksLicence] { m_smartRenewals->renewSoon(asksLicence); });
    m_mountWatcher = new MountWatcher(this);
    connect(m_mountWatcher, &MountWatcher::mountsChanged, this, [this] {
        if (m_hasLoaded && !sources().isEmpty())
            refreshFileSystem();
    });
}

AppState::~AppState()
{
    delete m_saveStatus; // no report can reach us any more
    // A job still running holds the activation service, which may go away with us.
    delete m_refresh; // the running scan stops
    m_catalogue->stop();
    m_jobs.waitForAll();
    endSession();
}

bool AppState::waitForBackgroundWork(int msecs)
{
    return m_jobs.waitForAll(msecs);
}

void AppState::setIsProcessingStalled(bool stalled)
{
    if (m_isProcessingStalled == stalled)
        return;
    m_isProcessingStalled = stalled;
    Q_EMIT isProcessingStalledChanged();
}

void AppState::setWaitingActivations(QSet<QString> waiting)
{
    if (m_waitingActivations == waiting)
        return;
    m_waitingActivations = std::move(waiting);
    Q_EMIT waitingActivationsChanged();
    updateUnavailableSources();
}

void AppState::setActivatedFonts(QSet<QString> fonts)
{
    m_activationStateCache.clear();
    m_collectionStateCache.clear();
    if (m_activatedFonts == fonts)
        return;
    m_activatedFonts = std::move(fonts);
    if (!m_sessionFonts.isEmpty())
        m_sessionFonts.intersect(m_activatedFonts); // only active fonts are this session's
    Q_EMIT activatedFontsChanged();
}

void AppState::setIsProcessing(bool processing)
{
    m_catalogue->setPaused(processing);
    if (m_isProcessing == processing)
        return;
    m_isProcessing = processing;
    if (!processing)
        FreedMemory::giveBackSoon(); // a batch's passing lists
    Q_EMIT isProcessingChanged();
}

void AppState::setProcessing(double progress, const QString &message)
{
    if (m_processingProgress != progress) {
        m_processingProgress = progress;
        Q_EMIT processingProgressChanged();
    }
    if (m_processingMessage != message) {
        m_processingMessage = message;
        Q_EMIT processingMessageChanged();
    }
}

void AppState::setIsIndexing(bool indexing)
{
    if (m_isIndexing == indexing)
        return;
    m_isIndexing = indexing;
    if (!indexing)
        FreedMemory::giveBackSoon(); // the scan's passing lists
    Q_EMIT isIndexingChanged();
}


void AppState::setSourcesForTesting(QList<FolderSource> sources)
{
    m_sourceList->replaceForTesting(std::move(sources));
}

void AppState::setSidebarSelection(const std::optional<SidebarItem> &selection)
{
    // Items compare by kind and id; a renamed collection's newer copy still replaces
    // the older one so the selection never holds stale data.
    const bool same = m_sidebarSelection.has_value() == selection.has_value() &&
                      (!selection || *m_sidebarSelection == *selection);
    m_sidebarSelection = selection;
    if (selection && !m_openedFontFile.isEmpty()) {
        m_openedFontFile.clear(); // the chosen item takes the detail area
        Q_EMIT openedFontFileChanged();
    }
    if (same)
        return;
    Q_EMIT sidebarSelectionChanged();
    // Another item shows another tree: the browser starts again at its top, so the
    // columns always match the path.
    m_navigation->showRoot();
}

void AppState::openFontFile(const QString &path)
{
    setSearchQuery(QString());
    setSidebarSelection(std::nullopt);
    if (m_openedFontFile == path)
        return;
    m_openedFontFile = path;
    Q_EMIT openedFontFileChanged();
}


void AppState::setPreviewText(const QString &text)
{
    if (m_previewText == text)
        return;
    m_previewText = text;
    m_persistenceService.setPreviewText(text);
    Q_EMIT previewTextChanged();
}

void AppState::setPreviewSize(double size)
{
    if (m_previewSize == size)
        return;
    m_previewSize = size;
    m_persistenceService.setPreviewSize(size);
    Q_EMIT previewSizeChanged();
}

void AppState::installLibrary(std::shared_ptr<const FileSystemService> service, QList<FolderSearchResult> searchIndex)
{
    // Freeing the old scan's 100,000 strings and the old index is done on a worker,
    // not on the interface thread.
    QThreadPool::globalInstance()->start([oldService = std::exchange(m_fileSystemService, std::move(service)),
                                          oldIndex = m_folderSearch->replaceIndex(std::move(searchIndex))]() mutable {
        oldService.reset();
        oldIndex.clear();
    });
    m_activationStateCache.clear();
    m_collectionContents.forget();
    m_collectionStateCache.clear();
    m_collectionIcons.forget();
    m_finderTagService = FinderTagService(); // tags are read afresh after a refresh
    m_navigation->rebuild();
    watchSources();
}

void AppState::setWatchingSources(bool watching)
{
    if (watching == (m_sourceWatcher != nullptr))
        return;
    if (!watching) {
        delete std::exchange(m_sourceWatcher, nullptr);
        return;
    }
    m_sourceWatcher = new SourceWatcher(this);
    connect(m_sourceWatcher, &SourceWatcher::changed, this, [this] { refreshFileSystem(); });
    watchSources();
}

void AppState::watchSources()
{
    if (!m_sourceWatcher || !m_fileSystemService)
        return;
    // Every folder of every source the scan reached, the sources themselves included.
    QStringList folders;
    QStringList roots; // every source, there or not: one that comes or goes is noticed
    for (const FolderSource &source : sources()) {
        const QString root = QDir::cleanPath(source.path);
        roots.append(root);
        if (!QFileInfo(root).isDir())
            continue;
        folders.append(root);
        for (const FontNode &folder : m_fileSystemService->allFolders(root))
            folders.append(folder.path());
    }
    if (!m_sourceWatcher->watch(folders, roots) && !m_watchLimitSaid) {
        m_watchLimitSaid = true;
        setNotice(tr("Morvane can't watch all your source folders (the system's limit of watched folders is reached): "
                     "fonts added to them appear after Refresh Sources."));
    }
}
