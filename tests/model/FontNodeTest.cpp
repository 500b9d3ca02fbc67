// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "model/FontNode.h"

#include <QSet>

using namespace Qt::StringLiterals;

TEST(FontNode, IdentityIsThePathAlone)
{
    const FontNode asFile = FontNode::fromPath(u"/Fonts/Sans"_s);
    const FontNode asFolder = FontNode::folder(u"/Fonts/Sans"_s);
    EXPECT_EQ(asFile, asFolder);
    EXPECT_EQ(QSet<FontNode>({asFile, asFolder}).size(), 1);
    EXPECT_NE(FontNode::fromPath(u"/Fonts/Sans"_s), FontNode::fromPath(u"/Fonts/sans"_s));
}

TEST(FontNode, FontExtensionRule)
{
    for (const QString &name : {u"A.TTF"_s, u"a.Otc"_s, u"x.dfont"_s, u"Font.OTF"_s, u"b.ttc"_s, u"my.font.otf"_s})
        EXPECT_TRUE(isFontFileName(name)) << name.toStdString();
    for (const QString &name : {u"x.woff2"_s, u"x.woff"_s, u"x.pfb"_s, u"x.ttf.bak"_s, u"README"_s, u"ttf"_s,
                                u"x."_s, u"x.dfonts"_s, u"x.tt"_s})
        EXPECT_FALSE(isFontFileName(name)) << name.toStdString();
    EXPECT_EQ(fontExtensions().size(), 5);
}

TEST(FontNode, BuiltFromAStoredPath)
{
    const FontNode font = FontNode::fromPath(u"/Library/My Fonts/Inter-Bold.OTF"_s);
    EXPECT_EQ(font.name(), u"Inter-Bold.OTF"_s);
    EXPECT_TRUE(font.isFont());
    EXPECT_FALSE(font.isDirectory());

    const FontNode folderLike = FontNode::fromPath(u"/Library/My Fonts/"_s);
    EXPECT_EQ(folderLike.id(), u"/Library/My Fonts"_s);
    EXPECT_EQ(folderLike.name(), u"My Fonts"_s);
    EXPECT_FALSE(folderLike.isFont());
    EXPECT_FALSE(folderLike.isDirectory());

    // The URL is derived from the path and leads back to it, whatever the characters.
    const QString odd = u"/tmp/a #b%20c\n\U0001F600.ttf"_s;
    EXPECT_EQ(FontNode::fromPath(odd).url().toLocalFile(), odd);
}
