// SPDX-License-Identifier: GPL-3.0-or-later
// Activated fonts reach programs in a Flatpak sandbox, which see the user's font folder
// but neither the home folder nor other drives: every step through the store, judged by
// fc-list inside a bwrap view made as Flatpak makes it and by fc-list outside.
#include "FaultTestSupport.h"
#include "SandboxView.h"

#include "services/FontLinkFile.h"

#include <QDirIterator>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using namespace FaultTestSupport;

namespace {

const QString kDejaVu = u"/usr/share/fonts/truetype/dejavu/"_s;

// What the sandbox sees, or a skip where bwrap can't run.
#define SANDBOX_OR_SKIP(seen)                                                                                  \
    const std::optional<QHash<QString, QString>> seen = familiesSeenInSandbox();                               \
    if (!seen)                                                                                                 \
        GTEST_SKIP() << "bwrap can't make a sandbox here (not installed, or no user namespaces)"

QHash<QString, QString> seenInSandbox()
{
    return familiesSeenInSandbox().value_or(QHash<QString, QString>{{u"bwrap failed"_s, QString()}});
}

// A font file replaced by another under the same name, as an update or a download does.
void replaceWith(const QString &font, const QString &other)
{
    ASSERT_TRUE(QFile::copy(other, font + u".new"_s));
    ASSERT_EQ(::rename(QFile::encodeName(font + u".new"_s).constData(), QFile::encodeName(font).constData()), 0);
}

// A look at the sources, as the folder watcher asks for one, until our links were
// checked against their files.
bool settledAfterRefresh(AppState &store)
{
    store.refreshFileSystem();
    const quint64 asked = store.refreshRequests();
    return QTest::qWaitFor(
        [&] { return store.linksCheckedThrough() >= asked && !store.isIndexing() && !store.isProcessing(); }, 60'000);
}

// Kinds of our entries, by font.
QHash<QString, FontLinkFile::Kind> linkKinds()
{
    QHash<QString, FontLinkFile::Kind> kinds;
    const QString links = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts/Morvane"_s;
    for (const QString &entry : linkEntries(links))
        kinds.insert(fontOfLink(entry), FontLinkFile::kindOf(QFile::encodeName(entry)));
    return kinds;
}

} // namespace

TEST(Sandbox, FontsOnTheHomeDriveAreSeenThereThroughEveryChange)
{
    SANDBOX_OR_SKIP(before);
    EXPECT_TRUE(before->isEmpty());
    const ActiveLibrary library;
    // A folder the user can't write to, as a font package unpacked read-only.
    const QString locked = makeDir(testRoot() + u"/Fonts/Locked"_s) + u"/Mono.ttf"_s;
    ASSERT_TRUE(QFile::copy(kDejaVu + u"DejaVuSansMono.ttf"_s, locked));
    ASSERT_TRUE(QFile::setPermissions(locked.section(u'/', 0, -2), QFile::ReadOwner | QFile::ExeOwner));
    const QString sans = library.fonts[0], serif = library.fonts[1];
    {
        Start start;
        ASSERT_EQ(start.store.activatedFonts(), library.set());
        const QHash<QString, QString> expected{{sans, u"DejaVu Sans"_s}, {serif, u"DejaVu Serif"_s}};
        EXPECT_EQ(seenInSandbox(), expected);

        ASSERT_TRUE(settledAfterRefresh(start.store)); // the scan finds the locked folder
        start.store.setActivation({FontNode::fontFile(locked)}, true);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !start.store.isProcessing(); }, 60'000));
        EXPECT_EQ(seenInSandbox().value(locked), u"DejaVu Sans Mono"_s);

        // Replaced at its source while Morvane runs: the next look at the folder shows
        // every program the new file.
        replaceWith(serif, kDejaVu + u"DejaVuSans-Bold.ttf"_s);
        ASSERT_TRUE(settledAfterRefresh(start.store));
        EXPECT_EQ(seenInSandbox().value(serif), u"DejaVu Sans"_s);

        start.store.setActivation({FontNode::fontFile(sans)}, false);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !start.store.isProcessing(); }, 60'000));
        EXPECT_FALSE(seenInSandbox().contains(sans));
    }
    const QSet<QString> active{serif, locked};
    Start next;
    EXPECT_EQ(next.store.activatedFonts(), active);
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), active);
    EXPECT_EQ(listedByFontconfig(), active);
    const QHash<QString, QString> seen = seenInSandbox();
    EXPECT_EQ(QSet<QString>(seen.keyBegin(), seen.keyEnd()), active);
    EXPECT_EQ(linkKinds().value(serif), FontLinkFile::Kind::Hard);
    ASSERT_TRUE(QFile::setPermissions(locked.section(u'/', 0, -2), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

// A hard link would keep a deleted font alive for every program: gone from its folder,
// it is no longer active; gone with its folder (a drive taken away), it waits for it.
TEST(Sandbox, AFontGoneWhileActiveLeavesTheSandbox)
{
    SANDBOX_OR_SKIP(before);
    const ActiveLibrary library;
    Start start;
    ASSERT_EQ(seenInSandbox().size(), 2);
    ASSERT_TRUE(QFile::remove(library.fonts[0]));
    ASSERT_TRUE(settledAfterRefresh(start.store));
    const QSet<QString> rest{library.fonts[1]};
    EXPECT_EQ(seenInSandbox().keys(), QStringList{library.fonts[1]});
    EXPECT_EQ(listedByFontconfig(), rest);
    EXPECT_EQ(start.store.activatedFonts(), rest);
    EXPECT_TRUE(start.store.waitingActivations().isEmpty());
    start.persistence.waitForWrites();
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), rest);

    const QString folder = testRoot() + u"/Fonts"_s;
    ASSERT_TRUE(QDir().rename(folder, folder + u".away"_s));
    ASSERT_TRUE(settledAfterRefresh(start.store));
    EXPECT_TRUE(seenInSandbox().isEmpty());
    EXPECT_TRUE(start.store.activatedFonts().isEmpty());
    EXPECT_EQ(start.store.waitingActivations(), rest);

    ASSERT_TRUE(QDir().rename(folder + u".away"_s, folder));
    ASSERT_TRUE(settledAfterRefresh(start.store));
    ASSERT_TRUE(QTest::qWaitFor([&] { return start.store.activatedFonts() == rest; }, 60'000));
    EXPECT_EQ(seenInSandbox().keys(), QStringList{library.fonts[1]});
    start.persistence.waitForWrites();
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), rest);
}

