// SPDX-License-Identifier: GPL-3.0-or-later
// The sidebar and the collection view driven as a user drives them: clicks on rows and
// their buttons, keys on the focused list, menus, real drops of file URLs; the store and
// the views are checked after each step.
#include "TestSupport.h"
#include "ViewTestSupport.h"

#include "ui/collection/CollectionMemberModel.h"
#include "ui/collection/CollectionView.h"
#include "ui/collection/CollectionMemberList.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/preview/FontPreviewView.h"
#include "ui/sidebar/SidebarModel.h"
#include "ui/sidebar/SidebarDelegate.h"
#include "ui/browser/SingleColumnView.h"
#include "ui/sidebar/FolderChoosers.h"
#include "ui/sidebar/SidebarList.h"
#include "ui/sidebar/SidebarView.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

QStringList actionTexts(const QMenu *menu)
{
    QStringList texts;
    for (const QAction *action : menu->actions())
        texts.append(QString(action->text()).remove(u'&')); // as shown
    return texts;
}

QAction *action(const QMenu *menu, const QString &text)
{
    for (QAction *candidate : menu->actions()) {
        if (QString(candidate->text()).remove(u'&') == text)
            return candidate;
    }
    ADD_FAILURE() << "no item " << text.toStdString();
    return nullptr;
}

class Sidebar : public testing::Test
{
protected:
    Sidebar()
    {
        for (const QString &file : {u"A/a1.ttf"_s, u"A/a2.ttf"_s, u"A/a3.ttf"_s, u"B/b.ttf"_s, u"c.ttf"_s})
            writeFile(library + u'/' + file);
        showFolderAsSource(store, library);
        auto *layout = new QHBoxLayout(&window);
        layout->addWidget(sidebar);
        layout->addWidget(browser, 1);
        window.resize(900, 500);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    SidebarModel *model() const { return sidebar->sidebarModel(); }
    int rowOf(const QString &name) const
    {
        for (int row = 0; row < model()->rowCount(); ++row) {
            if (model()->index(row).data().toString() == name)
                return row;
        }
        ADD_FAILURE() << "no row " << name.toStdString();
        return -1;
    }
    SidebarList *list(const QString &name) const { return sidebar->listShowing(rowOf(name)); }
    QWidget *viewportOf(const QString &name) const { return list(name)->viewport(); }
    QRect rect(const QString &name) const { return list(name)->visualRect(list(name)->indexForRow(rowOf(name))); }
    QToolButton *addButton(const QString &name) const
    {
        for (QToolButton *button : sidebar->findChildren<QToolButton *>()) {
            if (button->accessibleName() == name)
                return button;
        }
        return nullptr;
    }
    // Keys go where the sidebar's focus is.
    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    QString caption(const QString &name) const { return model()->index(rowOf(name)).data(SidebarModel::CaptionRole).toString(); }
    void click(const QString &name) { QTest::mouseClick(viewportOf(name), Qt::LeftButton, {}, rect(name).center()); }
    QImage rowImage(const QString &name) const { return viewportOf(name)->grab(rect(name)).toImage(); }
    QUuid collection(const QString &name) const
    {
        for (const FontCollection &candidate : store.collections()) {
            if (candidate.name == name)
                return candidate.id;
        }
        return {};
    }
    std::optional<FontCollection> find(const QString &name) const
    {
        for (const FontCollection &candidate : store.collections()) {
            if (candidate.name == name)
                return candidate;
        }
        return std::nullopt;
    }
    QMenu *rightClick(QWidget *viewport, QPoint at)
    {
        for (QMenu *open : viewport->parentWidget()->findChildren<QMenu *>())
            open->close(); // as a new right click does
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, viewport->mapToGlobal(at));
        QCoreApplication::sendEvent(viewport, &event);
        QMenu *menu = viewport->parentWidget()->findChild<QMenu *>();
        EXPECT_TRUE(menu);
        return menu;
    }
    // A drop of file URLs at a point of `target`, as a file manager makes one.
    bool drop(QWidget *target, QPoint at, const QStringList &paths, Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(path));
        data.setUrls(urls);
        QDragEnterEvent enter(at, offered, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &enter);
        QDragMoveEvent move(at, offered, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &move);
        if (!move.isAccepted()) {
            QDragLeaveEvent leave;
            QCoreApplication::sendEvent(target, &leave);
            return false;
        }
        QDropEvent dropped(at, offered, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &dropped);
        EXPECT_NE(dropped.dropAction(), Qt::MoveAction) << "a drop must never move the user's files";
        return dropped.isAccepted();
    }

    QString library = makeDir(testRoot() + u"/Library"_s);
    InstantActivation activation;
    PersistenceService persistence;
    AppState store{activation, persistence};
    QWidget window;
    SidebarView *sidebar = new SidebarView(store);
    ColumnBrowserView *browser = new ColumnBrowserView(store);
};

