// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontCatalog.h"

#include "CatalogSql.h"
#include "Console.h"
#include "Diagnostics.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QStandardPaths>

#include <sqlite3.h>

using CatalogSql::Statement;

using namespace Qt::StringLiterals;

namespace {

// Raised whenever what is recorded of a face changes, so catalogues read by an older
// reader are read again. 4: languages, characters and OS/2 classes as fontconfig has them.
constexpr int kSchemaVersion = 4;

// Files by number, so each face row carries integers rather than a path; every text
// once, by number (a family's licence and language list, a foundry's name), names apart
// with a word index of their own; code point coverage once per distinct cmap.
constexpr const char *kSchema = R"(
CREATE TABLE files(id INTEGER PRIMARY KEY, path TEXT NOT NULL UNIQUE, size INTEGER NOT NULL, mtime INTEGER NOT NULL);
CREATE TABLE names(id INTEGER PRIMARY KEY, hash INTEGER NOT NULL, text TEXT NOT NULL);
CREATE INDEX names_hash ON names(hash);
CREATE TABLE texts(id INTEGER PRIMARY KEY, hash INTEGER NOT NULL, text TEXT NOT NULL);
CREATE INDEX texts_hash ON texts(hash);
CREATE TABLE coverage(id INTEGER PRIMARY KEY, hash INTEGER NOT NULL, ranges BLOB NOT NULL);
CREATE INDEX coverage_hash ON coverage(hash);
CREATE TABLE faces(id INTEGER PRIMARY KEY, file INTEGER NOT NULL, face INTEGER NOT NULL,
  family INTEGER, style INTEGER, full INTEGER, ps INTEGER, foundry INTEGER, designer INTEGER,
  vendor INTEGER, version INTEGER, licence INTEGER, licence_url INTEGER, axes INTEGER, instances INTEGER,
  colour INTEGER, languages INTEGER, scripts INTEGER,
  weight INTEGER, width INTEGER, italic INTEGER, mono INTEGER, class INTEGER, outline INTEGER, glyphs INTEGER,
  coverage INTEGER);
CREATE INDEX faces_file ON faces(file);
CREATE VIRTUAL TABLE names_words USING fts5(text, content='names', content_rowid='id',
  tokenize='unicode61 remove_diacritics 2');
CREATE TRIGGER names_added AFTER INSERT ON names BEGIN
  INSERT INTO names_words(rowid, text) VALUES (new.id, new.text);
END;
CREATE TRIGGER names_removed AFTER DELETE ON names BEGIN
  INSERT INTO names_words(names_words, rowid, text) VALUES ('delete', old.id, old.text);
END;
)";

constexpr const char *kFaceColumns =
    "file, face, family, style, full, ps, foundry, designer, vendor, version, licence, licence_url, axes, instances, "
    "colour, languages, scripts, weight, width, italic, mono, class, outline, glyphs, coverage";

} // namespace

QString FontCatalog::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/Morvane/catalogue.sqlite"_s;
}

FontCatalog::FontCatalog(const QString &path)
    : m_path(path)
{
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return; // nowhere to keep it: unavailable, and nothing else minds
    if (!open(path)) {
        setAside(path, m_openProblem.isEmpty() ? u"it can't be read"_s : m_openProblem);
        open(path);
    }
}

FontCatalog::~FontCatalog() = default;

