// SPDX-License-Identifier: GPL-3.0-or-later
#include "FontNode.h"

#include <algorithm>
#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

const QSet<QString> &fontExtensions()
{
    static const QSet<QString> extensions{u"ttf"_s, u"otf"_s, u"ttc"_s, u"otc"_s, u"dfont"_s};
    return extensions;
}

bool isFontFileName(QStringView fileName)
{
    const qsizetype dot = fileName.lastIndexOf(u'.');
    if (dot < 0)
        return false;
    const QStringView extension = fileName.sliced(dot + 1);
    // Longest extension is five letters; anything longer can't match.
    if (extension.isEmpty() || extension.size() > 5)
        return false;
    // Compared in place: the scanner asks this for every file it lists.
    for (const QString &known : fontExtensions()) {
        if (extension.compare(known, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

bool isFontFileName(const char *fileName, size_t length)
{
    // The scanner asks this for every file it lists, so the set is turned once into
    // plain lower-case byte strings and the extension is lower-cased in a buffer.
    static const std::vector<QByteArray> known = [] {
        std::vector<QByteArray> list;
        for (const QString &extension : fontExtensions())
            list.push_back(extension.toLatin1());
        return list;
    }();
    const void *dotAt = ::memrchr(fileName, '.', length);
    if (!dotAt)
        return false;
    const char *extension = static_cast<const char *>(dotAt) + 1;
    const size_t extensionLength = static_cast<size_t>(fileName + length - extension);
    if (extensionLength == 0 || extensionLength > 5)
        return false;
    char lower[5];
    for (size_t i = 0; i < extensionLength; ++i) {
        const char c = extension[i];
        lower[i] = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    }
    const QByteArrayView candidate(lower, static_cast<qsizetype>(extensionLength));
    return std::any_of(known.cbegin(), known.cend(), [&](const QByteArray &k) { return k == candidate; });
}

FontNode::FontNode(const QString &path, bool isDirectory, bool isFont)
    : m_path(path)
    , m_nameOffset(static_cast<qint32>(path.lastIndexOf(u'/') + 1))
    , m_isDirectory(isDirectory)
    , m_isFont(isFont)
{
}

FontNode FontNode::fromPath(const QString &path)
{
    // Like a file URL's path: no trailing slash.
    QString clean = path;
    while (clean.size() > 1 && clean.endsWith(u'/'))
        clean.chop(1);
    FontNode node(clean, false, false);
    node.m_isFont = isFontFileName(node.name());
    return node;
}

FontNode FontNode::scanned(QString path, qsizetype nameOffset, bool isDirectory)
{
    FontNode node;
    node.m_path = std::move(path);
    node.m_nameOffset = static_cast<qint32>(nameOffset);
    node.m_isDirectory = isDirectory;
    node.m_isFont = !isDirectory;
    return node;
}

FontNode FontNode::folder(const QString &path)
{
    return FontNode(path, true, false);
}

FontNode FontNode::fontFile(const QString &path)
{
    return FontNode(path, false, true);
}
