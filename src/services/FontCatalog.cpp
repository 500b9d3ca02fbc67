// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontCatalog.h"

#include "Console.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QStandardPaths>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kSchemaVersion = 1;

constexpr const char *kSchema = R"(
CREATE TABLE files(path TEXT PRIMARY KEY, size INTEGER NOT NULL, mtime INTEGER NOT NULL) WITHOUT ROWID;
CREATE TABLE faces(id INTEGER PRIMARY KEY, path TEXT NOT NULL, face INTEGER NOT NULL,
  family TEXT, style TEXT, full TEXT, ps TEXT, weight INTEGER, width INTEGER, italic INTEGER, mono INTEGER,
  class INTEGER, foundry TEXT, designer TEXT, vendor TEXT, version TEXT, licence TEXT, licence_url TEXT,
  outline INTEGER, axes TEXT, instances TEXT, colour TEXT, glyphs INTEGER, languages TEXT, scripts TEXT, cmap BLOB);
CREATE INDEX faces_path ON faces(path);
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

// A prepared statement that finalises itself.
class Statement
{
public:
    Statement(sqlite3 *db, const char *sql) { sqlite3_prepare_v2(db, sql, -1, &m_stmt, nullptr); }
    Statement(sqlite3 *db, const QByteArray &sql) : Statement(db, sql.constData()) {}
    ~Statement() { sqlite3_finalize(m_stmt); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;
    explicit operator bool() const { return m_stmt != nullptr; }
    sqlite3_stmt *get() const { return m_stmt; }

    void bind(int at, const QString &text)
    {
        const QByteArray utf8 = text.toUtf8();
        sqlite3_bind_text(m_stmt, at, utf8.constData(), static_cast<int>(utf8.size()), SQLITE_TRANSIENT);
    }
    void bind(int at, qint64 number) { sqlite3_bind_int64(m_stmt, at, number); }
    void bind(int at, const QByteArray &bytes)
    {
        sqlite3_bind_blob(m_stmt, at, bytes.constData(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
    }
    bool step() { return sqlite3_step(m_stmt) == SQLITE_ROW; }
    bool run() { return sqlite3_step(m_stmt) == SQLITE_DONE; }
    void reset()
    {
        sqlite3_reset(m_stmt);
        sqlite3_clear_bindings(m_stmt);
    }
    QString text(int column) const
    {
        return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_stmt, column)),
                                 sqlite3_column_bytes(m_stmt, column));
    }
    qint64 number(int column) const { return sqlite3_column_int64(m_stmt, column); }
    QByteArray bytes(int column) const
    {
        return QByteArray(static_cast<const char *>(sqlite3_column_blob(m_stmt, column)), sqlite3_column_bytes(m_stmt, column));
    }

private:
    sqlite3_stmt *m_stmt = nullptr;
};

QByteArray encodeRanges(const QList<QPair<char32_t, char32_t>> &ranges)
{
    QByteArray bytes;
    bytes.reserve(ranges.size() * 8);
    for (const auto &[first, last] : ranges) {
        for (const quint32 value : {quint32(first), quint32(last)})
            bytes.append(reinterpret_cast<const char *>(&value), 4);
    }
    return bytes;
}

QList<QPair<char32_t, char32_t>> decodeRanges(const QByteArray &bytes)
{
    QList<QPair<char32_t, char32_t>> ranges;
    for (qsizetype at = 0; at + 8 <= bytes.size(); at += 8) {
        quint32 first = 0, last = 0;
        std::memcpy(&first, bytes.constData() + at, 4);
        std::memcpy(&last, bytes.constData() + at + 4, 4);
        ranges.append({first, last});
    }
    return ranges;
}

QStringList words(const QString &text, QChar separator = u' ')
{
    return text.split(separator, Qt::SkipEmptyParts);
}

constexpr const char *kColumns =
    "path, face, family, style, full, ps, weight, width, italic, mono, class, foundry, designer, vendor, version, "
    "licence, licence_url, outline, axes, instances, colour, glyphs, languages, scripts, cmap";

