// SPDX-License-Identifier: GPL-3.0-or-later
// Activations survive a world that is only wrong for a while: a source folder that is
// not there at start (a drive not mounted, a folder made unreadable), a font folder
// that can't be written, a full disk, a pipe in place of an active font, a job that
// stops answering. Every case compares the saved list and fontconfig before and after.
#include "FaultTestSupport.h"

#include <QSignalSpy>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using namespace FaultTestSupport;


TEST(Availability, ASourceFolderMissingAtStartKeepsItsActivationsUntilItIsBack)
{
    const ActiveLibrary library(testRoot() + u"/Drive/Fonts"_s);
    ASSERT_EQ(listedByFontconfig(), library.set());
    ASSERT_TRUE(QDir().rename(testRoot() + u"/Drive"_s, testRoot() + u"/Drive.away"_s));

    // Two starts without it: nothing is active, nothing is forgotten.
    for (int start = 0; start < 2; ++start) {
        Start away;
        EXPECT_TRUE(away.store.activatedFonts().isEmpty());
        EXPECT_EQ(away.store.waitingActivations(), library.set());
        EXPECT_EQ(away.store.unavailableSources().size(), 1);
        EXPECT_TRUE(away.log.text().contains(u"morvane.library: Keeping 2 activated fonts whose folder can't be reached now"_s))
            << away.log.text().toStdString();
        EXPECT_EQ(savedFonts(), library.set());
        EXPECT_TRUE(listedByFontconfig().isEmpty());
    }

    // Back while Morvane runs: the next refresh activates them again.
    Start running;
    ASSERT_TRUE(QDir().rename(testRoot() + u"/Drive.away"_s, testRoot() + u"/Drive"_s));
    running.store.refreshFileSystem();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return settled(running.store) && running.store.activatedFonts() == library.set(); }, 60'000));
    EXPECT_TRUE(running.store.waitingActivations().isEmpty());
    EXPECT_TRUE(running.store.unavailableSources().isEmpty());
    running.persistence.waitForWrites();
    EXPECT_EQ(savedFonts(), library.set());
    EXPECT_EQ(listedByFontconfig(), library.set());
}

