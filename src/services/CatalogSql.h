// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <sqlite3.h>

#include <atomic>

// The catalogue's small tools over SQLite's C API.
namespace CatalogSql {

// The catalogue's one connection. Every call that fails is logged (morvane.library) with
// SQLite's own words; one that says the file is damaged is remembered, so that the
// catalogue sets the file aside and builds it again rather than answering from it.
class Connection
{
public:
    Connection() = default;
    ~Connection() { close(); }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    bool open(const QByteArray &path);
    void close();
    sqlite3 *handle() const { return m_db; }
    explicit operator bool() const { return m_db != nullptr; }

    // True when `result` is what the call hoped for; logs it otherwise.
    bool check(int result, const char *what) const;
    bool exec(const char *sql) const;
    bool isDamaged() const { return m_damaged.load(); } // asked from any thread
    // SQLite's own words for the damage, for the line that says the file was set aside.
    QString damage() const { return m_damage; }
    void markDamaged(const QString &why) const;
    // "ok", or what SQLite's quick check found first.
    QString quickCheck() const;

private:
    sqlite3 *m_db = nullptr;
    mutable std::atomic_bool m_damaged{false};
    mutable QString m_damage;
};

// A prepared statement that finalises itself; its failures are the connection's to log.
class Statement
{
public:
    Statement(const Connection &db, const char *sql) : m_db(db), m_sql(sql)
    {
        if (db)
            db.check(sqlite3_prepare_v2(db.handle(), sql, -1, &m_stmt, nullptr), sql);
    }
    Statement(const Connection &db, const QByteArray &sql) : Statement(db, sql.constData()) {}
    ~Statement() { sqlite3_finalize(m_stmt); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;
    explicit operator bool() const { return m_stmt != nullptr; }

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
    // A row; false at the end, or on a failure (logged).
    bool step()
    {
        const int result = m_stmt ? sqlite3_step(m_stmt) : SQLITE_MISUSE;
        if (result != SQLITE_ROW && m_stmt)
            m_db.check(result == SQLITE_DONE ? SQLITE_OK : result, m_sql);
        return result == SQLITE_ROW;
    }
    // Done to the end, as a statement without rows is.
    bool run()
    {
        const int result = m_stmt ? sqlite3_step(m_stmt) : SQLITE_MISUSE;
        return m_stmt && m_db.check(result == SQLITE_DONE || result == SQLITE_ROW ? SQLITE_OK : result, m_sql);
    }
    void reset()
    {
        sqlite3_reset(m_stmt);
        sqlite3_clear_bindings(m_stmt);
    }
    QString text(int column) const { return QString::fromUtf8(raw(column)); }
    // The column's UTF-8 bytes, valid until the next step.
    QByteArray raw(int column) const
    {
        return QByteArray::fromRawData(reinterpret_cast<const char *>(sqlite3_column_text(m_stmt, column)),
                                       sqlite3_column_bytes(m_stmt, column));
    }
    qint64 number(int column) const { return sqlite3_column_int64(m_stmt, column); }
    QByteArray bytes(int column) const
    {
        return QByteArray(static_cast<const char *>(sqlite3_column_blob(m_stmt, column)), sqlite3_column_bytes(m_stmt, column));
    }

private:
    const Connection &m_db;
    const char *m_sql;
    sqlite3_stmt *m_stmt = nullptr;
};

// Code point ranges as varints: the gap since the last range, then its length. A
// typical cmap shrinks from eight bytes a range to about three.
QByteArray encodeRanges(const QList<QPair<char32_t, char32_t>> &ranges);
QList<QPair<char32_t, char32_t>> decodeRanges(const QByteArray &bytes);
// Whether the encoded ranges hold every one of `sorted` (ascending), read only as far
// as needed: the first character missing ends it.
bool coversAll(const QByteArray &ranges, const QList<char32_t> &sorted);

// Many faces share their texts (a family's licence, a foundry's language list): each
// distinct text is converted and split once per query, then shared.
class SharedTexts
{
public:
    QString text(const QByteArray &utf8);
    QStringList words(const QByteArray &utf8, QChar separator = u' ');

private:
    QHash<QByteArray, QString> m_texts;
    QHash<QByteArray, QStringList> m_words;
};

} // namespace CatalogSql
