// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontActivating.h"

QList<bool> FontActivating::activateFonts(const QStringList &paths)
{
    QList<bool> results;
    results.reserve(paths.size());
    for (const QString &path : paths)
        results.append(activateFont(path));
    return results;
}

QList<bool> FontActivating::deactivateFonts(const QStringList &paths)
{
    QList<bool> results;
    results.reserve(paths.size());
    for (const QString &path : paths)
        results.append(deactivateFont(path));
    return results;
}

void FontActivating::removeActivationsExcept(const QSet<QString> &)
{
    // Implementations that keep no state of their own have nothing to sweep.
}
