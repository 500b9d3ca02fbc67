// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "FolderSource.h"
#include "FontNode.h"

#include <QList>

// One folder-search hit. The id joins the source's UUID and the folder's path, so the
// same folder under two sources gives two results.
struct FolderSearchResult
{
    QString id;
    FontNode folder;
    FolderSource source;
    QList<FontNode> navigationPath;

    static FolderSearchResult make(const FontNode &folder, const FolderSource &source,
                                   QList<FontNode> navigationPath);
    // The same, given the source's id text with its ":" (indexing makes thousands).
    static FolderSearchResult make(const QString &idPrefix, const FontNode &folder, const FolderSource &source,
                                   QList<FontNode> navigationPath);
};
