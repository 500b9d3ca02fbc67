// SPDX-License-Identifier: GPL-3.0-or-later
// The column browser driven as a user drives it: keys on the focused column, clicks at
// rows' rectangles, the activation button, the breadcrumb; the store and the view are
// checked after each step.
#include "TestSupport.h"
#include "ViewTestSupport.h"

#include "services/FontActivating.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "services/FinderTagService.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/common/ContextMenus.h"
#include "ui/browser/FontNodeListModel.h"
#include "ui/browser/FontNodeDelegate.h"
#include "ui/preview/FontPreviewView.h"
#include "ui/browser/SingleColumnView.h"
#include "ui/common/Symbols.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QMenu>
#include <QMimeData>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QMutex>
#include <QSet>
#include <QDrag>
#include <QSignalSpy>
#include <QMouseEvent>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

class Browser : public testing::Test
{
protected:
    Browser()
    {
        for (const QString &file : {u"A/a1.ttf"_s, u"A/a2.ttf"_s, u"A/Sub/s.ttf"_s, u"B/b.ttf"_s, u"c.ttf"_s})
            writeFile(library + u'/' + file);
        showFolderAsSource(store, library);
        view.resize(1000, 400);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
        column(0)->setFocus();
    }

    SingleColumnView *column(int index) const { return view.columns().value(index); }
    // The store's path as names, and its active column.
    QString path() const
    {
        QStringList names;
        for (const FontNode &node : store.navigationPath())
            names.append(node.name().toString());
        return names.join(u'/');
    }
    QRect rowRect(int columnIndex, const QString &name) const
    {
        SingleColumnView *list = column(columnIndex);
        const QList<FontNode> &nodes = list->nodeModel()->nodes();
        for (qsizetype row = 0; row < nodes.size(); ++row) {
            if (nodes.at(row).name() == name)
                return list->visualRect(list->nodeModel()->index(static_cast<int>(row)));
        }
        ADD_FAILURE() << "no row " << name.toStdString();
        return {};
    }
    void click(int columnIndex, const QString &name)
    {
        QTest::mouseClick(column(columnIndex)->viewport(), Qt::LeftButton, {}, rowRect(columnIndex, name).center());
    }
    void clickButton(int columnIndex, const QString &name)
    {
        const QRect row = rowRect(columnIndex, name);
        const bool folder = !name.endsWith(u".ttf"_s);
        QTest::mouseClick(column(columnIndex)->viewport(), Qt::LeftButton, {},
                          FontNodeDelegate::layout(row, folder).button.center().toPoint());
    }
    bool waitUntilIdle() { return QTest::qWaitFor([this] { return !store.isProcessing(); }, 20'000); }
    // A right click on the row; the menu it opens.
    QMenu *rightClick(int columnIndex, const QString &name)
    {
        for (QMenu *open : view.findChildren<QMenu *>())
            open->close(); // as a new right click does
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const QPoint at = rowRect(columnIndex, name).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, column(columnIndex)->viewport()->mapToGlobal(at));
        QCoreApplication::sendEvent(column(columnIndex)->viewport(), &event);
        const QList<QMenu *> menus = column(columnIndex)->findChildren<QMenu *>(Qt::FindDirectChildrenOnly);
        EXPECT_EQ(menus.size(), 1);
        return menus.value(0);
    }

    QString library = makeDir(testRoot() + u"/Library"_s);
    InstantActivation activation;
    PersistenceService persistence;
    AppState store{activation, persistence};
    ColumnBrowserView view{store};
};

struct KeyCase
{
    const char *keys;  // one character per key: u d l r Home=H End=E space=_ ; letters type
    const char *path;  // the store's path afterwards
    int activeColumn;
    int columns;
};

void press(QWidget *target, char key)
{
    switch (key) {
    case 'u': QTest::keyClick(target, Qt::Key_Up); break;
    case 'd': QTest::keyClick(target, Qt::Key_Down); break;
    case 'l': QTest::keyClick(target, Qt::Key_Left); break;
    case 'r': QTest::keyClick(target, Qt::Key_Right); break;
    case 'H': QTest::keyClick(target, Qt::Key_Home); break;
    case 'E': QTest::keyClick(target, Qt::Key_End); break;
    default: QTest::keyClicks(target, QString(QChar::fromLatin1(key))); break;
    }
}

} // namespace

