// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>
#include <QSet>
#include <QString>
#include <QStringView>
#include <QUrl>

// The five lower-case extensions that make a file a font. The only rule, anywhere
// in Morvane, that decides whether a file is a font.
const QSet<QString> &fontExtensions();
bool isFontFileName(QStringView fileName);
// The same rule on a raw file name from the file system, before any string is built.
bool isFontFileName(const char *fileName, size_t length);

// One folder or font file of a source's tree. Identity, equality and hashing use
// the path only. The name is a view into the path, so a node costs one string.
class FontNode
{
public:
    FontNode() = default;
    // A node for a stored path (restored activations, collection members):
    // never a folder, a font by its extension.
    static FontNode fromPath(const QString &path);
    static FontNode folder(const QString &path);
    static FontNode fontFile(const QString &path);
    // For the scanner, which knows where the name starts.
    static FontNode scanned(QString path, qsizetype nameOffset, bool isDirectory);

    const QString &id() const { return m_path; }
    const QString &path() const { return m_path; }
    QStringView name() const { return QStringView(m_path).sliced(m_nameOffset); }
    QUrl url() const { return QUrl::fromLocalFile(m_path); }
    bool isDirectory() const { return m_isDirectory; }
    bool isFont() const { return m_isFont; }

    friend bool operator==(const FontNode &a, const FontNode &b) { return a.m_path == b.m_path; }

private:
    FontNode(const QString &path, bool isDirectory, bool isFont);

    QString m_path;
    qint32 m_nameOffset = 0;
    bool m_isDirectory = false;
    bool m_isFont = false;
};

inline size_t qHash(const FontNode &node, size_t seed = 0) noexcept
{
    return qHash(node.id(), seed);
}
