// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/common/RowDiff.h"
#include "model/FontNode.h"

#include <QAbstractListModel>
#include <QList>

class AppState;

// One browser column's nodes as a list model: the store's list itself (shared, not
// copied), with each row's name, activation state and licence status read from the
// store when asked. Activation changes only signal the activation role; a new list
// is a model reset.
class FontNodeListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        ActivationRole = Qt::UserRole + 1, // ActivationState as int
        IsFolderRole,                      // bool
        LicenseRole,                       // LicenseStatus as int; None for font files
        PathRole,                          // QString
    };

    explicit FontNodeListModel(AppState &state, QObject *parent = nullptr);

    // A reset only when the list really differs.
    void setNodes(const QList<FontNode> &nodes);
    const QList<FontNode> &nodes() const { return m_nodes; }
    const FontNode &node(int row) const { return m_nodes.at(row); }
    int rowOf(const QString &path) const;

    // Every row's activation role (and its spoken state) changed.
    void activationChanged();
    // Every row's licence role changed (tags were set).
    void licensesChanged();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    // Rows drag as their files (text/uri-list, and the path as text), offered as a copy
    // or a link only: a drop elsewhere must never move the user's font file.
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDragActions() const override;

private:
    void replaceSpan(const RowDiff::Span &span, const QList<FontNode> &nodes);
    QString describe(const FontNode &node) const;

    AppState &m_state;
    QList<FontNode> m_nodes;
};
