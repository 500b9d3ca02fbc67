// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/Drops.h"

#include "state/AppState.h"

#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace Drops {

QMimeData *filesData(const QStringList &paths)
{
    if (paths.isEmpty())
        return nullptr;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    auto *data = new QMimeData;
    data->setUrls(urls);
    data->setText(paths.join(u'\n'));
    return data;
}

bool carriesFiles(const QMimeData *data)
{
    if (!data || !data->hasUrls())
        return false;
    const QList<QUrl> urls = data->urls();
    return std::any_of(urls.cbegin(), urls.cend(), [](const QUrl &url) { return url.isLocalFile(); });
}

std::optional<Qt::DropAction> safeAction(Qt::DropActions possible)
{
    if (possible & Qt::CopyAction)
        return Qt::CopyAction;
    if (possible & Qt::LinkAction)
        return Qt::LinkAction;
    return std::nullopt;
}

int addToCollection(AppState &state, const QUuid &collectionId, const QMimeData *data)
{
    if (!data)
        return 0;
    QList<FontNode> nodes;
    for (const QUrl &url : data->urls()) {
        if (!url.isLocalFile())
            continue;
        const QFileInfo info(url.toLocalFile());
        if (!info.exists())
            continue; // gone since the drag began
        const QString path = info.absoluteFilePath();
        nodes.append(info.isDir() ? FontNode::folder(path) : FontNode::fromPath(path));
    }
    state.addToCollection(collectionId, nodes); // one update and one save for the whole drop
    return static_cast<int>(nodes.size());
}

} // namespace Drops
