// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "discovery/FileSystemService.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <time.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

QStringList names(const QList<FontNode> &nodes)
{
    QStringList result;
    for (const FontNode &node : nodes)
        result.append(node.name().toString());
    return result;
}

QStringList paths(std::span<const FontNode> nodes, const QString &root)
{
    QStringList result;
    for (const FontNode &node : nodes)
        result.append(node.path().mid(root.size() + 1));
    return result;
}

// The order readdir gives for these names, which ties in the name sort must keep.
QStringList listingOrder(const QString &folder, const QStringList &wanted)
{
    QStringList result;
    for (const QString &name : QDir(folder).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted))
        if (wanted.contains(name))
            result.append(name);
    return result;
}

class ScanTest : public testing::Test
{
protected:
    QString root = makeDir(testRoot() + u"/Library"_s);
};

} // namespace

TEST_F(ScanTest, ChildrenAreFoldersWithFontsThenFontsEachSortedByName)
{
    for (const QString &name : {u"b.ttf"_s, u"A.ttf"_s, u"a.ttf"_s, u"Éclair.otf"_s, u"zed.OTF"_s, u"notes.txt"_s,
                                u"web.woff2"_s, u"noext"_s})
        writeFile(root + u'/' + name);
    writeFile(root + u"/Zeta/z.ttf"_s);
    writeFile(root + u"/alpha/Deep/d.ttc"_s);
    writeFile(root + u"/Specimens/sheet.pdf"_s);        // fontless: hidden from the tree
    writeFile(root + u"/Empty/Nested/readme.txt"_s);    // fontless below two levels
    writeFile(root + u"/.hidden/h.ttf"_s);               // hidden folder never listed
    writeFile(root + u"/.h.ttf"_s);                      // hidden file never listed

    FileSystemService service;
    const FileSystemService::ScanResult result = service.deepScan(root);
    EXPECT_TRUE(result.containsFonts);

    const QStringList children = names(service.children(root));
    const QStringList tie = listingOrder(root, {u"A.ttf"_s, u"a.ttf"_s});
    ASSERT_EQ(tie.size(), 2);
    EXPECT_EQ(children, (QStringList{u"alpha"_s, u"Zeta"_s, tie[0], tie[1], u"b.ttf"_s, u"Éclair.otf"_s, u"zed.OTF"_s}));
    EXPECT_TRUE(service.children(root).first().isDirectory());
    EXPECT_TRUE(service.children(root).last().isFont());

    EXPECT_EQ(service.containsFonts(root + u"/Specimens"_s), false);
    EXPECT_EQ(service.containsFonts(root + u"/Empty"_s), false);
    EXPECT_EQ(service.containsFonts(root + u"/alpha"_s), true);
    EXPECT_FALSE(service.containsFonts(root + u"/.hidden"_s).has_value());
    EXPECT_FALSE(service.exists(root + u"/.h.ttf"_s));
    // Existence covers every folder and font the scan met, fontless folders too.
    EXPECT_TRUE(service.exists(root + u"/Specimens"_s));
    EXPECT_TRUE(service.exists(root + u"/alpha/Deep/d.ttc"_s));
    EXPECT_TRUE(service.exists(root + u"/zed.OTF"_s));
    EXPECT_FALSE(service.exists(root + u"/zed.otf"_s));
    EXPECT_FALSE(service.exists(root + u"/.hidden"_s));
    EXPECT_FALSE(service.exists(root + u"/.hidden/h.ttf"_s));

    // All fonts: every depth, in the order met, never sorted; no duplicates.
    const QStringList all = paths(result.allFonts, root);
    EXPECT_EQ(all.size(), 7);
    EXPECT_EQ(QSet<QString>(all.begin(), all.end()).size(), 7);
    EXPECT_TRUE(all.contains(u"alpha/Deep/d.ttc"_s));
    EXPECT_EQ(paths(service.allFonts(root + u"/alpha"_s), root), QStringList{u"alpha/Deep/d.ttc"_s});
    EXPECT_EQ(service.fontCount(), 7);
}

