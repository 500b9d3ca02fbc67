// SPDX-License-Identifier: GPL-3.0-or-later
// Sources and library loading: the start-up restore, adding and removing source
// folders, and putting in place what a refresh (LibraryRefresh) scanned.
#include "AppState.h"

#include "services/Diagnostics.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QtConcurrent/qtconcurrenttask.h>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

void AppState::loadPersistedState()
{
    if (m_hasLoaded)
        return;
    m_hasLoaded = true;
    m_sourceList->load();
    m_collectionList->load();
    PersistenceService::LoadStatus savedStatus = PersistenceService::LoadStatus::Missing;
    const QSet<QString> saved = m_persistenceService.loadActivatedFonts(&savedStatus);
    setActivatedFonts(saved);
    setPreviewText(m_persistenceService.previewText());
    setPreviewSize(m_persistenceService.previewSize());
    if (!sources().isEmpty())
        setSidebarSelection(SidebarItem(sources().first()));
    refreshFileSystem();

    setIsProcessing(true);
    setProcessing(m_processingProgress, tr("Restoring fonts…"));
    restoreActivations(saved, savedStatus == PersistenceService::LoadStatus::Read);
}

namespace {

// An existing folder with nothing in it stands in for a drive that is not mounted (the
// bare folder fstab mounts it on): while fonts were saved under it, they wait for it
// rather than being forgotten.
bool isEmptyFolder(const QString &path)
{
    return QDir(path).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

bool isUnder(const QString &path, const QStringList &roots)
{
    for (const QString &root : roots) {
        if (path.size() > root.size() && path.startsWith(root) && (root.endsWith(u'/') || path.at(root.size()) == u'/'))
            return true;
    }
    return false;
}

// What became of saved activations: still there, out of reach for now, or gone.
struct SavedFonts
{
    QSet<QString> existing;
    QSet<QString> waiting;
};

// Sorts saved paths by whether their file is there. Missing is gone only when its
// source folder is there; a file that can't be reached (a folder made unreadable, a
// drive that answers with an error) waits like one on an unmounted drive.
SavedFonts sortSavedFonts(const QSet<QString> &candidates, const QSet<QString> &recorded, const QStringList &roots)
{
    QStringList unavailableRoots;
    for (const QString &root : roots) {
        if (!LibraryRefresh::isReachable(root) || isEmptyFolder(root))
            unavailableRoots.append(root);
    }
    SavedFonts result;
    result.existing.reserve(candidates.size());
    for (const QString &path : candidates) {
        struct stat info{};
        // The links' own copy of the path is kept, so 100,000 active paths are held once.
        if (const auto linked = recorded.constFind(path); linked != recorded.cend())
            result.existing.insert(*linked);
        else if (::stat(QFile::encodeName(path).constData(), &info) == 0)
            result.existing.insert(path);
        else if ((errno != ENOENT && errno != ENOTDIR) || isUnder(path, unavailableRoots))
            result.waiting.insert(path);
    }
    return result;
}

// Off the interface thread, at low priority: repairs our activations, decides what
// to restore and which saved fonts still exist.
SavedFonts checkSavedFonts(FontActivating *activation, const QSet<QString> &saved, bool savedSetIsWhole,
                           const QStringList &roots)
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
            qCWarning(lcStorage).noquote() << u"Restoring the %1 activated fonts that Morvane's font links record instead"_s
                                                  .arg(candidates.size());
    }
    SavedFonts sorted = sortSavedFonts(candidates, recorded, roots);
    if (!sorted.waiting.isEmpty())
        qCInfo(lcLibrary).noquote() << u"Keeping %1 activated fonts whose folder can't be reached now; they are "
                                       u"activated again when it is back"_s.arg(sorted.waiting.size());
    // Away with activations nothing accounts for (a crash mid-batch), but only when
    // the saved set says for sure what should be active.
    if (savedSetIsWhole)
        activation->removeActivationsExcept(sorted.existing);
    return sorted;
}

} // namespace

