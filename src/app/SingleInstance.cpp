// SPDX-License-Identifier: GPL-3.0-or-later
#include "SingleInstance.h"

#include "services/Console.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView kShow = "show\n";
constexpr QByteArrayView kShown = "shown\n";
constexpr int kAnswerTimeoutMs = 5000;

// Sockets live in the runtime folder (private, cleared at logout); one per storage
// folder, so copies with different data folders never meet.
QString socketPathFor(const QString &storageFolder)
{
    const QByteArray hash = QCryptographicHash::hash(QFile::encodeName(storageFolder), QCryptographicHash::Sha1);
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u"/morvane-"_s +
           QString::fromLatin1(hash.toHex().left(12)) + u".socket"_s;
}

} // namespace

SingleInstance::SingleInstance(const QString &storageFolder, QObject *parent)
    : QObject(parent)
    , m_lockPath(storageFolder + u"/morvane.lock"_s)
    , m_socketPath(socketPathFor(storageFolder))
    , m_lock(m_lockPath)
{
    // Only a lock whose process is gone is stale; a long-running copy keeps its lock.
    m_lock.setStaleLockTime(0);
}

SingleInstance::~SingleInstance() = default;

SingleInstance::Outcome SingleInstance::start(const QStringList &paths)
{
    QDir().mkpath(m_lockPath.section(u'/', 0, -2)); // a first start has no storage folder yet
    if (m_lock.tryLock(0)) {
        listen();
        return Outcome::Owner;
    }
    if (m_lock.error() != QLockFile::LockFailedError) {
        // No lock can be made (a read-only storage folder): Morvane still runs, with
        // the socket alone keeping a second copy away. Nothing says one runs: one try.
        if (handOver(paths, 0))
            return Outcome::HandedOver;
        listen();
        return Outcome::Owner;
    }
    if (handOver(paths, kAnswerTimeoutMs))
        return Outcome::HandedOver;
    qint64 pid = 0;
    QString host;
    QString application;
    m_lock.getLockInfo(&pid, &host, &application);
    Console::printLine(u"Morvane is already running (process %1) but did not answer; quit it before starting another."_s
                           .arg(pid));
    return Outcome::NoAnswer;
}

bool SingleInstance::handOver(const QStringList &paths, int patienceMs)
{
    // One line each: the paths (percent-encoded: a file name may hold a line break), the
    // desktop's token for raising a window, then "show".
    QByteArray request;
    for (const QString &path : paths)
        request += "open " + path.toUtf8().toPercentEncoding("/") + '\n';
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN").isEmpty() ? qgetenv("DESKTOP_STARTUP_ID")
                                                                        : qgetenv("XDG_ACTIVATION_TOKEN");
    if (!token.isEmpty())
        request += "token " + token.toPercentEncoding() + '\n';
    request += kShow.toByteArray();
    // The running copy may be between taking the lock and listening: try for a while.
    const QDeadlineTimer deadline(std::max(patienceMs, 500));
    const QDeadlineTimer patience(patienceMs);
    for (;;) {
        QLocalSocket socket;
        socket.connectToServer(m_socketPath);
        if (socket.waitForConnected(static_cast<int>(deadline.remainingTime()))) {
            socket.write(request);
            socket.flush();
            QByteArray answer;
            const QDeadlineTimer answered(kAnswerTimeoutMs); // a busy copy answers between two jobs
            while (!answer.endsWith('\n') && socket.waitForReadyRead(static_cast<int>(answered.remainingTime())))
                answer += socket.readAll();
            if (answer == kShown) {
                Console::printLine(u"Morvane is already running; its window was brought to the front."_s);
                return true;
            }
            return false;
        }
        if (patience.hasExpired())
            return false;
        QThread::msleep(50);
    }
}

void SingleInstance::listen()
{
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    // We hold the lock, so a socket file left behind is a dead copy's.
    QLocalServer::removeServer(m_socketPath);
    if (!m_server->listen(m_socketPath)) {
        Console::printLine(u"Morvane can't listen for a second start at "_s + m_socketPath + u": "_s +
                           m_server->errorString());
        return;
    }
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            auto paths = std::make_shared<QStringList>();
            auto token = std::make_shared<QString>();
            connect(socket, &QLocalSocket::readyRead, this, [this, socket, paths, token] {
                while (socket->canReadLine()) {
                    const QByteArray line = socket->readLine();
                    if (line.startsWith("open ") && line.endsWith('\n')) {
                        paths->append(QString::fromUtf8(QByteArray::fromPercentEncoding(line.mid(5).chopped(1))));
                    } else if (line.startsWith("token ") && line.endsWith('\n')) {
                        *token = QString::fromUtf8(QByteArray::fromPercentEncoding(line.mid(6).chopped(1)));
                    } else {
                        const bool show = line == kShow.toByteArray();
                        // Acknowledged at once, acted on later: what the window does with
                        // the request (a question with an event loop of its own) must not
                        // run inside this socket's handler, which may be gone by its end.
                        if (show)
                            socket->write(kShown.data(), kShown.size());
                        socket->disconnectFromServer();
                        if (show) {
                            QMetaObject::invokeMethod(
                                this,
                                [this, handed = *paths, desktopToken = *token] {
                                    if (!handed.isEmpty())
                                        Q_EMIT openRequested(handed);
                                    Q_EMIT showRequested(desktopToken);
                                },
                                Qt::QueuedConnection);
                        }
                        return;
                    }
                }
            });
        }
    });
}
