// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

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

    // A batch of calls between these two may leave the system's font list behind
    // (each call still reports per font whether it can be activated); finishBatch()
    // brings it up to date and returns the fonts the system then turned down, which
    // are no longer active.
    virtual void beginBatch() {}
    virtual QStringList finishBatch() { return {}; }

    // Start-up upkeep, before anything is restored: withdraws activations whose file
    // is gone or is no font any more, refreshes the system's view of files changed
    // since they were activated, and clears what a killed process left half done.
    virtual void repairActivations() {}
    // Every font our own activations record, whatever any saved list says.
    virtual QSet<QString> recordedActivations() { return {}; }
    // Fonts that failed since the last call for a reason that is not their own (our
    // font folder can't be written, the disk is full): they are no less wanted, and
    // are worth trying again once that is fixed. `reason` says what is wrong.
    virtual QStringList takeSystemFailures(QString *reason)
    {
        Q_UNUSED(reason);
        return {};
    }
    // Why each font failed for its own sake since the last call (not a font file
    // fontconfig can read, no longer a regular file, unreadable), by its path, in words
    // a window can show after the file's name.
    virtual QHash<QString, QString> takeFailureReasons() { return {}; }
    // Withdraws every activation of ours that is not in `keep`, such as one left behind
    // by a crash in the middle of a batch. Called after repairActivations(), and only
    // with a saved set that was read back whole.
    virtual void removeActivationsExcept(const QSet<QString> &keep);
    // Where nobody waits (after a scan, at idle priority): makes ready what activating
    // these folders, each given as its fonts, will need, so that the switch itself is
    // quick. `stop` is asked often; true means stop now.
    // Whether a font that nothing cheaper can put where sandboxed programs see it may be
    // copied into our folder; changing it turns such links into copies, or back.
    virtual void setCopiesAllowed(bool allowed) { Q_UNUSED(allowed); }
    // What those copies would take, in bytes.
    virtual qint64 bytesToCopy() { return 0; }
    // After the library was read again: entries that show an older file are made again,
    // and those whose file is gone are withdrawn (returned: they wait for their file).
    virtual QStringList refreshLinks() { return {}; }
    virtual void prepareActivation(const QList<QStringList> &fontsByFolder, const std::function<bool()> &stop)
    {
        Q_UNUSED(fontsByFolder);
        Q_UNUSED(stop);
    }
};
