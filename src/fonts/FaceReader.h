// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "FaceRecord.h"

#include <QList>
#include <QString>

// Reads every face of a font file for the catalogue, from the mapped file with FreeType
// and the font's own tables; never asks fontconfig to scan it (that loads every glyph).
// Languages are fontconfig's own answer all the same: a face supports a language when
// its characters cover fontconfig's orthography for it. Safe on any thread.
namespace FaceReader {

// No records for a file that isn't a font (or can't be read).
QList<FaceRecord> read(const QString &path);

// The languages of fontconfig's orthographies that a set of code points covers whole.
QStringList languagesCovered(const QList<QPair<char32_t, char32_t>> &codePoints);

} // namespace FaceReader
