// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fonts/FaceRecord.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <mutex>
#include <optional>

struct sqlite3;

// What a catalogue query asks for; an empty field asks nothing.
struct FontQuery
{
    QString text{};             // a prefix of any word of the names and makers, any case and accents
    QString requiredCharacters{}; // every character of it mapped ("Ő ő ű"); spaces ignored
    QStringList languages{};    // all of them supported
    QList<FaceRecord::Classification> classifications{}; // any of them
    int minWeight = 0;
    int maxWeight = 1000;
    std::optional<bool> italic{};
    std::optional<bool> monospaced{};
    std::optional<bool> variable{};
    // Answered by the store, which knows them: faces under any of these folders, and
    // faces whose file is (or isn't) active.
    QStringList folders{};
    std::optional<bool> active{};
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
// time (the calls take turns). A database that is corrupt or from a newer Morvane is set aside and started
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

    bool isAvailable() const { return m_db != nullptr; }

    // Of the files a scan saw: those to read (new, or changed in size or time since
    // recorded). Files recorded but not seen are dropped here.
    QStringList filesToRead(const QList<FileStamp> &seen);
    // Records what a read of the file gave; no faces records it as unreadable, not tried
    // again until it changes.
    void record(const FileStamp &file, const QList<FaceRecord> &faces);
    qsizetype faceCount() const;

    // The faces that answer, by family then style.
    QList<FaceRecord> query(const FontQuery &query) const;

private:
    bool open(const QString &path);
    void setAside(const QString &path, const QString &why);
    bool exec(const char *sql) const;

    sqlite3 *m_db = nullptr;
    mutable std::mutex m_mutex; // the indexing job and queries take turns
};
