// SPDX-License-Identifier: GPL-3.0-or-later
// Selection and column navigation of the store: what is selected in the sidebar, and
// the browser's place (ColumnNavigation) within the selected source.
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
    return selected(m_sidebarSelection, m_sidebarSelection && m_sidebarSelection->isSource(), sources());
}

std::optional<FontCollection> AppState::selectedCollection() const
{
    return selected(m_sidebarSelection, m_sidebarSelection && m_sidebarSelection->isCollection(), m_collectionList->all());
}

std::optional<LibraryView> AppState::selectedLibraryView() const
{
    if (m_sidebarSelection && m_sidebarSelection->isLibrary())
        return *m_sidebarSelection->library();
    return std::nullopt;
}

std::optional<FontNode> AppState::selectedFont() const
{
    return m_navigation->selectedFont();
}

QList<QList<FontNode>> AppState::buildColumns() const
{
    return m_navigation->build();
}

std::optional<FontNode> AppState::selectedNode(int column) const
{
    return m_navigation->selectedNode(column);
}

void AppState::selectNode(const FontNode &node, int level)
{
    m_navigation->selectNode(node, level);
}

void AppState::showSourceRoot()
{
    m_navigation->showRoot();
}

void AppState::handleArrowUp()
{
    m_navigation->arrowUp();
}

void AppState::handleArrowDown()
{
    m_navigation->arrowDown();
}

void AppState::handleArrowRight()
{
    m_navigation->arrowRight();
}

void AppState::handleArrowLeft()
{
    m_navigation->arrowLeft();
}

void AppState::jumpTo(const FolderSource &source, const QList<FontNode> &path)
{
    setSidebarSelection(SidebarItem(source));
    m_navigation->jump(path);
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
    const auto source = std::find_if(sources().cbegin(), sources().cend(), [&path](const FolderSource &candidate) {
        const QString root = QDir::cleanPath(candidate.path);
        return path == root || path.startsWith(root == u"/" ? root : root + u'/');
    });
    if (source == sources().cend())
        return;
    const QString target = member.isDirectory ? path : path.section(u'/', 0, -2);
    QList<FontNode> newPath = buildNavigationPath(source->path, target.isEmpty() ? QStringLiteral("/") : target);
    if (!member.isDirectory)
        newPath.append(FontNode::fromPath(path));
    Q_EMIT jumped(SidebarItem(*source));
    jumpTo(*source, newPath);
}
