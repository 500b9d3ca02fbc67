// SPDX-License-Identifier: GPL-3.0-or-later
// The catalogue through the store: a refresh indexes every face in the background,
// says how far it got, answers questions meanwhile, and forgets what is gone.
#include "StateTestSupport.h"

#include <QCoroTask>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

QList<FaceRecord> ask(AppState &store, const FontQuery &query)
{
    return QCoro::waitFor(store.queryFonts(query));
}

QStringList postScriptNames(const QList<FaceRecord> &faces)
{
    QStringList names;
    for (const FaceRecord &face : faces)
        names.append(face.postScriptName);
    return names;
}

} // namespace

TEST(Catalogue, ARefreshIndexesEveryFaceAndForgetsWhatIsGone)
{
    StoreFixture fixture;
    AppState &store = *fixture.store;
    const QString fonts = makeDir(fixture.library + u"/Fonts"_s);
    for (const QString &name : {u"DejaVuSans.ttf"_s, u"DejaVuSansMono.ttf"_s, u"DejaVuSerif.ttf"_s})
        ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/"_s + name, fonts + u'/' + name));
    ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Pair.ttc"), fonts + u"/Pair.ttc"_s));
    QStringList said;
    QObject::connect(&store, &AppState::catalogueProgressChanged, &store, [&] {
        if (!store.catalogueMessage().isEmpty())
            said.append(store.catalogueMessage());
    });
    store.addSource(fixture.library);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 20'000));
    ASSERT_TRUE(store.waitForCatalogue(60'000));
    EXPECT_EQ(said.value(0), u"Indexing fonts (0 of 4)…"_s);
    EXPECT_EQ(said.last(), u"Indexing fonts (4 of 4)…"_s);

    EXPECT_EQ(ask(store, FontQuery{.text = u"dejavu"_s}).size(), 3);
    EXPECT_EQ(ask(store, FontQuery{.monospaced = true}).size(), 1);
    EXPECT_EQ(ask(store, FontQuery{}).size(), 5) << "both faces of the collection file";

    // A refresh in the middle of indexing: the second job takes over, nothing counted twice.
    QFile::remove(fonts + u"/DejaVuSerif.ttf"_s);
    store.refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return store.isCataloguing() || !store.isIndexing(); }, 20'000));
    store.refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 20'000));
    ASSERT_TRUE(store.waitForCatalogue(60'000));
    const QStringList left = postScriptNames(ask(store, FontQuery{}));
    EXPECT_EQ(left.size(), 4);
    EXPECT_FALSE(left.contains(u"DejaVuSerif"_s)) << "a vanished file is gone";
    EXPECT_EQ(QSet<QString>(left.cbegin(), left.cend()).size(), left.size()) << "no face twice";
}
