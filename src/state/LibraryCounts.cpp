// SPDX-License-Identifier: GPL-3.0-or-later
#include "LibraryCounts.h"

#include "services/FontCatalog.h"

#include <QFutureWatcher>
#include <QTimer>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

LibraryCounts::LibraryCounts(Catalog catalog, Activated activated, QObject *parent)
    : QObject(parent)
    , m_catalog(std::move(catalog))
    , m_activated(std::move(activated))
    , m_soon(new QTimer(this))
{
    m_soon->setSingleShot(true);
    m_soon->setInterval(250); // a burst of changes is counted once
    connect(m_soon, &QTimer::timeout, this, &LibraryCounts::count);
}

void LibraryCounts::countSoon()
{
    m_soon->start();
}

// Both counts in one pass, off the interface thread; queries of the lists are not
// disturbed (this is no query of theirs to cancel).
void LibraryCounts::count()
{
    const std::shared_ptr<FontCatalog> catalog = m_catalog();
    const QSet<QString> activated = m_activated();
    auto *watcher = new QFutureWatcher<std::pair<qsizetype, qsizetype>>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
        const auto [all, active] = watcher->result();
        watcher->deleteLater();
        if (all == m_all && active == m_active)
            return;
        m_all = all;
        m_active = active;
        Q_EMIT changed();
    });
    watcher->setFuture(QtConcurrent::run([catalog, activated] {
        const qsizetype all = catalog->countFaces();
        const qsizetype active =
            activated.isEmpty() ? 0 : catalog->countFaces([&](const QString &path, const QString &) { return activated.contains(path); });
        return std::pair<qsizetype, qsizetype>(all, active);
    }));
}
