// SPDX-License-Identifier: GPL-3.0-or-later
// The font list through the real window: "All Fonts" shows the catalogue's families as
// its query returns them, each drawn from its own file; the filter narrows them; keys open,
// close and toggle; "Active Fonts" holds only what is active; the sidebar counts faces.
#include "InkMeasure.h"
#include "TestSupport.h"
#include "WindowFixture.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/common/ContextMenus.h"
#include "ui/fontlist/CompareView.h"
#include "ui/fontlist/FontFilterBar.h"
#include "ui/fontlist/FontListDelegate.h"
#include "ui/fontlist/FontListModel.h"
#include "ui/fontlist/FontListView.h"
#include "ui/fontlist/FontSampleCache.h"
#include "ui/preview/AxisControls.h"
#include "ui/search/SearchResultsView.h"
#include "ui/sidebar/LibraryList.h"
#include "ui/sidebar/SidebarList.h"
#include "ui/sidebar/SidebarModel.h"
#include "ui/window/ToolbarInputField.h"
#include "ui/sidebar/SidebarView.h"
#include "ui/window/MainWindow.h"

#include <QContextMenuEvent>
#include <QCoroTask>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <QMimeData>
#include <QDropEvent>
#include <QPushButton>
#include <QSlider>
#include <QToolButton>

#include <functional>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace WindowFixture;

namespace {

class FontList : public testing::Test
{
protected:
    void SetUp() override
    {
        library = TestSupport::makeDir(TestSupport::testRoot() + u"/Fonts"_s);
        const QString dejavu = u"/usr/share/fonts/truetype/dejavu/"_s;
        for (const QString &name : {u"DejaVuSans.ttf"_s, u"DejaVuSans-Bold.ttf"_s, u"DejaVuSansMono.ttf"_s, u"DejaVuSerif.ttf"_s})
            ASSERT_TRUE(QFile::copy(dejavu + name, TestSupport::makeDir(library + u"/DejaVu"_s) + u'/' + name));
        ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Impostor.ttf"),
                                TestSupport::makeDir(library + u"/Odd"_s) + u"/Impostor.ttf"_s));
        saveOneSource(library);
        window = openWindow();
        ASSERT_TRUE(store().waitForCatalogue(60'000));
    }

    AppState &store() { return window->state(); }
    LibraryList *libraryList() { return window->sidebar().libraryList(); }
    void choose(LibraryView::Kind kind)
    {
        const QRect row = libraryList()->visualRect(libraryList()->model()->index(int(kind), 0));
        QTest::mouseClick(libraryList()->viewport(), Qt::LeftButton, {}, row.center());
    }
    FontListView *list() { return window->fontList(); }
    // The families the list shows, once its answer has come.
    QStringList families()
    {
        EXPECT_TRUE(QTest::qWaitFor([&] { return list() && !list()->isQuerying(); }, 10'000));
        QStringList names;
        const FontListModel *model = list()->model();
        for (int row = 0; row < model->rowCount(); ++row)
            names.append(model->index(row, 0).data().toString());
        return names;
    }

    QString library;
    std::unique_ptr<MainWindow> window;
};

} // namespace

TEST_F(FontList, AllFontsShowsTheCataloguesFamiliesAndTheFilterNarrowsThem)
{
    choose(LibraryView::AllFonts);
    ASSERT_TRUE(list());
    EXPECT_EQ(window->detail(), list());
    EXPECT_EQ(families(), (QStringList{u"DejaVu Sans"_s, u"DejaVu Sans Mono"_s, u"DejaVu Serif"_s}));
    EXPECT_EQ(list()->countLabel()->text(), u"3 families, 5 faces"_s) << "the impostor is a third DejaVu Sans face";
    EXPECT_EQ(list()->model()->index(0, 0).data(FontListModel::CaptionRole).toString(), u"3 styles"_s);
    EXPECT_EQ(list()->model()->index(1, 0).data(FontListModel::CaptionRole).toString(), u"1 style"_s);
    EXPECT_EQ(list()->model()->index(0, 0).data(FontListModel::PathRole).toString(), library + u"/DejaVu/DejaVuSans.ttf"_s)
        << "the family is drawn by its own regular face, not the impostor that borrows its name";
    // The sidebar says how many faces each list holds.
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().libraryFaceCount(LibraryView::AllFonts) == 5; }));
    EXPECT_EQ(libraryList()->model()->index(0, 0).data(Qt::AccessibleDescriptionRole).toString(), u"5 fonts"_s);

    const struct
    {
        QString filter;
        QStringList families;
    } cases[] = {
        {u"mono"_s, {u"DejaVu Sans Mono"_s}},
        {u"SÉRIF"_s, {u"DejaVu Serif"_s}},
        {u"dejavu \"Ő\""_s, {u"DejaVu Sans"_s, u"DejaVu Sans Mono"_s, u"DejaVu Serif"_s}},
        {u"\"Ő\""_s, {u"DejaVu Sans"_s, u"DejaVu Sans Mono"_s, u"DejaVu Serif"_s}},
        {u"nothing like it"_s, {}},
        {QString(), {u"DejaVu Sans"_s, u"DejaVu Sans Mono"_s, u"DejaVu Serif"_s}},
    };
    for (const auto &c : cases) {
        list()->filterField()->setText(c.filter);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !list()->isQuerying(); })) << c.filter.toStdString();
        EXPECT_TRUE(QTest::qWaitFor([&] { return families() == c.families; }, 3000))
            << c.filter.toStdString() << ": " << families().join(u", "_s).toStdString();
    }
    // The impostor maps no "Ő": with it the DejaVu Sans family keeps its two real faces.
    list()->filterField()->setText(u"\"Ő\""_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list()->countLabel()->text() == u"3 families, 4 faces"_s; }));
}

