// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"
#include "WindowFixture.h"

#include "services/FinderTagService.h"
#include "state/AppState.h"
#include "ui/collection/CollectionView.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/window/MainWindow.h"
#include "ui/search/SearchResultDelegate.h"
#include "ui/search/SearchResultsModel.h"
#include "ui/search/SearchResultsView.h"
#include "ui/common/Symbols.h"
#include "ui/sidebar/SidebarDelegate.h"
#include "ui/sidebar/SidebarList.h"
#include "ui/sidebar/SidebarModel.h"
#include "ui/sidebar/SidebarView.h"
#include "ui/window/ToolbarInputField.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QMouseEvent>
#include <QDrag>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;
using WindowFixture::openWindow;
using WindowFixture::saveOneSource;

namespace {

bool near(QColor a, QColor b)
{
    return std::abs(a.red() - b.red()) <= 3 && std::abs(a.green() - b.green()) <= 3 && std::abs(a.blue() - b.blue()) <= 3;
}

// Two folders whose names hold "sans", one licensed, and one that doesn't match.
class SearchView : public testing::Test
{
protected:
    void SetUp() override
    {
        library = TestSupport::makeDir(TestSupport::testRoot() + u"/Fonts"_s);
        TestSupport::writeFile(library + u"/Noto Sans/a.ttf"_s);
        TestSupport::writeFile(library + u"/Noto Sans/b.otf"_s);
        TestSupport::writeFile(library + u"/Sans One/c.ttf"_s);
        TestSupport::writeFile(library + u"/Serif/d.ttf"_s);
        ASSERT_TRUE(FinderTagService::writeTags(library + u"/Noto Sans"_s, {u"Licensed"_s}).isEmpty());
        saveOneSource(library);
        window = openWindow();
        ASSERT_TRUE(window->state().selectedSource());
    }

    AppState &store() { return window->state(); }
    ToolbarInputField &field() { return window->searchField(); }
    QLineEdit *edit() { return field().lineEdit(); }
    SearchResultsList *list() { return window->searchResults().list(); }
    QRect row(int index) { return list()->visualRect(list()->model()->index(index, 0)); }
    void type(const QString &text) { QTest::keyClicks(edit(), text); }
    bool searched()
    {
        return QTest::qWaitFor([&] { return !store().isSearchingFolders() && !store().isIndexing(); });
    }

    QString library;
    std::unique_ptr<MainWindow> window;
};

} // namespace

