// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sidebar/SidebarList.h"
#include "ui/common/RowListAccessible.h"

#include "ui/common/ContextMenus.h"
#include "ui/common/Drops.h"
#include "ui/common/Reading.h"
#include "ui/sidebar/SidebarDelegate.h"
#include "ui/sidebar/SidebarModel.h"
#include "ui/sidebar/SidebarSectionProxy.h"
#include "ui/sidebar/SidebarView.h"

#include "state/AppState.h"

#include <QContextMenuEvent>
#include <QDir>
#include <QFileInfo>
#include <QInputDialog>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMimeData>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

SidebarList::SidebarList(SidebarView &sidebar, AppState &state, SidebarModel *model, bool collections)
    : QListView(&sidebar)
    , m_sidebar(sidebar)
    , m_state(state)
    , m_model(model)
    , m_section(new SidebarSectionProxy(collections, this))
    , m_delegate(new SidebarDelegate(this))
    , m_collections(collections)
{
    RowListAccessible::enable(this);
    setAccessibleName(collections ? tr("Collections") : tr("Sources"));
    // Only this section's rows: screen readers see no others.
    m_section->setSourceModel(model);
    setModel(m_section);
    setItemDelegate(m_delegate);
    // Rows the store added or took away move the current row; that is not a choice.
    connect(model, &SidebarModel::aboutToSync, this, [this] { m_syncing = true; });
    connect(model, &SidebarModel::synced, this, [this] { m_syncing = false; });
    connect(m_delegate, &SidebarDelegate::activationClicked, this, &SidebarList::toggle);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(collections ? QAbstractItemView::EditKeyPressed : QAbstractItemView::NoEditTriggers); // F2
    setMouseTracking(true);
    setAcceptDrops(true); // collections take files; the sources, folders to add
    setDropIndicatorShown(false);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
}

void SidebarList::toggle(const QModelIndex &index)
{
    const std::optional<SidebarItem> item = m_model->item(rowOf(index));
    if (const FolderSource *source = item ? item->source() : nullptr)
        m_state.toggleActivation(FontNode::folder(source->path));
    else if (const FontCollection *collection = item ? item->collection() : nullptr)
        m_state.toggleCollectionActivation(*collection);
}

QModelIndex SidebarList::indexForRow(int row) const
{
    return m_section->mapFromSource(m_model->index(row));
}

int SidebarList::rowOf(const QModelIndex &index) const
{
    return index.isValid() ? m_section->mapToSource(index).row() : -1;
}

bool SidebarList::showsRow(int row) const
{
    const SidebarModel::Kind kind = m_model->kind(row);
    return m_collections ? kind == SidebarModel::Kind::Collection
                         : kind == SidebarModel::Kind::Source || kind == SidebarModel::Kind::Placeholder;
}

int SidebarList::contentHeight() const
{
    int height = 0;
    for (int row = 0; row < m_section->rowCount(); ++row)
        height += sizeHintForRow(row);
    return height;
}

int SidebarList::edgeRow(bool last) const
{
    int found = -1;
    for (int row = 0; row < m_section->rowCount(); ++row) {
        if (m_section->flags(m_section->index(row, 0)) & Qt::ItemIsSelectable) {
            found = rowOf(m_section->index(row, 0));
            if (!last)
                break;
        }
    }
    return found;
}

void SidebarList::syncSelection(bool reveal)
{
    const std::optional<SidebarItem> &selection = m_state.sidebarSelection();
    const int row = selection ? m_model->rowOf(*selection) : -1;
    const QModelIndex index = row >= 0 && showsRow(row) ? indexForRow(row) : QModelIndex();
    if (index == currentIndex() && (!index.isValid() || selectionModel()->isSelected(index))) {
        if (reveal && index.isValid())
            scrollTo(index);
        return;
    }
    m_syncing = true;
    if (index.isValid()) {
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        scrollTo(index);
    } else {
        selectionModel()->clear();
    }
    m_syncing = false;
}

// A row the user selects, by click or key, becomes the store's choice. Only a selection
// counts: Tab into the list makes a row current without selecting it, and choosing
// nothing must not change what the window shows.
void SidebarList::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QListView::selectionChanged(selected, deselected);
    if (m_syncing || selected.indexes().isEmpty())
        return;
    if (const std::optional<SidebarItem> item = m_model->item(rowOf(selected.indexes().constFirst())))
        m_state.setSidebarSelection(item);
}

void SidebarList::keyPressEvent(QKeyEvent *event)
{
    const bool plain = event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier;
    if (state() != QAbstractItemView::EditingState && plain) {
        const int current = rowOf(currentIndex());
        if (Reading::logicalKey(this, event->key()) == Qt::Key_Right) {
            m_sidebar.handOver();
            event->accept();
            return;
        }
        // Space toggles the row's activation, as in the browser.
        if (event->key() == Qt::Key_Space && current >= 0) {
            toggle(indexForRow(current));
            event->accept();
            return;
        }
        if ((event->key() == Qt::Key_Down && current == edgeRow(true) && !m_collections)
            || (event->key() == Qt::Key_Up && current == edgeRow(false) && m_collections)) {
            m_sidebar.moveAcross(event->key() == Qt::Key_Down);
            event->accept();
            return;
        }
    }
    QListView::keyPressEvent(event);
}

