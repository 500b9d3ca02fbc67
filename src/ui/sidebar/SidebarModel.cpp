// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sidebar/SidebarModel.h"

#include "ui/common/CollectionIcons.h"
#include "ui/common/RowButton.h"

#include "state/AppState.h"

#include <QImage>
#include <QLocale>

using namespace Qt::StringLiterals;

SidebarModel::SidebarModel(AppState &state, QObject *parent)
    : SyncedListModel(parent)
    , m_state(state)
{
    // Drawing SVG is the interface's job. Set once, here: the sidebar lives as long as the
    // window, and setting a decoder empties the store's icon memo.
    state.setIconDecoder(&CollectionIcons::decode);
    connect(&state, &AppState::sourcesChanged, this, &SidebarModel::sync);
    connect(&state, &AppState::collectionsChanged, this, &SidebarModel::sync);
    connect(&state, &AppState::activatedFontsChanged, this, [this] { refreshAll({ActivationRole, Qt::CheckStateRole}); });
    // A new scan knows other counts, and may find members that were missing.
    connect(&state, &AppState::cachedColumnsChanged, this, [this] { refreshAll({CaptionRole, ActivationRole, Qt::CheckStateRole}); });
    connect(&state, &AppState::isIndexingChanged, this, [this] { refreshAll({CaptionRole}); });
    connect(&state, &AppState::unavailableSourcesChanged, this, [this] { refreshAll({CaptionRole}); });
    sync();
}

void SidebarModel::sync()
{
    Q_EMIT aboutToSync();
    // The placeholder is a source row without an id.
    const QList<FolderSource> sources = m_state.sources().isEmpty() ? QList<FolderSource>{FolderSource{}}
                                                                    : m_state.sources();
    const auto id = [](const auto &item) { return item.id; };
    syncRows(m_sources, sources, id, std::equal_to<>());
    syncRows(m_collections, m_state.collections(), id, std::equal_to<>(), firstCollectionRow());
    Q_EMIT synced();
}

QString SidebarModel::fontCount(qsizetype number)
{
    return tr("%n font(s)", nullptr, int(number));
}

QString SidebarModel::itemCount(qsizetype number)
{
    return tr("%n item(s)", nullptr, int(number));
}

bool SidebarModel::isFavorites(const QString &name)
{
    const QLocale locale;
    return locale.toLower(name) == locale.toLower(u"Favorites"_s);
}

QString SidebarModel::stateWord(ActivationState state)
{
    switch (state) {
    case ActivationState::Active: return tr("active");
    case ActivationState::Session: return tr("active for this session");
    case ActivationState::Mixed: return tr("mixed");
    default: break;
    }
    return tr("inactive");
}

int SidebarModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return firstCollectionRow() + static_cast<int>(m_collections.size());
}

int SidebarModel::firstCollectionRow() const
{
    return static_cast<int>(m_sources.size());
}

SidebarModel::Kind SidebarModel::kind(int row) const
{
    if (row >= firstCollectionRow())
        return Kind::Collection;
    return m_sources.value(row).id.isNull() ? Kind::Placeholder : Kind::Source;
}

std::optional<SidebarItem> SidebarModel::item(int row) const
{
    switch (kind(row)) {
    case Kind::Source:
        return SidebarItem(m_sources.value(row));
    case Kind::Collection:
        return SidebarItem(m_collections.value(row - firstCollectionRow()));
    default:
        return std::nullopt;
    }
}

int SidebarModel::rowOf(const SidebarItem &item) const
{
    if (const FolderSource *source = item.source()) {
        const auto &sources = m_sources;
        for (qsizetype i = 0; i < sources.size(); ++i) {
            if (sources.at(i).id == source->id)
                return static_cast<int>(i);
        }
    } else if (const FontCollection *collection = item.collection()) {
        const auto &collections = m_collections;
        for (qsizetype i = 0; i < collections.size(); ++i) {
            if (collections.at(i).id == collection->id)
                return firstCollectionRow() + static_cast<int>(i);
        }
    }
    return -1;
}

