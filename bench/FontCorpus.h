// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

// Real font files for the font benchmarks, the same on every machine: links under
// distinct names to the fonts of the Debian packages tools/install-deps.sh installs,
// taken in a fixed order. A face that does not read as a font is counted and left out.
namespace FontCorpus {

// `count` links in the benchmark data folder `name`, made (or mended) on first use.
// Without `variable`, the static faces only: a variable font is listed by fontconfig once
// per named instance, which would make a listing of it cost many times a static one's.
QStringList fonts(const QString &name, int count, bool variable = true);
// How many of the packaged faces did not read (printed as a figure).
int unreadableFaces();

} // namespace FontCorpus
