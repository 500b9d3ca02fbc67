// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"
#include "WindowFixture.h"

#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/collection/CollectionView.h"
#include "ui/collection/CollectionMemberList.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/window/EmptyStateView.h"
#include "ui/window/OpenedFontView.h"
#include "ui/window/MainWindow.h"
#include "ui/window/MessageArea.h"
#include "ui/common/Symbols.h"
#include "ui/window/ProcessingOverlay.h"
#include "ui/window/ReindexingStrip.h"
#include "ui/search/SearchResultsView.h"
#include "ui/sidebar/SidebarModel.h"
#include "ui/sidebar/LibraryList.h"
#include "ui/sidebar/SidebarView.h"
#include "ui/window/ToolbarInputField.h"
#include "ui/preview/FontPreviewView.h"
#include "ui/browser/FontNodeListModel.h"
#include "ui/browser/SingleColumnView.h"
#include "ui/sidebar/SidebarList.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMenu>
#include <QTimer>
#include <QProgressBar>
#include <QPushButton>
#include <QSemaphore>
#include <QImage>
#include <QSignalSpy>
#include <QSplitter>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

using namespace Qt::StringLiterals;
using WindowFixture::openWindow;
using WindowFixture::saveOneSource;

namespace {

QStringList labelTexts(QWidget *root)
{
    QStringList texts;
    for (QLabel *label : root->findChildren<QLabel *>()) {
        if (label->isVisibleTo(root))
            texts << label->text();
    }
    return texts;
}

// Drags the splitter's handle by the mouse to `x` in the splitter.
void dragSplitterTo(QSplitter &split, int x)
{
    QSplitterHandle *handle = split.handle(1);
    const QPoint grip = handle->rect().center();
    QTest::mousePress(handle, Qt::LeftButton, {}, grip);
    QTest::mouseMove(handle, QPoint(x - handle->x(), grip.y()));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, QPoint(x - handle->x(), grip.y()));
}

// Activation that holds each batch chunk until the test lets it through.
class GatedActivation : public InstantActivation
{
public:
    explicit GatedActivation(QSemaphore &gate) : m_gate(gate) {}
    QList<bool> activateFonts(const QStringList &paths) override
    {
        m_gate.acquire();
        return QList<bool>(paths.size(), true);
    }

private:
    QSemaphore &m_gate;
};

} // namespace

// The window has no title of its own, opens at 1100 × 650, never gets smaller than
// 900 × 500, and its sidebar stays between 180 and 260 wide whatever the divider's drag:
// nothing can fold it away.
TEST(MainWindow, KeepsItsSizesAndItsSidebar)
{
    auto window = openWindow();
    EXPECT_TRUE(window->windowTitle().isEmpty());
    EXPECT_EQ(window->size(), QSize(1100, 650));
    window->resize(400, 300);
    EXPECT_GE(window->width(), 900);
    EXPECT_GE(window->height(), 500);

    QSplitter &split = window->splitter();
    for (const auto &[x, width] : {std::pair{0, 180}, std::pair{-50, 180}, std::pair{700, 260}, std::pair{220, 220}}) {
        dragSplitterTo(split, x);
        EXPECT_NEAR(window->sidebar().width(), width, 2) << "dragged to " << x;
        EXPECT_TRUE(window->sidebar().isVisible());
    }
    EXPECT_FALSE(window->toolbar().isMovable());
    EXPECT_EQ(window->createPopupMenu(), nullptr); // no menu that could hide the toolbar
    for (QAction *action : window->findChildren<QAction *>())
        EXPECT_FALSE(action->text().contains(u"sidebar"_s, Qt::CaseInsensitive)) << action->text().toStdString();
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(window->isVisible());
}

