// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CollectionRecords.h"
#include "model/FolderSource.h"
#include "model/FontNode.h"

#include <QDBusConnection>
#include <QString>

#include <functional>

class AppState;
class QMenu;
class QWidget;

// The right-click menus, built anew from the store's current state at every click.
// Each action is a lambda owned by the menu, so the chosen one runs before the menu
// and its actions are freed. The caller shows the menu and deletes it.
namespace ContextMenus {

// For a font or folder row of the browser.
QMenu *buildNodeMenu(AppState &state, const FontNode &node, QWidget *parent);
// For a source row of the sidebar.
QMenu *buildSourceMenu(AppState &state, const FolderSource &source, QWidget *parent);
// For a collection row of the sidebar; "Rename" and "Set Custom Icon…" call back the
// view, which edits the row or asks for the file.
QMenu *buildCollectionMenu(AppState &state, const FontCollection &collection, QWidget *parent,
                           const std::function<void()> &rename, const std::function<void()> &pickIcon);
// For a member row of the collection view.
QMenu *buildMemberMenu(AppState &state, const CollectionMember &member, const QUuid &collectionId, QWidget *parent);
// "License Status" with one checkable item per status, the file's current one checked.
void addLicenseMenu(QMenu *menu, AppState &state, const QString &path);

// Shows the file selected in the desktop's file manager (FileManager1.ShowItems over
// D-Bus); where no file manager answers, opens the folder holding it; where nothing
// can open that either, the store's message says so.
void revealInFileManager(AppState &state, const QString &path,
                         const QDBusConnection &bus = QDBusConnection::sessionBus());

} // namespace ContextMenus