TEST_F(ScanTest, SymbolicLinksAreJudgedByNameAndNeverDescended)
{
    const QString outside = makeDir(testRoot() + u"/Outside"_s);
    writeFile(outside + u"/far.ttf"_s);
    writeFile(root + u"/real.otf"_s);
    makeSymlink(outside, root + u"/LinkedFolder"_s);
    makeSymlink(outside + u"/far.ttf"_s, root + u"/linked.ttf"_s);
    makeSymlink(root + u"/nowhere.ttf"_s, root + u"/dangling.ttf"_s);
    makeSymlink(root, root + u"/Loop"_s); // a cycle, were links followed
    // Links to folders in a font's name are no fonts, however they get there.
    makeSymlink(outside, root + u"/dir_link.ttf"_s);
    makeSymlink(u".."_s, root + u"/parent.ttf"_s);
    makeSymlink(root + u"/dir_link.ttf"_s, root + u"/link_to_link.otf"_s);
    makeSymlink(root + u"/self_a.ttf"_s, root + u"/self_b.ttf"_s); // a loop: dangling, judged by name
    makeSymlink(root + u"/self_b.ttf"_s, root + u"/self_a.ttf"_s);
    // A FIFO is never a font, under its own name or a link's: reading one waits for ever.
    ASSERT_EQ(::mkfifo(QFile::encodeName(root + u"/pipe.ttf"_s).constData(), 0600), 0);
    makeSymlink(root + u"/pipe.ttf"_s, root + u"/to_pipe.otf"_s);
    makeSymlink(u"/dev/null"_s, root + u"/device.ttf"_s);

    FileSystemService service;
    service.deepScan(root);
    EXPECT_EQ(names(service.children(root)), (QStringList{u"dangling.ttf"_s, u"linked.ttf"_s, u"real.otf"_s,
                                                         u"self_a.ttf"_s, u"self_b.ttf"_s}));
    EXPECT_FALSE(service.hasChildrenEntry(root + u"/LinkedFolder"_s));
    EXPECT_FALSE(service.visitedDirectories().contains(root + u"/Loop"_s));
    EXPECT_TRUE(service.exists(root + u"/linked.ttf"_s));
    // The node keeps the link's own path, not the target's.
    EXPECT_EQ(service.children(root).at(1).path(), root + u"/linked.ttf"_s);
}

TEST_F(ScanTest, EachFolderIsScannedOncePerService)
{
    writeFile(root + u"/Sub/one.ttf"_s);
    writeFile(root + u"/top.ttf"_s);
    FileSystemService service;
    // The inner folder first, as when it is a source of its own or a collection member.
    const auto inner = service.deepScan(root + u"/Sub"_s);
    EXPECT_EQ(inner.allFonts.size(), 1u);
    QFile::remove(root + u"/Sub/one.ttf"_s); // later scans must not look at the disk again

    const auto outer = service.deepScan(root);
    const QStringList outerFonts = paths(outer.allFonts, root);
    EXPECT_EQ(outerFonts.size(), 2);
    EXPECT_EQ(QSet<QString>({u"Sub/one.ttf"_s, u"top.ttf"_s}), QSet<QString>(outerFonts.begin(), outerFonts.end()));
    EXPECT_EQ(names(service.children(root)), (QStringList{u"Sub"_s, u"top.ttf"_s}));
    EXPECT_EQ(paths(service.allFonts(root + u"/Sub"_s), root), QStringList{u"Sub/one.ttf"_s});

    writeFile(root + u"/late.ttf"_s);
    EXPECT_EQ(service.deepScan(root).allFonts.size(), 2u);
    EXPECT_EQ(service.deepScan(root + u'/').allFonts.size(), 2u); // a trailing slash is the same folder
}

