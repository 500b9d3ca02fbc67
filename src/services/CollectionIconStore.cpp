// SPDX-License-Identifier: GPL-3.0-or-later
#include "CollectionIconStore.h"

#include "AtomicFile.h"
#include "Console.h"
#include "RegularFile.h"

#include "model/Json.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

QString lastExtension(const QString &path)
{
    const QString name = path.section(u'/', -1);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? QString() : name.mid(dot + 1);
}

QString withoutLastExtension(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.left(dot) : name;
}

} // namespace

namespace CollectionIconStore {

std::optional<QString> store(const QString &iconsFolder, const QUuid &collectionId,
                             const std::optional<QString> &sourcePath, QString *error)
{
    const QString idText = Json::uuidText(collectionId);
    const QDir folder(iconsFolder);
    const QStringList entries = folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    QStringList earlier;
    for (const QString &entry : entries) {
        if (withoutLastExtension(entry) == idText)
            earlier.append(folder.filePath(entry));
    }
    // The stored icon chosen again (from the icon folder itself, or through a link):
    // removing the earlier icons first would delete the very file to be copied.
    if (sourcePath && !sourcePath->isEmpty()) {
        for (const QString &stored : std::as_const(earlier)) {
            if (RegularFile::sameFile(stored, *sourcePath))
                return stored;
        }
    }
    for (const QString &stored : std::as_const(earlier))
        QFile::remove(stored);
    if (!sourcePath || sourcePath->isEmpty())
        return std::nullopt;
    // Read without trusting the path: a pipe chosen in the file dialog would block the
    // copy for ever, a device would never end.
    const RegularFile::Contents image = RegularFile::read(*sourcePath, kMaxBytes);
    // The point is always written: a source without extension ends in a bare point.
    const QString target = iconsFolder + u'/' + idText + u'.' + lastExtension(*sourcePath);
    const std::optional<QString> failure = image.ok() ? AtomicFile::write(target, image.bytes) : image.error;
    if (failure) {
        Console::printLine(u"Failed to copy collection icon: "_s + *failure);
        if (error)
            *error = *failure;
        return std::nullopt;
    }
    return target;
}

} // namespace CollectionIconStore