TEST(MainWindow, ShowsAFailedSaveUntilASaveSucceeds)
{
    MainWindow window(Assembly::store());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QLabel *banner = nullptr;
    for (QLabel *label : window.findChildren<QLabel *>()) {
        if (label->accessibleName() == QStringLiteral("Save problem"))
            banner = label;
    }
    ASSERT_NE(banner, nullptr);
    EXPECT_FALSE(banner->isVisible());

    // A folder where the file should be: the replacing rename fails.
    const QString storage = PersistenceService::defaultStorageFolder();
    const QString blocker = TestSupport::makeDir(storage + QStringLiteral("/sources.json/inside"));
    QSignalSpy failure(&window.state(), &AppState::saveFailureChanged);
    TestSupport::capturedStdout([&] {
        window.state().addSource(TestSupport::makeDir(TestSupport::testRoot() + QStringLiteral("/Fonts")));
        ASSERT_TRUE(failure.wait(10'000));
    });
    EXPECT_TRUE(banner->isVisible());
    EXPECT_EQ(banner->accessibleName(), banner->text()) << "heard as it reads";
    EXPECT_EQ(banner->text(), QStringLiteral("Morvane can't save its library in ~/.local/share/Morvane: Is a directory. "
                                             "Changes made now are lost when Morvane quits, unless the folder can be "
                                             "written again before then."));
    // Readable in a dark palette too: the palette's own text on a dark wash.
    QPalette dark = window.palette();
    dark.setColor(QPalette::Window, QColor(30, 30, 30));
    dark.setColor(QPalette::WindowText, QColor(235, 235, 235));
    window.setPalette(dark);
    QImage shot(banner->size(), QImage::Format_ARGB32);
    banner->render(&shot);
    EXPECT_LT(shot.pixelColor(2, 2).lightness(), 80) << "the wash follows the dark window";

    ASSERT_TRUE(QDir(storage + QStringLiteral("/sources.json")).removeRecursively());
    window.state().addSource(TestSupport::makeDir(TestSupport::testRoot() + QStringLiteral("/More")));
    ASSERT_TRUE(failure.wait(10'000));
    EXPECT_FALSE(banner->isVisible());
    EXPECT_TRUE(window.state().saveFailure().isEmpty());
    EXPECT_TRUE(QFileInfo(storage + QStringLiteral("/sources.json")).isFile());
}

// The detail area shows the first that holds: the results while searching, the
// browser for a source, the view of a collection, else the empty state, which reads
// "No Font Sources" even when sources exist.
TEST(MainWindow, DetailShowsTheFirstThatHolds)
{
    WindowFixture::saveSansLibrary();
    auto window = openWindow();
    AppState &store = window->state();
    ASSERT_TRUE(store.selectedSource());
    EXPECT_EQ(window->detail(), &window->browser());

    store.createCollection(u"Picks"_s);
    ASSERT_TRUE(store.selectedCollection());
    ASSERT_TRUE(window->collectionView());
    EXPECT_EQ(window->detail(), window->collectionView());
    EXPECT_TRUE(window->collectionView()->isVisible());

    store.setSidebarSelection(std::nullopt);
    EXPECT_EQ(window->detail(), &window->emptyState());
    EXPECT_EQ(window->collectionView(), nullptr);
    EXPECT_TRUE(window->emptyState().isVisible());
    EXPECT_TRUE(labelTexts(&window->emptyState()).contains(u"No Font Sources"_s));

    QTest::keyClicks(window->searchField().lineEdit(), u"Sans"_s);
    EXPECT_EQ(window->detail(), &window->searchResults());
    EXPECT_TRUE(window->searchResults().isVisible());
}

// With nothing saved the window invites a first folder; its button runs the folder
// chooser and adds every chosen folder in order, and a cancelled chooser adds nothing.
TEST(MainWindow, EmptyStateAddsTheChosenFolders)
{
    auto window = openWindow();
    EmptyStateView &empty = window->emptyState();
    ASSERT_EQ(window->detail(), &empty);
    EXPECT_TRUE(labelTexts(&empty).contains(u"No Font Sources"_s));
    EXPECT_TRUE(labelTexts(&empty).contains(u"Add a folder containing your fonts to get started."_s));
    EXPECT_EQ(empty.addButton()->text(), u"Add Folder"_s);

    QStringList chosen;
    window->sidebar().setFolderChooser([&] { return chosen; });
    QTest::mouseClick(empty.addButton(), Qt::LeftButton);
    EXPECT_TRUE(window->state().sources().isEmpty()) << "cancelled";

    chosen = {TestSupport::makeDir(TestSupport::testRoot() + u"/Zeta"_s),
              TestSupport::makeDir(TestSupport::testRoot() + u"/Alpha"_s)};
    QTest::mouseClick(empty.addButton(), Qt::LeftButton);
    ASSERT_EQ(window->state().sources().size(), 2);
    EXPECT_EQ(window->state().sources().at(0).path, chosen.at(0));
    EXPECT_EQ(window->state().sources().at(1).path, chosen.at(1));
}

// While the library is re-indexed a spinner and its words sit above the detail area,
// taking room from it rather than covering it; the divider stays afterwards.
TEST(MainWindow, ReindexingStripShowsWhileTheLibraryIsIndexed)
{
    WindowFixture::saveSansLibrary();
    auto window = openWindow();
    ReindexingStrip &strip = window->reindexingStrip();
    EXPECT_FALSE(strip.indicator()->isVisible());
    EXPECT_TRUE(strip.isVisible()) << "the divider";
    EXPECT_TRUE(QTest::qWaitFor([&] { return strip.height() == 1; })) << "the divider alone";
    const int calmTop = window->browser().mapTo(window.get(), QPoint()).y();

    // The scan waits for the test, so the strip's moment lasts.
    QSemaphore gate;
    window->state().setLibraryScannerForTesting(
        [&gate](const AppState::LibraryScanRequest &, const CancellationToken &) {
            gate.acquire();
            return AppState::LibraryScan{std::make_shared<FileSystemService>(), {}, {}, 0};
        });
    window->state().refreshFileSystem();
    ASSERT_TRUE(window->state().isIndexing());
    EXPECT_TRUE(strip.indicator()->isVisible());
    EXPECT_TRUE(labelTexts(&strip).contains(u"Updating font library…"_s));
    EXPECT_TRUE(QTest::qWaitFor([&] { return window->browser().mapTo(window.get(), QPoint()).y() > calmTop; }))
        << "the strip takes room";
    gate.release();

    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->state().isIndexing(); }, 20'000));
    EXPECT_FALSE(strip.indicator()->isVisible());
}

// A batch job dims the whole window under a card with its message and percentage; a
// click on a sidebar row and a menu shortcut meanwhile do nothing; then it goes and the
// window answers again.
TEST(MainWindow, ProcessingOverlayShowsTheJobAndSwallowsInput)
{
    EXPECT_EQ(ProcessingOverlay::percentText(0.999), u"99%"_s);
    EXPECT_EQ(ProcessingOverlay::percentText(1.0), u"100%"_s);
    EXPECT_EQ(ProcessingOverlay::percentText(29.0 / 100), u"29%"_s) << "not 28: 0.29 × 100 is 28.999… in binary";

    const QString library = TestSupport::makeDir(TestSupport::testRoot() + u"/Fonts"_s);
    for (int i = 0; i < 16; ++i)
        TestSupport::writeFile(library + u"/Batch/f%1.ttf"_s.arg(i, 2, 10, QChar(u'0')));
    saveOneSource(library);
    QSemaphore gate;
    auto window = openWindow(std::make_unique<GatedActivation>(gate));
    AppState &store = window->state();
    store.createCollection(u"Picks"_s);
    store.setSidebarSelection(SidebarItem(store.sources().first()));
    SidebarList *collections = window->sidebar().collectionsList();
    const QPoint onPicks = collections->viewport()->mapTo(
        window.get(), collections->visualRect(collections->indexForRow(window->sidebar().sidebarModel()->firstCollectionRow())).center());

    store.toggleActivation(FontNode::folder(library + u"/Batch"_s));
    ASSERT_TRUE(QTest::qWaitFor([&] { return store.isProcessing(); }));
    ProcessingOverlay &overlay = window->overlay();
    ASSERT_TRUE(QTest::qWaitFor([&] { return overlay.isVisible(); })) << "after its first 200 ms";
    EXPECT_EQ(overlay.geometry(), window->rect()) << "toolbar and sidebar included";
    EXPECT_EQ(overlay.message()->text(), u"Activating fonts (0 of 16)..."_s);
    EXPECT_EQ(overlay.percentage()->text(), u"0%"_s);

    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, onPicks);
    EXPECT_TRUE(store.selectedSource()) << "the click did not reach the sidebar";
    QTest::keyClick(window->windowHandle(), Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(window->windowHandle(), Qt::Key_Down);
    EXPECT_EQ(store.collections().size(), 1);
    EXPECT_TRUE(store.selectedSource());

    gate.release();
    ASSERT_TRUE(QTest::qWaitFor([&] { return overlay.percentage()->text() == u"50%"_s; }));
    EXPECT_EQ(overlay.message()->text(), u"Activating fonts (8 of 16)..."_s);
    EXPECT_EQ(overlay.bar()->value(), overlay.bar()->maximum() / 2);
    {
        // As drawn on the window, through the fade: the filled part follows the figure.
        ASSERT_TRUE(QTest::qWaitFor([&] { return !overlay.graphicsEffect()->isEnabled(); })) << "the fade-in is over";
        const QImage shot = window->grab().toImage();
        const QRect bar(overlay.bar()->mapTo(window.get(), QPoint(0, 0)), overlay.bar()->size());
        const QColor fill = overlay.bar()->palette().color(QPalette::Highlight);
        int filled = 0;
        for (int x = bar.left(); x <= bar.right(); ++x) {
            const QColor pixel = shot.pixelColor(x, bar.center().y());
            filled += std::abs(pixel.hue() - fill.hue()) < 12 && pixel.saturation() > 60;
        }
        EXPECT_NEAR(double(filled) / bar.width(), 0.5, 0.1);
    }
    gate.release();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !overlay.isVisible(); }));
    EXPECT_EQ(store.activatedFonts().size(), 16);

    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, onPicks);
    EXPECT_TRUE(store.selectedCollection()) << "clicks reach the window again";
}

