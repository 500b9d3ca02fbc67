// SPDX-License-Identifier: GPL-3.0-or-later
#include "StateTestSupport.h"

#include "services/FontActivationService.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QSemaphore>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

bool waitUntilIdle(const AppState &store)
{
    return QTest::qWaitFor([&] { return !store.isProcessing() && !store.isIndexing(); }, 20'000);
}

QString storage()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Morvane"_s;
}

void saveFile(const QString &name, const QByteArray &json)
{
    writeFile(storage() + u'/' + name, json);
}

QByteArray sourcesJson(const QStringList &paths)
{
    QList<FolderSource> sources;
    for (const QString &path : paths)
        sources.append({QUuid::createUuid(), path, path.section(u'/', -1)});
    QByteArray json("[");
    for (const FolderSource &source : sources) {
        source.appendJson(json);
        json.append(',');
    }
    json.chop(sources.isEmpty() ? 0 : 1);
    return json + ']';
}

} // namespace

TEST(Loading, RestoresEverythingOnceAndDropsVanishedFonts)
{
    StoreFixture f;
    const QString kept = writeFile(f.path(u"Sans/a.ttf"_s));
    writeFile(f.path(u"Sans/b.ttf"_s));
    saveFile(u"sources.json"_s, sourcesJson({f.library, testRoot() + u"/Second"_s}));
    saveFile(u"collections.json"_s,
             R"([{"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"Zed","members":[]},)"
             R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E3","name":"favorites","members":[]}])");
    saveFile(u"activated_fonts.json"_s, "[\"" + kept.toUtf8() + "\",\"" + f.path(u"Gone.ttf"_s).toUtf8() + "\"]");
    f.persistence.setPreviewSize(0);
    f.persistence.setPreviewText(u"Sphinx"_s);

    QStringList messages;
    QObject::connect(f.store.get(), &AppState::processingMessageChanged, [&] { messages.append(f.store->processingMessage()); });
    f.store->loadPersistedState();
    EXPECT_TRUE(f.store->isProcessing());
    EXPECT_EQ(f.store->processingMessage(), u"Restoring fonts…"_s);
    ASSERT_TRUE(waitUntilIdle(*f.store));

    EXPECT_EQ(f.store->sources().size(), 2);
    EXPECT_EQ(f.store->selectedSource()->path, f.library);
    EXPECT_EQ(f.store->collections().first().name, u"favorites"_s); // sorted after loading
    EXPECT_EQ(f.store->previewSize(), 36.0);
    EXPECT_EQ(f.store->previewText(), u"Sphinx"_s);
    EXPECT_EQ(f.store->activatedFonts(), QSet<QString>{kept});
    EXPECT_EQ(f.activation.calls(), QStringList{u'+' + kept});
    EXPECT_EQ(f.written().loadActivatedFonts(), QSet<QString>{kept});
    EXPECT_EQ(messages, (QStringList{u"Restoring fonts…"_s, u"Restoring fonts (0 of 1)..."_s, u"Restoring fonts (1 of 1)..."_s}));
    EXPECT_EQ(columnNames(*f.store), QStringList{u"Sans"_s}); // the refresh ran

    // Once per store.
    QSignalSpy sources(f.store.get(), &AppState::sourcesChanged);
    QSignalSpy indexing(f.store.get(), &AppState::isIndexingChanged);
    f.store->loadPersistedState();
    EXPECT_EQ(sources.count(), 0);
    EXPECT_EQ(indexing.count(), 0);
    EXPECT_EQ(f.activation.calls().size(), 1);
}