TEST_F(ScanTest, AllFoldersReadsOnlyTheCacheInStackOrder)
{
    for (const QString &path : {u"A/A1/f.ttf"_s, u"A/A2/f.ttf"_s, u"B/B1/f.ttf"_s, u"B/f.ttf"_s, u"C/none.txt"_s})
        writeFile(root + u'/' + path);
    FileSystemService service;
    EXPECT_TRUE(service.allFolders(root).isEmpty()); // never scanned
    service.deepScan(root);
    EXPECT_EQ(names(service.allFolders(root)), (QStringList{u"A"_s, u"B"_s, u"B1"_s, u"A1"_s, u"A2"_s}));
    EXPECT_TRUE(service.allFolders(root + u"/Nope"_s).isEmpty());
}

TEST_F(ScanTest, UnreadableVanishedAndTooDeepFoldersAreEmptyAndTheScanGoesOn)
{
    writeFile(root + u"/Keep/k.ttf"_s);
    writeFile(root + u"/Vanish/v.ttf"_s);
    writeFile(root + u"/Locked/l.ttf"_s);
    const bool canLock = ::geteuid() != 0; // root reads through any permission bits
    if (canLock)
        QFile::setPermissions(root + u"/Locked"_s, QFileDevice::Permissions());

    // Remove a folder between its parent's listing and its own, by polling as the
    // scan does: the first poll inside the parent's entry loop happens after listing.
    int polls = 0;
    const QString vanishing = root + u"/Vanish"_s;
    FileSystemService service(CancellationToken::fromCheck([&] {
                                  if (++polls == 2)
                                      QDir(vanishing).removeRecursively();
                                  return false;
                              }),
                              QLocale(), FileSystemService::Listing::Inline);
    const auto result = service.deepScan(root);
    QFile::setPermissions(root + u"/Locked"_s, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);

    EXPECT_TRUE(service.hasChildrenEntry(vanishing));
    EXPECT_EQ(service.containsFonts(vanishing), false);
    EXPECT_FALSE(service.exists(vanishing));
    EXPECT_TRUE(service.exists(root + u"/Locked"_s));
    if (canLock) {
        EXPECT_EQ(service.containsFonts(root + u"/Locked"_s), false);
    }
    EXPECT_TRUE(service.children(root).contains(FontNode::folder(root + u"/Keep"_s)));
    EXPECT_TRUE(result.containsFonts);

    // A file given as a folder cannot be listed: empty and fontless, no crash.
    const QString file = writeFile(root + u"/plain.ttf"_s);
    FileSystemService other;
    EXPECT_FALSE(other.deepScan(file).containsFonts);
    EXPECT_EQ(other.containsFonts(file), false);
}

TEST_F(ScanTest, PathsLongerThanTheSystemAllowsStopTheBranchNotTheScan)
{
    writeFile(root + u"/shallow.ttf"_s);
    // Build a chain deeper than PATH_MAX with relative calls, a font at every level.
    const QByteArray segment(200, 'd');
    int fd = ::open(QFile::encodeName(root).constData(), O_DIRECTORY | O_RDONLY);
    ASSERT_GE(fd, 0);
    for (int level = 0; level < 30; ++level) {
        ASSERT_EQ(::mkdirat(fd, segment.constData(), 0755), 0);
        const int next = ::openat(fd, segment.constData(), O_DIRECTORY | O_RDONLY);
        ::close(fd);
        ASSERT_GE(next, 0);
        fd = next;
        ::close(::openat(fd, "f.ttf", O_CREAT | O_WRONLY, 0644));
    }
    ::close(fd);

    FileSystemService service;
    const auto result = service.deepScan(root);
    EXPECT_TRUE(result.containsFonts);
    // Levels whose paths fit are seen; the ones beyond PATH_MAX are not.
    EXPECT_GT(result.allFonts.size(), 10u);
    EXPECT_LT(result.allFonts.size(), 31u);
    EXPECT_TRUE(service.children(root).contains(FontNode::fontFile(root + u"/shallow.ttf"_s)));

    // Paths this long can't be removed by path either: take the chain down level by level.
    std::vector<int> levels{::open(QFile::encodeName(root).constData(), O_DIRECTORY | O_RDONLY)};
    for (int level = 0; level < 30; ++level)
        levels.push_back(::openat(levels.back(), segment.constData(), O_DIRECTORY | O_RDONLY));
    ::unlinkat(levels.back(), "f.ttf", 0);
    for (size_t level = levels.size() - 1; level > 0; --level) {
        ::close(levels[level]);
        ::unlinkat(levels[level - 1], "f.ttf", 0);
        EXPECT_EQ(::unlinkat(levels[level - 1], segment.constData(), AT_REMOVEDIR), 0);
    }
    ::close(levels.front());
}

