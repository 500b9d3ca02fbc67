// SPDX-License-Identifier: GPL-3.0-or-later
#include "StateTestSupport.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

class Activation : public testing::Test, public StoreFixture
{
protected:
    Activation()
    {
        for (int i = 0; i < 20; ++i)
            writeFile(path(u"Big/f%1.ttf"_s.arg(i, 2, 10, QChar(u'0'))));
        for (const QString &file : {u"Mixed/m1.otf"_s, u"Mixed/m2.otf"_s, u"Mixed/m3.otf"_s, u"Other/o.otf"_s})
            writeFile(path(file));
        source = addSource(library);
        store->setSidebarSelection(SidebarItem(source));
        scan();
    }

    bool waitUntilIdle() { return QTest::qWaitFor([this] { return !store->isProcessing(); }, 20'000); }

    QList<FontNode> fontsOf(const QString &folder)
    {
        const std::span<const FontNode> fonts = store->fileSystemService().allFonts(path(folder));
        return QList<FontNode>(fonts.begin(), fonts.end());
    }

    FolderSource source;
};

} // namespace

TEST_F(Activation, ABatchReportsProgressInChunksOfEight)
{
    QStringList messages;
    QList<double> progress;
    QObject::connect(store.get(), &AppState::processingMessageChanged, [&] { messages.append(store->processingMessage()); });
    QObject::connect(store.get(), &AppState::processingProgressChanged, [&] { progress.append(store->processingProgress()); });
    QSignalSpy processing(store.get(), &AppState::isProcessingChanged);
    activation.hold(); // the batch can't finish before it is looked at
    store->toggleActivation(folder(u"Big"_s));
    EXPECT_TRUE(store->isProcessing());
    activation.open();
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(messages, (QStringList{u"Activating fonts (0 of 20)..."_s, u"Activating fonts (8 of 20)..."_s,
                                     u"Activating fonts (16 of 20)..."_s, u"Activating fonts (20 of 20)..."_s}));
    EXPECT_EQ(progress, (QList<double>{0.4, 0.8, 1.0})); // it started at 0 already
    EXPECT_EQ(processing.count(), 2);
    EXPECT_EQ(store->activatedFonts().size(), 20);
    EXPECT_EQ(store->activationState(folder(u"Big"_s)), ActivationState::Active);
    EXPECT_EQ(written().loadActivatedFonts(), store->activatedFonts());
    EXPECT_EQ(store->processingMessage(), u"Activating fonts (20 of 20)..."_s); // kept after the end
}

TEST_F(Activation, AMixedFolderBecomesFullyActiveThenInactive)
{
    store->toggleActivation(font(u"Mixed/m2.otf"_s));
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store->processingMessage(), u"Updating fonts (1 of 1)..."_s);
    EXPECT_EQ(store->activationState(folder(u"Mixed"_s)), ActivationState::Mixed);
    EXPECT_EQ(store->activationState(folder(u"Other"_s)), ActivationState::Inactive);
    store->toggleActivation(folder(u"Mixed"_s));
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store->activationState(folder(u"Mixed"_s)), ActivationState::Active);
    EXPECT_EQ(store->activatedFonts().size(), 3);
    store->toggleActivation(folder(u"Mixed"_s));
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store->processingMessage(), u"Deactivating fonts (3 of 3)..."_s);
    EXPECT_TRUE(store->activatedFonts().isEmpty());
    EXPECT_EQ(store->activationState(folder(u"Mixed"_s)), ActivationState::Inactive);
    EXPECT_TRUE(written().loadActivatedFonts().isEmpty());
}

