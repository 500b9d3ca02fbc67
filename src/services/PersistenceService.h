#pragma once

#include "model/CollectionRecords.h"
#include "model/FolderSource.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QUuid>

#include <optional>

// Everything that outlives a run: the sources, the collections and the activated
// fonts as compact JSON files in $XDG_DATA_HOME/Morvane (written whole and
// atomically), the collections' icons beside them, and the preview text and size
// in a settings file under $XDG_CONFIG_HOME/Morvane. Never reports failure to the
// caller: it prints one line and the caller goes on with an empty or unchanged value.
// A file that can't be decoded is copied aside before anything can overwrite it.
class PersistenceService
{
public:
    static constexpr const char *previewTextKey = "morvane_preview_text";
    static constexpr const char *previewSizeKey = "morvane_preview_size";
    static constexpr double defaultPreviewSize = 36.0;
    static QString defaultPreviewText();

    // `directory` overrides the storage folder (tests); the application passes none.
    explicit PersistenceService(std::optional<QString> directory = std::nullopt);

    // Both create the folder (and missing parents) on every access.
    QString storageURL() const;
    QString collectionIconsURL() const;

    void saveSources(const QList<FolderSource> &sources);
    void saveCollections(const QList<FontCollection> &collections);
    void saveActivatedFonts(const QSet<QString> &paths);

    QList<FolderSource> loadSources();
    QList<FontCollection> loadCollections();
    QSet<QString> loadActivatedFonts();

    // Removes every stored icon of the collection, then copies the new one in.
    // Returns the stored icon's path; none when cleared or the copy failed.
    std::optional<QString> storeCollectionIcon(const QUuid &collectionId, const std::optional<QString> &sourcePath);

    QString previewText() const;
    void setPreviewText(const QString &text);
    double previewSize() const;
    void setPreviewSize(double size);

    QString settingsPath() const;

private:
    void save(const char *fileName, const QByteArray &json, const QString &failureMessage);
    template <typename Record>
    QList<Record> loadList(const char *fileName, const QString &failureMessage);
    QString keepUnreadableCopy(const QString &filePath, const QByteArray &bytes) const;

    std::optional<QString> m_directory;
};