// Keys go to whichever column has focus, and focus follows the active column.
TEST_F(Browser, KeysMoveThroughColumnsAsTheStoreSays)
{
    const KeyCase cases[] = {
        {"d", "A", 0, 2},
        {"dd", "B", 0, 2},
        {"dddd", "c.ttf", 0, 1},      // no wrap past the last row; a font opens no column
        {"u", "c.ttf", 0, 1},         // from nowhere, Up lands on the last row
        {"dr", "A/Sub", 1, 3},        // into the folder: its first row
        {"drr", "A/Sub/s.ttf", 2, 3}, // down to a font
        {"drrr", "A/Sub/s.ttf", 2, 3},// nothing beyond a font
        {"drd", "A/a1.ttf", 1, 2},
        {"drl", "A", 0, 2},           // back one column, the folder still selected
        {"E", "c.ttf", 0, 1},
        {"EH", "A", 0, 2},
        {"b", "B", 0, 2},             // type-ahead
        {"dc", "c.ttf", 0, 1},
        {"drs", "A/Sub", 1, 3},       // type-ahead in the active column
    };
    for (const KeyCase &test : cases) {
        SCOPED_TRACE(test.keys);
        store.showSourceRoot();
        store.selectNode(FontNode::folder(library + u"/A"_s), 0); // a known state, then back
        store.showSourceRoot();
        column(0)->setFocus();
        for (const char *key = test.keys; *key; ++key)
            press(QApplication::focusWidget(), *key);
        EXPECT_EQ(path(), QString::fromLatin1(test.path));
        EXPECT_EQ(store.activeColumnIndex(), test.activeColumn);
        EXPECT_EQ(view.columns().size(), test.columns);
        EXPECT_EQ(QApplication::focusWidget(), column(std::min(test.activeColumn, static_cast<int>(view.columns().size()) - 1)));
        // The view mirrors the store: the selected row of the active column is selected.
        SingleColumnView *active = column(std::min(test.activeColumn, static_cast<int>(view.columns().size()) - 1));
        const QModelIndexList selected = active->selectionModel()->selectedIndexes();
        ASSERT_EQ(selected.size(), 1);
        EXPECT_EQ(selected.first().data(FontNodeListModel::PathRole).toString(),
                  store.navigationPath().constLast().path());
    }

    // Left in the first column hands the keyboard to the sidebar, selection unchanged.
    store.showSourceRoot();
    column(0)->setFocus();
    press(column(0), 'd');
    QSignalSpy handedOver(&store, &AppState::sidebarFocusRequested);
    press(column(0), 'l');
    EXPECT_EQ(handedOver.count(), 1);
    EXPECT_EQ(path(), u"A"_s);

    // The sidebar hands the keyboard back: the active column takes it.
    column(0)->clearFocus();
    view.setFocus();
    store.requestBrowserFocus();
    EXPECT_EQ(QApplication::focusWidget(), column(0));
}

