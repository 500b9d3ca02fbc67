// SPDX-License-Identifier: GPL-3.0-or-later
// The catalogue through the store: a refresh indexes every face in the background,
// says how far it got, answers questions meanwhile, and forgets what is gone.
#include "FaultTestSupport.h"
#include "StateTestSupport.h"

#include <QCoroTask>
#include <QDir>
#include <QFile>
#include <QSemaphore>
#include <QSignalSpy>
#include <QThreadPool>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

QList<FoundFace> ask(AppState &store, const FontQuery &query)
{
    return QCoro::waitFor(store.queryFonts(query)).faces();
}

QStringList postScriptNames(const QList<FoundFace> &faces)
{
    QStringList names;
    for (const FoundFace &face : faces)
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
    // As fontconfig measures it: the collection's two test faces draw every glyph alike.
    EXPECT_EQ(ask(store, FontQuery{.monospaced = true}).size(), 3);
    EXPECT_EQ(ask(store, FontQuery{}).size(), 5) << "both faces of the collection file";
    // What only the store knows: which files are active, which folder they are in.
    store.setActivation({FontNode::fontFile(fonts + u"/DejaVuSans.ttf"_s)}, true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }));
    EXPECT_EQ(postScriptNames(ask(store, FontQuery{.active = true})), QStringList{u"DejaVuSans"_s});
    EXPECT_EQ(ask(store, FontQuery{.active = false}).size(), 4);
    EXPECT_EQ(ask(store, FontQuery{.folders = {fonts}}).size(), 5);
    EXPECT_TRUE(ask(store, FontQuery{.folders = {fixture.library + u"/Elsewhere"_s}}).isEmpty());

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