void SidebarList::contextMenuEvent(QContextMenuEvent *event)
{
    const QModelIndex index = event->reason() == QContextMenuEvent::Mouse ? indexAt(event->pos()) : currentIndex();
    const std::optional<SidebarItem> item = index.isValid() ? m_model->item(rowOf(index)) : std::nullopt;
    if (!item)
        return;
    QMenu *menu = nullptr;
    if (const FolderSource *source = item->source()) {
        menu = ContextMenus::buildSourceMenu(m_state, *source, this);
    } else if (const FontCollection *collection = item->collection()) {
        const int row = rowOf(index);
        menu = ContextMenus::buildCollectionMenu(
            m_state, *collection, this, [this, row] { m_sidebar.renameCollection(row); },
            [this, id = collection->id] { m_sidebar.pickIcon(id); });
    }
    if (!menu)
        return;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->reason() == QContextMenuEvent::Mouse ? event->globalPos()
                                                             : viewport()->mapToGlobal(visualRect(index).center()));
}

int SidebarList::collectionRowAt(const QPoint &point) const
{
    const int row = rowOf(indexAt(point));
    return row >= 0 && m_model->kind(row) == SidebarModel::Kind::Collection ? row : -1;
}

void SidebarList::setDropRow(int row)
{
    m_delegate->setDropRow(row);
    viewport()->update();
}

void SidebarList::dragEnterEvent(QDragEnterEvent *event)
{
    if (Drops::carriesFiles(event->mimeData()) && Drops::safeAction(event->possibleActions()))
        event->accept();
    else
        event->ignore();
}

void SidebarList::dragMoveEvent(QDragMoveEvent *event)
{
    if (!m_collections) { // the whole sources list takes folders to add
        const std::optional<Qt::DropAction> action = Drops::safeAction(event->possibleActions());
        if (!action) {
            event->ignore();
            return;
        }
        event->setDropAction(*action);
        event->accept();
        return;
    }
    int row = collectionRowAt(event->position().toPoint());
    const std::optional<Qt::DropAction> action = Drops::safeAction(event->possibleActions());
    // A smart collection's members are its question's answer: nothing is dropped on it.
    if (const std::optional<SidebarItem> item = row >= 0 ? m_model->item(row) : std::nullopt;
        item && item->collection() && item->collection()->isSmart())
        row = -1;
    setDropRow(row >= 0 && action ? row : -1);
    if (row < 0 || !action) {
        event->ignore();
        return;
    }
    event->setDropAction(*action);
    event->accept(visualRect(indexForRow(row)));
}

void SidebarList::dragLeaveEvent(QDragLeaveEvent *event)
{
    setDropRow(-1);
    event->accept();
}

void SidebarList::dropEvent(QDropEvent *event)
{
    setDropRow(-1);
    if (!m_collections) {
        const std::optional<Qt::DropAction> action = Drops::safeAction(event->possibleActions());
        // A folder as it is; a font file's folder; anything else is no source.
        QStringList folders;
        for (const QUrl &url : event->mimeData()->urls()) {
            const QFileInfo info(url.toLocalFile());
            const QString folder = info.isDir() ? info.absoluteFilePath()
                                   : info.isFile() && isFontFileName(info.fileName()) ? info.absolutePath()
                                                                                      : QString();
            if (!folder.isEmpty() && !folders.contains(QDir::cleanPath(folder)))
                folders.append(QDir::cleanPath(folder));
        }
        if (folders.isEmpty() || !action) {
            event->ignore();
            return;
        }
        event->setDropAction(*action);
        event->accept();
        QString chosen = folders.constFirst();
        if (folders.size() > 1) {
            if (m_chooseFolder) {
                chosen = m_chooseFolder(folders);
            } else {
                bool ok = false;
                chosen = QInputDialog::getItem(this, tr("Add Folder as Source"),
                                               tr("The fonts come from several folders. Which one should be a source?"),
                                               folders, 0, false, &ok);
                if (!ok)
                    chosen.clear();
            }
        }
        if (!chosen.isEmpty())
            m_state.addSource(chosen);
        return;
    }
    const int row = collectionRowAt(event->position().toPoint());
    const std::optional<Qt::DropAction> action = Drops::safeAction(event->possibleActions());
    const std::optional<SidebarItem> item = row >= 0 ? m_model->item(row) : std::nullopt;
    const FontCollection *collection = item ? item->collection() : nullptr;
    if (!collection || !action) {
        event->ignore();
        return;
    }
    Drops::addToCollection(m_state, collection->id, event->mimeData());
    event->setDropAction(*action);
    event->accept();
}

void SidebarList::focusInEvent(QFocusEvent *event)
{
    QListView::focusInEvent(event);
    m_delegate->setEmphasised(true);
    viewport()->update();
}

void SidebarList::focusOutEvent(QFocusEvent *event)
{
    QListView::focusOutEvent(event);
    m_delegate->setEmphasised(false);
    viewport()->update();
}
