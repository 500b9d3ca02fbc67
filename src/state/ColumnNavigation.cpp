// SPDX-License-Identifier: GPL-3.0-or-later
#include "ColumnNavigation.h"

#include <QDir>

#include <algorithm>

ColumnNavigation::ColumnNavigation(Root root, Children children, QObject *parent)
    : QObject(parent)
    , m_root(std::move(root))
    , m_children(std::move(children))
{
}

QList<QList<FontNode>> ColumnNavigation::build() const
{
    const std::optional<QString> root = m_root();
    if (!root)
        return {};
    QList<QList<FontNode>> columns{m_children(QDir::cleanPath(*root))};
    for (const FontNode &node : m_path) {
        if (node.isDirectory())
            columns.append(m_children(node.path()));
    }
    return columns;
}

std::optional<FontNode> ColumnNavigation::selectedNode(int column) const
{
    if (column < 0 || column >= m_path.size())
        return std::nullopt;
    return m_path.at(column);
}

std::optional<FontNode> ColumnNavigation::selectedFont() const
{
    if (m_path.isEmpty() || !m_path.constLast().isFont())
        return std::nullopt;
    return m_path.constLast();
}

void ColumnNavigation::setPath(const QList<FontNode> &path)
{
    // Nodes compare by id, so this is the element-wise id comparison.
    if (m_path == path)
        return;
    m_path = path;
    Q_EMIT pathChanged();
}

void ColumnNavigation::setActiveColumn(int index)
{
    if (m_activeColumn == index)
        return;
    m_activeColumn = index;
    Q_EMIT activeColumnChanged();
}

void ColumnNavigation::setColumns(QList<QList<FontNode>> columns)
{
    m_columns = std::move(columns);
    Q_EMIT columnsChanged();
}

void ColumnNavigation::selectNode(const FontNode &node, int level)
{
    QList<FontNode> path = m_path.mid(0, std::max(0, level));
    path.append(node);
    setPath(path);
    setActiveColumn(level);
    rebuild();
}

void ColumnNavigation::showRoot()
{
    setPath({});
    setActiveColumn(0);
    rebuild();
}

void ColumnNavigation::jump(const QList<FontNode> &path)
{
    setPath(path);
    setActiveColumn(path.isEmpty() ? 0 : static_cast<int>(path.size()) - 1);
    rebuild();
}

int ColumnNavigation::keyboardColumn() const
{
    // An active index beyond the last column acts on the last column.
    return std::min(static_cast<int>(m_columns.size()) - 1, m_activeColumn);
}

void ColumnNavigation::moveInColumn(int step)
{
    if (m_columns.isEmpty())
        return;
    const int column = keyboardColumn();
    const QList<FontNode> items = m_columns.at(column);
    if (items.isEmpty())
        return;
    const std::optional<FontNode> chosen = selectedNode(column);
    const qsizetype current = chosen ? items.indexOf(*chosen) : -1;
    if (current < 0) {
        // From nowhere, Up lands on the bottom row and Down on the top row.
        selectNode(step < 0 ? items.constLast() : items.constFirst(), column);
        return;
    }
    const qsizetype next = current + step;
    if (next >= 0 && next < items.size()) // no wrap-around at either end
        selectNode(items.at(next), column);
}

void ColumnNavigation::arrowRight()
{
    if (m_columns.isEmpty())
        return;
    const int column = keyboardColumn();
    const std::optional<FontNode> current = selectedNode(column);
    if (!current || !current->isDirectory())
        return;
    const int next = column + 1;
    if (next < m_columns.size() && !m_columns.at(next).isEmpty()) {
        setActiveColumn(next);
        selectNode(m_columns.at(next).constFirst(), next);
    }
}

void ColumnNavigation::arrowLeft()
{
    if (m_columns.isEmpty() || m_activeColumn < 1)
        return;
    setActiveColumn(m_activeColumn - 1);
    if (m_path.size() > m_activeColumn + 1)
        setPath(m_path.mid(0, m_activeColumn + 1));
    rebuild();
}

QList<FontNode> ColumnNavigation::pathBetween(const QString &rootPath, const QString &targetPath)
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
