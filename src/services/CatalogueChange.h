// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaType>
#include <QSet>
#include <QString>

// What the catalogue's records gained and lost, by font file: files read for the first
// time, files read again because they changed, and files whose records went because the
// file did. Gathered over one or more indexing jobs until it is announced, so a file
// added and removed before anyone heard of it is not mentioned at all.
struct CatalogueChange
{
    QSet<QString> added;
    QSet<QString> changed;
    QSet<QString> removed;

    bool isEmpty() const { return added.isEmpty() && changed.isEmpty() && removed.isEmpty(); }

    void recordRead(const QString &path, bool wasRecorded)
    {
        if (removed.remove(path) || (wasRecorded && !added.contains(path)))
            changed.insert(path); // gone and back: what the views had is not what it is
        else
            added.insert(path);
    }
    void recordRemoved(const QString &path)
    {
        changed.remove(path);
        if (!added.remove(path)) // added unheard of: as if never there
            removed.insert(path);
    }
};

Q_DECLARE_METATYPE(CatalogueChange)
