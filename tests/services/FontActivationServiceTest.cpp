// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "services/FontActivationService.h"
#include "services/FontLinkFile.h"
#include "services/OwnFontconfig.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QtConcurrent/QtConcurrentRun>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString kFonts = QStringLiteral(MORVANE_TEST_FONTS);
const QString kDejaVu = u"/usr/share/fonts/truetype/dejavu/"_s;


QString copyFont(const QString &source, const QString &target)
{
    QDir().mkpath(target.section(u'/', 0, -2));
    EXPECT_TRUE(QFile::copy(source, target)) << target.toStdString();
    return target;
}

class Activation : public testing::Test
{
protected:
    QString library = makeDir(testRoot() + u"/Library"_s);
    QString sans = copyFont(kDejaVu + u"DejaVuSans.ttf"_s, library + u"/Sans/DejaVuSans.ttf"_s);
    QString serif = copyFont(kDejaVu + u"DejaVuSerif.ttf"_s, library + u"/Serif/DejaVu Serif \"Book\".ttf"_s);
    QString plain = copyFont(kFonts + u"/Plain.ttf"_s, library + u"/Plain.ttf"_s);
};

} // namespace

TEST_F(Activation, ActiveFontsAreExactlyWhatFontconfigLists)
{
    FontActivationService service;
    EXPECT_TRUE(service.linkFolder().startsWith(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                                                u"/fonts/"_s));
    EXPECT_TRUE(fontsListedByFontconfig(service.linkFolder()).isEmpty());

    const QString output = capturedStdout([&] {
        EXPECT_EQ(service.activateFonts({sans, serif, plain}), (QList<bool>{true, true, true}));
        EXPECT_TRUE(service.activateFont(sans)); // already active
    });
    EXPECT_EQ(output, QString());
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), (QSet<QString>{sans, serif, plain}));

    EXPECT_TRUE(service.deactivateFont(serif));
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), (QSet<QString>{sans, plain}));
    const QString quiet = capturedStdout([&] { EXPECT_TRUE(service.deactivateFont(serif)); }); // not active
    EXPECT_EQ(quiet, QString());

    // A new service (the next start) finds the same state on disk.
    FontActivationService again;
    EXPECT_EQ(QSet<QString>(again.links().cbegin(), again.links().cend()), (QSet<QString>{sans, plain}));
    EXPECT_EQ(again.deactivateFonts({sans, plain}), (QList<bool>{true, true}));
    EXPECT_TRUE(fontsListedByFontconfig(service.linkFolder()).isEmpty());
    EXPECT_TRUE(again.links().isEmpty());
}

TEST_F(Activation, FontsWithTheSameFileNameAreBothActive)
{
    const QString twin = copyFont(kDejaVu + u"DejaVuSans-Bold.ttf"_s, library + u"/Other/DejaVuSans.ttf"_s);
    FontActivationService service;
    EXPECT_NE(FontActivationService::linkNameFor(sans), FontActivationService::linkNameFor(twin));
    EXPECT_TRUE(FontActivationService::linkNameFor(sans).endsWith(u"-DejaVuSans.ttf"_s));
    EXPECT_FALSE(service.linkPathFor(sans).has_value());
    EXPECT_EQ(service.activateFonts({sans, twin, sans}), (QList<bool>{true, true, true}));
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), (QSet<QString>{sans, twin}));
    EXPECT_EQ(service.links().size(), 2); // the repeated path was linked once
    // The next start finds each font's link again.
    EXPECT_EQ(FontActivationService().linkPathFor(twin), service.linkPathFor(twin));
}

