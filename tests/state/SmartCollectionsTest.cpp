// SPDX-License-Identifier: GPL-3.0-or-later
// Smart collections are their question's answer and nothing else: renewed when what the
// question asks about changes (activation, licence tags), never edited by hand, the
// newest question winning, and stored by names that a later version still reads.
#include "StateTestSupport.h"

#include "services/FontQueryJson.h"
#include "state/SmartRenewals.h"

#include <QFile>
#include <QPromise>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

class SmartCollections : public testing::Test, public StoreFixture
{
protected:
    SmartCollections()
    {
        const QString dejavu = u"/usr/share/fonts/truetype/dejavu/"_s;
        for (const QString &name : {u"DejaVuSans.ttf"_s, u"DejaVuSansMono.ttf"_s, u"DejaVuSerif.ttf"_s})
            EXPECT_TRUE(QFile::copy(dejavu + name, makeDir(library + u"/DejaVu"_s) + u'/' + name));
        store->setCatalogueSettleTime(0);
        store->addSource(library);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !store->isIndexing(); }, 20'000));
        EXPECT_TRUE(store->waitForCatalogue(60'000));
    }

    QUuid makeSmart(const FontQuery &query)
    {
        store->createSmartCollection(u"Smart"_s, query);
        return store->collections().first().id;
    }
    QStringList members(const QUuid &id) const
    {
        QStringList paths;
        for (const FontCollection &collection : store->collections()) {
            if (collection.id == id) {
                for (const CollectionMember &member : collection.members)
                    paths.append(member.path);
            }
        }
        paths.sort();
        return paths;
    }
    bool becomes(const QUuid &id, const QStringList &expected)
    {
        return QTest::qWaitFor([&] { return members(id) == expected; }, 10'000);
    }
    QString file(const QString &name) const { return library + u"/DejaVu/"_s + name; }
};

} // namespace

// Each change of what a question asks about renews its answer, without a refresh.
TEST_F(SmartCollections, FollowActivationAndLicenceTags)
{
    const QUuid active = makeSmart(FontQuery{.active = true});
    const QUuid licensed = makeSmart(FontQuery{.licenseStatuses = {LicenseStatus::Licensed}});
    ASSERT_TRUE(becomes(active, {}));
    ASSERT_TRUE(becomes(licensed, {}));

    store->setActivation({FontNode::fontFile(file(u"DejaVuSans.ttf"_s)), FontNode::fontFile(file(u"DejaVuSerif.ttf"_s))}, true);
    EXPECT_TRUE(becomes(active, {file(u"DejaVuSans.ttf"_s), file(u"DejaVuSerif.ttf"_s)}));
    store->toggleActivation(FontNode::fontFile(file(u"DejaVuSans.ttf"_s)));
    EXPECT_TRUE(becomes(active, {file(u"DejaVuSerif.ttf"_s)}));

    store->setLicenseStatus(LicenseStatus::Licensed, file(u"DejaVuSansMono.ttf"_s));
    EXPECT_TRUE(becomes(licensed, {file(u"DejaVuSansMono.ttf"_s)}));
    store->setLicenseStatus(LicenseStatus::Trial, file(u"DejaVuSansMono.ttf"_s));
    EXPECT_TRUE(becomes(licensed, {}));
    EXPECT_EQ(written().loadCollections().size(), 2);
}

// Adding or removing by hand would be undone by the next renewal: the store refuses and
// says why; nothing is written.
TEST_F(SmartCollections, AreNeverEditedByHand)
{
    const QUuid mono = makeSmart(FontQuery{.monospaced = true});
    ASSERT_TRUE(becomes(mono, {file(u"DejaVuSansMono.ttf"_s)}));
    const QByteArray saved = (written(), readFile(PersistenceService::defaultStorageFolder() + u"/collections.json"_s));
    const struct
    {
        const char *what;
        std::function<void()> act;
    } edits[] = {
        {"add a font", [&] { store->addToCollection(mono, FontNode::fontFile(file(u"DejaVuSerif.ttf"_s))); }},
        {"add a folder (a drop)", [&] { store->addToCollection(mono, QList<FontNode>{FontNode::folder(library)}); }},
        {"remove its member", [&] { store->removeFromCollection(mono, CollectionMember{file(u"DejaVuSansMono.ttf"_s), false}); }},
    };
    for (const auto &edit : edits) {
        store->dismissNotice();
        edit.act();
        EXPECT_EQ(members(mono), QStringList{file(u"DejaVuSansMono.ttf"_s)}) << edit.what;
        EXPECT_TRUE(store->notice().contains(u"smart collection"_s)) << edit.what << ": " << store->notice().toStdString();
        written();
        EXPECT_EQ(readFile(PersistenceService::defaultStorageFolder() + u"/collections.json"_s), saved) << edit.what;
    }
}

// Two edits of the question in quick succession: whichever answer comes back last, the
// members are the newest question's.
TEST_F(SmartCollections, TheNewestQuestionWins)
{
    const QUuid id = makeSmart(FontQuery{});
    ASSERT_TRUE(becomes(id, {file(u"DejaVuSans.ttf"_s), file(u"DejaVuSansMono.ttf"_s), file(u"DejaVuSerif.ttf"_s)}));
    for (int round = 0; round < 20; ++round) {
        store->setSmartQuery(id, FontQuery{.text = u"dejavu"_s}); // slower: every face answers
        store->setSmartQuery(id, FontQuery{.text = u"serif"_s});
        QThreadPool::globalInstance()->waitForDone(); // both answers are in
        QCoreApplication::processEvents();            // and delivered, in whatever order
        QCoreApplication::processEvents();
        ASSERT_EQ(members(id), QStringList{file(u"DejaVuSerif.ttf"_s)}) << "round " << round;
        store->setSmartQuery(id, FontQuery{});
        ASSERT_TRUE(becomes(id, {file(u"DejaVuSans.ttf"_s), file(u"DejaVuSansMono.ttf"_s), file(u"DejaVuSerif.ttf"_s)}));
    }
}

// The question is stored with names for its kinds; a file written with numbers still
// reads as the same question.
TEST_F(SmartCollections, QuestionsAreStoredByName)
{
    makeSmart(FontQuery{.classifications = {FaceRecord::Classification::Monospace},
                        .formats = {FaceRecord::Outline::TrueType},
                        .licenseStatuses = {LicenseStatus::OpenSource}});
    written();
    const QByteArray saved = readFile(PersistenceService::defaultStorageFolder() + u"/collections.json"_s);
    for (const char *name : {R"("classifications":["monospace"])", R"("formats":["trueType"])", R"("licenceStatuses":["openSource"])"})
        EXPECT_TRUE(saved.contains(name)) << name << " in " << saved.toStdString();

    QByteArray older = saved;
    older.replace(R"(["monospace"])", "[6]").replace(R"(["trueType"])", "[0]").replace(R"(["openSource"])", "[5]");
    writeFile(PersistenceService::defaultStorageFolder() + u"/collections.json"_s, older);
    const QList<FontCollection> read = PersistenceService().loadCollections();
    ASSERT_EQ(read.size(), 1);
    ASSERT_TRUE(read.first().isSmart());
    EXPECT_EQ(*read.first().smartQuery, *written().loadCollections().first().smartQuery);
}

// A question of megabytes (a file edited by hand) is never asked: the window says so,
// its collection and members stay as saved, a new collection is saved at once beside
// it, and the store goes away without waiting for anything.
TEST(SmartCollectionsLimits, AnEnormousQuestionIsKeptButNeverAsked)
{
    const QByteArray text(12 * 1024 * 1024, 'a');
    writeFile(PersistenceService::defaultStorageFolder() + u"/collections.json"_s,
              R"([{"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"Huge","members":[{"path":"/kept.otf","isDirectory":false}],)"
              R"("smartQuery":{"text":")" + text + R"("}}])");
    FakeActivation activation;
    PersistenceService persistence;
    {
        AppState store(activation, persistence);
        store.setCatalogueSettleTime(0);
        store.loadPersistedState();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing() && !store.isProcessing(); }, 20'000));
        ASSERT_TRUE(store.waitForCatalogue(60'000));
        store.renewSmartCollections();
        EXPECT_TRUE(store.notice().contains(u"too long"_s)) << store.notice().toStdString();
        store.createCollection(u"Fresh"_s);
        persistence.waitForWrites();
        const QList<FontCollection> saved = persistence.loadCollections();
        ASSERT_EQ(saved.size(), 2);
        const auto huge = std::find_if(saved.cbegin(), saved.cend(), [](const FontCollection &c) { return c.isSmart(); });
        ASSERT_NE(huge, saved.cend());
        EXPECT_EQ(huge->smartQuery->value("text"_L1).toString().size(), text.size());
        EXPECT_EQ(huge->members, (QList<CollectionMember>{{u"/kept.otf"_s, false}}));
    }
}

namespace {

FontQueryAnswer answerOf(const QString &file)
{
    FoundFace face;
    face.path = file;
    FontQueryAnswer answer;
    answer.families.append(FontFamily{u"Family"_s, {face}});
    return answer;
}

} // namespace

// The renewals alone, with answers released by hand in the worst order: the older
// question answers last, and its answer is let go; a change asks again only the
// questions that depend on it.
TEST(SmartRenewals, OnlyTheNewestQuestionsAnswerCountsAndChangesAskOnlyWhoDepends)
{
    FontCollection smart = FontCollection::create(u"Smart"_s);
    smart.smartQuery = FontQueryJson::toJson(FontQuery{.text = u"older"_s});
    QList<FontCollection> collections{smart, FontCollection::create(u"Plain"_s)};
    std::vector<std::unique_ptr<QPromise<FontQueryAnswer>>> asked;
    SmartRenewals renewals(
        [&](const FontQuery &) {
            asked.push_back(std::make_unique<QPromise<FontQueryAnswer>>());
            asked.back()->start();
            return asked.back()->future();
        },
        [&] { return collections; });
    QList<QList<CollectionMember>> answered;
    QObject::connect(&renewals, &SmartRenewals::answered,
                     [&](const QUuid &, const QList<CollectionMember> &members) { answered.append(members); });
    const auto release = [](QPromise<FontQueryAnswer> &promise, const QString &file) {
        promise.addResult(answerOf(file));
        promise.finish();
    };

    renewals.renew();
    collections[0].smartQuery = FontQueryJson::toJson(FontQuery{.text = u"newer"_s});
    renewals.renew();
    ASSERT_EQ(asked.size(), 2u) << "one question each time, the plain collection asks none";
    release(*asked[1], u"/newer.otf"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return answered.size() == 1; }));
    release(*asked[0], u"/older.otf"_s);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(answered, (QList<QList<CollectionMember>>{{{u"/newer.otf"_s, false}}}));

    const auto asksActive = [](const FontQuery &query) { return query.active.has_value(); };
    renewals.renewSoon(asksActive);
    QCoreApplication::processEvents();
    EXPECT_EQ(asked.size(), 2u) << "no question asks about activation";
    collections[0].smartQuery = FontQueryJson::toJson(FontQuery{.active = true});
    renewals.renewSoon(asksActive);
    renewals.renewSoon(asksActive); // a burst costs one renewal
    ASSERT_TRUE(QTest::qWaitFor([&] { return asked.size() == 3u; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(asked.size(), 3u);
    release(*asked[2], u"/active.otf"_s);
}
