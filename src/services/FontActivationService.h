#pragma once

#include "FontActivating.h"

#include <QHash>
#include <QMutex>
#include <QSet>
#include <QString>
#include <QThreadPool>

#include <optional>

struct _FcConfig;

// Activates fonts for every application through fontconfig: an active font is a
// symbolic link to the font file in Morvane's own folder under the user's font
// folder ($XDG_DATA_HOME/fonts/Morvane), and deactivating removes the link.
//
// fontconfig keeps one cache per folder and rescans a whole folder when it changes,
// so the links are spread over 256 pre-created shard folders, and after a batch of
// link changes each touched shard's cache is rebuilt once, in-process. A batch's new
// links go into the emptiest shards, each filled to a modest size, so a big batch
// rewrites few caches and a single font lands in a small shard. An index of our links
// (read from disk on first use) finds a font's link again. A font counts as active
// only when fontconfig's rebuilt cache lists it.
// One batch at a time; safe to call from any thread.
class FontActivationService : public FontActivating
{
public:
    // `linkFolder` overrides where the links live (tests); the application passes none.
    explicit FontActivationService(std::optional<QString> linkFolder = std::nullopt);
    ~FontActivationService() override;
    FontActivationService(const FontActivationService &) = delete;
    FontActivationService &operator=(const FontActivationService &) = delete;

    bool activateFont(const QString &path) override;
    bool deactivateFont(const QString &path) override;
    QList<bool> activateFonts(const QStringList &paths) override;
    QList<bool> deactivateFonts(const QStringList &paths) override;
    void removeActivationsExcept(const QSet<QString> &keep) override;

    QString linkFolder() const { return m_linkFolder; }
    // The link's file name for a font: stable, and unique per font path.
    static QString linkNameFor(const QString &fontPath);
    // Where the active font's link is; none when the font is not active.
    std::optional<QString> linkPathFor(const QString &fontPath);
    // Every link in our folder, link path to the path it points at (dangling ones too).
    QHash<QString, QString> links();
    // Removes links (a start-up sweep of ones nothing accounts for) and rebuilds their shards.
    void removeLinks(const QStringList &linkPaths);

private:
    bool ensureReady();
    void loadIndex();
    void forget(const QString &linkPath);
    // Shards for `count` new links: emptiest first, each filled up to the target size.
    QStringList placeNewLinks(qsizetype count);
    static QString shardOf(const QString &linkPath);
    // Rescans a shard, writes its cache and returns the files fontconfig listed.
    QSet<QString> rebuildShard(const QString &shard);
    // The same for several shards at once, side by side.
    QHash<QString, QSet<QString>> rebuildShards(const QSet<QString> &shards);

    QString m_linkFolder;
    _FcConfig *m_config = nullptr;
    bool m_ready = false;
    QStringList m_shards;
    QHash<QString, QString> m_linkOfFont; // font path -> link path
    QHash<QString, QString> m_fontOfLink; // link path -> font path
    QHash<QString, qsizetype> m_shardSize;
    mutable QMutex m_mutex;
    QThreadPool m_rebuilders; // our own, so a batch job on the global pool can't starve it
};