TEST_F(Browser, ClicksSelectAndTheButtonTogglesWithoutSelecting)
{
    click(0, u"B"_s);
    EXPECT_EQ(path(), u"B"_s);
    click(0, u"A"_s);
    ASSERT_EQ(view.columns().size(), 2);
    click(1, u"a1.ttf"_s);
    EXPECT_EQ(path(), u"A/a1.ttf"_s);
    ASSERT_NE(view.previewPane(), nullptr);
    EXPECT_TRUE(view.previewPane()->isVisible());

    // The button of another row toggles it; the selection stays where it was.
    clickButton(1, u"a2.ttf"_s);
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store.activatedFonts(), QSet<QString>{library + u"/A/a2.ttf"_s});
    EXPECT_EQ(path(), u"A/a1.ttf"_s);
    const QModelIndex a2 = column(1)->nodeModel()->index(column(1)->nodeModel()->rowOf(library + u"/A/a2.ttf"_s));
    EXPECT_EQ(a2.data(FontNodeListModel::ActivationRole).toInt(), static_cast<int>(ActivationState::Active));
    EXPECT_EQ(a2.data(Qt::AccessibleDescriptionRole).toString(), u"Font, active"_s);
    const QModelIndex folderA = column(0)->nodeModel()->index(0);
    EXPECT_EQ(folderA.data(FontNodeListModel::ActivationRole).toInt(), static_cast<int>(ActivationState::Mixed));
    EXPECT_EQ(FontNodeDelegate::buttonToolTip(folderA.data(FontNodeListModel::ActivationRole).toInt()), u"Activate All"_s);
    // What a screen reader hears of each row: its button checked, mixed or unchecked, and
    // a folder expandable, expanded while open in the next column.
    const auto cellOf = [&](int columnIndex, const QString &name) -> QAccessibleInterface * {
        const FontNodeListModel *rows = column(columnIndex)->nodeModel();
        int row = -1;
        for (int i = 0; i < rows->rowCount(); ++i)
            row = rows->node(i).name() == name ? i : row;
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(column(columnIndex));
        return list && row >= 0 ? list->child(row) : nullptr;
    };
    const struct
    {
        int column;
        QString row;
        bool checked;
        bool mixed;
        bool expandable;
    } heard[] = {{1, u"a2.ttf"_s, true, false, false}, {0, u"A"_s, false, true, true}, {1, u"a1.ttf"_s, false, false, false}};
    for (const auto &expected : heard) {
        QAccessibleInterface *cell = cellOf(expected.column, expected.row);
        ASSERT_TRUE(cell) << expected.row.toStdString();
        const QAccessible::State state = cell->state();
        EXPECT_EQ(cell->text(QAccessible::Name), expected.row);
        EXPECT_TRUE(state.checkable) << expected.row.toStdString();
        EXPECT_EQ(bool(state.checked), expected.checked) << expected.row.toStdString();
        EXPECT_EQ(bool(state.checkStateMixed), expected.mixed) << expected.row.toStdString();
        EXPECT_EQ(bool(state.expandable), expected.expandable) << expected.row.toStdString();
        EXPECT_EQ(bool(state.expanded), expected.expandable) << "A is open: " << expected.row.toStdString();
    }
    // Its actions: "Toggle" is the button, "Press" chooses the row.
    QAccessibleInterface *a1 = cellOf(1, u"a1.ttf"_s);
    ASSERT_TRUE(a1 && a1->actionInterface());
    a1->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_TRUE(store.activatedFonts().contains(library + u"/A/a1.ttf"_s));
    QAccessibleInterface *b = cellOf(0, u"B"_s);
    ASSERT_TRUE(b && b->actionInterface());
    b->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(path(), u"B"_s);
    EXPECT_TRUE(cellOf(0, u"B"_s)->state().expanded);
    EXPECT_FALSE(cellOf(0, u"A"_s)->state().expanded);
    click(0, u"A"_s);
    click(1, u"a1.ttf"_s);
    clickButton(1, u"a1.ttf"_s);
    ASSERT_TRUE(waitUntilIdle());

    // The folder's button makes a mixed folder fully active; Space on the focused
    // column toggles its selected row.
    clickButton(0, u"A"_s);
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store.activatedFonts().size(), 3);
    column(1)->setFocus();
    QTest::keyClick(column(1), Qt::Key_Space);
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_FALSE(store.activatedFonts().contains(library + u"/A/a1.ttf"_s));
    EXPECT_EQ(path(), u"A/a1.ttf"_s);

    // Selecting a folder removes the preview.
    click(0, u"B"_s);
    EXPECT_EQ(view.previewPane(), nullptr);
}

// A column is rebuilt only when its first item changes: moving within a column keeps
// the next one, opening another folder replaces it.
TEST_F(Browser, ColumnsKeepTheirIdentityUntilTheirFirstItemChanges)
{
    click(0, u"A"_s);
    SingleColumnView *second = column(1);
    click(1, u"a1.ttf"_s);
    click(1, u"a2.ttf"_s);
    EXPECT_EQ(column(1), second);
    click(0, u"B"_s);
    EXPECT_NE(column(1), second);
    EXPECT_EQ(column(1)->nodeModel()->rowCount(), 1);
    for (SingleColumnView *list : view.columns())
        EXPECT_EQ(list->width(), SingleColumnView::kWidth);
}

TEST_F(Browser, TheBreadcrumbReturnsToTheLevelPressed)
{
    store.selectNode(FontNode::folder(library + u"/A"_s), 0);
    store.selectNode(FontNode::folder(library + u"/A/Sub"_s), 1);
    store.selectNode(FontNode::fontFile(library + u"/A/Sub/s.ttf"_s), 2);
    const auto crumbs = [this] {
        QStringList texts;
        for (QToolButton *button : view.breadcrumbBar()->findChildren<QToolButton *>())
        {
            // Heard as a button, the current one described so: no check box to tick.
            EXPECT_EQ(QAccessible::queryAccessibleInterface(button)->role(), QAccessible::Button);
            texts.append(button->text() + (button->accessibleDescription() == u"current"_s ? u"*"_s : QString()));
        }
        return texts;
    };
    EXPECT_EQ(crumbs(), (QStringList{u"Library"_s, u"A"_s, u"Sub"_s, u"s.ttf*"_s}));
    for (QToolButton *button : view.breadcrumbBar()->findChildren<QToolButton *>()) {
        if (button->text() == u"A"_s) {
            QTest::mouseClick(button, Qt::LeftButton);
            break;
        }
    }
    EXPECT_EQ(path(), u"A"_s);
    EXPECT_EQ(crumbs(), (QStringList{u"Library"_s, u"A*"_s}));
    QTest::mouseClick(view.breadcrumbBar()->findChildren<QToolButton *>().first(), Qt::LeftButton);
    EXPECT_EQ(path(), QString());
    EXPECT_EQ(view.columns().size(), 1);
}

