// SPDX-License-Identifier: GPL-3.0-or-later
// What kind of link puts an active font where every program, sandboxed ones too, can
// read it: copies when the user allows them, and links kept true to their files.
#include "AppState.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QtConcurrent/qtconcurrenttask.h>

#include <algorithm>

#include <sys/stat.h>

bool AppState::copiesForSandboxes() const
{
    return m_persistenceService.copiesForSandboxes();
}

QCoro::Task<qint64> AppState::spaceForCopies()
{
    FontActivating *activation = &m_fontActivationService;
    // Built apart from the co_await: GCC 12 destroys a temporary held across a suspension twice.
    const QFuture<qint64> bytes =
        QtConcurrent::task([activation, ticket = m_jobs.ticket()] { return activation->bytesToCopy(); }).spawn();
    co_return co_await bytes;
}

QCoro::Task<> AppState::setCopiesForSandboxes(bool allowed)
{
    // The same guard as every batch: one change to our font folder at a time.
    if (m_isProcessing || m_isIndexing || allowed == copiesForSandboxes())
        co_return;
    QPointer<AppState> self(this);
    m_persistenceService.setCopiesForSandboxes(allowed);
    setIsProcessing(true);
    setProcessing(0, allowed ? tr("Copying fonts for sandboxed apps…") : tr("Removing copies of fonts…"));
    FontActivating *activation = &m_fontActivationService;
    const QFuture<void> relinked =
        QtConcurrent::task([activation, allowed, ticket = m_jobs.ticket()] { activation->setCopiesAllowed(allowed); })
            .withPriority(-1)
            .spawn();
    co_await relinked;
    if (!self)
        co_return;
    setIsProcessing(false);
}

QCoro::Task<> AppState::refreshActivationLinks(quint64 request)
{
    QPointer<AppState> self(this);
    if (m_isProcessing || m_activatedFonts.isEmpty()) {
        linksChecked(request); // a batch checks what it touches; the next scan checks again
        co_return;
    }
    FontActivating *activation = &m_fontActivationService;
    const QFuture<QStringList> refreshed =
        QtConcurrent::task([activation, ticket = m_jobs.ticket()] { return activation->refreshLinks(); })
            .withPriority(-1)
            .spawn();
    const QStringList withdrawn = co_await refreshed;
    if (!self)
        co_return;
    if (withdrawn.isEmpty()) {
        linksChecked(request);
        co_return;
    }
    // As at a start: a file gone while its source folder can't be reached waits for it;
    // gone from a folder that is there, or replaced by something that is no font, it is
    // no longer active.
    QStringList unreachable;
    for (const QString &root : sourceRoots()) {
        // An empty folder stands in for a drive not mounted, as at a start.
        if (!LibraryRefresh::isReachable(root) || QDir(root).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System))
            unreachable.append(root + u'/');
    }
    QSet<QString> active = m_activatedFonts, waiting = m_waitingActivations;
    QStringList dropped;
    for (const QString &font : withdrawn) {
        active.remove(font);
        struct stat info{};
        if (::stat(QFile::encodeName(font).constData(), &info) == 0)
            dropped.append(font);
        else if (std::any_of(unreachable.cbegin(), unreachable.cend(), [&](const QString &root) { return font.startsWith(root); }))
            waiting.insert(font);
    }
    countChanged(withdrawn, false);
    setActivatedFonts(std::move(active));
    setWaitingActivations(std::move(waiting));
    saveActivatedFonts();
    if (!dropped.isEmpty())
        reportFontFailures(dropped, m_fontActivationService.takeFailureReasons(), dropped.size(), true);
    linksChecked(request);
}

void AppState::linksChecked(quint64 request)
{
    m_linksCheckedThrough = std::max(m_linksCheckedThrough, request);
    Q_EMIT activationLinksChecked();
}
