// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUuid>
#include <QStringList>
#include <Qt>

#include <optional>

class AppState;
class QMimeData;

// Files and folders dropped on a collection, from our rows or any file manager.
namespace Drops {

// Paths as file URLs (and plain text), for dragging rows to file managers and our collections.
QMimeData *filesData(const QStringList &paths);
// Whether the data names at least one local file or folder.
bool carriesFiles(const QMimeData *data);
// Copy where the source offers it, else link: a drop on a collection only records the
// path, and must never let the source application think its files were moved away.
std::optional<Qt::DropAction> safeAction(Qt::DropActions possible);
// Adds every dropped path that exists, with its folder flag; missing ones are skipped.
// Gives the number of paths that exist.
int addToCollection(AppState &state, const QUuid &collectionId, const QMimeData *data);

} // namespace Drops