TEST_F(ScanTest, OddNamesKeepTheirPathsAndInvalidUtf8IsSkippedAlone)
{
    const QStringList odd{u"with space.ttf"_s, u"quote\".otf"_s, u"it's.ttf"_s, u"new\nline.ttf"_s,
                          u"\U0001F600 emoji.otf"_s, u"back\\slash.ttc"_s, u"\uFEFFbom.ttf"_s,
                          u"\uFEFFdir/inner.otf"_s};
    for (const QString &name : odd)
        writeFile(root + u'/' + name);
    const QByteArray invalid = QByteArray(QFile::encodeName(root) + "/bad\xff\xfe.ttf");
    ::close(::open(invalid.constData(), O_CREAT | O_WRONLY, 0644));
    const QByteArray invalidFolder = QByteArray(QFile::encodeName(root) + "/Bad\xc3(");
    ASSERT_EQ(::mkdir(invalidFolder.constData(), 0755), 0);
    ::close(::open(QByteArray(invalidFolder + "/x.ttf").constData(), O_CREAT | O_WRONLY, 0644));

    FileSystemService service;
    const auto result = service.deepScan(root);
    EXPECT_EQ(result.allFonts.size(), static_cast<size_t>(odd.size()));
    for (const FontNode &font : result.allFonts)
        EXPECT_TRUE(QFile::exists(font.path())) << font.path().toStdString();
    // A name that starts with a byte-order mark keeps it, and its folder is scanned.
    EXPECT_TRUE(service.children(root + u"/\uFEFFdir"_s).size() == 1);
    EXPECT_EQ(service.children(root).size(), odd.size());
    // Qt can't name these to remove them with the test's folder.
    ::unlink(QByteArray(invalidFolder + "/x.ttf").constData());
    ::rmdir(invalidFolder.constData());
    ::unlink(invalid.constData());
}

TEST_F(ScanTest, CancellationCachesNothingForTheFoldersItInterrupts)
{
    writeFile(root + u"/A/a1.ttf"_s);
    writeFile(root + u"/A/a2.ttf"_s);
    writeFile(root + u"/B/b1.ttf"_s);
    writeFile(root + u"/B/b2.ttf"_s);

    FileSystemService before(CancellationToken::fromCheck([] { return true; }));
    const auto none = before.deepScan(root);
    EXPECT_FALSE(none.containsFonts);
    EXPECT_TRUE(none.allFonts.empty());
    EXPECT_FALSE(before.hasChildrenEntry(root));
    EXPECT_TRUE(before.visitedDirectories().isEmpty());

    // Cancel at every possible poll in turn: the root is never cached half-filled, and
    // whatever was cached is complete.
    FileSystemService whole;
    const size_t total = whole.deepScan(root).allFonts.size();
    for (int stopAt = 1; stopAt < 12; ++stopAt) {
        int polls = 0;
        FileSystemService service(CancellationToken::fromCheck([&] { return ++polls >= stopAt; }));
        const auto result = service.deepScan(root);
        if (service.hasChildrenEntry(root)) {
            EXPECT_EQ(result.allFonts.size(), total) << stopAt;
            continue;
        }
        EXPECT_TRUE(result.allFonts.empty()) << stopAt;
        for (const QString &sub : QStringList{root + u"/A"_s, root + u"/B"_s}) {
            if (service.hasChildrenEntry(sub)) {
                EXPECT_EQ(service.allFonts(sub).size(), 2u) << stopAt;
            }
        }
    }

    const CancellationToken token = CancellationToken::create();
    FileSystemService shared(token);
    token.cancel();
    EXPECT_FALSE(shared.deepScan(root).containsFonts);
}

