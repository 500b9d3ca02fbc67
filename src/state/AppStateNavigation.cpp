// SPDX-License-Identifier: GPL-3.0-or-later
// Selection and column navigation of the store.
#include "AppState.h"

#include <QDir>

#include <algorithm>

namespace {

// The list's element with the selection's id, when the selection is of that kind.
template <typename Record>
std::optional<Record> selected(const std::optional<SidebarItem> &selection, bool rightKind, const QList<Record> &list)
{
    if (!selection || !rightKind)
        return std::nullopt;
    const QUuid id = selection->payloadId();
    const auto found = std::find_if(list.cbegin(), list.cend(), [&id](const Record &record) { return record.id == id; });
    return found == list.cend() ? std::nullopt : std::optional<Record>(*found);
}

} // namespace

std::optional<FolderSource> AppState::selectedSource() const
{
    return selected(m_sidebarSelection, m_sidebarSelection && m_sidebarSelection->isSource(), m_sources);
}

std::optional<FontCollection> AppState::selectedCollection() const
{
    return selected(m_sidebarSelection, m_sidebarSelection && m_sidebarSelection->isCollection(), m_collections);
}

std::optional<LibraryView> AppState::selectedLibraryView() const
{
    if (m_sidebarSelection && m_sidebarSelection->isLibrary())
        return *m_sidebarSelection->library();
    return std::nullopt;
}

std::optional<FontNode> AppState::selectedFont() const
{
    if (m_navigationPath.isEmpty() || !m_navigationPath.constLast().isFont())
        return std::nullopt;
    return m_navigationPath.constLast();
}

QList<QList<FontNode>> AppState::buildColumns() const
{
    const std::optional<FolderSource> source = selectedSource();
    if (!source)
        return {};
    // The lists are the scan's own, shared, not copied node by node.
    QList<QList<FontNode>> columns{m_fileSystemService->children(QDir::cleanPath(source->path))};
    for (const FontNode &node : m_navigationPath) {
        if (node.isDirectory())
            columns.append(m_fileSystemService->children(node.path()));
    }
    return columns;
}

std::optional<FontNode> AppState::selectedNode(int column) const
{
    if (column < 0 || column >= m_navigationPath.size())
        return std::nullopt;
    return m_navigationPath.at(column);
}

void AppState::selectNode(const FontNode &node, int level)
{
    QList<FontNode> path = m_navigationPath.mid(0, std::max(0, level));
    path.append(node);
    setNavigationPath(path);
    setActiveColumnIndex(level);
    setCachedColumns(buildColumns());
}

void AppState::showSourceRoot()
{
    setNavigationPath({});
    setActiveColumnIndex(0);
    setCachedColumns(buildColumns());
}

namespace {

qsizetype indexOf(const QList<FontNode> &items, const std::optional<FontNode> &node)
{
    return node ? items.indexOf(*node) : -1;
}

} // namespace

int AppState::keyboardColumn() const
{
    // An active index beyond the last column acts on the last column.
    return std::min(static_cast<int>(m_cachedColumns.size()) - 1, m_activeColumnIndex);
}

void AppState::moveInColumn(int step)
{
    if (m_cachedColumns.isEmpty())
        return;
    const int column = keyboardColumn();
    const QList<FontNode> items = m_cachedColumns.at(column);
    if (items.isEmpty())
        return;
    const qsizetype current = indexOf(items, selectedNode(column));
    if (current < 0) {
        // From nowhere, Up lands on the bottom row and Down on the top row.
        selectNode(step < 0 ? items.constLast() : items.constFirst(), column);
        return;
    }
    const qsizetype next = current + step;
    if (next >= 0 && next < items.size()) // no wrap-around at either end
        selectNode(items.at(next), column);
}

void AppState::handleArrowUp()
{
    moveInColumn(-1);
}

void AppState::handleArrowDown()
{
    moveInColumn(1);
}

void AppState::handleArrowRight()
{
    if (m_cachedColumns.isEmpty())
        return;
    const int column = keyboardColumn();
    const std::optional<FontNode> current = selectedNode(column);
    if (!current || !current->isDirectory())
        return;
    const int next = column + 1;
    if (next < m_cachedColumns.size() && !m_cachedColumns.at(next).isEmpty()) {
        setActiveColumnIndex(next);
        selectNode(m_cachedColumns.at(next).constFirst(), next);
    }
}

void AppState::handleArrowLeft()
{
    if (m_cachedColumns.isEmpty() || m_activeColumnIndex < 1)
        return;
    setActiveColumnIndex(m_activeColumnIndex - 1);
    if (m_navigationPath.size() > m_activeColumnIndex + 1)
        setNavigationPath(m_navigationPath.mid(0, m_activeColumnIndex + 1));
    setCachedColumns(buildColumns());
}

QList<FontNode> AppState::buildNavigationPath(const QString &rootPath, const QString &targetPath)
{
    const QString root = QDir::cleanPath(rootPath);
    const QString target = QDir::cleanPath(targetPath);
    const QString prefix = root == u"/" ? root : root + u'/';
    if (!target.startsWith(prefix) || target == root)
        return {};
    const QStringList pieces = target.mid(prefix.size()).split(u'/', Qt::SkipEmptyParts);
    QList<FontNode> nodes;
    QString path = root == u"/" ? QString() : root;
    for (const QString &piece : pieces) {
        path += u'/' + piece;
        nodes.append(FontNode::folder(path));
    }
    return nodes;
}

void AppState::jumpTo(const FolderSource &source, const QList<FontNode> &path)
{
    setSidebarSelection(SidebarItem(source));
    setNavigationPath(path);
    setActiveColumnIndex(path.isEmpty() ? 0 : static_cast<int>(path.size()) - 1);
    setCachedColumns(buildColumns());
}

void AppState::navigateToSearchResult(FolderSearchResult result)
{
    Q_EMIT jumped(SidebarItem(result.source));
    setSearchQuery(QString()); // ends the search
    jumpTo(result.source, result.navigationPath);
}

void AppState::navigateToMember(const CollectionMember &member)
{
    const QString path = QDir::cleanPath(member.path);
    if (!m_fileSystemService->exists(path))
        return; // a member the last scan did not see can't be shown
    const auto source = std::find_if(m_sources.cbegin(), m_sources.cend(), [&path](const FolderSource &candidate) {
        const QString root = QDir::cleanPath(candidate.path);
        return path == root || path.startsWith(root == u"/" ? root : root + u'/');
    });
    if (source == m_sources.cend())
        return;
    const QString target = member.isDirectory ? path : path.section(u'/', 0, -2);
    QList<FontNode> newPath = buildNavigationPath(source->path, target.isEmpty() ? QStringLiteral("/") : target);
    if (!member.isDirectory)
        newPath.append(FontNode::fromPath(path));
    Q_EMIT jumped(SidebarItem(*source));
    jumpTo(*source, newPath);
}
