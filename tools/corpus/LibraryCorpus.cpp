// SPDX-License-Identifier: GPL-3.0-or-later
#include "LibraryCorpus.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTextStream>

#include <array>
#include <random>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const std::array kCategories{"Sans Serif", "Serif", "Display", "Script", "Monospace", "Slab Serif", "Handwriting",
                             "Blackletter", "Symbols", "Client Work", "Archive 2019", "Foundry Packs", "Grotesque",
                             "Humanist", "Geometric", "Didone"};
const std::array kSyllables{"Hel", "ve", "ti", "ca", "Ro", "bo", "to", "Gara", "mond", "Fu", "tu", "ra", "Av",
                            "en", "ir", "Mi", "nion", "Bas", "ker", "ville", "Ca", "slon", "Ja", "nson", "Qua",
                            "dra", "Neo", "Lyn", "Tri", "Oc", "Zen", "Kor", "Ul", "Pax", "Syl", "Vor"};
const std::array kFamilySuffixes{"", " Pro", " Sans", " Serif", " Display", " Text", " Mono", " Condensed",
                                 " Rounded", " Std", " Next", " Old Style"};
const std::array kStyles{"Thin", "ExtraLight", "Light", "Regular", "Book", "Medium", "SemiBold", "Bold",
                         "ExtraBold", "Black", "Italic", "LightItalic", "BoldItalic", "BlackItalic",
                         "CondensedBold", "Oblique"};
const std::array kFontExtensions{"otf", "ttf", "otf", "ttf", "ttc", "OTF", "TTF", "otc", "dfont"};
const std::array kOtherFiles{"License.txt", "README.md", "Specimen.pdf", "OFL.txt", "Font Info.rtf"};
const std::array kOtherExtensions{"woff2", "woff", "afm", "pfb", "pfm", "eot"};
const std::array kSubfolders{"OTF", "TTF", "Desktop", "Variable", "Static", "Italic", "Web", "Extras"};

class Generator
{
public:
    explicit Generator(const CorpusShape &shape) : m_shape(shape), m_random(20261121) {}

    CorpusStats write(const QString &root)
    {
        struct Folder
        {
            QString path;
            QString family;
            int depth;
        };
        std::vector<Folder> folders;
        QSet<QString> taken;
        folders.reserve(static_cast<size_t>(m_shape.folders));
        for (const char *category : kCategories)
            folders.push_back({root + u'/' + QLatin1StringView(category), familyName(), 1});
        // Each new folder hangs below a random folder that still has room to go deeper,
        // which gives a bushy tree with long and short branches.
        while (static_cast<int>(folders.size()) < m_shape.folders) {
            const Folder &parent = folders[pick(folders.size())];
            if (parent.depth >= m_shape.maxDepth)
                continue;
            const QString family = familyName();
            const QString name = (parent.depth % 2 == 1) ? family
                                                          : QLatin1StringView(kSubfolders[pick(kSubfolders.size())]) +
                                                                u' ' + QString::number(folders.size());
            QString path = parent.path + u'/' + name;
            if (taken.contains(path))
                continue;
            taken.insert(path);
            folders.push_back({std::move(path), family, parent.depth + 1});
        }
        for (const Folder &folder : folders)
            QDir().mkpath(folder.path);

        CorpusStats stats;
        stats.folders = static_cast<int>(folders.size());
        // Every 25th folder holds no font of its own; the rest share the fonts evenly.
        std::vector<size_t> withFonts;
        for (size_t i = 0; i < folders.size(); ++i)
            if (i % 25 != 7)
                withFonts.push_back(i);
        // One very large family folder, as big foundry packs have.
        const Folder wide{root + u"/Sans Serif/Mega Family"_s, u"Mega Family"_s, 2};
        QDir().mkpath(wide.path);
        ++stats.folders;
        for (int n = 0; n < m_shape.fonts; ++n) {
            const Folder &folder = n < m_shape.wideFolderFonts
                ? wide
                : folders[withFonts[static_cast<size_t>(n) % withFonts.size()]];
            const QString style = QLatin1StringView(kStyles[pick(kStyles.size())]);
            const QString file = QString(folder.family).remove(u' ') + u'-' + style + u'-' + QString::number(n) +
                                 u'.' + QLatin1StringView(kFontExtensions[pick(kFontExtensions.size())]);
            touch(folder.path + u'/' + file);
            ++stats.fonts;
        }
        for (size_t i = 0; i < folders.size(); ++i) {
            const Folder &folder = folders[i];
            if (i % 3 == 0) {
                touch(folder.path + u'/' + QLatin1StringView(kOtherFiles[pick(kOtherFiles.size())]));
                ++stats.otherFiles;
            }
            if (i % 4 == 0) {
                touch(folder.path + u'/' + QString(folder.family).remove(u' ') + u'.' +
                      QLatin1StringView(kOtherExtensions[pick(kOtherExtensions.size())]));
                ++stats.otherFiles;
            }
            if (i % 5 == 0) {
                touch(folder.path + u"/.DS_Store"_s);
                touch(folder.path + u"/._" + QString(folder.family).remove(u' ') + u".otf"_s);
                ++stats.otherFiles;
            }
            if (i % 500 == 0 && i + 1 < folders.size()) {
                // A link to a sibling folder and one to a font: never descended, judged by name.
                QFile::link(folders[i + 1].path, folder.path + u"/Shortcut " + QString::number(i));
                QFile::link(folder.path + u"/missing.otf"_s, folder.path + u"/Alias " + QString::number(i) + u".otf");
                stats.links += 2;
            }
        }
        return stats;
    }

private:
    size_t pick(size_t count) { return std::uniform_int_distribution<size_t>(0, count - 1)(m_random); }

    QString familyName()
    {
        QString name;
        const size_t parts = 2 + pick(2);
        for (size_t i = 0; i < parts; ++i)
            name += QLatin1StringView(kSyllables[pick(kSyllables.size())]);
        return name + QLatin1StringView(kFamilySuffixes[pick(kFamilySuffixes.size())]);
    }

    static void touch(const QString &path)
    {
        const int fd = ::open(QFile::encodeName(path).constData(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
        if (fd >= 0)
            ::close(fd);
    }

    CorpusShape m_shape;
    std::mt19937 m_random;
};

QString stampText(const CorpusShape &shape, const CorpusStats &stats)
{
    return u"v2 %1 %2 %3 | %4 %5 %6 %7"_s.arg(shape.folders).arg(shape.fonts).arg(shape.maxDepth)
        .arg(stats.folders).arg(stats.fonts).arg(stats.otherFiles).arg(stats.links);
}

} // namespace

CorpusStats ensureLibraryCorpus(const QString &root, const CorpusShape &shape)
{
    const QString stampPath = root + u"/.corpus-stamp"_s;
    QFile stamp(stampPath);
    if (stamp.open(QIODevice::ReadOnly)) {
        const QString text = QString::fromUtf8(stamp.readAll());
        const QStringList parts = text.section(u" | "_s, 1).split(u' ');
        if (text.startsWith(u"v2 %1 %2 %3 "_s.arg(shape.folders).arg(shape.fonts).arg(shape.maxDepth)) &&
            parts.size() == 4)
            return {parts[0].toInt(), parts[1].toInt(), parts[2].toInt(), parts[3].toInt()};
        stamp.close();
    }
    QDir(root).removeRecursively();
    QDir().mkpath(root);
    const CorpusStats stats = Generator(shape).write(root);
    if (stamp.open(QIODevice::WriteOnly | QIODevice::Truncate))
        stamp.write(stampText(shape, stats).toUtf8());
    return stats;
}
