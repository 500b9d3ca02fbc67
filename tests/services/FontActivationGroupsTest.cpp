// SPDX-License-Identifier: GPL-3.0-or-later
// Folders made ready ahead of time: with the real fontconfig, a whole folder goes in and
// out without fontconfig reading a font, and the links, the service's own record and
// fc-list agree after every mix of whole folders, single fonts, restarts and changed files.
#include "TestSupport.h"

#include "services/FontActivationService.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QCryptographicHash>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <QtConcurrent/QtConcurrentRun>

#include <sys/stat.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString kDejaVu = u"/usr/share/fonts/truetype/dejavu/"_s;

QSet<QString> recorded(FontActivationService &service)
{
    const QHash<QString, QString> links = service.links();
    return QSet<QString>(links.cbegin(), links.cend());
}

// As the store sends them: chunks of eight between beginBatch() and finishBatch().
QStringList inBatch(FontActivationService &service, const QStringList &fonts, bool activate)
{
    service.beginBatch();
    for (qsizetype start = 0; start < fonts.size(); start += 8) {
        const QStringList chunk = fonts.mid(start, 8);
        const QList<bool> results = activate ? service.activateFonts(chunk) : service.deactivateFonts(chunk);
        EXPECT_EQ(results, QList<bool>(chunk.size(), true));
    }
    return service.finishBatch();
}

const auto never = [] { return false; };
constexpr qsizetype G = FontActivationService::kGroupSize;

// The group folders in our link folder, in their buckets.
QStringList liveGroups(const FontActivationService &service)
{
    QStringList groups;
    const QString root = service.linkFolder() + u"/g"_s;
    for (const QString &bucket : QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        for (const QString &group : QDir(root + u'/' + bucket).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            groups.append(root + u'/' + bucket + u'/' + group);
    }
    return groups;
}

class Groups : public testing::Test
{
protected:
    void SetUp() override
    {
        // Two whole groups and half of a third; links to installed fonts, as a library's
        // own links to fonts elsewhere are.
        folder = makeDir(testRoot() + u"/Library/Pack"_s);
        const QStringList faces{u"DejaVuSans.ttf"_s, u"DejaVuSans-Bold.ttf"_s, u"DejaVuSerif.ttf"_s, u"DejaVuSansMono.ttf"_s};
        for (int i = 0; i < 2 * G + G / 2; ++i) {
            const QString font = folder + u"/Font %1.ttf"_s.arg(i, 3, 10, QChar(u'0'));
            ASSERT_TRUE(QFile::link(kDejaVu + faces[i % faces.size()], font));
            fonts.append(font);
        }
    }
    QSet<QString> all() const { return QSet<QString>(fonts.cbegin(), fonts.cend()); }

    QString folder;
    QStringList fonts;
};

} // namespace

TEST_F(Groups, AWholeFolderMadeReadyGoesInAndOutWithoutAScan)
{
    FontActivationService service;
    ASSERT_EQ(service.stagingFolder().size(), service.linkFolder().size());
    service.prepareActivation({fonts}, never);
    EXPECT_EQ(service.readyFonts(), fonts.size());
    EXPECT_TRUE(fontsListedByFontconfig(service.linkFolder()).isEmpty()) << "ready is not active";

    for (int round = 0; round < 2; ++round) {
        const int scanned = service.fontsScanned();
        EXPECT_TRUE(inBatch(service, fonts, true).isEmpty());
        EXPECT_EQ(service.fontsScanned(), scanned) << "round " << round << ": no font read at the switch";
        EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), all());
        EXPECT_EQ(recorded(service), all());
        const QStringList groups = liveGroups(service);
        EXPECT_EQ(groups.size(), 3);
        for (const QString &group : groups)
            EXPECT_TRUE(service.hasValidCache(group)) << "every program reads it as it is";

        EXPECT_TRUE(inBatch(service, fonts, false).isEmpty());
        EXPECT_EQ(service.fontsScanned(), scanned);
        EXPECT_TRUE(fontsListedByFontconfig(service.linkFolder()).isEmpty());
        EXPECT_TRUE(recorded(service).isEmpty());
        EXPECT_EQ(service.readyFonts(), fonts.size()) << "back out, and ready again";
        EXPECT_FALSE(QFileInfo::exists(service.linkFolder() + u"/g"_s)) << "no emptied folder left";
    }
}

