// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/FolderSource.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

#include <optional>

class PersistenceService;

// The user's source folders in sidebar order, one concern of the store: added once
// each (by their clean path), removed, and saved after each change. What a change means
// for activations, the selection and the scan is the store's to decide.
class SourceList : public QObject
{
    Q_OBJECT

public:
    explicit SourceList(PersistenceService &persistence, QObject *parent = nullptr);

    const QList<FolderSource> &all() const { return m_sources; }
    bool isEmpty() const { return m_sources.isEmpty(); }
    void load();
    // The new source; none when the folder is a source already.
    std::optional<FolderSource> add(const QString &path);
    void remove(const QUuid &id);
    // Tests put sources in place without saving them.
    void replaceForTesting(QList<FolderSource> sources) { replace(std::move(sources)); }

Q_SIGNALS:
    void changed();

private:
    void replace(QList<FolderSource> sources); // notifies when different

    PersistenceService &m_persistence;
    QList<FolderSource> m_sources;
};
