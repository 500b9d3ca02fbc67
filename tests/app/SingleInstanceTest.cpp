// SPDX-License-Identifier: GPL-3.0-or-later
// Morvane as real processes: two copies on one account, and a copy killed in the
// middle of a batch, then started again.
#include "TestSupport.h"

#include "SingleInstance.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString kMorvane = QStringLiteral(MORVANE_BINARY);
const QString kFonts = QStringLiteral(MORVANE_TEST_FONTS);

QString storage()
{
    return PersistenceService::defaultStorageFolder();
}

QString linkFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts/Morvane"_s;
}

// A copy of Morvane in this test's own home, stopped (killed if need be) when the test ends.
struct Morvane
{
    Morvane()
    {
        process->setProgram(kMorvane);
        process->setProcessEnvironment(QProcessEnvironment::systemEnvironment());
        process->start();
        EXPECT_TRUE(process->waitForStarted(10'000));
    }
    ~Morvane()
    {
        if (process->state() != QProcess::NotRunning) {
            process->kill();
            process->waitForFinished(10'000);
        }
    }
    qint64 pid() const { return process->processId(); }
    // Quits as a logout would, through the event loop.
    int terminate()
    {
        ::kill(static_cast<pid_t>(pid()), SIGTERM);
        EXPECT_TRUE(process->waitForFinished(60'000));
        return process->exitCode();
    }
    std::unique_ptr<QProcess> process = std::make_unique<QProcess>();
};

QString lockHolder()
{
    QFile lock(storage() + u"/morvane.lock"_s);
    return lock.open(QIODevice::ReadOnly) ? QString::fromUtf8(lock.readLine()).trimmed() : QString();
}

QStringList ourLinks()
{
    QStringList links;
    QDirIterator it(linkFolder(), QDir::Files | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext())
        links.append(it.next());
    return links;
}

QSet<QString> listedByFontconfig()
{
    QProcess process;
    process.start(u"fc-list"_s, {u"--format=%{file}\\n"_s});
    EXPECT_TRUE(process.waitForFinished(120'000));
    QSet<QString> fonts;
    for (const QString &file : QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)) {
        if (file.startsWith(linkFolder() + u'/'))
            fonts.insert(TestSupport::fontOfLink(file));
    }
    return fonts;
}

QByteArray pathsJson(const QStringList &paths)
{
    QByteArray json("[");
    for (const QString &path : paths)
        json += '"' + path.toUtf8() + "\",";
    json.chop(paths.isEmpty() ? 0 : 1);
    return json + ']';
}

QDateTime modified(const QString &path)
{
    return QFileInfo(path).fileTime(QFileDevice::FileModificationTime);
}

} // namespace

TEST(SingleInstance, ASecondStartHandsOverToTheRunningCopy)
{
    Morvane first;
    ASSERT_TRUE(QTest::qWaitFor([&] { return lockHolder() == QString::number(first.pid()); }, 30'000));

    QProcess second;
    second.start(kMorvane, {});
    ASSERT_TRUE(second.waitForFinished(30'000));
    EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(QString::fromUtf8(second.readAllStandardOutput()),
              u"Morvane is already running; its window was brought to the front.\n"_s);
    EXPECT_EQ(first.process->state(), QProcess::Running);
    EXPECT_EQ(lockHolder(), QString::number(first.pid()));

    // A clean quit gives the lock back.
    EXPECT_EQ(first.terminate(), 0);
    EXPECT_FALSE(QFile::exists(storage() + u"/morvane.lock"_s));

    // A killed copy leaves its lock behind; the next start takes it over.
    Morvane killed;
    const QString killedPid = QString::number(killed.pid());
    ASSERT_TRUE(QTest::qWaitFor([&] { return lockHolder() == killedPid; }, 30'000));
    killed.process->kill();
    ASSERT_TRUE(killed.process->waitForFinished(10'000));
    EXPECT_EQ(lockHolder(), killedPid);
    Morvane next;
    ASSERT_TRUE(QTest::qWaitFor([&] { return lockHolder() == QString::number(next.pid()); }, 30'000));
    EXPECT_EQ(next.process->state(), QProcess::Running);
}

namespace {

// 4,000 fonts in 40 folders of 100 (links to real fonts).
QStringList makeLibrary(const QString &library)
{
    const QStringList faces{u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s,
                            u"/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf"_s, kFonts + u"/Plain.ttf"_s};
    QStringList fonts;
    for (int i = 0; i < 4000; ++i) {
        const QString font = library + u"/Family %1/Font %2.ttf"_s.arg(i / 100).arg(i);
        QDir().mkpath(font.section(u'/', 0, -2));
        makeSymlink(faces[i % faces.size()], font);
        fonts.append(font);
    }
    return fonts;
}

// The restore at start-up is a batch of every saved font. Killed in its middle, the
// next start must still end with every saved font active, each linked once, listed
// by fontconfig, and no cache left locked. Returns the links there were at the kill.
// `begun` waits until the restore is under way.
QStringList killTheRestoreAndStartAgain(const QStringList &fonts, const std::function<bool()> &begun)
{
    const QString saved = writeFile(storage() + u"/activated_fonts.json"_s, pathsJson(fonts));
    const QByteArray savedBytes = readFile(saved);
    QStringList linkedAtKill;
    {
        Morvane first;
        EXPECT_TRUE(begun());
        ::kill(static_cast<pid_t>(first.pid()), SIGSTOP); // frozen where it is, then killed there
        linkedAtKill = ourLinks();
        ::kill(static_cast<pid_t>(first.pid()), SIGKILL);
        EXPECT_TRUE(first.process->waitForFinished(10'000));
        EXPECT_LT(linkedAtKill.size(), fonts.size()) << "the batch ended before it could be killed";
    }
    EXPECT_EQ(readFile(saved), savedBytes); // the saved set never shrinks mid-batch

    const QDateTime before = modified(saved);
    Morvane next;
    // The restore ends by saving the set it restored.
    EXPECT_TRUE(QTest::qWaitFor([&] { return modified(saved) != before; }, 120'000));
    EXPECT_EQ(next.terminate(), 0);

    const QStringList links = ourLinks();
    QSet<QString> linked;
    for (const QString &link : links)
        linked.insert(TestSupport::fontOfLink(link));
    EXPECT_EQ(links.size(), fonts.size()); // each font linked once
    EXPECT_EQ(linked, QSet<QString>(fonts.begin(), fonts.end()));
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), QSet<QString>(fonts.begin(), fonts.end()));
    EXPECT_EQ(listedByFontconfig(), QSet<QString>(fonts.begin(), fonts.end()));
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/fontconfig"_s;
    EXPECT_EQ(QDir(caches).entryList({u"*.LCK"_s, u"*.NEW"_s, u"*.TMP-*"_s}, QDir::Files | QDir::Hidden), QStringList());
    EXPECT_FALSE(QFileInfo::exists(QDir::homePath() + u"/.fontconfig"_s));
    return linkedAtKill;
}

} // namespace

// Fonts outside any source: linked font by font.
TEST(SingleInstance, AKillInTheMiddleOfABatchLosesNothing)
{
    killTheRestoreAndStartAgain(makeLibrary(makeDir(testRoot() + u"/Library"_s)),
                                [] { return QTest::qWaitFor([] { return !ourLinks().isEmpty(); }, 60'000); });
}

// The library is a source whose folders a first start made ready: the restore moves
// whole groups in, and is killed while it does.
TEST(SingleInstance, AKillWhileWholeFoldersMoveInLosesNothing)
{
    const QString library = makeDir(testRoot() + u"/Library"_s);
    const QStringList fonts = makeLibrary(library);
    writeFile(storage() + u"/sources.json"_s,
              "[{\"id\":\"2B7F0C1E-5A8D-4C3B-9E21-7D6A4F0B9C11\",\"name\":\"Library\",\"path\":\"" + library.toUtf8() + "\"}]");
    const QString staged = linkFolder().section(u'/', 0, -2) + u"/.Morvan/g"_s;
    const auto groupsReady = [&] {
        qsizetype groups = 0;
        for (const QString &bucket : QDir(staged).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            groups += QDir(staged + u'/' + bucket).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
        return groups == 40 && QDir(staged.chopped(2) + u"/building"_s).isEmpty();
    };
    {
        Morvane first; // nothing active: it scans, catalogues and makes the 40 folders ready
        ASSERT_TRUE(QTest::qWaitFor(groupsReady, 120'000));
        EXPECT_EQ(first.terminate(), 0);
    }
    // A whole group moves in at once and 40 go in a blink: the first live group is looked
    // for without pause, so the kill comes while most are still to go.
    const auto firstGroupLive = [] {
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < 60'000) {
            for (int digit = 0; digit < 16; ++digit) {
                if (!QDir(linkFolder() + u"/g/"_s + QString::number(digit, 16)).isEmpty(QDir::Dirs | QDir::NoDotAndDotDot))
                    return true;
            }
        }
        return false;
    };
    const QStringList linkedAtKill = killTheRestoreAndStartAgain(fonts, firstGroupLive);
    EXPECT_TRUE(std::any_of(linkedAtKill.cbegin(), linkedAtKill.cend(),
                            [](const QString &link) { return link.startsWith(linkFolder() + u"/g/"_s); }))
        << "no whole folder had moved in when the restore was killed";
}

// A second start with files hands them, made absolute, to the running copy with the
// desktop's activation token, and exits; --help and --version answer without starting.
TEST(SingleInstance, ASecondStartHandsItsFilesToTheRunningCopy)
{
    SingleInstance running(storage());
    ASSERT_EQ(running.start(), SingleInstance::Outcome::Owner);
    QSignalSpy opened(&running, &SingleInstance::openRequested);
    QSignalSpy shown(&running, &SingleInstance::showRequested);

    const QString folder = makeDir(testRoot() + u"/Downloads/New fonts"_s);
    ASSERT_TRUE(QFile::copy(kFonts + u"/Plain.ttf"_s, folder + u"/Odd\nname.ttf"_s));
    QProcess second;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"XDG_ACTIVATION_TOKEN"_s, u"token from the desktop"_s);
    second.setProcessEnvironment(env);
    second.setWorkingDirectory(testRoot() + u"/Downloads"_s);
    second.start(kMorvane, {u"New fonts/Odd\nname.ttf"_s, u"New fonts"_s});
    ASSERT_TRUE(QTest::qWaitFor([&] { return second.state() == QProcess::NotRunning; }, 30'000));
    EXPECT_EQ(second.exitCode(), 0);
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened.first().first().toStringList(), (QStringList{folder + u"/Odd\nname.ttf"_s, folder}));
    ASSERT_EQ(shown.count(), 1);
    EXPECT_EQ(shown.first().first().toString(), u"token from the desktop"_s);

    const struct
    {
        QString option;
        QString says;
    } answers[] = {{u"--version"_s, u"Morvane "_s}, {u"--help"_s, u"[FILE|FOLDER…]"_s}};
    for (const auto &a : answers) {
        QProcess asked;
        asked.start(kMorvane, {a.option});
        ASSERT_TRUE(asked.waitForFinished(30'000));
        EXPECT_EQ(asked.exitCode(), 0) << a.option.toStdString();
        EXPECT_TRUE(QString::fromUtf8(asked.readAllStandardOutput()).contains(a.says)) << a.option.toStdString();
    }
    EXPECT_EQ(shown.count(), 1) << "neither reached the running copy";
}

// The window may ask a question (an event loop of its own) about what a second start
// handed over. The second start is answered before that, not after its patience ran
// out, and the question's answer comes once the socket is long gone.
TEST(SingleInstance, AHandoverIsAnsweredBeforeTheWindowAsksAnything)
{
    SingleInstance running(storage());
    ASSERT_EQ(running.start(), SingleInstance::Outcome::Owner);
    const QString folder = makeDir(testRoot() + u"/Downloads/Fonts to add"_s);
    QProcess second;
    bool secondEndedDuringQuestion = false;
    QStringList asked;
    QObject::connect(&running, &SingleInstance::openRequested, &running, [&](const QStringList &paths) {
        asked = paths;
        // "Add … as a source?" stays open until the second start has ended.
        QEventLoop question;
        QObject::connect(&second, &QProcess::finished, &question, &QEventLoop::quit);
        if (second.state() != QProcess::NotRunning)
            question.exec();
        secondEndedDuringQuestion = second.state() == QProcess::NotRunning;
    });
    QSignalSpy shown(&running, &SingleInstance::showRequested);
    second.start(kMorvane, {folder});
    ASSERT_TRUE(second.waitForStarted(10'000));
    ASSERT_TRUE(shown.wait(30'000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return second.state() == QProcess::NotRunning; }, 30'000));
    EXPECT_TRUE(secondEndedDuringQuestion);
    EXPECT_EQ(asked, QStringList{folder});
    EXPECT_EQ(second.exitCode(), 0) << second.readAllStandardOutput().toStdString();
    EXPECT_TRUE(QString::fromUtf8(second.readAllStandardOutput()).contains(u"brought to the front"_s));
}
