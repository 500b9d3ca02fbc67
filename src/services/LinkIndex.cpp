// SPDX-License-Identifier: GPL-3.0-or-later
#include "LinkIndex.h"

int LinkIndex::folderId(const QString &folder)
{
    const auto found = m_folderIds.constFind(folder);
    if (found != m_folderIds.cend())
        return *found;
    m_folders.append(folder);
    const int id = static_cast<int>(m_folders.size() - 1);
    m_folderIds.insert(folder, id);
    return id;
}

LinkIndex::Key LinkIndex::keyOf(const QString &link) const
{
    const qsizetype slash = link.lastIndexOf(u'/');
    if (slash < 0)
        return {};
    return {m_folderIds.value(link.left(slash), -1), link.mid(slash + 1)};
}

void LinkIndex::insert(const QString &font, const QString &link)
{
    const qsizetype slash = link.lastIndexOf(u'/');
    insert(font, folderId(link.left(slash)), link.mid(slash + 1));
}

void LinkIndex::insert(const QString &font, int folderId, const QString &name)
{
    removeFont(font); // one link per font
    m_byLink.insert(Key{folderId, name}, font);
    m_byFont.insert(font, Entry{folderId, name});
}

QString LinkIndex::linkOf(const QString &font) const
{
    const auto found = m_byFont.constFind(font);
    return found == m_byFont.cend() ? QString() : m_folders.at(found->folder) + u'/' + found->name;
}

QString LinkIndex::fontOf(const QString &link) const
{
    const Key key = keyOf(link);
    return key.folder < 0 ? QString() : m_byLink.value(key);
}

QString LinkIndex::takeLink(const QString &link)
{
    const Key key = keyOf(link);
    if (key.folder < 0)
        return {};
    const QString font = m_byLink.take(key);
    m_byFont.remove(font);
    return font;
}

void LinkIndex::removeFont(const QString &font)
{
    const auto found = m_byFont.constFind(font);
    if (found == m_byFont.cend())
        return;
    m_byLink.remove(Key{found->folder, found->name});
    m_byFont.erase(found);
}

QSet<QString> LinkIndex::fonts() const
{
    QSet<QString> all;
    all.reserve(m_byFont.size());
    for (auto it = m_byFont.cbegin(); it != m_byFont.cend(); ++it)
        all.insert(it.key());
    return all;
}

QHash<QString, QString> LinkIndex::linksToFonts() const
{
    QHash<QString, QString> all;
    all.reserve(m_byFont.size());
    forEach([&all](const QString &link, const QString &font) { all.insert(link, font); });
    return all;
}
