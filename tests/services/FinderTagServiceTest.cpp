// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "services/FinderTagService.h"

#include <QFile>

#include <sys/xattr.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

// The attribute exactly as it is on disk; "<none>" when there is none.
QByteArray rawTags(const QString &path)
{
    char buffer[1024];
    const ssize_t size = ::getxattr(QFile::encodeName(path).constData(), "user.xdg.tags", buffer, sizeof buffer);
    return size < 0 ? QByteArray("<none>") : QByteArray(buffer, size);
}

void writeRawTags(const QString &path, const QByteArray &value)
{
    ASSERT_EQ(::setxattr(QFile::encodeName(path).constData(), "user.xdg.tags", value.constData(),
                         static_cast<size_t>(value.size()), 0), 0);
}

} // namespace

TEST(FinderTags, SharesTagsWithFileManagersAndKeepsTheUsersOwn)
{
    const QString font = writeFile(testRoot() + u"/Font.otf"_s);
    // As an older file manager wrote it: ", " joins, stray spaces and empty parts.
    writeRawTags(font, "Red, Trial ,Client,,");
    FinderTagService service;
    EXPECT_EQ(service.tags(font), (QStringList{u"Red"_s, u"Trial"_s, u"Client"_s}));
    EXPECT_EQ(License::from(service.tags(font)), LicenseStatus::Trial);

    service.setLicenseStatus(LicenseStatus::Licensed, font);
    EXPECT_EQ(rawTags(font), QByteArray("Red,Client,Licensed"));
    EXPECT_EQ(service.tags(font), (QStringList{u"Red"_s, u"Client"_s, u"Licensed"_s}));

    service.setLicenseStatus(LicenseStatus::LicensedNonCommercial, font);
    EXPECT_EQ(rawTags(font), QByteArray("Red,Client,Licensed,Non-Commercial"));
    EXPECT_EQ(License::from(FinderTagService::readTags(font)), LicenseStatus::LicensedNonCommercial);

    service.setLicenseStatus(LicenseStatus::None, font);
    EXPECT_EQ(rawTags(font), QByteArray("Red,Client"));

    // Only licence tags: no status means no attribute at all, as file managers leave it.
    const QString other = writeFile(testRoot() + u"/Other.ttf"_s);
    writeRawTags(other, "Unlicensed,Public Domain");
    service.setLicenseStatus(LicenseStatus::None, other);
    EXPECT_EQ(rawTags(other), QByteArray("<none>"));
    service.setLicenseStatus(LicenseStatus::None, other); // removing what isn't there is fine
    EXPECT_EQ(service.tags(other), QStringList());

    // Non-ASCII tags survive as UTF-8.
    writeRawTags(other, "Kundenprojekt Ä,\xE2\x9C\x93");
    EXPECT_EQ(FinderTagService::readTags(other), (QStringList{u"Kundenprojekt Ä"_s, u"✓"_s}));
}

TEST(FinderTags, FoldersAndLinksAreTaggedLikeFiles)
{
    const QString folder = makeDir(testRoot() + u"/Client Fonts"_s);
    FinderTagService service;
    service.setLicenseStatus(LicenseStatus::OpenSource, folder);
    EXPECT_EQ(rawTags(folder), QByteArray("Open Source"));

    const QString target = writeFile(testRoot() + u"/Real.ttf"_s);
    makeSymlink(target, testRoot() + u"/Alias.ttf"_s);
    service.setLicenseStatus(LicenseStatus::PublicDomain, testRoot() + u"/Alias.ttf"_s);
    EXPECT_EQ(rawTags(target), QByteArray("Public Domain"));
}

TEST(FinderTags, ReadsAreCachedAndOnlyOwnWritesChangeTheCache)
{
    const QString font = writeFile(testRoot() + u"/Font.otf"_s);
    writeRawTags(font, "Unlicensed");
    FinderTagService service;
    EXPECT_EQ(service.tags(font), QStringList{u"Unlicensed"_s});
    writeRawTags(font, "Licensed"); // changed behind our back: not seen until the next start
    EXPECT_EQ(service.tags(font), QStringList{u"Unlicensed"_s});
    EXPECT_EQ(FinderTagService().tags(font), QStringList{u"Licensed"_s});

    // A missing file reads as empty, and that empty answer is cached too.
    const QString later = testRoot() + u"/Later.otf"_s;
    EXPECT_EQ(service.tags(later), QStringList());
    writeFile(later);
    writeRawTags(later, "Trial");
    EXPECT_EQ(service.tags(later), QStringList());
}