// Tab reaches every control of the window, and each tells a screen reader its name:
// beside the browser, the search results and the empty state alike.
TEST(MainWindow, EveryControlTabReachesHasAnAccessibleName)
{
    WindowFixture::saveSansLibrary();
    auto window = openWindow();
    window->activateWindow();
    const auto walk = [&](const char *where) {
        QSet<QWidget *> seen;
        int named = 0;
        for (QWidget *widget = window->nextInFocusChain(); widget && !seen.contains(widget);
             widget = widget->nextInFocusChain()) {
            seen.insert(widget);
            if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isVisibleTo(window.get()) || widget == window.get())
                continue;
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << where << ": " << widget->metaObject()->className();
            ++named;
        }
        EXPECT_GE(named, 4) << where; // the search field, the two sidebar lists and more
    };
    walk("browser");
    QTest::keyClicks(window->searchField().lineEdit(), u"Sans"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->state().isSearchingFolders(); }));
    ASSERT_EQ(window->searchResults().currentWidget(), window->searchResults().list());
    walk("search results");
    window->searchField().setDraft(QString());
    window->state().setSidebarSelection(std::nullopt);
    ASSERT_EQ(window->detail(), &window->emptyState());
    walk("empty state");
}

// The detail area follows the sidebar: a source's browser, or a collection's view,
// into whose members Right moves the keyboard.
TEST(MainWindow, ShowsTheSelectedCollectionBesideTheSidebar)
{
    const QString library = TestSupport::makeDir(TestSupport::testRoot() + QStringLiteral("/Fonts"));
    const QString font = TestSupport::writeFile(library + QStringLiteral("/a.ttf"));
    saveOneSource(library);
    MainWindow window(Assembly::store());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window.state().isIndexing(); }, 20'000));
    EXPECT_EQ(window.collectionView(), nullptr);
    EXPECT_TRUE(window.browser().isVisible());

    window.state().createCollection(QStringLiteral("Picks"));
    window.state().addToCollection(window.state().collections().first().id, FontNode::fontFile(font));
    ASSERT_TRUE(window.collectionView());
    EXPECT_TRUE(window.collectionView()->isVisible());
    EXPECT_FALSE(window.browser().isVisible());
    window.sidebar().collectionsList()->setFocus();
    EXPECT_EQ(window.collectionView()->memberList()->model()->rowCount(), 1) << "the view shows the member just added";
    QTest::keyClick(window.sidebar().collectionsList(), Qt::Key_Right);
    EXPECT_TRUE(window.collectionView()->memberList()->hasFocus());
    EXPECT_EQ(window.collectionView()->memberList()->currentIndex().row(), 0);

    window.state().setSidebarSelection(SidebarItem(window.state().sources().first()));
    EXPECT_EQ(window.collectionView(), nullptr);
    EXPECT_TRUE(window.browser().isVisible());
}