TEST_F(ScanTest, ExistenceRecordingAndFreezing)
{
    writeFile(root + u"/f.ttf"_s);
    const QString member = writeFile(testRoot() + u"/elsewhere.otf"_s);
    makeSymlink(testRoot() + u"/gone.otf"_s, testRoot() + u"/dangling.otf"_s);

    FileSystemService service;
    service.deepScan(root);
    service.recordExistence(member);
    service.recordExistence(testRoot() + u"/missing.otf"_s);
    service.recordExistence(testRoot() + u"/dangling.otf"_s);
    EXPECT_TRUE(service.exists(member));
    EXPECT_FALSE(service.exists(testRoot() + u"/missing.otf"_s));
    EXPECT_FALSE(service.exists(testRoot() + u"/dangling.otf"_s));
    EXPECT_TRUE(service.insertPreScannedRoot(root));
    EXPECT_FALSE(service.insertPreScannedRoot(root));

    service.freeze();
    EXPECT_TRUE(service.isFrozen());
    EXPECT_EQ(service.deepScan(root).allFonts.size(), 1u); // reading the cache is allowed
    EXPECT_DEATH(service.recordExistence(member), "frozen");
    EXPECT_DEATH(service.deepScan(testRoot()), "frozen");
    EXPECT_DEATH(service.insertPreScannedRoot(testRoot()), "frozen");
}

TEST_F(ScanTest, ReadingAheadBuildsTheSameCachesAsReadingInline)
{
    // Wide and deep enough for the reader to run ahead and batch, with an inner
    // folder scanned first so the reader's listings of it must be skipped.
    for (int a = 0; a < 12; ++a)
        for (int b = 0; b < 6; ++b)
            for (int f = 0; f < 3; ++f)
                writeFile(root + u"/F%1/G%2/H/font %3.otf"_s.arg(a).arg(b).arg(f));
    writeFile(root + u"/F3/none.txt"_s);
    auto build = [this](FileSystemService::Listing mode) {
        auto service = std::make_unique<FileSystemService>(CancellationToken(), QLocale(), mode);
        service->deepScan(root + u"/F5/G2"_s);
        service->deepScan(root);
        return service;
    };
    const auto ahead = build(FileSystemService::Listing::Ahead);
    const auto inline_ = build(FileSystemService::Listing::Inline);
    ASSERT_EQ(ahead->folderCount(), inline_->folderCount());
    EXPECT_EQ(paths(ahead->allFonts(root), root), paths(inline_->allFonts(root), root));
    EXPECT_EQ(ahead->allFonts(root).size(), 12u * 6u * 3u);
    for (const FontNode &folder : inline_->allFolders(root)) {
        EXPECT_EQ(ahead->children(folder.path()), inline_->children(folder.path())) << folder.path().toStdString();
        EXPECT_EQ(paths(ahead->allFonts(folder.path()), root), paths(inline_->allFonts(folder.path()), root));
    }
}

namespace {

QSet<QString> fontSet(std::span<const FontNode> fonts, const QString &root)
{
    const QStringList list = paths(fonts, root);
    return {list.cbegin(), list.cend()};
}

} // namespace

