// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/FontNode.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

// The column browser's place, one concern of the store: the node chosen in each column,
// the column the keyboard acts on, and the columns themselves, which are always the
// root's children followed by those of every folder on the path. It knows the library
// only through what it is given: where the tree starts (the selected source, or none)
// and what a folder holds (the scan's own lists, shared).
class ColumnNavigation : public QObject
{
    Q_OBJECT

public:
    using Root = std::function<std::optional<QString>()>;
    using Children = std::function<QList<FontNode>(const QString &folder)>;
    ColumnNavigation(Root root, Children children, QObject *parent = nullptr);

    const QList<FontNode> &path() const { return m_path; }            // the node chosen per column
    int activeColumn() const { return m_activeColumn; }               // the column with focus
    const QList<QList<FontNode>> &columns() const { return m_columns; } // always build()
    QList<QList<FontNode>> build() const;
    std::optional<FontNode> selectedNode(int column) const;
    std::optional<FontNode> selectedFont() const; // the path ends in a font

    void selectNode(const FontNode &node, int level);
    // The root's own level: nothing chosen, the first column active.
    void showRoot();
    // A place given whole (a search hit, a collection member): its last column active.
    void jump(const QList<FontNode> &path);
    // The library changed under the same path: the columns are read again.
    void rebuild() { setColumns(build()); }
    void arrowUp() { moveInColumn(-1); }
    void arrowDown() { moveInColumn(1); }
    void arrowLeft();
    void arrowRight();

    // The folders from the root down to the target, the target included; empty when the
    // target is not below the root.
    static QList<FontNode> pathBetween(const QString &rootPath, const QString &targetPath);

Q_SIGNALS:
    void pathChanged();
    void activeColumnChanged();
    void columnsChanged(); // said on every rebuild, whatever the columns hold

private:
    void setPath(const QList<FontNode> &path);
    void setActiveColumn(int index);
    void setColumns(QList<QList<FontNode>> columns);
    int keyboardColumn() const;
    void moveInColumn(int step); // -1 up, +1 down

    Root m_root;
    Children m_children;
    QList<FontNode> m_path;
    int m_activeColumn = 0;
    QList<QList<FontNode>> m_columns;
};