TEST_F(FontList, KeysOpenCloseAndToggleAndActiveFontsHoldsTheActive)
{
    choose(LibraryView::AllFonts);
    ASSERT_EQ(families().value(0), u"DejaVu Sans"_s);
    FontListTree *tree = list()->tree();
    tree->setFocus();
    tree->setCurrentIndex(list()->model()->index(0, 0));
    QTest::keyClick(tree, Qt::Key_Right);
    EXPECT_TRUE(tree->isExpanded(list()->model()->index(0, 0))) << "Right opens the family";
    QTest::keyClick(tree, Qt::Key_Left);
    EXPECT_FALSE(tree->isExpanded(list()->model()->index(0, 0))) << "Left closes it";

    // Space toggles the whole family: every face's file, then none.
    QTest::keyClick(tree, Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().activatedFonts().size() == 3 && !store().isProcessing(); }));
    EXPECT_EQ(list()->model()->index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
    // One face off: the family is mixed.
    QTest::keyClick(tree, Qt::Key_Right);
    QTest::keyClick(tree, Qt::Key_Down);
    const QModelIndex face = tree->currentIndex();
    ASSERT_EQ(face.parent(), list()->model()->index(0, 0));
    QTest::keyClick(tree, Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().activatedFonts().size() == 2 && !store().isProcessing(); }));
    EXPECT_EQ(list()->model()->index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));

    // "Active Fonts": only the two active faces, and their count in the sidebar.
    choose(LibraryView::ActiveFonts);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list()->countLabel()->text() == u"1 family, 2 faces"_s; }))
        << list()->countLabel()->text().toStdString();
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().libraryFaceCount(LibraryView::ActiveFonts) == 2; }));

    // Enter on a face shows its file in its source's browser.
    tree = list()->tree();
    tree->setFocus();
    tree->expand(list()->model()->index(0, 0));
    tree->setCurrentIndex(list()->model()->index(0, 0, list()->model()->index(0, 0)));
    const QString file = tree->currentIndex().data(FontListModel::PathRole).toString();
    QTest::keyClick(tree, Qt::Key_Return);
    ASSERT_TRUE(store().selectedFont());
    EXPECT_EQ(store().selectedFont()->path(), file);
    EXPECT_TRUE(store().selectedSource());
}

// Samples come from the exact file: the impostor that calls itself DejaVu Sans draws its
// own empty boxes, not DejaVu's letters; a file that is no font draws nothing, and the
// cache says it can't.
// Letters typed choose a family by the start of its name; a space typed among them is
// part of the name, not a toggle; a face row's search starts from its family.
TEST_F(FontList, TypingChoosesAFamilyByItsName)
{
    choose(LibraryView::AllFonts);
    ASSERT_EQ(families().size(), 3);
    FontListTree *tree = list()->tree();
    tree->setFocus();
    const struct
    {
        QString typed;
        QString family;
    } cases[] = {
        {u"dejavu se"_s, u"DejaVu Serif"_s},
        {u"dejavu sans m"_s, u"DejaVu Sans Mono"_s},
        {u"DEJAVU SANS"_s, u"DejaVu Sans"_s}, // any case; still matching after "mono" moved on: wraps
        {u"x"_s, u"DejaVu Sans"_s},           // nothing begins so: the choice stays
    };
    for (const auto &c : cases) {
        QTest::keyClick(tree, Qt::Key_Shift); // any other key ends the typed search
        QTest::keyClicks(tree, c.typed);
        EXPECT_EQ(tree->currentIndex().data().toString(), c.family) << c.typed.toStdString();
        EXPECT_FALSE(tree->currentIndex().parent().isValid()) << "a family row is chosen";
    }
    EXPECT_TRUE(store().activatedFonts().isEmpty()) << "the spaces typed toggled nothing";
    EXPECT_FALSE(store().isProcessing());
}

