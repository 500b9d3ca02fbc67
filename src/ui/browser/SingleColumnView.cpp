// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/browser/SingleColumnView.h"
#include "ui/common/TopRowAnchor.h"
#include "ui/common/RowListAccessible.h"

#include "ui/browser/FontNodeListModel.h"
#include "ui/common/ContextMenus.h"
#include "ui/browser/FontNodeDelegate.h"
#include "ui/common/Reading.h"

#include "state/AppState.h"

#include <QGuiApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QTimer>

using namespace Qt::StringLiterals;

SingleColumnView::SingleColumnView(AppState &state, int columnIndex, QWidget *parent)
    : QListView(parent)
    , m_state(state)
    , m_columnIndex(columnIndex)
    , m_model(new FontNodeListModel(state, this))
    , m_row(new FontNodeDelegate(this))
{
    RowListAccessible::enable(this);
    setModel(m_model);
    TopRowAnchor::install(this);
    setItemDelegate(m_row);
    setFixedWidth(kWidth);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
    setViewportMargins(0, 3, 0, 3);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Column %1").arg(columnIndex + 1));
    // Qt's own drag, of the model's file URLs.
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setDefaultDropAction(Qt::CopyAction);
    connect(this, &QAbstractItemView::pressed, this, &SingleColumnView::pressRow);
    connect(m_row, &FontNodeDelegate::activationClicked, this,
            [this](const QModelIndex &index) { m_state.toggleActivation(m_model->node(index.row())); });
}

void SingleColumnView::setColumn(int columnIndex, const QList<FontNode> &nodes)
{
    m_columnIndex = columnIndex;
    setAccessibleName(tr("Column %1").arg(columnIndex + 1));
    m_model->setNodes(nodes);
}

void SingleColumnView::syncWithStore()
{
    const bool active = m_state.activeColumnIndex() == m_columnIndex;
    m_row->setActiveColumn(active);
    const std::optional<FontNode> selected = m_state.selectedNode(m_columnIndex);
    const int row = selected ? m_model->rowOf(selected->path()) : -1;
    if (row < 0) {
        selectionModel()->clearSelection();
        m_shownSelection.clear();
    } else {
        const QModelIndex index = m_model->index(row);
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        if (m_shownSelection != selected->path() && isVisible()) {
            m_shownSelection = selected->path();
            // Once laid out: a column just made has no height yet to centre in.
            QTimer::singleShot(0, this, [this] {
                const std::optional<FontNode> now = m_state.selectedNode(m_columnIndex);
                const int current = now ? m_model->rowOf(now->path()) : -1;
                if (current >= 0) {
                    executeDelayedItemsLayout();
                    scrollTo(m_model->index(current), QAbstractItemView::PositionAtCenter);
                }
            });
        }
    }
    viewport()->update();
}

void SingleColumnView::scrollToSelection()
{
    m_shownSelection.clear();
    syncWithStore();
}

void SingleColumnView::showEvent(QShowEvent *event)
{
    QListView::showEvent(event);
    m_shownSelection.clear(); // first shown: the selected row goes to the centre
    syncWithStore();
}

void SingleColumnView::pressRow(const QModelIndex &index)
{
    // Only the left button chooses; a right press leaves the menu to show beside the selection.
    if (QGuiApplication::mouseButtons() & Qt::LeftButton)
        chooseRow(index);
}

void SingleColumnView::chooseRow(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    m_typeAhead.reset();
    m_state.selectNode(m_model->node(index.row()), m_columnIndex);
}

QItemSelectionModel::SelectionFlags SingleColumnView::selectionCommand(const QModelIndex &, const QEvent *) const
{
    return QItemSelectionModel::NoUpdate; // the store chooses; syncWithStore shows its choice
}

void SingleColumnView::contextMenuEvent(QContextMenuEvent *event)
{
    // A right click shows the menu of the row under the pointer and selects nothing;
    // the menu key shows the selected row's, beside it.
    QModelIndex index = indexAt(event->pos());
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const std::optional<FontNode> selected = m_state.selectedNode(m_columnIndex);
        index = selected ? m_model->index(m_model->rowOf(selected->path())) : QModelIndex();
        at = viewport()->mapToGlobal(visualRect(index).center());
    }
    if (!index.isValid())
        return;
    QMenu *menu = ContextMenus::buildNodeMenu(m_state, m_model->node(index.row()), this);
    // Deleted once closed: a chosen action has run by then.
    connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    menu->popup(at);
    event->accept();
}

void SingleColumnView::selectRow(int row)
{
    if (row >= 0 && row < m_model->rowCount())
        m_state.selectNode(m_model->node(row), m_columnIndex);
}

bool SingleColumnView::typing() const
{
    return m_sinceTyped.isValid() && m_typeAhead.isTyping(m_sinceTyped.elapsed());
}

bool SingleColumnView::typeAhead(const QString &text)
{
    if (!m_sinceTyped.isValid())
        m_sinceTyped.start();
    const std::optional<FontNode> selected = m_state.selectedNode(m_columnIndex);
    const int current = selected ? m_model->rowOf(selected->path()) : -1;
    const int row = m_typeAhead.type(text, m_sinceTyped.elapsed(), current, m_model->rowCount(),
                                     [this](int index) { return m_model->node(index).name(); });
    if (row >= 0)
        selectRow(row);
    return row >= 0;
}

void SingleColumnView::keyPressEvent(QKeyEvent *event)
{
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const bool typed = plain && !event->text().isEmpty() && event->text().at(0).isPrint() &&
                       (event->key() != Qt::Key_Space || typing());
    if (!typed)
        m_typeAhead.reset(); // any other key ends a typed search
    switch (Reading::logicalKey(this, event->key())) {
    case Qt::Key_Up:
        m_state.handleArrowUp();
        break;
    case Qt::Key_Down:
        m_state.handleArrowDown();
        break;
    case Qt::Key_Right:
        m_state.handleArrowRight();
        break;
    case Qt::Key_Left:
        // The first column hands the keyboard to the sidebar.
        if (m_state.activeColumnIndex() < 1)
            m_state.requestSidebarFocus();
        else
            m_state.handleArrowLeft();
        break;
    case Qt::Key_Home:
        selectRow(0);
        break;
    case Qt::Key_End:
        selectRow(m_model->rowCount() - 1);
        break;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        verticalScrollBar()->triggerAction(event->key() == Qt::Key_PageUp ? QAbstractSlider::SliderPageStepSub
                                                                          : QAbstractSlider::SliderPageStepAdd);
        break;
    case Qt::Key_Space:
        if (plain && !typing()) {
            if (const std::optional<FontNode> node = m_state.selectedNode(m_columnIndex))
                m_state.toggleActivation(*node);
            break;
        }
        [[fallthrough]];
    default:
        if (plain && !event->text().isEmpty() && event->text().at(0).isPrint()) {
            typeAhead(event->text());
            break;
        }
        QListView::keyPressEvent(event);
        return;
    }
    event->accept();
}