int countPixels(const QImage &image, const std::function<bool(const QColor &)> &wanted)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += wanted(image.pixelColor(x, y));
    }
    return count;
}

} // namespace

TEST_F(Sidebar, RowsCountFontsAndItemsWithTheirPlurals)
{
    QAbstractItemModelTester tester(model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    EXPECT_EQ(caption(u"Library"_s), u"5 fonts"_s);
    store.createCollection(u"Empty"_s);
    EXPECT_EQ(caption(u"Empty"_s), u"0 fonts · 0 items"_s);
    store.createCollection(u"One"_s);
    store.addToCollection(collection(u"One"_s), FontNode::fontFile(library + u"/c.ttf"_s));
    EXPECT_EQ(caption(u"One"_s), u"1 font · 1 item"_s);
    store.createCollection(u"Folder"_s);
    store.addToCollection(collection(u"Folder"_s), FontNode::folder(library + u"/A"_s));
    EXPECT_EQ(caption(u"Folder"_s), u"3 fonts · 1 item"_s);
    EXPECT_EQ(model()->index(rowOf(u"Folder"_s)).data(Qt::AccessibleDescriptionRole).toString(),
              u"Collection, 3 fonts · 1 item, inactive"_s);
    // The headers are real widgets with their add buttons, above each section's list.
    EXPECT_TRUE(addButton(u"Add a font folder source"_s) && addButton(u"Add a font folder source"_s)->isVisible());
    EXPECT_TRUE(addButton(u"New Collection"_s) && addButton(u"New Collection"_s)->isVisible());
    EXPECT_EQ(sidebar->sourcesList()->model()->rowCount(), 1);
    EXPECT_EQ(sidebar->collectionsList()->model()->rowCount(), 3);

    // Without sources, the placeholder; the collections stay.
    store.setSourcesForTesting({});
    EXPECT_EQ(model()->index(0).data().toString(), u"No Sources"_s);
    EXPECT_EQ(model()->index(0).data(Qt::AccessibleDescriptionRole).toString(), u"Click the + button to add a font folder."_s);
    EXPECT_EQ(model()->flags(model()->index(0)), Qt::NoItemFlags);
    EXPECT_EQ(sidebar->sourcesList()->model()->rowCount(), 1);
    EXPECT_EQ(caption(u"One"_s), u"1 font · 1 item"_s);
    const QList<std::pair<QString, QString>> counts{{SidebarModel::fontCount(0), u"0 fonts"_s},
                                                    {SidebarModel::fontCount(1), u"1 font"_s},
                                                    {SidebarModel::fontCount(12), u"12 fonts"_s},
                                                    {SidebarModel::itemCount(0), u"0 items"_s}};
    for (const auto &[shown, expected] : counts)
        EXPECT_EQ(shown, expected);
}

TEST_F(Sidebar, CollectionIconsFollowTheirRules)
{
    const auto amber = [](const QColor &c) { return c.red() > 230 && c.green() > 130 && c.green() < 180 && c.blue() < 60; };
    const auto purple = [](const QColor &c) { return c.red() > 150 && c.green() < 110 && c.blue() > 190; };
    const auto red = [](const QColor &c) { return c.red() > 230 && c.green() < 30 && c.blue() < 30; };
    store.createCollection(u"fAvOrItEs"_s);
    store.createCollection(u"Work"_s);
    EXPECT_GT(countPixels(rowImage(u"fAvOrItEs"_s), amber), 20);
    EXPECT_EQ(countPixels(rowImage(u"Work"_s), amber), 0);
    EXPECT_GT(countPixels(rowImage(u"Work"_s), purple), 20);

    // A PNG replaces the star; a file that doesn't load leaves the default.
    QImage png(32, 32, QImage::Format_ARGB32);
    png.fill(Qt::red);
    const QString pngPath = testRoot() + u"/icon.png"_s;
    ASSERT_TRUE(png.save(pngPath));
    store.setCollectionIcon(collection(u"fAvOrItEs"_s), pngPath);
    EXPECT_GT(countPixels(rowImage(u"fAvOrItEs"_s), red), 200) << "stretched to 22 by 22";
    EXPECT_EQ(countPixels(rowImage(u"fAvOrItEs"_s), amber), 0);
    const QString broken = writeFile(testRoot() + u"/broken.png"_s, "not an image");
    store.setCollectionIcon(collection(u"Work"_s), broken);
    EXPECT_GT(countPixels(rowImage(u"Work"_s), purple), 20);

    // A black SVG is drawn as it is on a light sidebar and light on a dark one.
    const QString svg = writeFile(testRoot() + u"/icon.svg"_s,
                                  "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                                  "<rect width='10' height='10' fill='black'/></svg>");
    store.setCollectionIcon(collection(u"Work"_s), svg);
    const auto black = [](const QColor &c) { return c.lightness() < 30; };
    const auto white = [](const QColor &c) { return c.lightness() > 225; };
    EXPECT_GT(countPixels(rowImage(u"Work"_s), black), 300);
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(30, 30, 30));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
    dark.setColor(QPalette::Text, QColor(230, 230, 230));
    sidebar->setPalette(dark);
    const QImage onDark = rowImage(u"Work"_s);
    EXPECT_GT(countPixels(onDark, white), 300);
    // Removing the icon brings the default back.
    store.setCollectionIcon(collection(u"Work"_s), std::nullopt);
    EXPECT_GT(countPixels(rowImage(u"Work"_s), purple), 20);
}

TEST_F(Sidebar, RenameCommitsWithEnterAndCancelsWithEscape)
{
    store.createCollection(u"Draft"_s);
    click(u"Draft"_s);
    ASSERT_TRUE(store.sidebarSelection() && store.sidebarSelection()->isCollection());
    press(Qt::Key_F2);
    auto *field = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_TRUE(field);
    EXPECT_EQ(field->placeholderText(), u"Name"_s);
    EXPECT_EQ(field->text(), u"Draft"_s);
    field->selectAll();
    QTest::keyClicks(field, u"Clients"_s);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return find(u"Clients"_s).has_value(); })); // committed once the key is handled
    EXPECT_FALSE(find(u"Draft"_s));

    // From the menu, then Escape: nothing changes.
    QMenu *menu = rightClick(viewportOf(u"Clients"_s), rect(u"Clients"_s).center());
    ASSERT_TRUE(menu);
    EXPECT_EQ(actionTexts(menu),
              (QStringList{u"Activate All Fonts in Collection"_s, u"Activate for This Session"_s, QString(), u"Rename"_s,
                           u"Set Custom Icon…"_s,
                           u"Remove Custom Icon"_s, QString(), u"Delete Collection"_s}));
    action(menu, u"Rename"_s)->trigger();
    menu->close();
    field = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_TRUE(field);
    QTest::keyClicks(field, u"Other"_s);
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return sidebar->findChildren<QLineEdit *>().isEmpty(); })); // the field is gone
    EXPECT_TRUE(find(u"Clients"_s));
    EXPECT_EQ(store.collections().size(), 1);
}

