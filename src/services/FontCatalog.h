// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CatalogIndex.h"
#include "CatalogSql.h"
#include "CatalogueChange.h"
#include "FontFamilies.h"
#include "LicenseStatus.h"
#include "fonts/FaceRecord.h"

#include <QHash>
#include <QUuid>

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>

// What a catalogue query asks for; an empty field asks nothing.
struct FontQuery
{
    QString text{};             // a prefix of any word of the names and makers, any case and accents
    QString requiredCharacters{}; // every character of it mapped ("Ő ő ű"); spaces ignored
    QStringList languages{};    // all of them supported
    QStringList scripts{};      // OpenType script tags, all of them present
    QList<FaceRecord::Classification> classifications{}; // any of them
    int minWeight = 0;
    int maxWeight = 1000;
    int minWidth = 1;
    int maxWidth = 9;
    std::optional<bool> italic{};
    std::optional<bool> monospaced{};
    std::optional<bool> variable{};
    std::optional<bool> colour{};
    QList<FaceRecord::Outline> formats{}; // any of them
    bool duplicates = false; // another file has the same PostScript name and version
    // Answered by the store, which knows them.
    QStringList folders{};   // faces under any of these folders (sources, say)
    std::optional<bool> active{};
    QList<LicenseStatus> licenseStatuses{}; // any of them, as the file's tags say
    std::optional<QUuid> collection{};      // members of the collection, or inside its member folders
    bool conflicts = false; // active, and another active file has the same PostScript name

    friend bool operator==(const FontQuery &, const FontQuery &) = default;
};

// What a query found: families in the library's collation order, and for the filter
// menus how many of the faces found support each language, have each classification,
// and (filled by the store) lie in each source.
struct FontQueryAnswer
{
    FontFamilies families{};
    QHash<QString, int> languageCounts{};
    QHash<FaceRecord::Classification, int> classificationCounts{};
    QHash<QString, int> sourceCounts{}; // by source folder
    bool cancelled = false;           // a newer question came first

    qsizetype faceCount() const { return families.faceCount(); }
    QList<FoundFace> faces() const; // every face, family by family
};

// A file as the last scan saw it.
struct FileStamp
{
    QString path;
    qint64 size = 0;
    qint64 modified = 0;
};

// Every face of every font file of the library, in an SQLite database under
// $XDG_CACHE_HOME/Morvane: a cache, rebuilt from the files whenever it is lost, never
// the only copy of anything the user made. One connection, used from one thread at a
// time (the calls take turns). A database that is damaged (at open, in the integrity
// check, or in any statement later) or from a newer Morvane is set aside and started
// afresh, with one line on standard output; where nothing can be written the
// catalogue is unavailable and everything else goes on.
class FontCatalog
{
public:
    static QString defaultPath();
    explicit FontCatalog(const QString &path = defaultPath());
    ~FontCatalog();
    FontCatalog(const FontCatalog &) = delete;
    FontCatalog &operator=(const FontCatalog &) = delete;

    bool isAvailable() const { return bool(m_db); }

    // SQLite's quick check, once: a damaged file is set aside and started afresh.
    void checkIntegrity();
    // Whether the files must all be read again: the file was found damaged (and set
    // aside, or to be at the next call) since filesToRead() last answered.
    bool needsReading() const { return m_rebuilt.load() || m_db.isDamaged(); }

    // Of the files a scan saw: those to read (new, or changed in size or time since
    // recorded). Files recorded but not seen are dropped here. `found`, when given, learns
    // which files were dropped, and which of those to read were recorded before.
    QStringList filesToRead(const QList<FileStamp> &seen, QSet<QString> *dropped = nullptr,
                            QSet<QString> *recordedBefore = nullptr);
    // Records what a read of the file gave; no faces records it as unreadable, not tried
    // again until it changes.
    void record(const FileStamp &file, const QList<FaceRecord> &faces);
    qsizetype faceCount() const;

    // The faces that answer (ask face() for all a face's record holds). `keep`
    // asks what only the caller knows of each face; counts cover the faces it keeps.
    // Setting `cancelled` stops the query where it is. The first question loads the
    // faces into memory; answers come from there.
    using FaceFilter = std::function<bool(const QString &path, const QString &postScriptName)>;
    // `countIn`: the folders (sources) whose faces the answer counts.
    FontQueryAnswer query(const FontQuery &query, const FaceFilter &keep = {}, const QStringList &countIn = {},
                          const std::atomic_bool *cancelled = nullptr) const;
    // How many faces `keep` keeps (all when empty), without building an answer.
    qsizetype countFaces(const FaceFilter &keep = {}) const;
    // The whole record of one face, code points included.
    std::optional<FaceRecord> face(const QString &path, int faceIndex) const;
    // Of these files' faces, the PostScript names that more than one file has.
    QSet<QString> sharedPostScriptNames(const QSet<QString> &paths) const;

private:
    bool open(const QString &path) const;
    void setAside(const QString &path, const QString &why) const;
    bool exec(const char *sql) const { return m_db.exec(sql); }
    bool exec(const QByteArray &sql) const { return exec(sql.constData()); }
    quint32 intern(const char *table, QHash<qint64, quint32> &known, const QByteArray &value, bool isText);
    void loadIndex() const;
    void loadCoverage() const;
    // Under the lock: when a statement found the file damaged, it is set aside and
    // started afresh, and everything remembered of it forgotten. True when it was.
    bool recoverIfDamaged() const;

    QString m_path;
    mutable CatalogSql::Connection m_db;
    mutable std::mutex m_mutex; // the indexing job and queries take turns
    // Ids of texts and cmaps already in the database, for the indexing job.
    mutable QHash<qint64, quint32> m_names;
    mutable QHash<qint64, quint32> m_texts;
    mutable QHash<qint64, quint32> m_coverage;
    mutable CatalogIndex m_index; // loaded by the first question
    mutable size_t m_upToDate = 0; // the files of the last look, when every one was recorded
    mutable QString m_openProblem; // why open() found the file unusable
    bool m_checked = false;
    mutable std::atomic_bool m_rebuilt{false};
};
