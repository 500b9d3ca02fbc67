// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// A synthetic font library: empty font files with realistic names in nested
// folders, mixed with non-font files, hidden files, fontless folders and a few
// symbolic links. Deterministic for a given shape.
struct CorpusShape
{
    int folders = 10'000;
    int fonts = 100'000;
    int maxDepth = 6;
    int wideFolderFonts = 10'000; // of `fonts`, all in "Sans Serif/Mega Family"
};

struct CorpusStats
{
    int folders = 0;
    int fonts = 0;
    int otherFiles = 0;
    int links = 0;
};

// Writes the library under `root` unless a stamp from an identical earlier run is
// there. Returns what the library holds.
CorpusStats ensureLibraryCorpus(const QString &root, const CorpusShape &shape);
