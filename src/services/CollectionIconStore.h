// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QUuid>

#include <optional>

// The collections' own copies of their icons, one file per collection named by its id, so
// moving or deleting the original loses nothing.
namespace CollectionIconStore {

// Far above any real icon, far below what would exhaust memory.
constexpr qint64 kMaxBytes = 32ll * 1024 * 1024;

// Removes every stored icon of the collection in `iconsFolder`, then copies the new one in
// (only a regular file of an icon's size). Returns the stored icon's path; none when
// cleared or the copy failed, and then `error` says why. Choosing the stored icon itself
// again changes nothing.
std::optional<QString> store(const QString &iconsFolder, const QUuid &collectionId,
                             const std::optional<QString> &sourcePath, QString *error = nullptr);

} // namespace CollectionIconStore
