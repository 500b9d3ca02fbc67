// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "state/AppState.h"

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
// Before an activation that would make two active files claim one PostScript name:
// "Replace" (the default), "Keep Both", or Cancel (Escape). Asked at once, as the store
// waits for the answer.
AppState::ConflictChoice activationConflicts(QWidget *parent, const QList<AppState::ActivationConflict> &conflicts);

} // namespace Confirmations
