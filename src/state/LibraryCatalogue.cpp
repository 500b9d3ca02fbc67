// SPDX-License-Identifier: GPL-3.0-or-later
#include "LibraryCatalogue.h"

#include "fonts/FaceReader.h"
#include "services/Diagnostics.h"
#include "services/FinderTagService.h"
#include "services/FontActivating.h"
#include "services/BackgroundPriority.h"
#include "services/FreedMemory.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QTimer>
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

// Readers of their own: the indexing job waits on them from the shared pool. Each job
// on them lowers its thread's priority first: activation, the scan and the window come first.
QThreadPool &readers()
{
    static QThreadPool pool;
    return pool;
}

// The indexing jobs' own thread, one at a time, never one the scan or activation needs.
QThreadPool &indexers()
{
    static QThreadPool pool;
    pool.setMaxThreadCount(1);
    return pool;
}

// A file's faces, or nothing when the job was cancelled before its turn came: a chunk
// stops within a file's time, and what was read is kept.
std::optional<QList<FaceRecord>> readFaces(const QString &path, const CancellationToken &cancellation)
{
    BackgroundPriority::lowerThisThread();
    if (cancellation.isCancelled())
        return std::nullopt;
    return FaceReader::read(path);
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
        BackgroundPriority::lowerThisThread();
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

LibraryCatalogue::LibraryCatalogue(FontActivating &activation, QObject *parent)
    : QObject(parent)
    , m_activation(activation)
{
}

LibraryCatalogue::~LibraryCatalogue()
{
    stop();
}

void LibraryCatalogue::Gate::wake()
{
    const std::lock_guard lock(mutex); // a job between its look and its sleep hears it
    turn.notify_all();
}

void LibraryCatalogue::Gate::waitTurn(const CancellationToken &cancellation)
{
    std::unique_lock lock(mutex);
    while (!cancellation.isCancelled()) {
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        if (paused)
            turn.wait(lock);
        else if (now < quietUntil)
            turn.wait_for(lock, std::chrono::milliseconds(quietUntil - now));
        else
            return;
    }
}

void LibraryCatalogue::stop()
{
    // A job holds the activation service, which may go away with the store.
    m_cancellation.cancel();
    m_gate->wake();
    for (QFuture<void> &job : m_jobs)
        job.waitForFinished(); // each stops after the file in hand
}

std::shared_ptr<FontCatalog> LibraryCatalogue::catalog()
{
    if (!m_catalog)
        m_catalog = std::make_shared<FontCatalog>(m_file);
    return m_catalog;
}

void LibraryCatalogue::holdOff(int msecs)
{
    const std::lock_guard lock(m_gate->mutex);
    m_gate->quietUntil = std::max(m_gate->quietUntil, QDateTime::currentMSecsSinceEpoch() + msecs);
}

void LibraryCatalogue::setPaused(bool paused)
{
    {
        const std::lock_guard lock(m_gate->mutex);
        m_gate->paused = paused;
    }
    m_gate->turn.notify_all();
}

void LibraryCatalogue::setProgress(bool working, qsizetype done, qsizetype total)
{
    if (m_working == working && m_done == done && m_total == total)
        return;
    const bool ended = m_working && !working;
    m_working = working;
    m_done = done;
    m_total = total;
    Q_EMIT progressChanged();
    if (ended)
        Q_EMIT finished();
}

void LibraryCatalogue::index(Library library)
{
    m_cancellation.cancel(); // the older job stops within its chunk; records never double
    m_gate->wake();
    const CancellationToken cancellation = CancellationToken::create();
    m_cancellation = cancellation;
    const std::shared_ptr<FontCatalog> catalog = this->catalog();
    // Refreshes come in bursts (a drive mounting, files being copied in): reading starts
    // once one has stood for a while.
    holdOff(m_settleMs);
    setProgress(true, 0, 0);
    // One thread for the jobs: a newer one starts once the older has stopped.
    m_job = QtConcurrent::run(&indexers(), [this, catalog, cancellation, activation = &m_activation, gate = m_gate,
                                            files = std::move(library.files),
                                            sources = std::move(library.sources),
                                            collections = std::move(library.collections),
                                            active = std::move(library.active), unannounced = m_unannounced] {
        // A batch of activations goes first, and the next one a user starts soon after:
        // this goes on two seconds after the last has ended.
        BackgroundPriority::lowerThisThread();
        const auto waitYourTurn = [&] { gate->waitTurn(cancellation); };
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
        QHash<QString, FileStamp> byPath;
        const auto report = [this](bool working, qsizetype done, qsizetype all, const CatalogueChange &change) {
            QMetaObject::invokeMethod(
                this,
                [this, working, done, all, change] {
                    if (!change.isEmpty())
                        Q_EMIT changed(change);
                    setProgress(working, done, all);
                },
                Qt::QueuedConnection);
        };
        // A catalogue damaged on disk is set aside here, before it is trusted.
        catalog->checkIntegrity();
        qsizetype done = 0, total = 0;
        // A second pass when the file was found damaged meanwhile and started afresh:
        // what the first pass recorded went with it.
        for (int pass = 0; pass < 2 && (pass == 0 || catalog->needsReading()); ++pass) {
            QSet<QString> dropped;
            QSet<QString> recordedBefore;
            const QStringList toRead = catalog->filesToRead(stamps, &dropped, &recordedBefore); // vanished files go here
            {
                const std::lock_guard lock(unannounced->mutex);
                for (const QString &path : std::as_const(dropped))
                    unannounced->change.recordRemoved(path);
            }
            if (!toRead.isEmpty() && byPath.isEmpty()) {
                for (const FileStamp &stamp : stamps)
                    byPath.insert(stamp.path, stamp);
            }
            total = toRead.size();
            done = 0;
            report(true, 0, total, {});
            for (qsizetype start = 0; start < total; start += kChunk) {
                waitYourTurn();
                if (cancellation.isCancelled())
                    return; // the next refresh's job takes over from here
                const QStringList chunk = toRead.mid(start, kChunk);
                const QList<std::optional<QList<FaceRecord>>> read = QtConcurrent::blockingMapped(
                    &readers(), chunk, [cancellation](const QString &path) { return readFaces(path, cancellation); });
                for (qsizetype i = 0; i < chunk.size(); ++i) {
                    if (read.at(i)) // none: cancelled before its turn, for the next job to read
                        catalog->record(byPath.value(chunk.at(i)), *read.at(i));
                }
                const std::lock_guard lock(unannounced->mutex);
                for (qsizetype i = 0; i < chunk.size(); ++i) {
                    if (read.at(i))
                        unannounced->change.recordRead(chunk.at(i), recordedBefore.contains(chunk.at(i)));
                }
                done += chunk.size();
                report(true, done, total, {});
            }
        }
        qCDebug(lcLibrary) << "catalogued" << total << "of" << paths.size() << "files in" << took.elapsed() << "ms";
        // Said once, when the job is done, and only when something changed (this job's
        // or one a newer refresh cut short): views update once, not once per chunk.
        if (!cancellation.isCancelled())
            report(false, done, total, [&] {
                const std::lock_guard lock(unannounced->mutex);
                return std::exchange(unannounced->change, {});
            }());
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
    auto *watcher = new QFutureWatcher<void>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
        watcher->deleteLater();
        Q_EMIT jobEnded();
    });
    watcher->setFuture(m_job);
    m_jobs.removeIf([](const QFuture<void> &job) { return job.isFinished(); });
    m_jobs.append(m_job);
}

bool LibraryCatalogue::waitUntilDone(int msecs)
{
    const auto done = [this] { return m_job.isFinished() && !m_working; };
    if (done())
        return true;
    // Events are handled meanwhile (the job's reports come as events); the loop sleeps
    // between them.
    QEventLoop loop;
    const auto check = [&] {
        if (done())
            loop.quit();
    };
    connect(this, &LibraryCatalogue::jobEnded, &loop, check);
    connect(this, &LibraryCatalogue::progressChanged, &loop, check);
    QTimer::singleShot(msecs, &loop, &QEventLoop::quit);
    check();
    loop.exec();
    return done();
}

namespace {

bool isUnder(const QString &path, const QString &folder)
{
    const QString root = QDir::cleanPath(folder);
    return path.startsWith(root) && (root == u"/"_s || path.size() == root.size() || path.at(root.size()) == u'/');
}

} // namespace

QFuture<FontQueryAnswer> LibraryCatalogue::ask(FontQuery query, Knowledge knowledge)
{
    ++m_questions;
    m_questionCancelled->store(true); // the older question stops where it is
    m_questionCancelled = std::make_shared<std::atomic_bool>(false);
    return answer(std::move(query), std::move(knowledge), m_questionCancelled);
}

QFuture<FontQueryAnswer> LibraryCatalogue::answer(FontQuery query, Knowledge knowledge,
                                                  std::shared_ptr<std::atomic_bool> cancelled)
{
    return QtConcurrent::run([catalog = catalog(), query, activated = std::move(knowledge.activated),
                              members = std::move(knowledge.members), sourceFolders = std::move(knowledge.sourceFolders),
                              cancelled] {
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
    }).then(this, [this](FontQueryAnswer answer) {
        // A question that found the file damaged had it started afresh: unless a job is
        // reading already (it reads the files again itself), one must.
        if (!m_working && m_catalog && m_catalog->needsReading())
            Q_EMIT rebuilt();
        return answer;
    });
}

QFuture<qsizetype> LibraryCatalogue::count(FontQuery query)
{
    return QtConcurrent::run([catalog = catalog(), query] { return catalog->query(query).faceCount(); });
}