TEST_F(FontList, SamplesAreDrawnFromTheExactFile)
{
    const QImage real = FontSampleCache::draw(library + u"/DejaVu/DejaVuSans.ttf"_s, 0, u"Handgloves"_s, 32, Qt::black);
    const QImage impostor = FontSampleCache::draw(library + u"/Odd/Impostor.ttf"_s, 0, u"Handgloves"_s, 32, Qt::black);
    ASSERT_FALSE(real.isNull());
    ASSERT_FALSE(impostor.isNull());
    EXPECT_NE(real, impostor);
    EXPECT_NE(real.size(), impostor.size()) << "boxes are not letters";
    // A collection file draws the face asked for, and nothing for a face it hasn't.
    const QString pair = QStringLiteral(MORVANE_TEST_FONTS "/Pair.ttc");
    EXPECT_FALSE(FontSampleCache::draw(pair, 1, u"AB"_s, 32, Qt::black).isNull());
    EXPECT_TRUE(FontSampleCache::draw(pair, 2, u"AB"_s, 32, Qt::black).isNull());

    FontSampleCache cache;
    const QString garbage = QStringLiteral(MORVANE_TEST_FONTS "/Garbage.otf");
    EXPECT_EQ(cache.sample(garbage, 0, u"Handgloves"_s, 32, Qt::black).state, FontSampleCache::State::Drawing);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !cache.isDrawing(); }));
    EXPECT_EQ(cache.sample(garbage, 0, u"Handgloves"_s, 32, Qt::black).state, FontSampleCache::State::Failed);
    EXPECT_EQ(cache.sample(library + u"/DejaVu/DejaVuSans.ttf"_s, 0, u"Handgloves"_s, 32, Qt::black).state,
              FontSampleCache::State::Drawing);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !cache.isDrawing(); }));
    const FontSampleCache::Sample drawn = cache.sample(library + u"/DejaVu/DejaVuSans.ttf"_s, 0, u"Handgloves"_s, 32, Qt::black);
    EXPECT_EQ(drawn.state, FontSampleCache::State::Ready);
    EXPECT_EQ(drawn.image, real);
}

// The filter bar's menus and toggles, alone and together, narrow the list as the
// catalogue answers; one language chosen draws its sample; "Names" draws each name.
TEST_F(FontList, TheFilterBarNarrowsTheListAndALanguageDrawsItsSample)
{
    choose(LibraryView::AllFonts);
    ASSERT_EQ(families().size(), 3);
    FontFilterBar *bar = list()->filterBar();
    const auto pick = [&](const QString &menuButton, const QString &item) {
        QMenu *menu = bar->button(menuButton)->menu();
        Q_EMIT menu->aboutToShow(); // as opening it does: the language and source menus fill then
        for (QAction *action : menu->actions()) {
            if (action->text() == item || action->data().toString() == item) {
                action->trigger();
                return true;
            }
        }
        return false;
    };
    // What the catalogue answers, asked directly of the database the store keeps.
    const FontCatalog catalogue;
    const auto answerTo = [&](const FontQuery &query) {
        QStringList names;
        for (const FontFamily &family : catalogue.query(query).families)
            names.append(family.name);
        return names;
    };
    using C = FaceRecord::Classification;
    const struct
    {
        const char *what;
        std::function<void()> act;
        FontQuery query; // the same question, put directly
    } cases[] = {
        {"slab serif", [&] { ASSERT_TRUE(pick(u"Classification"_s, u"Slab Serif"_s)); }, FontQuery{.classifications = {C::SlabSerif}}},
        {"slab serif or sans serif", [&] { ASSERT_TRUE(pick(u"Classification"_s, u"Sans Serif"_s)); },
         FontQuery{.classifications = {C::SlabSerif, C::SansSerif}}},
        {"and bold", [&] { ASSERT_TRUE(pick(u"Weight"_s, u"Semibold to Black (600–900)"_s)); },
         FontQuery{.classifications = {C::SlabSerif, C::SansSerif}, .minWeight = 550}},
        {"cleared", [&] { bar->button(u"Clear Filters"_s)->click(); }, FontQuery{}},
        {"monospaced", [&] { bar->button(u"Monospaced"_s)->click(); }, FontQuery{.monospaced = true}},
        {"monospaced, cleared", [&] { bar->button(u"Monospaced"_s)->click(); }, FontQuery{}},
        {"in the source", [&] { ASSERT_TRUE(pick(u"Source"_s, library)); }, FontQuery{}},
        {"Hungarian", [&] { ASSERT_TRUE(pick(u"Language"_s, u"hu"_s)); }, FontQuery{.languages = {u"hu"_s}}},
    };
    QStringList before;
    for (const auto &c : cases) {
        c.act();
        const QStringList expected = answerTo(c.query);
        EXPECT_TRUE(QTest::qWaitFor([&] { return families() == expected; }, 3000))
            << c.what << ": " << families().join(u", "_s).toStdString() << " for " << expected.join(u", "_s).toStdString();
        EXPECT_TRUE(expected != before || QByteArray(c.what).contains("source") || QByteArray(c.what).contains("Hungarian"))
            << c.what << " changes nothing: it proves little";
        before = expected;
    }
    // The impostor maps no Hungarian letters: with "hu" the DejaVu Sans family is its two real faces.
    EXPECT_EQ(list()->model()->index(0, 0).data(FontListModel::CaptionRole).toString(), u"2 styles"_s);
    EXPECT_EQ(list()->sampleText(), u"Árvíztűrő tükörfúrógép"_s);
    EXPECT_TRUE(bar->button(u"Language"_s)->text().endsWith(u"(1)"_s));
    // The language menu reads each language by its names and counts, and finds by either.
    Q_EMIT bar->languageMenu()->aboutToShow();
    const QStringList items = [&] {
        QStringList texts;
        for (const QAction *action : bar->languageMenu()->actions())
            texts.append(action->text());
        return texts;
    }();
    EXPECT_TRUE(items.contains(u"magyar — Hungarian (hu)  4"_s)) << items.mid(0, 5).join(u" | "_s).toStdString();

    list()->namesButton()->click();
    EXPECT_TRUE(list()->sampleText().isEmpty()) << "each font's own name";
    list()->sizeSlider()->setValue(48);
    EXPECT_EQ(store().listSize(), 48.0);
}