// False when the file is there but is no catalogue this Morvane can use.
bool FontCatalog::open(const QString &path) const
{
    m_openProblem.clear();
    if (!m_db.open(QFile::encodeName(path)))
        return true; // can't even be made: unavailable, not bad
    int version = -1;
    {
        Statement read(m_db, "PRAGMA user_version");
        if (read.step())
            version = static_cast<int>(read.number(0));
    }
    if (m_db.isDamaged()) { // not a database at all
        m_openProblem = m_db.damage();
        m_db.close();
        return false;
    }
    if (version > 0 && version < kSchemaVersion) {
        // An older Morvane's catalogue: only a cache, so it is simply built again.
        m_db.close();
        QFile::remove(path + u"-wal"_s);
        QFile::remove(path + u"-shm"_s);
        return QFile::remove(path) && open(path);
    }
    const bool schemaOk = version == kSchemaVersion
        || (version == 0 && exec("BEGIN") && exec(kSchema) && exec(QByteArray("PRAGMA user_version = " + QByteArray::number(kSchemaVersion))) && exec("COMMIT"));
    if (!schemaOk) {
        m_openProblem = m_db.damage();
        m_db.close();
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
    // Questions read while the job writes: only a write-ahead log lets them. Where the
    // file system can't keep one, SQLite says so by answering another mode.
    {
        Statement wal(m_db, "PRAGMA journal_mode = WAL");
        const QString mode = wal.step() ? wal.text(0) : QString();
        if (mode != u"wal"_s)
            qCWarning(lcLibrary) << "the font catalogue" << path << "keeps no write-ahead log, journal mode:" << mode;
    }
    exec("PRAGMA synchronous = NORMAL");
    return true;
}

void FontCatalog::setAside(const QString &path, const QString &why) const
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

void FontCatalog::checkIntegrity()
{
    const std::lock_guard lock(m_mutex);
    if (!m_db || m_checked)
        return;
    m_checked = true;
    const QString verdict = m_db.quickCheck();
    if (!verdict.isEmpty() && verdict != u"ok"_s)
        m_db.markDamaged(verdict.simplified().left(200)); // one line, however many SQLite gave
    recoverIfDamaged();
}

bool FontCatalog::recoverIfDamaged() const
{
    if (!m_db.isDamaged())
        return false;
    const QString why = m_db.damage();
    m_db.close();
    setAside(m_path, why);
    // A fresh file: what was remembered of the old one names rows it never had.
    open(m_path);
    m_index.clear();
    m_names.clear();
    m_texts.clear();
    m_coverage.clear();
    m_upToDate = 0;
    m_rebuilt.store(true);
    return true;
}

QStringList FontCatalog::filesToRead(const QList<FileStamp> &seen, QSet<QString> *dropped, QSet<QString> *recordedBefore)
{
    if (dropped)
        dropped->clear();
    if (recordedBefore)
        recordedBefore->clear();
    const std::lock_guard lock(m_mutex);
    recoverIfDamaged(); // a question found it damaged since
    m_rebuilt.store(false); // this answer reads again all a rebuild lost
    if (!m_db)
        return {};
    // The same files, sizes and times as at the last look, when all was recorded:
    // nothing to compare row by row.
    size_t digest = qHash(seen.size());
    for (const FileStamp &file : seen)
        digest = qHashMulti(digest, file.path, file.size, file.modified);
    if (m_upToDate == digest)
        return {};
    m_upToDate = 0;
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
    if (recoverIfDamaged()) { // nothing recorded can be trusted: every file is read again
        recorded.clear();
        m_rebuilt.store(false);
    }
    QStringList toRead;
    for (const FileStamp &file : seen) {
        const auto found = recorded.constFind(file.path);
        if (found == recorded.cend() || found->size != file.size || found->mtime != file.modified) {
            toRead.append(file.path);
            if (recordedBefore && found != recorded.cend())
                recordedBefore->insert(file.path);
        }
        if (found != recorded.cend())
            recorded.erase(found);
    }
    if (dropped) {
        dropped->reserve(recorded.size());
        for (auto gone = recorded.cbegin(); gone != recorded.cend(); ++gone)
            dropped->insert(gone.key());
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
            m_index.removeFile(quint32(gone.id));
        }
        // Texts and coverage no face uses any more: left by files gone or changed since.
        exec("DELETE FROM coverage WHERE id NOT IN (SELECT coverage FROM faces)");
        exec("DELETE FROM names WHERE id NOT IN (SELECT family FROM faces UNION SELECT style FROM faces "
             "UNION SELECT full FROM faces UNION SELECT ps FROM faces UNION SELECT foundry FROM faces "
             "UNION SELECT designer FROM faces)");
        exec("DELETE FROM texts WHERE id NOT IN (SELECT vendor FROM faces UNION SELECT version FROM faces "
             "UNION SELECT licence FROM faces UNION SELECT licence_url FROM faces UNION SELECT axes FROM faces "
             "UNION SELECT instances FROM faces UNION SELECT colour FROM faces UNION SELECT languages FROM faces "
             "UNION SELECT scripts FROM faces)");
        exec("COMMIT");
        m_names.clear();
        m_texts.clear();
        m_coverage.clear();
    }
    if (toRead.isEmpty())
        m_upToDate = digest;
    return toRead;
}

