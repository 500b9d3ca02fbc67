// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogSql.h"

namespace CatalogSql {

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