// A row's menu is its face file's, as in the browser: a right click on a family offers
// its regular face, the menu key the current row's.
TEST_F(FontList, ARowsMenuIsItsFilesMenu)
{
    choose(LibraryView::AllFonts);
    ASSERT_EQ(families().value(2), u"DejaVu Serif"_s);
    FontListTree *tree = list()->tree();
    const auto menuAt = [&](QContextMenuEvent::Reason reason, const QPoint &at) {
        QContextMenuEvent event(reason, at, tree->viewport()->mapToGlobal(at));
        QCoreApplication::sendEvent(tree->viewport(), &event);
        const QList<QMenu *> menus = tree->findChildren<QMenu *>(Qt::FindDirectChildrenOnly);
        return menus.isEmpty() ? nullptr : menus.constLast();
    };
    const QModelIndex serif = list()->model()->index(2, 0);
    QMenu *menu = menuAt(QContextMenuEvent::Mouse, tree->visualRect(serif).center());
    ASSERT_TRUE(menu);
    QStringList texts;
    for (const QAction *action : menu->actions())
        texts.append(QString(action->text()).remove(u'&'));
    ASSERT_TRUE(texts.contains(u"Activate Font"_s)) << texts.join(u", "_s).toStdString();
    menu->actions().at(int(texts.indexOf(u"Activate Font"_s)))->trigger();
    menu->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isProcessing(); }));
    EXPECT_EQ(store().activatedFonts(), QSet<QString>{library + u"/DejaVu/DejaVuSerif.ttf"_s});

    // The menu key: the current row's, which the right click didn't change.
    tree->setCurrentIndex(list()->model()->index(1, 0));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    menu = menuAt(QContextMenuEvent::Keyboard, {});
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->accessibleName(), u"DejaVuSansMono.ttf"_s);
    menu->close();
}

// The folder search says how many fonts are named like its words; that line opens All
// Fonts with them.
TEST_F(FontList, TheFolderSearchOffersTheFontsNamedLikeIt)
{
    QLineEdit *search = window->searchField().lineEdit();
    QTest::keyClicks(search, u"dejavu"_s);
    SearchResultsView &results = window->searchResults();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !results.fontsLink()->isHidden(); }, 5000));
    EXPECT_EQ(results.fontsLink()->text(), u"5 fonts named like “dejavu”"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return results.currentWidget() == results.list(); }))
        << "the folder DejaVu and the line above it";
    QTest::mouseClick(results.fontsLink(), Qt::LeftButton);
    ASSERT_TRUE(list());
    EXPECT_EQ(window->detail(), list());
    EXPECT_FALSE(store().isSearching());
    EXPECT_EQ(store().selectedLibraryView()->kind, LibraryView::AllFonts);
    EXPECT_EQ(list()->filterField()->text(), u"dejavu"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return families().size() == 3; }));

    // Words no font has: no line.
    window->searchField().lineEdit()->setFocus();
    QTest::keyClicks(window->searchField().lineEdit(), u"Odd"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().isSearching() && !store().isSearchingFolders(); }, 5000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return results.fontsLink()->isHidden(); }, 2000));
}

