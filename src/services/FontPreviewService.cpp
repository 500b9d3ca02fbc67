// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontPreviewService.h"

#include <QFile>
#include <QtConcurrent/QtConcurrentRun>

#include <sys/stat.h>

FontPreviewService::FontPreviewService(qsizetype capacity, MetadataLoader metadataLoader,
                                       std::shared_ptr<PreviewFontRegistry> registry)
    : m_capacity(capacity)
    , m_metadataLoader(std::move(metadataLoader))
    , m_registry(std::move(registry))
{
    // One thread, kept: requests run strictly one after another.
    m_worker.setMaxThreadCount(1);
    m_worker.setExpiryTimeout(-1);
}

FontPreviewService::~FontPreviewService()
{
    m_worker.waitForDone();
}

QFuture<std::optional<FontMetadata>> FontPreviewService::load(const QString &path, CancellationToken cancellation)
{
    return QtConcurrent::run(&m_worker, [this, path, cancellation] { return loadOnWorker(path, cancellation); });
}

FontPreviewService::FileStamp FontPreviewService::stampOf(const QString &path)
{
    struct stat info{};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return {};
    return {static_cast<qint64>(info.st_mtim.tv_sec) * 1'000'000'000 + info.st_mtim.tv_nsec,
            static_cast<qint64>(info.st_size)};
}

std::optional<FontMetadata> FontPreviewService::loadOnWorker(const QString &path, const CancellationToken &cancellation)
{
    const QMutexLocker oneAtATime(&m_oneAtATime);
    if (cancellation.isCancelled())
        return std::nullopt;
    const FileStamp stamp = stampOf(path);
    const auto cached = m_cache.constFind(path);
    if (cached != m_cache.cend() && cached->stamp == stamp) {
        std::optional<FontMetadata> metadata = cached->metadata;
        touch(path);
        return metadata;
    }

    std::optional<FontMetadata> metadata = m_metadataLoader(path);
    if (cancellation.isCancelled())
        return std::nullopt; // a superseded request leaves everything as it was

    // Undo the registration of an earlier version of the file, make room, then
    // register anew: never more than the bound registered, even for a moment.
    if (m_registered.remove(path))
        m_registry->unregisterFont(path);
    if (!m_cache.contains(path))
        evict(kEvictionBound - 1);
    if (metadata && m_registry->registerFont(path))
        m_registered.insert(path);
    m_cache.insert(path, Entry{stamp, metadata});
    touch(path);
    return metadata;
}

void FontPreviewService::touch(const QString &path)
{
    m_recency.removeAll(path);
    m_recency.append(path);
}

void FontPreviewService::evict(qsizetype keep)
{
    while (m_recency.size() > keep) {
        const QString oldest = m_recency.takeFirst();
        m_cache.remove(oldest);
        if (m_registered.remove(oldest))
            m_registry->unregisterFont(oldest);
    }
}
