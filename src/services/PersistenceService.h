// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CollectionIconStore.h"
#include "Preferences.h"

#include "model/CollectionRecords.h"
#include "model/FolderSource.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

class SaveQueue;

// Everything that outlives a run, in one place for the store: the sources, the
// collections and the activated fonts as compact JSON files in $XDG_DATA_HOME/Morvane
// (written whole and atomically; this file), the collections' icons beside them
// (CollectionIconStore), and the preview text and size (Preferences). Never reports
// failure to the caller: it prints one line and the caller goes on with an empty or
// unchanged value. A file that can't be decoded is copied aside before anything can
// overwrite it.
//
// Saves are handed to one background writer (SaveQueue): the caller pays only for a
// shallow copy, a newer save of the same file replaces one that has not started yet,
// and every write is still atomic. waitForWrites() (and the destructor) block until all
// of it is on disk.

class PersistenceService
{
public:
    // How a saved list was read back.
    enum class LoadStatus {
        Read,       // decoded; the result is what was saved
        Missing,    // no file (first run): empty, silently
        Unreadable, // there but can't be read or decoded: empty, reported, the file kept
    };
    // Told after every write, on the writer thread: the file's name, and the error's
    // description, or an empty text when the write succeeded.
    using SaveObserver = std::function<void(const QString &fileName, const QString &failure)>;

    static constexpr const char *previewTextKey = Preferences::previewTextKey;
    static constexpr const char *previewSizeKey = Preferences::previewSizeKey;
    static constexpr double defaultPreviewSize = Preferences::defaultPreviewSize;
    static QString defaultPreviewText();
    // Far above any real library (100,000 activated fonts take about 10 MB) or icon,
    // far below what would exhaust memory: a larger file is not ours to read.
    static constexpr qint64 kMaxSavedFileBytes = 256ll * 1024 * 1024;
    static constexpr qint64 kMaxIconBytes = CollectionIconStore::kMaxBytes;

    // `directory` overrides the storage folder (tests); the application passes none.
    explicit PersistenceService(std::optional<QString> directory = std::nullopt);
    ~PersistenceService();
    PersistenceService(const PersistenceService &) = delete;
    PersistenceService &operator=(const PersistenceService &) = delete;

    // $XDG_DATA_HOME/Morvane, the storage folder of the application's own service.
    static QString defaultStorageFolder();
    // Both create the folder (and missing parents) on every access.
    QString storageURL() const;
    QString collectionIconsURL() const;

    void saveSources(const QList<FolderSource> &sources);
    void saveCollections(const QList<FontCollection> &collections);
    void saveActivatedFonts(const QSet<QString> &paths);

    // Each waits for this service's pending saves first, so it reads what was saved.
    QList<FolderSource> loadSources(LoadStatus *status = nullptr);
    QList<FontCollection> loadCollections(LoadStatus *status = nullptr);
    QSet<QString> loadActivatedFonts(LoadStatus *status = nullptr);

    void waitForWrites();
    // A save that failed (a full disk, a read-only folder) keeps its state: it is
    // written again with the next save of any file, or when asked here.
    void retryFailedSaves();
    // Why some file's latest state is still not on disk; empty when everything is.
    QString unsavedFailure();
    void setSaveObserver(SaveObserver observer);

    // Removes every stored icon of the collection, then copies the new one in (only a
    // regular file of an image's size). Returns the stored icon's path; none when
    // cleared or the copy failed, and then `error` says why. Choosing the stored icon
    // itself again changes nothing.
    std::optional<QString> storeCollectionIcon(const QUuid &collectionId, const std::optional<QString> &sourcePath,
                                               QString *error = nullptr);

    QString previewText() const;
    void setPreviewText(const QString &text);
    double previewSize() const;
    void setPreviewSize(double size);
    double listSize() const;
    void setListSize(double size);
    bool copiesForSandboxes() const;
    bool sessionFontsLastUntilLogout() const;
    void setSessionFontsLastUntilLogout(bool untilLogout);
    void setCopiesForSandboxes(bool allowed);
    QByteArray windowGeometry() const;
    int sidebarWidth() const;
    void setWindowLayout(const QByteArray &geometry, int sidebarWidth);

    QString settingsPath() const;

private:
    void save(const char *fileName, std::function<QByteArray()> encode, const QString &failureMessage);
    template <typename Record>
    QList<Record> loadList(const char *fileName, const QString &failureMessage, LoadStatus *status);
    QString keepUnreadableCopy(const QString &filePath, const QByteArray &bytes) const;
    QString moveUnreadableAside(const QString &filePath) const;

    std::optional<QString> m_directory;
    std::unique_ptr<SaveQueue> m_queue;
    std::unique_ptr<Preferences> m_preferences;
};