// The id of a text (or a cmap) in one of the tables of distinct values, added when new.
quint32 FontCatalog::intern(const char *table, QHash<qint64, quint32> &known, const QByteArray &value, bool isText)
{
    // Known by a 64-bit hash alone: a licence text or a cmap is not kept twice in memory.
    const auto hash = qint64(qHashBits(value.constData(), size_t(value.size()), 0));
    const auto cached = known.constFind(hash);
    if (cached != known.cend())
        return *cached;
    const QByteArray column = isText ? "text" : "ranges";
    quint32 id = 0;
    {
        Statement find(m_db, "SELECT id, " + column + " FROM " + table + " WHERE hash = ?");
        find.bind(1, hash);
        while (id == 0 && find.step()) {
            if (find.raw(1) == value)
                id = quint32(find.number(0));
        }
    }
    if (id == 0) {
        Statement add(m_db, QByteArray("INSERT INTO ") + table + "(hash, " + column + ") VALUES (?, ?)");
        add.bind(1, hash);
        if (isText)
            add.bind(2, QString::fromUtf8(value));
        else
            add.bind(2, value);
        add.run();
        id = quint32(sqlite3_last_insert_rowid(m_db.handle()));
    }
    known.insert(hash, id);
    return id;
}

void FontCatalog::record(const FileStamp &file, const QList<FaceRecord> &faces)
{
    const std::lock_guard lock(m_mutex);
    recoverIfDamaged();
    if (!m_db)
        return;
    m_upToDate = 0;
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
            recoverIfDamaged();
            return;
        }
        fileId = stamp.number(0);
    }
    {
        Statement drop(m_db, "DELETE FROM faces WHERE file = ?");
        drop.bind(1, fileId);
        drop.run();
    }
    QList<IndexedFace> added;
    Statement insert(m_db, QByteArray("INSERT INTO faces(") + kFaceColumns
                               + ") VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    for (const FaceRecord &r : faces) {
        IndexedFace face;
        face.file = quint32(fileId);
        face.faceIndex = r.faceIndex;
        const QString names[] = {r.family, r.style, r.fullName, r.postScriptName, r.foundry, r.designer};
        for (int i = 0; i < IndexedFace::NameCount; ++i)
            face.names[size_t(i)] = intern("names", m_names, names[i].toUtf8(), true);
        // Instance names have spaces: one per line, the last line ended too.
        const QString instances = r.namedInstances.isEmpty() ? QString() : r.namedInstances.join(u'\n') + u'\n';
        const QString texts[] = {r.vendorId,       r.version,  r.licence,
                                 r.licenceUrl,     r.axes.join(u' '), instances,
                                 r.colourFormats.join(u' '), r.languages.join(u' '), r.scripts.join(u' ')};
        for (int i = 0; i < IndexedFace::TextCount; ++i)
            face.texts[size_t(i)] = intern("texts", m_texts, texts[i].toUtf8(), true);
        const QByteArray coverage = CatalogSql::encodeRanges(r.codePoints);
        face.coverage = intern("coverage", m_coverage, coverage, false);
        if (m_index.hasCoverage())
            m_index.setCoverage(face.coverage, coverage);
        face.weight = quint16(std::clamp(r.weight, 0, 0xFFFF));
        face.width = quint16(std::clamp(r.width, 0, 0xFFFF));
        face.italic = r.italic;
        face.monospaced = r.monospaced;
        face.classification = quint8(r.classification);
        face.outline = quint8(r.outline);
        face.glyphs = qint32(r.glyphCount);

        int at = 0;
        insert.bind(++at, qint64(face.file));
        insert.bind(++at, qint64(face.faceIndex));
        for (const quint32 id : face.names)
            insert.bind(++at, qint64(id));
        for (const quint32 id : face.texts)
            insert.bind(++at, qint64(id));
        for (const qint64 number : {qint64(face.weight), qint64(face.width), qint64(face.italic), qint64(face.monospaced),
                                    qint64(face.classification), qint64(face.outline), qint64(face.glyphs),
                                    qint64(face.coverage)})
            insert.bind(++at, number);
        insert.run();
        insert.reset();
        added.append(face);
        if (m_index.isLoaded()) {
            for (int i = 0; i < IndexedFace::NameCount; ++i)
                m_index.setName(face.names[size_t(i)], names[i]);
            for (int i = 0; i < IndexedFace::TextCount; ++i)
                m_index.setText(face.texts[size_t(i)], texts[i]);
        }
    }
    if (!exec("COMMIT")) {
        exec("ROLLBACK");
        m_names.clear(); // ids handed out in the failed transaction are not in the database
        m_texts.clear();
        m_coverage.clear();
        recoverIfDamaged();
        return;
    }
    if (m_index.isLoaded()) {
        m_index.removeFacesOf(quint32(fileId));
        m_index.setFile(quint32(fileId), {file.path, file.size, file.modified});
        for (const IndexedFace &face : std::as_const(added))
            m_index.add(face);
    }
}

