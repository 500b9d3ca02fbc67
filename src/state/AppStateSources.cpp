// Sources and library loading: the start-up restore, adding and removing source
// folders, and the background refresh that swaps in new scan caches.
#include "AppState.h"

#include "model/Json.h"
#include "services/Console.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QtConcurrent/qtconcurrenttask.h>

#include <chrono>
#include <limits>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

bool fileExists(const QString &path)
{
    struct stat info{};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0;
}

// Every folder below the root, with the path of folders leading to it, depth first.
// Children lists hold folders first, so the walk stops at the first font.
void indexFolders(const FileSystemService &service, const FolderSource &source, const QString &idPrefix,
                  const QString &folder, const QList<FontNode> &pathSoFar, std::vector<FolderSearchResult> &index)
{
    for (const FontNode &child : service.children(folder)) {
        if (!child.isDirectory())
            break;
        QList<FontNode> path;
        path.reserve(pathSoFar.size() + 1);
        path.append(pathSoFar);
        path.append(child);
        index.push_back(FolderSearchResult::make(idPrefix, child, source, path));
        indexFolders(service, source, idPrefix, child.path(), path, index);
    }
}

} // namespace

void AppState::loadPersistedState()
{
    if (m_hasLoaded)
        return;
    m_hasLoaded = true;
    setSources(m_persistenceService.loadSources());
    setCollections(m_persistenceService.loadCollections());
    sortCollections();
    PersistenceService::LoadStatus savedStatus = PersistenceService::LoadStatus::Missing;
    const QSet<QString> saved = m_persistenceService.loadActivatedFonts(&savedStatus);
    setActivatedFonts(saved);
    setPreviewText(m_persistenceService.previewText());
    setPreviewSize(m_persistenceService.previewSize());
    if (!m_sources.isEmpty())
        setSidebarSelection(SidebarItem(m_sources.first()));
    refreshFileSystem();

    setIsProcessing(true);
    setProcessing(m_processingProgress, u"Restoring fonts…"_s);
    restoreActivations(saved, savedStatus == PersistenceService::LoadStatus::Read);
}

namespace {

// Off the interface thread, at low priority: repairs our activations, decides what
// to restore and which saved fonts still exist.
QSet<QString> checkSavedFonts(FontActivating *activation, const QSet<QString> &saved, bool savedSetIsWhole)
{
    activation->repairActivations();
    // After the repair every recorded activation's file exists: only the others are looked at.
    const QSet<QString> recorded = activation->recordedActivations();
    QSet<QString> candidates = saved;
    if (!savedSetIsWhole) {
        // The saved list is gone or unreadable, but our activations themselves record
        // what was active: restore those rather than sweep them away.
        candidates = recorded;
        if (!candidates.isEmpty())
            Console::printLine(u"Restoring the %1 activated fonts that Morvane's font links record instead"_s
                                   .arg(candidates.size()));
    }
    QSet<QString> existing;
    existing.reserve(candidates.size());
    for (const QString &path : std::as_const(candidates)) {
        if (recorded.contains(path) || fileExists(path))
            existing.insert(path);
    }
    // Away with activations nothing accounts for (a crash mid-batch), but only when
    // the saved set says for sure what should be active.
    if (savedSetIsWhole)
        activation->removeActivationsExcept(existing);
    return existing;
}

} // namespace

QCoro::Task<> AppState::restoreActivations(QSet<QString> saved, bool savedSetIsWhole)
{
    QPointer<AppState> self(this);
    FontActivating *activation = &m_fontActivationService;
    const QFuture<QSet<QString>> check = QtConcurrent::task(&checkSavedFonts)
                                             .withArguments(activation, saved, savedSetIsWhole)
                                             .withPriority(-1)
                                             .spawn();
    m_runningJob = QFuture<void>(check);
    const QSet<QString> existing = co_await check;
    if (!self)
        co_return;
    setActivatedFonts({});
    QList<FontNode> fonts;
    fonts.reserve(existing.size());
    for (const QString &path : existing)
        fonts.append(FontNode::fromPath(path));
    const QString label = u"Restoring"_s;
    co_await batchProcess(fonts, true, label);
    if (!self)
        co_return;
    saveActivatedFonts(); // vanished fonts leave the saved set here
    setIsProcessing(false);
}