// Widgets replaced because the store changed go once the event that changed it is over:
// Enter on a collection member jumps to its source and so replaces the collection's
// view while its list still handles the key; a crumb of the path bar rebuilds the bar
// from inside its own click.
TEST(MainWindow, AViewReplacedByItsOwnEventOutlivesThatEvent)
{
    const QString library = WindowFixture::saveSansLibrary();
    auto window = openWindow();
    AppState &store = window->state();
    store.createCollection(u"Picks"_s);
    const FontCollection picks = store.collections().first();
    store.addToCollection(picks.id, FontNode::fontFile(library + u"/Sans/a.ttf"_s));
    store.setSidebarSelection(SidebarItem(store.collections().first()));
    QPointer<CollectionView> view = window->collectionView();
    ASSERT_TRUE(view);
    CollectionMemberList *members = view->memberList();
    members->setCurrentIndex(members->model()->index(0, 0));
    members->setFocus(Qt::OtherFocusReason);
    QSignalSpy viewGone(view.data(), &QObject::destroyed);
    QTest::keyClick(members, Qt::Key_Return);
    EXPECT_TRUE(store.selectedSource()) << "Enter jumps to the member's source";
    EXPECT_EQ(viewGone.count(), 0) << "deleted inside its own key press";
    EXPECT_EQ(window->detail(), &window->browser());
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.isNull(); }));

    // The browser now shows Fonts › Sans › a.ttf: the first crumb goes back to the root.
    QToolButton *root = nullptr;
    for (QToolButton *crumb : window->browser().findChildren<QToolButton *>()) {
        if (crumb->accessibleName() == u"Fonts"_s && crumb->isVisible())
            root = crumb;
    }
    ASSERT_TRUE(root);
    QPointer<QToolButton> clicked = root;
    QSignalSpy crumbGone(root, &QObject::destroyed);
    QTest::mouseClick(root, Qt::LeftButton);
    EXPECT_TRUE(store.navigationPath().isEmpty());
    EXPECT_EQ(crumbGone.count(), 0) << "deleted inside its own click";
    ASSERT_TRUE(QTest::qWaitFor([&] { return clicked.isNull(); }));
}

