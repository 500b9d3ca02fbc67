// SPDX-License-Identifier: GPL-3.0-or-later
// Every view that switches fonts takes the store's one guarded, saving road: driven with
// keys and clicks in the real window on the system's fontconfig, each leaves the store,
// "activated_fonts.json", our link folder and fc-list in agreement, and so does the next
// start.
#include "AppMenus.h"
#include "TestSupport.h"
#include "WindowFixture.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/browser/SingleColumnView.h"
#include "ui/fontlist/FontListModel.h"
#include "ui/fontlist/FontListView.h"
#include "ui/search/SearchResultsView.h"
#include "ui/sidebar/LibraryList.h"
#include "ui/sidebar/SidebarList.h"
#include "ui/sidebar/SidebarView.h"
#include "ui/window/MainWindow.h"
#include "ui/window/ToolbarInputField.h"

#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <functional>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

QString linkFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts/Morvane"_s;
}

// What our links point at: the link tree's own word, beside the saved list and fc-list.
QSet<QString> linkedFonts()
{
    QSet<QString> fonts;
    for (const QString &link : TestSupport::linkEntries(linkFolder()))
        fonts.insert(TestSupport::fontOfLink(link));
    return fonts;
}

std::unique_ptr<MainWindow> start()
{
    auto window = WindowFixture::openWindow(std::make_unique<FontActivationService>());
    AppMenus::install(*window); // "Deactivate All Fonts" is the menu bar's
    // Keys go to the focused widget of the active window: the window must be active.
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    return window;
}

