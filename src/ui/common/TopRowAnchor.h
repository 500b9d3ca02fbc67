// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QAbstractItemView;

// Keeps the row at the top of a list where it is when rows are inserted or removed
// above it (a refresh bringing a font into a folder): the list otherwise shows the row
// that moved into its old place. Follows the view's model as it is now.
namespace TopRowAnchor {

void install(QAbstractItemView *view);

} // namespace TopRowAnchor
