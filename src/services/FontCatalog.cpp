// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontCatalog.h"

#include "CatalogSql.h"
#include "Console.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QStandardPaths>

#include <sqlite3.h>

using CatalogSql::Statement;

using namespace Qt::StringLiterals;

namespace {

constexpr int kSchemaVersion = 2;

// Files by number, so each face row and index entry carries an integer rather than a
// path; code point coverage once per distinct cmap (a family's styles share theirs).
constexpr const char *kSchema = R"(
CREATE TABLE files(id INTEGER PRIMARY KEY, path TEXT NOT NULL UNIQUE, size INTEGER NOT NULL, mtime INTEGER NOT NULL);
CREATE TABLE coverage(id INTEGER PRIMARY KEY, hash INTEGER NOT NULL, ranges BLOB NOT NULL);
CREATE INDEX coverage_hash ON coverage(hash);
CREATE TABLE faces(id INTEGER PRIMARY KEY, file INTEGER NOT NULL, face INTEGER NOT NULL,
  family TEXT, style TEXT, full TEXT, ps TEXT, weight INTEGER, width INTEGER, italic INTEGER, mono INTEGER,
  class INTEGER, foundry TEXT, designer TEXT, vendor TEXT, version TEXT, licence TEXT, licence_url TEXT,
  outline INTEGER, axes TEXT, instances TEXT, colour TEXT, glyphs INTEGER, languages TEXT, scripts TEXT, coverage INTEGER);
CREATE INDEX faces_file ON faces(file);
CREATE VIRTUAL TABLE faces_text USING fts5(family, style, full, ps, foundry, designer,
  content='faces', content_rowid='id', tokenize='unicode61 remove_diacritics 2');
CREATE TRIGGER faces_added AFTER INSERT ON faces BEGIN
  INSERT INTO faces_text(rowid, family, style, full, ps, foundry, designer)
  VALUES (new.id, new.family, new.style, new.full, new.ps, new.foundry, new.designer);
END;
CREATE TRIGGER faces_removed AFTER DELETE ON faces BEGIN
  INSERT INTO faces_text(faces_text, rowid, family, style, full, ps, foundry, designer)
  VALUES ('delete', old.id, old.family, old.style, old.full, old.ps, old.foundry, old.designer);
END;
)";

} // namespace

QString FontCatalog::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/Morvane/catalogue.sqlite"_s;
}

FontCatalog::FontCatalog(const QString &path)
{
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return; // nowhere to keep it: unavailable, and nothing else minds
    if (!open(path)) {
        setAside(path, u"it can't be read"_s);
        open(path);
    }
}

FontCatalog::~FontCatalog()
{
    sqlite3_close(m_db);
}

bool FontCatalog::exec(const char *sql) const
{
    return m_db && sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

// False when the file is there but is no catalogue this Morvane can use.
bool FontCatalog::open(const QString &path)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr)
        != SQLITE_OK) {
        sqlite3_close(db);
        return true; // can't even be made: unavailable, not bad
    }
    m_db = db;
    int version = -1;
    {
        Statement read(m_db, "PRAGMA user_version");
        if (read && read.step())
            version = static_cast<int>(read.number(0));
    }
    if (version > 0 && version < kSchemaVersion) {
        // An older Morvane's catalogue: only a cache, so it is simply built again.
        sqlite3_close(m_db);
        m_db = nullptr;
        QFile::remove(path + u"-wal"_s);
        QFile::remove(path + u"-shm"_s);
        return QFile::remove(path) && open(path);
    }
    const bool schemaOk = version == kSchemaVersion
        || (version == 0 && exec("BEGIN") && exec(kSchema) && exec("PRAGMA user_version = 2") && exec("COMMIT"));
    if (!schemaOk) {
        sqlite3_close(m_db);
        m_db = nullptr;
        if (version > kSchemaVersion) {
            setAside(path, u"a newer Morvane wrote it"_s);
            return !QFileInfo::exists(path) && open(path);
        }
        // A new file that can't take the schema (a full disk, a size limit) is
        // unwritable, not bad: unavailable, and nothing to set aside.
        if (version == 0) {
            QFile::remove(path);
            return true;
        }
        return !QFileInfo(path).isWritable(); // unreadable where writable: corrupt
    }
    exec("PRAGMA journal_mode = WAL");
    exec("PRAGMA synchronous = NORMAL");
    return true;
}

void FontCatalog::setAside(const QString &path, const QString &why)
{
    const QString stem = path + u".set-aside-"_s + QDateTime::currentDateTimeUtc().toString(u"yyyyMMddHHmmss"_s);
    QString aside = stem;
    for (int n = 2; QFileInfo::exists(aside); ++n)
        aside = stem + u'-' + QString::number(n);
    QFile::remove(path + u"-wal"_s);
    QFile::remove(path + u"-shm"_s);
    // Only a cache: where it can't be kept aside, it goes.
    if (!QFile::rename(path, aside))
        QFile::remove(path);
    Console::printLine(u"The font catalogue at "_s + path + u" was set aside ("_s + why + u") and is built again"_s);
}

