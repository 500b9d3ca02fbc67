#pragma once

#include "model/FolderSource.h"
#include "model/FontNode.h"

#include <QDBusConnection>
#include <QString>

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
// "License Status" with one checkable item per status, the file's current one checked.
void addLicenseMenu(QMenu *menu, AppState &state, const QString &path);

// Shows the file selected in the desktop's file manager (FileManager1.ShowItems over
// D-Bus); where no file manager answers, opens the folder holding it.
void revealInFileManager(const QString &path, const QDBusConnection &bus = QDBusConnection::sessionBus());

} // namespace ContextMenus