// A jump to a search hit brings its rows into view, even rows the user had chosen
// before and scrolled away: its source in the sidebar, its folder in the browser. The
// window takes the store's two requests and leaves none pending.
TEST(MainWindowJumps, AJumpRevealsItsRowsWhereverTheyWereScrolled)
{
    QByteArray json = "[";
    QString last;
    for (int i = 0; i < 30; ++i) {
        last = TestSupport::makeDir(TestSupport::testRoot() + u"/S%1"_s.arg(i, 2, 10, QChar(u'0')));
        json += (i ? "," : "") + QByteArray("{\"id\":\"") + QUuid::createUuid().toString(QUuid::WithoutBraces).toUtf8()
                + "\",\"name\":\"S" + QByteArray::number(i) + "\",\"path\":\"" + last.toUtf8() + "\"}";
    }
    for (int i = 0; i < 60; ++i)
        TestSupport::writeFile(last + u"/Deep%1/f.ttf"_s.arg(i, 2, 10, QChar(u'0')));
    TestSupport::writeFile(PersistenceService::defaultStorageFolder() + u"/sources.json"_s, json + "]");
    auto window = WindowFixture::openWindow();
    window->resize(900, 500);
    AppState &store = window->state();
    SidebarList *sources = window->sidebar().sourcesList();

    const auto jump = [&] {
        store.setSearchQuery(u"Deep50"_s);
        EXPECT_TRUE(QTest::qWaitFor([&] { return store.searchResults().size() == 1; }, 10'000));
        SearchResultsList *hits = window->searchResults().list();
        EXPECT_TRUE(QTest::qWaitFor([&] { return hits->isVisible(); }));
        QTest::mouseClick(hits->viewport(), Qt::LeftButton, {}, hits->visualRect(hits->model()->index(0, 0)).center());
        EXPECT_TRUE(QTest::qWaitFor([&] { return window->browser().isVisible() && window->browser().columns().size() == 2; }));
    };
    const auto inView = [](QAbstractItemView *list, const QModelIndex &index) {
        const QRect row = list->visualRect(index);
        return index.isValid() && row.top() >= 0 && row.bottom() <= list->viewport()->height();
    };
    const auto deep50 = [&] {
        SingleColumnView *first = window->browser().columns().first();
        const FontNodeListModel *rows = first->nodeModel();
        return rows->index(rows->rowOf(last + u"/Deep50"_s));
    };
    for (int round = 0; round < 2; ++round) {
        jump();
        ASSERT_TRUE(store.selectedSource());
        EXPECT_EQ(store.selectedSource()->path, last) << "round " << round;
        // The columns lay themselves out, and scroll, after the event that made them.
        EXPECT_TRUE(QTest::qWaitFor([&] { return inView(sources, sources->currentIndex()); })) << "round " << round;
        EXPECT_TRUE(QTest::qWaitFor([&] { return inView(window->browser().columns().first(), deep50()); }))
            << "round " << round;
        // The user scrolls both away before the next jump to the same place.
        sources->scrollToTop();
        window->browser().columns().first()->scrollToTop();
    }
}

// A batch over within 200 ms shows no card and leaves the keys where they were; a longer
// one shows "Cancel", and Escape stops it after the chunk in hand: what was done stays
// done and saved, the rest is left, and the message area says how far it got.
TEST(MainWindow, QuickBatchesShowNothingAndLongOnesCanBeStopped)
{
    const QString library = TestSupport::makeDir(TestSupport::testRoot() + u"/Fonts"_s);
    for (int i = 0; i < 24; ++i)
        TestSupport::writeFile(library + u"/Batch/f%1.ttf"_s.arg(i, 2, 10, QChar(u'0')));
    saveOneSource(library);
    QSemaphore gate;
    auto window = openWindow(std::make_unique<GatedActivation>(gate));
    AppState &store = window->state();
    ProcessingOverlay &overlay = window->overlay();
    window->searchField().lineEdit()->setFocus();
    bool everShown = false;
    const QMetaObject::Connection watch = QObject::connect(&store, &AppState::processingProgressChanged, &overlay,
                                                           [&] { everShown |= overlay.isVisible(); });

    gate.release(1);
    store.toggleActivation(FontNode::fontFile(library + u"/Batch/f00.ttf"_s));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }));
    everShown |= overlay.isVisible();
    EXPECT_FALSE(everShown) << "a quick toggle flashes no card";
    EXPECT_EQ(QApplication::focusWidget(), window->searchField().lineEdit());
    QObject::disconnect(watch);

    store.toggleActivation(FontNode::folder(library + u"/Batch"_s));
    ASSERT_TRUE(QTest::qWaitFor([&] { return overlay.isVisible(); }));
    EXPECT_TRUE(overlay.cancelButton()->isVisible());
    EXPECT_FALSE(overlay.stalledNote()->isVisible());
    QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
    gate.release(1); // the chunk in hand ends; no other starts
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }));
    EXPECT_EQ(store.activatedFonts().size(), 9) << "f00, then the eight in hand";
    EXPECT_EQ(store.notice(), u"Stopped after activating 8 of 24 fonts; the others are as they were."_s);
    EXPECT_TRUE(window->messageArea().isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return PersistenceService().loadActivatedFonts() == store.activatedFonts(); }))
        << "saved as it stands";
}