FaceRecord faceFrom(const Statement &row)
{
    FaceRecord r;
    r.path = row.text(0);
    r.faceIndex = static_cast<int>(row.number(1));
    r.family = row.text(2);
    r.style = row.text(3);
    r.fullName = row.text(4);
    r.postScriptName = row.text(5);
    r.weight = static_cast<int>(row.number(6));
    r.width = static_cast<int>(row.number(7));
    r.italic = row.number(8) != 0;
    r.monospaced = row.number(9) != 0;
    r.classification = static_cast<FaceRecord::Classification>(row.number(10));
    r.foundry = row.text(11);
    r.designer = row.text(12);
    r.vendorId = row.text(13);
    r.version = row.text(14);
    r.licence = row.text(15);
    r.licenceUrl = row.text(16);
    r.outline = static_cast<FaceRecord::Outline>(row.number(17));
    r.axes = words(row.text(18));
    r.namedInstances = words(row.text(19), u'\n');
    r.colourFormats = words(row.text(20));
    r.glyphCount = row.number(21);
    r.languages = words(row.text(22));
    r.scripts = words(row.text(23));
    r.codePoints = decodeRanges(row.bytes(24));
    return r;
}

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
    const bool schemaOk = version == kSchemaVersion
        || (version == 0 && exec("BEGIN") && exec(kSchema) && exec("PRAGMA user_version = 1") && exec("COMMIT"));
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
    QHash<QString, QPair<qint64, qint64>> recorded;
    {
        Statement all(m_db, "SELECT path, size, mtime FROM files");
        while (all.step())
            recorded.insert(all.text(0), {all.number(1), all.number(2)});
    }
    QStringList toRead;
    for (const FileStamp &file : seen) {
        const auto found = recorded.constFind(file.path);
        if (found == recorded.cend() || found->first != file.size || found->second != file.modified)
            toRead.append(file.path);
        if (found != recorded.cend())
            recorded.erase(found);
    }
    if (!recorded.isEmpty()) { // gone since: their faces go too
        exec("BEGIN");
        Statement faces(m_db, "DELETE FROM faces WHERE path = ?");
        Statement files(m_db, "DELETE FROM files WHERE path = ?");
        for (auto it = recorded.cbegin(); it != recorded.cend(); ++it) {
            for (Statement *drop : {&faces, &files}) {
                drop->bind(1, it.key());
                drop->run();
                drop->reset();
            }
        }
        exec("COMMIT");
    }
    return toRead;
}

void FontCatalog::record(const FileStamp &file, const QList<FaceRecord> &faces)
{
    const std::lock_guard lock(m_mutex);
    if (!m_db)
        return;
    exec("BEGIN");
    {
        Statement drop(m_db, "DELETE FROM faces WHERE path = ?");
        drop.bind(1, file.path);
        drop.run();
    }
    Statement insert(m_db, QByteArray("INSERT INTO faces(") + kColumns
                               + ") VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    for (const FaceRecord &r : faces) {
        int at = 0;
        insert.bind(++at, file.path);
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
        insert.bind(++at, encodeRanges(r.codePoints));
        insert.run();
        insert.reset();
    }
    Statement stamp(m_db, "INSERT OR REPLACE INTO files(path, size, mtime) VALUES (?, ?, ?)");
    stamp.bind(1, file.path);
    stamp.bind(2, file.size);
    stamp.bind(3, file.modified);
    stamp.run();
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

QList<FaceRecord> FontCatalog::query(const FontQuery &query) const
{
    const std::lock_guard lock(m_mutex);
    QList<FaceRecord> answer;
    if (!m_db)
        return answer;
    QByteArray sql = QByteArray("SELECT ") + kColumns + " FROM faces WHERE 1";
    QStringList texts;
    QList<qint64> numbers; // bound after the texts, in the order their clauses come
    QList<bool> isText;
    const auto addText = [&](const QByteArray &clause, const QString &value) {
        sql += clause;
        texts.append(value);
        isText.append(true);
    };
    const auto addNumber = [&](const QByteArray &clause, qint64 value) {
        sql += clause;
        numbers.append(value);
        isText.append(false);
    };
    // Each word a prefix of some word of the names or makers: "dej san" finds DejaVu Sans.
    QStringList terms;
    for (QString word : query.text.split(u' ', Qt::SkipEmptyParts)) {
        word.remove(u'"');
        if (!word.isEmpty())
            terms.append(u'"' + word + u"\"*"_s);
    }
    if (!terms.isEmpty())
        addText(" AND id IN (SELECT rowid FROM faces_text WHERE faces_text MATCH ?)", terms.join(u' '));
    for (const QString &language : query.languages)
        addText(" AND (' ' || languages || ' ') LIKE ?", u"% "_s + language + u" %"_s);
    if (!query.classifications.isEmpty()) {
        sql += " AND class IN (";
        for (qsizetype i = 0; i < query.classifications.size(); ++i)
            addNumber(i ? ",?" : "?", qint64(query.classifications.at(i)));
        sql += ")";
    }
    addNumber(" AND weight >= ?", query.minWeight);
    addNumber(" AND weight <= ?", query.maxWeight);
    if (query.italic)
        addNumber(" AND italic = ?", *query.italic);
    if (query.monospaced)
        addNumber(" AND mono = ?", *query.monospaced);
    if (query.variable)
        sql += *query.variable ? " AND axes != ''" : " AND axes = ''";
    sql += " ORDER BY family COLLATE NOCASE, width, weight, italic, style";
    Statement select(m_db, sql);
    if (!select)
        return answer;
    int t = 0, n = 0, at = 0;
    for (const bool text : std::as_const(isText)) {
        if (text)
            select.bind(++at, texts.at(t++));
        else
            select.bind(++at, numbers.at(n++));
    }
    QList<char32_t> required;
    for (const char32_t c : query.requiredCharacters.toUcs4()) {
        if (!QChar::isSpace(c))
            required.append(c);
    }
    while (select.step()) {
        FaceRecord face = faceFrom(select);
        if (std::all_of(required.cbegin(), required.cend(), [&](char32_t c) { return face.covers(c); }))
            answer.append(std::move(face));
    }
    return answer;
}