// One font off a whole group, one font on, then a restart and everything off: each
// step agrees with fontconfig, and no emptied folder is left for every program to read.
TEST_F(Groups, SingleFontsInAndAroundWholeGroupsAgreeWithFontconfig)
{
    {
        FontActivationService service;
        service.prepareActivation({fonts}, never);
        inBatch(service, fonts.mid(0, 2 * G), true); // two whole groups
        EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), QSet<QString>(fonts.cbegin(), fonts.cbegin() + 2 * G));

        EXPECT_TRUE(service.deactivateFont(fonts[3]));
        QSet<QString> expected(fonts.cbegin(), fonts.cbegin() + 2 * G);
        expected.remove(fonts[3]);
        EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), expected);
        EXPECT_TRUE(service.activateFont(fonts[2 * G + 3])); // one of the third group, alone
        expected.insert(fonts[2 * G + 3]);
        EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), expected);
        EXPECT_EQ(recorded(service), expected);
    }
    FontActivationService restarted; // the next start reads what is on disk
    QSet<QString> expected(fonts.cbegin(), fonts.cbegin() + 2 * G);
    expected.remove(fonts[3]);
    expected.insert(fonts[2 * G + 3]);
    EXPECT_EQ(recorded(restarted), expected);
    const QStringList active(expected.cbegin(), expected.cend());
    EXPECT_TRUE(inBatch(restarted, active, false).isEmpty());
    EXPECT_TRUE(fontsListedByFontconfig(restarted.linkFolder()).isEmpty());
    EXPECT_FALSE(QFileInfo::exists(restarted.linkFolder() + u"/g"_s)) << "no emptied folder left";
}

// A font copied into a wholly active folder is not active; the folder's next
// preparation leaves the live groups alone.
TEST_F(Groups, AFontAddedToAWhollyActiveFolderStaysInactive)
{
    FontActivationService service;
    service.prepareActivation({fonts}, never);
    inBatch(service, fonts, true);
    const QString added = folder + u"/Font 999.ttf"_s;
    ASSERT_TRUE(QFile::copy(kDejaVu + u"DejaVuSerif-Bold.ttf"_s, added));
    service.prepareActivation({QStringList(fonts) << added}, never);
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), all());
    EXPECT_EQ(recorded(service), all());
    EXPECT_TRUE(service.activateFont(added));
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), all() + QSet<QString>{added});
}

// A file replaced after its group was made ready is not taken from the group's cache:
// its group goes font by font, and fontconfig describes the new file.
TEST_F(Groups, AFileChangedSinceItWasMadeReadyIsReadAgain)
{
    FontActivationService service;
    service.prepareActivation({fonts}, never);
    ASSERT_TRUE(QFile::remove(fonts[0]));
    ASSERT_TRUE(QFile::copy(kDejaVu + u"DejaVuSerif-Bold.ttf"_s, fonts[0]));
    const int scanned = service.fontsScanned();
    EXPECT_TRUE(inBatch(service, fonts, true).isEmpty());
    EXPECT_GE(service.fontsScanned() - scanned, G) << "the changed file's group, font by font";
    EXPECT_LT(service.fontsScanned() - scanned, 2 * G) << "and no other group";
    QProcess process;
    process.start(u"fc-list"_s, {u"--format=%{file}|%{family[0]}|%{style[0]}\\n"_s});
    ASSERT_TRUE(process.waitForFinished(60'000));
    QString described;
    for (const QString &line : QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)) {
        if (line.startsWith(service.linkFolder()) && TestSupport::fontOfLink(line.section(u'|', 0, 0)) == fonts[0])
            described = line.section(u'|', 1);
    }
    EXPECT_EQ(described, u"DejaVu Serif|Bold"_s);
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), all());
}