// Tab walks the window in one order and changes nothing that is chosen or shown: the
// sidebar's lists (Library, Sources, Collections) and their add buttons, the search field, the browser's columns, then
// the preview's controls; Shift+Tab walks back.
TEST(MainWindowKeys, TabWalksInOneOrderAndChoosesNothing)
{
    const QString library = TestSupport::makeDir(TestSupport::testRoot() + u"/Fonts"_s);
    TestSupport::makeDir(library + u"/Sans"_s);
    QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s, library + u"/Sans/DejaVuSans.ttf"_s);
    saveOneSource(library);
    auto window = openWindow();
    AppState &store = window->state();
    store.createCollection(u"Picks"_s);
    store.setSidebarSelection(SidebarItem(store.sources().first()));
    store.selectNode(FontNode::folder(library + u"/Sans"_s), 0);
    store.selectNode(FontNode::fontFile(library + u"/Sans/DejaVuSans.ttf"_s), 1);
    ASSERT_TRUE(window->browser().previewPane());
    window->activateWindow();
    window->sidebar().libraryList()->setFocus(Qt::OtherFocusReason);
    const auto chosen = [&] {
        return QStringList{store.sidebarSelection() ? store.sidebarSelection()->payloadId().toString() : QString(),
                           store.searchQuery(),
                           store.selectedFont() ? store.selectedFont()->path() : QString(),
                           QString::number(store.navigationPath().size())};
    };
    const QStringList before = chosen();
    const QStringList expected{u"Library"_s, u"Sources"_s, u"Collections"_s, u"Add a font folder source"_s, u"New Collection"_s,
                               u"Search"_s, u"Column 1"_s, u"Column 2"_s, u"Preview"_s};
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        QStringList order;
        for (qsizetype step = 0; step < expected.size(); ++step) {
            QWidget *focus = QApplication::focusWidget();
            ASSERT_TRUE(focus);
            order.append(focus->accessibleName());
            QTest::keyClick(focus, key);
            EXPECT_EQ(chosen(), before) << "after " << order.last().toStdString();
            EXPECT_EQ(window->detail(), &window->browser()) << "after " << order.last().toStdString();
        }
        if (key == Qt::Key_Tab) {
            EXPECT_EQ(order, expected);
            window->browser().previewPane()->setFocus(Qt::OtherFocusReason); // walk back from the end
        } else {
            QStringList reversed(expected.crbegin(), expected.crend());
            EXPECT_EQ(order, reversed);
        }
    }
}

