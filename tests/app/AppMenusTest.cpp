// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"
#include "ViewTestSupport.h"

#include "AppMenus.h"
#include "Assembly.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/window/MainWindow.h"
#include "ui/sidebar/SidebarView.h"

#include <QApplication>
#include <QMenuBar>
#include <QAbstractButton>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

struct Item
{
    QString text;
    QStringList keys;
};

QList<Item> itemsOf(QMenu *menu)
{
    QList<Item> items;
    for (QAction *action : menu->actions()) {
        QStringList keys;
        for (const QKeySequence &key : action->shortcuts())
            keys << key.toString(QKeySequence::PortableText);
        items.append({action->isSeparator() ? u"-"_s : QString(action->text()).remove(u'&'), keys});
        EXPECT_TRUE(action->isEnabled()) << action->text().toStdString();
    }
    return items;
}

class Menus : public testing::Test
{
protected:
    void SetUp() override
    {
        QApplication::setApplicationVersion(u"0.1"_s);
        window = std::make_unique<MainWindow>(Assembly::store(std::make_unique<InstantActivation>()));
        AppMenus::install(*window);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isIndexing(); }));
    }
    AppState &store() { return window->state(); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }

    std::unique_ptr<MainWindow> window;
};

} // namespace

// The three menus hold their items in order, with their shortcuts, none disabled, and
// nothing that could hide the sidebar.
TEST_F(Menus, HoldTheirItemsAndShortcuts)
{
    const QList<QAction *> menus = window->menuBar()->actions();
    ASSERT_EQ(menus.size(), 3);
    const auto texts = [](const QList<Item> &items) {
        QStringList list;
        for (const Item &item : items)
            list << item.text + u" "_s + item.keys.join(u'|');
        return list;
    };
    EXPECT_EQ(texts(itemsOf(menus[0]->menu())),
              (QStringList{u"Add Font Folder... Ctrl+O"_s, u"New Collection Ctrl+Shift+N"_s, u"- "_s,
                           u"Refresh Sources Ctrl+R|F5"_s, u"- "_s, u"Quit Ctrl+Q"_s}));
    EXPECT_EQ(texts(itemsOf(menus[1]->menu())),
              (QStringList{u"Deactivate All Fonts Ctrl+Shift+D"_s, u"- "_s, u"Copy Fonts for Sandboxed Apps "_s,
                           u"Keep Session Fonts Until Logout "_s}));
    EXPECT_EQ(texts(itemsOf(menus[2]->menu())), QStringList{u"About Morvane "_s});
    EXPECT_EQ(menus[0]->text(), u"&File"_s);
    EXPECT_EQ(menus[1]->text(), u"&Edit"_s);
    EXPECT_EQ(menus[2]->text(), u"&Help"_s);
}

// Each shortcut does its command: the chooser's folders become sources in its order
// (a cancel adds none), new collections, a refresh, and deactivating everything.
TEST_F(Menus, ShortcutsRunTheirCommands)
{
    QStringList chosen;
    window->sidebar().setFolderChooser([&] { return chosen; });
    press(Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(store().sources().isEmpty()) << "cancelled";
    const QString root = TestSupport::testRoot();
    chosen = {TestSupport::makeDir(root + u"/C"_s), TestSupport::makeDir(root + u"/A"_s),
              TestSupport::makeDir(root + u"/B"_s)};
    TestSupport::writeFile(root + u"/A/a.ttf"_s);
    TestSupport::writeFile(root + u"/B/b.ttf"_s);
    press(Qt::Key_O, Qt::ControlModifier);
    ASSERT_EQ(store().sources().size(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(store().sources().at(i).path, chosen.at(i));

    press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(store().collections().size(), 2);
    EXPECT_TRUE(store().collections().at(0).name.startsWith(u"New Collection"_s));

    ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isIndexing(); }, 20'000));
    for (Qt::Key key : {Qt::Key_R, Qt::Key_F5}) {
        press(key, key == Qt::Key_R ? Qt::ControlModifier : Qt::NoModifier);
        EXPECT_TRUE(store().isIndexing()) << "refresh by " << key;
        ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isIndexing(); }, 20'000));
    }

    for (const QString &folder : {u"/A"_s, u"/B"_s}) {
        store().toggleActivation(FontNode::folder(root + folder));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isProcessing(); }));
    }
    ASSERT_EQ(store().activatedFonts().size(), 2);
    press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return store().activatedFonts().isEmpty() && !store().isProcessing(); }));
}

// "About Morvane" names the version, the licence and where the library is kept.
TEST_F(Menus, AboutSaysVersionLicenceAndDataFolder)
{
    const QString text = AppMenus::aboutText();
    EXPECT_TRUE(text.contains(u"Morvane 0.1"_s));
    EXPECT_TRUE(text.contains(u"GNU General Public License"_s));
    EXPECT_TRUE(text.contains(PersistenceService::defaultStorageFolder()));
    QString shown;
    QTimer::singleShot(0, window.get(), [&] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            shown = box->text();
            box->accept();
        }
    });
    window->menuBar()->actions().at(2)->menu()->actions().at(0)->trigger();
    EXPECT_EQ(shown, text);
}

// Quit closes the window, and closing the one window ends the program's event loop.
TEST_F(Menus, QuitEndsTheProgram)
{
    bool timedOut = false;
    QTimer::singleShot(0, window.get(), [&] { press(Qt::Key_Q, Qt::ControlModifier); });
    QTimer::singleShot(10'000, qApp, [&] {
        timedOut = true;
        QApplication::exit(1);
    });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_FALSE(timedOut);
    EXPECT_FALSE(window->isVisible());
}


// Copies cost space: the user hears how much before any is made, Cancel leaves things
// as they were, and the choice is saved.
TEST_F(Menus, CopyingFontsForSandboxedAppsAsksFirst)
{
    QAction *copies = window->menuBar()->actions().at(1)->menu()->actions().at(2);
    ASSERT_EQ(QString(copies->text()).remove(u'&'), u"Copy Fonts for Sandboxed Apps"_s);
    {
        const std::shared_ptr<QString> cancel = answerNextQuestion(u"Cancel"_s);
        copies->trigger();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !cancel->isEmpty() && !copies->isChecked(); }));
        EXPECT_TRUE(cancel->contains(u"0 bytes"_s)) << cancel->toStdString(); // nothing active needs one
        EXPECT_FALSE(store().copiesForSandboxes());
    }
    const std::shared_ptr<QString> copy = answerNextQuestion(u"Copy Fonts"_s);
    copies->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !copy->isEmpty() && store().copiesForSandboxes() && !store().isProcessing(); }));
    EXPECT_TRUE(copies->isChecked());
    window.reset(); // the preferences are written at quit at the latest
    EXPECT_TRUE(PersistenceService().copiesForSandboxes());
}
