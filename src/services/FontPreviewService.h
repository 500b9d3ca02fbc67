// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fonts/FontMetadata.h"
#include "fonts/PreviewFontRegistry.h"

#include "model/CancellationToken.h"

#include <QFuture>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QSet>
#include <QString>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <optional>

// Stands between the preview pane and the font files: loads a file's metadata once
// and keeps it while the file's modification time and size are unchanged, and
// registers the file for previews meanwhile. A least-recently-used list of 128
// paths bounds both. An actor: every request runs, one at a time, on its own
// worker thread; callers get a future and may cancel through their token.
class FontPreviewService
{
public:
    using MetadataLoader = std::function<std::optional<FontMetadata>(const QString &path)>;
    static constexpr qsizetype kEvictionBound = 128;

    explicit FontPreviewService(qsizetype capacity = kEvictionBound, MetadataLoader metadataLoader = FontMetadata::load,
                                std::shared_ptr<PreviewFontRegistry> registry = std::make_shared<PreviewFontRegistry>());
    ~FontPreviewService();

    QFuture<std::optional<FontMetadata>> load(const QString &path, CancellationToken cancellation = {});

    // The registry previews draw from.
    const std::shared_ptr<PreviewFontRegistry> &registry() const { return m_registry; }
    qsizetype capacity() const { return m_capacity; }

private:
    struct FileStamp
    {
        std::optional<qint64> modified; // nanoseconds since the epoch
        std::optional<qint64> size;
        friend bool operator==(const FileStamp &, const FileStamp &) = default;
    };
    struct Entry
    {
        FileStamp stamp;
        std::optional<FontMetadata> metadata;
    };

    std::optional<FontMetadata> loadOnWorker(const QString &path, const CancellationToken &cancellation);
    static FileStamp stampOf(const QString &path);
    void touch(const QString &path);
    // Drops least recently used paths until `keep` remain. The bound is fixed,
    // whatever capacity the service was given.
    void evict(qsizetype keep);

    qsizetype m_capacity;
    MetadataLoader m_metadataLoader;
    std::shared_ptr<PreviewFontRegistry> m_registry;
    // Touched only on the worker.
    QHash<QString, Entry> m_cache;
    QList<QString> m_recency; // least recently used first
    QSet<QString> m_registered;
    // Waiting on a future may run its queued request on the waiting thread, so the
    // pool alone does not keep requests apart; this lock does.
    QMutex m_oneAtATime;
    QThreadPool m_worker;
};
