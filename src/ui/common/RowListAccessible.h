// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Qt>

class QAbstractItemView;

// What a screen reader hears of our row lists (browser columns, sidebar lists, search
// hits, collection members). Qt 6.4's own item-view cells say "checked" at most: these
// rows are checkable, checked, unchecked or mixed as their activation button is (read
// from Qt::CheckStateRole), folder rows are expandable and expanded while open, and a
// row's actions are "Toggle" (its button) and "Press" (choosing the row, as a click).
namespace RowListAccessible {

// Rows that answer true to this role are folders: expandable, expanded while selected.
constexpr int ExpandableRole = Qt::UserRole + 900;

// Makes the list speak this way; call from its constructor. The view's delegate has an
// `activationClicked(QModelIndex)` signal, which "Toggle" emits; "Press" calls the view's
// invokable `chooseRow(QModelIndex)` where it has one, else selects the row.
void enable(QAbstractItemView *view);

} // namespace RowListAccessible
