// SPDX-License-Identifier: GPL-3.0-or-later
#include "SharedPaths.h"

#include <QMutex>
#include <QSet>

#include <array>

namespace SharedPaths {
namespace {

// Several threads scan and read at once: a lock per part of the set rather than one.
struct Part
{
    QMutex mutex;
    QSet<QString> paths;
};
constexpr size_t kParts = 16;

std::array<Part, kParts> &parts()
{
    static std::array<Part, kParts> all;
    return all;
}

Part &partFor(const QString &path)
{
    return parts()[qHash(path) % kParts];
}

} // namespace

QString share(const QString &path)
{
    if (path.isEmpty())
        return path;
    Part &part = partFor(path);
    const QMutexLocker lock(&part.mutex);
    const auto found = part.paths.constFind(path);
    if (found != part.paths.cend())
        return *found;
    part.paths.insert(path);
    return path;
}

void dropUnused()
{
    for (Part &part : parts()) {
        const QMutexLocker lock(&part.mutex);
        // Held only here: nobody can take a copy while the lock is held.
        part.paths.removeIf([](const QString &path) { return path.isDetached(); });
    }
}

qsizetype size()
{
    qsizetype count = 0;
    for (Part &part : parts()) {
        const QMutexLocker lock(&part.mutex);
        count += part.paths.size();
    }
    return count;
}

} // namespace SharedPaths
