// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/collection/CollectionMemberModel.h"
#include "ui/common/RowButton.h"

#include "ui/common/Drops.h"
#include "ui/sidebar/SidebarModel.h"

#include "services/LicenseStatus.h"
#include "state/AppState.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

CollectionMemberModel::CollectionMemberModel(AppState &state, QUuid collectionId, QObject *parent)
    : SyncedListModel(parent)
    , m_state(state)
    , m_collectionId(collectionId)
{
    connect(&state, &AppState::collectionsChanged, this, &CollectionMemberModel::reload);
    connect(&state, &AppState::activatedFontsChanged, this, [this] { refresh({ActivationRole, Qt::CheckStateRole, Qt::AccessibleDescriptionRole}); });
    connect(&state, &AppState::licenseTagsChanged, this, [this] { refresh({LicenseRole, Qt::AccessibleDescriptionRole}); });
    connect(&state, &AppState::cachedColumnsChanged, this, [this] { refresh({}); }); // a scan may find missing members
    reload();
}

void CollectionMemberModel::reload()
{
    QList<CollectionMember> wanted;
    for (const FontCollection &collection : m_state.collections()) {
        if (collection.id == m_collectionId)
            wanted = m_state.sortedMembers(collection);
    }
    // Row by row: a change to another collection, or to this one's name, leaves the
    // rows, the current member and its preview as they are.
    syncRows(m_members, wanted, [](const CollectionMember &member) { return member.path; }, std::equal_to<>());
}

void CollectionMemberModel::refresh(const QList<int> &roles)
{
    if (!m_members.isEmpty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), roles);
}

int CollectionMemberModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_members.size());
}

int CollectionMemberModel::rowOf(const QString &path) const
{
    for (qsizetype row = 0; row < m_members.size(); ++row) {
        if (m_members.at(row).path == path)
            return static_cast<int>(row);
    }
    return -1;
}

bool CollectionMemberModel::isMissing(const CollectionMember &member) const
{
    return !m_state.fileSystemService().exists(member.path);
}

QVariant CollectionMemberModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_members.size())
        return {};
    const CollectionMember &member = m_members.at(index.row());
    const FontNode node = member.isDirectory ? FontNode::folder(member.path) : FontNode::fontFile(member.path);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return QFileInfo(member.path).fileName();
    case Qt::AccessibleDescriptionRole: {
        QStringList parts{member.isDirectory ? tr("Folder") : tr("Font")};
        if (isMissing(member)) {
            parts.append(tr("Missing"));
        } else {
            parts.append(SidebarModel::stateWord(m_state.activationState(node)));
        }
        parts.append(QFileInfo(member.path).absolutePath());
        return parts.join(u", "_s);
    }
    case ActivationRole:
        return isMissing(member) ? -1 : static_cast<int>(m_state.activationState(node));
    case Qt::CheckStateRole:
        return RowButton::checkState(isMissing(member) ? -1 : static_cast<int>(m_state.activationState(node)));
    case IsFolderRole: return member.isDirectory;
    case MissingRole: return isMissing(member);
    case LicenseRole:
        return static_cast<int>(member.isDirectory ? License::from(m_state.finderTagService().tags(member.path))
                                                   : LicenseStatus::None);
    case FolderRole: return QFileInfo(member.path).absolutePath();
    case PathRole: return member.path;
    default: return {};
    }
}

Qt::ItemFlags CollectionMemberModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsUserCheckable
                           : Qt::ItemIsDropEnabled;
}

QStringList CollectionMemberModel::mimeTypes() const
{
    return {u"text/uri-list"_s, u"text/plain"_s};
}

QMimeData *CollectionMemberModel::mimeData(const QModelIndexList &indexes) const
{
    QStringList paths;
    for (const QModelIndex &index : indexes) {
        if (index.isValid())
            paths.append(m_members.at(index.row()).path);
    }
    return Drops::filesData(paths);
}

Qt::DropActions CollectionMemberModel::supportedDragActions() const
{
    return Qt::CopyAction | Qt::LinkAction; // never a move: the files stay where they are
}