// A folder holding a font that can't be activated: the first click leaves it mixed; the
// second switches it off, as its menu's "Deactivate All Fonts in Folder" does, naming the
// font, rather than trying it again while the others stay on. Once off, a click tries all.
TEST_F(Activation, AFolderLeftMixedByARefusedFontIsSwitchedOffByItsButton)
{
    const QString refused = path(u"Mixed/m2.otf"_s);
    activation.failing.insert(refused);
    store->toggleActivation(folder(u"Mixed"_s));
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store->activatedFonts().size(), 2);
    ASSERT_EQ(store->activationState(folder(u"Mixed"_s)), ActivationState::Mixed);

    const int callsBefore = int(activation.calls().size());
    store->toggleActivation(folder(u"Mixed"_s));
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_TRUE(store->activatedFonts().isEmpty());
    EXPECT_EQ(store->activationState(folder(u"Mixed"_s)), ActivationState::Inactive);
    for (const QString &call : activation.calls().mid(callsBefore))
        EXPECT_TRUE(call.startsWith(u'-')) << call.toStdString() << ": nothing tried again";
    EXPECT_TRUE(store->notice().contains(u"\u201cm2.otf\u201d couldn't be activated"_s)) << store->notice().toStdString();
    EXPECT_TRUE(written().loadActivatedFonts().isEmpty());

    // Mended: the next click activates the folder, the font too.
    activation.failing.clear();
    store->toggleActivation(folder(u"Mixed"_s));
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store->activationState(folder(u"Mixed"_s)), ActivationState::Active);
    EXPECT_EQ(written().loadActivatedFonts().size(), 3);
}

TEST_F(Activation, DuplicatesCountOnceAndFailuresStayAsTheyWere)
{
    const FontNode a = font(u"Other/o.otf"_s);
    const FontNode b = font(u"Mixed/m1.otf"_s);
    activation.failing.insert(b.path());
    store->setActivation({a, a, b, a}, true);
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(activation.calls(), (QStringList{u'+' + a.path(), u'+' + b.path()}));
    EXPECT_EQ(store->processingMessage(), u"Activating fonts (2 of 2)..."_s);
    EXPECT_EQ(store->activatedFonts(), QSet<QString>{a.path()});
    // Saved as done, the failure left out.
    EXPECT_EQ(written().loadActivatedFonts(), QSet<QString>{a.path()});
}

TEST_F(Activation, TogglesWhileABatchRunsOrTheLibraryIndexesAreIgnored)
{
    activation.hold();
    store->toggleActivation(folder(u"Big"_s));
    ASSERT_TRUE(store->isProcessing());
    store->toggleActivation(font(u"Other/o.otf"_s));
    store->toggleCollectionActivation(FontCollection::create(u"x"_s));
    store->deactivateAllFonts();
    store->setActivation({font(u"Other/o.otf"_s), font(u"Mixed/m1.otf"_s)}, true); // a family in the font list
    activation.open();
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(activation.calls().size(), 20);
    EXPECT_FALSE(store->activatedFonts().contains(path(u"Other/o.otf"_s)));

    store->refreshFileSystem();
    ASSERT_TRUE(store->isIndexing());
    store->toggleActivation(font(u"Other/o.otf"_s));
    EXPECT_FALSE(store->isProcessing());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !store->isIndexing(); }, 20'000));
    EXPECT_EQ(activation.calls().size(), 20);
    EXPECT_EQ(written().loadActivatedFonts().size(), 20); // the ignored toggle saved nothing new
}

TEST_F(Activation, CollectionsAndDeactivateAllFollowTheSameRule)
{
    store->createCollection(u"Set"_s);
    const QUuid id = store->collections().first().id;
    store->addToCollection(id, folder(u"Mixed"_s));
    store->addToCollection(id, font(u"Other/o.otf"_s));
    const auto collection = [this] { return store->collections().first(); };
    EXPECT_EQ(store->collectionActivationState(collection()), ActivationState::Inactive);
    store->toggleCollectionActivation(collection());
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store->collectionActivationState(collection()), ActivationState::Active);
    EXPECT_EQ(store->activatedFonts().size(), 4);

    // Deactivate all means all: the sources' fonts first, then a collection folder's
    // outside every source, then any other active path.
    const QString outside = makeDir(testRoot() + u"/Outside"_s);
    for (const QString &name : {u"x.otf"_s, u"y.otf"_s})
        writeFile(outside + u'/' + name, "font");
    store->addToCollection(id, FontNode::folder(outside));
    store->refreshFileSystem(); // the collection's folder is scanned with the sources
    ASSERT_TRUE(QTest::qWaitFor([this] { return !store->isIndexing(); }, 20'000));
    store->setActivation({FontNode::fontFile(outside + u"/x.otf"_s), FontNode::fontFile(testRoot() + u"/Gone/z.otf"_s)}, true);
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store->activatedFonts().size(), 6);
    const qsizetype before = activation.calls().size();
    store->deactivateAllFonts();
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_TRUE(store->activatedFonts().isEmpty());
    EXPECT_EQ(activation.calls().mid(before + 4), (QStringList{u'-' + outside + u"/x.otf"_s, u'-' + testRoot() + u"/Gone/z.otf"_s}))
        << "the library's own fonts first";
    EXPECT_EQ(store->collectionActivationState(collection()), ActivationState::Inactive);
    EXPECT_EQ(written().loadActivatedFonts(), store->activatedFonts());

    // Nothing active anywhere: nothing runs and nothing is saved.
    QSignalSpy processing(store.get(), &AppState::isProcessingChanged);
    persistence.saveActivatedFonts({u"/marker.otf"_s});
    store->deactivateAllFonts();
    EXPECT_EQ(processing.count(), 0);
    EXPECT_EQ(written().loadActivatedFonts(), QSet<QString>{u"/marker.otf"_s});
}