void AppState::addSource(const QString &path)
{
    const QString cleanPath = QDir::cleanPath(path);
    for (const FolderSource &source : std::as_const(m_sources)) {
        if (source.path == cleanPath)
            return;
    }
    const FolderSource source{QUuid::createUuid(), cleanPath, cleanPath == u"/" ? cleanPath : cleanPath.section(u'/', -1)};
    QList<FolderSource> sources = m_sources;
    sources.append(source);
    setSources(std::move(sources));
    refreshFileSystem();
    if (!m_sidebarSelection)
        setSidebarSelection(SidebarItem(source));
    m_persistenceService.saveSources(m_sources);
}

QCoro::Task<> AppState::removeSource(FolderSource source)
{
    if (m_isProcessing)
        co_return; // never overlaps a batch
    QPointer<AppState> self(this);
    QList<FontNode> active;
    for (const FontNode &font : m_fileSystemService->allFonts(QDir::cleanPath(source.path))) {
        if (m_activatedFonts.contains(font.path()))
            active.append(font);
    }
    setIsProcessing(true);
    const QString label = u"Deactivating"_s;
    co_await batchProcess(active, false, label);
    if (!self)
        co_return;
    QList<FolderSource> sources = m_sources;
    sources.removeIf([&source](const FolderSource &s) { return s.id == source.id; });
    setSources(std::move(sources));
    if (m_sidebarSelection && m_sidebarSelection->isSource() && m_sidebarSelection->payloadId() == source.id) {
        setSidebarSelection(m_sources.isEmpty() ? std::nullopt : std::optional<SidebarItem>(SidebarItem(m_sources.first())));
        setNavigationPath({});
        setCachedColumns(buildColumns());
    }
    m_persistenceService.saveSources(m_sources);
    saveActivatedFonts();
    refreshFileSystem();
    setIsProcessing(false);
}

void AppState::refreshFileSystem()
{
    m_libraryCancellation.cancel();
    if (m_libraryGeneration == std::numeric_limits<quint64>::max())
        qFatal("AppState: library generation overflow");
    const quint64 generation = ++m_libraryGeneration;
    QList<CollectionMember> members;
    for (const FontCollection &collection : std::as_const(m_collections))
        members.append(collection.members);
    setIsIndexing(true);
    runRefresh(generation, m_sources, members);
}

QCoro::Task<> AppState::runRefresh(quint64 generation, QList<FolderSource> sources, QList<CollectionMember> members)
{
    QPointer<AppState> self(this);
    co_await QCoro::sleepFor(50ms);
    if (!self || generation != m_libraryGeneration)
        co_return; // a newer request came while we slept: one scan per burst
    const CancellationToken cancellation = CancellationToken::create();
    m_libraryCancellation = cancellation;
    LibraryScanner scanner = m_libraryScanner; // the job keeps its own copy
    const LibraryScan scan = co_await QtConcurrent::task(std::move(scanner))
                                 .withArguments(sources, members, cancellation)
                                 .withPriority(1)
                                 .spawn();
    if (!self || cancellation.isCancelled() || generation != m_libraryGeneration)
        co_return; // stale: a newer refresh owns isIndexing
    installLibrary(scan.service, scan.searchIndex);
    scheduleSearch(); // an active query runs again on the new index
    setIsIndexing(false);
}

AppState::LibraryScan AppState::scanLibrary(const QList<FolderSource> &sources, const QList<CollectionMember> &members,
                                            const CancellationToken &cancellation)
{
    auto service = std::make_shared<FileSystemService>(cancellation);
    for (const FolderSource &source : sources) {
        if (cancellation.isCancelled())
            break;
        const QString root = QDir::cleanPath(source.path);
        if (service->insertPreScannedRoot(root))
            service->deepScan(root);
    }
    for (const CollectionMember &member : members) {
        if (cancellation.isCancelled())
            break;
        service->recordExistence(member.path);
        // Folders outside every source become browsable from their collection.
        if (member.isDirectory && service->insertPreScannedRoot(QDir::cleanPath(member.path)))
            service->deepScan(QDir::cleanPath(member.path));
    }
    std::vector<FolderSearchResult> index;
    index.reserve(static_cast<size_t>(service->folderCount()));
    for (const FolderSource &source : sources) {
        const QString idPrefix = Json::uuidText(source.id) + u':';
        indexFolders(*service, source, idPrefix, QDir::cleanPath(source.path), {}, index);
    }
    NameCollator(QLocale()).stableSort(index, [](const FolderSearchResult &result) { return result.folder.name(); });
    service->freeze();
    return {service, QList<FolderSearchResult>(std::make_move_iterator(index.begin()), std::make_move_iterator(index.end()))};
}