TEST_F(Activation, MissingAndNonFontFilesFailWithAReason)
{
    FontActivationService service;
    const QString missing = library + u"/Missing.ttf"_s;
    const QString garbage = copyFont(kFonts + u"/Garbage.otf"_s, library + u"/Garbage.otf"_s);
    QList<bool> results;
    const QString output = capturedStdout([&] { results = service.activateFonts({missing, sans, garbage, library}); });
    EXPECT_EQ(results, (QList<bool>{false, true, false, false}));
    const QStringList lines = output.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3) << output.toStdString();
    EXPECT_EQ(lines[0], u"Failed to activate font at "_s + missing + u": No such file or directory"_s);
    EXPECT_EQ(lines[1], u"Failed to activate font at "_s + garbage + u": not a font file fontconfig can read"_s);
    EXPECT_EQ(lines[2], u"Failed to activate font at "_s + library + u": not a font file"_s);
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), QSet<QString>{sans});
    EXPECT_EQ(service.links().size(), 1); // the rejected link was taken back
}

TEST_F(Activation, AFontWhoseFileVanishedCanStillBeDeactivated)
{
    FontActivationService service;
    ASSERT_TRUE(service.activateFont(serif));
    QFile::remove(serif);
    // Removing the target leaves the link's folder as it was, so fontconfig's cache of it
    // still stands: the link must go for the font to disappear.
    ASSERT_TRUE(service.linkPathFor(serif).has_value());
    EXPECT_EQ(service.links().value(*service.linkPathFor(serif)), serif);
    EXPECT_TRUE(service.deactivateFont(serif));
    EXPECT_TRUE(service.links().isEmpty());
    QProcess process;
    process.start(u"fc-list"_s, {u"--format=%{file}\n"_s});
    ASSERT_TRUE(process.waitForFinished(60'000));
    EXPECT_FALSE(process.readAllStandardOutput().contains(QFile::encodeName(service.linkFolder())));

    // An unwritable font folder: activation fails with the reason, nothing breaks.
    const QString blocked = writeFile(testRoot() + u"/blocked"_s);
    FontActivationService nowhere(blocked + u"/Morvane"_s);
    const QString output = capturedStdout([&] { EXPECT_FALSE(nowhere.activateFont(sans)); });
    EXPECT_TRUE(output.startsWith(u"Failed to activate font at "_s + sans + u": "_s)) << output.toStdString();
}

TEST_F(Activation, BatchesFromSeveralThreadsAgree)
{
    QStringList fonts;
    for (int i = 0; i < 24; ++i)
        fonts.append(copyFont(kFonts + u"/Plain.ttf"_s, library + u"/Many/Font %1.ttf"_s.arg(i)));
    FontActivationService service;
    auto first = QtConcurrent::run([&] { return service.activateFonts(fonts.mid(0, 12)); });
    auto second = QtConcurrent::run([&] { return service.activateFonts(fonts.mid(12)); });
    EXPECT_EQ(first.result(), QList<bool>(12, true));
    EXPECT_EQ(second.result(), QList<bool>(12, true));
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), QSet<QString>(fonts.begin(), fonts.end()));
    service.removeLinks(service.links().keys());
    EXPECT_TRUE(fontsListedByFontconfig(service.linkFolder()).isEmpty());
}