// "Save as Smart Collection…" keeps the list's question as a collection: its members are
// the files that answer, it gains a font that comes to answer after a refresh, it
// activates as a whole, and it is written with its question.
TEST_F(FontList, ASmartCollectionKeepsTheQuestionAndFollowsTheLibrary)
{
    choose(LibraryView::AllFonts);
    ASSERT_EQ(families().size(), 3);
    list()->filterField()->setText(u"dejavu sans"_s);
    list()->filterBar()->button(u"Monospaced"_s)->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return families() == QStringList{u"DejaVu Sans Mono"_s}; }));
    list()->setNameChooser([] { return u"Code"_s; });
    list()->saveSmartButton()->click();
    const auto code = [&]() -> std::optional<FontCollection> {
        for (const FontCollection &collection : store().collections()) {
            if (collection.name == u"Code"_s)
                return collection;
        }
        return std::nullopt;
    };
    ASSERT_TRUE(code() && code()->isSmart());
    const auto members = [&] {
        QStringList paths;
        const std::optional<FontCollection> found = code(); // kept while its members are read
        for (const CollectionMember &member : found ? found->members : QList<CollectionMember>())
            paths.append(member.path);
        return paths;
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return members() == QStringList{library + u"/DejaVu/DejaVuSansMono.ttf"_s}; }))
        << members().join(u", "_s).toStdString();
    EXPECT_TRUE(window->sidebar().sidebarModel()->index(window->sidebar().sidebarModel()->rowOf(SidebarItem(*code())))
                    .data(SidebarModel::SmartRole)
                    .toBool());

    // A matching font copied in: the next refresh's catalogue brings it into the collection.
    ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Bold.ttf"_s,
                            library + u"/DejaVu/DejaVuSansMono-Bold.ttf"_s));
    store().refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return members().size() == 2; }, 30'000)) << members().join(u", "_s).toStdString();

    // Activated as a whole, like any collection.
    store().toggleCollectionActivation(*code());
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().activatedFonts().size() == 2 && !store().isProcessing(); }));

    // Written with its question, read back the same.
    const QList<FontCollection> saved = [&] {
        EXPECT_TRUE(QTest::qWaitFor([&] {
            const QList<FontCollection> onDisk = PersistenceService().loadCollections();
            return std::any_of(onDisk.cbegin(), onDisk.cend(), [&](const FontCollection &c) { return c == *code(); });
        }));
        return PersistenceService().loadCollections();
    }();
    const auto kept = std::find_if(saved.cbegin(), saved.cend(), [](const FontCollection &c) { return c.name == u"Code"_s; });
    ASSERT_NE(kept, saved.cend());
    EXPECT_EQ(kept->smartQuery->value("monospaced"_L1).toBool(), true);
    EXPECT_EQ(kept->smartQuery->value("text"_L1).toString(), u"dejavu sans"_s);

    // "Edit Filters…" from its menu: the list shows its question; saved changed, it answers anew.
    choose(LibraryView::ActiveFonts);
    std::unique_ptr<QMenu> menu(ContextMenus::buildCollectionMenu(store(), *code(), window.get(), [] {}, [] {}));
    QAction *edit = nullptr;
    for (QAction *action : menu->actions())
        edit = QString(action->text()).remove(u'&') == u"Edit Filters…"_s ? action : edit;
    ASSERT_TRUE(edit);
    edit->trigger();
    ASSERT_TRUE(list()->isEditingSmartCollection());
    EXPECT_EQ(list()->libraryView(), LibraryView::AllFonts);
    EXPECT_EQ(list()->filterField()->text(), u"dejavu sans"_s);
    EXPECT_TRUE(list()->filterBar()->button(u"Monospaced"_s)->isChecked());
    list()->filterField()->clear();
    list()->filterBar()->button(u"Monospaced"_s)->click();
    QMenu *classes = list()->filterBar()->button(u"Classification"_s)->menu();
    for (QAction *action : classes->actions()) {
        if (action->text() == u"Slab Serif"_s)
            action->trigger();
    }
    EXPECT_EQ(list()->saveSmartButton()->text(), u"Save Filters to “Code”"_s);
    list()->saveSmartButton()->click();
    EXPECT_FALSE(list()->isEditingSmartCollection());
    ASSERT_TRUE(QTest::qWaitFor([&] { return members() == QStringList{library + u"/DejaVu/DejaVuSerif.ttf"_s}; }))
        << members().join(u", "_s).toStdString();
    EXPECT_FALSE(code()->smartQuery->contains("monospaced"_L1));
}