bool idle(MainWindow &window)
{
    return QTest::qWaitFor([&] { return !window.state().isProcessing() && !window.state().isIndexing(); }, 60'000);
}

QPushButton *buttonNamed(QWidget *in, const QString &text)
{
    for (QPushButton *button : in->findChildren<QPushButton *>()) {
        if (button->isVisible() && button->text().remove(u'&') == text)
            return button;
    }
    return nullptr;
}

// The menu bar's command, by its text, as its shortcut or a click would run it.
void menuCommand(MainWindow &window, const QString &text)
{
    for (QAction *menu : window.menuBar()->actions()) {
        for (QAction *command : menu->menu()->actions()) {
            if (command->text().remove(u'&') == text) {
                command->trigger();
                return;
            }
        }
    }
    ADD_FAILURE() << "no menu command " << text.toStdString();
}

// Opens the context menu of the focused widget with Shift+F10 and triggers its first item.
void firstMenuItem(QWidget *owner)
{
    QMenu *menu = nullptr;
    QTimer::singleShot(0, [&] {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F10, Qt::ShiftModifier);
        menu = owner->findChild<QMenu *>();
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return menu && menu->isVisible(); }, 20'000));
    menu->actions().first()->trigger();
    menu->close();
}

class OneRoad : public testing::Test
{
public:
    void SetUp() override
    {
        library = makeDir(testRoot() + u"/Fonts"_s);
        const QString dejavu = u"/usr/share/fonts/truetype/dejavu/"_s;
        for (const QString &name : {u"DejaVuSans.ttf"_s, u"DejaVuSans-Bold.ttf"_s, u"DejaVuSerif.ttf"_s})
            ASSERT_TRUE(QFile::copy(dejavu + name, makeDir(library + u"/DejaVu"_s) + u'/' + name));
        ASSERT_TRUE(QFile::copy(dejavu + u"DejaVuSansMono.ttf"_s, makeDir(library + u"/Mono"_s) + u"/DejaVuSansMono.ttf"_s));
        WindowFixture::saveOneSource(library);
    }

    QString font(const QString &relative) const { return library + u'/' + relative; }
    QSet<QString> folder(const QString &name) const
    {
        QSet<QString> fonts;
        QDirIterator it(library + u'/' + name, {u"*.ttf"_s}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            fonts.insert(it.next());
        return fonts;
    }

    // Store, saved list, link tree and fontconfig say the same.
    void expectAgreement(MainWindow &window, const QSet<QString> &expected, const char *when)
    {
        ASSERT_TRUE(window.finishBackgroundWork(30'000)); // its saves are on disk
        EXPECT_EQ(window.state().activatedFonts(), expected) << when;
        EXPECT_EQ(PersistenceService().loadActivatedFonts(), expected) << when;
        EXPECT_EQ(linkedFonts(), expected) << when;
        EXPECT_EQ(fontsListedByFontconfig(linkFolder()), expected) << when;
    }

    QString library;
};

} // namespace

TEST_F(OneRoad, EveryViewsActivationIsSavedAndSurvivesARestart)
{
    struct Road
    {
        const char *view;
        std::function<void(MainWindow &)> act; // what the user does, keys and clicks
        std::function<QSet<QString>(const OneRoad &)> expected;
    };
    const Road roads[] = {
        {"a family in the font list (Space)",
         [](MainWindow &window) {
             LibraryList *libraryList = window.sidebar().libraryList();
             QTest::mouseClick(libraryList->viewport(), Qt::LeftButton, {},
                               libraryList->visualRect(libraryList->model()->index(int(LibraryView::AllFonts), 0)).center());
             ASSERT_TRUE(QTest::qWaitFor([&] { return window.fontList() && !window.fontList()->isQuerying() &&
                                                      window.fontList()->model()->rowCount() == 3; }, 30'000));
             FontListTree *tree = window.fontList()->tree();
             tree->setFocus();
             tree->setCurrentIndex(window.fontList()->model()->index(0, 0)); // DejaVu Sans
             QTest::keyClick(tree, Qt::Key_Space);
             QTest::keyClick(tree, Qt::Key_Space); // a second press while the first runs is ignored
         },
         [](const OneRoad &t) { return QSet<QString>{t.font(u"DejaVu/DejaVuSans.ttf"_s), t.font(u"DejaVu/DejaVuSans-Bold.ttf"_s)}; }},
        {"a folder in the browser (Space)",
         [](MainWindow &window) {
             SingleColumnView *column = window.browser().columns().value(0);
             column->setFocus();
             QTest::keyClick(column, Qt::Key_Down); // DejaVu
             QTest::keyClick(column, Qt::Key_Space);
         },
         [](const OneRoad &t) { return t.folder(u"DejaVu"_s); }},
        {"a source in the sidebar (Space)",
         [](MainWindow &window) {
             SidebarList *sources = window.sidebar().sourcesList();
             sources->setFocus(Qt::OtherFocusReason);
             QTest::keyClick(sources, Qt::Key_Space);
         },
         [](const OneRoad &t) { return t.folder(QString()); }},
        {"a source's menu (Shift+F10)",
         [](MainWindow &window) {
             SidebarList *sources = window.sidebar().sourcesList();
             sources->setFocus(Qt::OtherFocusReason);
             firstMenuItem(sources);
         },
         [](const OneRoad &t) { return t.folder(QString()); }},
        {"a collection in the sidebar (Space)",
         [](MainWindow &window) {
             AppState &store = window.state();
             store.createCollection(u"Serif"_s); // made beforehand; the road is the key
             store.addToCollection(store.collections().first().id, FontNode::fontFile(testRoot() + u"/Fonts/DejaVu/DejaVuSerif.ttf"_s));
             SidebarList *collections = window.sidebar().collectionsList();
             collections->setFocus(Qt::OtherFocusReason);
             collections->setCurrentIndex(collections->model()->index(0, 0));
             QTest::keyClick(collections, Qt::Key_Space);
         },
         [](const OneRoad &t) { return QSet<QString>{t.font(u"DejaVu/DejaVuSerif.ttf"_s)}; }},
        {"a search hit (Space)",
         [](MainWindow &window) {
             QLineEdit *field = window.searchField().lineEdit();
             field->setFocus();
             QTest::keyClicks(field, u"mono"_s);
             ASSERT_TRUE(QTest::qWaitFor([&] { return window.state().searchResults().size() == 1; }, 10'000));
             QTest::keyClick(field, Qt::Key_Down); // on to the hits
             QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
         },
         [](const OneRoad &t) { return t.folder(u"Mono"_s); }},
        {"the preview pane's Activate",
         [](MainWindow &window) {
             SingleColumnView *column = window.browser().columns().value(0);
             column->setFocus();
             QTest::keyClick(column, Qt::Key_Up); // Mono, the last folder
             QTest::keyClick(column, Qt::Key_Right); // its font, shown in the preview
             QPushButton *activate = nullptr;
             // The preview reads the font off the interface thread: on a loaded machine, seconds.
             ASSERT_TRUE(QTest::qWaitFor([&] { return (activate = buttonNamed(&window, u"Activate"_s)) != nullptr; }, 20'000));
             QTest::mouseClick(activate, Qt::LeftButton);
         },
         [](const OneRoad &t) { return t.folder(u"Mono"_s); }},
        {"the page of a font opened from outside",
         [](MainWindow &window) {
             const QString outside = makeDir(testRoot() + u"/Downloads"_s) + u"/DejaVuSerif-Bold.ttf"_s;
             ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSerif-Bold.ttf"_s, outside));
             window.openPaths({outside});
             QPushButton *activate = nullptr;
             ASSERT_TRUE(QTest::qWaitFor([&] { return (activate = buttonNamed(window.detail(), u"Activate"_s)) != nullptr; }, 20'000));
             QTest::mouseClick(activate, Qt::LeftButton);
         },
         [](const OneRoad &) { return QSet<QString>{testRoot() + u"/Downloads/DejaVuSerif-Bold.ttf"_s}; }},
    };
    for (const Road &road : roads) {
        SCOPED_TRACE(road.view);
        const QSet<QString> expected = road.expected(*this);
        {
            auto window = start();
            ASSERT_TRUE(window->state().waitForCatalogue(60'000));
            road.act(*window);
            ASSERT_TRUE(QTest::qWaitFor([&] { return window->state().activatedFonts() == expected; }, 30'000))
                << window->state().activatedFonts().size();
            ASSERT_TRUE(idle(*window));
            expectAgreement(*window, expected, "after the change");
            // "Active Fonts" holds every active face, wherever its file lives.
            EXPECT_TRUE(QTest::qWaitFor([&] { return window->state().libraryFaceCount(LibraryView::ActiveFonts) == expected.size(); }, 30'000))
                << window->state().libraryFaceCount(LibraryView::ActiveFonts);
        }
        {
            auto restarted = start();
            ASSERT_TRUE(idle(*restarted));
            expectAgreement(*restarted, expected, "after a restart");
            // Leave nothing active for the next road: Edit > Deactivate All Fonts.
            menuCommand(*restarted, u"Deactivate All Fonts"_s);
            ASSERT_TRUE(QTest::qWaitFor([&] { return restarted->state().activatedFonts().isEmpty(); }, 30'000));
            ASSERT_TRUE(idle(*restarted));
            expectAgreement(*restarted, {}, "after Deactivate All Fonts");
        }
    }
}
