// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Faults a user meets, made real for tests: a test run again as an unprivileged user
// (file modes mean nothing to root), a library of real fonts active through
// fontconfig, one start of the store with the real services, what fontconfig lists,
// and a small file system of its own (a tmpfs, when the test may mount one).

#include "StateTestSupport.h"

#include "services/FontActivationService.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <grp.h>
#include <sys/mount.h>
#include <unistd.h>

namespace FaultTestSupport {

using namespace Qt::StringLiterals;
using namespace TestSupport;

constexpr uid_t kNobody = 65534;

inline QString storage()
{
    return PersistenceService::defaultStorageFolder();
}

// The activations saved on disk now.
inline QSet<QString> savedFonts()
{
    return PersistenceService().loadActivatedFonts();
}

inline bool settled(const AppState &store)
{
    return !store.isProcessing() && !store.isIndexing();
}

enum class Role {
    Child,       // unprivileged: run the test body
    ParentDone,  // root: the child ran it and its verdict is reported
    Unavailable, // root, and no unprivileged child can run here
};

// Runs this very test again in a child process: as nobody, or in a mount namespace of
// its own (so its mounts can never outlive it or reach the machine's).
enum class ChildKind { Unprivileged, OwnMounts };

inline Role runChild(ChildKind kind)
{
    if (kind == ChildKind::Unprivileged && ::geteuid() != 0)
        return Role::Child;
    if (kind == ChildKind::OwnMounts && qEnvironmentVariableIsSet("MORVANE_TEST_OWN_MOUNTS"))
        return Role::Child;
    if (kind == ChildKind::OwnMounts && ::geteuid() != 0)
        return Role::Unavailable;
    const testing::TestInfo *test = testing::UnitTest::GetInstance()->current_test_info();
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"MORVANE_TEST_PROCESS_ROOT"_s); // the child makes its own, in the shared /tmp
    environment.remove(u"FONTCONFIG_FILE"_s);           // in the parent's private folder
    if (kind == ChildKind::OwnMounts)
        environment.insert(u"MORVANE_TEST_OWN_MOUNTS"_s, u"1"_s);
    child.setProcessEnvironment(environment);
    if (kind == ChildKind::Unprivileged) {
        child.setChildProcessModifier([] {
            // Only async-signal-safe calls here.
            if (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)
                ::_exit(127);
        });
    }
    child.setProcessChannelMode(QProcess::MergedChannels);
    const QString filter =
        u"--gtest_filter=%1.%2"_s.arg(QLatin1StringView(test->test_suite_name()), QLatin1StringView(test->name()));
    if (kind == ChildKind::Unprivileged)
        child.start(QCoreApplication::applicationFilePath(), {filter});
    else
        child.start(u"unshare"_s, {u"--mount"_s, u"--propagation"_s, u"private"_s, QCoreApplication::applicationFilePath(), filter});
    if (!child.waitForStarted(10'000))
        return Role::Unavailable; // nobody may not run this build
    EXPECT_TRUE(child.waitForFinished(120'000));
    const QString output = QString::fromUtf8(child.readAll());
    if (child.exitCode() == 127 || (kind == ChildKind::OwnMounts && output.startsWith(u"unshare:"_s)))
        return Role::Unavailable; // dropping privileges or a namespace of its own is refused here
    // The marker is put together here: ctest takes any output holding it whole for a skip.
    if (child.exitCode() == 0 && output.contains(u"[  SKIPPED"_s + u" ] 1 test"_s))
        return Role::Unavailable;
    EXPECT_EQ(child.exitCode(), 0) << "the test in its child process:\n" << output.toStdString();
    EXPECT_TRUE(output.contains(u"[  PASSED  ] 1 test"_s)) << output.toStdString();
    return Role::ParentDone;
}

inline Role runAsUnprivilegedChild()
{
    return runChild(ChildKind::Unprivileged);
}

// Two real fonts, active through fontconfig, and a saved list that says so.
struct ActiveLibrary
{
    // `folder` is saved as the one source, "Fonts".
    explicit ActiveLibrary(const QString &folder = testRoot() + u"/Fonts"_s)
    {
        makeDir(folder);
        PersistenceService().saveSources({FolderSource{QUuid::createUuid(), folder, u"Fonts"_s}});
        for (const QString &name : {u"DejaVuSans.ttf"_s, u"DejaVuSerif.ttf"_s}) {
            fonts.append(folder + u'/' + name);
            EXPECT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/"_s + name, fonts.last()));
        }
        FontActivationService activation;
        EXPECT_EQ(activation.activateFonts(fonts), QList<bool>(2, true));
        PersistenceService persistence;
        persistence.saveActivatedFonts(set());
        persistence.waitForWrites();
    }
    QSet<QString> set() const { return QSet<QString>(fonts.begin(), fonts.end()); }
    QStringList fonts;
};

// One start of Morvane's store with the real services: what it restored and printed.
struct Start
{
    Start()
    {
        output = capturedStdout([this] {
            store.loadPersistedState();
            // Settled once the start's scan was followed by its look at our links.
            EXPECT_TRUE(QTest::qWaitFor(
                [this] {
                    return !store.isProcessing() && !store.isIndexing() && store.linksCheckedThrough() >= store.refreshRequests();
                },
                60'000));
            persistence.waitForWrites();
            QCoreApplication::processEvents(); // the writer's report reaches the store
        });
    }
    FontActivationService activation;
    PersistenceService persistence;
    AppState store{activation, persistence};
    CapturedLog log; // made before the store acts: it hears the start
    QString output;
};


// fontconfig is the judge: what a newly started application sees, through fc-list in
// this test's own environment, with our links mapped back to the fonts.
inline QSet<QString> listedByFontconfig()
{
    const QString links = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts/Morvane/"_s;
    QProcess process;
    process.start(u"fc-list"_s, {u"--format=%{file}\\n"_s});
    EXPECT_TRUE(process.waitForFinished(60'000));
    QSet<QString> fonts;
    for (const QString &file : QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)) {
        if (file.startsWith(links))
            fonts.insert(TestSupport::fontOfLink(file));
    }
    return fonts;
}

// A small file system of its own at `path`, unmounted again at the end; none when this
// process may not mount (not root, or in a container that forbids it).
struct Tmpfs
{
    Tmpfs(const QString &at, const QByteArray &size)
        : path(makeDir(at))
    {
        const QByteArray options = "size=" + size;
        mounted = ::geteuid() == 0 &&
                  ::mount("tmpfs", QFile::encodeName(path).constData(), "tmpfs", 0, options.constData()) == 0;
    }
    ~Tmpfs()
    {
        if (mounted)
            ::umount2(QFile::encodeName(path).constData(), MNT_DETACH);
    }
    void unmount()
    {
        if (mounted && ::umount2(QFile::encodeName(path).constData(), MNT_DETACH) == 0)
            mounted = false;
    }
    QString path;
    bool mounted = false;
};

} // namespace FaultTestSupport

// Runs the calling test again as nobody when run as root; skips where that is impossible.
#define RUN_WITHOUT_PRIVILEGES()                                                                                \
    do {                                                                                                       \
        const FaultTestSupport::Role role = FaultTestSupport::runAsUnprivilegedChild();                                                            \
        if (role == FaultTestSupport::Role::Unavailable)                                                                         \
            GTEST_SKIP() << "file modes mean nothing to root, and this test can't run as an unprivileged user " \
                            "here (nobody can't run the build, or privileges can't be dropped)";              \
        if (role == FaultTestSupport::Role::ParentDone)                                                                          \
            return;                                                                                            \
    } while (false)

// Runs the calling test again in a mount namespace of its own; skips where that is impossible.
#define RUN_WITH_OWN_MOUNTS()                                                                                   \
    do {                                                                                                       \
        const FaultTestSupport::Role role = FaultTestSupport::runChild(FaultTestSupport::ChildKind::OwnMounts); \
        if (role == FaultTestSupport::Role::Unavailable)                                                       \
            GTEST_SKIP() << "this test mounts a small file system, which needs root and a mount namespace";   \
        if (role == FaultTestSupport::Role::ParentDone)                                                        \
            return;                                                                                            \
    } while (false)
