// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/FolderSearchResult.h"
#include <QAbstractListModel>

class AppState;

// The store's folder-search hits as list rows. It copies nothing: each row reads its
// result from the store. Activation and licence changes repaint the rows in place.
class SearchResultsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        ActivationRole = Qt::UserRole + 1, // ActivationState as int
        LicenseRole,                       // LicenseStatus as int
        FontCountRole,                     // fonts under the folder, from the last scan
        CountTextRole,                     // "1 font", "3 fonts"
        PathRole,
        LocationRole,                      // where it lives: "Library/Foundry A", its source first
    };

    explicit SearchResultsModel(AppState &state, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDragActions() const override { return Qt::CopyAction; }

private:
    void follow(); // the store's results, applied as the rows that changed

    AppState &m_state;
    QList<FolderSearchResult> m_shown; // what the rows are, the store's list as last applied
};