TEST(Availability, AnUnreadableSourceFolderIsUnavailableNotEmpty)
{
    RUN_WITHOUT_PRIVILEGES();
    const ActiveLibrary library;
    const QString folder = testRoot() + u"/Fonts"_s;
    ASSERT_TRUE(QFile::setPermissions(folder, {}));
    {
        Start start;
        EXPECT_TRUE(start.store.activatedFonts().isEmpty());
        EXPECT_EQ(start.store.waitingActivations(), library.set());
        EXPECT_EQ(start.store.unavailableSources().size(), 1);
        EXPECT_EQ(savedFonts(), library.set());
    }
    ASSERT_TRUE(QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    Start next;
    EXPECT_EQ(next.store.activatedFonts(), library.set());
    EXPECT_TRUE(next.store.unavailableSources().isEmpty());
    EXPECT_EQ(listedByFontconfig(), library.set());
}

// The rule the restore keeps from before: the source is there, the file is not.
TEST(Availability, AFontGoneFromAPresentSourceIsDropped)
{
    const ActiveLibrary library;
    ASSERT_TRUE(QFile::remove(library.fonts.first()));
    Start start;
    const QSet<QString> rest{library.fonts.last()};
    EXPECT_EQ(start.store.activatedFonts(), rest);
    EXPECT_TRUE(start.store.waitingActivations().isEmpty());
    EXPECT_EQ(savedFonts(), rest);
    EXPECT_EQ(listedByFontconfig(), rest);
}

TEST(Availability, ADriveMountedWhileMorvaneRunsBringsItsFontsBack)
{
    RUN_WITH_OWN_MOUNTS();
    // The fonts live on a drive mounted at testRoot/Drive; the source is a folder on it.
    const QString mountPoint = makeDir(testRoot() + u"/Drive"_s);
    QStringList fonts;
    {
        Tmpfs drive(mountPoint, "8m");
        ASSERT_TRUE(drive.mounted);
        const ActiveLibrary library(mountPoint + u"/Fonts"_s);
        fonts = library.fonts;
        ASSERT_EQ(listedByFontconfig(), library.set());
    } // unplugged
    const QSet<QString> expected(fonts.begin(), fonts.end());

    Start start;
    EXPECT_TRUE(start.store.activatedFonts().isEmpty());
    EXPECT_EQ(start.store.waitingActivations(), expected);
    EXPECT_EQ(savedFonts(), expected);

    // Plugged in again: no refresh asked for, the mount itself is noticed.
    Tmpfs drive(mountPoint, "8m");
    ASSERT_TRUE(drive.mounted);
    makeDir(mountPoint + u"/Fonts"_s);
    for (const QString &font : fonts)
        ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/"_s + font.section(u'/', -1), font));
    // The files are in place before the mount is announced: a second mount on top tells.
    Tmpfs nudge(testRoot() + u"/nudge"_s, "64k");
    ASSERT_TRUE(QTest::qWaitFor([&] { return settled(start.store) && start.store.activatedFonts() == expected; },
                                60'000));
    start.persistence.waitForWrites();
    EXPECT_EQ(savedFonts(), expected);
    EXPECT_EQ(listedByFontconfig(), expected);
}

// fstab mounts the drive on a folder of its own (/mnt/fonts) that is the source itself:
// without the drive that folder is there, empty. Its fonts wait, over two starts, and
// come back with the drive.
TEST(Availability, AnEmptyMountPointKeepsItsActivationsUntilTheDriveIsBack)
{
    RUN_WITH_OWN_MOUNTS();
    const QString mountPoint = makeDir(testRoot() + u"/mnt/fonts"_s);
    QStringList fonts;
    {
        Tmpfs drive(mountPoint, "8m");
        ASSERT_TRUE(drive.mounted);
        const ActiveLibrary library(mountPoint);
        fonts = library.fonts;
        ASSERT_EQ(listedByFontconfig(), library.set());
    } // not mounted at the next start
    const QSet<QString> expected(fonts.begin(), fonts.end());
    ASSERT_TRUE(QDir(mountPoint).isEmpty());

    for (int start = 0; start < 2; ++start) {
        Start away;
        ASSERT_TRUE(QTest::qWaitFor([&] { return settled(away.store) && !away.store.unavailableSources().isEmpty(); },
                                    30'000));
        EXPECT_TRUE(away.store.activatedFonts().isEmpty());
        EXPECT_EQ(away.store.waitingActivations(), expected);
        away.persistence.waitForWrites();
        EXPECT_EQ(savedFonts(), expected) << "start " << start;
        EXPECT_TRUE(listedByFontconfig().isEmpty());
    }

    Start start;
    // The drive comes back whole, as a real one does: filled elsewhere, then mounted here.
    Tmpfs drive(testRoot() + u"/filled"_s, "8m");
    ASSERT_TRUE(drive.mounted);
    for (const QString &font : fonts)
        ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/"_s + font.section(u'/', -1),
                                drive.path + u'/' + font.section(u'/', -1)));
    ASSERT_EQ(::mount(QFile::encodeName(drive.path).constData(), QFile::encodeName(mountPoint).constData(), nullptr,
                      MS_BIND, nullptr),
              0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return settled(start.store) && start.store.activatedFonts() == expected; },
                                60'000));
    EXPECT_TRUE(start.store.unavailableSources().isEmpty());
    start.persistence.waitForWrites();
    EXPECT_EQ(savedFonts(), expected);
    EXPECT_EQ(listedByFontconfig(), expected);
    ::umount2(QFile::encodeName(mountPoint).constData(), MNT_DETACH);
}

TEST(Availability, AFontFolderThatCantBeWrittenAtStartLosesNothing)
{
    RUN_WITHOUT_PRIVILEGES();
    const ActiveLibrary library;
    // As a root-owned font folder leaves it: our links gone, the folder closed to us.
    const QString fonts = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts"_s;
    ASSERT_TRUE(QDir(fonts + u"/Morvane"_s).removeRecursively());
    ASSERT_TRUE(QFile::setPermissions(fonts, QFile::ReadOwner | QFile::ExeOwner));
    {
        Start start;
        EXPECT_TRUE(start.store.activatedFonts().isEmpty());
        EXPECT_EQ(start.store.waitingActivations(), library.set());
        EXPECT_TRUE(start.store.notice().startsWith(u"Morvane can't write to ~/.local/share/fonts"_s))
            << start.store.notice().toStdString();
        EXPECT_TRUE(start.store.notice().contains(u"2 fonts couldn't be activated"_s)) << start.store.notice().toStdString();
        EXPECT_EQ(savedFonts(), library.set());
    }
    ASSERT_TRUE(QFile::setPermissions(fonts, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    Start next;
    EXPECT_EQ(next.store.activatedFonts(), library.set());
    EXPECT_TRUE(next.store.waitingActivations().isEmpty());
    EXPECT_TRUE(next.store.notice().isEmpty());
    EXPECT_EQ(savedFonts(), library.set());
    EXPECT_EQ(listedByFontconfig(), library.set());
}

namespace {

// Fills the file system under `folder` to the last byte.
QString fillUp(const QString &folder)
{
    const QString filler = folder + u"/filler"_s;
    QFile file(filler);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray block(4096, 'x');
    while (file.write(block) == block.size() && file.flush()) {
    }
    return filler;
}

} // namespace

TEST(Availability, AChangeMadeOnAFullDiskIsSavedOnceThereIsRoom)
{
    RUN_WITH_OWN_MOUNTS();
    Tmpfs disk(storage(), "256k");
    ASSERT_TRUE(disk.mounted);
    {
        FakeActivation activation;
        PersistenceService persistence;
        AppState store(activation, persistence);
        const QString filler = fillUp(storage());
        QSignalSpy failed(&store, &AppState::saveFailureChanged);
        store.createCollection(u"Kept"_s);
        ASSERT_TRUE(failed.wait(15'000));
        EXPECT_EQ(store.saveFailure(), u"No space left on device"_s);
        // Room again: written within a few seconds, without another change.
        ASSERT_TRUE(QFile::remove(filler));
        ASSERT_TRUE(QTest::qWaitFor([&] { return store.saveFailure().isEmpty(); }, 15'000));
        EXPECT_EQ(PersistenceService().loadCollections().value(0).name, u"Kept"_s);

        // Full again, a second change, room again, and quitting at once: saved on the way out.
        const QString again = fillUp(storage());
        store.createCollection(u"Second"_s);
        ASSERT_TRUE(failed.wait(15'000));
        EXPECT_FALSE(store.saveFailure().isEmpty());
        ASSERT_TRUE(QFile::remove(again));
    }
    FakeActivation activation;
    PersistenceService persistence;
    AppState next(activation, persistence);
    next.loadPersistedState();
    QStringList names;
    for (const FontCollection &collection : next.collections())
        names.append(collection.name);
    names.sort();
    EXPECT_EQ(names, (QStringList{u"Kept"_s, u"Second"_s}));
}

TEST(Availability, APipeInPlaceOfAnActiveFontNeitherBlocksNorStaysActive)
{
    const ActiveLibrary library;
    Start start;
    ASSERT_EQ(start.store.activatedFonts(), library.set());
    // A sync client or a prank: the first font's file becomes a FIFO behind its link.
    const QString pipe = library.fonts.first();
    ASSERT_TRUE(QFile::remove(pipe));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0644), 0);

    // Toggling the other font rescans the shard both links share.
    const QString output = capturedStdout([&] {
        start.store.toggleActivation(FontNode::fromPath(library.fonts.last()));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !start.store.isProcessing(); }, 60'000));
        start.persistence.waitForWrites();
    });
    EXPECT_TRUE(output.contains(u"Failed to activate font at "_s + pipe + u": it is no longer a regular file"_s))
        << output.toStdString();
    EXPECT_TRUE(start.store.activatedFonts().isEmpty());
    EXPECT_TRUE(savedFonts().isEmpty());
    EXPECT_TRUE(listedByFontconfig().isEmpty()); // fc-list itself would block on the pipe otherwise
}

TEST(Availability, AJobThatStopsAnsweringCanBeGivenUp)
{
    FakeActivation activation;
    PersistenceService persistence;
    AppState store(activation, persistence);
    store.setStallTimeoutForTesting(300);
    QSignalSpy stalled(&store, &AppState::isProcessingStalledChanged);
    activation.hold(); // as a file system that stopped answering holds a call
    QList<FontNode> fonts;
    for (int i = 0; i < 20; ++i)
        fonts.append(FontNode::fromPath(testRoot() + u"/f%1.ttf"_s.arg(i)));
    store.setActivation(fonts, true);
    ASSERT_TRUE(stalled.wait(10'000));
    EXPECT_TRUE(store.isProcessingStalled());
    EXPECT_TRUE(store.isProcessing());

    const CapturedLog log;
    store.cancelBatch();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }, 10'000));
    EXPECT_FALSE(store.isProcessingStalled());
    EXPECT_TRUE(log.text().contains(u"morvane.activation: Stopped waiting for fonts that did not answer: Activating (20 fonts)"_s))
        << log.text().toStdString();
    EXPECT_TRUE(store.notice().startsWith(u"Morvane stopped waiting for a font that didn't answer."_s));
    EXPECT_TRUE(store.activatedFonts().isEmpty()); // nothing came back from the stuck chunk
    EXPECT_LT(activation.calls().size(), 20);      // the rest was never asked for
    activation.open();                             // the stuck call ends, unheard
    EXPECT_TRUE(store.waitForBackgroundWork(10'000));
}