// Each indexing job that changed something says so once, naming the files whose
// records came, were read again and went; one that changed nothing says nothing.
TEST(Catalogue, AJobSaysWhichFilesCameChangedAndWent)
{
    StoreFixture fixture;
    AppState &store = *fixture.store;
    const QString dejavu = u"/usr/share/fonts/truetype/dejavu/"_s;
    const QString kept = fixture.library + u"/Kept.ttf"_s, replaced = fixture.library + u"/Replaced.ttf"_s,
                  removed = fixture.library + u"/Removed.ttf"_s, added = fixture.library + u"/Added.ttf"_s;
    ASSERT_TRUE(QFile::copy(dejavu + u"DejaVuSans.ttf"_s, kept));
    ASSERT_TRUE(QFile::copy(dejavu + u"DejaVuSansMono.ttf"_s, replaced));
    ASSERT_TRUE(QFile::copy(dejavu + u"DejaVuSerif.ttf"_s, removed));
    QSignalSpy changes(&store, &AppState::catalogueChanged);
    store.addSource(fixture.library);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 20'000));
    ASSERT_TRUE(store.waitForCatalogue(60'000));
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.takeFirst().at(0).value<CatalogueChange>().added, (QSet<QString>{kept, replaced, removed}));

    ASSERT_TRUE(QFile::copy(dejavu + u"DejaVuSerif.ttf"_s, added));
    ASSERT_TRUE(QFile::remove(replaced));
    ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Plain.ttf"), replaced));
    ASSERT_TRUE(QFile::remove(removed));
    store.refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 20'000));
    ASSERT_TRUE(store.waitForCatalogue(60'000));
    ASSERT_EQ(changes.count(), 1);
    const auto change = changes.takeFirst().at(0).value<CatalogueChange>();
    EXPECT_EQ(change.added, QSet<QString>{added});
    EXPECT_EQ(change.changed, QSet<QString>{replaced});
    EXPECT_EQ(change.removed, QSet<QString>{removed});

    store.refreshFileSystem(AppState::Refresh::Everything);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 20'000));
    ASSERT_TRUE(store.waitForCatalogue(60'000));
    EXPECT_EQ(changes.count(), 0) << "nothing changed: nothing said";
}

// What is gathered until it is said: a file added and gone again before anyone heard
// of it is not mentioned; one gone and back is changed.
TEST(Catalogue, AChangeNotYetSaidKeepsOnlyWhatTheViewsNeedToHear)
{
    const struct
    {
        const char *what;
        std::function<void(CatalogueChange &)> steps;
        CatalogueChange said;
    } cases[] = {
        {"added, then removed", [](CatalogueChange &c) { c.recordRead(u"a"_s, false); c.recordRemoved(u"a"_s); }, {}},
        {"removed, then back", [](CatalogueChange &c) { c.recordRemoved(u"a"_s); c.recordRead(u"a"_s, false); },
         {{}, {u"a"_s}, {}}},
        {"added, then read again", [](CatalogueChange &c) { c.recordRead(u"a"_s, false); c.recordRead(u"a"_s, true); },
         {{u"a"_s}, {}, {}}},
        {"changed, then removed", [](CatalogueChange &c) { c.recordRead(u"a"_s, true); c.recordRemoved(u"a"_s); },
         {{}, {}, {u"a"_s}}},
    };
    for (const auto &c : cases) {
        CatalogueChange change;
        c.steps(change);
        EXPECT_EQ(change.added, c.said.added) << c.what;
        EXPECT_EQ(change.changed, c.said.changed) << c.what;
        EXPECT_EQ(change.removed, c.said.removed) << c.what;
    }
}

// The catalogue reads on threads that yield to the user's work but still move on a busy
// machine: a lowered nice value, never SCHED_IDLE, which runs nothing while the cores
// are taken.
TEST(Catalogue, ItReadsAtALowerNiceValueNeverAtIdlePriority)
{
    StoreFixture fixture;
    AppState &store = *fixture.store;
    ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s, fixture.library + u"/a.ttf"_s));
    store.addSource(fixture.library);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 20'000));
    ASSERT_TRUE(store.waitForCatalogue(60'000));
    // The pools keep their threads a while after the job: each says how it is run.
    int niced = 0;
    for (const QString &thread : QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QByteArray stat = readFile(u"/proc/self/task/"_s + thread + u"/stat"_s);
        // The fields after the command's closing parenthesis: state is field 3, nice 19, policy 41.
        const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        ASSERT_GT(fields.size(), 38);
        EXPECT_NE(fields.at(38).toInt(), 5) << "thread " << thread.toStdString() << " runs at SCHED_IDLE";
        niced += fields.at(16).toInt() > 0;
    }
    EXPECT_GT(niced, 0) << "no thread read at a lowered priority";
}

// Questions only the store can answer: licence tags on the files, a collection's files
// and folders, active files that share a PostScript name, and how many faces each
// source holds.
TEST(Catalogue, TheStoreAnswersWhatOnlyItKnows)
{
    StoreFixture fixture;
    AppState &store = *fixture.store;
    const QString a = makeDir(fixture.library + u"/A"_s), b = makeDir(fixture.library + u"/B"_s);
    const QString dejavu = u"/usr/share/fonts/truetype/dejavu/"_s, made = QStringLiteral(MORVANE_TEST_FONTS "/");
    const QList<std::pair<QString, QString>> copies = {
        {dejavu + u"DejaVuSans.ttf"_s, a + u"/DejaVuSans.ttf"_s}, {dejavu + u"DejaVuSansMono.ttf"_s, a + u"/Mono.ttf"_s},
        {made + u"Impostor.ttf"_s, a + u"/Impostor.ttf"_s},       {dejavu + u"DejaVuSerif.ttf"_s, b + u"/DejaVuSerif.ttf"_s},
        {made + u"Pair.ttc"_s, b + u"/Pair.ttc"_s}};
    for (const auto &[from, to] : copies)
        ASSERT_TRUE(QFile::copy(from, to)) << to.toStdString();
    store.addSource(a);
    store.addSource(b);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 20'000));
    ASSERT_TRUE(store.waitForCatalogue(60'000));
    store.setLicenseStatus(LicenseStatus::Licensed, a + u"/Mono.ttf"_s);
    store.setLicenseStatus(LicenseStatus::Trial, b + u"/Pair.ttc"_s);
    store.createCollection(u"Picked"_s);
    const QUuid picked = store.collections().constLast().id;
    store.addToCollection(picked, QList<FontNode>{FontNode::fontFile(a + u"/Mono.ttf"_s), FontNode::folder(b)});
    store.setActivation({FontNode::fontFile(a + u"/DejaVuSans.ttf"_s), FontNode::fontFile(a + u"/Impostor.ttf"_s)}, true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }));

    const struct
    {
        const char *question;
        FontQuery query;
        QStringList answer;
    } cases[] = {
        {"licensed", FontQuery{.licenseStatuses = {LicenseStatus::Licensed}}, {u"DejaVuSansMono"_s}},
        {"licensed or trial", FontQuery{.licenseStatuses = {LicenseStatus::Licensed, LicenseStatus::Trial}},
         {u"CollectionFirst"_s, u"CollectionSecond"_s, u"DejaVuSansMono"_s}},
        {"in the collection, by file and by folder", FontQuery{.collection = picked},
         {u"CollectionFirst"_s, u"CollectionSecond"_s, u"DejaVuSansMono"_s, u"DejaVuSerif"_s}},
        {"conflicts: two active files claim DejaVuSans", FontQuery{.conflicts = true}, {u"DejaVuSans"_s, u"DejaVuSans"_s}},
        {"in the collection and trial", FontQuery{.licenseStatuses = {LicenseStatus::Trial}, .collection = picked},
         {u"CollectionFirst"_s, u"CollectionSecond"_s}},
        {"a collection that is gone", FontQuery{.collection = QUuid::createUuid()}, {}},
    };
    for (const auto &c : cases) {
        QStringList answer = postScriptNames(ask(store, c.query));
        answer.sort();
        EXPECT_EQ(answer, c.answer) << c.question;
    }
    const FontQueryAnswer everything = QCoro::waitFor(store.queryFonts(FontQuery{}));
    EXPECT_EQ(everything.sourceCounts.value(a), 3);
    EXPECT_EQ(everything.sourceCounts.value(b), 3);

    // One active impostor alone conflicts with nothing.
    store.setActivation({FontNode::fontFile(a + u"/Impostor.ttf"_s)}, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }));
    EXPECT_TRUE(ask(store, FontQuery{.conflicts = true}).isEmpty());

    // A newer question overtakes an older one still waiting, which answers nothing. The
    // pool's threads are held busy so that the older one can't finish first.
    QSemaphore release;
    const int threads = QThreadPool::globalInstance()->maxThreadCount();
    for (int i = 0; i < threads; ++i)
        QThreadPool::globalInstance()->start([&] { release.acquire(); });
    QCoro::Task<FontQueryAnswer> older = store.queryFonts(FontQuery{});
    QCoro::Task<FontQueryAnswer> newerTask = store.queryFonts(FontQuery{.text = u"serif"_s});
    release.release(threads);
    const FontQueryAnswer newer = QCoro::waitFor(std::move(newerTask));
    EXPECT_EQ(newer.faceCount(), 1);
    const FontQueryAnswer overtaken = QCoro::waitFor(std::move(older));
    EXPECT_TRUE(overtaken.cancelled);
    EXPECT_TRUE(overtaken.families.isEmpty());
}

// A cache folder nobody may write to: the catalogue is unavailable and says nothing
// more; sources, activations and collections go on as ever.
TEST(Catalogue, ACacheFolderThatCantBeWrittenLeavesEverythingElseWorking)
{
    RUN_WITHOUT_PRIVILEGES();
    const QString cache = makeDir(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    ASSERT_TRUE(QFile::setPermissions(cache, QFile::ReadOwner | QFile::ExeOwner));
    StoreFixture fixture;
    AppState &store = *fixture.store;
    ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s, fixture.library + u"/DejaVuSans.ttf"_s));
    store.addSource(fixture.library);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 20'000));
    ASSERT_TRUE(store.waitForCatalogue(20'000));
    EXPECT_TRUE(ask(store, FontQuery{}).isEmpty());
    store.setActivation({FontNode::fontFile(fixture.library + u"/DejaVuSans.ttf"_s)}, true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }));
    EXPECT_EQ(store.activatedFonts().size(), 1);
    store.createCollection(u"Kept"_s);
    EXPECT_EQ(fixture.written().loadCollections().value(0).name, u"Kept"_s);
    QFile::setPermissions(cache, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// A catalogue damaged on disk between two starts, three times over in three ways: each
// start sets it aside with one line and lists every font again.
TEST(Catalogue, ACatalogueDamagedBetweenStartsIsBuiltAgainAtTheNextStart)
{
    StoreFixture fixture;
    const QString fonts = makeDir(fixture.library + u"/Fonts"_s);
    for (const QString &name : {u"DejaVuSans.ttf"_s, u"DejaVuSansMono.ttf"_s, u"DejaVuSerif.ttf"_s})
        ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/"_s + name, fonts + u'/' + name));
    ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Pair.ttc"), fonts + u"/Pair.ttc"_s));
    const auto start = [&] {
        fixture.store = std::make_unique<AppState>(fixture.activation, fixture.persistence);
        fixture.store->setCatalogueSettleTime(0);
        fixture.addSource(fixture.library);
        fixture.store->refreshFileSystem();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !fixture.store->isIndexing(); }, 20'000));
        ASSERT_TRUE(fixture.store->waitForCatalogue(60'000));
    };
    start();
    ASSERT_EQ(ask(*fixture.store, FontQuery{}).size(), 5);

    const QString file = FontCatalog::defaultPath();
    const struct
    {
        const char *what;
        std::function<void(QFile &)> damage;
    } cases[] = {
        {"every page after the first overwritten",
         [](QFile &db) {
             db.seek(4096);
             db.write(QByteArray(db.size() - 4096, '\xab'));
         }},
        {"the pages after the first zeroed",
         [](QFile &db) {
             db.seek(4096);
             db.write(QByteArray(db.size() - 4096, '\0'));
         }},
        {"cut short", [](QFile &db) { db.resize(db.size() / 2); }},
    };
    for (const auto &c : cases) {
        fixture.store.reset(); // the log folded into the file
        QFile db(file);
        ASSERT_TRUE(db.open(QIODevice::ReadWrite)) << c.what;
        c.damage(db);
        db.close();
        const QString printed = capturedStdout([&] { start(); });
        EXPECT_TRUE(printed.startsWith(u"The font catalogue at "_s + file + u" was set aside ("_s))
            << c.what << ": " << printed.toStdString();
        EXPECT_EQ(printed.count(u'\n'), 1) << c.what << ": " << printed.toStdString();
        EXPECT_EQ(postScriptNames(ask(*fixture.store, FontQuery{})).size(), 5) << c.what;
    }
}

// Activating a file whose PostScript name an active file of another path has asks
// first: Cancel changes nothing, Keep Both activates it beside the other, Replace
// switches the other off first. A font no active file shares a name with is not asked
// about, nor are two files of one name activated together.
TEST(Catalogue, AnActivationThatWouldMakeAConflictAsksFirst)
{
    StoreFixture fixture;
    AppState &store = *fixture.store;
    const QString a = makeDir(fixture.library + u"/A"_s), b = makeDir(fixture.library + u"/B"_s);
    const QString dejavu = u"/usr/share/fonts/truetype/dejavu/"_s;
    ASSERT_TRUE(QFile::copy(dejavu + u"DejaVuSans.ttf"_s, a + u"/DejaVuSans.ttf"_s));
    ASSERT_TRUE(QFile::copy(dejavu + u"DejaVuSans.ttf"_s, b + u"/DejaVuSans.ttf"_s));
    ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Impostor.ttf"), b + u"/Impostor.ttf"_s));
    ASSERT_TRUE(QFile::copy(dejavu + u"DejaVuSerif.ttf"_s, b + u"/DejaVuSerif.ttf"_s));
    store.addSource(fixture.library);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 20'000));
    ASSERT_TRUE(store.waitForCatalogue(60'000));
    const QString first = a + u"/DejaVuSans.ttf"_s, second = b + u"/DejaVuSans.ttf"_s, impostor = b + u"/Impostor.ttf"_s;

    QList<QList<AppState::ActivationConflict>> asked;
    AppState::ConflictChoice answer = AppState::ConflictChoice::Cancel;
    store.setActivationGuard([&](const QList<AppState::ActivationConflict> &conflicts) {
        asked.append(conflicts);
        return answer;
    });
    const auto activate = [&](const QStringList &paths) {
        QList<FontNode> fonts;
        for (const QString &path : paths)
            fonts.append(FontNode::fontFile(path));
        store.setActivation(fonts, true);
        return QTest::qWaitFor([&] { return !store.isProcessing(); });
    };
    const auto active = [&] { return store.activatedFonts(); };

    ASSERT_TRUE(activate({first, b + u"/DejaVuSerif.ttf"_s}));
    EXPECT_TRUE(asked.isEmpty()) << "nothing active shared their names";

    const struct
    {
        const char *name;
        AppState::ConflictChoice answer;
        QSet<QString> after;
    } cases[] = {
        {"Cancel", AppState::ConflictChoice::Cancel, {first}},
        {"Keep Both", AppState::ConflictChoice::KeepBoth, {first, second}},
        {"Replace", AppState::ConflictChoice::Replace, {second}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        store.setActivation({FontNode::fontFile(first), FontNode::fontFile(second)}, false);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }));
        ASSERT_TRUE(activate({first}));
        asked.clear();
        answer = c.answer;
        ASSERT_TRUE(activate({second}));
        ASSERT_EQ(asked.size(), 1);
        ASSERT_EQ(asked.first().size(), 1);
        EXPECT_EQ(asked.first().first().postScriptName, u"DejaVuSans"_s);
        EXPECT_EQ(asked.first().first().font, second);
        EXPECT_EQ(asked.first().first().active, QStringList{first});
        QSet<QString> sans = active();
        sans.remove(b + u"/DejaVuSerif.ttf"_s);
        EXPECT_EQ(sans, c.after);
    }
    // The impostor claims the name too (another version): asked about it as well; two
    // files of a name chosen together are the user's own choice.
    store.setActivation({FontNode::fontFile(first), FontNode::fontFile(second)}, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }));
    asked.clear();
    answer = AppState::ConflictChoice::KeepBoth;
    ASSERT_TRUE(activate({first, second}));
    EXPECT_TRUE(asked.isEmpty());
    ASSERT_TRUE(activate({impostor}));
    ASSERT_EQ(asked.size(), 1);
    EXPECT_EQ(QSet<QString>(asked.first().first().active.cbegin(), asked.first().first().active.cend()),
              (QSet<QString>{first, second}));
}