TEST(Loading, ABurstOfRefreshesCostsOneScan)
{
    StoreFixture f;
    writeFile(f.path(u"Sans/a.ttf"_s));
    f.store->addSource(f.library);
    ASSERT_TRUE(waitUntilIdle(*f.store));
    // Scans counted where they run: a refresh that is installed and one cancelled
    // mid-scan both cost one.
    std::atomic_int scans = 0;
    f.store->setLibraryScannerForTesting(
        [&scans](const AppState::LibraryScanRequest &request, const CancellationToken &cancellation) {
            ++scans;
            return AppState::scanLibrary(request, cancellation);
        });
    QSignalSpy installed(f.store.get(), &AppState::cachedColumnsChanged);
    f.store->refreshFileSystem();
    // More requests while the first one pauses (it is asleep as soon as it returns).
    f.store->refreshFileSystem();
    f.store->refreshFileSystem();
    EXPECT_TRUE(f.store->isIndexing());
    ASSERT_TRUE(waitUntilIdle(*f.store));
    EXPECT_EQ(scans, 1);
    EXPECT_EQ(installed.count(), 1);
    EXPECT_FALSE(installed.wait(300)); // and no late result follows
    EXPECT_EQ(scans, 1);
    EXPECT_EQ(columnNames(*f.store), QStringList{u"Sans"_s});
}