TEST_F(Activation, BatchesFillFewShardsAndSingleFontsLandInSmallOnes)
{
    QStringList fonts;
    for (int i = 0; i < 100; ++i)
        fonts.append(copyFont(kFonts + u"/Plain.ttf"_s, library + u"/Many/Font %1.ttf"_s.arg(i)));
    FontActivationService service;
    ASSERT_EQ(service.activateFonts(fonts), QList<bool>(100, true));
    QHash<QString, int> perShard;
    for (const QString &link : service.links().keys())
        ++perShard[link.section(u'/', 0, -2)];
    // 100 links fill shards of 16 in turn, not a hundred shards.
    EXPECT_EQ(perShard.size(), (100 + FontActivationService::kShardCapacity - 1) / FontActivationService::kShardCapacity);
    EXPECT_EQ(std::ranges::count(perShard, FontActivationService::kShardCapacity), perShard.size() - 1);
    // A single font goes to the least full shard, whose rescan is the cheapest.
    EXPECT_TRUE(service.activateFont(sans));
    EXPECT_EQ(perShard.value(service.linkPathFor(sans)->section(u'/', 0, -2)), 100 % FontActivationService::kShardCapacity);
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()).size(), 101);

    // A batch in chunks of 8, as the store runs it, after a deactivation: it still fills
    // shards one after another.
    ASSERT_EQ(service.deactivateFonts(fonts.mid(0, 64)), QList<bool>(64, true));
    service.beginBatch();
    for (qsizetype start = 0; start < 64; start += 8)
        ASSERT_EQ(service.activateFonts(fonts.mid(start, 8)), QList<bool>(8, true));
    EXPECT_EQ(service.finishBatch(), QStringList());
    QSet<QString> batchShards;
    for (const QString &font : fonts.mid(0, 64))
        batchShards.insert(service.linkPathFor(font)->section(u'/', 0, -2));
    // (its first chunk may top up a part-full shard: emptied ones are gone)
    EXPECT_LE(batchShards.size(), 64 / FontActivationService::kShardCapacity + 1);
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()).size(), 101);

    // A link made twice (a crash mid-batch) is cleaned up by the next start.
    const QString extra = makeDir(service.linkFolder() + u"/ff"_s) + u"/dup-"_s + FontActivationService::linkNameFor(sans);
    makeSymlink(sans, extra);
    FontActivationService next;
    EXPECT_EQ(next.links().size(), 101);
    EXPECT_FALSE(QFile::exists(extra) || QFileInfo(extra).isSymLink());
}

namespace {

// What fontconfig says each of our links is: font path -> family.
QHash<QString, QString> familiesListedByFontconfig(const QString &linkFolder)
{
    QProcess process;
    process.start(u"fc-list"_s, {u"--format=%{file}|%{family[0]}\\n"_s});
    EXPECT_TRUE(process.waitForFinished(60'000));
    QHash<QString, QString> families;
    for (const QString &line : QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)) {
        const QString file = line.section(u'|', 0, 0);
        if (file.startsWith(linkFolder + u'/'))
            families.insert(TestSupport::fontOfLink(file), line.section(u'|', 1));
    }
    return families;
}

// Replaces a file the way editors and package managers do: a new file renamed over it.
void replaceFile(const QString &path, const QString &withCopyOf)
{
    const QString fresh = path + u".new"_s;
    ASSERT_TRUE(QFile::copy(withCopyOf, fresh));
    ASSERT_EQ(::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(path).constData()), 0);
}

} // namespace

