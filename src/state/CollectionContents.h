// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CollectionRecords.h"
#include "model/FontNode.h"

#include <QHash>
#include <QList>
#include <QLocale>
#include <QUuid>

class FileSystemService;

// What a collection holds as the views want it, one concern of the store: its members
// expanded into fonts (folders through the scan) and its members in display order, each
// worked out once and kept until the library or the collections change.
class CollectionContents
{
public:
    // Every font of the members, once each; members missing or outside every scan give none.
    QList<FontNode> fonts(const FontCollection &collection, const FileSystemService &files);
    // Folders first, then files, each by name in the user's language.
    QList<CollectionMember> sortedMembers(const FontCollection &collection, const QLocale &locale);
    void forget();

private:
    QHash<QUuid, QList<FontNode>> m_fonts;
    QHash<QUuid, QList<CollectionMember>> m_sorted;
};