qsizetype FontCatalog::faceCount() const
{
    const std::lock_guard lock(m_mutex);
    if (!m_db)
        return 0;
    Statement count(m_db, "SELECT count(*) FROM faces");
    return count.step() ? count.number(0) : 0;
}

// The faces, files and texts into memory, once; record() and filesToRead() keep it
// current from then on.
void FontCatalog::loadIndex() const
{
    if (m_index.isLoaded() || !m_db)
        return;
    m_index.clear();
    {
        Statement files(m_db, "SELECT id, path, size, mtime FROM files");
        while (files.step())
            m_index.setFile(quint32(files.number(0)), {files.text(1), files.number(2), files.number(3)});
    }
    {
        Statement names(m_db, "SELECT id, text FROM names");
        while (names.step())
            m_index.setName(quint32(names.number(0)), names.text(1));
    }
    {
        Statement texts(m_db, "SELECT id, text FROM texts");
        while (texts.step())
            m_index.setText(quint32(texts.number(0)), texts.text(1));
    }
    Statement faces(m_db, QByteArray("SELECT ") + kFaceColumns + " FROM faces");
    while (faces.step()) {
        IndexedFace face;
        int at = 0;
        face.file = quint32(faces.number(at++));
        face.faceIndex = qint32(faces.number(at++));
        for (quint32 &id : face.names)
            id = quint32(faces.number(at++));
        for (quint32 &id : face.texts)
            id = quint32(faces.number(at++));
        face.weight = quint16(std::clamp<qint64>(faces.number(at++), 0, 0xFFFF));
        face.width = quint16(std::clamp<qint64>(faces.number(at++), 0, 0xFFFF));
        face.italic = faces.number(at++) != 0;
        face.monospaced = faces.number(at++) != 0;
        face.classification = quint8(faces.number(at++));
        face.outline = quint8(faces.number(at++));
        face.glyphs = qint32(faces.number(at++));
        face.coverage = quint32(faces.number(at++));
        m_index.add(face);
    }
    if (recoverIfDamaged()) // half an index is no answer: the fresh file's, empty, is
        return loadIndex();
    m_index.setLoaded();
}

// Every distinct cmap into memory, once, for the first question about characters.
void FontCatalog::loadCoverage() const
{
    if (m_index.hasCoverage() || !m_db)
        return;
    Statement all(m_db, "SELECT id, ranges FROM coverage");
    while (all.step())
        m_index.setCoverage(quint32(all.number(0)), all.bytes(1));
    // Damage found here waits for the next call that can set the file aside.
    if (!m_db.isDamaged())
        m_index.setCoverageLoaded();
}
