// SPDX-License-Identifier: GPL-3.0-or-later
// The font catalogue: indexing every face of the library after each refresh, off the
// interface thread, and answering queries from what is indexed so far.
#include "AppState.h"

#include "fonts/FaceReader.h"
#include "services/Diagnostics.h"

#include <QCoroFuture>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QSet>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentMap>
#include <QtConcurrent/QtConcurrentRun>

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
    m_isCataloguing = working;
    m_catalogueDone = done;
    m_catalogueTotal = total;
    Q_EMIT catalogueProgressChanged();
}

void AppState::indexCatalogue()
{
    m_catalogueCancellation.cancel(); // the older job stops after its chunk; records never double
    const CancellationToken cancellation = CancellationToken::create();
    m_catalogueCancellation = cancellation;
    if (!m_catalog)
        m_catalog = std::make_shared<FontCatalog>();
    // Refreshes come in bursts (a drive mounting, files being copied in): the catalogue
    // starts reading once one has stood for a second.
    m_catalogueQuietUntil->store(std::max(m_catalogueQuietUntil->load(), QDateTime::currentMSecsSinceEpoch() + 1000));
    setCatalogueProgress(true, 0, 0);
    const std::shared_ptr<FontCatalog> catalog = m_catalog;
    // One thread for the jobs: a newer one starts once the older has stopped, so the store
    // waits for the newest alone when it goes.
    m_catalogueJob = QtConcurrent::run(&indexers(), [this, catalog, cancellation, paused = m_cataloguePaused, quietUntil = m_catalogueQuietUntil,
                                                     files = m_fileSystemService, sources = m_sources,
                                                     collections = m_collections] {
        // A batch of activations goes first, and the next one a user starts soon after:
        // this goes on two seconds after the last has ended.
        const auto waitYourTurn = [&] {
            while (!cancellation.isCancelled()
                   && (paused->load() || QDateTime::currentMSecsSinceEpoch() < quietUntil->load()))
                QThread::msleep(50);
        };
        waitYourTurn();
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
        QElapsedTimer took;
        took.start();
        QList<FileStamp> stamps;
        stamps.reserve(paths.size());
        for (const QString &path : paths) {
            if (stamps.size() % 4096 == 0)
                waitYourTurn();
            const QFileInfo info(path);
            stamps.append({path, info.size(), info.lastModified().toSecsSinceEpoch()});
        }
        const QStringList toRead = catalog->filesToRead(stamps); // vanished files go here
        QHash<QString, FileStamp> byPath;
        for (const FileStamp &stamp : std::as_const(stamps))
            byPath.insert(stamp.path, stamp);
        const qsizetype total = toRead.size();
        const auto report = [this](bool working, qsizetype done, qsizetype all, bool changed) {
            QMetaObject::invokeMethod(
                this,
                [this, working, done, all, changed] {
                    setCatalogueProgress(working, done, all);
                    if (changed)
                        Q_EMIT catalogueChanged();
                },
                Qt::QueuedConnection);
        };
        report(true, 0, total, false);
        qsizetype done = 0;
        for (qsizetype start = 0; start < total; start += kChunk) {
            waitYourTurn();
            if (cancellation.isCancelled())
                return; // the next refresh's job takes over from here
            const QStringList chunk = toRead.mid(start, kChunk);
            const QList<QList<FaceRecord>> read = QtConcurrent::blockingMapped(&readers(), chunk, &FaceReader::read);
            for (qsizetype i = 0; i < chunk.size(); ++i)
                catalog->record(byPath.value(chunk.at(i)), read.at(i));
            done += chunk.size();
            report(true, done, total, true);
        }
        qCDebug(lcLibrary) << "catalogued" << total << "of" << paths.size() << "files in" << took.elapsed() << "ms";
        if (!cancellation.isCancelled())
            report(false, done, total, true);
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

QCoro::Task<QList<FaceRecord>> AppState::queryFonts(FontQuery query)
{
    const quint64 generation = ++m_queryGeneration;
    if (!m_catalog)
        m_catalog = std::make_shared<FontCatalog>();
    const std::shared_ptr<FontCatalog> catalog = m_catalog;
    QPointer<AppState> self(this);
    const QSet<QString> activated = query.active ? m_activatedFonts : QSet<QString>(); // shared, not copied
    const QFuture<QList<FaceRecord>> asked = QtConcurrent::run([catalog, query, activated] {
        QList<FaceRecord> faces = catalog->query(query);
        faces.removeIf([&](const FaceRecord &face) {
            if (query.active && activated.contains(face.path) != *query.active)
                return true;
            if (query.folders.isEmpty())
                return false;
            return std::none_of(query.folders.cbegin(), query.folders.cend(), [&](const QString &folder) {
                const QString root = QDir::cleanPath(folder);
                return face.path.startsWith(root + u'/') || (root == u"/"_s && face.path.startsWith(root));
            });
        });
        return faces;
    });
    QList<FaceRecord> answer = co_await asked;
    if (!self || generation != m_queryGeneration)
        co_return QList<FaceRecord>(); // a newer question is being answered
    co_return answer;
}
