// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/search/SearchResultsModel.h"
#include "ui/common/RowButton.h"

#include "ui/sidebar/SidebarModel.h"

#include "services/LicenseStatus.h"
#include "state/AppState.h"

#include "ui/common/RowDiff.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeData>

using namespace Qt::StringLiterals;

SearchResultsModel::SearchResultsModel(AppState &state, QObject *parent)
    : QAbstractListModel(parent)
    , m_state(state)
{
    connect(&state, &AppState::searchResultsChanged, this, &SearchResultsModel::follow);
    const auto repaint = [this](QList<int> roles) {
        roles.append(Qt::AccessibleDescriptionRole);
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0), index(rowCount() - 1), roles);
    };
    connect(&state, &AppState::activatedFontsChanged, this, [repaint] { repaint({ActivationRole, Qt::CheckStateRole}); });
    connect(&state, &AppState::licenseTagsChanged, this, [repaint] { repaint({LicenseRole}); });
}

void SearchResultsModel::follow()
{
    const QList<FolderSearchResult> &next = m_state.searchResults();
    const RowDiff::Span span =
        RowDiff::changed(m_shown, next, [](const FolderSearchResult &a, const FolderSearchResult &b) { return a.id == b.id; });
    if (m_shown.isEmpty() || next.isEmpty() || span.isWholesale(m_shown.size())) {
        beginResetModel();
        m_shown = next;
        endResetModel();
        return;
    }
    // The same search on a refreshed library: only the hits that came or went move.
    if (span.removed > 0) {
        beginRemoveRows({}, int(span.head), int(span.head + span.removed - 1));
        m_shown.remove(span.head, span.removed);
        endRemoveRows();
    }
    if (span.inserted > 0) {
        beginInsertRows({}, int(span.head), int(span.head + span.inserted - 1));
        for (qsizetype i = 0; i < span.inserted; ++i)
            m_shown.insert(span.head + i, next.at(span.head + i));
        endInsertRows();
    }
    m_shown = next;
}

int SearchResultsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

QVariant SearchResultsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const FolderSearchResult &result = m_shown.at(index.row());
    // Only what the scan already holds: a row never starts a scan of its own.
    const auto fontCount = [&] { return static_cast<qsizetype>(m_state.fileSystemService().allFonts(result.folder.path()).size()); };
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return result.folder.name().toString();
    case Qt::ToolTipRole:
    case PathRole:
        return result.folder.path();
    case ActivationRole:
        return static_cast<int>(m_state.activationState(result.folder));
    case Qt::CheckStateRole:
        return RowButton::checkState(static_cast<int>(m_state.activationState(result.folder)));
    case LicenseRole:
        return static_cast<int>(License::from(m_state.finderTagService().tags(result.folder.path())));
    case FontCountRole:
        return fontCount();
    case CountTextRole:
        return SidebarModel::fontCount(fontCount());
    case LocationRole: {
        // A hundred "Display" folders must read apart: the folder holding each, from its source.
        const QString root = QDir::cleanPath(result.source.path);
        const QString parent = QFileInfo(result.folder.path()).absolutePath();
        const QString below = parent.startsWith(root) ? parent.mid(root.size()) : QString();
        return QString(result.source.name + below);
    }
    case Qt::AccessibleDescriptionRole: {
        const auto license = static_cast<LicenseStatus>(data(index, LicenseRole).toInt());
        QStringList parts{SidebarModel::stateWord(m_state.activationState(result.folder)),
                          SidebarModel::fontCount(fontCount()), tr("in %1").arg(data(index, LocationRole).toString())};
        if (license != LicenseStatus::None)
            parts << License::rawValue(license);
        return parts.join(u", "_s);
    }
    default:
        return {};
    }
}

Qt::ItemFlags SearchResultsModel::flags(const QModelIndex &index) const
{
    return QAbstractListModel::flags(index) | Qt::ItemIsDragEnabled | Qt::ItemIsUserCheckable;
}

QStringList SearchResultsModel::mimeTypes() const
{
    return {u"text/plain"_s};
}

// A dragged hit is its folder's path as plain text.
QMimeData *SearchResultsModel::mimeData(const QModelIndexList &indexes) const
{
    if (indexes.isEmpty() || !indexes.first().isValid())
        return nullptr;
    auto *data = new QMimeData;
    data->setText(indexes.first().data(PathRole).toString());
    return data;
}
