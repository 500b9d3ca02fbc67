// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppMenus.h"

#include "ui/common/Mnemonics.h"

#include "services/FontActivationService.h"

#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/window/MainWindow.h"

#include <QCoreApplication>
#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QStandardPaths>

namespace {
// The context its texts are translated in.
struct MenuText
{
    Q_DECLARE_TR_FUNCTIONS(MenuText)
};
} // namespace

using namespace Qt::StringLiterals;

namespace {

QAction *addCommand(QMenu *menu, const QString &title, const QList<QKeySequence> &keys)
{
    QAction *action = menu->addAction(title);
    action->setShortcuts(keys);
    action->setShortcutContext(Qt::ApplicationShortcut);
    return action;
}

void fillFile(QMenu *file, MainWindow &window)
{
    QAction *add = addCommand(file, u"Add Font Folder..."_s, {QKeySequence(u"Ctrl+O"_s)});
    QObject::connect(add, &QAction::triggered, &window, &MainWindow::addFolders);
    QAction *collection = addCommand(file, u"New Collection"_s, {QKeySequence(u"Ctrl+Shift+N"_s)});
    QObject::connect(collection, &QAction::triggered, &window,
                     [&window] { window.state().createCollection(); });
    file->addSeparator();
    QAction *refresh = addCommand(file, u"Refresh Sources"_s, {QKeySequence(u"Ctrl+R"_s), QKeySequence(Qt::Key_F5)});
    QObject::connect(refresh, &QAction::triggered, &window, [&window] { window.state().refreshFileSystem(); });
    file->addSeparator();
    QAction *quit = addCommand(file, u"Quit"_s, {QKeySequence(u"Ctrl+Q"_s)});
    quit->setMenuRole(QAction::NoRole);
    QObject::connect(quit, &QAction::triggered, &window, &QWidget::close);
}

} // namespace

namespace AppMenus {

QString aboutText()
{
    return u"<p><b>Morvane %1</b></p>"
           u"<p>A font manager for Linux: browse folders of fonts, activate them for every "
           u"application, group them into collections.</p>"
           u"<p>Free software under the GNU General Public License, version 3 or later.</p>"
           u"<p>Morvane keeps its library in <tt>%2</tt> and the fonts it activates in <tt>%3</tt>.</p>"_s
        .arg(QCoreApplication::applicationVersion(), PersistenceService::defaultStorageFolder().toHtmlEscaped(),
             FontActivationService::defaultLinkFolder().toHtmlEscaped());
}

void install(MainWindow &window)
{
    QMenuBar *bar = window.menuBar();
    fillFile(bar->addMenu(u"&File"_s), window);
    QMenu *edit = bar->addMenu(u"&Edit"_s);
    QAction *deactivate = addCommand(edit, u"Deactivate All Fonts"_s, {QKeySequence(u"Ctrl+Shift+D"_s)});
    // Returns at once; the job reports through the window's progress card.
    QObject::connect(deactivate, &QAction::triggered, &window, [&window] { window.state().deactivateAllFonts(); });
    QMenu *help = bar->addMenu(u"&Help"_s);
    QAction *about = help->addAction(MenuText::tr("About Morvane"));
    about->setMenuRole(QAction::NoRole);
    QObject::connect(about, &QAction::triggered, &window,
                     [&window] { QMessageBox::about(&window, MenuText::tr("About Morvane"), aboutText()); });
    for (QAction *menu : bar->actions()) {
        if (menu->menu())
            Mnemonics::assign(menu->menu());
    }
}

} // namespace AppMenus