TEST_F(Browser, TheRowModelIsAWellBehavedModel)
{
    FontNodeListModel model(store);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setNodes(store.cachedColumns().first());
    EXPECT_EQ(model.rowCount(), 3);
    store.selectNode(FontNode::folder(library + u"/A"_s), 0);
    model.setNodes(store.cachedColumns().at(1));
    model.activationChanged();
    model.setNodes({});
    EXPECT_EQ(model.rowCount(), 0);
}

namespace {

QStringList titles(const QMenu *menu)
{
    QStringList texts;
    for (const QAction *action : menu->actions())
        texts.append(action->isSeparator() ? u"-"_s : QString(action->text()).remove(u'&')); // as shown
    return texts;
}

QAction *item(const QMenu *menu, const QString &text)
{
    for (QAction *action : menu->actions()) {
        if (QString(action->text()).remove(u'&') == text)
            return action;
    }
    ADD_FAILURE() << "no item " << text.toStdString();
    return nullptr;
}

} // namespace

TEST_F(Browser, TheNodeMenuIsBuiltFromTheCurrentStateAtEachRightClick)
{
    QMenu *menu = rightClick(0, u"A"_s);
    EXPECT_EQ(titles(menu), (QStringList{u"Show in File Manager"_s, u"-"_s, u"Activate All Fonts in Folder"_s,
                                         u"Activate for This Session"_s, u"-"_s,
                                         u"License Status"_s}));
    EXPECT_EQ(path(), QString()); // a right click selects nothing
    menu->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(column(0)->findChild<QMenu *>(), nullptr); // freed once closed

    // The menu key opens the selected row's menu, wherever the pointer is.
    click(0, u"c.ttf"_s);
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(1, 1), column(0)->mapToGlobal(QPoint(1, 1)));
    QCoreApplication::sendEvent(column(0)->viewport(), &key);
    menu = column(0)->findChild<QMenu *>();
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(titles(menu).contains(u"Activate Font"_s)); // c.ttf's, not folder A's
    menu->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    store.showSourceRoot();

    // Collections: one item each, disabled where the node is a member already.
    store.createCollection(u"Set"_s);
    store.createCollection(u"Other"_s);
    const QUuid set = store.collections().at(store.collections().at(0).name == u"Set"_s ? 0 : 1).id;
    store.setSidebarSelection(SidebarItem(store.sources().first())); // a new collection is selected
    click(0, u"A"_s);
    store.addToCollection(set, FontNode::fontFile(library + u"/A/a1.ttf"_s));
    menu = rightClick(1, u"a1.ttf"_s);
    EXPECT_EQ(titles(menu), (QStringList{u"Show in File Manager"_s, u"-"_s, u"Activate Font"_s,
                                         u"Activate for This Session"_s, u"-"_s,
                                         u"Add to Collection"_s, u"-"_s, u"License Status"_s}));
    QMenu *collections = item(menu, u"Add to Collection"_s)->menu();
    EXPECT_EQ(titles(collections), (QStringList{u"Other"_s, u"Set"_s}));
    EXPECT_FALSE(item(collections, u"Set"_s)->isEnabled());
    menu->close();
    menu = rightClick(1, u"a2.ttf"_s);
    collections = item(menu, u"Add to Collection"_s)->menu();
    ASSERT_TRUE(item(collections, u"Set"_s)->isEnabled());
    item(collections, u"Set"_s)->trigger();
    const auto inSet = [&] {
        for (const FontCollection &collection : store.collections())
            if (collection.id == set)
                return collection.contains(library + u"/A/a2.ttf"_s);
        return false;
    };
    EXPECT_TRUE(inSet());
    menu->close();

    // The activation item toggles, and says so next time.
    item(rightClick(1, u"a2.ttf"_s), u"Activate Font"_s)->trigger();
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_TRUE(store.activatedFonts().contains(library + u"/A/a2.ttf"_s));
    EXPECT_TRUE(titles(rightClick(1, u"a2.ttf"_s)).contains(u"Deactivate Font"_s));
}

