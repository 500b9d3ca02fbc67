#include "SourceListView.h"

#include "ContextMenus.h"
#include "Drops.h"
#include "SidebarModel.h"
#include "SidebarRow.h"
#include "TextStyles.h"

#include "state/AppState.h"

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QSignalBlocker>
#include <QSortFilterProxyModel>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Options of a dialog that make it the non-native one, whose views can take several
// folders and whose layout can take a message.
QFileDialog *dialog(QWidget *parent, const QString &title, const QString &message)
{
    auto *chooser = new QFileDialog(parent, title);
    chooser->setOption(QFileDialog::DontUseNativeDialog);
    chooser->setOption(QFileDialog::ReadOnly); // no folder creation
    auto *label = new QLabel(message, chooser);
    label->setObjectName(u"message"_s);
    if (auto *grid = qobject_cast<QGridLayout *>(chooser->layout()))
        grid->addWidget(label, grid->rowCount(), 0, 1, grid->columnCount());
    return chooser;
}

} // namespace

QFileDialog *SourceListView::makeFolderChooser(QWidget *parent)
{
    QFileDialog *chooser = dialog(parent, u"Choose a Font Folder"_s, u"Select a folder containing fonts"_s);
    chooser->setFileMode(QFileDialog::Directory);
    chooser->setOption(QFileDialog::ShowDirsOnly);
    for (const char *name : {"listView", "treeView"}) {
        if (auto *view = chooser->findChild<QAbstractItemView *>(QLatin1StringView(name)))
            view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    }
    return chooser;
}

QFileDialog *SourceListView::makeIconChooser(QWidget *parent)
{
    QFileDialog *chooser = dialog(parent, u"Choose an Icon"_s, u"Select a PNG or SVG image"_s);
    chooser->setFileMode(QFileDialog::ExistingFile);
    chooser->setMimeTypeFilters({u"image/png"_s, u"image/svg+xml"_s});
    chooser->setNameFilter(u"Images (*.png *.svg *.PNG *.SVG)"_s);
    return chooser;
}

SidebarList::SidebarList(SourceListView &sidebar, AppState &state, SidebarModel *model, bool collections)
    : QListView(&sidebar)
    , m_sidebar(sidebar)
    , m_state(state)
    , m_model(model)
    , m_section(new QSortFilterProxyModel(this))
    , m_delegate(new SidebarRow(this))
    , m_collections(collections)
{
    setAccessibleName(collections ? u"Collections"_s : u"Sources"_s);
    // Only this section's rows: screen readers see no others.
    m_section->setSourceModel(model);
    m_section->setFilterRole(SidebarModel::KindRole);
    const QStringList kinds = collections ? QStringList{QString::number(int(SidebarModel::Kind::Collection))}
                                          : QStringList{QString::number(int(SidebarModel::Kind::Source)),
                                                        QString::number(int(SidebarModel::Kind::Placeholder))};
    m_section->setFilterRegularExpression(u"^(%1)$"_s.arg(kinds.join(u'|')));
    setModel(m_section);
    setItemDelegate(m_delegate);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(collections ? QAbstractItemView::EditKeyPressed : QAbstractItemView::NoEditTriggers); // F2
    setMouseTracking(true);
    setAcceptDrops(collections);
    setDropIndicatorShown(false);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
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

void SidebarList::syncSelection()
{
    const std::optional<SidebarItem> &selection = m_state.sidebarSelection();
    const int row = selection ? m_model->rowOf(*selection) : -1;
    const QModelIndex index = row >= 0 && showsRow(row) ? indexForRow(row) : QModelIndex();
    if (index == currentIndex() && (!index.isValid() || selectionModel()->isSelected(index)))
        return;
    m_syncing = true;
    if (index.isValid()) {
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        scrollTo(index);
    } else {
        selectionModel()->clear();
    }
    m_syncing = false;
}

void SidebarList::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QListView::currentChanged(current, previous);
    if (m_syncing || !current.isValid())
        return;
    if (const std::optional<SidebarItem> item = m_model->item(rowOf(current)))
        m_state.setSidebarSelection(item);
}

