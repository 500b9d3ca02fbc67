// SPDX-License-Identifier: GPL-3.0-or-later
// Morvane as a real process with special files where it reads its own data or its
// fonts: it always comes up, says what is wrong, and quits when told to.
#include "TestSupport.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <functional>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString kMorvane = QStringLiteral(MORVANE_BINARY);

QString storage()
{
    return PersistenceService::defaultStorageFolder();
}

void makeFifo(const QString &path)
{
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0) << path.toStdString();
}

QSet<QString> listedByFontconfig()
{
    const QString links = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts/Morvane/"_s;
    QProcess process;
    process.start(u"fc-list"_s, {u"--format=%{file}\\n"_s});
    EXPECT_TRUE(process.waitForFinished(30'000)) << "fc-list blocked";
    QSet<QString> fonts;
    for (const QString &file : QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)) {
        if (file.startsWith(links))
            fonts.insert(TestSupport::fontOfLink(file));
    }
    return fonts;
}

} // namespace

// Each used to block the window for good (a pipe opened for reading waits for a
// writer) or abort it (/dev/zero read to the end).
TEST(FaultProcess, SpecialFilesAmongItsOwnDataNeverHoldTheWindow)
{
    struct Case
    {
        const char *what;
        std::function<void()> make;
        QString line;
    };
    const QString icon = storage() + u"/CollectionIcons/6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2.png"_s;
    const QList<Case> cases{
        {"sources.json is a pipe", [] { makeFifo(storage() + u"/sources.json"_s); },
         u"Failed to load sources: it is not a regular file (a pipe or a device) (the file was left where it is)"_s},
        {"sources.json leads to /dev/zero", [] { makeSymlink(u"/dev/zero"_s, storage() + u"/sources.json"_s); },
         u"Failed to load sources: it is not a regular file (a pipe or a device) (the file was left where it is)"_s},
        {"a collection's icon is a pipe",
         [icon] {
             makeDir(storage() + u"/CollectionIcons"_s);
             makeFifo(icon);
             writeFile(storage() + u"/collections.json"_s,
                       "[{\"id\":\"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2\",\"name\":\"Picks\",\"members\":[],"
                       "\"iconPath\":\"" + icon.toUtf8() + "\"}]");
         },
         QString()},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.what);
        QDir(storage()).removeRecursively();
        makeDir(storage());
        test.make();
        QProcess morvane;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"MORVANE_STARTUP_REPORT"_s, u"1"_s); // quits once the library is shown
        morvane.setProcessEnvironment(environment);
        morvane.start(kMorvane);
        ASSERT_TRUE(morvane.waitForFinished(60'000)) << "the window never came up";
        const QString output = QString::fromUtf8(morvane.readAllStandardOutput());
        EXPECT_EQ(morvane.exitCode(), 0);
        EXPECT_TRUE(output.contains(u"first-paint-ms: "_s)) << output.toStdString();
        if (!test.line.isEmpty()) {
            EXPECT_TRUE(output.contains(test.line)) << output.toStdString();
        }
    }
}

// A pipe where an active font was: the restore sets it aside, every other program's
// fontconfig still answers, and a logout's SIGTERM quits at once with the rest saved.
TEST(FaultProcess, APipeInPlaceOfAnActiveFontNeitherHoldsMorvaneNorFontconfig)
{
    const QString folder = makeDir(testRoot() + u"/Fonts"_s);
    const QString pipe = folder + u"/DejaVuSans.ttf"_s;
    const QString kept = folder + u"/DejaVuSerif.ttf"_s;
    for (const QString &font : {pipe, kept})
        ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/"_s + font.section(u'/', -1), font));
    {
        FontActivationService activation;
        ASSERT_EQ(activation.activateFonts({pipe, kept}), QList<bool>(2, true));
        PersistenceService persistence;
        persistence.saveSources({FolderSource{QUuid::createUuid(), folder, u"Fonts"_s}});
        persistence.saveActivatedFonts({pipe, kept});
    }
    ASSERT_TRUE(QFile::remove(pipe));
    makeFifo(pipe);

    QProcess morvane;
    morvane.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    morvane.setProcessChannelMode(QProcess::MergedChannels);
    morvane.start(kMorvane);
    ASSERT_TRUE(morvane.waitForStarted(10'000));
    // Up and restored once the saved list no longer names the pipe.
    ASSERT_TRUE(QTest::qWaitFor([&] { return PersistenceService().loadActivatedFonts() == QSet<QString>{kept}; }, 60'000))
        << morvane.readAll().toStdString();
    EXPECT_EQ(listedByFontconfig(), QSet<QString>{kept});
    ::kill(static_cast<pid_t>(morvane.processId()), SIGTERM);
    ASSERT_TRUE(morvane.waitForFinished(30'000)) << "SIGTERM did not quit";
    EXPECT_EQ(morvane.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(morvane.exitCode(), 0);
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), QSet<QString>{kept});
}
