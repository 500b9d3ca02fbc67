// SPDX-License-Identifier: GPL-3.0-or-later
// The window when something is wrong, driven as a user would: a source whose folder
// can't be reached, a message to dismiss, a job that stops answering, and closing while
// the latest changes can't be saved.
#include "WindowFixture.h"

#include "ui/window/MessageArea.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/window/ProcessingOverlay.h"
#include "ui/sidebar/SidebarModel.h"
#include "ui/sidebar/SidebarView.h"
#include "ui/window/UnavailableSourceView.h"

#include <QDialog>
#include <QPlainTextEdit>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QSemaphore>
#include <QSignalSpy>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;
using WindowFixture::openWindow;
using WindowFixture::saveOneSource;

namespace {

// Holds every call until the test lets one through, as a drive that stopped answering.
class StuckActivation : public InstantActivation
{
public:
    explicit StuckActivation(QSemaphore &gate) : m_gate(gate) {}
    QList<bool> activateFonts(const QStringList &paths) override
    {
        m_gate.acquire();
        return QList<bool>(paths.size(), true);
    }

private:
    QSemaphore &m_gate;
};

QString sourceRowDescription(MainWindow &window)
{
    SidebarModel *model = window.sidebar().sidebarModel();
    return model->data(model->index(0), Qt::AccessibleDescriptionRole).toString();
}

} // namespace

TEST(FaultViews, ASourceThatCantBeReachedSaysSoUntilItIsBack)
{
    const QString library = TestSupport::testRoot() + u"/Drive/Fonts"_s;
    saveOneSource(library); // the drive is not mounted yet
    auto window = openWindow();
    EXPECT_EQ(window->detail(), &window->unavailableView());
    EXPECT_EQ(window->unavailableView().message()->text(),
              u"Not available \u2014 the folder "_s + library + u" can't be reached."_s);
    EXPECT_EQ(sourceRowDescription(*window), u"Source, Not available, inactive"_s);

    TestSupport::writeFile(library + u"/Sans/a.ttf"_s);
    QTest::mouseClick(window->unavailableView().retryButton(), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->detail() == &window->browser(); }, 10'000));
    EXPECT_EQ(sourceRowDescription(*window), u"Source, 1 font, inactive"_s);
}

TEST(FaultViews, AMessageStaysUntilDismissed)
{
    auto window = openWindow();
    EXPECT_FALSE(window->messageArea().text().isVisible());
    window->state().setNotice(u"Couldn't use \u201cicon.png\u201d as the collection's icon: it is a folder."_s);
    EXPECT_TRUE(window->messageArea().text().isVisible());
    EXPECT_EQ(window->messageArea().text().text(), window->state().notice());
    EXPECT_FALSE(window->messageArea().showButton().isVisible()) << "no files to list";
    QTest::mouseClick(&window->messageArea().dismissButton(), Qt::LeftButton);
    EXPECT_FALSE(window->messageArea().text().isVisible());
    EXPECT_TRUE(window->state().notice().isEmpty());

    // A message about several files lists them behind "Show"; the next message replaces it.
    const QStringList files{u"/f/Broken.ttf — it is not a font file that fontconfig can read"_s,
                            u"/f/Torn.otf — the file is gone"_s};
    window->state().setNotice(u"2 of 120 fonts couldn't be activated."_s, files);
    ASSERT_TRUE(window->messageArea().showButton().isVisible());
    QTest::mouseClick(&window->messageArea().showButton(), Qt::LeftButton);
    QDialog *list = window->findChild<QDialog *>();
    ASSERT_TRUE(list);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(list));
    EXPECT_EQ(list->findChild<QPlainTextEdit *>()->toPlainText(), files.join(u'\n'));
    QTest::keyClick(list, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window->findChild<QDialog *>(); })) << "closed and gone";
    window->state().setNotice(u"Couldn't activate “x.ttf”: the file is gone"_s);
    EXPECT_FALSE(window->messageArea().showButton().isVisible());
}

TEST(FaultViews, AJobThatStopsAnsweringCanBeCancelledByKeyboardOrMouse)
{
    const QString library = TestSupport::makeDir(TestSupport::testRoot() + u"/Fonts"_s);
    for (int i = 0; i < 16; ++i)
        TestSupport::writeFile(library + u"/Batch/f%1.ttf"_s.arg(i, 2, 10, QChar(u'0')));
    saveOneSource(library);
    QSemaphore gate;
    auto window = openWindow(std::make_unique<StuckActivation>(gate));
    AppState &store = window->state();
    store.setStallTimeoutForTesting(200);
    ProcessingOverlay &overlay = window->overlay();

    for (const bool byKeyboard : {true, false}) {
        SCOPED_TRACE(byKeyboard ? "Escape" : "a click on Cancel");
        EXPECT_FALSE(overlay.cancelButton()->isVisible());
        store.toggleActivation(FontNode::folder(library + u"/Batch"_s));
        ASSERT_TRUE(QTest::qWaitFor([&] { return store.isProcessingStalled(); }, 10'000));
        EXPECT_TRUE(overlay.stalledNote()->isVisible());
        EXPECT_TRUE(overlay.cancelButton()->isVisible());
        EXPECT_TRUE(overlay.cancelButton()->hasFocus());
        TestSupport::capturedStdout([&] {
            if (byKeyboard)
                QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
            else
                QTest::mouseClick(overlay.cancelButton(), Qt::LeftButton);
            ASSERT_TRUE(QTest::qWaitFor([&] { return !store.isProcessing(); }, 10'000));
        });
        EXPECT_TRUE(store.activatedFonts().isEmpty());
        EXPECT_TRUE(window->messageArea().text().isVisible());
        gate.release(); // the stuck call ends, unheard
        ASSERT_TRUE(store.waitForBackgroundWork(10'000));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !overlay.isVisible(); }));
    }
}

TEST(FaultViews, ClosingWithChangesThatCantBeSavedAsksFirst)
{
    auto window = openWindow();
    // A folder where the file should be: the replacing rename fails, as on a full disk.
    const QString storage = PersistenceService::defaultStorageFolder();
    TestSupport::makeDir(storage + u"/collections.json/inside"_s);
    QSignalSpy failure(&window->state(), &AppState::saveFailureChanged);
    TestSupport::capturedStdout([&] {
        window->state().createCollection(u"Unsaved"_s);
        ASSERT_TRUE(failure.wait(10'000));
    });
    QStringList asked;
    bool quitAnyway = false;
    window->setQuitConfirmationForTesting([&](const QString &reason) {
        asked.append(reason);
        return quitAnyway;
    });

    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(asked, QStringList{u"Is a directory"_s});

    // The way is clear again: closing saves and asks nothing.
    ASSERT_TRUE(QDir(storage + u"/collections.json"_s).removeRecursively());
    EXPECT_TRUE(window->close());
    EXPECT_EQ(asked.size(), 1);
    EXPECT_EQ(PersistenceService().loadCollections().value(0).name, u"Unsaved"_s);
    EXPECT_EQ(MainWindow::plainReason(QString::fromLocal8Bit(std::strerror(ENOSPC))), u"the disk is full"_s);
}