QStringList AppState::sourceRoots() const
{
    QStringList roots;
    for (const FolderSource &source : sources())
        roots.append(QDir::cleanPath(source.path));
    return roots;
}

QCoro::Task<> AppState::restoreActivations(QSet<QString> saved, bool savedSetIsWhole)
{
    QPointer<AppState> self(this);
    FontActivating *activation = &m_fontActivationService;
    const QStringList roots = sourceRoots();
    const bool copies = m_persistenceService.copiesForSandboxes();
    // Fonts active for this session stay only while the session they belong to lasts.
    const QSet<QString> session = takeSessionRecord();
    const QFuture<SavedFonts> check =
        QtConcurrent::task([activation, saved = saved + session, savedSetIsWhole, roots, copies, ticket = m_jobs.ticket()] {
            activation->setCopiesAllowed(copies); // before the repair, which makes links as it says
            return checkSavedFonts(activation, saved, savedSetIsWhole, roots);
        })
            .withPriority(-1)
            .spawn();
    const SavedFonts sorted = co_await check;
    if (!self)
        co_return;
    setActivatedFonts({});
    setWaitingActivations(sorted.waiting);
    QList<FontNode> fonts;
    fonts.reserve(sorted.existing.size());
    for (const QString &path : sorted.existing)
        fonts.append(FontNode::fromPath(path));
    co_await reactivate(fonts);
    if (!self)
        co_return;
    for (const QString &font : session) {
        if (m_activatedFonts.contains(font))
            m_sessionFonts.insert(font);
    }
    if (!m_sessionFonts.isEmpty())
        Q_EMIT activatedFontsChanged(); // their rows show them as this session's
    saveActivatedFonts(); // vanished fonts leave the saved set here
    setIsProcessing(false);
}

QCoro::Task<BatchResult> AppState::reactivate(QList<FontNode> fonts)
{
    QPointer<AppState> self(this);
    const QString label = u"Restoring"_s;
    const BatchResult result = co_await batchProcess(fonts, true, label);
    if (!self)
        co_return result;
    // A font that failed because our font folder can't be written is no less wanted:
    // it waits for the next start, and the saved list keeps it. So does one a stopped
    // restore never reached.
    const QStringList wanted = result.systemFailures + result.untouched;
    if (!wanted.isEmpty())
        setWaitingActivations(m_waitingActivations + QSet<QString>(wanted.cbegin(), wanted.cend()));
    co_return result;
}

QCoro::Task<> AppState::restoreWaiting()
{
    if (m_waitingActivations.isEmpty() || m_isProcessing)
        co_return;
    QPointer<AppState> self(this);
    const QSet<QString> waiting = m_waitingActivations;
    const QStringList roots = sourceRoots();
    const QFuture<SavedFonts> check = QtConcurrent::task([waiting, roots, ticket = m_jobs.ticket()] {
                                          return sortSavedFonts(waiting, QSet<QString>(), roots);
                                      })
                                          .withPriority(-1)
                                          .spawn();
    const SavedFonts sorted = co_await check;
    if (!self || m_isProcessing)
        co_return;
    // Changed meanwhile (a source removed, Deactivate All): only what still waits.
    QSet<QString> stillWaiting = m_waitingActivations;
    QList<FontNode> fonts;
    for (const QString &path : sorted.existing) {
        if (stillWaiting.contains(path))
            fonts.append(FontNode::fromPath(path));
    }
    for (const QString &path : waiting) {
        if (!sorted.existing.contains(path) && !sorted.waiting.contains(path))
            stillWaiting.remove(path); // its folder is back, the file is not: gone
    }
    if (fonts.isEmpty() && stillWaiting == m_waitingActivations)
        co_return;
    // The fonts being activated again go on waiting until their batch has said how it
    // went: the waiting list never looks emptier than it is.
    setWaitingActivations(stillWaiting);
    const BatchResult result = co_await reactivate(fonts);
    if (!self)
        co_return;
    // Done, or failed for a reason of the font's own: no longer waiting.
    const QSet<QString> wanted(result.systemFailures.cbegin(), result.systemFailures.cend());
    const QSet<QString> unreached(result.untouched.cbegin(), result.untouched.cend());
    QSet<QString> waitingNow = m_waitingActivations;
    for (const FontNode &font : std::as_const(fonts)) {
        if (!wanted.contains(font.path()) && !unreached.contains(font.path()))
            waitingNow.remove(font.path());
    }
    setWaitingActivations(std::move(waitingNow));
    saveActivatedFonts();
}