// Typing, clearing and choosing in the sidebar keep the field, the query and the
// sidebar's selection in step.
TEST_F(SearchView, FieldQueryAndSidebarKeepInStep)
{
    store().createCollection(u"Picks"_s);
    store().setSidebarSelection(SidebarItem(store().sources().first()));
    const FolderSource first = store().sources().first();
    QToolButton *clear = field().clearButton();
    EXPECT_FALSE(clear->isVisible());
    EXPECT_FALSE(clear->isEnabled());

    type(u"  abc "_s);
    EXPECT_EQ(store().searchQuery(), u"abc"_s) << "spaces around a query do not count";
    EXPECT_FALSE(store().sidebarSelection()) << "typing ends the selection";
    EXPECT_EQ(window->detail(), &window->searchResults());
    EXPECT_TRUE(clear->isVisible());
    EXPECT_TRUE(clear->isEnabled());
    EXPECT_EQ(clear->toolTip(), u"Clear"_s);

    QTest::mouseClick(clear, Qt::LeftButton);
    EXPECT_TRUE(field().draft().isEmpty());
    EXPECT_TRUE(store().searchQuery().isEmpty());
    EXPECT_EQ(store().sidebarSelection(), SidebarItem(first)) << "clearing goes back to the first source";
    EXPECT_EQ(window->detail(), &window->browser());
    EXPECT_FALSE(clear->isVisible());

    type(u"   "_s);
    EXPECT_TRUE(store().searchQuery().isEmpty()) << "a query of spaces is no search";
    EXPECT_FALSE(store().isSearching());
    EXPECT_FALSE(store().isSearchingFolders());
    EXPECT_EQ(store().sidebarSelection(), SidebarItem(first));
    EXPECT_EQ(window->detail(), &window->browser());
    QTest::keyClick(edit(), Qt::Key_Escape);
    EXPECT_TRUE(field().draft().isEmpty()) << "Escape clears";

    type(u"Sans"_s);
    EXPECT_FALSE(store().sidebarSelection());
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(edit(), Qt::Key_Backspace);
    EXPECT_TRUE(store().searchQuery().isEmpty());
    EXPECT_EQ(store().sidebarSelection(), SidebarItem(first)) << "deleting the text also goes back";

    type(u"x"_s);
    SidebarList *collections = window->sidebar().collectionsList();
    const QModelIndex picks = collections->indexForRow(window->sidebar().sidebarModel()->firstCollectionRow());
    QTest::mouseClick(collections->viewport(), Qt::LeftButton, {}, collections->visualRect(picks).center());
    EXPECT_TRUE(field().draft().isEmpty()) << "choosing in the sidebar ends the search";
    EXPECT_TRUE(store().searchQuery().isEmpty());
    ASSERT_TRUE(store().selectedCollection());
    EXPECT_EQ(store().selectedCollection()->name, u"Picks"_s);
    ASSERT_TRUE(window->collectionView());
    EXPECT_EQ(window->detail(), window->collectionView());

    // Ctrl+F from anywhere in the window puts the keyboard in the field.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    collections->setFocus();
    QTest::keyClick(window->windowHandle(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(edit()->hasFocus());
}

// "Searching folders…" while the search or the indexing runs; the hits, each with its
// font count and licence colour, repainted when activation changes; "No matching
// folders" when nothing matches.
TEST_F(SearchView, ResultsShowProgressHitsOrNoMatch)
{
    SearchResultsView &view = window->searchResults();
    QAbstractItemModelTester tester(list()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    type(u"sans"_s);
    EXPECT_EQ(view.currentWidget(), view.progressPage()) << "the search waits out its 200 ms";
    EXPECT_TRUE(view.progressPage()->findChild<QLabel *>()->text() == u"Searching folders…"_s);
    ASSERT_TRUE(searched());
    ASSERT_EQ(view.currentWidget(), list());
    const QAbstractItemModel *model = list()->model();
    ASSERT_EQ(model->rowCount(), 2);
    EXPECT_EQ(model->index(0, 0).data().toString(), u"Noto Sans"_s);
    EXPECT_EQ(model->index(0, 0).data(SearchResultsModel::CountTextRole).toString(), u"2 fonts"_s);
    EXPECT_EQ(model->index(1, 0).data().toString(), u"Sans One"_s);
    EXPECT_EQ(model->index(1, 0).data(SearchResultsModel::CountTextRole).toString(), u"1 font"_s);

    const auto pixels = [&] { return list()->viewport()->grab().toImage(); };
    const auto inFolder = [&](int index) {
        const QRectF icon = SearchResultDelegate::layout(row(index), list()->font()).icon;
        return QPoint(static_cast<int>(icon.center().x()), static_cast<int>(icon.center().y() + 3));
    };
    QImage image = pixels();
    EXPECT_TRUE(near(image.pixelColor(inFolder(0)), QColor(52, 199, 89))) << "licensed: green";
    EXPECT_TRUE(near(image.pixelColor(inFolder(1)), QColor(142, 142, 147))) << "no status: gray";

    // The row's button activates the folder, and the row repaints.
    const QRectF button = SearchResultDelegate::layout(row(0), list()->font()).button;
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, button.center().toPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().activatedFonts().size() == 2 && !store().isProcessing(); }));
    EXPECT_EQ(model->index(0, 0).data(SearchResultsModel::ActivationRole).toInt(), int(ActivationState::Active));
    const QRectF disc = button.adjusted(2, 2, -2, -2);
    image = pixels();
    EXPECT_TRUE(near(image.pixelColor(QPoint(int(disc.center().x()), int(disc.top() + disc.height() * 0.2))),
                     QColor(52, 199, 89)));
    EXPECT_TRUE(store().isSearching()) << "the button does not leave the search";

    // Indexing shows the progress again, even with hits present.
    store().refreshFileSystem();
    EXPECT_EQ(view.currentWidget(), view.progressPage());
    ASSERT_TRUE(searched());
    EXPECT_EQ(view.currentWidget(), list());

    type(u"zzz"_s);
    ASSERT_TRUE(searched());
    EXPECT_EQ(view.currentWidget(), view.emptyPage());
    QStringList texts;
    for (QLabel *label : view.emptyPage()->findChildren<QLabel *>())
        texts << label->text();
    EXPECT_EQ(texts, (QStringList{u"No matching folders"_s, u"Try a different search term."_s}));
}

