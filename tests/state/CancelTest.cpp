// SPDX-License-Identifier: GPL-3.0-or-later
// Stopping a long batch half way with the real fontconfig: what was done stays done and
// saved, nothing else changed, and every program's font list agrees with the saved list.
#include "FaultTestSupport.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"

#include <QFile>
#include <QLocale>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using namespace FaultTestSupport;

TEST(Cancel, AStoppedBatchLeavesTheSavedListEqualToFontconfigs)
{
    const QString folder = makeDir(testRoot() + u"/Fonts"_s);
    for (int i = 0; i < 2000; ++i) {
        const QString path = folder + u"/f%1.ttf"_s.arg(i, 4, 10, QChar(u'0'));
        ASSERT_TRUE(QFile::copy(QStringLiteral(MORVANE_TEST_FONTS "/Plain.ttf"), path));
    }
    FontActivationService activation;
    PersistenceService persistence;
    AppState store(activation, persistence);
    store.addSource(folder);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isIndexing(); }, 60'000));
    // The user's Cancel, once a fifth is done.
    QObject::connect(&store, &AppState::processingProgressChanged, &store, [&] {
        if (store.processingProgress() >= 0.2)
            store.cancelBatch();
    });
    store.toggleActivation(FontNode::folder(folder));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }, 120'000));
    persistence.waitForWrites();

    const qsizetype done = store.activatedFonts().size();
    EXPECT_GE(done, 400);
    EXPECT_LT(done, 2000) << "it stopped";
    EXPECT_EQ(store.notice(), u"Stopped after activating %1 of 2,000 fonts; the others are as they were."_s
                                  .arg(QLocale().toString(done)));
    EXPECT_EQ(PersistenceService().loadActivatedFonts(), store.activatedFonts());
    EXPECT_EQ(listedByFontconfig(), store.activatedFonts());
}
