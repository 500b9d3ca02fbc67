#pragma once

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

// Activating a font makes it available to every application of the user. The store
// holds the system through this interface, so tests can stand in for it.
// Implementations are safe to call from worker threads.
class FontActivating
{
public:
    virtual ~FontActivating() = default;

    // True when the font is active afterwards, already active included.
    virtual bool activateFont(const QString &path) = 0;
    // True when the font is not active afterwards, never active included.
    virtual bool deactivateFont(const QString &path) = 0;

    // One result per path, in order. Implementations may share work across a batch.
    virtual QList<bool> activateFonts(const QStringList &paths);
    virtual QList<bool> deactivateFonts(const QStringList &paths);

    // Withdraws every activation of ours that is not in `keep` or whose file is gone,
    // such as one left behind by a crash in the middle of a batch.
    virtual void removeActivationsExcept(const QSet<QString> &keep);
};