// A process killed between two chunks of a whole folder: the next start's record is
// what is linked, fontconfig agrees, and the saved list's sweep puts it right.
TEST_F(Groups, AKillInTheMiddleLeavesLinksAndFontconfigAgreeing)
{
    {
        FontActivationService service;
        service.prepareActivation({fonts}, never);
        service.beginBatch();
        for (qsizetype start = 0; start < G + G / 2; start += 8)
            service.activateFonts(fonts.mid(start, 8)); // the first group goes in, half of the second is asked
    }
    FontActivationService next;
    const QSet<QString> onDisk = recorded(next);
    EXPECT_EQ(onDisk, QSet<QString>(fonts.cbegin(), fonts.cbegin() + G));
    EXPECT_EQ(fontsListedByFontconfig(next.linkFolder()), onDisk);
    next.repairActivations();
    next.removeActivationsExcept(QSet<QString>(fonts.cbegin(), fonts.cbegin() + 4)); // what was saved
    EXPECT_EQ(fontsListedByFontconfig(next.linkFolder()), QSet<QString>(fonts.cbegin(), fonts.cbegin() + 4));
    EXPECT_EQ(recorded(next), QSet<QString>(fonts.cbegin(), fonts.cbegin() + 4));
}

// A kill while fontconfig or Morvane wrote a group's cache leaves lock and temporary files
// that would stop that cache from ever being written again: the next start removes them,
// for live and staged groups, their buckets and a group whose making was cut short, and
// leaves other programs' alone.
TEST_F(Groups, CacheLocksAKillLeftOnGroupsGoAtTheNextStart)
{
    QStringList ours;
    QString caches;
    {
        FontActivationService service;
        service.prepareActivation({fonts}, never);
        inBatch(service, fonts.mid(0, G), true); // one group live, the others staged
        const QStringList live = liveGroups(service);
        ASSERT_EQ(live.size(), 1);
        ours << live.first() << live.first().section(u'/', 0, -2) << service.linkFolder() + u"/g"_s;
        const QString staged = service.stagingFolder() + u"/g"_s;
        for (const QString &bucket : QDir(staged).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            ours << staged + u'/' + bucket;
            for (const QString &group : QDir(staged + u'/' + bucket).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
                ours << staged + u'/' + bucket + u'/' + group;
        }
        // A group being made when the kill came: its marker, and no folder yet.
        const QString cutShort = service.stagingFolder() + u"/g/0/0123456789abcdef-9"_s;
        writeFile(service.stagingFolder() + u"/building/0123456789abcdef-9"_s, "");
        ours << cutShort;
        caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/fontconfig"_s;
    }
    QStringList left;
    for (const QString &folderOfOurs : ours) {
        const QString md5 = QString::fromLatin1(QCryptographicHash::hash(QFile::encodeName(folderOfOurs), QCryptographicHash::Md5).toHex());
        for (const QString &suffix : {u".LCK"_s, u".NEW"_s, u".TMP-Zx81Qa"_s, u".morvane-new"_s})
            left << writeFile(caches + u'/' + md5 + u"-le64.cache-8"_s + suffix, "stale");
    }
    const QString foreign = writeFile(caches + u"/0123456789abcdef0123456789abcdef-le64.cache-8.LCK"_s, "theirs");

    FontActivationService next;
    next.repairActivations();
    for (const QString &file : left)
        EXPECT_FALSE(QFileInfo::exists(file)) << file.toStdString();
    EXPECT_TRUE(QFileInfo::exists(foreign));
    EXPECT_EQ(fontsListedByFontconfig(next.linkFolder()), QSet<QString>(fonts.cbegin(), fonts.cbegin() + G));
}

// A FIFO in a font's name among a folder's fonts (made after the scan saw a font there):
// making the folder ready never opens it, so it never waits for a writer; the folder
// goes in without it, and it is turned down on its own with a reason.
TEST_F(Groups, AFifoAmongTheFontsNeverHoldsTheFolderUp)
{
    const QString pipe = folder + u"/Font 999.ttf"_s;
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QStringList withPipe = fonts;
    withPipe.append(pipe);
    FontActivationService service;
    auto prepared = QtConcurrent::run([&] { service.prepareActivation({withPipe}, never); });
    const bool returned = QTest::qWaitFor([&] { return prepared.isFinished(); }, 30'000);
    if (!returned) { // held in open(): a writer lets it go, so the test can end
        QFile writer(pipe);
        writer.open(QIODevice::WriteOnly);
        prepared.waitForFinished();
    }
    ASSERT_TRUE(returned) << "making the folder ready waited on the FIFO";
    EXPECT_EQ(service.readyFonts(), fonts.size());

    service.beginBatch();
    const QList<bool> results = service.activateFonts(withPipe);
    service.finishBatch();
    EXPECT_EQ(results.count(true), fonts.size());
    EXPECT_FALSE(results.constLast()) << "the FIFO is no font";
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), all());
}