TEST_F(Browser, TheLicenceSubmenuSetsTheFilesTagsAndTheRowFollows)
{
    QMenu *statuses = item(rightClick(0, u"A"_s), u"License Status"_s)->menu();
    EXPECT_EQ(titles(statuses), (QStringList{u"Licensed"_s, u"Licensed + Non-Commercial"_s, u"Unlicensed"_s,
                                             u"Partially Licensed"_s, u"Public Domain"_s, u"Open Source"_s, u"Trial"_s,
                                             u"No Status"_s}));
    EXPECT_TRUE(item(statuses, u"No Status"_s)->isChecked());
    EXPECT_FALSE(item(statuses, u"Trial"_s)->icon().isNull()); // the status's dot
    item(statuses, u"Trial"_s)->trigger();

    // On the folder itself, as the file manager reads it.
    EXPECT_EQ(FinderTagService::readTags(library + u"/A"_s), QStringList{u"Trial"_s});
    const QModelIndex folderA = column(0)->nodeModel()->index(0);
    EXPECT_EQ(folderA.data(FontNodeListModel::LicenseRole).toInt(), static_cast<int>(LicenseStatus::Trial));
    EXPECT_EQ(folderA.data(Qt::AccessibleDescriptionRole).toString(), u"Folder, inactive, Trial"_s);
    statuses = item(rightClick(0, u"A"_s), u"License Status"_s)->menu();
    EXPECT_TRUE(item(statuses, u"Trial"_s)->isChecked());
    // The current one shows the check mark itself: styles draw an icon in its place.
    EXPECT_TRUE(item(statuses, u"Trial"_s)->icon().isNull());
    EXPECT_FALSE(item(statuses, u"Licensed"_s)->icon().isNull());
    EXPECT_FALSE(item(statuses, u"No Status"_s)->isChecked());

    // A font file's icon is never coloured by a label.
    click(0, u"A"_s);
    item(item(rightClick(1, u"a1.ttf"_s), u"License Status"_s)->menu(), u"Licensed"_s)->trigger();
    EXPECT_EQ(FinderTagService::readTags(library + u"/A/a1.ttf"_s), QStringList{u"Licensed"_s});
    const QModelIndex a1 = column(1)->nodeModel()->index(column(1)->nodeModel()->rowOf(library + u"/A/a1.ttf"_s));
    EXPECT_EQ(a1.data(FontNodeListModel::LicenseRole).toInt(), static_cast<int>(LicenseStatus::None));
}

// "Remove Source" asks first, naming what it costs; Escape keeps the source and its
// activations, "Remove Source" removes it.
TEST_F(Browser, TheSourceMenuAsksBeforeRemovingTheSource)
{
    store.setActivation({FontNode::fontFile(library + u"/c.ttf"_s), FontNode::fontFile(library + u"/A/a1.ttf"_s)}, true);
    ASSERT_TRUE(waitUntilIdle());
    const struct
    {
        QString answer;
        bool removed;
    } answers[] = {{QString(), false}, {u"Cancel"_s, false}, {u"Remove Source"_s, true}};
    for (const auto &answer : answers) {
        std::unique_ptr<QMenu> menu(ContextMenus::buildSourceMenu(store, store.sources().first(), &view));
        EXPECT_EQ(titles(menu.get()), (QStringList{u"Activate All Fonts in Source"_s, u"Activate for This Session"_s, u"-"_s,
                                                   u"Show in File Manager"_s, u"-"_s, u"License Status"_s, u"-"_s,
                                                   u"Remove Source"_s}))
            << "mixed: not all its fonts are active";
        const std::shared_ptr<QString> asked = answerNextQuestion(answer.answer);
        item(menu.get(), u"Remove Source"_s)->trigger();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !asked->isEmpty(); }));
        EXPECT_EQ(*asked, u"Remove \u201cLibrary\u201d from Morvane?\nIts 2 active fonts will be deactivated. "
                          u"The files stay where they are."_s);
        if (answer.removed) {
            ASSERT_TRUE(QTest::qWaitFor([this] { return store.sources().isEmpty() && !store.isProcessing(); }, 20'000));
            EXPECT_TRUE(store.activatedFonts().isEmpty());
        } else {
            QCoreApplication::processEvents();
            EXPECT_EQ(store.sources().size(), 1) << answer.answer.toStdString();
            EXPECT_FALSE(store.isProcessing());
            EXPECT_EQ(store.activatedFonts().size(), 2);
        }
    }
}