// A family dragged onto a collection adds its files, as files from a file manager do.
TEST_F(FontList, AFamilyDroppedOnACollectionAddsItsFiles)
{
    choose(LibraryView::AllFonts);
    ASSERT_EQ(families().value(0), u"DejaVu Sans"_s);
    store().createCollection(u"Picked"_s);
    const QUuid picked = store().collections().constFirst().id;
    choose(LibraryView::AllFonts); // creating chose the collection; back to the list
    ASSERT_EQ(families().value(0), u"DejaVu Sans"_s);
    std::unique_ptr<QMimeData> data(list()->model()->mimeData({list()->model()->index(0, 0)}));
    ASSERT_TRUE(data->hasUrls());
    EXPECT_EQ(data->urls().size(), 3) << "DejaVu Sans, its bold and the impostor";

    SidebarList *collections = window->sidebar().collectionsList();
    const int row = window->sidebar().sidebarModel()->rowOf(SidebarItem(store().collections().constFirst()));
    const QPoint at = collections->visualRect(collections->indexForRow(row)).center();
    QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(collections->viewport(), &enter);
    QDragMoveEvent move(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(collections->viewport(), &move);
    ASSERT_TRUE(move.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(collections->viewport(), &drop);
    const auto collection = std::find_if(store().collections().cbegin(), store().collections().cend(),
                                         [&](const FontCollection &c) { return c.id == picked; });
    ASSERT_NE(collection, store().collections().cend());
    EXPECT_EQ(collection->members.size(), 3);
    EXPECT_TRUE(QFile::exists(library + u"/Odd/Impostor.ttf"_s)) << "a drop never moves a file";
}

// Chosen with Ctrl-clicks, three faces are compared one under another; two can be laid
// over each other; Escape returns to the list.
TEST_F(FontList, CompareShowsTheChosenFacesAndOverlaysTwo)
{
    choose(LibraryView::AllFonts);
    ASSERT_EQ(families().size(), 3);
    FontListTree *tree = list()->tree();
    EXPECT_FALSE(list()->compareButton()->isEnabled());
    for (int row = 0; row < 3; ++row)
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, row ? Qt::ControlModifier : Qt::NoModifier,
                          tree->visualRect(list()->model()->index(row, 0)).center() + QPoint(150, 0));
    ASSERT_EQ(tree->selectionModel()->selectedRows().size(), 3);
    ASSERT_TRUE(list()->compareButton()->isEnabled());
    QTest::mouseClick(list()->compareButton(), Qt::LeftButton);
    ASSERT_TRUE(list()->isComparing());
    CompareView *compare = list()->compareView();
    QStringList labels;
    for (const CompareView::Face &face : compare->faces())
        labels.append(face.label);
    EXPECT_EQ(labels, (QStringList{u"DejaVu Sans"_s, u"DejaVu Sans Mono"_s, u"DejaVu Serif"_s}));
    EXPECT_FALSE(compare->overlayButton()->isEnabled()) << "overlay is for two";
    // Each face's sample, drawn from its file, one under another.
    ASSERT_TRUE(QTest::qWaitFor([&] {
        compare->canvas()->repaint();
        return !list()->samples()->isDrawing();
    }));
    const QImage three = compare->canvas()->grab().toImage();
    const int rowHeight = compare->canvas()->sizeHint().height() / 3;
    const auto inked = [](const QImage &image, int top, int height) {
        const QColor background = image.pixelColor(image.width() - 2, top + 2);
        int count = 0;
        for (int y = top; y < std::min(image.height(), top + height); ++y) {
            for (int x = 0; x < image.width(); x += 2)
                count += image.pixelColor(x, y) != background ? 1 : 0;
        }
        return count;
    };
    for (int row = 0; row < 3; ++row)
        EXPECT_GT(inked(three, row * rowHeight, rowHeight), 200) << "face " << row << " drawn";

    QTest::keyClick(compare, Qt::Key_Escape);
    EXPECT_FALSE(list()->isComparing());

    // Two: one row, the two drawn over each other.
    tree->selectionModel()->select(list()->model()->index(2, 0), QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    list()->compareSelected();
    ASSERT_TRUE(compare->overlayButton()->isEnabled());
    const int twoRows = compare->canvas()->sizeHint().height();
    compare->overlayButton()->click();
    EXPECT_LT(compare->canvas()->sizeHint().height(), twoRows * 2 / 3) << "one row for both";
}

// A variable face in compare gets its own axis sliders and is drawn at their setting; a
// static face gets none. Moving Inter's weight to its heaviest darkens its row only.
TEST_F(FontList, CompareGivesEachVariableFaceItsAxes)
{
    ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf"_s,
                            TestSupport::makeDir(library + u"/Inter"_s) + u"/Inter-roman.var.ttf"_s));
    store().refreshFileSystem();
    choose(LibraryView::AllFonts);
    ASSERT_TRUE(QTest::qWaitFor([&] { return families().contains(u"Inter"_s); }, 30'000)) << families().join(u", "_s).toStdString();
    // DejaVu Sans and Inter, chosen with Ctrl-clicks, then Compare.
    FontListTree *tree = list()->tree();
    const QStringList names = families();
    for (const QString &name : {u"DejaVu Sans"_s, u"Inter"_s})
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, name == u"Inter"_s ? Qt::ControlModifier : Qt::NoModifier,
                          tree->visualRect(list()->model()->index(int(names.indexOf(name)), 0)).center() + QPoint(150, 0));
    QTest::mouseClick(list()->compareButton(), Qt::LeftButton);
    ASSERT_TRUE(list()->isComparing());
    CompareView *compare = list()->compareView();
    ASSERT_EQ(compare->faces().size(), 2);
    ASSERT_EQ(compare->faces().at(1).label, u"Inter"_s);
    EXPECT_FALSE(compare->axisControls(0)) << "DejaVu Sans has no axes";
    ASSERT_TRUE(compare->axisControls(1));
    QSlider *weight = nullptr;
    for (QSlider *slider : compare->axisControls(1)->findChildren<QSlider *>())
        weight = slider->accessibleName() == u"Weight"_s ? slider : weight;
    ASSERT_TRUE(weight);

    const int rowHeight = compare->canvas()->sizeHint().height() / 2;
    const auto rowInk = [&](int row) {
        EXPECT_TRUE(QTest::qWaitFor([&] {
            compare->canvas()->repaint();
            return !list()->samples()->isDrawing();
        }));
        const QImage image = compare->canvas()->grab().toImage();
        return InkMeasure::mass(image.copy(0, row * rowHeight, image.width(), rowHeight));
    };
    const qint64 dejavu = rowInk(0);
    const qint64 regular = rowInk(1);
    weight->setFocus();
    QTest::keyClick(weight, Qt::Key_End);
    constexpr quint32 wght = 0x77676874;
    EXPECT_EQ(compare->variations(1).value(wght), weight->maximum() / 100.0);
    EXPECT_GT(rowInk(1), regular * 13 / 10) << "Inter drawn at its heaviest";
    EXPECT_EQ(rowInk(0), dejavu) << "the static face is untouched";
}

// In a dark palette the samples are drawn in the palette's light text, not black on dark.
TEST_F(FontList, SamplesAreDrawnInTheDarkPalettesText)
{
    QPalette dark = window->palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        dark.setColor(group, QPalette::Window, QColor(40, 40, 40));
        dark.setColor(group, QPalette::Base, QColor(30, 30, 30));
        dark.setColor(group, QPalette::Text, QColor(235, 235, 235));
        dark.setColor(group, QPalette::WindowText, QColor(235, 235, 235));
        dark.setColor(group, QPalette::Highlight, QColor(10, 132, 255));
    }
    window->setPalette(dark);
    choose(LibraryView::AllFonts);
    ASSERT_EQ(families().size(), 3);
    FontListTree *tree = list()->tree();
    tree->clearSelection();
    ASSERT_TRUE(QTest::qWaitFor([&] {
        tree->viewport()->repaint();
        return !list()->samples()->isDrawing();
    }));
    const QImage image = tree->viewport()->grab().toImage();
    const QRectF sample = FontListDelegate::layout(tree->visualRect(list()->model()->index(2, 0))).sample;
    int light = 0, dim = 0;
    for (int y = int(sample.top()); y < int(sample.bottom()); ++y) {
        for (int x = int(sample.left()); x < int(sample.left()) + 300; ++x) {
            const int grey = qGray(image.pixel(x, y));
            light += grey > 180 ? 1 : 0;
            dim += grey < 60 ? 1 : 0;
        }
    }
    EXPECT_GT(light, 300) << "the Serif sample's letters, light on the dark base";
    EXPECT_GT(dim, light) << "on the dark base";
}

