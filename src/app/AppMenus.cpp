// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppMenus.h"

#include "ui/common/Mnemonics.h"

#include "services/FontActivationService.h"

#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/window/MainWindow.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
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
    QAction *add = addCommand(file, MenuText::tr("Add Font Folder..."), {QKeySequence(u"Ctrl+O"_s)});
    QObject::connect(add, &QAction::triggered, &window, &MainWindow::addFolders);
    QAction *collection = addCommand(file, MenuText::tr("New Collection"), {QKeySequence(u"Ctrl+Shift+N"_s)});
    QObject::connect(collection, &QAction::triggered, &window,
                     [&window] { window.state().createCollection(); });
    file->addSeparator();
    QAction *refresh = addCommand(file, MenuText::tr("Refresh Sources"), {QKeySequence(u"Ctrl+R"_s), QKeySequence(Qt::Key_F5)});
    QObject::connect(refresh, &QAction::triggered, &window, [&window] { window.state().refreshFileSystem(AppState::Refresh::Everything); });
    file->addSeparator();
    QAction *quit = addCommand(file, MenuText::tr("Quit"), {QKeySequence(u"Ctrl+Q"_s)});
    quit->setMenuRole(QAction::NoRole);
    QObject::connect(quit, &QAction::triggered, &window, &QWidget::close);
}

// Copies cost space, so the user hears how much before any is made; taking them away
// frees it and needs no question.
QCoro::Task<> toggleCopies(QPointer<MainWindow> window, QPointer<AppState> state, QPointer<QAction> action)
{
    const bool wanted = action->isChecked();
    if (wanted) {
        const qint64 bytes = co_await state->spaceForCopies();
        if (!window || !state || !action)
            co_return;
        QMessageBox ask(QMessageBox::Question, MenuText::tr("Copy fonts for sandboxed apps?"),
                        MenuText::tr("Copy fonts for sandboxed apps?"), QMessageBox::Cancel, window);
        ask.setInformativeText(
            MenuText::tr("Apps installed from Flathub see your font folder but not the folders Morvane links into "
                         "when they are on another drive. Morvane copies those fonts into your font folder instead: "
                         "the copies take %1 now, and more as you activate fonts from other drives.")
                .arg(QLocale().formattedDataSize(bytes)));
        QPushButton *copy = ask.addButton(MenuText::tr("Copy Fonts"), QMessageBox::AcceptRole);
        ask.setDefaultButton(copy);
        ask.exec();
        if (!window || !state || !action)
            co_return;
        if (ask.clickedButton() != copy) {
            action->setChecked(false);
            co_return;
        }
    }
    state->setCopiesForSandboxes(wanted); // the progress card follows it
}

} // namespace

namespace AppMenus {

QString aboutText()
{
    return MenuText::tr("<p><b>Morvane %1</b></p>"
           "<p>A font manager for Linux: browse folders of fonts, activate them for every "
           "application, group them into collections.</p>"
           "<p>Free software under the GNU General Public License, version 3 or later.</p>"
           "<p>Morvane keeps its library in <tt>%2</tt> and the fonts it activates in <tt>%3</tt>.</p>")
        .arg(QCoreApplication::applicationVersion(), PersistenceService::defaultStorageFolder().toHtmlEscaped(),
             FontActivationService::defaultLinkFolder().toHtmlEscaped());
}

void install(MainWindow &window)
{
    QMenuBar *bar = window.menuBar();
    fillFile(bar->addMenu(MenuText::tr("&File")), window);
    QMenu *edit = bar->addMenu(MenuText::tr("&Edit"));
    QAction *deactivate = addCommand(edit, MenuText::tr("Deactivate All Fonts"), {QKeySequence(u"Ctrl+Shift+D"_s)});
    // Returns at once; the job reports through the window's progress card.
    QObject::connect(deactivate, &QAction::triggered, &window, [&window] { window.state().deactivateAllFonts(); });
    edit->addSeparator();
    QAction *copies = edit->addAction(MenuText::tr("Copy Fonts for Sandboxed Apps"));
    copies->setCheckable(true);
    copies->setChecked(window.state().copiesForSandboxes());
    QObject::connect(copies, &QAction::triggered, &window,
                     [&window, copies] { toggleCopies(&window, &window.state(), copies); });
    QAction *untilLogout = edit->addAction(MenuText::tr("Keep Session Fonts Until Logout"));
    untilLogout->setCheckable(true);
    untilLogout->setChecked(window.state().sessionFontsLastUntilLogout());
    QObject::connect(untilLogout, &QAction::toggled, &window,
                     [&window](bool checked) { window.state().setSessionFontsLastUntilLogout(checked); });
    // A running batch turns the change down: the mark shows what holds.
    QObject::connect(edit, &QMenu::aboutToShow, copies, [&window, copies] { copies->setChecked(window.state().copiesForSandboxes()); });
    QMenu *help = bar->addMenu(MenuText::tr("&Help"));
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
