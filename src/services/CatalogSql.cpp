// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogSql.h"

#include "Diagnostics.h"

namespace CatalogSql {

bool Connection::open(const QByteArray &path)
{
    close();
    sqlite3 *db = nullptr;
    const int result = sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (result != SQLITE_OK) {
        qCWarning(lcLibrary) << "the font catalogue" << path << "can't be opened:" << sqlite3_errstr(result);
        sqlite3_close(db);
        return false;
    }
    // Waits out another Morvane's write (a second copy starting) rather than failing at once.
    sqlite3_busy_timeout(db, 5000);
    m_db = db;
    return true;
}

void Connection::close()
{
    sqlite3_close(m_db);
    m_db = nullptr;
    m_damaged.store(false);
    m_damage.clear();
}

bool Connection::check(int result, const char *what) const
{
    if (result == SQLITE_OK)
        return true;
    const QString words = QString::fromUtf8(m_db ? sqlite3_errmsg(m_db) : sqlite3_errstr(result));
    qCWarning(lcLibrary).noquote() << "the font catalogue:" << words << "in" << QByteArray(what).simplified().left(120);
    const int primary = result & 0xff;
    if (primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB)
        markDamaged(words);
    return false;
}

bool Connection::exec(const char *sql) const
{
    return m_db && check(sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr), sql);
}

void Connection::markDamaged(const QString &why) const
{
    if (!m_damaged.load())
        m_damage = why;
    m_damaged.store(true);
}

QString Connection::quickCheck() const
{
    // The first fault is enough to know: the whole file goes.
    Statement check(*this, "PRAGMA quick_check(1)");
    if (!check.step())
        return m_damaged.load() ? m_damage : QString();
    return check.text(0);
}

namespace {

void appendVarint(QByteArray &out, quint32 value)
{
    while (value >= 0x80) {
        out.append(char((value & 0x7f) | 0x80));
        value >>= 7;
    }
    out.append(char(value));
}

bool readVarint(const QByteArray &in, qsizetype &at, quint32 &value)
{
    value = 0;
    for (int shift = 0; at < in.size() && shift < 35; shift += 7) {
        const auto byte = quint8(in.at(at++));
        value |= quint32(byte & 0x7f) << shift;
        if (!(byte & 0x80))
            return true;
    }
    return false;
}

} // namespace

QByteArray encodeRanges(const QList<QPair<char32_t, char32_t>> &ranges)
{
    QByteArray bytes;
    bytes.reserve(ranges.size() * 3);
    quint32 next = 0; // the first code point after the previous range
    for (const auto &[first, last] : ranges) {
        appendVarint(bytes, quint32(first) - next);
        appendVarint(bytes, quint32(last) - quint32(first));
        next = quint32(last) + 1;
    }
    return bytes;
}

QList<QPair<char32_t, char32_t>> decodeRanges(const QByteArray &bytes)
{
    QList<QPair<char32_t, char32_t>> ranges;
    qsizetype at = 0;
    quint32 next = 0, gap = 0, length = 0;
    while (at < bytes.size() && readVarint(bytes, at, gap) && readVarint(bytes, at, length)) {
        const quint32 first = next + gap;
        ranges.append({first, first + length});
        next = first + length + 1;
    }
    return ranges;
}

bool coversAll(const QByteArray &bytes, const QList<char32_t> &sorted)
{
    qsizetype at = 0;
    quint32 next = 0, gap = 0, length = 0;
    qsizetype wanted = 0;
    while (wanted < sorted.size() && at < bytes.size() && readVarint(bytes, at, gap) && readVarint(bytes, at, length)) {
        const quint32 first = next + gap, last = first + length;
        next = last + 1;
        if (quint32(sorted.at(wanted)) < first)
            return false; // fell in the gap before this range
        while (wanted < sorted.size() && quint32(sorted.at(wanted)) <= last)
            ++wanted;
    }
    return wanted == sorted.size();
}

QString SharedTexts::text(const QByteArray &utf8)
{
    if (utf8.isEmpty())
        return {};
    const auto found = m_texts.constFind(utf8);
    if (found != m_texts.cend())
        return *found;
    const QString converted = QString::fromUtf8(utf8);
    m_texts.insert(QByteArray(utf8.constData(), utf8.size()), converted); // the key outlives the row
    return converted;
}

QStringList SharedTexts::words(const QByteArray &utf8, QChar separator)
{
    if (utf8.isEmpty())
        return {};
    QByteArray key(utf8.constData(), utf8.size()); // the key outlives the row
    key.append(char(separator.unicode())); // the same text split another way is another list
    const auto found = m_words.constFind(key);
    if (found != m_words.cend())
        return *found;
    const QStringList split = QString::fromUtf8(utf8).split(separator, Qt::SkipEmptyParts);
    m_words.insert(key, split);
    return split;
}

} // namespace CatalogSql
