// SPDX-License-Identifier: GPL-3.0-or-later
// The font list keeps the user's place while the library changes under it: the chosen
// row, the open family and the family at the top of the list survive a refresh that
// changed nothing, a font arriving in a source, and (in Active Fonts) a family going.
#include "TestSupport.h"
#include "WindowFixture.h"

#include "state/AppState.h"
#include "ui/fontlist/FontListModel.h"
#include "ui/fontlist/FontListView.h"
#include "ui/sidebar/LibraryList.h"
#include "ui/sidebar/SidebarView.h"
#include "ui/window/MainWindow.h"

#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <functional>

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

class FontListPlace : public testing::Test
{
protected:
    void SetUp() override
    {
        library = makeDir(testRoot() + u"/Fonts"_s);
        QProcess corpus; // 40 families of two faces each, "Sample Bbbbb" on
        corpus.start(QStringLiteral(MORVANE_PYTHON),
                     {QStringLiteral(MORVANE_SOURCE_DIR "/tools/fonts/make_family_corpus.py"), library + u"/Corpus"_s, u"40"_s});
        ASSERT_TRUE(corpus.waitForFinished(120'000));
        ASSERT_EQ(corpus.exitCode(), 0) << corpus.readAllStandardError().toStdString();
        WindowFixture::saveOneSource(library);
        window = WindowFixture::openWindow();
        window->resize(900, 500); // far fewer rows shown than there are families
        ASSERT_TRUE(store().waitForCatalogue(60'000));
    }

    AppState &store() { return window->state(); }
    FontListView *list() { return window->fontList(); }
    const FontListModel *model() { return list()->model(); }
    void choose(LibraryView::Kind kind)
    {
        LibraryList *libraryList = window->sidebar().libraryList();
        QTest::mouseClick(libraryList->viewport(), Qt::LeftButton, {},
                          libraryList->visualRect(libraryList->model()->index(int(kind), 0)).center());
    }
    QString familyAt(int row) { return model()->index(row, 0).data().toString(); }
    int rowOf(const QString &family)
    {
        for (int row = 0; row < model()->rowCount(); ++row) {
            if (familyAt(row) == family)
                return row;
        }
        return -1;
    }

    // Where the user is: the current row (a face: family and style), the open family,
    // the family at the top.
    struct Place
    {
        QString current;
        QStringList open;
        QString top;
        bool operator==(const Place &) const = default;
    };
    Place place()
    {
        FontListTree *tree = list()->tree();
        const QModelIndex current = tree->currentIndex();
        Place p;
        p.current = current.parent().data().toString() + u" / "_s + current.data().toString();
        for (int row = 0; row < model()->rowCount(); ++row) {
            if (tree->isExpanded(model()->index(row, 0)))
                p.open.append(familyAt(row));
        }
        p.top = tree->indexAt(QPoint(1, 1)).data().toString();
        return p;
    }

    QString library;
    std::unique_ptr<MainWindow> window;
};

} // namespace

TEST_F(FontListPlace, TheChosenRowOpenFamilyAndScrollSurviveChangesOfTheLibrary)
{
    // Everything active, so that Active Fonts holds the same list.
    store().toggleActivation(FontNode::folder(library));
    ASSERT_TRUE(QTest::qWaitFor([&] { return store().activatedFonts().size() == 80 && !store().isProcessing(); }, 60'000));
    choose(LibraryView::ActiveFonts);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list() && !list()->isQuerying() && model()->rowCount() == 40; }, 30'000));

    // The user opens a family far down, chooses its bold face and scrolls it to the top.
    FontListTree *tree = list()->tree();
    tree->setFocus();
    const QString chosen = familyAt(25);
    const QModelIndex family = model()->index(25, 0);
    tree->setCurrentIndex(family);
    QTest::keyClick(tree, Qt::Key_Right); // open
    QTest::keyClick(tree, Qt::Key_Down);
    QTest::keyClick(tree, Qt::Key_Down); // its bold face
    tree->scrollTo(model()->index(20, 0), QAbstractItemView::PositionAtTop);
    const Place before = place();
    ASSERT_EQ(before.open, QStringList{chosen});
    ASSERT_EQ(before.current, chosen + u" / Bold"_s);
    ASSERT_EQ(before.top, familyAt(20));

    const QString earlier = familyAt(3); // above the place
    const struct
    {
        const char *what;
        std::function<void()> act;
        int families; // what the list then holds
    } changes[] = {
        {"a refresh that finds nothing new", [&] { store().refreshFileSystem(); }, 40},
        {"a new font in a source, active, sorting first", [&] {
             const QString font = makeDir(library + u"/New"_s) + u"/DejaVuSans.ttf"_s;
             ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s, font));
             store().refreshFileSystem();
             ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isIndexing(); }, 30'000));
             store().setActivation({FontNode::fontFile(font)}, true);
         }, 41},
        {"a family above deactivated", [&] {
             const int row = rowOf(earlier);
             store().setActivation({FontNode::fontFile(model()->index(0, 0, model()->index(row, 0)).data(FontListModel::PathRole).toString()),
                                    FontNode::fontFile(model()->index(1, 0, model()->index(row, 0)).data(FontListModel::PathRole).toString())},
                                   false);
         }, 40},
    };
    for (const auto &change : changes) {
        change.act();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !store().isIndexing() && !store().isProcessing(); }, 30'000)) << change.what;
        ASSERT_TRUE(store().waitForCatalogue(60'000)) << change.what;
        ASSERT_TRUE(QTest::qWaitFor([&] { return !list()->isQuerying() && model()->rowCount() == change.families; }, 30'000))
            << change.what << ": " << model()->rowCount() << " families";
        EXPECT_EQ(place(), before) << change.what << ": now " << place().current.toStdString() << ", top "
                                   << place().top.toStdString();
    }
}

// The library's changes reach the list as what they are: a family that came is a row
// inserted where it sorts, a face gone is a row removed under its family, a file read
// again redraws its rows; never a reset nor a reshuffle, and the user's place stays.
TEST_F(FontListPlace, ChangesArriveAsRowsInsertedRemovedAndRedrawn)
{
    choose(LibraryView::AllFonts);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list() && !list()->isQuerying() && model()->rowCount() == 40; }, 30'000));
    FontListTree *tree = list()->tree();
    tree->setFocus();
    const QString chosen = familyAt(10);
    tree->setCurrentIndex(model()->index(10, 0));
    QTest::keyClick(tree, Qt::Key_Right); // open
    QTest::keyClick(tree, Qt::Key_Down);
    QTest::keyClick(tree, Qt::Key_Down); // its bold face
    const Place before = place();
    ASSERT_EQ(before.current, chosen + u" / Bold"_s);
    const QString regular = model()->index(0, 0, model()->index(10, 0)).data(FontListModel::PathRole).toString();
    const QString other = familyAt(20);
    const QString otherBold = model()->index(1, 0, model()->index(20, 0)).data(FontListModel::PathRole).toString();
    ASSERT_FALSE(regular.isEmpty());

    QSignalSpy resets(model(), &QAbstractItemModel::modelAboutToBeReset);
    QSignalSpy layouts(model(), &QAbstractItemModel::layoutAboutToBeChanged);
    QSignalSpy inserted(model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(model(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy redrawn(model(), &QAbstractItemModel::dataChanged);
    const QString newcomer = library + u"/New/DejaVuSans.ttf"_s;
    const auto readAgain = [](const QString &path) { // its time moves: the catalogue reads it again
        const timespec later[2] = {{0, UTIME_OMIT}, {::time(nullptr) + 100, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), later, 0), 0);
    };
    const struct
    {
        const char *what;
        std::function<void()> act;
        QSignalSpy &spy;
        QString parentFamily; // empty: a family row
        int row;
    } changes[] = {
        {"a new family, sorting first", [&] {
             makeDir(library + u"/New"_s);
             ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s, newcomer));
         }, inserted, {}, 0},
        {"a face of another family gone", [&] { ASSERT_TRUE(QFile::remove(otherBold)); }, removed, other, 1},
        {"the chosen family's regular file read again", [&] { readAgain(regular); }, redrawn, chosen, 0},
        {"the new family gone", [&] { ASSERT_TRUE(QFile::remove(newcomer)); }, removed, {}, 0},
    };
    for (const auto &change : changes) {
        for (QSignalSpy *spy : {&resets, &layouts, &inserted, &removed, &redrawn})
            spy->clear();
        change.act();
        store().refreshFileSystem();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !change.spy.isEmpty(); }, 60'000)) << change.what;
        ASSERT_TRUE(store().waitForCatalogue(60'000));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !list()->isQuerying(); }, 30'000));
        EXPECT_EQ(resets.count() + layouts.count(), 0) << change.what;
        const auto said = std::find_if(change.spy.cbegin(), change.spy.cend(), [&](const QList<QVariant> &signal) {
            const QModelIndex at = signal.at(0).value<QModelIndex>();
            const QModelIndex parent = change.spy.signal() == QByteArray("2dataChanged(QModelIndex,QModelIndex,QList<int>)")
                                           ? at.parent() : at;
            const int row = change.spy.signal() == QByteArray("2dataChanged(QModelIndex,QModelIndex,QList<int>)")
                                ? at.row() : signal.at(1).toInt();
            return parent.data().toString() == change.parentFamily && row == change.row;
        });
        EXPECT_NE(said, change.spy.cend()) << change.what;
        EXPECT_EQ(place().current, before.current) << change.what;
        EXPECT_EQ(place().open, before.open) << change.what;
    }
    EXPECT_EQ(model()->rowCount(), 40);
    EXPECT_EQ(model()->rowCount(model()->index(rowOf(other), 0)), 1);
}