TEST_F(Sidebar, DropsAddExistingFilesAndFoldersAndSkipMissingOnes)
{
    store.createCollection(u"Drop Here"_s);
    const QString outside = writeFile(testRoot() + u"/Elsewhere/loose.otf"_s);
    const QString folder = library + u"/A"_s;
    const QString missing = testRoot() + u"/gone.ttf"_s;
    EXPECT_TRUE(drop(viewportOf(u"Drop Here"_s), rect(u"Drop Here"_s).center(), {outside, folder, missing}));
    const std::optional<FontCollection> target = find(u"Drop Here"_s);
    ASSERT_TRUE(target);
    EXPECT_EQ(target->members, (QList<CollectionMember>{{outside, false}, {folder, true}}));
    // Offered only a move, the drop is refused rather than taken as one.
    EXPECT_FALSE(drop(viewportOf(u"Drop Here"_s), rect(u"Drop Here"_s).center(), {library + u"/c.ttf"_s}, Qt::MoveAction));
    EXPECT_EQ(find(u"Drop Here"_s)->members.size(), 2);
}

TEST_F(Sidebar, SelectionFollowsTheStoreAndTheKeysHandFocusOver)
{
    store.createCollection(u"Picks"_s);
    click(u"Library"_s);
    ASSERT_TRUE(store.sidebarSelection() && store.sidebarSelection()->isSource());
    // The store's selection moves the row.
    const std::optional<FontCollection> picks = find(u"Picks"_s);
    ASSERT_TRUE(picks);
    store.setSidebarSelection(SidebarItem(*picks));
    EXPECT_EQ(sidebar->collectionsList()->currentIndex(), sidebar->collectionsList()->indexForRow(rowOf(u"Picks"_s)));
    EXPECT_TRUE(sidebar->sourcesList()->selectionModel()->selectedIndexes().isEmpty());
    // Keys pass over the header between the sections.
    sidebar->setFocus();
    EXPECT_EQ(QApplication::focusWidget(), sidebar->collectionsList());
    press(Qt::Key_Up); // from the first collection into the sources
    EXPECT_TRUE(store.sidebarSelection()->isSource());
    EXPECT_EQ(QApplication::focusWidget(), sidebar->sourcesList());
    press(Qt::Key_Down);
    EXPECT_TRUE(store.sidebarSelection()->isCollection());
    EXPECT_EQ(QApplication::focusWidget(), sidebar->collectionsList());
    // Right with a collection selected leaves the browser alone.
    press(Qt::Key_Right);
    EXPECT_TRUE(store.navigationPath().isEmpty());

    // Right on a source: its first node is selected and the browser has the keys.
    press(Qt::Key_Up);
    press(Qt::Key_Right);
    ASSERT_EQ(store.navigationPath().size(), 1);
    EXPECT_EQ(store.navigationPath().first().name(), u"A"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return browser->columns().value(0) && browser->columns().value(0)->hasFocus(); }));
    // Left in the first column gives them back.
    QTest::keyClick(browser->columns().value(0), Qt::Key_Left);
    EXPECT_TRUE(sidebar->sourcesList()->hasFocus());
}

