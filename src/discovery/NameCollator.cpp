// SPDX-License-Identifier: GPL-3.0-or-later
#include "NameCollator.h"

#include <QHash>
#include <QMutex>

#include <algorithm>
#include <numeric>

namespace {

constexpr char16_t kFirstPrintable = 0x20;
constexpr char16_t kLastPrintable = 0x7E;

int sign(int value)
{
    return (value > 0) - (value < 0);
}

} // namespace

NameCollator::NameCollator(const QLocale &locale)
    : m_collator(locale)
{
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    m_ranks = ranksFor(m_collator, locale.bcp47Name());
}

std::shared_ptr<const NameCollator::RankTable> NameCollator::ranksFor(const QCollator &collator,
                                                                       const QString &localeName)
{
    // Checked once per locale and process: a few thousand ICU comparisons.
    static QMutex mutex;
    static QHash<QString, std::shared_ptr<const RankTable>> checked;
    const QMutexLocker lock(&mutex);
    const auto found = checked.constFind(localeName);
    if (found != checked.cend())
        return *found;
    auto ranks = buildRanks(collator);
    checked.insert(localeName, ranks);
    return ranks;
}

std::shared_ptr<const NameCollator::RankTable> NameCollator::buildRanks(const QCollator &collator)
{
    std::vector<QString> singles;
    for (char16_t c = kFirstPrintable; c <= kLastPrintable; ++c)
        singles.push_back(QString(QChar(c)));
    std::stable_sort(singles.begin(), singles.end(),
                     [&collator](const QString &a, const QString &b) { return collator.compare(a, b) < 0; });
    auto ranks = std::make_shared<RankTable>();
    ranks->fill(0);
    quint8 rank = 1;
    for (size_t i = 0; i < singles.size(); ++i) {
        if (i > 0 && collator.compare(singles[i - 1], singles[i]) != 0)
            ++rank;
        (*ranks)[singles[i].at(0).unicode()] = rank;
    }

    // Ranking letter by letter must reproduce ICU on every pair of these characters;
    // a contraction or an ignorable character in this locale shows up here.
    const QString alphabet = QStringLiteral("abcdefghijklmnopqrstuvwxyz0123456789 -_.'()&+,");
    std::vector<QString> pairs;
    for (const QChar a : alphabet)
        for (const QChar b : alphabet)
            pairs.push_back(QString(a) + b);
    for (const QChar a : alphabet)
        pairs.push_back(QString(a));
    std::stable_sort(pairs.begin(), pairs.end(),
                     [&collator](const QString &a, const QString &b) { return collator.compare(a, b) < 0; });
    for (size_t i = 1; i < pairs.size(); ++i) {
        if (sign(collator.compare(pairs[i - 1], pairs[i])) != sign(rankCompare(*ranks, pairs[i - 1], pairs[i])))
            return nullptr;
    }
    return ranks;
}

bool NameCollator::rankable(QStringView name)
{
    return std::all_of(name.begin(), name.end(), [](QChar c) {
        return c.unicode() >= kFirstPrintable && c.unicode() <= kLastPrintable;
    });
}

int NameCollator::rankCompare(const RankTable &ranks, QStringView a, QStringView b)
{
    const qsizetype common = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < common; ++i) {
        const int difference = ranks[a[i].unicode()] - ranks[b[i].unicode()];
        if (difference != 0)
            return difference;
    }
    return static_cast<int>(a.size() - b.size());
}

int NameCollator::compare(QStringView a, QStringView b) const
{
    if (m_ranks && rankable(a) && rankable(b))
        return rankCompare(*m_ranks, a, b);
    return m_collator.compare(a, b);
}

void NameCollator::sortOrder(const std::vector<QStringView> &names, std::vector<quint32> &order) const
{
    order.resize(names.size());
    std::iota(order.begin(), order.end(), 0u);
    const bool fast = m_ranks && std::all_of(names.begin(), names.end(), [](QStringView n) { return rankable(n); });
    if (fast) {
        const RankTable &ranks = *m_ranks;
        std::stable_sort(order.begin(), order.end(), [&](quint32 a, quint32 b) {
            return rankCompare(ranks, names[a], names[b]) < 0;
        });
        return;
    }
    // One ICU sort key per name; comparing keys is a byte compare.
    std::vector<QCollatorSortKey> keys;
    keys.reserve(names.size());
    for (const QStringView name : names)
        keys.push_back(m_collator.sortKey(name.toString()));
    std::stable_sort(order.begin(), order.end(),
                     [&keys](quint32 a, quint32 b) { return keys[a].compare(keys[b]) < 0; });
}