// A row drags through Qt's own drag of the model's data: its file as a copy or a link,
// never a move of the user's font. The press selects the row; the drag opens nothing more.
TEST_F(Browser, RowsDragTheirFilesAsCopiesOrLinks)
{
    QWidget *rows = column(0)->viewport();
    const QPoint at = rowRect(0, u"c.ttf"_s).center();
    QTest::mousePress(rows, Qt::LeftButton, {}, at);
    // Moves with the button held, as a hand makes them; QTest's own move carries no buttons.
    for (const QPoint &to : {at + QPoint(2, 0), at + QPoint(40, 0)}) {
        QMouseEvent move(QEvent::MouseMove, to, rows->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(rows, &move);
    }
    // Without a drag-and-drop system here the drag ends at once; its object remains until deleted later.
    QDrag *drag = column(0)->findChild<QDrag *>();
    ASSERT_TRUE(drag);
    EXPECT_EQ(drag->mimeData()->urls(), QList<QUrl>{QUrl::fromLocalFile(library + u"/c.ttf"_s)});
    EXPECT_EQ(drag->mimeData()->text(), library + u"/c.ttf"_s);
    EXPECT_EQ(drag->supportedActions(), Qt::CopyAction | Qt::LinkAction);
    QTest::mouseRelease(rows, Qt::LeftButton, {}, at + QPoint(40, 0));
    EXPECT_EQ(path(), u"c.ttf"_s);
    EXPECT_EQ(view.columns().size(), 1);
}

// Presses that are not a plain left click on a row choose nothing: the right button
// (its menu comes on release), and a double click on the row's button, which toggles.
TEST_F(Browser, OnlyALeftPressOnTheRowSelectsIt)
{
    click(0, u"B"_s);
    QTest::mousePress(column(0)->viewport(), Qt::RightButton, {}, rowRect(0, u"A"_s).center());
    QTest::mouseRelease(column(0)->viewport(), Qt::RightButton, {}, rowRect(0, u"A"_s).center());
    EXPECT_EQ(path(), u"B"_s);

    const QPoint button = FontNodeDelegate::layout(rowRect(0, u"c.ttf"_s), false).button.center().toPoint();
    QSignalSpy toggled(&store, &AppState::activatedFontsChanged);
    QTest::mouseDClick(column(0)->viewport(), Qt::LeftButton, {}, button);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !toggled.isEmpty() && !store.isProcessing(); }, 20'000));
    EXPECT_EQ(path(), u"B"_s);
}

// Pixels where they carry meaning: an active row's button is green and a licensed
// folder's icon takes the status colour, in a light and in a dark palette.
TEST_F(Browser, ActiveButtonsAreGreenAndLicensedFoldersTakeTheirColour)
{
    store.setLicenseStatus(LicenseStatus::Licensed, library + u"/B"_s);
    store.setActivation({FontNode::fontFile(library + u"/c.ttf"_s)}, true);
    ASSERT_TRUE(waitUntilIdle());
    QPalette dark = view.palette();
    dark.setColor(QPalette::Window, QColor(30, 30, 30));
    dark.setColor(QPalette::Base, QColor(40, 40, 40));
    dark.setColor(QPalette::WindowText, Qt::white);
    const struct
    {
        QPalette palette;
        QColor green;
    } appearances[] = {{view.palette(), QColor(52, 199, 89)}, {dark, QColor(48, 209, 88)}};
    for (const auto &appearance : appearances) {
        view.setPalette(appearance.palette);
        const QImage image = column(0)->viewport()->grab().toImage();
        const auto near = [](QColor a, QColor b) {
            return std::abs(a.red() - b.red()) <= 3 && std::abs(a.green() - b.green()) <= 3 &&
                   std::abs(a.blue() - b.blue()) <= 3;
        };
        // Inside the disc, above the check mark.
        const FontNodeDelegate::Layout font = FontNodeDelegate::layout(rowRect(0, u"c.ttf"_s), false);
        const QRectF disc = font.button.adjusted(2, 2, -2, -2);
        const QPoint inDisc(static_cast<int>(disc.center().x()), static_cast<int>(disc.top() + disc.height() * 0.2));
        EXPECT_TRUE(near(image.pixelColor(inDisc), appearance.green)) << image.pixelColor(inDisc).name().toStdString();
        // The lower middle of the folder's body.
        const FontNodeDelegate::Layout folder = FontNodeDelegate::layout(rowRect(0, u"B"_s), true);
        const QPoint inFolder(static_cast<int>(folder.icon.center().x()), static_cast<int>(folder.icon.center().y() + 3));
        EXPECT_TRUE(near(image.pixelColor(inFolder), appearance.green)) << image.pixelColor(inFolder).name().toStdString();
        // An unlabelled folder is not green.
        const FontNodeDelegate::Layout plain = FontNodeDelegate::layout(rowRect(0, u"A"_s), true);
        const QPoint inPlain(static_cast<int>(plain.icon.center().x()), static_cast<int>(plain.icon.center().y() + 3));
        EXPECT_FALSE(near(image.pixelColor(inPlain), appearance.green));
    }
}