// "Duplicates" lists the files that hold one font (the same PostScript name and
// version), each row saying where it is, how large and how old; "Conflicts" lists the
// active ones that claim one name. "Keep Only This File Active", from the row's menu by
// the keyboard, leaves one: saved, and the only one fontconfig lists after a restart.
TEST_F(FontList, DuplicatesAndConflictsShowTheFilesAndKeepOne)
{
    const QString copy = TestSupport::makeDir(library + u"/Copy"_s) + u"/DejaVuSans.ttf"_s;
    ASSERT_TRUE(QFile::copy(library + u"/DejaVu/DejaVuSans.ttf"_s, copy));
    const QString original = library + u"/DejaVu/DejaVuSans.ttf"_s;
    window.reset();
    window = openWindow(std::make_unique<FontActivationService>());
    store().refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isIndexing(); }, 20'000));
    ASSERT_TRUE(store().waitForCatalogue(60'000));

    const auto faceRows = [&] {
        QStringList rows;
        const FontListModel *model = list()->model();
        for (int family = 0; family < model->rowCount(); ++family) {
            const QModelIndex parent = model->index(family, 0);
            EXPECT_TRUE(list()->tree()->isExpanded(parent)) << "every family open";
            for (int face = 0; face < model->rowCount(parent); ++face)
                rows.append(model->index(face, 0, parent).data(FontListModel::PathRole).toString());
        }
        rows.sort();
        return rows;
    };
    choose(LibraryView::Duplicates);
    EXPECT_EQ(families(), QStringList{u"DejaVu Sans"_s}); // the impostor has another version
    EXPECT_EQ(faceRows(), (QStringList{copy, original}));
    const QModelIndex first = list()->model()->index(0, 0, list()->model()->index(0, 0));
    const QString caption = first.data(FontListModel::CaptionRole).toString();
    EXPECT_TRUE(caption.contains(QFileInfo(first.data(FontListModel::PathRole).toString()).absolutePath()))
        << caption.toStdString();
    EXPECT_TRUE(caption.contains(u"modified"_s)) << caption.toStdString();
    EXPECT_TRUE(first.data(Qt::AccessibleDescriptionRole).toString().startsWith(caption));

    store().setActivation({FontNode::fontFile(original), FontNode::fontFile(copy)}, true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isProcessing(); }));
    choose(LibraryView::Conflicts);
    ASSERT_TRUE(QTest::qWaitFor([&] { return faceRows() == QStringList{copy, original}; }, 10'000));

    FontListTree *tree = list()->tree();
    tree->setFocus();
    const QModelIndex keep = list()->model()->index(0, 0, list()->model()->index(0, 0));
    const QString kept = keep.data(FontListModel::PathRole).toString();
    tree->setCurrentIndex(keep);
    QTest::keyClick(tree, Qt::Key_F10, Qt::ShiftModifier);
    QMenu *menu = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        const QList<QMenu *> menus = tree->findChildren<QMenu *>(Qt::FindDirectChildrenOnly);
        menu = menus.isEmpty() ? nullptr : menus.constLast();
        return menu && menu->isVisible();
    }));
    EXPECT_EQ(QString(menu->actions().value(0)->text()).remove(u'&'), u"Keep Only This File Active"_s);
    menu->actions().value(0)->trigger();
    menu->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().activatedFonts() == QSet<QString>{kept} && !store().isProcessing(); }));
    ASSERT_TRUE(QTest::qWaitFor([&] { return faceRows().isEmpty(); }, 10'000)) << "no conflict left";

    window.reset();
    window = openWindow(std::make_unique<FontActivationService>());
    EXPECT_EQ(store().activatedFonts(), QSet<QString>{kept});
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), QSet<QString>{kept});
    EXPECT_EQ(TestSupport::fontsListedByFontconfig(FontActivationService::defaultLinkFolder()), QSet<QString>{kept});
}