TEST_F(Sidebar, AddButtonsButtonsAndMenusManageSourcesAndCollections)
{
    const QString more = makeDir(testRoot() + u"/More"_s);
    const QString extra = makeDir(testRoot() + u"/Extra"_s);
    sidebar->setFolderChooser([&] { return QStringList{more, extra}; });
    QToolButton *addSource = addButton(u"Add a font folder source"_s);
    ASSERT_TRUE(addSource);
    EXPECT_EQ(addSource->accessibleName(), u"Add a font folder source"_s);
    QTest::mouseClick(addSource, Qt::LeftButton);
    ASSERT_EQ(store.sources().size(), 3);
    EXPECT_EQ(store.sources().at(1).path, more);
    EXPECT_EQ(store.sources().at(2).path, extra);
    QToolButton *newCollection = addButton(u"New Collection"_s);
    ASSERT_TRUE(newCollection);
    EXPECT_EQ(newCollection->toolTip(), u"New Collection"_s);
    QTest::mouseClick(newCollection, Qt::LeftButton);
    ASSERT_TRUE(find(u"New Collection"_s));

    // The round buttons toggle the whole source and the whole collection (once the
    // rescan the new sources started is done: toggles wait for none).
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }));
    QTest::mouseClick(viewportOf(u"Library"_s), Qt::LeftButton, {},
                      SidebarDelegate::layout(rect(u"Library"_s), int(SidebarModel::Kind::Source)).button.center().toPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return store.activatedFonts().size() == 5; }));
    store.addToCollection(collection(u"New Collection"_s), FontNode::fontFile(library + u"/c.ttf"_s));
    EXPECT_EQ(model()->index(rowOf(u"New Collection"_s)).data(SidebarModel::ActivationRole).toInt(),
              int(ActivationState::Active));

    // The icon chooser's answer becomes the icon; "Delete Collection" deletes.
    const QString icon = testRoot() + u"/star.png"_s;
    QImage(8, 8, QImage::Format_ARGB32).save(icon);
    sidebar->setIconChooser([&] { return icon; });
    QMenu *menu = rightClick(viewportOf(u"New Collection"_s), rect(u"New Collection"_s).center());
    action(menu, u"Set Custom Icon…"_s)->trigger();
    menu->close();
    const std::optional<QString> kept = find(u"New Collection"_s)->iconPath;
    ASSERT_TRUE(kept);
    EXPECT_TRUE(QFile::exists(*kept)) << "a copy kept with the library";
    menu = rightClick(viewportOf(u"New Collection"_s), rect(u"New Collection"_s).center());
    const std::shared_ptr<QString> asked = answerNextQuestion(u"Delete Collection"_s);
    action(menu, u"Delete Collection"_s)->trigger();
    menu->close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !find(u"New Collection"_s); }));
    EXPECT_EQ(*asked, u"Delete the collection \u201cNew Collection\u201d?\nIts 1 item stays where it is on disk; "
                      u"only the collection goes."_s);
    // A source's menu ends with "Remove Source".
    menu = rightClick(viewportOf(u"Extra"_s), rect(u"Extra"_s).center());
    EXPECT_EQ(actionTexts(menu).constLast(), u"Remove Source"_s);
    menu->close();
}

