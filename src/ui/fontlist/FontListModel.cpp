// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/fontlist/FontListModel.h"

#include "state/AppState.h"
#include "ui/common/Drops.h"
#include "ui/common/RowButton.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QHash>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

// A family row's internal id; a face row's is its family's id, never zero.
constexpr quintptr kFamilyRow = 0;
// Past this many ranges of rows come or gone, one layout change costs less than them all.
constexpr qsizetype kMaxRanges = 32;

QString stateWord(ActivationState state)
{
    switch (state) {
    case ActivationState::Active: return QCoreApplication::translate("FontListModel", "active");
    case ActivationState::Session: return QCoreApplication::translate("FontListModel", "active for this session");
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

QString faceKey(const FoundFace &face)
{
    return face.path + u'\x1f' + QString::number(face.faceIndex);
}

bool drawnAlike(const FoundFace &a, const FoundFace &b)
{
    return a.style == b.style && a.postScriptName == b.postScriptName && a.weight == b.weight && a.width == b.width
           && a.italic == b.italic && a.variable == b.variable && a.classification == b.classification
           && a.glyphCount == b.glyphCount;
}

void extend(QList<std::pair<int, int>> &runs, int at)
{
    if (!runs.isEmpty() && runs.last().second == at - 1)
        runs.last().second = at;
    else
        runs.append({at, at});
}

QStringList faceKeys(const QList<FoundFace> &faces)
{
    QStringList keys;
    keys.reserve(faces.size());
    for (const FoundFace &face : faces)
        keys.append(faceKey(face));
    return keys;
}

} // namespace

FontListModel::FontListModel(AppState &state, QObject *parent)
    : QAbstractItemModel(parent)
    , m_state(state)
{
    connect(&state, &AppState::activatedFontsChanged, this, [this] {
        for (const Row &row : m_rows)
            row.state = -1;
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

FontListModel::Ranges FontListModel::diff(const QStringList &before, const QStringList &after)
{
    Ranges ranges;
    QHash<QString, int> at;
    at.reserve(after.size());
    for (int i = 0; i < after.size(); ++i)
        at.insert(after.at(i), i);
    QSet<QString> kept;
    int last = -1;
    for (int i = 0; i < before.size(); ++i) {
        const auto found = at.constFind(before.at(i));
        if (found == at.cend()) {
            extend(ranges.removed, i);
            continue;
        }
        if (*found < last || kept.contains(before.at(i))) {
            ranges.inOrder = false;
            return ranges;
        }
        last = *found;
        kept.insert(before.at(i));
    }
    ranges.inOrder = at.size() == after.size(); // a key twice: not a list this can follow
    for (int i = 0; i < after.size(); ++i) {
        if (!kept.contains(after.at(i)))
            extend(ranges.inserted, i);
    }
    return ranges;
}

void FontListModel::reindex()
{
    m_rowOfId.clear();
    m_rowOfId.reserve(qsizetype(m_rows.size()));
    for (size_t row = 0; row < m_rows.size(); ++row)
        m_rowOfId.insert(m_rows[row].id, int(row));
}

void FontListModel::setAnswer(const FontQueryAnswer &answer, bool samePlace, const QSet<QString> &changedFiles)
{
    m_fileCaptions.clear(); // a file may have changed since
    if (!samePlace || m_rows.empty()) {
        beginResetModel();
        m_rows.clear();
        m_rows.reserve(size_t(answer.families.size()));
        for (const FontFamily &family : answer.families)
            m_rows.push_back(newRow(family));
        reindex();
        endResetModel();
        return;
    }
    if (!applyInPlace(answer, changedFiles))
        applyAsLayoutChange(answer);
}

bool FontListModel::applyInPlace(const FontQueryAnswer &answer, const QSet<QString> &changedFiles)
{
    QStringList before;
    before.reserve(qsizetype(m_rows.size()));
    QHash<QString, int> oldRow;
    for (size_t row = 0; row < m_rows.size(); ++row) {
        before.append(m_rows[row].family.name);
        oldRow.insert(m_rows[row].family.name, int(row));
    }
    QStringList after;
    after.reserve(answer.families.size());
    for (const FontFamily &family : answer.families)
        after.append(family.name);
    const Ranges families = diff(before, after);
    if (!families.inOrder || families.count() > kMaxRanges)
        return false;
    // Every family that stays must keep its faces' order too; worked out before any
    // row moves, so a change this can't follow is left whole to the layout change.
    QHash<int, Ranges> faces; // by new row
    qsizetype ranges = families.count();
    for (int row = 0; row < after.size(); ++row) {
        const auto old = oldRow.constFind(after.at(row));
        if (old == oldRow.cend())
            continue;
        const Ranges changed = diff(faceKeys(m_rows[size_t(*old)].family.faces), faceKeys(answer.families.at(row).faces));
        if (!changed.inOrder)
            return false;
        ranges += changed.count();
        faces.insert(row, changed);
    }
    if (ranges > kMaxRanges)
        return false;

    for (auto run = families.removed.crbegin(); run != families.removed.crend(); ++run) {
        beginRemoveRows({}, run->first, run->second);
        m_rows.erase(m_rows.begin() + run->first, m_rows.begin() + run->second + 1);
        reindex();
        endRemoveRows();
    }
    for (const auto &[first, last] : families.inserted) {
        beginInsertRows({}, first, last);
        std::vector<Row> added;
        for (int row = first; row <= last; ++row)
            added.push_back(newRow(answer.families.at(row)));
        m_rows.insert(m_rows.begin() + first, std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
        reindex();
        endInsertRows();
    }
    for (auto it = faces.cbegin(); it != faces.cend(); ++it)
        applyFaces(it.key(), answer.families.at(it.key()).faces, it.value(), changedFiles);
    return true;
}

void FontListModel::applyFaces(int row, const QList<FoundFace> &faces, const Ranges &ranges,
                               const QSet<QString> &changedFiles)
{
    const QModelIndex family = index(row, 0);
    Row &shown = m_rows[size_t(row)];
    for (auto run = ranges.removed.crbegin(); run != ranges.removed.crend(); ++run) {
        beginRemoveRows(family, run->first, run->second);
        shown.family.faces.remove(run->first, run->second - run->first + 1);
        endRemoveRows();
    }
    for (const auto &[first, last] : ranges.inserted) {
        beginInsertRows(family, first, last);
        shown.family.faces.insert(first, last - first + 1, FoundFace());
        for (int at = first; at <= last; ++at)
            shown.family.faces[at] = faces.at(at);
        endInsertRows();
    }
    // Now the same faces in the same order; what they show may still differ (a file read
    // again: a new version, a style renamed, another drawing).
    QList<int> redrawn;
    for (int at = 0; at < faces.size(); ++at) {
        if (!drawnAlike(shown.family.faces.at(at), faces.at(at)) || changedFiles.contains(faces.at(at).path))
            redrawn.append(at);
    }
    shown.family = FontFamily{shown.family.name, faces}; // the answer's own list, shared
    for (const int at : std::as_const(redrawn))
        Q_EMIT dataChanged(index(at, 0, family), index(at, 0, family));
    if (!ranges.isEmpty() || !redrawn.isEmpty()) {
        shown.state = -1;
        Q_EMIT dataChanged(family, family);
    }
}

void FontListModel::applyAsLayoutChange(const FontQueryAnswer &answer)
{
    // Every row the views hold on to (the chosen row, open families, the current row)
    // moves to where its family or face now is; rows that are gone let go.
    const QModelIndexList kept = persistentIndexList();
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    struct Place
    {
        QString family;
        QString face; // its key; empty for a family row
    };
    QList<Place> places;
    places.reserve(kept.size());
    for (const QModelIndex &index : kept) {
        const FontFamily *family = familyOf(index);
        const FoundFace *face = index.internalId() == kFamilyRow ? nullptr : faceOf(index);
        places.append({family ? family->name : QString(), face ? faceKey(*face) : QString()});
    }
    QHash<QString, quint32> ids; // a family keeps its id: its open faces stay its own
    for (const Row &row : m_rows)
        ids.insert(row.family.name, row.id);
    m_rows.clear();
    m_rows.reserve(size_t(answer.families.size()));
    QHash<QString, int> familyRows;
    for (const FontFamily &family : answer.families) {
        const auto id = ids.constFind(family.name);
        familyRows.insert(family.name, int(m_rows.size()));
        m_rows.push_back(id == ids.cend() ? newRow(family) : Row{family, *id});
    }
    reindex();
    QModelIndexList moved;
    moved.reserve(kept.size());
    for (const Place &place : std::as_const(places)) {
        const int familyRow = familyRows.value(place.family, -1);
        if (familyRow < 0) {
            moved.append(QModelIndex());
            continue;
        }
        if (place.face.isEmpty()) {
            moved.append(createIndex(familyRow, 0, kFamilyRow));
            continue;
        }
        const QList<FoundFace> &faces = m_rows[size_t(familyRow)].family.faces;
        const auto face = std::find_if(faces.cbegin(), faces.cend(), [&](const FoundFace &f) { return faceKey(f) == place.face; });
        moved.append(face == faces.cend() ? QModelIndex()
                                          : createIndex(int(face - faces.cbegin()), 0, quintptr(m_rows[size_t(familyRow)].id)));
    }
    changePersistentIndexList(kept, moved);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

QModelIndex FontListModel::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0 || row < 0)
        return {};
    if (!parent.isValid())
        return size_t(row) < m_rows.size() ? createIndex(row, 0, kFamilyRow) : QModelIndex();
    if (parent.internalId() != kFamilyRow || size_t(parent.row()) >= m_rows.size())
        return {};
    const Row &family = m_rows[size_t(parent.row())];
    return row < family.family.faces.size() ? createIndex(row, 0, quintptr(family.id)) : QModelIndex();
}

QModelIndex FontListModel::parent(const QModelIndex &child) const
{
    if (!child.isValid() || child.internalId() == kFamilyRow)
        return {};
    const int row = m_rowOfId.value(quint32(child.internalId()), -1);
    return row < 0 ? QModelIndex() : createIndex(row, 0, kFamilyRow);
}

int FontListModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return int(m_rows.size());
    if (parent.internalId() != kFamilyRow || size_t(parent.row()) >= m_rows.size())
        return 0;
    return int(m_rows[size_t(parent.row())].family.faces.size());
}

int FontListModel::columnCount(const QModelIndex &) const
{
    return 1;
}

const FontListModel::Row *FontListModel::rowOf(const QModelIndex &index) const
{
    if (!index.isValid())
        return nullptr;
    const int row = index.internalId() == kFamilyRow ? index.row() : m_rowOfId.value(quint32(index.internalId()), -1);
    return row >= 0 && size_t(row) < m_rows.size() ? &m_rows[size_t(row)] : nullptr;
}

const FontFamily *FontListModel::familyOf(const QModelIndex &index) const
{
    const Row *row = rowOf(index);
    return row ? &row->family : nullptr;
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
    const Row *family = index.isValid() && index.internalId() == kFamilyRow ? rowOf(index) : nullptr;
    if (family && family->state >= 0)
        return ActivationState(family->state);
    const QStringList paths = pathsOf(index);
    const auto active = std::count_if(paths.cbegin(), paths.cend(),
                                      [&](const QString &path) { return m_state.activatedFonts().contains(path); });
    // Every file active for this session only: the row says so.
    const bool forNow = active == paths.size() && active > 0
                        && std::all_of(paths.cbegin(), paths.cend(), [&](const QString &path) { return m_state.isSessionFont(path); });
    const ActivationState state = active == 0                ? ActivationState::Inactive
                                  : forNow                   ? ActivationState::Session
                                  : active == paths.size() ? ActivationState::Active
                                                           : ActivationState::Mixed;
    if (family)
        family->state = qint8(state);
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
        return isFamily ? styles(family->faces.size()) : m_showsFiles ? fileCaption(face->path) : QString();
    case Qt::AccessibleDescriptionRole:
        if (isFamily)
            return QString(styles(family->faces.size()) + u", "_s + stateWord(activation(index)));
        return m_showsFiles ? QString(fileCaption(face->path) + u", "_s + stateWord(activation(index)))
                            : stateWord(activation(index));
    case PostScriptRole:
        return face->postScriptName;
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

void FontListModel::setShowsFiles(bool shows)
{
    if (m_showsFiles == shows)
        return;
    beginResetModel(); // every face row's caption changes
    m_showsFiles = shows;
    m_fileCaptions.clear();
    endResetModel();
}

QString FontListModel::fileCaption(const QString &path) const
{
    const auto known = m_fileCaptions.constFind(path);
    if (known != m_fileCaptions.cend())
        return *known;
    // Only the rows painted ask, once each: the files were just read by the catalogue.
    const QFileInfo file(path);
    const QLocale locale;
    // Size and date first: they tell two copies apart, and a long folder is cut at the end.
    const QString caption = QCoreApplication::translate("FontListModel", "%1 \u00b7 modified %2 \u00b7 %3")
                                .arg(locale.formattedDataSize(file.size()),
                                     locale.toString(file.lastModified(), QLocale::ShortFormat),
                                     QDir::toNativeSeparators(file.absolutePath()));
    m_fileCaptions.insert(path, caption);
    return caption;
}

QStringList FontListModel::pathsWithPostScriptName(const QString &name) const
{
    QStringList paths;
    for (const Row &row : m_rows) {
        for (const FoundFace &face : row.family.faces) {
            if (face.postScriptName == name && !paths.contains(face.path))
                paths.append(face.path);
        }
    }
    return paths;
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