// A drag offers the folder's path as text and leaves the search as it was; a click
// leaves the search and opens the folder in the browser.
TEST_F(SearchView, ClickOpensTheFolderAndDragOffersItsPath)
{
    type(u"Noto"_s);
    ASSERT_TRUE(searched());
    ASSERT_EQ(list()->model()->rowCount(), 1);
    const QPoint onName = SearchResultDelegate::layout(row(0), list()->font()).name.center().toPoint();

    QTest::mousePress(list()->viewport(), Qt::LeftButton, {}, onName);
    // Moves with the button held, as a hand makes them; QTest's own move carries no buttons.
    const QPoint to = onName + QPoint(40, 0);
    for (const QPoint &at : {onName + QPoint(2, 0), to}) {
        QMouseEvent move(QEvent::MouseMove, at, list()->viewport()->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(list()->viewport(), &move);
    }
    // Without a drag-and-drop system here the drag ends at once; its object remains until deleted later.
    QDrag *drag = list()->findChild<QDrag *>();
    ASSERT_TRUE(drag);
    const QString offered = drag->mimeData()->text();
    QTest::mouseRelease(list()->viewport(), Qt::LeftButton, {}, to);
    EXPECT_EQ(offered, library + u"/Noto Sans"_s);
    EXPECT_EQ(store().searchQuery(), u"Noto"_s) << "a drag does not navigate";
    EXPECT_EQ(window->detail(), &window->searchResults());

    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, onName);
    EXPECT_TRUE(store().searchQuery().isEmpty());
    EXPECT_TRUE(field().draft().isEmpty());
    ASSERT_TRUE(store().selectedSource());
    EXPECT_EQ(window->detail(), &window->browser());
    ASSERT_FALSE(store().navigationPath().isEmpty());
    EXPECT_EQ(store().navigationPath().last().path(), library + u"/Noto Sans"_s);
}

// A hit whose folder the last scan holds no list for reads "0 fonts": the row never
// starts a scan of its own.
TEST_F(SearchView, AFolderWithoutACachedListReadsNoFonts)
{
    const QString elsewhere = TestSupport::makeDir(TestSupport::testRoot() + u"/Elsewhere Sans"_s);
    TestSupport::writeFile(elsewhere + u"/e.ttf"_s);
    auto service = std::make_shared<FileSystemService>();
    service->freeze();
    store().installLibrary(service, {FolderSearchResult::make(FontNode::folder(elsewhere), store().sources().first(), {})});
    type(u"Elsewhere"_s);
    ASSERT_TRUE(searched());
    ASSERT_EQ(list()->model()->rowCount(), 1);
    EXPECT_EQ(list()->model()->index(0, 0).data(SearchResultsModel::CountTextRole).toString(), u"0 fonts"_s);
}

