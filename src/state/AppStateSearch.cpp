// SPDX-License-Identifier: GPL-3.0-or-later
// Folder search: the query filters the index of every folder by name, after a pause,
// off the interface thread; every newer query supersedes the running one.
#include "AppState.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <QPointer>
#include <QtConcurrent/qtconcurrenttask.h>

#include <chrono>

using namespace std::chrono_literals;

QString AppState::trimmedQuery(const QString &query)
{
    qsizetype start = 0;
    qsizetype end = query.size();
    const auto blank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (start < end && blank(query.at(start)))
        ++start;
    while (end > start && blank(query.at(end - 1)))
        --end;
    return query.mid(start, end - start);
}

bool AppState::isSearching() const
{
    return !trimmedQuery(m_searchQuery).isEmpty();
}

void AppState::setSearchQuery(const QString &query)
{
    if (m_searchQuery == query)
        return;
    m_searchQuery = query;
    Q_EMIT searchQueryChanged();
    scheduleSearch();
}

void AppState::scheduleSearch()
{
    m_searchCancellation.cancel();
    const quint64 generation = ++m_searchGeneration;
    const QString query = trimmedQuery(m_searchQuery);
    setSearchResults({}); // at once, before any waiting
    setIsSearchingFolders(!query.isEmpty());
    if (query.isEmpty())
        return;
    runSearch(generation, m_searchIndex, query);
}

QCoro::Task<> AppState::runSearch(quint64 generation, QList<FolderSearchResult> index, QString query)
{
    QPointer<AppState> self(this);
    // Every awaited value is named first: GCC 12 frees temporaries inside co_await twice.
    const std::chrono::milliseconds pause = 200ms;
    co_await QCoro::sleepFor(pause);
    if (!self || generation != m_searchGeneration)
        co_return; // typed on: the newer query runs instead
    const CancellationToken cancellation = CancellationToken::create();
    m_searchCancellation = cancellation;
    SearchFilter filter = m_searchFilter; // the job keeps its own copy
    QFuture<QList<FolderSearchResult>> filtering =
        QtConcurrent::task(std::move(filter)).withArguments(index, query, cancellation).withPriority(1).spawn();
    const QList<FolderSearchResult> results = co_await filtering;
    if (!self || generation != m_searchGeneration)
        co_return;
    setSearchResults(results);
    setIsSearchingFolders(false);
}

QList<FolderSearchResult> AppState::filterIndex(const QList<FolderSearchResult> &index, const QString &query,
                                               const CancellationToken &cancellation)
{
    QList<FolderSearchResult> results;
    for (const FolderSearchResult &result : index) {
        if (cancellation.isCancelled())
            return {};
        if (result.folder.name().contains(query, Qt::CaseInsensitive))
            results.append(result);
    }
    return results;
}
