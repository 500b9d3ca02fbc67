// SPDX-License-Identifier: GPL-3.0-or-later
#include "LinkPlacement.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace LinkPlacement {

QStringList place(qsizetype count, const QHash<QString, qsizetype> &shardSize, const QSet<QString> &beingFilled,
                  const QSet<QString> &excluded, qsizetype capacity)
{
    // A shard's rescan costs all of its fonts. So empty shards are filled first (the
    // rescan is then the batch's own fonts), after any shard the running batch has begun
    // to fill; a big batch then opens new shards rather than topping up part-full ones;
    // a small one goes to the least full shards.
    // Called for every chunk of a batch, with thousands of shards: one pass, and only
    // as many shards as the links need are kept.
    if (count == 0)
        return {};
    const qsizetype emptyWanted = (count + capacity - 1) / capacity;
    const bool small = count < capacity;
    QStringList opened;
    QStringList empty;
    std::vector<std::pair<qsizetype, QString>> partFull;
    for (auto it = shardSize.cbegin(); it != shardSize.cend(); ++it) {
        const qsizetype size = it.value();
        if (size >= capacity || (size > 0 && !small) || (size == 0 && empty.size() >= emptyWanted))
            continue;
        if (excluded.contains(it.key()))
            continue; // an old top folder holding links: no new ones go there
        if (size == 0)
            empty.append(it.key());
        else if (beingFilled.contains(it.key()))
            opened.append(it.key()); // being filled by this batch: finish it first
        else
            partFull.emplace_back(size, it.key());
    }
    const auto bySize = [](const auto &a, const auto &b) { return a.first < b.first; };
    const auto kept = partFull.begin() + std::min<qsizetype>(count, static_cast<qsizetype>(partFull.size()));
    std::partial_sort(partFull.begin(), kept, partFull.end(), bySize);
    QStringList placed;
    placed.reserve(count);
    const auto fill = [&](const QString &shard, qsizetype size) {
        for (qsizetype room = capacity - size; room > 0 && placed.size() < count; --room)
            placed.append(shard);
    };
    for (const QString &shard : std::as_const(opened))
        fill(shard, shardSize.value(shard));
    for (const QString &shard : std::as_const(empty))
        fill(shard, 0);
    for (auto it = partFull.begin(); it != kept; ++it)
        fill(it->second, it->first);
    return placed;
}

} // namespace LinkPlacement
