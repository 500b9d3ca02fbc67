// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "discovery/FileSystemService.h"
#include "model/CancellationToken.h"
#include "model/CollectionRecords.h"
#include "model/FolderSearchResult.h"
#include "model/FolderSource.h"

#include <QCoroTask>

#include <QList>
#include <QObject>
#include <QSet>
#include <QUuid>

#include <functional>
#include <memory>

// Looking at the library's folders again, one concern of the store: a request waits
// 50 ms (a burst of them costs one scan), the scan runs on a worker, and only the newest
// request's result is handed back. Folders unchanged since the previous scan are not
// read again unless everything is asked for.
class LibraryRefresh : public QObject
{
    Q_OBJECT

public:
    enum class Refresh { Changed, Everything };
    // What a scan job is given and produces; tests may put another job in its place.
    struct Request
    {
        QList<FolderSource> sources;
        QList<CollectionMember> members;
        std::shared_ptr<const FileSystemService> previous; // none: every folder is read
    };
    struct Scan
    {
        std::shared_ptr<FileSystemService> service;
        QList<FolderSearchResult> searchIndex;
        QSet<QUuid> unavailableSources;
        qsizetype foldersRead = 0; // the rest came unchanged from the previous scan
    };
    using Scanner = std::function<Scan(const Request &, const CancellationToken &)>;
    // The real scan job: every source, then every folder member, frozen, with its index.
    static Scan scanLibrary(const Request &request, const CancellationToken &cancellation);
    // A folder that can be listed; one missing (a drive not mounted yet) or unreadable can't.
    static bool isReachable(const QString &folder);

    // Asked for when the scan starts, so the newest sources, members and scan are used.
    using Inputs = std::function<Request()>;
    explicit LibraryRefresh(Inputs inputs, QObject *parent = nullptr);
    ~LibraryRefresh() override; // the running scan is told to stop

    void request(Refresh how = Refresh::Changed);
    void setScanner(Scanner scanner) { m_scanner = std::move(scanner); }

Q_SIGNALS:
    // The newest request's scan, on the interface thread.
    void scanned(const LibraryRefresh::Scan &scan);

private:
    QCoro::Task<> run(quint64 generation);

    Inputs m_inputs;
    Scanner m_scanner = &LibraryRefresh::scanLibrary;
    quint64 m_generation = 0;         // only the latest refresh is applied
    CancellationToken m_cancellation; // the running scan
    bool m_readEverything = false;    // asked for by a refresh not yet applied
};