QStringList FontCatalog::filesToRead(const QList<FileStamp> &seen)
{
    const std::lock_guard lock(m_mutex);
    if (!m_db)
        return {};
    struct Recorded
    {
        qint64 id, size, mtime;
    };
    QHash<QString, Recorded> recorded;
    {
        Statement all(m_db, "SELECT id, path, size, mtime FROM files");
        while (all.step())
            recorded.insert(all.text(1), {all.number(0), all.number(2), all.number(3)});
    }
    QStringList toRead;
    for (const FileStamp &file : seen) {
        const auto found = recorded.constFind(file.path);
        if (found == recorded.cend() || found->size != file.size || found->mtime != file.modified)
            toRead.append(file.path);
        if (found != recorded.cend())
            recorded.erase(found);
    }
    if (!recorded.isEmpty() || !toRead.isEmpty()) {
        exec("BEGIN");
        Statement faces(m_db, "DELETE FROM faces WHERE file = ?");
        Statement files(m_db, "DELETE FROM files WHERE id = ?");
        for (const Recorded &gone : std::as_const(recorded)) { // gone since: their faces go too
            for (Statement *drop : {&faces, &files}) {
                drop->bind(1, gone.id);
                drop->run();
                drop->reset();
            }
        }
        // Coverage no face uses any more: left by files gone or changed since.
        exec("DELETE FROM coverage WHERE id NOT IN (SELECT coverage FROM faces)");
        exec("COMMIT");
    }
    return toRead;
}

qint64 FontCatalog::coverageId(const QByteArray &ranges)
{
    const auto hash = qint64(qHashBits(ranges.constData(), size_t(ranges.size()), 0));
    Statement find(m_db, "SELECT id, ranges FROM coverage WHERE hash = ?");
    find.bind(1, hash);
    while (find.step()) {
        if (find.raw(1) == ranges)
            return find.number(0);
    }
    Statement add(m_db, "INSERT INTO coverage(hash, ranges) VALUES (?, ?)");
    add.bind(1, hash);
    add.bind(2, ranges);
    add.run();
    return sqlite3_last_insert_rowid(m_db);
}

void FontCatalog::record(const FileStamp &file, const QList<FaceRecord> &faces)
{
    const std::lock_guard lock(m_mutex);
    if (!m_db)
        return;
    exec("BEGIN");
    qint64 fileId = 0;
    {
        Statement stamp(m_db, "INSERT INTO files(path, size, mtime) VALUES (?, ?, ?) "
                              "ON CONFLICT(path) DO UPDATE SET size = excluded.size, mtime = excluded.mtime RETURNING id");
        stamp.bind(1, file.path);
        stamp.bind(2, file.size);
        stamp.bind(3, file.modified);
        if (!stamp.step()) {
            exec("ROLLBACK");
            return;
        }
        fileId = stamp.number(0);
    }
    {
        Statement drop(m_db, "DELETE FROM faces WHERE file = ?");
        drop.bind(1, fileId);
        drop.run();
    }
    Statement insert(m_db, "INSERT INTO faces(file, face, family, style, full, ps, weight, width, italic, mono, class, "
                           "foundry, designer, vendor, version, licence, licence_url, outline, axes, instances, colour, "
                           "glyphs, languages, scripts, coverage) "
                           "VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    for (const FaceRecord &r : faces) {
        int at = 0;
        insert.bind(++at, fileId);
        insert.bind(++at, qint64(r.faceIndex));
        for (const QString *text : {&r.family, &r.style, &r.fullName, &r.postScriptName})
            insert.bind(++at, *text);
        for (const qint64 number : {qint64(r.weight), qint64(r.width), qint64(r.italic), qint64(r.monospaced),
                                    qint64(r.classification)})
            insert.bind(++at, number);
        for (const QString *text : {&r.foundry, &r.designer, &r.vendorId, &r.version, &r.licence, &r.licenceUrl})
            insert.bind(++at, *text);
        insert.bind(++at, qint64(r.outline));
        insert.bind(++at, r.axes.join(u' '));
        insert.bind(++at, r.namedInstances.join(u'\n'));
        insert.bind(++at, r.colourFormats.join(u' '));
        insert.bind(++at, r.glyphCount);
        insert.bind(++at, r.languages.join(u' '));
        insert.bind(++at, r.scripts.join(u' '));
        insert.bind(++at, coverageId(CatalogSql::encodeRanges(r.codePoints)));
        insert.run();
        insert.reset();
    }
    exec("COMMIT");
}

qsizetype FontCatalog::faceCount() const
{
    const std::lock_guard lock(m_mutex);
    if (!m_db)
        return 0;
    Statement count(m_db, "SELECT count(*) FROM faces");
    return count.step() ? count.number(0) : 0;
}
