// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TestSupport.h"

#include "services/FontActivating.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"

#include <QMutex>
#include <QSet>
#include <QStringList>
#include <QWaitCondition>

#include <atomic>
#include <memory>

// Stands in for fontconfig: records every call, fails the paths it is told to,
// and can be held at a gate to keep a batch running for as long as a test needs.
class FakeActivation : public FontActivating
{
public:
    ~FakeActivation() override { open(); }
    bool activateFont(const QString &path) override;
    bool deactivateFont(const QString &path) override;

    QStringList calls() const;
    QSet<QString> failing;          // set before use
    std::atomic_int callCount = 0;

    // While held, every call waits until open() is called.
    void hold();
    void open();

private:
    void record(const QString &call);

    mutable QMutex m_mutex;
    QWaitCondition m_opened;
    bool m_held = false;
    QStringList m_calls; // "+path" or "-path"
};

// A store over a real folder tree: sources added, scanned by the real scanner,
// frozen and installed as a refresh would.
struct StoreFixture
{
    StoreFixture();

    QString library;
    FakeActivation activation;
    PersistenceService persistence;
    std::unique_ptr<AppState> store;

    FolderSource addSource(const QString &path);
    // Scans the sources and the collections' folder members and installs the result.
    void scan();
    // The store's persistence once its queued saves are on disk.
    PersistenceService &written();
    FontNode folder(const QString &relative) const;
    FontNode font(const QString &relative) const;
    QString path(const QString &relative) const { return library + u'/' + relative; }
};

QStringList columnNames(const AppState &store);
QStringList nodeNames(const QList<FontNode> &nodes);