// Files changed behind our back keep the link folder's time, so fontconfig trusts its
// old cache: the next start must set it right.
TEST_F(Activation, TheNextStartTellsFontconfigTheTruthAboutChangedFiles)
{
    const QString replaced = copyFont(kFonts + u"/Plain.ttf"_s, library + u"/Replaced.ttf"_s);
    const QString scrambled = copyFont(kFonts + u"/NoStyle.ttf"_s, library + u"/Scrambled.ttf"_s);
    const QString becameFolder = copyFont(kFonts + u"/Nameless.ttf"_s, library + u"/Folder.ttf"_s);
    const QString vanished = copyFont(kFonts + u"/Axes.ttf"_s, library + u"/Vanished.ttf"_s);
    QString linkOfReplaced;
    QStringList unchanged;
    {
        // The replaced font fills a shard with fonts that stay as they are, so only
        // its change can make that shard's cache stale.
        QStringList firstShard{replaced};
        for (qsizetype i = 1; i < FontActivationService::kShardCapacity; ++i)
            firstShard.append(copyFont(kFonts + u"/Plain.ttf"_s, library + u"/Same/Plain %1.ttf"_s.arg(i)));
        FontActivationService service;
        ASSERT_EQ(service.activateFonts(firstShard), QList<bool>(firstShard.size(), true));
        ASSERT_EQ(service.activateFonts({sans, scrambled, becameFolder, vanished}), QList<bool>(4, true));
        linkOfReplaced = *service.linkPathFor(replaced);
        ASSERT_NE(service.linkPathFor(sans)->section(u'/', 0, -2), linkOfReplaced.section(u'/', 0, -2));
        unchanged = firstShard.mid(1);
    }
    const QString links = FontActivationService().linkFolder();
    EXPECT_EQ(familiesListedByFontconfig(links).value(replaced), u"Morvane Test"_s);

    replaceFile(replaced, kFonts + u"/MacRoman.ttf"_s);
    writeFile(scrambled + u".new"_s, QByteArray(4096, '\x5a'));
    ASSERT_EQ(::rename(QFile::encodeName(scrambled + u".new"_s).constData(), QFile::encodeName(scrambled).constData()), 0);
    ASSERT_TRUE(QFile::remove(becameFolder));
    copyFont(kFonts + u"/Plain.ttf"_s, becameFolder + u"/Inside.ttf"_s);
    ASSERT_TRUE(QFile::remove(vanished));
    // Without the repair, every application is told stale things.
    EXPECT_EQ(familiesListedByFontconfig(links).value(replaced), u"Morvane Test"_s);

    // A killed process's lock on the replaced font's shard cache, and one of another folder.
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/fontconfig"_s;
    const QString shardHash = QString::fromLatin1(
        QCryptographicHash::hash(QFile::encodeName(linkOfReplaced.section(u'/', 0, -2)), QCryptographicHash::Md5).toHex());
    const QStringList ours{shardHash + u"-le64.cache-8.LCK"_s, shardHash + u"-le64.cache-8.NEW"_s,
                           shardHash + u"-le64.cache-8.TMP-Ab12Cd"_s};
    for (const QString &name : ours)
        writeFile(caches + u'/' + name, "stale");
    const QString foreign = writeFile(caches + u"/0123456789abcdef0123456789abcdef-le64.cache-8.LCK"_s, "theirs");

    FontActivationService next;
    const QString output = capturedStdout([&] { next.repairActivations(); });
    EXPECT_EQ(output, QString());
    const QHash<QString, QString> families = familiesListedByFontconfig(links);
    EXPECT_EQ(families.value(replaced), u"Café Ñandú"_s);
    QSet<QString> active{sans, replaced};
    active.unite(QSet<QString>(unchanged.begin(), unchanged.end()));
    EXPECT_EQ(QSet<QString>(families.keyBegin(), families.keyEnd()), active);
    EXPECT_EQ(next.recordedActivations(), active);
    for (const QString &name : ours)
        EXPECT_FALSE(QFile::exists(caches + u'/' + name)) << name.toStdString();
    EXPECT_TRUE(QFile::exists(foreign));

    // Repaired once: the next start leaves the caches as they are.
    const QStringList cachesBefore = QDir(caches).entryList(QDir::Files, QDir::Time);
    const QDateTime newest = QFileInfo(caches + u'/' + cachesBefore.first()).lastModified();
    FontActivationService().repairActivations();
    EXPECT_EQ(QFileInfo(caches + u'/' + QDir(caches).entryList(QDir::Files, QDir::Time).first()).lastModified(), newest);
    EXPECT_FALSE(QFileInfo::exists(QDir::homePath() + u"/.fontconfig"_s)); // never the deprecated folder
}