void SidebarList::keyPressEvent(QKeyEvent *event)
{
    const bool plain = event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier;
    if (state() != QAbstractItemView::EditingState && plain) {
        const int current = rowOf(currentIndex());
        if (event->key() == Qt::Key_Right) {
            m_sidebar.handOver();
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

void SidebarList::mousePressEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    const auto kind = index.isValid() ? m_model->kind(rowOf(index)) : SidebarModel::Kind::Placeholder;
    const bool row = kind != SidebarModel::Kind::Placeholder;
    if (row && event->button() == Qt::LeftButton
        && SidebarRow::layout(visualRect(index), static_cast<int>(kind)).button.contains(event->position())) {
        setFocus(Qt::MouseFocusReason);
        const std::optional<SidebarItem> item = m_model->item(rowOf(index));
        if (const FolderSource *source = item ? item->source() : nullptr)
            m_state.toggleActivation(FontNode::folder(source->path));
        else if (const FontCollection *collection = item ? item->collection() : nullptr)
            m_state.toggleCollectionActivation(*collection);
        event->accept(); // the button doesn't select
        return;
    }
    QListView::mousePressEvent(event);
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
    const int row = collectionRowAt(event->position().toPoint());
    const std::optional<Qt::DropAction> action = Drops::safeAction(event->possibleActions());
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

SourceListView::SourceListView(AppState &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_model(new SidebarModel(state, this))
    , m_sources(new SidebarList(*this, state, m_model, false))
    , m_collections(new SidebarList(*this, state, m_model, true))
{
    setAccessibleName(u"Sidebar"_s);
    setMinimumWidth(180);
    setMaximumWidth(260);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(header(u"Sources"_s, u"Add a font folder source"_s, 0, &SourceListView::addSources));
    layout->addWidget(m_sources);
    layout->addWidget(header(u"Collections"_s, u"New Collection"_s, SidebarRow::kCollectionsHeaderGap,
                             &SourceListView::newCollection));
    layout->addWidget(m_collections, 1);
    m_chooseFolders = [this] {
        std::unique_ptr<QFileDialog> chooser(makeFolderChooser(this));
        return chooser->exec() == QDialog::Accepted ? chooser->selectedFiles() : QStringList();
    };
    m_chooseIcon = [this] {
        std::unique_ptr<QFileDialog> chooser(makeIconChooser(this));
        return chooser->exec() == QDialog::Accepted ? chooser->selectedFiles().value(0) : QString();
    };
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        fitSources();
        syncSelection();
    });
    connect(&state, &AppState::sidebarSelectionChanged, this, &SourceListView::syncSelection);
    connect(&state, &AppState::shouldFocusSidebarChanged, this, [this] {
        if (!m_state.shouldFocusSidebar())
            return;
        setFocus(Qt::OtherFocusReason);
        m_state.setShouldFocusSidebar(false);
    });
    fitSources();
    syncSelection();
}

QWidget *SourceListView::header(const QString &title, const QString &tip, int gap, void (SourceListView::*add)())
{
    auto *bar = new QWidget(this);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(12, gap, 6, 2);
    auto *label = new QLabel(title, bar);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 11 / 13);
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    TextStyles::applySecondary(label);
    layout->addWidget(label);
    layout->addStretch(1);
    auto *button = new QToolButton(bar);
    button->setText(u"+"_s);
    button->setAutoRaise(true);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    connect(button, &QToolButton::clicked, this, add);
    layout->addWidget(button);
    return bar;
}

SidebarList *SourceListView::listShowing(int row) const
{
    return m_collections->showsRow(row) ? m_collections : m_sources;
}

void SourceListView::fitSources()
{
    // The sources take the room they need, up to half the sidebar; the collections the rest.
    const int wanted = m_sources->contentHeight() + 2;
    m_sources->setFixedHeight(std::min(wanted, std::max(80, height() / 2)));
}

void SourceListView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fitSources();
}

void SourceListView::syncSelection()
{
    m_sources->syncSelection();
    m_collections->syncSelection();
    const std::optional<SidebarItem> &selection = m_state.sidebarSelection();
    setFocusProxy(selection && selection->isCollection() ? m_collections : m_sources);
}

void SourceListView::addSources()
{
    for (const QString &folder : m_chooseFolders())
        m_state.addSource(folder);
}

void SourceListView::newCollection()
{
    m_state.createCollection(u"New Collection"_s);
}

void SourceListView::pickIcon(const QUuid &collectionId)
{
    const QString icon = m_chooseIcon();
    if (!icon.isEmpty())
        m_state.setCollectionIcon(collectionId, icon);
}

void SourceListView::renameCollection(int row)
{
    const QModelIndex index = m_collections->indexForRow(row);
    m_collections->setCurrentIndex(index);
    m_collections->setFocus();
    m_collections->edit(index);
}

void SourceListView::handOver()
{
    const std::optional<SidebarItem> &selection = m_state.sidebarSelection();
    if (!selection)
        return;
    if (selection->isCollection()) {
        Q_EMIT collectionFocusRequested();
        return;
    }
    const QList<QList<FontNode>> &columns = m_state.cachedColumns();
    if (!columns.isEmpty() && !columns.first().isEmpty())
        m_state.selectNode(columns.first().first(), 0);
    m_state.setShouldFocusBrowser(true);
}

void SourceListView::moveAcross(bool down)
{
    SidebarList *target = down ? m_collections : m_sources;
    const int row = target->edgeRow(!down); // the first collection; going up, the last source
    if (row < 0)
        return;
    target->setFocus(Qt::OtherFocusReason);
    target->setCurrentIndex(target->indexForRow(row));
}