TEST_F(Sidebar, TheChoosersAskForFoldersAndImages)
{
    std::unique_ptr<QFileDialog> folders(FolderChoosers::makeFolderChooser(nullptr));
    EXPECT_EQ(folders->windowTitle(), u"Choose a Font Folder"_s);
    EXPECT_EQ(folders->fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(folders->testOption(QFileDialog::ShowDirsOnly));
    EXPECT_TRUE(folders->testOption(QFileDialog::ReadOnly));
    EXPECT_EQ(folders->directory().absolutePath(), QDir::homePath()) << "opens at home, not the working folder";
    EXPECT_EQ(folders->findChild<QLabel *>(u"message"_s)->text(), u"Select a folder containing fonts"_s);
    EXPECT_EQ(folders->findChild<QAbstractItemView *>(u"listView"_s)->selectionMode(), QAbstractItemView::ExtendedSelection);
    std::unique_ptr<QFileDialog> icons(FolderChoosers::makeIconChooser(nullptr));
    EXPECT_EQ(icons->windowTitle(), u"Choose an Icon"_s);
    EXPECT_EQ(icons->fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(icons->findChild<QLabel *>(u"message"_s)->text(), u"Select a PNG or SVG image"_s);
    EXPECT_TRUE(icons->nameFilters().join(u' ').contains(u"*.svg"_s));
}

TEST_F(Sidebar, TheCollectionViewShowsJumpsRemovesAndTakesDrops)
{
    store.createCollection(u"Mixed"_s);
    const QUuid id = collection(u"Mixed"_s);
    store.addToCollection(id, FontNode::fontFile(library + u"/c.ttf"_s));
    store.addToCollection(id, FontNode::folder(library + u"/A"_s));
    store.addToCollection(id, FontNode::fontFile(testRoot() + u"/gone.ttf"_s));
    CollectionView view(store, id);
    view.resize(900, 500);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    CollectionMemberList *list = view.memberList();
    QAbstractItemModelTester tester(list->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    ASSERT_EQ(list->model()->rowCount(), 3);
    const auto labelNamed = [&](const QString &name) {
        for (QLabel *label : view.findChildren<QLabel *>()) {
            if (label->accessibleName() == name)
                return label;
        }
        return static_cast<QLabel *>(nullptr);
    };
    EXPECT_EQ(labelNamed(u"Collection name"_s)->text(), u"Mixed"_s);
    EXPECT_EQ(labelNamed(u"Collection contents"_s)->text(), u"4 fonts · 3 items"_s);
    const int gone = list->memberModel()->rowOf(testRoot() + u"/gone.ttf"_s);
    const QModelIndex goneIndex = list->model()->index(gone, 0);
    EXPECT_TRUE(goneIndex.data(CollectionMemberModel::MissingRole).toBool());
    EXPECT_EQ(goneIndex.data(CollectionMemberModel::ActivationRole).toInt(), -1);
    EXPECT_TRUE(goneIndex.data(Qt::AccessibleDescriptionRole).toString().contains(u"Missing"_s));

    // Activate All, then its label turns.
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); })); // the missing member started a rescan
    QPushButton *toggle = view.findChild<QPushButton *>();
    ASSERT_TRUE(toggle);
    EXPECT_EQ(toggle->text(), u"Activate All"_s);
    QTest::mouseClick(toggle, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return store.activatedFonts().size() == 4; }));
    EXPECT_EQ(toggle->text(), u"Deactivate All"_s);

    // A click on the font member shows its preview beside the list.
    const int font = list->memberModel()->rowOf(library + u"/c.ttf"_s);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(font, 0)).center());
    ASSERT_TRUE(view.previewPane());
    EXPECT_EQ(view.previewPane()->fontNode().path(), library + u"/c.ttf"_s);
    // Enter jumps to it in its source.
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Return);
    ASSERT_TRUE(store.sidebarSelection() && store.sidebarSelection()->isSource());
    ASSERT_TRUE(store.selectedFont());
    EXPECT_EQ(store.selectedFont()->path(), library + u"/c.ttf"_s);

    // The member menu; "Remove from Collection" removes, and so does Delete.
    const QPoint at = list->visualRect(list->model()->index(gone, 0)).center();
    QMenu *menu = rightClick(list->viewport(), at);
    ASSERT_TRUE(menu);
    EXPECT_EQ(actionTexts(menu), (QStringList{u"Show in File Manager"_s, QString(), u"License Status"_s, QString(),
                                              u"Remove from Collection"_s}));
    action(menu, u"Remove from Collection"_s)->trigger();
    menu->close();
    EXPECT_EQ(list->model()->rowCount(), 2);
    list->setCurrentIndex(list->model()->index(0, 0));
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(list->model()->rowCount(), 1);
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(list->model()->rowCount(), 0);
    EXPECT_TRUE(labelNamed(u"Empty collection"_s)->isVisible());
    EXPECT_EQ(labelNamed(u"Empty collection"_s)->text(), u"Drag fonts or folders here"_s);

    // Dropped on the view, files and folders join it.
    EXPECT_TRUE(drop(&view, QPoint(400, 300), {library + u"/B"_s, library + u"/c.ttf"_s}));
    EXPECT_EQ(list->model()->rowCount(), 2);
    EXPECT_FALSE(labelNamed(u"Empty collection"_s)->isVisible());
    // Dragging a member out offers copy or link, never move.
    EXPECT_EQ(list->model()->supportedDragActions(), Qt::CopyAction | Qt::LinkAction);
    std::unique_ptr<QMimeData> data(list->model()->mimeData({list->model()->index(0, 0)}));
    EXPECT_EQ(data->urls().value(0).toLocalFile(), library + u"/B"_s);
}

