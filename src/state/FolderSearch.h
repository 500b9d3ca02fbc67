// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CancellationToken.h"
#include "model/FolderSearchResult.h"

#include <QCoroTask>

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

// Folder search, one concern of the store: the query filters the index of every folder
// by name after a 200 ms pause, off the interface thread; every newer query supersedes
// the running one. The store publishes its fields; it reads and tests alone.
class FolderSearch : public QObject
{
    Q_OBJECT

public:
    explicit FolderSearch(QObject *parent = nullptr);
    ~FolderSearch() override;

    const QString &query() const { return m_query; }
    void setQuery(const QString &query); // a different value schedules a search
    const QList<FolderSearchResult> &results() const { return m_results; }
    bool isSearchingFolders() const { return m_isSearchingFolders; } // a non-empty query awaits results
    bool isSearching() const;                                        // trimmed query not empty
    const QList<FolderSearchResult> &index() const { return m_index; } // every folder, by name
    // A new library's index in place of the old one, which is handed back (to be freed
    // off the interface thread); an active query runs again on it.
    QList<FolderSearchResult> replaceIndex(QList<FolderSearchResult> index);
    void schedule();
    // The same query again on a new index: the shown results stay until the new ones
    // replace them, so a view can keep its place.
    void rerun();

    // Without leading and trailing spaces and tabs; a line break counts as text.
    static QString trimmedQuery(const QString &query);
    // The filter itself: folders whose own name contains the query, case-insensitively.
    static QList<FolderSearchResult> filterIndex(const QList<FolderSearchResult> &index, const QString &query,
                                                 const CancellationToken &cancellation);
    using Filter = std::function<QList<FolderSearchResult>(const QList<FolderSearchResult> &, const QString &,
                                                           const CancellationToken &)>;
    void setFilter(Filter filter) { m_filter = std::move(filter); }

Q_SIGNALS:
    void queryChanged();
    void resultsChanged();
    void isSearchingFoldersChanged();

private:
    QCoro::Task<> run(quint64 generation, QList<FolderSearchResult> index, QString query);
    void setResults(QList<FolderSearchResult> results);
    void setIsSearchingFolders(bool searching);

    QString m_query;
    QList<FolderSearchResult> m_results;
    bool m_isSearchingFolders = false;
    QList<FolderSearchResult> m_index;
    quint64 m_generation = 0;         // a sleeping search runs only if still the latest
    CancellationToken m_cancellation; // the running filter
    Filter m_filter = &FolderSearch::filterIndex;
};