// Morvane's own process reads fonts through a configuration that leaves its links out
// (so 100,000 active fonts, or a pipe behind a link, cost its start nothing), while
// activation still writes the caches every other program reads.
TEST_F(Activation, OurOwnProcessLeavesOurLinksOutAndActivationDoesNot)
{
    const QByteArray before = qgetenv("FONTCONFIG_FILE");
    const QString linkFolder = FontActivationService::defaultLinkFolder();
    const QString config = OwnFontconfig::leaveOut(linkFolder, testRoot() + u"/config"_s);
    ASSERT_FALSE(config.isEmpty());
    EXPECT_EQ(qgetenv("FONTCONFIG_FILE"), QFile::encodeName(config));
    {
        // Made while the environment names our own configuration, as in the application.
        FontActivationService service;
        ASSERT_EQ(service.activateFonts({sans, serif}), QList<bool>(2, true));
    }
    OwnFontconfig::restoreEnvironment();
    EXPECT_EQ(qgetenv("FONTCONFIG_FILE"), before);
    EXPECT_EQ(fontsListedByFontconfig(linkFolder), (QSet<QString>{sans, serif}));

    QProcess ours;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"FONTCONFIG_FILE"_s, config);
    ours.setProcessEnvironment(environment);
    ours.start(u"fc-list"_s, {u"--format=%{file}\\n"_s});
    ASSERT_TRUE(ours.waitForFinished(60'000));
    const QString listed = QString::fromUtf8(ours.readAllStandardOutput());
    EXPECT_FALSE(listed.contains(linkFolder)) << listed.toStdString();
    EXPECT_TRUE(listed.contains(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s)) << "the system's fonts stay";
}

// Every program that uses fontconfig reads our folders at its start: with nothing active
// there are none, and the folders grow and shrink with the active fonts.
TEST_F(Activation, OurFoldersComeAndGoWithTheActiveFonts)
{
    const auto folders = [](const QString &root) {
        qsizetype count = 0;
        for (QDirIterator it(root, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories); it.hasNext(); it.next())
            ++count;
        return count;
    };
    // An older Morvane made all 256 top folders at its first start: they go at this one's.
    for (int i = 0; i < 256; ++i)
        makeDir(FontActivationService::defaultLinkFolder() + u"/%1"_s.arg(i, 2, 16, QChar(u'0')));
    FontActivationService service;
    EXPECT_TRUE(service.recordedActivations().isEmpty()); // a first start
    EXPECT_EQ(folders(service.linkFolder()), 0) << "nothing active, nothing to read";

    QStringList fonts;
    for (int i = 0; i < 40; ++i)
        fonts.append(copyFont(kFonts + u"/Plain.ttf"_s, library + u"/Many/Font %1.ttf"_s.arg(i)));
    ASSERT_EQ(service.activateFonts(fonts), QList<bool>(40, true));
    EXPECT_EQ(folders(service.linkFolder()), 1 + 3) << "one top folder and three shards of 16";
    ASSERT_EQ(service.deactivateFonts(fonts.mid(0, 20)), QList<bool>(20, true));
    EXPECT_EQ(folders(service.linkFolder()), 1 + 2) << "the emptied shard went";
    EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), QSet<QString>(fonts.cbegin() + 20, fonts.cend()));
    ASSERT_EQ(service.deactivateFonts(fonts.mid(20)), QList<bool>(20, true));
    EXPECT_EQ(folders(service.linkFolder()), 0);
    EXPECT_TRUE(fontsListedByFontconfig(service.linkFolder()).isEmpty());

    // The next start finds the same, and links again where it left off.
    ASSERT_TRUE(service.activateFont(sans));
    FontActivationService next;
    EXPECT_EQ(next.recordedActivations(), QSet<QString>{sans});
    EXPECT_TRUE(next.activateFont(serif));
    EXPECT_EQ(folders(next.linkFolder()), 2);
    EXPECT_EQ(fontsListedByFontconfig(next.linkFolder()), (QSet<QString>{sans, serif}));
}

