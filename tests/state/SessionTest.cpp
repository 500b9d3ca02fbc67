// SPDX-License-Identifier: GPL-3.0-or-later
// Fonts active for this session only: never saved as active, gone after a quit, and
// after a crash and the next start; kept until logout when the user prefers, and
// gone once the session's runtime folder is (as logging out empties it).
#include "FaultTestSupport.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace TestSupport;
using namespace FaultTestSupport;

namespace {

bool idle(AppState &store)
{
    return QTest::qWaitFor([&] { return settled(store); }, 60'000);
}

struct SessionLibrary : ActiveLibrary
{
    SessionLibrary()
    {
        EXPECT_TRUE(QFile::copy(u"/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf"_s, extra));
    }
    QString extra = testRoot() + u"/Fonts/DejaVuSansMono.ttf"_s;
};

void preferUntilLogout(bool untilLogout)
{
    PersistenceService persistence;
    persistence.setSessionFontsLastUntilLogout(untilLogout);
    persistence.waitForWrites();
}

} // namespace

TEST(Session, AFontActiveForTheSessionIsNeverSavedAndGoesAtQuit)
{
    const SessionLibrary library;
    {
        Start start;
        const FontNode extra = FontNode::fontFile(library.extra);
        start.store.activateForSession(extra);
        ASSERT_TRUE(idle(start.store));
        EXPECT_EQ(start.store.activationState(extra), ActivationState::Session);
        EXPECT_TRUE(start.store.activatedFonts().contains(library.extra));
        EXPECT_EQ(listedByFontconfig(), library.set() + QSet<QString>{library.extra});
        start.persistence.waitForWrites();
        EXPECT_EQ(savedFonts(), library.set());
        EXPECT_TRUE(QFile::exists(AppState::sessionRecordPath()));

        // Its folder activated for good does not make it saved; the folder's state counts it.
        EXPECT_EQ(start.store.activationState(FontNode::folder(testRoot() + u"/Fonts"_s)), ActivationState::Active);
    }
    EXPECT_EQ(listedByFontconfig(), library.set()); // quitting took it away
    EXPECT_EQ(savedFonts(), library.set());
    EXPECT_FALSE(QFile::exists(AppState::sessionRecordPath()));
    Start next;
    EXPECT_EQ(next.store.activatedFonts(), library.set());
}

TEST(Session, ActivatedForGoodItIsAnOrdinaryActiveFont)
{
    const SessionLibrary library;
    {
        Start start;
        start.store.activateForSession(FontNode::fontFile(library.extra));
        ASSERT_TRUE(idle(start.store));
        start.store.setActivation({FontNode::fontFile(library.extra)}, true);
        ASSERT_TRUE(idle(start.store));
        EXPECT_EQ(start.store.activationState(FontNode::fontFile(library.extra)), ActivationState::Active);
        start.persistence.waitForWrites();
        EXPECT_EQ(savedFonts(), library.set() + QSet<QString>{library.extra});
    }
    EXPECT_EQ(listedByFontconfig(), library.set() + QSet<QString>{library.extra});
}

// What a crash or a kill leaves: the font's link in our folder, the session's record,
// and a saved set without it. Until quit, the next start takes it away; until logout,
// the next start in the same session keeps it (still not saved), and the first start
// after logging out (the runtime folder emptied) takes it away.
TEST(Session, ACrashLeavesNoSessionFontBehindPastItsSession)
{
    const struct
    {
        const char *name;
        bool untilLogout;
    } cases[] = {{"until quit", false}, {"until logout", true}};
    for (const auto &test : cases) {
        SCOPED_TRACE(test.name);
        const SessionLibrary library;
        preferUntilLogout(test.untilLogout);
        {
            Start crashed;
            crashed.store.activateForSession(FontNode::fontFile(library.extra));
            ASSERT_TRUE(idle(crashed.store));
            crashed.persistence.waitForWrites();
            // The links as the killed process left them: made again behind the quit.
            ASSERT_TRUE(FontActivationService().activateFont(library.extra));
        }
        ASSERT_TRUE(FontActivationService().activateFont(library.extra));
        const QSet<QString> withSession = library.set() + QSet<QString>{library.extra};
        ASSERT_EQ(listedByFontconfig(), withSession);
        if (!test.untilLogout) {
            // No record survives a quit in this mode; a kill leaves it, and a start ignores it.
            writeFile(AppState::sessionRecordPath(), "[\"" + library.extra.toUtf8() + "\"]");
            Start next;
            EXPECT_EQ(next.store.activatedFonts(), library.set());
            EXPECT_EQ(listedByFontconfig(), library.set());
            EXPECT_FALSE(QFile::exists(AppState::sessionRecordPath()));
        } else {
            {
                Start sameSession;
                EXPECT_EQ(sameSession.store.activatedFonts(), withSession);
                EXPECT_EQ(sameSession.store.activationState(FontNode::fontFile(library.extra)), ActivationState::Session);
                EXPECT_EQ(listedByFontconfig(), withSession);
                EXPECT_EQ(savedFonts(), library.set());
            } // quitting keeps it: it lasts until logout
            EXPECT_EQ(listedByFontconfig(), withSession);
            ASSERT_TRUE(QDir(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation)).removeRecursively());
            Start afterLogout;
            EXPECT_EQ(afterLogout.store.activatedFonts(), library.set());
            EXPECT_EQ(listedByFontconfig(), library.set());
        }
        // The next case starts afresh.
        FontActivationService().removeActivationsExcept({});
        ASSERT_TRUE(QDir(testRoot() + u"/Fonts"_s).removeRecursively());
    }
}