TEST(Loading, AResultThatArrivesAfterANewerRequestIsDropped)
{
    StoreFixture f;
    const QString old = writeFile(f.path(u"Old/o.ttf"_s));
    const QString fresh = writeFile(testRoot() + u"/New/n.otf"_s);
    f.store->setSourcesForTesting({{QUuid::createUuid(), f.library, u"Library"_s}});
    // The first scan waits at a gate and then ignores its cancellation: the store's
    // own checks must keep its late result out.
    QSemaphore gate;
    const auto openGate = qScopeGuard([&] { gate.release(2); }); // never leave a job stuck
    std::atomic_int scans = 0;
    f.store->setLibraryScannerForTesting([&](const AppState::LibraryScanRequest &request, const CancellationToken &) {
        const QList<FolderSource> &sources = request.sources;
        if (++scans == 1)
            gate.acquire();
        AppState::LibraryScan scan;
        scan.service = std::make_shared<FileSystemService>();
        for (const FolderSource &source : sources)
            scan.service->deepScan(source.path);
        scan.service->freeze();
        return scan;
    });
    QSignalSpy installed(f.store.get(), &AppState::cachedColumnsChanged);
    f.store->refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return scans == 1; }, 20'000)); // the first scan runs
    f.store->setSourcesForTesting({{QUuid::createUuid(), testRoot() + u"/New"_s, u"New"_s}});
    f.store->refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor([&] { return scans == 2; }, 20'000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return installed.count() == 1; }, 20'000)); // the second result
    gate.release(); // now the first one finishes, late
    EXPECT_TRUE(QTest::qWaitFor([&] { return scans == 2 && gate.available() == 0; }, 20'000));
    EXPECT_FALSE(installed.wait(300));
    EXPECT_EQ(installed.count(), 1);
    EXPECT_TRUE(f.store->fileSystemService().exists(fresh));
    EXPECT_FALSE(f.store->fileSystemService().exists(old));
    EXPECT_FALSE(f.store->isIndexing());
}

TEST(Loading, AddingAndRemovingSources)
{
    StoreFixture f;
    const QString other = makeDir(testRoot() + u"/Other"_s);
    const QString a = writeFile(f.path(u"Sans/a.ttf"_s));
    writeFile(other + u"/o.otf"_s);
    f.store->addSource(f.library + u'/');
    f.store->addSource(other);
    EXPECT_EQ(f.store->sources().at(0).path, f.library);
    EXPECT_EQ(f.store->sources().at(0).name, u"Library"_s);
    EXPECT_EQ(f.store->selectedSource()->path, f.library); // the first added is selected

    QSignalSpy selection(f.store.get(), &AppState::sidebarSelectionChanged);
    QSignalSpy sources(f.store.get(), &AppState::sourcesChanged);
    f.store->addSource(f.library); // already there: nothing at all
    EXPECT_EQ(selection.count(), 0);
    EXPECT_EQ(sources.count(), 0);
    ASSERT_TRUE(waitUntilIdle(*f.store));
    EXPECT_EQ(f.written().loadSources(), f.store->sources());

    // Removing the selected source deactivates its fonts and selects the one left.
    f.store->toggleActivation(FontNode::fontFile(a));
    ASSERT_TRUE(waitUntilIdle(*f.store));
    f.store->selectNode(f.folder(u"Sans"_s), 0);
    f.store->removeSource(f.store->sources().first());
    ASSERT_TRUE(waitUntilIdle(*f.store));
    EXPECT_EQ(f.activation.calls(), (QStringList{u'+' + a, u'-' + a}));
    EXPECT_TRUE(f.store->activatedFonts().isEmpty());
    EXPECT_EQ(f.store->sources().size(), 1);
    EXPECT_EQ(f.store->selectedSource()->path, other);
    EXPECT_TRUE(f.store->navigationPath().isEmpty());
    EXPECT_EQ(columnNames(*f.store), QStringList{u"o.otf"_s});
    EXPECT_EQ(f.written().loadSources().size(), 1);
    EXPECT_TRUE(f.written().loadActivatedFonts().isEmpty());
}

TEST(Loading, ANewCollectionFolderOutsideTheSourcesIsScanned)
{
    StoreFixture f;
    const QString outside = writeFile(testRoot() + u"/Elsewhere/e.otf"_s);
    f.store->createCollection(u"Mine"_s);
    const QUuid id = f.store->collections().first().id;
    f.store->addToCollection(id, FontNode::folder(testRoot() + u"/Elsewhere"_s));
    EXPECT_TRUE(f.store->isIndexing()); // unknown to the last scan: a refresh started
    ASSERT_TRUE(waitUntilIdle(*f.store));
    EXPECT_EQ(nodeNames(f.store->allFontsInCollection(f.store->collections().first())), QStringList{u"e.otf"_s});
    EXPECT_TRUE(f.store->fileSystemService().exists(outside));
}

TEST(Loading, PreviewSettingsAreSavedForTheNextStart)
{
    StoreFixture f;
    QSignalSpy changed(f.store.get(), &AppState::previewSizeChanged);
    f.store->setPreviewSize(48);
    f.store->setPreviewSize(48);
    EXPECT_EQ(changed.count(), 1);
    f.store->setPreviewText(u"Hamburg"_s);
    f.persistence.waitForWrites();
    EXPECT_EQ(PersistenceService().previewSize(), 48.0);
    EXPECT_EQ(PersistenceService().previewText(), u"Hamburg"_s);
}

// The whole road with the real fontconfig service: saved files in, fonts listed out,
// and a link nothing accounts for (left by a crash) swept away.
TEST(Loading, ARestoredLibraryIsListedByFontconfig)
{
    const QString library = makeDir(testRoot() + u"/Fonts"_s);
    const QString sans = library + u"/DejaVuSans.ttf"_s;
    const QString serif = library + u"/DejaVuSerif.ttf"_s;
    const QString stray = library + u"/DejaVuSans-Bold.ttf"_s;
    ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s, sans));
    ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf"_s, serif));
    ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"_s, stray));
    {
        FontActivationService earlier;
        ASSERT_TRUE(earlier.activateFont(stray)); // active, but in no saved set
    }
    saveFile(u"sources.json"_s, sourcesJson({library}));
    saveFile(u"activated_fonts.json"_s, "[\"" + sans.toUtf8() + "\",\"" + serif.toUtf8() + "\"]");

    FontActivationService activation;
    PersistenceService persistence;
    AppState store(activation, persistence);
    store.loadPersistedState();
    ASSERT_TRUE(waitUntilIdle(store));
    EXPECT_EQ(store.activatedFonts(), (QSet<QString>{sans, serif}));

    QProcess list;
    list.start(u"fc-list"_s, {u"--format=%{file}\\n"_s});
    ASSERT_TRUE(list.waitForFinished(60'000));
    QSet<QString> listed;
    for (const QString &file : QString::fromUtf8(list.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)) {
        if (file.startsWith(activation.linkFolder()))
            listed.insert(TestSupport::fontOfLink(file));
    }
    EXPECT_EQ(listed, (QSet<QString>{sans, serif}));
}
