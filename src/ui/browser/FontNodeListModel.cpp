// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/browser/FontNodeListModel.h"
#include "ui/common/RowListAccessible.h"
#include "ui/common/RowButton.h"

#include "ui/common/Drops.h"
#include "ui/sidebar/SidebarModel.h"

#include "state/AppState.h"

#include <QMimeData>
#include <QUrl>

using namespace Qt::StringLiterals;

FontNodeListModel::FontNodeListModel(AppState &state, QObject *parent)
    : QAbstractListModel(parent)
    , m_state(state)
{
}

void FontNodeListModel::setNodes(const QList<FontNode> &nodes)
{
    // Shared lists compare in no time; equal ones keep the view's scroll and hover.
    if (m_nodes.constData() == nodes.constData() && m_nodes.size() == nodes.size())
        return;
    if (m_nodes == nodes) {
        m_nodes = nodes;
        return;
    }
    const RowDiff::Span span = RowDiff::changed(m_nodes, nodes, [](const FontNode &a, const FontNode &b) { return a == b; });
    if (m_nodes.isEmpty() || span.isWholesale(m_nodes.size())) {
        beginResetModel();
        m_nodes = nodes;
        endResetModel();
        return;
    }
    replaceSpan(span, nodes);
}

void FontNodeListModel::replaceSpan(const RowDiff::Span &span, const QList<FontNode> &nodes)
{
    if (span.removed > 0) {
        beginRemoveRows({}, int(span.head), int(span.head + span.removed - 1));
        m_nodes.remove(span.head, span.removed);
        endRemoveRows();
    }
    if (span.inserted > 0) {
        beginInsertRows({}, int(span.head), int(span.head + span.inserted - 1));
        m_nodes.insert(span.head, span.inserted, FontNode());
        std::copy(nodes.cbegin() + span.head, nodes.cbegin() + span.head + span.inserted, m_nodes.begin() + span.head);
        endInsertRows();
    }
    m_nodes = nodes; // the scan's own list, shared
}

int FontNodeListModel::rowOf(const QString &path) const
{
    for (qsizetype row = 0; row < m_nodes.size(); ++row) {
        if (m_nodes.at(row).path() == path)
            return static_cast<int>(row);
    }
    return -1;
}

void FontNodeListModel::activationChanged()
{
    if (!m_nodes.isEmpty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {ActivationRole, Qt::CheckStateRole, Qt::AccessibleDescriptionRole});
}

void FontNodeListModel::licensesChanged()
{
    if (!m_nodes.isEmpty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {LicenseRole, Qt::AccessibleDescriptionRole});
}

int FontNodeListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_nodes.size());
}

Qt::ItemFlags FontNodeListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren
           | Qt::ItemIsUserCheckable;
}

QString FontNodeListModel::describe(const FontNode &node) const
{
    QString text = node.isDirectory() ? tr("Folder, ") : tr("Font, ");
    text += SidebarModel::stateWord(m_state.activationState(node));
    if (node.isDirectory()) {
        const LicenseStatus status = License::from(m_state.finderTagService().tags(node.path()));
        if (status != LicenseStatus::None)
            text += u", "_s + License::rawValue(status);
    }
    return text;
}

QVariant FontNodeListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const FontNode &node = m_nodes.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
    case Qt::ToolTipRole:
        return node.name().toString();
    case Qt::AccessibleDescriptionRole:
        return describe(node);
    case ActivationRole:
        return static_cast<int>(m_state.activationState(node));
    case Qt::CheckStateRole:
        return RowButton::checkState(static_cast<int>(m_state.activationState(node)));
    case IsFolderRole:
    case RowListAccessible::ExpandableRole:
        return node.isDirectory();
    case LicenseRole:
        // A font file's icon is never coloured by a label.
        return static_cast<int>(node.isDirectory() ? License::from(m_state.finderTagService().tags(node.path()))
                                                   : LicenseStatus::None);
    case PathRole:
        return node.path();
    default:
        return {};
    }
}

QStringList FontNodeListModel::mimeTypes() const
{
    return {u"text/uri-list"_s, u"text/plain"_s};
}

QMimeData *FontNodeListModel::mimeData(const QModelIndexList &indexes) const
{
    QStringList paths;
    for (const QModelIndex &index : indexes) {
        if (index.isValid())
            paths.append(m_nodes.at(index.row()).path());
    }
    return Drops::filesData(paths);
}

Qt::DropActions FontNodeListModel::supportedDragActions() const
{
    return Qt::CopyAction | Qt::LinkAction;
}