void AppState::addSource(const QString &path)
{
    const std::optional<FolderSource> source = m_sourceList->add(path);
    if (!source)
        return;
    refreshFileSystem();
    if (!m_sidebarSelection)
        setSidebarSelection(SidebarItem(*source));
}

qsizetype AppState::activeFontCount(const FolderSource &source) const
{
    const std::span<const FontNode> fonts = m_fileSystemService->allFonts(QDir::cleanPath(source.path));
    return std::count_if(fonts.begin(), fonts.end(),
                         [this](const FontNode &font) { return m_activatedFonts.contains(font.path()); });
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
    // Activations waiting for this source to come back go with it.
    const QString root = QDir::cleanPath(source.path);
    QSet<QString> waiting = m_waitingActivations;
    waiting.removeIf([&root](const QString &path) { return isUnder(path, {root}); });
    setWaitingActivations(std::move(waiting));
    m_sourceList->remove(source.id);
    if (m_sidebarSelection && m_sidebarSelection->isSource() && m_sidebarSelection->payloadId() == source.id) {
        setSidebarSelection(m_sourceList->isEmpty() ? std::nullopt : std::optional<SidebarItem>(SidebarItem(sources().first())));
        m_navigation->showRoot();
    }
    saveActivatedFonts();
    refreshFileSystem();
    setIsProcessing(false);
}

void AppState::updateUnavailableSources()
{
    // Unreachable, or scanned empty while saved fonts wait under it: a drive not mounted
    // on its bare folder shows as "Not available", not as a source that lost its fonts.
    QSet<QUuid> unavailable = m_unreachableSources;
    for (const FolderSource &source : sources()) {
        const QString root = QDir::cleanPath(source.path);
        // Only a scan's word counts: before the first one nothing is known to be empty.
        if (unavailable.contains(source.id) || !m_fileSystemService->preScannedRoots().contains(root) ||
            !m_fileSystemService->children(root).empty())
            continue;
        if (std::any_of(m_waitingActivations.cbegin(), m_waitingActivations.cend(),
                        [&root](const QString &path) { return isUnder(path, {root}); }))
            unavailable.insert(source.id);
    }
    if (m_unavailableSources == unavailable)
        return;
    m_unavailableSources = std::move(unavailable);
    Q_EMIT unavailableSourcesChanged();
}

void AppState::refreshFileSystem(Refresh how)
{
    setIsIndexing(true); // until the newest request's scan is in place
    ++m_refreshRequests;
    m_refresh->request(how);
}

void AppState::applyScan(const LibraryScan &scan)
{
    m_unreachableSources = scan.unavailableSources;
    installLibrary(scan.service, scan.searchIndex);
    updateUnavailableSources(); // by the new scan
    indexCatalogue();
    m_folderSearch->rerun(); // an active query runs again on the new index
    setIsIndexing(false);
    restoreWaiting(); // a source folder that came back brings its fonts back
    refreshActivationLinks(m_refreshRequests);
}

AppState::LibraryScan AppState::scanLibrary(const LibraryScanRequest &request, const CancellationToken &cancellation)
{
    return LibraryRefresh::scanLibrary(request, cancellation);
}
