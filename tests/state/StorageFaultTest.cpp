// SPDX-License-Identifier: GPL-3.0-or-later
// The storage folder under faults a user meets: a folder made read-only, a saved file
// nobody may read, a full disk. Whatever happens, no activation is lost. File modes
// mean nothing to root, so run as root these tests run themselves again as nobody.
#include "FaultTestSupport.h"

#include "services/FontActivationService.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <grp.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

using namespace FaultTestSupport;

TEST(StorageFaults, AnActivatedFontsFileNobodyMayReadIsRebuiltFromTheLinks)
{
    RUN_WITHOUT_PRIVILEGES();
    const ActiveLibrary library;
    const QString saved = storage() + u"/activated_fonts.json"_s;
    ASSERT_TRUE(QFile::setPermissions(saved, {}));

    {
        Start start;
        EXPECT_TRUE(start.output.contains(u"Failed to load activated fonts: Permission denied (the file was moved to "_s +
                                          saved + u".unreadable-"_s))
            << start.output.toStdString();
        EXPECT_TRUE(start.log.text().contains(
            u"morvane.storage: Restoring the 2 activated fonts that Morvane's font links record instead\n"_s));
        EXPECT_EQ(start.store.activatedFonts(), library.set());
        EXPECT_EQ(start.activation.recordedActivations(), library.set());
        EXPECT_TRUE(start.store.saveFailure().isEmpty());
    }
    // The rebuilt list was saved, and the unreadable one kept beside it.
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), library.set());
    EXPECT_EQ(QDir(storage()).entryList({u"activated_fonts.json.unreadable-*"_s}, QDir::Files | QDir::Hidden).size(), 1);
}

TEST(StorageFaults, AReadOnlyStorageFolderKeepsEveryActivation)
{
    RUN_WITHOUT_PRIVILEGES();
    const ActiveLibrary library;
    const QString saved = storage() + u"/activated_fonts.json"_s;
    const QByteArray savedBytes = readFile(saved);
    ASSERT_TRUE(QFile::setPermissions(storage(), QFile::ReadOwner | QFile::ExeOwner));

    {
        Start start;
        EXPECT_EQ(start.store.activatedFonts(), library.set());
        EXPECT_EQ(start.output, u"Failed to save activated fonts: Permission denied\n"_s);
        EXPECT_EQ(start.store.saveFailure(), u"Permission denied"_s);

        // A change made now can't be saved: this run has it, the file keeps the last state.
        start.store.setActivation({FontNode::fontFile(library.fonts.first())}, false);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !start.store.isProcessing(); }, 60'000));
        EXPECT_EQ(start.store.activatedFonts().size(), 1);
        EXPECT_EQ(readFile(saved), savedBytes);
    }
    // The saved list can't go back on its own; what it says is what the next start restores.
    {
        Start next;
        EXPECT_EQ(next.store.activatedFonts(), library.set());
    }

    // Unreadable as well as in a read-only folder: left where it is, rebuilt from the links.
    ASSERT_TRUE(QFile::setPermissions(storage(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    ASSERT_TRUE(QFile::setPermissions(saved, {}));
    ASSERT_TRUE(QFile::setPermissions(storage(), QFile::ReadOwner | QFile::ExeOwner));
    Start last;
    EXPECT_TRUE(last.output.startsWith(u"Failed to load activated fonts: Permission denied (the file was left where it is)\n"_s))
        << last.output.toStdString();
    EXPECT_EQ(last.store.activatedFonts(), library.set());
    EXPECT_EQ(last.activation.recordedActivations(), library.set());
    ASSERT_TRUE(QFile::setPermissions(storage(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    ASSERT_TRUE(QFile::setPermissions(saved, QFile::ReadOwner | QFile::WriteOwner));
    EXPECT_EQ(readFile(saved), savedBytes);
}

// A full disk, faked with a file size limit: the save fails, the store says so, and
// the next start restores the last state that was saved.
TEST(StorageFaults, AFullDiskKeepsTheLastSavedStateAndSaysSo)
{
    const ActiveLibrary library;
    const QString saved = storage() + u"/activated_fonts.json"_s;
    const QByteArray savedBytes = readFile(saved);
    rlimit previous{};
    ::getrlimit(RLIMIT_FSIZE, &previous);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    // Room for the printed line (captured through a file), none for the saved list.
    ASSERT_GT(savedBytes.size(), 100);
    rlimit tiny = previous;
    tiny.rlim_cur = 100;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tiny), 0);
    {
        Start start;
        EXPECT_EQ(start.output, u"Failed to save activated fonts: File too large\n"_s);
        EXPECT_EQ(start.store.saveFailure(), u"File too large"_s);
        EXPECT_EQ(start.store.activatedFonts(), library.set());
    }
    ::setrlimit(RLIMIT_FSIZE, &previous);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(readFile(saved), savedBytes);
    EXPECT_EQ(QDir(storage()).entryList(QDir::Files | QDir::Hidden), (QStringList{u"activated_fonts.json"_s, u"sources.json"_s}));

    Start next;
    EXPECT_EQ(next.store.activatedFonts(), library.set());
    EXPECT_TRUE(next.store.saveFailure().isEmpty());
    EXPECT_EQ(next.output, QString());
}