// The selected row of a long column comes to the middle; when the columns change, the
// last one comes into view.
TEST_F(Browser, TheSelectionAndTheLastColumnScrollIntoView)
{
    for (int i = 0; i < 200; ++i)
        writeFile(library + u"/Long/f%1.ttf"_s.arg(i, 3, 10, QChar(u'0')));
    QString deep = library;
    for (int level = 0; level < 8; ++level) {
        deep += u"/L%1"_s.arg(level);
        writeFile(deep + u"/x.ttf"_s);
    }
    auto service = std::make_shared<FileSystemService>();
    service->insertPreScannedRoot(library);
    service->deepScan(library);
    service->freeze();
    store.installLibrary(service, {});

    store.selectNode(FontNode::folder(library + u"/Long"_s), 0);
    store.selectNode(FontNode::fontFile(library + u"/Long/f150.ttf"_s), 1);
    SingleColumnView *longColumn = column(1);
    const auto centred = [&] {
        const QRect row = rowRect(1, u"f150.ttf"_s);
        return longColumn->viewport()->rect().contains(row.center()) &&
               std::abs(row.center().y() - longColumn->viewport()->rect().center().y()) <= row.height();
    };
    EXPECT_TRUE(QTest::qWaitFor(centred, 5'000));

    QString level = library;
    for (int i = 0; i < 8; ++i) {
        level += u"/L%1"_s.arg(i);
        store.selectNode(FontNode::folder(level), i);
    }
    QScrollBar *across = view.scrollArea()->horizontalScrollBar();
    EXPECT_TRUE(QTest::qWaitFor([across] { return across->maximum() > 0 && across->value() == across->maximum(); }, 5'000));
    EXPECT_EQ(view.columns().size(), 9);
}

namespace {

// Stands in for the desktop: records the URLs it is asked to open.
class OpenedUrls : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public Q_SLOTS:
    void open(const QUrl &url) { urls.append(url); }
};

} // namespace

// With no file manager on the bus, the folder holding the file is opened instead; with
// nothing to open it either, the window says where the file is.
TEST(Reveal, FallsBackToOpeningTheFolderThenToAMessage)
{
    const QString font = writeFile(testRoot() + u"/Fonts/x.ttf"_s);
    const QDBusConnection nowhere = QDBusConnection::connectToBus(u"unix:path=/nonexistent/bus"_s, u"nowhere"_s);
    for (const bool folderOpens : {true, false}) {
        InstantActivation activation;
        PersistenceService persistence;
        AppState store(activation, persistence);
        OpenedUrls opened;
        if (folderOpens)
            QDesktopServices::setUrlHandler(u"file"_s, &opened, "open");
        ContextMenus::revealInFileManager(store, font, nowhere);
        QDesktopServices::unsetUrlHandler(u"file"_s);
        if (folderOpens) {
            EXPECT_EQ(opened.urls, QList<QUrl>{QUrl::fromLocalFile(testRoot() + u"/Fonts"_s)});
            EXPECT_TRUE(store.notice().isEmpty());
        } else {
            EXPECT_EQ(store.notice(), u"No file manager answered, so \u201cx.ttf\u201d can't be shown. It is in "_s
                                          + testRoot() + u"/Fonts."_s);
        }
    }
}

#include "ColumnBrowserTest.moc"

// In a dark palette whose middle grey is the list's own colour, the chosen row of an
// earlier column still stands out once the keys have moved on to the next column.
TEST_F(Browser, AnEarlierColumnsChoiceStaysVisibleInTheDark)
{
    QPalette dark = view.palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        dark.setColor(group, QPalette::Window, QColor(40, 40, 40));
        dark.setColor(group, QPalette::Base, QColor(30, 30, 30));
        dark.setColor(group, QPalette::Mid, QColor(30, 30, 30));
        dark.setColor(group, QPalette::Text, QColor(235, 235, 235));
        dark.setColor(group, QPalette::WindowText, QColor(235, 235, 235));
        dark.setColor(group, QPalette::Highlight, QColor(10, 132, 255));
    }
    view.setPalette(dark);
    click(0, u"A"_s);
    click(1, u"a1.ttf"_s);
    ASSERT_EQ(store.activeColumnIndex(), 1);
    const QImage rows = column(0)->viewport()->grab().toImage();
    const QRect chosen = rowRect(0, u"A"_s);
    const QRect other = rowRect(0, u"B"_s);
    // Just left of the chevron: background only.
    const QColor under = rows.pixelColor(chosen.right() - 30, chosen.center().y());
    const QColor plain = rows.pixelColor(other.right() - 30, other.center().y());
    EXPECT_GE(Symbols::contrast(under, plain), 1.3) << under.name().toStdString() << " on " << plain.name().toStdString();
}

// Read right to left, the rows mirror (the button at the right, the chevron at the left
// pointing left) and the arrows follow the reading: Left goes in, Right comes back.
TEST_F(Browser, RightToLeftMirrorsRowsAndArrows)
{
    view.setLayoutDirection(Qt::RightToLeft);
    click(0, u"A"_s);
    ASSERT_EQ(path(), u"A"_s);
    const QRect row = rowRect(0, u"A"_s);
    const FontNodeDelegate::Layout mirrored = FontNodeDelegate::layout(row, true, Qt::RightToLeft);
    EXPECT_GT(mirrored.button.left(), row.center().x());
    EXPECT_LT(mirrored.chevron.right(), row.center().x());

    column(0)->setFocus();
    QTest::keyClick(column(0), Qt::Key_Left);
    EXPECT_EQ(path(), u"A/Sub"_s) << "Left goes in";
    QTest::keyClick(column(1), Qt::Key_Right);
    EXPECT_EQ(path(), u"A"_s) << "Right comes back";

    // The mirrored button is where the click toggles.
    QTest::mouseClick(column(0)->viewport(), Qt::LeftButton, {}, mirrored.button.center().toPoint());
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store.activationState(FontNode::folder(library + u"/A"_s)), ActivationState::Active);
    EXPECT_EQ(path(), u"A"_s) << "the button chooses nothing";
}

// Every item of every menu has its own key, the texts reading as before; pressing an
// item's key in the open menu does what a click does.
TEST_F(Browser, MenuItemsHaveTheirOwnKeys)
{
    store.createCollection(u"R&D"_s);
    const FontCollection collection = store.collections().constFirst();
    const std::function<QMenu *()> menus[] = {
        [&] { return ContextMenus::buildNodeMenu(store, FontNode::fontFile(library + u"/c.ttf"_s), &view); },
        [&] { return ContextMenus::buildSourceMenu(store, store.sources().first(), &view); },
        [&] { return ContextMenus::buildCollectionMenu(store, collection, &view, [] {}, [] {}); },
    };
    std::function<void(QMenu *)> check = [&](QMenu *menu) {
        QSet<QChar> keys;
        for (QAction *action : menu->actions()) {
            if (action->isSeparator())
                continue;
            const QString text = action->text();
            const qsizetype mark = text.indexOf(QRegularExpression(u"&[^&]"_s));
            ASSERT_GE(mark, 0) << text.toStdString();
            EXPECT_FALSE(keys.contains(text.at(mark + 1).toLower())) << text.toStdString();
            keys.insert(text.at(mark + 1).toLower());
            if (action->menu())
                check(action->menu());
        }
    };
    for (const auto &build : menus) {
        std::unique_ptr<QMenu> menu(build());
        check(menu.get());
    }
    std::unique_ptr<QMenu> node(menus[0]());
    EXPECT_TRUE(titles(node.get()).contains(u"Add to Collection"_s));
    QMenu *add = item(node.get(), u"Add to Collection"_s)->menu();
    EXPECT_EQ(add->actions().constFirst()->text(), u"&R&&D"_s) << "shown as R&D, R its key";

    node->popup(view.mapToGlobal(QPoint(10, 10)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(node.get()));
    const QString activate = item(node.get(), u"Activate Font"_s)->text();
    QTest::keyClick(node.get(), activate.at(activate.indexOf(u'&') + 1).toLatin1());
    ASSERT_TRUE(QTest::qWaitFor([&] { return store.activatedFonts().contains(library + u"/c.ttf"_s) && !store.isProcessing(); }));
}

// "Activate for This Session" from a font's menu: the row shows the session's own state
// (a checked button with its own words), the font is active, and nothing is saved.
TEST_F(Browser, AFontActivatedForThisSessionShowsItInItsRow)
{
    click(0, u"A"_s);
    item(rightClick(1, u"a1.ttf"_s), u"Activate for This Session"_s)->trigger();
    ASSERT_TRUE(waitUntilIdle());
    const QString path = library + u"/A/a1.ttf"_s;
    EXPECT_TRUE(store.isSessionFont(path));
    const QModelIndex a1 = column(1)->nodeModel()->index(column(1)->nodeModel()->rowOf(path));
    EXPECT_EQ(a1.data(FontNodeListModel::ActivationRole).toInt(), static_cast<int>(ActivationState::Session));
    EXPECT_EQ(a1.data(Qt::CheckStateRole), QVariant(Qt::Checked));
    EXPECT_EQ(FontNodeDelegate::buttonToolTip(a1.data(FontNodeListModel::ActivationRole).toInt()),
              u"Active for this session: Deactivate"_s);
    // Its menu now offers to switch it off, and no second session item.
    const QStringList offered = titles(rightClick(1, u"a1.ttf"_s));
    EXPECT_TRUE(offered.contains(u"Deactivate Font"_s));
    EXPECT_FALSE(offered.contains(u"Activate for This Session"_s));
    persistence.waitForWrites();
    EXPECT_FALSE(PersistenceService().loadActivatedFonts().contains(path));
}
