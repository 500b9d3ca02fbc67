// SPDX-License-Identifier: GPL-3.0-or-later
#include "LibraryRefresh.h"

#include "model/Json.h"
#include "services/Diagnostics.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QtConcurrent/qtconcurrenttask.h>

#include <chrono>
#include <limits>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

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

bool LibraryRefresh::isReachable(const QString &path)
{
    struct stat info{};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode) &&
           ::access(QFile::encodeName(path).constData(), R_OK | X_OK) == 0;
}

LibraryRefresh::LibraryRefresh(Inputs inputs, QObject *parent)
    : QObject(parent)
    , m_inputs(std::move(inputs))
{
}

LibraryRefresh::~LibraryRefresh()
{
    m_cancellation.cancel();
}

void LibraryRefresh::request(Refresh how)
{
    m_cancellation.cancel();
    if (m_generation == std::numeric_limits<quint64>::max())
        qFatal("LibraryRefresh: generation overflow");
    const quint64 generation = ++m_generation;
    // Kept until a scan that read everything is applied: a burst's later request for
    // only the changes does not undo it.
    m_readEverything = m_readEverything || how == Refresh::Everything;
    run(generation);
}

QCoro::Task<> LibraryRefresh::run(quint64 generation)
{
    QPointer<LibraryRefresh> self(this);
    // Every awaited value is named first: GCC 12 frees temporaries inside co_await twice.
    const std::chrono::milliseconds pause = 50ms;
    co_await QCoro::sleepFor(pause);
    if (!self || generation != m_generation)
        co_return; // a newer request came while we slept: one scan per burst
    const CancellationToken cancellation = CancellationToken::create();
    m_cancellation = cancellation;
    Request request = m_inputs();
    const bool readEverything = m_readEverything;
    if (readEverything)
        request.previous.reset();
    const qsizetype sources = request.sources.size();
    Scanner scanner = m_scanner; // the job keeps its own copy
    QElapsedTimer took;
    took.start();
    QFuture<Scan> scanning =
        QtConcurrent::task(std::move(scanner)).withArguments(std::move(request), cancellation).withPriority(1).spawn();
    const Scan scan = co_await scanning;
    if (!self || cancellation.isCancelled() || generation != m_generation)
        co_return; // stale: a newer request's scan is the one to apply
    if (readEverything)
        m_readEverything = false;
    qCDebug(lcLibrary) << "scanned" << sources << "sources," << scan.searchIndex.size() << "folders (" << scan.foldersRead
                       << "read) in" << took.elapsed() << "ms";
    Q_EMIT scanned(scan);
}

LibraryRefresh::Scan LibraryRefresh::scanLibrary(const Request &request, const CancellationToken &cancellation)
{
    const QList<FolderSource> &sources = request.sources;
    const QList<CollectionMember> &members = request.members;
    auto service = std::make_shared<FileSystemService>(cancellation);
    if (request.previous)
        service->reuseUnchanged(request.previous);
    QSet<QUuid> unavailable;
    for (const FolderSource &source : sources) {
        if (cancellation.isCancelled())
            break;
        const QString root = QDir::cleanPath(source.path);
        if (!isReachable(root))
            unavailable.insert(source.id);
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
    return {service, QList<FolderSearchResult>(std::make_move_iterator(index.begin()), std::make_move_iterator(index.end())),
            unavailable, service->foldersRead()};
}
