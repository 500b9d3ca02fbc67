// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <sqlite3.h>

// The catalogue's small tools over SQLite's C API.
namespace CatalogSql {

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
    sqlite3_stmt *m_stmt = nullptr;
};

// Code point ranges as varints: the gap since the last range, then its length. A
// typical cmap shrinks from eight bytes a range to about three.
QByteArray encodeRanges(const QList<QPair<char32_t, char32_t>> &ranges);
QList<QPair<char32_t, char32_t>> decodeRanges(const QByteArray &bytes);

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