// Space on a face whose PostScript name an active file of another path has: the window
// asks first. Escape keeps things as they were; Replace switches the other off.
TEST_F(FontList, ActivatingANamesakeOfAnActiveFontAsksFirst)
{
    const QString sans = library + u"/DejaVu/DejaVuSans.ttf"_s, impostor = library + u"/Odd/Impostor.ttf"_s;
    store().setActivation({FontNode::fontFile(sans)}, true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isProcessing(); }));
    choose(LibraryView::AllFonts);
    families();
    FontListTree *tree = list()->tree();
    tree->expandAll();
    QModelIndex row;
    for (int family = 0; family < list()->model()->rowCount() && !row.isValid(); ++family) {
        const QModelIndex parent = list()->model()->index(family, 0);
        for (int face = 0; face < list()->model()->rowCount(parent); ++face) {
            if (list()->model()->index(face, 0, parent).data(FontListModel::PathRole) == impostor)
                row = list()->model()->index(face, 0, parent);
        }
    }
    ASSERT_TRUE(row.isValid());
    tree->setFocus();
    tree->setCurrentIndex(row);
    {
        const std::shared_ptr<QString> cancel = answerNextQuestion(QString()); // Escape
        QTest::keyClick(tree, Qt::Key_Space);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !cancel->isEmpty() && !store().isProcessing(); }));
        EXPECT_TRUE(cancel->startsWith(u"\u201cDejaVuSans\u201d is already active from another file."_s))
            << cancel->toStdString();
        EXPECT_TRUE(cancel->contains(sans)) << cancel->toStdString();
        EXPECT_EQ(store().activatedFonts(), QSet<QString>{sans});
    }
    const std::shared_ptr<QString> replace = answerNextQuestion(u"Replace"_s);
    QTest::keyClick(tree, Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !replace->isEmpty() && store().activatedFonts() == QSet<QString>{impostor}; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !store().isProcessing(); }));
}