// The keys reach what the mouse reaches: Space on a sidebar row toggles it, Shift+F10
// opens the menu of what has the keys (and its activation item works), and Down in the
// search field goes on to the hits.
TEST(MainWindowKeys, SpaceShiftF10AndDownDoWhatTheMouseDoes)
{
    const QString library = WindowFixture::saveSansLibrary();
    auto window = openWindow();
    AppState &store = window->state();
    window->activateWindow();
    SidebarList *sources = window->sidebar().sourcesList();
    sources->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(sources, Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return store.activatedFonts().size() == 1 && !store.isProcessing(); }));

    QMenu *menu = nullptr;
    QTimer::singleShot(0, [&] {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F10, Qt::ShiftModifier);
        menu = sources->findChild<QMenu *>();
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return menu && menu->isVisible(); }));
    EXPECT_EQ(menu->actions().first()->text().remove(u'&'), u"Deactivate All Fonts in Source"_s);
    menu->actions().first()->trigger();
    menu->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return store.activatedFonts().isEmpty() && !store.isProcessing(); }));

    QLineEdit *field = window->searchField().lineEdit();
    field->setFocus(Qt::OtherFocusReason);
    QTest::keyClicks(field, u"Sans"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return store.searchResults().size() == 1 && window->searchResults().list()->isVisible(); }));
    QTest::keyClick(field, Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), window->searchResults().list());
    EXPECT_EQ(window->searchResults().list()->currentIndex().row(), 0);
    EXPECT_EQ(store.searchQuery(), u"Sans"_s) << "moving into the hits keeps the search";
    QTest::keyClick(window->searchResults().list(), Qt::Key_Return);
    EXPECT_EQ(store.navigationPath().value(0).path(), library + u"/Sans"_s);
}


// The window opens where and as large as the user left it, its sidebar as wide.
TEST(MainWindow, RemembersItsSizeAndSidebarWidthAcrossStarts)
{
    WindowFixture::saveSansLibrary();
    {
        auto window = openWindow();
        window->resize(1234, 777);
        window->splitter().setSizes({240, 994});
        ASSERT_EQ(window->splitter().sizes().value(0), 240);
        ASSERT_TRUE(window->close());
    }
    auto next = openWindow();
    EXPECT_EQ(next->size(), QSize(1234, 777));
    EXPECT_EQ(next->splitter().sizes().value(0), 240);
}

// What a first start says is readable, as drawn: the sidebar's "No Sources" row and the
// centre's hint reach 4.5:1 against what lies behind them, in a light and a dark palette.
TEST(MainWindowLooks, FirstStartWordsReachFourAndAHalfToOne)
{
    auto window = openWindow();
    ASSERT_EQ(window->detail(), &window->emptyState());
    QPalette dark = window->palette();
    dark.setColor(QPalette::Window, QColor(40, 40, 40));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::WindowText, QColor(235, 235, 235));
    dark.setColor(QPalette::Text, QColor(235, 235, 235));
    // The strongest text pixel against the region's own corner, which is background.
    const auto measured = [](const QImage &shot, const QRect &region) {
        const QColor background = shot.pixelColor(region.topLeft());
        double best = 1;
        for (int y = region.top(); y <= region.bottom(); ++y) {
            for (int x = region.left(); x <= region.right(); ++x)
                best = std::max(best, Symbols::contrast(shot.pixelColor(x, y), background));
        }
        return best;
    };
    for (const QPalette &palette : {window->palette(), dark}) {
        window->setPalette(palette);
        QLabel *hint = nullptr;
        for (QLabel *label : window->emptyState().findChildren<QLabel *>())
            hint = label->text().startsWith(u"Add a folder"_s) ? label : hint;
        ASSERT_TRUE(hint);
        SidebarList *sources = window->sidebar().sourcesList();
        const QRect row = sources->visualRect(sources->model()->index(0, 0));
        const QImage shot = window->grab().toImage();
        const QRect hintArea(hint->mapTo(window.get(), QPoint(0, 0)), hint->size());
        const QRect rowArea(sources->viewport()->mapTo(window.get(), row.topLeft()), row.size());
        EXPECT_GE(measured(shot, hintArea), 4.5) << "the hint, window colour " << palette.color(QPalette::Window).name().toStdString();
        EXPECT_GE(measured(shot, rowArea.adjusted(4, 30, -4, -2)), 4.5)
            << "the placeholder's words, window colour " << palette.color(QPalette::Window).name().toStdString();
    }
}

