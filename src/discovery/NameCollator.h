// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCollator>
#include <QLocale>
#include <QString>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

// Sorts names as the user's locale does, case-insensitively (ICU). Names made of
// printable ASCII take a fast path: each character's rank is read off ICU itself,
// and the path is used only for locales where ranking letter by letter was checked
// to give ICU's own order (no contractions such as Czech "ch" or Danish "aa").
class NameCollator
{
public:
    explicit NameCollator(const QLocale &locale);

    // Stable: names that compare equal keep their order.
    template <typename T, typename NameOf>
    void stableSort(std::vector<T> &items, NameOf nameOf) const;

    int compare(QStringView a, QStringView b) const;
    bool hasAsciiFastPath() const { return m_ranks != nullptr; }

private:
    static constexpr size_t kInsertionSortLimit = 24;
    using RankTable = std::array<quint8, 128>;
    static std::shared_ptr<const RankTable> ranksFor(const QCollator &collator, const QString &localeName);
    static std::shared_ptr<const RankTable> buildRanks(const QCollator &collator);
    static bool rankable(QStringView name);
    static int rankCompare(const RankTable &ranks, QStringView a, QStringView b);
    void sortOrder(const std::vector<QStringView> &names, std::vector<quint32> &order) const;

    QCollator m_collator;
    std::shared_ptr<const RankTable> m_ranks;
};

template <typename T, typename NameOf>
void NameCollator::stableSort(std::vector<T> &items, NameOf nameOf) const
{
    if (items.size() < 2)
        return;
    if (m_ranks && std::all_of(items.begin(), items.end(), [&](const T &item) { return rankable(nameOf(item)); })) {
        const RankTable &ranks = *m_ranks;
        const auto less = [&](const T &a, const T &b) { return rankCompare(ranks, nameOf(a), nameOf(b)) < 0; };
        if (items.size() <= kInsertionSortLimit) {
            // Stable and allocation-free for the short lists most folders have.
            for (size_t i = 1; i < items.size(); ++i) {
                for (size_t j = i; j > 0 && less(items[j], items[j - 1]); --j)
                    std::swap(items[j], items[j - 1]);
            }
            return;
        }
        // Long lists: sort positions, then move each item once.
        std::vector<quint32> order(items.size());
        for (quint32 i = 0; i < order.size(); ++i)
            order[i] = i;
        std::stable_sort(order.begin(), order.end(), [&](quint32 a, quint32 b) { return less(items[a], items[b]); });
        std::vector<T> sorted;
        sorted.reserve(items.size());
        for (quint32 index : order)
            sorted.push_back(std::move(items[index]));
        items = std::move(sorted);
        return;
    }
    std::vector<QStringView> names;
    names.reserve(items.size());
    for (const T &item : items)
        names.push_back(nameOf(item));
    std::vector<quint32> order;
    sortOrder(names, order);
    std::vector<T> sorted;
    sorted.reserve(items.size());
    for (quint32 index : order)
        sorted.push_back(std::move(items[index]));
    items = std::move(sorted);
}