TEST_F(Activation, FolderStatesAreMemoisedUntilTheFontsOrTheLibraryChange)
{
    const FontNode unknown = FontNode::folder(path(u"NotScanned"_s));
    EXPECT_EQ(store->activationState(unknown), ActivationState::Inactive);
    writeFile(path(u"NotScanned/n.otf"_s));
    store->setActivation({font(u"NotScanned/n.otf"_s)}, true);
    ASSERT_TRUE(waitUntilIdle());
    EXPECT_EQ(store->activationState(unknown), ActivationState::Inactive); // not scanned yet
    scan();
    EXPECT_EQ(store->activationState(unknown), ActivationState::Active);
}

// Rows already drawn keep counting as batches go, chunk by chunk: after each step every
// folder's and collection's state is what counting its fonts afresh says.
TEST_F(Activation, RowStatesFollowEveryBatchWithoutBeingCountedAgain)
{
    store->createCollection(u"Set"_s);
    const QUuid id = store->collections().first().id;
    store->addToCollection(id, folder(u"Mixed"_s));
    store->addToCollection(id, font(u"Big/f03.ttf"_s));
    const QStringList folders{u"Big"_s, u"Mixed"_s, u"Other"_s};
    const auto freshState = [&](const QList<FontNode> &fonts) {
        qsizetype active = 0;
        for (const FontNode &f : fonts)
            active += store->activatedFonts().contains(f.path()) ? 1 : 0;
        return activationStateFor(active, fonts.size());
    };
    const auto check = [&](const char *step) {
        for (const QString &name : folders)
            EXPECT_EQ(store->activationState(folder(name)), freshState(fontsOf(name))) << step << " " << name.toStdString();
        const std::span<const FontNode> all = store->fileSystemService().allFonts(library);
        EXPECT_EQ(store->activationState(FontNode::folder(library)), freshState(QList<FontNode>(all.begin(), all.end()))) << step;
        const FontCollection set = store->collections().first();
        EXPECT_EQ(store->collectionActivationState(set), freshState(fontsOf(u"Mixed"_s) << font(u"Big/f03.ttf"_s))) << step;
    };
    check("nothing active"); // every row counted once, as a first paint does
    const struct
    {
        const char *step;
        std::function<void()> act;
    } steps[] = {
        {"a folder on", [&] { store->toggleActivation(folder(u"Big"_s)); }},
        {"one font off", [&] { store->toggleActivation(font(u"Big/f03.ttf"_s)); }},
        {"the collection on", [&] { store->toggleCollectionActivation(store->collections().first()); }},
        {"a font fontconfig turns down", [&] {
             activation.failing.insert(path(u"Other/o.otf"_s));
             store->toggleActivation(folder(u"Other"_s));
         }},
        {"the source off", [&] { store->toggleActivation(FontNode::folder(library)); }},
    };
    for (const auto &s : steps) {
        s.act();
        ASSERT_TRUE(waitUntilIdle()) << s.step;
        check(s.step);
    }
}