// The store's changes reach the lists row by row: a change elsewhere leaves the row the
// user chose, the scroll position and the shown collection's preview as they were.
TEST_F(Sidebar, ChangesElsewhereLeaveWhatTheUserChoseInPlace)
{
    for (int i = 0; i < 30; ++i)
        store.createCollection(u"C%1"_s.arg(i, 2, 10, QChar(u'0')));
    const QUuid shown = collection(u"C20"_s);
    store.addToCollection(shown, FontNode::fontFile(library + u"/c.ttf"_s));
    store.addToCollection(shown, FontNode::fontFile(library + u"/B/b.ttf"_s));
    QAbstractItemModelTester tester(model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy resets(model(), &QAbstractItemModel::modelReset);
    SidebarList *collections = list(u"C20"_s);
    collections->scrollTo(collections->indexForRow(rowOf(u"C20"_s))); // as the wheel brings it
    click(u"C20"_s);
    ASSERT_EQ(store.selectedCollection()->id, shown);
    const int scrolled = collections->verticalScrollBar()->value();
    ASSERT_GT(scrolled, 0) << "C20 lies below the first screenful";

    CollectionView view(store, shown);
    view.show();
    CollectionMemberList *members = view.memberList();
    QTest::mouseClick(members->viewport(), Qt::LeftButton, {},
                      members->visualRect(members->model()->index(members->memberModel()->rowOf(library + u"/c.ttf"_s), 0))
                          .center());
    const QPointer<FontPreviewView> preview = view.previewPane();
    ASSERT_TRUE(preview);

    const struct
    {
        const char *change;
        std::function<void()> act;
    } changes[] = {
        {"another collection renamed", [&] { store.renameCollection(collection(u"C03"_s), u"C03 renamed"_s); }},
        {"a drop on another collection", [&] { store.addToCollection(collection(u"C05"_s), {FontNode::folder(library + u"/A"_s)}); }},
        {"another collection deleted", [&] { store.deleteCollection(*find(u"C01"_s)); }},
        {"this collection renamed", [&] { store.renameCollection(shown, u"C20 renamed"_s); }},
        {"another member of this one removed", [&] { store.removeFromCollection(shown, {library + u"/B/b.ttf"_s, false}); }},
        {"a source added", [&] { store.addSource(makeDir(testRoot() + u"/More"_s)); }},
    };
    for (const auto &change : changes) {
        change.act();
        ASSERT_TRUE(store.selectedCollection()) << change.change;
        EXPECT_EQ(store.selectedCollection()->id, shown) << change.change;
        EXPECT_EQ(collections->currentIndex(), collections->indexForRow(model()->rowOf(*store.sidebarSelection())))
            << change.change;
        EXPECT_EQ(collections->verticalScrollBar()->value(), scrolled) << change.change;
        EXPECT_EQ(view.previewPane(), preview.data()) << change.change << ": the preview stays";
        EXPECT_EQ(members->currentIndex().data(CollectionMemberModel::PathRole).toString(), library + u"/c.ttf"_s)
            << change.change;
    }
    EXPECT_TRUE(resets.isEmpty());
}

// Files and folders dropped on the sources add their folder as a source, asking which
// when the fonts come from several; nothing is moved or copied, and what holds no font
// is turned away.
TEST_F(Sidebar, FoldersAndFontsDroppedOnTheSourcesBecomeSources)
{
    const QString downloads = makeDir(testRoot() + u"/Downloads"_s);
    const QString pack = makeDir(downloads + u"/Pack"_s);
    const QString loose = writeFile(downloads + u"/Loose.otf"_s, "font");
    const QString other = writeFile(makeDir(testRoot() + u"/Other"_s) + u"/Other.ttf"_s, "font");
    const QString notes = writeFile(downloads + u"/notes.txt"_s, "text");
    SidebarList *sources = sidebar->sourcesList();
    QStringList offered;
    sources->setFolderChooser([&](const QStringList &folders) {
        offered = folders;
        return folders.last();
    });
    const QPoint at = sources->viewport()->rect().center();
    const auto paths = [&] {
        QStringList list;
        for (const FolderSource &source : store.sources())
            list.append(source.path);
        return list;
    };

    const struct
    {
        const char *what;
        QStringList dropped;
        bool accepted;
        QStringList sources;
        QStringList asked;
    } drops[] = {
        {"a folder", {pack}, true, {library, pack}, {}},
        {"only a file that is no font", {notes}, false, {library, pack}, {}},
        {"a font file: its folder", {loose, notes}, true, {library, pack, downloads}, {}},
        {"fonts from two folders: the chosen one", {loose, other}, true, {library, pack, downloads, testRoot() + u"/Other"_s},
         {downloads, testRoot() + u"/Other"_s}},
    };
    for (const auto &d : drops) {
        offered.clear();
        EXPECT_EQ(drop(sources->viewport(), at, d.dropped), d.accepted) << d.what;
        EXPECT_TRUE(QTest::qWaitFor([&] { return paths() == d.sources; })) << d.what << ": " << paths().join(u", "_s).toStdString();
        EXPECT_EQ(offered, d.asked) << d.what;
    }
    for (const QString &file : {loose, other, notes})
        EXPECT_TRUE(QFile::exists(file)) << "a drop never moves a file";
}