// A font the configured fontconfig rejects (here the user's own rule against a family,
// as Debian's 70-no-bitmaps.conf rejects bitmap-only fonts) is listed by no program: it
// is turned down with its reason, not saved as active, in a batch and alone, and in a
// folder made ready ahead.
TEST_F(Activation, AFontTheConfigurationRejectsIsTurnedDownWithItsReason)
{
    writeFile(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/fontconfig/fonts.conf"_s,
              R"(<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig><include ignore_missing="yes">/etc/fonts/fonts.conf</include>
<selectfont><rejectfont><pattern><patelt name="family"><string>Morvane Test</string></patelt></pattern></rejectfont></selectfont>
</fontconfig>)");
    // A batch's answers, less the fonts its end turned down.
    const auto inBatch = [](FontActivationService &service, const QStringList &fonts) {
        service.beginBatch();
        QList<bool> results = service.activateFonts(fonts);
        const QStringList turnedDown = service.finishBatch();
        for (qsizetype i = 0; i < fonts.size(); ++i)
            results[i] = results[i] && !turnedDown.contains(fonts[i]);
        return results;
    };
    const struct
    {
        const char *how;
        std::function<QList<bool>(FontActivationService &, const QStringList &)> activate;
    } roads[] = {
        {"alone", [](FontActivationService &service, const QStringList &fonts) { return service.activateFonts(fonts); }},
        {"in a batch", inBatch},
        {"made ready ahead",
         [&](FontActivationService &service, const QStringList &fonts) {
             service.prepareActivation({fonts}, [] { return false; });
             return inBatch(service, fonts);
         }},
    };
    const QString second = copyFont(kDejaVu + u"DejaVuSans-Bold.ttf"_s, library + u"/Sans/DejaVuSans-Bold.ttf"_s);
    const QString rejected = copyFont(kFonts + u"/Plain.ttf"_s, library + u"/Sans/Plain.ttf"_s);
    for (const auto &road : roads) {
        FontActivationService service;
        QList<bool> results;
        const QString printed = capturedStdout([&] { results = road.activate(service, {sans, second, rejected}); });
        EXPECT_EQ(results, (QList<bool>{true, true, false})) << road.how;
        EXPECT_TRUE(printed.contains(u"Failed to activate font at "_s + rejected + u": the font configuration turns it down"_s))
            << road.how << ": " << printed.toStdString();
        EXPECT_EQ(service.takeFailureReasons().value(rejected), u"the font configuration hides it from every program"_s)
            << road.how;
        EXPECT_EQ(fontsListedByFontconfig(service.linkFolder()), (QSet<QString>{sans, second})) << road.how;
        EXPECT_FALSE(service.links().values().contains(rejected)) << road.how << ": not kept as active";
        service.deactivateFonts({sans, second});
    }
}

// A hard link's record is made before it and removed after it: a kill between leaves a
// record with no entry, or (a copy cut short, an entry made by hand) an entry with no
// record. Neither is an activation, and fontconfig lists neither after the next start.
TEST_F(Activation, EntriesAndRecordsAKillLeftAloneAreClearedAtTheNextStart)
{
    QString shard;
    {
        FontActivationService service;
        ASSERT_EQ(service.activateFonts({sans, serif}), QList<bool>(2, true));
        ASSERT_EQ(FontLinkFile::kindOf(QFile::encodeName(*service.linkPathFor(sans))), FontLinkFile::Kind::Hard);
        shard = service.linkPathFor(sans)->section(u'/', 0, -2);
    }
    // Deactivating serif was cut short after its entry went; activating plain, before it
    // had a record; a copy whose replacement was cut short.
    const QString serifLink = shard + u'/' + FontActivationService::linkNameFor(serif);
    ASSERT_TRUE(QFile::remove(serifLink));
    ASSERT_TRUE(QFile::copy(plain, shard + u'/' + FontActivationService::linkNameFor(plain)));
    ASSERT_TRUE(QFile::copy(plain, shard + u"/.new-leftover.ttf"_s));

    FontActivationService next;
    next.repairActivations();
    EXPECT_EQ(next.recordedActivations(), QSet<QString>{sans});
    EXPECT_EQ(fontsListedByFontconfig(next.linkFolder()), QSet<QString>{sans});
    EXPECT_EQ(QDir(shard).entryList(QDir::Files | QDir::System | QDir::Hidden),
              (QStringList{u'.' + FontActivationService::linkNameFor(sans), FontActivationService::linkNameFor(sans)}));
}
