// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CollectionRecords.h"

#include "ui/common/RowSync.h"

#include <QUuid>

class AppState;

// The members of one collection in the store's sorted order, for the collection view.
// A member the last scan did not see is "Missing": it has no activation state.
class CollectionMemberModel : public SyncedListModel
{
    Q_OBJECT

public:
    enum Role {
        ActivationRole = Qt::UserRole + 1, // ActivationState as int; -1 for a missing member
        IsFolderRole,
        MissingRole,
        LicenseRole, // a folder's LicenseStatus as int
        FolderRole,  // the folder holding the member
        PathRole,
    };

    CollectionMemberModel(AppState &state, QUuid collectionId, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDragActions() const override;

    const QList<CollectionMember> &members() const { return m_members; }
    int rowOf(const QString &path) const;

private:
    void reload();
    void refresh(const QList<int> &roles);
    bool isMissing(const CollectionMember &member) const;

    AppState &m_state;
    QUuid m_collectionId;
    QList<CollectionMember> m_members;
};
