// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>

class PersistenceService;

// Whether what the user changed is on disk, one concern of the store: the writer reports
// each file's save from its own thread; while some file's latest save failed, its reason
// is shown and every failed save is tried again every few seconds.
class SaveStatus : public QObject
{
    Q_OBJECT

public:
    explicit SaveStatus(PersistenceService &persistence, QObject *parent = nullptr);
    ~SaveStatus() override; // no report reaches it any more

    // Why the last save of some file failed (the system's words), or empty once every
    // file's latest save succeeded.
    const QString &failure() const { return m_failure; }

Q_SIGNALS:
    void failureChanged();

private:
    void record(const QString &fileName, const QString &failure);

    PersistenceService &m_persistence;
    QTimer m_retry;
    QString m_failure;
    QMap<QString, QString> m_failures; // file name -> why its latest save failed
};
