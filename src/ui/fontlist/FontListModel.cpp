// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/fontlist/FontListModel.h"

#include "state/AppState.h"
#include "ui/common/Drops.h"
#include "ui/common/RowButton.h"

#include <QCoreApplication>
#include <QHash>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

// A face row knows its family by the family's row plus one; a family row by zero.
constexpr quintptr kFamilyRow = 0;

QString stateWord(ActivationState state)
{
    switch (state) {
    case ActivationState::Active: return QCoreApplication::translate("FontListModel", "active");
    case ActivationState::Mixed: return QCoreApplication::translate("FontListModel", "mixed");
    case ActivationState::Inactive: break;
    }
    return QCoreApplication::translate("FontListModel", "inactive");
}

QString styles(qsizetype count)
{
    return count == 1 ? QCoreApplication::translate("FontListModel", "1 style")
                      : QCoreApplication::translate("FontListModel", "%n styles", nullptr, int(count));
}

} // namespace

FontListModel::FontListModel(AppState &state, QObject *parent)
    : QAbstractItemModel(parent)
    , m_state(state)
{
    connect(&state, &AppState::activatedFontsChanged, this, [this] {
        m_familyStates.assign(m_familyStates.size(), -1);
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0), {ActivationRole, Qt::CheckStateRole});
        // Open families' faces repaint with them.
        for (int row = 0; row < rowCount(); ++row) {
            const int faces = rowCount(index(row, 0));
            if (faces > 0)
                Q_EMIT dataChanged(index(0, 0, index(row, 0)), index(faces - 1, 0, index(row, 0)),
                                   {ActivationRole, Qt::CheckStateRole});
        }
    });
}

void FontListModel::setAnswer(FontQueryAnswer answer, bool samePlace)
{
    const QModelIndexList kept = samePlace ? persistentIndexList() : QModelIndexList();
    if (m_answer.families.isEmpty() || kept.isEmpty()) {
        beginResetModel();
        m_answer = std::move(answer);
        m_familyStates.assign(size_t(m_answer.families.size()), -1);
        endResetModel();
        return;
    }
    // A new answer to the same question (fonts indexed, activated, dropped): one layout
    // change in which every row the views hold on to (the chosen row,
    // open families, the current row) moves to where its family or face now is, so the
    // user's place survives; rows that are gone let go.
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    struct Place
    {
        QString family;
        QString path; // a face's; empty for a family row
        int faceIndex = 0;
    };
    QList<Place> places;
    places.reserve(kept.size());
    for (const QModelIndex &index : kept) {
        const FontFamily *family = familyOf(index);
        const FoundFace *face = index.internalId() == kFamilyRow ? nullptr : faceOf(index);
        places.append({family ? family->name : QString(), face ? face->path : QString(), face ? face->faceIndex : 0});
    }
    m_answer = std::move(answer);
    m_familyStates.assign(size_t(m_answer.families.size()), -1);
    QHash<QString, int> familyRows;
    familyRows.reserve(m_answer.families.size());
    for (int row = 0; row < m_answer.families.size(); ++row)
        familyRows.insert(m_answer.families.at(row).name, row);
    QModelIndexList moved;
    moved.reserve(kept.size());
    for (const Place &place : std::as_const(places)) {
        const int familyRow = familyRows.value(place.family, -1);
        if (familyRow < 0) {
            moved.append(QModelIndex());
            continue;
        }
        if (place.path.isEmpty()) {
            moved.append(createIndex(familyRow, 0, kFamilyRow));
            continue;
        }
        const QList<FoundFace> &faces = m_answer.families.at(familyRow).faces;
        const auto face = std::find_if(faces.cbegin(), faces.cend(), [&](const FoundFace &f) {
            return f.path == place.path && f.faceIndex == place.faceIndex;
        });
        moved.append(face == faces.cend() ? QModelIndex()
                                          : createIndex(int(face - faces.cbegin()), 0, quintptr(familyRow) + 1));
    }
    changePersistentIndexList(kept, moved);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

QModelIndex FontListModel::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0 || row < 0)
        return {};
    if (!parent.isValid())
        return row < m_answer.families.size() ? createIndex(row, 0, kFamilyRow) : QModelIndex();
    if (parent.internalId() != kFamilyRow || row >= m_answer.families.at(parent.row()).faces.size())
        return {};
    return createIndex(row, 0, quintptr(parent.row()) + 1);
}

QModelIndex FontListModel::parent(const QModelIndex &child) const
{
    if (!child.isValid() || child.internalId() == kFamilyRow)
        return {};
    return createIndex(int(child.internalId() - 1), 0, kFamilyRow);
}

int FontListModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return int(m_answer.families.size());
    if (parent.internalId() != kFamilyRow)
        return 0;
    return int(m_answer.families.at(parent.row()).faces.size());
}