std::optional<qsizetype> SidebarModel::sourceFontCount(int sourceIndex) const
{
    const QString path = m_sources.value(sourceIndex).path;
    const FileSystemService &files = m_state.fileSystemService();
    if (!files.hasChildrenEntry(path))
        return std::nullopt; // not scanned yet
    return static_cast<qsizetype>(files.allFonts(path).size());
}

ActivationState SidebarModel::activation(int row) const
{
    switch (kind(row)) {
    case Kind::Source:
        return m_state.activationState(FontNode::folder(m_sources.value(row).path));
    case Kind::Collection:
        return m_state.collectionActivationState(m_collections.value(row - firstCollectionRow()));
    default:
        return ActivationState::Inactive;
    }
}

QString SidebarModel::caption(int row) const
{
    if (kind(row) == Kind::Source) {
        if (!m_state.isSourceAvailable(m_sources.value(row)))
            return tr("Not available");
        const std::optional<qsizetype> fonts = sourceFontCount(row);
        return fonts ? fontCount(*fonts) : QString();
    }
    if (kind(row) == Kind::Collection) {
        const FontCollection collection = m_collections.value(row - firstCollectionRow());
        return fontCount(m_state.allFontsInCollection(collection).size()) + u" · "_s
               + itemCount(collection.members.size());
    }
    return {};
}

QVariant SidebarModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const int row = index.row();
    const Kind rowKind = kind(row);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case Qt::AccessibleTextRole:
        switch (rowKind) {
        case Kind::Placeholder: return tr("No Sources");
        case Kind::Source: return m_sources.value(row).name;
        case Kind::Collection: return m_collections.value(row - firstCollectionRow()).name;
        }
        return {};
    case Qt::AccessibleDescriptionRole: {
        if (rowKind == Kind::Placeholder)
            return tr("Click the + button to add a font folder.");
        QStringList parts{rowKind == Kind::Source ? tr("Source") : tr("Collection")};
        if (const QString text = caption(row); !text.isEmpty())
            parts.append(text);
        parts.append(stateWord(activation(row)));
        return parts.join(u", "_s);
    }
    case KindRole: return static_cast<int>(rowKind);
    case CaptionRole: return caption(row);
    case ActivationRole: return static_cast<int>(activation(row));
    case Qt::CheckStateRole:
        return rowKind == Kind::Placeholder ? QVariant() : RowButton::checkState(static_cast<int>(activation(row)));
    case IconRole: {
        if (rowKind != Kind::Collection)
            return {};
        const std::optional<QString> &icon = m_collections.value(row - firstCollectionRow()).iconPath;
        const std::optional<QImage> image = icon ? m_state.collectionIcon(*icon) : std::nullopt;
        return image ? QVariant(*image) : QVariant();
    }
    case FavoritesRole: {
        if (rowKind != Kind::Collection)
            return false;
        return isFavorites(m_collections.value(row - firstCollectionRow()).name);
    }
    case SmartRole:
        return rowKind == Kind::Collection && m_collections.value(row - firstCollectionRow()).isSmart();
    default: return {};
    }
}

bool SidebarModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || kind(index.row()) != Kind::Collection)
        return false;
    // After the editor has closed: a new name may move the row.
    const QUuid id = m_collections.value(index.row() - firstCollectionRow()).id;
    QMetaObject::invokeMethod(
        this, [this, id, name = value.toString()] { m_state.renameCollection(id, name); }, Qt::QueuedConnection);
    return true;
}

Qt::ItemFlags SidebarModel::flags(const QModelIndex &index) const
{
    switch (kind(index.row())) {
    case Kind::Source: return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
    case Kind::Collection:
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsDropEnabled | Qt::ItemIsUserCheckable;
    case Kind::Placeholder: break;
    }
    return Qt::NoItemFlags; // the placeholder: passed over by the keys
}

void SidebarModel::refreshAll(const QList<int> &roles)
{
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), roles);
}
