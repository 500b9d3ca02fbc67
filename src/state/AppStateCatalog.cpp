// SPDX-License-Identifier: GPL-3.0-or-later
// The font catalogue: indexing every face of the library after each refresh, off the
// interface thread, and answering queries from what is indexed so far.
#include "AppState.h"

#include "fonts/FaceReader.h"
#include "services/Diagnostics.h"
#include "services/FreedMemory.h"

#include <QCoroFuture>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFutureWatcher>
#include <QTimer>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QSet>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentMap>
#include <QtConcurrent/QtConcurrentRun>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kChunk = 256; // files read together, between looks at the cancel flag

// Readers of their own: the indexing job waits on them from the shared pool.
QThreadPool &readers()
{
    static QThreadPool pool;
    // Only on time nobody else wants: activation, the scan and the window come first.
    pool.setThreadPriority(QThread::IdlePriority);
    return pool;
}

// The indexing jobs' own thread, one at a time, never one the scan or activation needs.
QThreadPool &indexers()
{
    static QThreadPool pool;
    pool.setMaxThreadCount(1);
    pool.setThreadPriority(QThread::IdlePriority);
    return pool;
}

// The size and time of each file, by stat(2) relative to its folder (no walk of the
// whole path per file), in chunks on the readers' threads. Files gone are left out.
QList<FileStamp> stampsOf(const QStringList &paths)
{
    constexpr qsizetype kStampChunk = 2048;
    QList<QStringList> chunks;
    for (qsizetype start = 0; start < paths.size(); start += kStampChunk)
        chunks.append(paths.mid(start, kStampChunk));
    const auto stampChunk = [](const QStringList &chunk) {
        QList<FileStamp> stamps;
        stamps.reserve(chunk.size());
        int folderFd = -1;
        QStringView folder;
        for (const QString &path : chunk) {
            const qsizetype slash = path.lastIndexOf(u'/');
            if (slash < 0)
                continue;
            if (folderFd < 0 || QStringView(path).left(slash) != folder) {
                if (folderFd >= 0)
                    ::close(folderFd);
                folder = QStringView(path).left(slash);
                folderFd = ::open(QFile::encodeName(folder.toString()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            }
            struct stat info{};
            if (folderFd >= 0 && ::fstatat(folderFd, QFile::encodeName(path.mid(slash + 1)).constData(), &info, 0) == 0)
                stamps.append({path, qint64(info.st_size), qint64(info.st_mtim.tv_sec)});
        }
        if (folderFd >= 0)
            ::close(folderFd);
        return stamps;
    };
    QList<FileStamp> stamps;
    stamps.reserve(paths.size());
    for (const QList<FileStamp> &chunk : QtConcurrent::blockingMapped(&readers(), chunks, stampChunk))
        stamps += chunk;
    return stamps;
}

} // namespace

QString AppState::catalogueMessage() const
{
    if (!m_isCataloguing || m_catalogueTotal == 0)
        return {}; // nothing new to read: nothing to say
    const QLocale locale;
    return tr("Indexing fonts (%1 of %2)…").arg(locale.toString(m_catalogueDone), locale.toString(m_catalogueTotal));
}

void AppState::setCatalogueProgress(bool working, qsizetype done, qsizetype total)
{
    if (m_isCataloguing == working && m_catalogueDone == done && m_catalogueTotal == total)
        return;
    const bool finished = m_isCataloguing && !working;
    m_isCataloguing = working;
    m_catalogueDone = done;
    m_catalogueTotal = total;
    Q_EMIT catalogueProgressChanged();
    if (finished)
        renewSmartCollections(); // the catalogue has read the refresh's changes
}

void AppState::indexCatalogue()
{
    m_catalogueCancellation.cancel(); // the older job stops after its chunk; records never double
    const CancellationToken cancellation = CancellationToken::create();
    m_catalogueCancellation = cancellation;
    if (!m_catalog)
        m_catalog = std::make_shared<FontCatalog>(m_catalogueFile);
    // Refreshes come in bursts (a drive mounting, files being copied in): the catalogue
    // starts reading once one has stood for a second.
    m_catalogueQuietUntil->store(std::max(m_catalogueQuietUntil->load(), QDateTime::currentMSecsSinceEpoch() + m_catalogueSettleMs));
    setCatalogueProgress(true, 0, 0);
    const std::shared_ptr<FontCatalog> catalog = m_catalog;
    // One thread for the jobs: a newer one starts once the older has stopped, so the store
    // waits for the newest alone when it goes.
    m_catalogueJob = QtConcurrent::run(&indexers(), [this, catalog, cancellation, activation = &m_fontActivationService,
                                                     paused = m_cataloguePaused, quietUntil = m_catalogueQuietUntil,
                                                     files = m_fileSystemService, sources = m_sources,
                                                     collections = m_collections, active = m_activatedFonts,
                                                     unannounced = m_catalogueUnannounced] {
        // A batch of activations goes first, and the next one a user starts soon after:
        // this goes on two seconds after the last has ended.
        const auto waitYourTurn = [&] {
            while (!cancellation.isCancelled()
                   && (paused->load() || QDateTime::currentMSecsSinceEpoch() < quietUntil->load()))
                QThread::msleep(50);
        };
        waitYourTurn();
        QElapsedTimer took;
        took.start();
        // Every font the scan saw: in the sources, and collection members outside them.
        QStringList paths;
        QSet<QString> seen;
        const auto take = [&](const QString &root) {
            for (const FontNode &font : files->allFonts(QDir::cleanPath(root))) {
                if (!seen.contains(font.path())) {
                    seen.insert(font.path());
                    paths.append(font.path());
                }
            }
        };
        for (const FolderSource &source : sources)
            take(source.path);
        for (const FontCollection &collection : collections) {
            for (const CollectionMember &member : collection.members) {
                if (member.isDirectory)
                    take(member.path);
                else if (!seen.contains(member.path) && files->exists(member.path)) {
                    seen.insert(member.path);
                    paths.append(member.path);
                }
            }
        }
        // Active fonts outside all of them (a file opened from the desktop and activated
        // there): "Active Fonts" lists them too, or the user could never find them again.
        for (const QString &path : active) {
            if (!seen.contains(path) && !files->exists(path) && QFileInfo::exists(path)) {
                seen.insert(path);
                paths.append(path);
            }
        }
        waitYourTurn();
        const QList<FileStamp> stamps = stampsOf(paths);
        QSet<QString> dropped;
        QSet<QString> recordedBefore;
        const QStringList toRead = catalog->filesToRead(stamps, &dropped, &recordedBefore); // vanished files go here
        unannounced->add([&](CatalogueChange &change) {
            for (const QString &path : std::as_const(dropped))
                change.recordRemoved(path);
        });
        QHash<QString, FileStamp> byPath;
        for (qsizetype i = 0; !toRead.isEmpty() && i < stamps.size(); ++i)
            byPath.insert(stamps.at(i).path, stamps.at(i));
        const qsizetype total = toRead.size();
        const auto report = [this](bool working, qsizetype done, qsizetype all, const CatalogueChange &change) {
            QMetaObject::invokeMethod(
                this,
                [this, working, done, all, change] {
                    setCatalogueProgress(working, done, all);
                    if (!change.isEmpty())
                        Q_EMIT catalogueChanged(change);
                },
                Qt::QueuedConnection);
        };
        report(true, 0, total, {});
        qsizetype done = 0;
        for (qsizetype start = 0; start < total; start += kChunk) {
            waitYourTurn();
            if (cancellation.isCancelled())
                return; // the next refresh's job takes over from here
            const QStringList chunk = toRead.mid(start, kChunk);
            const QList<QList<FaceRecord>> read = QtConcurrent::blockingMapped(&readers(), chunk, &FaceReader::read);
            for (qsizetype i = 0; i < chunk.size(); ++i)
                catalog->record(byPath.value(chunk.at(i)), read.at(i));
            unannounced->add([&](CatalogueChange &change) {
                for (const QString &path : chunk)
                    change.recordRead(path, recordedBefore.contains(path));
            });
            done += chunk.size();
            report(true, done, total, {});
        }
        qCDebug(lcLibrary) << "catalogued" << total << "of" << paths.size() << "files in" << took.elapsed() << "ms";
        // Said once, when the job is done, and only when something changed (this job's
        // or one a newer refresh cut short): views update once, not once per chunk.
        if (!cancellation.isCancelled())
            report(false, done, total, unannounced->take());
        // Then, on the same idle thread, what activating each folder will need.
        if (cancellation.isCancelled())
            return;
        QHash<QString, QStringList> byFolder;
        for (const QString &path : std::as_const(paths))
            byFolder[path.section(u'/', 0, -2)].append(path);
        took.restart();
        activation->prepareActivation(byFolder.values(), [&] {
            waitYourTurn();
            return cancellation.isCancelled();
        });
        qCDebug(lcActivation) << "made" << byFolder.size() << "folders ready to activate in" << took.elapsed() << "ms";
        FreedMemory::giveBack();
    });
    m_catalogueJobs.removeIf([](const QFuture<void> &job) { return job.isFinished(); });
    m_catalogueJobs.append(m_catalogueJob);
}

bool AppState::waitForCatalogue(int msecs)
{
    QElapsedTimer waited;
    waited.start();
    while (!m_catalogueJob.isFinished() || m_isCataloguing) {
        if (waited.elapsed() >= msecs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

namespace {

bool isUnder(const QString &path, const QString &folder)
{
    const QString root = QDir::cleanPath(folder);
    return path.startsWith(root) && (root == u"/"_s || path.size() == root.size() || path.at(root.size()) == u'/');
}

} // namespace

QCoro::Task<FontQueryAnswer> AppState::queryFonts(FontQuery query)
{
    const quint64 generation = m_queryGeneration + 1;
    QPointer<AppState> self(this);
    QFuture<FontQueryAnswer> asked = askFonts(std::move(query)); // named: see runRefresh
    FontQueryAnswer answer = co_await asked;
    if (!self || generation != m_queryGeneration)
        co_return FontQueryAnswer{.cancelled = true}; // a newer question is being answered
    co_return answer;
}

QFuture<FontQueryAnswer> AppState::askFonts(FontQuery query)
{
    ++m_queryGeneration;
    m_queryCancelled->store(true); // the older question stops where it is
    m_queryCancelled = std::make_shared<std::atomic_bool>(false);
    return answer(std::move(query), m_queryCancelled);
}

QFuture<FontQueryAnswer> AppState::answer(FontQuery query, std::shared_ptr<std::atomic_bool> cancelled)
{
    if (!m_catalog)
        m_catalog = std::make_shared<FontCatalog>(m_catalogueFile);
    const std::shared_ptr<FontCatalog> catalog = m_catalog;
    // What only the store knows, taken along (shared, not copied).
    const bool needsActive = query.active || query.conflicts;
    const QSet<QString> activated = needsActive ? m_activatedFonts : QSet<QString>();
    QList<CollectionMember> members;
    if (query.collection) {
        const auto collection = std::find_if(m_collections.cbegin(), m_collections.cend(),
                                             [&](const FontCollection &c) { return c.id == *query.collection; });
        if (collection != m_collections.cend())
            members = collection->members;
    }
    QStringList sourceFolders;
    for (const FolderSource &source : std::as_const(m_sources))
        sourceFolders.append(QDir::cleanPath(source.path));
    return QtConcurrent::run([catalog, query, activated, members, sourceFolders, cancelled] {
        const QSet<QString> conflicting = query.conflicts ? catalog->sharedPostScriptNames(activated) : QSet<QString>();
        QHash<QString, LicenseStatus> statusOf; // a .ttc's faces ask the file once
        const auto keep = [&](const QString &path, const QString &postScriptName) {
            if (query.active && activated.contains(path) != *query.active)
                return false;
            if (query.conflicts && (!activated.contains(path) || !conflicting.contains(postScriptName)))
                return false;
            if (!query.folders.isEmpty()
                && std::none_of(query.folders.cbegin(), query.folders.cend(),
                                [&](const QString &folder) { return isUnder(path, folder); }))
                return false;
            if (query.collection && std::none_of(members.cbegin(), members.cend(), [&](const CollectionMember &member) {
                    return member.isDirectory ? isUnder(path, member.path) : member.path == path;
                }))
                return false;
            if (!query.licenseStatuses.isEmpty()) {
                auto status = statusOf.constFind(path);
                if (status == statusOf.cend())
                    status = statusOf.insert(path, License::from(FinderTagService::readTags(path)));
                if (!query.licenseStatuses.contains(*status))
                    return false;
            }
            return true;
        };
        const bool asksTheStore = query.active || query.conflicts || !query.folders.isEmpty() || query.collection
                                  || !query.licenseStatuses.isEmpty();
        return catalog->query(query, asksTheStore ? FontCatalog::FaceFilter(keep) : FontCatalog::FaceFilter(), sourceFolders,
                              cancelled.get());
    });
}

QFuture<qsizetype> AppState::countFonts(FontQuery query)
{
    if (!m_catalog)
        m_catalog = std::make_shared<FontCatalog>(m_catalogueFile);
    const std::shared_ptr<FontCatalog> catalog = m_catalog;
    return QtConcurrent::run([catalog, query] { return catalog->query(query).faceCount(); });
}

qsizetype AppState::libraryFaceCount(LibraryView::Kind kind) const
{
    return kind == LibraryView::AllFonts ? m_libraryCounts->allFaces() : m_libraryCounts->activeFaces();
}

