// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class AppState;
class QWidget;
struct FolderSource;
struct FontCollection;

// Questions asked before an action that can't be taken back, naming what it costs.
// Each asks once the event that led here is over (a menu is closing), and runs `act`
// only when the user confirms; Escape and Cancel leave everything as it was.
namespace Confirmations {

void removeSource(QWidget *parent, const AppState &state, const FolderSource &source, std::function<void()> act);
void deleteCollection(QWidget *parent, const FontCollection &collection, std::function<void()> act);

} // namespace Confirmations