// What a file manager's "Open With" or the command line gives the window: a font file is
// shown with its preview until the sidebar is used; a folder is offered as a source;
// anything else is named in the message area.
TEST(MainWindow, OpensFontFilesAndOffersFoldersAsSources)
{
    auto window = openWindow();
    const QString elsewhere = TestSupport::makeDir(TestSupport::testRoot() + u"/Downloads"_s);
    const QString font = elsewhere + u"/Plain.ttf"_s;
    ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Plain.ttf"), font));
    const QString notes = TestSupport::writeFile(elsewhere + u"/read me.txt"_s, "text");

    window->openPaths({font});
    auto *page = qobject_cast<OpenedFontView *>(window->detail());
    ASSERT_TRUE(page);
    EXPECT_EQ(page->path(), font);
    EXPECT_TRUE(page->addFolderButton()->isEnabled()) << "the folder is no source yet";
    ASSERT_TRUE(QTest::qWaitFor([&] { return !page->preview()->isLoading(); }));
    EXPECT_TRUE(page->preview()->metadata().has_value()) << "the file's own details";

    // A folder asked about and declined changes nothing; accepted, it is a source, and
    // the opened font's page knows its folder is in the library now.
    QStringList asked;
    window->openPaths({elsewhere}, [&](const QString &folder) { asked.append(folder); return false; });
    EXPECT_EQ(asked, QStringList{elsewhere});
    EXPECT_TRUE(window->state().sources().isEmpty());
    window->openPaths({font});
    page = qobject_cast<OpenedFontView *>(window->detail());
    ASSERT_TRUE(page);
    QTest::mouseClick(page->addFolderButton(), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->state().sources().size() == 1; }));
    EXPECT_EQ(window->state().sources().first().path, elsewhere);
    EXPECT_NE(window->detail(), page) << "the new source is shown";

    window->openPaths({notes, elsewhere + u"/gone.ttf"_s}, [](const QString &) { return false; });
    EXPECT_TRUE(window->state().notice().contains(u"2 items can't be opened"_s)) << window->state().notice().toStdString();
    EXPECT_EQ(window->state().noticeDetails(), (QStringList{notes, elsewhere + u"/gone.ttf"_s}));
}

// The page of an opened font in a dark palette: its name and where it lives are light on
// dark, at 4.5:1 at least.
TEST(MainWindowLooks, AnOpenedFontsPageReadsInADarkPalette)
{
    auto window = openWindow();
    const QString elsewhere = TestSupport::makeDir(TestSupport::testRoot() + u"/Downloads"_s);
    const QString font = elsewhere + u"/Plain.ttf"_s;
    ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Plain.ttf"), font));
    QPalette dark = window->palette();
    dark.setColor(QPalette::Window, QColor(40, 40, 40));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::WindowText, QColor(235, 235, 235));
    dark.setColor(QPalette::Text, QColor(235, 235, 235));
    window->setPalette(dark);
    window->openPaths({font});
    auto *page = qobject_cast<OpenedFontView *>(window->detail());
    ASSERT_TRUE(page);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !page->preview()->isLoading(); }));
    const QImage shot = window->grab().toImage();
    if (qEnvironmentVariableIsSet("MORVANE_SAVE_SHOTS"))
        shot.save(qEnvironmentVariable("MORVANE_SAVE_SHOTS") + u"/opened-dark.png"_s);
    for (const QLabel *label : page->findChildren<QLabel *>()) {
        if (label->text() != u"Plain.ttf"_s && !label->text().startsWith(u"In "_s))
            continue;
        const QRect area(label->mapTo(window.get(), QPoint(0, 0)), label->size());
        const QColor background = shot.pixelColor(area.topLeft());
        double best = 1;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x)
                best = std::max(best, Symbols::contrast(shot.pixelColor(x, y), background));
        }
        EXPECT_LT(background.lightness(), 80) << label->text().toStdString() << " is not on a dark background";
        EXPECT_GE(best, 4.5) << label->text().toStdString();
    }
}
