// SPDX-License-Identifier: GPL-3.0-or-later
#include "FolderSearch.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <QPointer>
#include <QtConcurrent/qtconcurrenttask.h>

#include <chrono>

using namespace std::chrono_literals;

FolderSearch::FolderSearch(QObject *parent)
    : QObject(parent)
{
}

FolderSearch::~FolderSearch()
{
    m_cancellation.cancel();
}

QString FolderSearch::trimmedQuery(const QString &query)
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

bool FolderSearch::isSearching() const
{
    return !trimmedQuery(m_query).isEmpty();
}

void FolderSearch::setQuery(const QString &query)
{
    if (m_query == query)
        return;
    m_query = query;
    Q_EMIT queryChanged();
    schedule();
}

QList<FolderSearchResult> FolderSearch::replaceIndex(QList<FolderSearchResult> index)
{
    return std::exchange(m_index, std::move(index));
}

void FolderSearch::schedule()
{
    m_cancellation.cancel();
    const quint64 generation = ++m_generation;
    const QString query = trimmedQuery(m_query);
    setResults({}); // at once, before any waiting
    setIsSearchingFolders(!query.isEmpty());
    if (query.isEmpty())
        return;
    run(generation, m_index, query);
}

void FolderSearch::rerun()
{
    const QString query = trimmedQuery(m_query);
    if (query.isEmpty() || m_isSearchingFolders) {
        schedule(); // nothing shown to keep
        return;
    }
    m_cancellation.cancel();
    run(++m_generation, m_index, query);
}

QCoro::Task<> FolderSearch::run(quint64 generation, QList<FolderSearchResult> index, QString query)
{
    QPointer<FolderSearch> self(this);
    // Every awaited value is named first: GCC 12 frees temporaries inside co_await twice.
    const std::chrono::milliseconds pause = 200ms;
    co_await QCoro::sleepFor(pause);
    if (!self || generation != m_generation)
        co_return; // typed on: the newer query runs instead
    const CancellationToken cancellation = CancellationToken::create();
    m_cancellation = cancellation;
    Filter filter = m_filter; // the job keeps its own copy
    QFuture<QList<FolderSearchResult>> filtering =
        QtConcurrent::task(std::move(filter)).withArguments(index, query, cancellation).withPriority(1).spawn();
    const QList<FolderSearchResult> results = co_await filtering;
    if (!self || generation != m_generation)
        co_return;
    setResults(results);
    setIsSearchingFolders(false);
}

QList<FolderSearchResult> FolderSearch::filterIndex(const QList<FolderSearchResult> &index, const QString &query,
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

void FolderSearch::setResults(QList<FolderSearchResult> results)
{
    if (results.isEmpty() && m_results.isEmpty())
        return;
    m_results = std::move(results);
    Q_EMIT resultsChanged();
}

void FolderSearch::setIsSearchingFolders(bool searching)
{
    if (m_isSearchingFolders == searching)
        return;
    m_isSearchingFolders = searching;
    Q_EMIT isSearchingFoldersChanged();
}
