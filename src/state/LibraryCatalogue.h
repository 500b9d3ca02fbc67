// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "discovery/FileSystemService.h"
#include "model/CancellationToken.h"
#include "model/CollectionRecords.h"
#include "model/FolderSource.h"
#include "services/CatalogueChange.h"
#include "services/FontCatalog.h"

#include <QFuture>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>

class FontActivating;

// The catalogue as one concern of the store: after each refresh a job reads the font
// files that are new or changed, on a thread of its own at a lower priority, and says
// what changed once it ends; questions are answered meanwhile from what is read so far.
// It knows nothing of the store: each job and each question is given what it needs.
class LibraryCatalogue : public QObject
{
    Q_OBJECT

public:
    LibraryCatalogue(FontActivating &activation, QObject *parent = nullptr);
    ~LibraryCatalogue() override; // stops every job and waits for it

    // Where the catalogue lives, before its first use (benchmarks keep several).
    void setFile(const QString &path) { m_file = path; }
    // How long a refresh stands before reading (refreshes come in bursts).
    void setSettleTime(int msecs) { m_settleMs = msecs; }
    std::shared_ptr<FontCatalog> catalog(); // opened on first use

    // What a job looks at: every font the scan saw, the collections' own files, and the
    // active fonts outside both (or "Active Fonts" could not list them).
    struct Library
    {
        std::shared_ptr<const FileSystemService> files;
        QList<FolderSource> sources;
        QList<FontCollection> collections;
        QSet<QString> active;
    };
    // Starts a job over the library; a running one stops after its chunk and hands on
    // what it had not yet said.
    void index(Library library);
    // A batch of activations goes first: reading waits while paused, and for a while after.
    void setPaused(bool paused);
    void holdOff(int msecs);
    void stop();

    bool isWorking() const { return m_working; }
    qsizetype done() const { return m_done; }
    qsizetype total() const { return m_total; }
    bool waitUntilDone(int msecs); // tests and benchmarks

    // What only the store knows, taken along with a question.
    struct Knowledge
    {
        QSet<QString> activated;
        QList<CollectionMember> members; // of the collection asked about
        QStringList sourceFolders;
    };
    // The newest question: an older one still running stops and answers `cancelled`.
    QFuture<FontQueryAnswer> ask(FontQuery query, Knowledge knowledge);
    quint64 questionsAsked() const { return m_questions; }
    // A question beside the others, which it cancels not.
    QFuture<FontQueryAnswer> answer(FontQuery query, Knowledge knowledge,
                                    std::shared_ptr<std::atomic_bool> cancelled = std::make_shared<std::atomic_bool>(false));
    QFuture<qsizetype> count(FontQuery query);

Q_SIGNALS:
    void progressChanged();
    // A question found the catalogue damaged and it was started afresh: every file
    // needs reading again (the store starts a job).
    void rebuilt();
    void jobEnded(); // a job's thread is done with it, the folders' preparation included
    // Faces were read or dropped: once per job that ends, never when nothing changed.
    void changed(const CatalogueChange &change);
    void finished(); // a job has ended: what it read is there to be asked

private:
    void setProgress(bool working, qsizetype done, qsizetype total);

    struct Unannounced
    {
        std::mutex mutex;
        CatalogueChange change;
    };
    FontActivating &m_activation;
    QString m_file = FontCatalog::defaultPath();
    int m_settleMs = 1000;
    std::shared_ptr<FontCatalog> m_catalog;
    CancellationToken m_cancellation;
    QFuture<void> m_job;          // the newest
    QList<QFuture<void>> m_jobs;  // every one not yet finished: this outlives them all
    bool m_working = false;
    qsizetype m_done = 0;
    qsizetype m_total = 0;
    quint64 m_questions = 0;
    std::shared_ptr<std::atomic_bool> m_questionCancelled = std::make_shared<std::atomic_bool>(false);
    // Where a job waits its turn: asleep until a batch ends, the quiet time is over, or
    // it is cancelled, never polling.
    struct Gate
    {
        std::mutex mutex;
        std::condition_variable turn;
        bool paused = false;
        qint64 quietUntil = 0; // ms since the epoch
        void wake();
        void waitTurn(const CancellationToken &cancellation);
    };
    std::shared_ptr<Gate> m_gate = std::make_shared<Gate>();
    // Faces recorded or dropped that no change has said yet (a job cut short leaves
    // them to the one that ends).
    std::shared_ptr<Unannounced> m_unannounced = std::make_shared<Unannounced>();
};