// A hit in the second source opens there, although clearing the search first goes
// back to the first source.
TEST_F(SearchView, AHitInAnotherSourceOpensInThatSource)
{
    const QString more = TestSupport::makeDir(TestSupport::testRoot() + u"/More"_s);
    TestSupport::writeFile(more + u"/Extra Sans/x.ttf"_s);
    store().addSource(more);
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().sources().size() == 2 && !store().isIndexing(); }, 20'000));
    type(u"Extra"_s);
    ASSERT_TRUE(searched());
    ASSERT_EQ(list()->model()->rowCount(), 1);
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {},
                      SearchResultDelegate::layout(row(0), list()->font()).name.center().toPoint());
    ASSERT_TRUE(store().selectedSource());
    EXPECT_EQ(store().selectedSource()->path, more);
    ASSERT_FALSE(store().navigationPath().isEmpty());
    EXPECT_EQ(store().navigationPath().last().path(), more + u"/Extra Sans"_s);
    EXPECT_EQ(window->detail(), &window->browser());
}

// Hits of the same name read apart: each says where it lives, from its source on, on the
// row and to a screen reader.
TEST_F(SearchView, HitsOfOneNameSayWhereTheyLive)
{
    TestSupport::writeFile(library + u"/Foundry A/Display/x.ttf"_s);
    TestSupport::writeFile(library + u"/Foundry B/Display/y.ttf"_s);
    store().refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isIndexing(); }));
    type(u"Display"_s);
    ASSERT_TRUE(searched());
    const QAbstractItemModel *model = list()->model();
    ASSERT_EQ(model->rowCount(), 2);
    QStringList places;
    for (int row = 0; row < 2; ++row) {
        const QModelIndex hit = model->index(row, 0);
        EXPECT_EQ(hit.data().toString(), u"Display"_s);
        places.append(hit.data(SearchResultsModel::LocationRole).toString());
        EXPECT_TRUE(hit.data(Qt::AccessibleDescriptionRole).toString().endsWith(u", in "_s + places.last()));
    }
    places.sort();
    EXPECT_EQ(places, (QStringList{u"Fonts/Foundry A"_s, u"Fonts/Foundry B"_s}));
}

// Read right to left, sidebar rows and search hits mirror: the round button on the
// right is where a click toggles, and the words start at the right.
TEST_F(SearchView, RightToLeftMirrorsSidebarRowsAndHits)
{
    window->setLayoutDirection(Qt::RightToLeft);
    const auto wordsOnlyRight = [](const QImage &row) {
        const QColor background = row.pixelColor(row.width() / 2, 2); // above the words, inside the row
        for (int x = 16; x < row.width() / 4; ++x) { // past the rounded corner
            for (int y = 4; y < row.height() - 4; ++y) {
                if (Symbols::contrast(row.pixelColor(x, y), background) > 1.5)
                    return false;
            }
        }
        return true;
    };
    SidebarList *sources = window->sidebar().sourcesList();
    const QRect sourceRow = sources->visualRect(sources->model()->index(0, 0));
    const SidebarDelegate::Layout source = SidebarDelegate::layout(sourceRow, int(SidebarModel::Kind::Source), Qt::RightToLeft);
    EXPECT_GT(source.button.left(), sourceRow.center().x());
    EXPECT_TRUE(wordsOnlyRight(sources->viewport()->grab(sourceRow).toImage()));
    QTest::mouseClick(sources->viewport(), Qt::LeftButton, {}, source.button.center().toPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().activatedFonts().size() == 4 && !store().isProcessing(); }));

    type(u"serif"_s);
    ASSERT_TRUE(searched());
    const SearchResultDelegate::Layout hit = SearchResultDelegate::layout(row(0), list()->font(), Qt::RightToLeft);
    EXPECT_GT(hit.button.left(), row(0).center().x());
    EXPECT_TRUE(wordsOnlyRight(list()->viewport()->grab(row(0)).toImage()));
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, hit.button.center().toPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().activatedFonts().size() == 3 && !store().isProcessing(); }));
}