// Setting a status works on the tags the file has now, and leaves every other
// program's tag as the bytes it wrote.
TEST(FinderTags, SettingAStatusKeepsOtherProgramsTagsExactly)
{
    const QString font = writeFile(testRoot() + u"/Font.otf"_s);
    writeRawTags(font, "Caf\xe9,Trial"); // Latin-1 from another program: not UTF-8
    FinderTagService service;
    EXPECT_EQ(service.tags(font).size(), 2);
    service.setLicenseStatus(LicenseStatus::Licensed, font);
    EXPECT_EQ(rawTags(font), QByteArray("Caf\xe9,Licensed"));

    // The file manager adds a tag after our read: setting a status keeps it.
    writeRawTags(font, "Caf\xe9,Licensed,Client A");
    EXPECT_EQ(service.tags(font).size(), 2); // our cache has not seen it
    service.setLicenseStatus(LicenseStatus::OpenSource, font);
    EXPECT_EQ(rawTags(font), QByteArray("Caf\xe9,Client A,Open Source"));
    EXPECT_EQ(service.tags(font).last(), u"Open Source"_s);
    EXPECT_EQ(service.tags(font).at(1), u"Client A"_s);
}

TEST(FinderTags, FailedWritesPrintOneLineAndChangeNothing)
{
    FinderTagService service;
    const QString missing = testRoot() + u"/missing.otf"_s;
    QString output = capturedStdout([&] { service.setLicenseStatus(LicenseStatus::Trial, missing); });
    EXPECT_EQ(output, u"Failed to set Finder tags for "_s + missing + u": No such file or directory\n"_s);
    EXPECT_EQ(service.tags(missing), QStringList());

    // /proc has no user attributes at all, like FAT or many FUSE mounts.
    const QString noXattrs = u"/proc/self/comm"_s;
    EXPECT_EQ(service.tags(noXattrs), QStringList());
    output = capturedStdout([&] { service.setLicenseStatus(LicenseStatus::Licensed, noXattrs); });
    EXPECT_EQ(output, u"Failed to set Finder tags for /proc/self/comm: Operation not supported\n"_s);
    EXPECT_EQ(service.tags(noXattrs), QStringList()); // the row keeps showing the old status
}

TEST(LicenseStatus, TagsPrecedenceNamesAndColours)
{
    using enum LicenseStatus;
    EXPECT_EQ(License::allCases(), (QList<LicenseStatus>{Licensed, LicensedNonCommercial, Unlicensed, PartiallyLicensed,
                                                         PublicDomain, OpenSource, Trial, None}));
    EXPECT_EQ(License::allLicenseTags(),
              (QSet<QString>{u"Licensed"_s, u"Non-Commercial"_s, u"Unlicensed"_s, u"Partially Licensed"_s,
                             u"Public Domain"_s, u"Open Source"_s, u"Trial"_s}));
    EXPECT_EQ(License::from({u"Trial"_s, u"Licensed"_s}), Licensed);
    EXPECT_EQ(License::from({u"Non-Commercial"_s}), None);
    EXPECT_EQ(License::from({u"Non-Commercial"_s, u"Red"_s, u"Licensed"_s}), LicensedNonCommercial);
    EXPECT_EQ(License::from({u"licensed"_s}), None); // exact letter case
    EXPECT_EQ(License::from({u"Open Source"_s, u"Public Domain"_s}), PublicDomain);
    EXPECT_EQ(License::from({u"Trial"_s, u"Open Source"_s}), OpenSource);
    EXPECT_EQ(License::from({u"Partially Licensed"_s, u"Unlicensed"_s}), Unlicensed);
    EXPECT_EQ(License::rawValue(LicensedNonCommercial), u"Licensed + Non-Commercial"_s);
    EXPECT_EQ(License::rawValue(None), u"No Status"_s);
    EXPECT_EQ(License::tags(None), QStringList());
    // Every status reads back from its own tags.
    for (LicenseStatus status : License::allCases())
        EXPECT_EQ(License::from(License::tags(status)), status) << License::rawValue(status).toStdString();

}
