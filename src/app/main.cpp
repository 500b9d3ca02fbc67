// SPDX-License-Identifier: GPL-3.0-or-later
#include "Assembly.h"
#include "AppMenus.h"
#include "SingleInstance.h"
#include "StartupReport.h"

#include "services/Translations.h"
#include "services/FontActivationService.h"
#include "services/OwnFontconfig.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/window/MainWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QTimer>
#include <QFontDatabase>
#include <QStandardPaths>
#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

int g_signalPipe[2] = {-1, -1};

void onQuitSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(g_signalPipe[0], &byte, 1);
}

// Ctrl+C in the terminal that ran `make run`, or a session logout, quits through the
// event loop like closing the window does, so nothing is cut off mid-save.
void quitOnSignals(QApplication &app)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(g_signalPipe[1], QSocketNotifier::Read, &app);
    QObject::connect(notifier, &QSocketNotifier::activated, &app, [] {
        char byte = 0;
        [[maybe_unused]] const ssize_t read = ::read(g_signalPipe[1], &byte, 1);
        QApplication::quit();
    });
    struct sigaction action{};
    action.sa_handler = onQuitSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

} // namespace

int main(int argc, char *argv[])
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    OwnFontconfig::leaveOut(FontActivationService::defaultLinkFolder(),
                            QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/Morvane"_s);
    QApplication app(argc, argv);
    QApplication::setApplicationName(u"Morvane"_s);
    QApplication::setOrganizationName(u"Morvane"_s);
    QApplication::setApplicationVersion(QStringLiteral(MORVANE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral(MORVANE_APP_ID)); // names data/<id>.desktop
    quitOnSignals(app);
    Translations::install(app);

    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("main", "Browse, activate and organise folders of fonts."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(u"paths"_s, QCoreApplication::translate("main", "Font files to show, or folders to add as sources."),
                                 u"[FILE|FOLDER…]"_s);
    parser.process(app); // --help and --version print and exit here
    QStringList paths;
    for (const QString &given : parser.positionalArguments())
        paths.append(QFileInfo(given).absoluteFilePath()); // the running copy has another working folder

    // Before any store exists: a second copy must not read or write our files.
    SingleInstance instance(PersistenceService::defaultStorageFolder());
    switch (instance.start(paths)) {
    case SingleInstance::Outcome::HandedOver:
        return 0;
    case SingleInstance::Outcome::NoAnswer:
        return 1;
    case SingleInstance::Outcome::Owner:
        break;
    }

    MainWindow window(Assembly::store());
    window.state().setWatchingSources(true); // fonts copied into a source appear without Refresh
    QFontDatabase::families(); // read now, with our links left out
    OwnFontconfig::restoreEnvironment();
    AppMenus::install(window);
    if (StartupReport::requested())
        StartupReport::watch(window, sinceStart);
    QObject::connect(&instance, &SingleInstance::showRequested, &window, [&window](const QString &token) {
        // The desktop lets a window come to the front with the token of the start that
        // asked for it: Wayland's activation token, or X11's startup notification.
        if (!token.isEmpty())
            qputenv(QGuiApplication::platformName() == u"wayland"_s ? "XDG_ACTIVATION_TOKEN" : "DESKTOP_STARTUP_ID", token.toUtf8());
        window.bringToFront();
    });
    QObject::connect(&instance, &SingleInstance::openRequested, &window, [&window](const QStringList &handed) { window.openPaths(handed); });
    window.show();
    if (!paths.isEmpty())
        QTimer::singleShot(0, &window, [&window, paths] { window.openPaths(paths); }); // once the window is up
    const int code = QApplication::exec();
    // A job stuck in the kernel (a drive that stopped answering) must not keep a logout
    // waiting: once the saves are on disk the process ends without it.
    if (!window.finishBackgroundWork(5000))
        ::_exit(code);
    return code;
}
