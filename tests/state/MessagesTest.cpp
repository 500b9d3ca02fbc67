// SPDX-License-Identifier: GPL-3.0-or-later
// What goes wrong reaches the window in words, through the store's notice, with the
// real fontconfig, real extended attributes and real files: one table row per trouble.
#include "TestSupport.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"
#include "services/LicenseStatus.h"
#include "state/AppState.h"

#include <QFile>
#include <QImage>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;
using namespace TestSupport;

TEST(Messages, WhatGoesWrongReachesTheWindowInWords)
{
    const QString fonts = makeDir(testRoot() + u"/Fonts"_s);
    ASSERT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s, fonts + u"/Good.ttf"_s));
    writeFile(fonts + u"/Broken.ttf"_s, QByteArray(4096, 'x'));
    writeFile(fonts + u"/Torn.otf"_s, "OTTO");
    const QString notAnImage = writeFile(testRoot() + u"/star.png"_s, "not an image");
    FontActivationService activation;
    PersistenceService persistence;
    AppState store(activation, persistence);
    store.setIconDecoder([](const QByteArray &bytes, const QString &) { return QImage::fromData(bytes); });
    const auto batch = [&](const QStringList &names) {
        QList<FontNode> nodes;
        for (const QString &name : names)
            nodes.append(FontNode::fontFile(fonts + u'/' + name));
        store.setActivation(nodes, true);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }, 60'000));
    };
    const QString unreadable = u"it is not a font file that fontconfig can read"_s;

    const struct
    {
        const char *trouble;
        std::function<void()> act;
        QString notice;
        QStringList details;
    } cases[] = {
        {"one font fontconfig can't read", [&] { batch({u"Broken.ttf"_s}); },
         u"Couldn't activate \u201cBroken.ttf\u201d: "_s + unreadable, {}},
        {"a batch with failures among good fonts", [&] { batch({u"Broken.ttf"_s, u"Good.ttf"_s, u"Torn.otf"_s}); },
         u"2 of 3 fonts couldn't be activated."_s,
         {fonts + u"/Broken.ttf \u2014 "_s + unreadable, fonts + u"/Torn.otf \u2014 "_s + unreadable}},
        {"a file that is gone", [&] { batch({u"Gone.ttf"_s}); }, u"Couldn't activate \u201cGone.ttf\u201d: the file is gone"_s, {}},
        {"a file system that keeps no tags", [&] { store.setLicenseStatus(LicenseStatus::Licensed, u"/proc/self/status"_s); },
         u"This file system doesn't keep tags, so the licence status of \u201cstatus\u201d can't be kept."_s, {}},
        {"an icon that is no image",
         [&] {
             store.createCollection(u"Work"_s);
             store.setCollectionIcon(store.collections().constFirst().id, notAnImage);
         },
         u"Couldn't use \u201cstar.png\u201d as the collection's icon: it is not an image Morvane can read."_s, {}},
    };
    for (const auto &c : cases) {
        store.dismissNotice();
        c.act();
        EXPECT_EQ(store.notice(), c.notice) << c.trouble;
        EXPECT_EQ(store.noticeDetails(), c.details) << c.trouble;
    }
    // The good font of the mixed batch is active all the same.
    EXPECT_EQ(store.activatedFonts(), QSet<QString>{fonts + u"/Good.ttf"_s});
}
