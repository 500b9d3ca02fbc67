// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

// Where new font links go among the shard folders that exist, decided from their sizes
// alone (no disk): fontconfig rescans a whole folder when it changes, so a batch fills
// empty shards (its rescan is then its own fonts), after the shards it has begun to fill,
// and a small change goes to the least full shards.
namespace LinkPlacement {

// One shard per new link, in order; fewer than `count` when new shards are needed for the
// rest. `shardSize` has every shard's link count; `beingFilled` are shards the running
// batch already changed; `excluded` folders never take new links.
QStringList place(qsizetype count, const QHash<QString, qsizetype> &shardSize, const QSet<QString> &beingFilled,
                  const QSet<QString> &excluded, qsizetype capacity);

} // namespace LinkPlacement