// Another drive: no hard link reaches it, and a symbolic link does not resolve in the
// sandbox, so only a copy lets sandboxed programs see its fonts, once the user allows it.
TEST(Sandbox, FontsOnAnotherDriveAreCopiedOnlyWhenTheUserAllowsIt)
{
    RUN_WITH_OWN_MOUNTS();
    SANDBOX_OR_SKIP(before);
    Tmpfs drive(testRoot() + u"/Drive"_s, "16m");
    if (!drive.mounted)
        GTEST_SKIP() << "this process can't mount a file system";
    const ActiveLibrary library(testRoot() + u"/Drive/Fonts"_s);
    const QString sans = library.fonts[0], serif = library.fonts[1];
    {
        Start start;
        EXPECT_EQ(listedByFontconfig(), library.set());
        EXPECT_TRUE(seenInSandbox().isEmpty()); // symbolic links, dangling inside
        EXPECT_FALSE(start.store.copiesForSandboxes());
        const qint64 space = QCoro::waitFor(start.store.spaceForCopies());
        EXPECT_EQ(space, QFileInfo(sans).size() + QFileInfo(serif).size());

        start.store.setCopiesForSandboxes(true);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !start.store.isProcessing(); }, 60'000));
        const QHash<QString, QString> copied{{sans, u"DejaVu Sans"_s}, {serif, u"DejaVu Serif"_s}};
        EXPECT_EQ(seenInSandbox(), copied);
        EXPECT_EQ(QCoro::waitFor(start.store.spaceForCopies()), 0);

        // A copy shows its font as it is now.
        replaceWith(serif, kDejaVu + u"DejaVuSansMono.ttf"_s);
        ASSERT_TRUE(settledAfterRefresh(start.store));
        EXPECT_EQ(seenInSandbox().value(serif), u"DejaVu Sans Mono"_s);
        EXPECT_EQ(listedByFontconfig(), library.set());
    }
    {
        Start next; // the preference holds, and so do the copies
        EXPECT_TRUE(next.store.copiesForSandboxes());
        EXPECT_EQ(seenInSandbox().size(), 2);
        EXPECT_EQ(linkKinds().value(sans), FontLinkFile::Kind::Copy);

        // Taken back: symbolic links again, no copy left, every font still active.
        next.store.setCopiesForSandboxes(false);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !next.store.isProcessing(); }, 60'000));
        EXPECT_TRUE(seenInSandbox().isEmpty());
        EXPECT_EQ(listedByFontconfig(), library.set());
        const QHash<QString, FontLinkFile::Kind> kinds = linkKinds();
        EXPECT_EQ(QSet<FontLinkFile::Kind>(kinds.cbegin(), kinds.cend()), QSet<FontLinkFile::Kind>{FontLinkFile::Kind::Symbolic});
    }
    Start last;
    EXPECT_FALSE(last.store.copiesForSandboxes());
    EXPECT_EQ(last.store.activatedFonts(), library.set());
    EXPECT_TRUE(seenInSandbox().isEmpty());
}
