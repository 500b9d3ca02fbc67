// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontCorpus.h"

#include "BenchFigures.h"

#include "fonts/FontMetadata.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

// fonts-dejavu-core and fonts-inter-variable, named one by one: other packages may
// add files to the same folders, and the corpus must not change with them.
const char *const kPackagedFaces[] = {
    "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Bold.ttf",
    "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf",
    "/usr/share/fonts/truetype/dejavu/DejaVuSerif-Bold.ttf",
    "/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf",
    "/usr/share/fonts/truetype/inter-vf/Inter-italic.var.ttf",
    "/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf",
    "/usr/share/fonts/truetype/inter-vf/Inter.var.ttf",
    "/usr/share/fonts/truetype/inter-vf/InterDisplay-italic.var.ttf",
    "/usr/share/fonts/truetype/inter-vf/InterDisplay-roman.var.ttf",
    "/usr/share/fonts/truetype/inter-vf/InterDisplay.var.ttf",
};

struct Faces
{
    QStringList readable;
    int unreadable = 0;
};

const Faces &faces()
{
    static const Faces found = [] {
        Faces result;
        for (const char *face : kPackagedFaces) {
            const QString path = QString::fromLatin1(face);
            if (FontMetadata::load(path).has_value())
                result.readable.append(path);
            else
                ++result.unreadable;
        }
        return result;
    }();
    return found;
}

} // namespace

namespace FontCorpus {

QStringList fonts(const QString &name, int count, bool variable)
{
    QStringList readable = faces().readable;
    if (!variable)
        readable.removeIf([](const QString &face) { return face.contains(u".var."_s); });
    if (readable.isEmpty())
        qFatal("None of the fonts tools/install-deps.sh installs can be read: run make deps");
    const QString folder = BenchFigures::dataDirectory() + u"/fonts/"_s + name;
    QDir().mkpath(folder);
    QStringList result;
    result.reserve(count);
    for (int i = 0; i < count; ++i) {
        const QString path = folder + u"/Font %1.ttf"_s.arg(i, 6, 10, QChar(u'0'));
        const QString face = readable[i % readable.size()];
        // A link left by an earlier run may point at a face that is gone or changed.
        if (QFile::symLinkTarget(path) != face) {
            QFile::remove(path);
            QFile::link(face, path);
        }
        result.append(path);
    }
    return result;
}

int unreadableFaces()
{
    return faces().unreadable;
}

} // namespace FontCorpus