// A refresh reads only the folders whose entries changed and takes the rest from the
// previous scan, and what it builds is what a scan reading everything builds.
TEST_F(ScanTest, ARescanReadsOnlyTheFoldersThatChangedAndBuildsWhatAFullScanBuilds)
{
    const auto write = [this](const QString &relative) { writeFile(root + u'/' + relative); };
    const auto move = [this](const QString &from, const QString &to) {
        ASSERT_TRUE(QDir().rename(root + u'/' + from, root + u'/' + to)) << from.toStdString();
    };
    const struct
    {
        const char *what;
        std::function<void()> change;
        qsizetype foldersRead;
    } changes[] = {
        {"nothing", [] {}, 0},
        {"a font added deep down", [&] { write(u"Sans/Roman/Bold.ttf"_s); }, 1},
        {"a first font in a folder that had none", [&] { write(u"Specimens/Proof.otf"_s); }, 1},
        {"the last font of a folder removed", [&] { QFile::remove(root + u"/Mono/Only.ttf"_s); }, 1},
        {"a folder removed", [&] { QDir(root + u"/Serif/Italic"_s).removeRecursively(); }, 1},
        // Both parents, and the folder under its new name, which no scan has seen.
        {"a folder renamed inside the source", [&] { move(u"Sans/Roman"_s, u"Upright"_s); }, 3},
        // The same name over other content: its subfolders are not the old ones. Read:
        // the source, the old folder and its two under their new path, the new one and its one.
        {"a folder replaced by another of the same name", [&] {
             move(u"Serif"_s, u"Serif.old"_s);
             write(u"Incoming/Regular/Other.ttf"_s);
             move(u"Incoming"_s, u"Serif"_s);
         }, 6},
        {"a licence tag on a font", [&] {
             const QByteArray tags = "Licensed";
             ASSERT_EQ(::setxattr(QFile::encodeName(root + u"/Sans/Regular.ttf"_s).constData(), "user.xdg.tags",
                                  tags.constData(), size_t(tags.size()), 0), 0);
         }, 0},
    };
    for (const auto &c : changes) {
        write(u"Sans/Regular.ttf"_s);
        write(u"Sans/Roman/Book.ttf"_s);
        write(u"Serif/Italic/It.otf"_s);
        write(u"Serif/Regular/Text.otf"_s);
        write(u"Mono/Only.ttf"_s);
        write(u"Specimens/readme.txt"_s);
        ageFolders(root);
        auto before = std::make_shared<FileSystemService>(CancellationToken(), QLocale(), FileSystemService::Listing::Inline);
        before->deepScan(root);
        before->freeze();

        c.change();
        FileSystemService after(CancellationToken(), QLocale(), FileSystemService::Listing::Inline);
        after.reuseUnchanged(before);
        after.deepScan(root);
        FileSystemService whole;
        whole.deepScan(root);

        EXPECT_EQ(after.foldersRead(), c.foldersRead) << c.what;
        EXPECT_EQ(after.folderCount(), whole.folderCount()) << c.what;
        EXPECT_EQ(fontSet(after.allFonts(root), root), fontSet(whole.allFonts(root), root)) << c.what;
        QStringList folders{root};
        for (const FontNode &folder : whole.allFolders(root))
            folders.append(folder.path());
        for (const QString &folder : folders) {
            EXPECT_EQ(names(after.children(folder)), names(whole.children(folder))) << c.what << ": " << folder.toStdString();
            EXPECT_EQ(fontSet(after.allFonts(folder), root), fontSet(whole.allFonts(folder), root)) << c.what;
        }
        QDir(root).removeRecursively();
        makeDir(root);
    }
}

// A folder changed within the file system's coarsest tick of its listing may change
// again without its time moving: it is read again rather than trusted.
TEST_F(ScanTest, AFolderListedJustAfterItChangedIsReadAgain)
{
    writeFile(root + u"/Sans/Regular.ttf"_s);
    auto before = std::make_shared<FileSystemService>(CancellationToken(), QLocale(), FileSystemService::Listing::Inline);
    before->deepScan(root);
    before->freeze();
    // Written in the same tick: the folder's time may well not have moved.
    writeFile(root + u"/Sans/Bold.ttf"_s);
    FileSystemService after(CancellationToken(), QLocale(), FileSystemService::Listing::Inline);
    after.reuseUnchanged(before);
    after.deepScan(root);
    EXPECT_EQ(after.foldersRead(), 2);
    EXPECT_EQ(names(after.children(root + u"/Sans"_s)), (QStringList{u"Bold.ttf"_s, u"Regular.ttf"_s}));
}
