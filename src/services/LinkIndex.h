// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <utility>

// Which link of ours stands for which font, both ways. With 100,000 fonts active the
// full link paths alone took more memory than the rest of the window, so a link is kept
// as its folder (one shared entry per folder) and its short file name, and its path is
// put together when asked for.
class LinkIndex
{
public:
    void insert(const QString &font, const QString &link);
    // The same for a link `name` in the folder `folderId` names (a start reads every link,
    // folder by folder).
    void insert(const QString &font, int folderId, const QString &name);
    int folderId(const QString &folder);
    bool containsFont(const QString &font) const { return m_byFont.contains(font); }
    bool containsLink(const QString &link) const { return m_byLink.contains(keyOf(link)); }
    // Empty when the font has no link.
    QString linkOf(const QString &font) const;
    // Empty when the link is not ours.
    QString fontOf(const QString &link) const;
    // Forgets the link, returning its font (empty when it was not known).
    QString takeLink(const QString &link);
    // Forgets the font's link.
    void removeFont(const QString &font);
    qsizetype size() const { return m_byFont.size(); }
    QSet<QString> fonts() const;
    // Link path to font path: built whole, for callers that need a copy.
    QHash<QString, QString> linksToFonts() const;
    // Calls `visit(link, font)` for every link; `visit` may change the index, which then
    // goes on over the links as they were.
    template<typename Visit>
    void forEach(Visit visit) const
    {
        const QHash<QString, Entry> snapshot = m_byFont; // shares the strings
        const QStringList folders = m_folders;
        for (auto it = snapshot.cbegin(); it != snapshot.cend(); ++it)
            visit(folders.at(it->folder) + u'/' + it->name, it.key());
    }

private:
    struct Entry
    {
        int folder = -1;
        QString name;
    };
    struct Key
    {
        int folder = -1;
        QString name;
        friend bool operator==(const Key &a, const Key &b) { return a.folder == b.folder && a.name == b.name; }
        friend size_t qHash(const Key &key, size_t seed = 0) { return qHashMulti(seed, key.folder, key.name); }
    };
    Key keyOf(const QString &link) const;

    QStringList m_folders;            // by id; kept when emptied, a folder comes back often
    QHash<QString, int> m_folderIds;
    QHash<QString, Entry> m_byFont;   // font path -> its link
    QHash<Key, QString> m_byLink;     // its link -> font path (the same strings)
};
