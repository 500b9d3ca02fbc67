// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QSet>

#include <type_traits>

// The steps that bring a list model from the rows it shows to the rows it should show,
// one row at a time, so views keep their selection, current row, open editor and
// scroll position: rows gone are removed, rows that changed place are moved up to
// where they belong, new rows are inserted. Rows are named by a key that stays the
// same while the thing they show lives (an id, a path).
namespace RowSync {

struct Step
{
    enum Kind { Remove, Move, Insert } kind;
    int row;  // Remove: the row; Move: where it comes from; Insert: where it goes
    int to;   // Move: its new place (always above where it comes from); else unused
    bool operator==(const Step &) const = default;
};

template <typename Key>
QList<Step> steps(QList<Key> shown, const QList<Key> &wanted)
{
    QList<Step> result;
    const QSet<Key> kept(wanted.begin(), wanted.end());
    for (int row = static_cast<int>(shown.size()) - 1; row >= 0; --row) {
        if (!kept.contains(shown.at(row))) {
            result.append({Step::Remove, row, 0});
            shown.removeAt(row);
        }
    }
    for (int row = 0; row < wanted.size(); ++row) {
        if (row < shown.size() && shown.at(row) == wanted.at(row))
            continue;
        const int from = static_cast<int>(shown.indexOf(wanted.at(row), row));
        if (from >= 0) {
            result.append({Step::Move, from, row});
            shown.move(from, row);
        } else {
            result.append({Step::Insert, row, 0});
            shown.insert(row, wanted.at(row));
        }
    }
    return result;
}

} // namespace RowSync

// A list model that follows its store by the steps above instead of resetting.
class SyncedListModel : public QAbstractListModel
{
public:
    using QAbstractListModel::QAbstractListModel;

protected:
    // Brings `shown` (the rows offset .. offset + size - 1) to `wanted`, telling the views
    // each step as it is taken, then takes the wanted rows' contents and reports the rows
    // whose contents changed. `keyOf` names a row; `same` says two contents look alike.
    template <typename Item, typename KeyOf, typename Same>
    void syncRows(QList<Item> &shown, const QList<Item> &wanted, KeyOf keyOf, Same same, int offset = 0)
    {
        using Key = std::decay_t<decltype(keyOf(wanted.first()))>;
        QList<Key> from, to;
        for (const Item &item : std::as_const(shown))
            from.append(keyOf(item));
        for (const Item &item : wanted)
            to.append(keyOf(item));
        for (const RowSync::Step &step : RowSync::steps(from, to)) {
            switch (step.kind) {
            case RowSync::Step::Remove:
                beginRemoveRows({}, offset + step.row, offset + step.row);
                shown.removeAt(step.row);
                endRemoveRows();
                break;
            case RowSync::Step::Move:
                beginMoveRows({}, offset + step.row, offset + step.row, {}, offset + step.to);
                shown.move(step.row, step.to);
                endMoveRows();
                break;
            case RowSync::Step::Insert:
                beginInsertRows({}, offset + step.row, offset + step.row);
                shown.insert(step.row, wanted.at(step.row));
                endInsertRows();
                break;
            }
        }
        for (qsizetype row = 0; row < wanted.size(); ++row) {
            if (!same(shown.at(row), wanted.at(row))) {
                shown[row] = wanted.at(row);
                const QModelIndex changed = index(offset + static_cast<int>(row));
                Q_EMIT dataChanged(changed, changed);
            }
        }
    }
};
