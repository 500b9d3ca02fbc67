// SPDX-License-Identifier: GPL-3.0-or-later
#include "StartupReport.h"

#include "state/AppState.h"
#include "ui/window/MainWindow.h"

#include <QApplication>
#include <QFile>
#include <QTimer>

#include <cstdio>

namespace {

// VmRSS from /proc, in mebibytes.
double residentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    }
    return -1;
}

class FirstPaint : public QObject
{
public:
    FirstPaint(MainWindow &window, QElapsedTimer sinceStart)
        : QObject(&window)
        , m_window(window)
        , m_sinceStart(sinceStart)
    {
        qApp->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && watched->isWidgetType() &&
            static_cast<QWidget *>(watched)->window() == &m_window) {
            qApp->removeEventFilter(this);
            // Measured once this paint pass is over.
            QTimer::singleShot(0, this, &FirstPaint::painted);
        }
        return false;
    }

private:
    void painted()
    {
        std::printf("first-paint-ms: %.1f\n", static_cast<double>(m_sinceStart.nsecsElapsed()) / 1e6);
        std::fflush(stdout);
        // Whichever ends last, the scan or the restore, makes the library shown.
        connect(&m_window.state(), &AppState::isIndexingChanged, this, &FirstPaint::maybeShown);
        connect(&m_window.state(), &AppState::isProcessingChanged, this, &FirstPaint::maybeShown);
        maybeShown();
    }

    void maybeShown()
    {
        if (m_reported || m_window.state().isIndexing() || m_window.state().isProcessing())
            return;
        m_reported = true;
        // The scanned library's columns lay out and paint, and the catalogue's background
        // work ends, before memory is read: the window as it will stay.
        QTimer::singleShot(0, this, [this] {
            m_window.state().waitForCatalogue(600'000);
            std::printf("rss-mb: %.1f\n", residentMegabytes());
            std::fflush(stdout);
            QApplication::quit();
        });
    }

    MainWindow &m_window;
    QElapsedTimer m_sinceStart;
    bool m_reported = false;
};

} // namespace

namespace StartupReport {

bool requested()
{
    return qEnvironmentVariableIsSet("MORVANE_STARTUP_REPORT");
}

void watch(MainWindow &window, QElapsedTimer sinceStart)
{
    new FirstPaint(window, sinceStart);
}

} // namespace StartupReport
