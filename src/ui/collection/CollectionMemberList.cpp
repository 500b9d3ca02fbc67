// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/collection/CollectionMemberList.h"
#include "ui/common/RowListAccessible.h"

#include "ui/collection/CollectionMemberDelegate.h"
#include "ui/collection/CollectionMemberModel.h"
#include "ui/common/ContextMenus.h"
#include "ui/common/Reading.h"

#include "state/AppState.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>

using namespace Qt::StringLiterals;

CollectionMemberList::CollectionMemberList(AppState &state, QUuid collectionId, QWidget *parent)
    : QListView(parent)
    , m_state(state)
    , m_collectionId(collectionId)
    , m_model(new CollectionMemberModel(state, collectionId, this))
{
    RowListAccessible::enable(this);
    setAccessibleName(tr("Members"));
    setModel(m_model);
    auto *delegate = new CollectionMemberDelegate(this);
    setItemDelegate(delegate);
    connect(delegate, &CollectionMemberDelegate::activationClicked, this, [this](const QModelIndex &index) {
        const CollectionMember &member = m_model->members().at(index.row());
        m_state.toggleActivation(member.isDirectory ? FontNode::folder(member.path) : FontNode::fontFile(member.path));
    });
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setDefaultDropAction(Qt::CopyAction);
    setFrameShape(QFrame::NoFrame);
    setMinimumWidth(280);
}

void CollectionMemberList::jump(const QModelIndex &index)
{
    if (index.isValid())
        m_state.navigateToMember(m_model->members().at(index.row()));
}

void CollectionMemberList::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex current = currentIndex();
    switch (Reading::logicalKey(this, event->key())) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        jump(current);
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (current.isValid()) {
            const int row = current.row();
            m_state.removeFromCollection(m_collectionId, m_model->members().at(row));
            // The next member takes the removed one's place, ready for another Delete.
            if (m_model->rowCount() > 0)
                setCurrentIndex(m_model->index(std::min(row, m_model->rowCount() - 1)));
        }
        break;
    case Qt::Key_Left:
        m_state.requestSidebarFocus();
        break;
    default:
        QListView::keyPressEvent(event);
        return;
    }
    event->accept();
}

void CollectionMemberList::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    event->accept();
    // On the button it is a second click of the button, not a jump.
    if (!edit(index, QAbstractItemView::NoEditTriggers, event))
        jump(index);
}

void CollectionMemberList::contextMenuEvent(QContextMenuEvent *event)
{
    const QModelIndex index = event->reason() == QContextMenuEvent::Mouse ? indexAt(event->pos()) : currentIndex();
    if (!index.isValid())
        return;
    setCurrentIndex(index);
    QMenu *menu = ContextMenus::buildMemberMenu(m_state, m_model->members().at(index.row()), m_collectionId, this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->reason() == QContextMenuEvent::Mouse ? event->globalPos()
                                                             : viewport()->mapToGlobal(visualRect(index).center()));
}