int FontListModel::columnCount(const QModelIndex &) const
{
    return 1;
}

const FontFamily *FontListModel::familyOf(const QModelIndex &index) const
{
    if (!index.isValid())
        return nullptr;
    const qsizetype row = index.internalId() == kFamilyRow ? index.row() : qsizetype(index.internalId() - 1);
    return row < m_answer.families.size() ? &m_answer.families.at(row) : nullptr;
}

const FoundFace *FontListModel::faceOf(const QModelIndex &index) const
{
    const FontFamily *family = familyOf(index);
    if (!family)
        return nullptr;
    if (index.internalId() == kFamilyRow)
        return family->faces.isEmpty() ? nullptr : &regularFace(*family);
    return index.row() < family->faces.size() ? &family->faces.at(index.row()) : nullptr;
}

const FoundFace &FontListModel::regularFace(const FontFamily &family)
{
    const auto distance = [](const FoundFace &face) {
        return std::abs(face.weight - 400) + (face.italic ? 1000 : 0) + std::abs(face.width - 5) * 100;
    };
    // Of equally regular faces, the fullest: a stray file that only borrows the family's
    // name (a subset, an impostor) doesn't draw the family.
    return *std::min_element(family.faces.cbegin(), family.faces.cend(), [&](const FoundFace &a, const FoundFace &b) {
        return distance(a) != distance(b) ? distance(a) < distance(b) : a.glyphCount > b.glyphCount;
    });
}

QStringList FontListModel::pathsOf(const QModelIndex &index) const
{
    QStringList paths;
    if (index.isValid() && index.internalId() == kFamilyRow) {
        if (const FontFamily *family = familyOf(index)) {
            QSet<QString> seen; // a collection file's faces share it
            for (const FoundFace &face : family->faces) {
                if (!seen.contains(face.path)) {
                    seen.insert(face.path);
                    paths.append(face.path);
                }
            }
        }
    } else if (const FoundFace *face = faceOf(index)) {
        paths.append(face->path);
    }
    return paths;
}

ActivationState FontListModel::activation(const QModelIndex &index) const
{
    // A family's state is counted once per change of the active fonts, not per paint.
    const bool isFamily = index.isValid() && index.internalId() == kFamilyRow;
    if (isFamily && size_t(index.row()) < m_familyStates.size() && m_familyStates[size_t(index.row())] >= 0)
        return ActivationState(m_familyStates[size_t(index.row())]);
    const QStringList paths = pathsOf(index);
    const auto active = std::count_if(paths.cbegin(), paths.cend(),
                                      [&](const QString &path) { return m_state.activatedFonts().contains(path); });
    const ActivationState state = active == 0 ? ActivationState::Inactive
                                  : active == paths.size() ? ActivationState::Active
                                                           : ActivationState::Mixed;
    if (isFamily) {
        if (m_familyStates.size() != size_t(m_answer.families.size()))
            m_familyStates.assign(size_t(m_answer.families.size()), -1);
        m_familyStates[size_t(index.row())] = qint8(state);
    }
    return state;
}

QVariant FontListModel::data(const QModelIndex &index, int role) const
{
    const FontFamily *family = familyOf(index);
    const FoundFace *face = faceOf(index);
    if (!family || !face)
        return {};
    const bool isFamily = index.internalId() == kFamilyRow;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return isFamily ? family->name : face->style;
    case CaptionRole:
        return isFamily ? styles(family->faces.size()) : QString();
    case Qt::AccessibleDescriptionRole:
        return isFamily ? styles(family->faces.size()) + u", "_s + stateWord(activation(index)) : stateWord(activation(index));
    case ActivationRole:
        return int(activation(index));
    case Qt::CheckStateRole:
        return RowButton::checkState(int(activation(index)));
    case PathRole:
        return face->path;
    case FaceIndexRole:
        return face->faceIndex;
    case IsFamilyRole:
        return isFamily;
    default:
        return {};
    }
}

Qt::ItemFlags FontListModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable | Qt::ItemIsDragEnabled
                           : Qt::NoItemFlags;
}

QStringList FontListModel::mimeTypes() const
{
    return {u"text/uri-list"_s, u"text/plain"_s};
}

QMimeData *FontListModel::mimeData(const QModelIndexList &indexes) const
{
    QStringList paths;
    QSet<QString> seen;
    for (const QModelIndex &index : indexes) {
        for (const QString &path : pathsOf(index)) {
            if (!seen.contains(path)) {
                seen.insert(path);
                paths.append(path);
            }
        }
    }
    return Drops::filesData(paths);
}

Qt::DropActions FontListModel::supportedDragActions() const
{
    return Qt::CopyAction | Qt::LinkAction;
}
