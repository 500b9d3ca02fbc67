// SPDX-License-Identifier: GPL-3.0-or-later
// Long lists keep the user's place when a refresh brings a few rows: a browser column
// scrolled deep into a folder of 300 fonts, and the folder search's hits, keep the row
// at their top when a font or a folder arrives above it.
#include "TestSupport.h"
#include "WindowFixture.h"

#include "state/AppState.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/browser/SingleColumnView.h"
#include "ui/search/SearchResultsView.h"
#include "ui/window/MainWindow.h"
#include "ui/window/ToolbarInputField.h"

#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

QString topRow(QAbstractItemView *view)
{
    return view->indexAt(QPoint(2, 2)).data().toString();
}

} // namespace

TEST(RowPlace, AColumnAndTheSearchHitsKeepTheirTopRowWhenRowsArriveAbove)
{
    const QString library = makeDir(testRoot() + u"/Fonts"_s);
    for (int i = 0; i < 300; ++i)
        writeFile(library + u"/Many/f%1.ttf"_s.arg(i, 3, 10, QChar(u'0')));
    for (int i = 0; i < 120; ++i)
        writeFile(library + u"/Folders/dir%1/x.ttf"_s.arg(i, 3, 10, QChar(u'0')));
    WindowFixture::saveOneSource(library);
    auto window = WindowFixture::openWindow();
    AppState &store = window->state();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));

    // A column scrolled to the middle of "Many".
    SingleColumnView *first = window->browser().columns().value(0);
    first->setFocus();
    QTest::keyClick(first, Qt::Key_Up); // Many, the last folder
    SingleColumnView *column = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        column = window->browser().columns().value(1);
        return column && column->model()->rowCount() == 300;
    }));
    column->scrollTo(column->model()->index(150, 0), QAbstractItemView::PositionAtTop);
    const QString top = topRow(column);
    ASSERT_EQ(top, u"f150.ttf"_s);
    writeFile(library + u"/Many/a000.ttf"_s); // sorts first
    store.refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing() && column->model()->rowCount() == 301; }, 20'000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return topRow(column) == top; })) << "the column kept its place, not " << topRow(column).toStdString();

    // The hits of a search, scrolled, and a folder arriving above the top one.
    QLineEdit *field = window->searchField().lineEdit();
    field->setFocus();
    QTest::keyClicks(field, u"dir"_s);
    QListView *hits = window->searchResults().list();
    ASSERT_TRUE(QTest::qWaitFor([&] { return hits->model()->rowCount() == 120; }, 10'000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return hits->isVisible(); }));
    hits->scrollTo(hits->model()->index(60, 0), QAbstractItemView::PositionAtTop);
    const QString topHit = topRow(hits);
    ASSERT_FALSE(topHit.isEmpty());
    writeFile(library + u"/Folders/dir000a/x.ttf"_s);
    store.refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing() && hits->model()->rowCount() == 121 && hits->isVisible(); },
                                20'000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return topRow(hits) == topHit; })) << "the hits kept their place, not " << topRow(hits).toStdString();
}
