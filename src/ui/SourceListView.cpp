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
#include <QToolButton>

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

SourceListView::SourceListView(AppState &state, QWidget *parent)
    : QListView(parent)
    , m_state(state)
    , m_model(new SidebarModel(state, this))
    , m_delegate(new SidebarRow(this))
{
    setAccessibleName(u"Sidebar"_s);
    setModel(m_model);
    setItemDelegate(m_delegate);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed); // F2
    setMouseTracking(true);
    setAcceptDrops(true);
    setDropIndicatorShown(false);
    setFrameShape(QFrame::NoFrame);
    setMinimumWidth(180);
    setMaximumWidth(260);
    viewport()->setAutoFillBackground(false);
    m_chooseFolders = [this] {
        std::unique_ptr<QFileDialog> chooser(makeFolderChooser(this));
        return chooser->exec() == QDialog::Accepted ? chooser->selectedFiles() : QStringList();
    };
    m_chooseIcon = [this] {
        std::unique_ptr<QFileDialog> chooser(makeIconChooser(this));
        return chooser->exec() == QDialog::Accepted ? chooser->selectedFiles().value(0) : QString();
    };
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        installHeaders();
        syncSelection();
    });
    connect(&state, &AppState::sidebarSelectionChanged, this, &SourceListView::syncSelection);
    connect(&state, &AppState::shouldFocusSidebarChanged, this, [this] {
        if (!m_state.shouldFocusSidebar())
            return;
        setFocus(Qt::OtherFocusReason);
        m_state.setShouldFocusSidebar(false);
    });
    installHeaders();
    syncSelection();
}

void SourceListView::installHeaders()
{
    const auto header = [this](const QString &title, const QString &tip, int gap, void (SourceListView::*add)()) {
        auto *bar = new QWidget;
        auto *layout = new QHBoxLayout(bar);
        layout->setContentsMargins(10, gap, 6, 0);
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
    };
    setIndexWidget(m_model->index(0), header(u"Sources"_s, u"Add a font folder source"_s, 0, &SourceListView::addSources));
    setIndexWidget(m_model->index(m_model->collectionsHeaderRow()),
                   header(u"Collections"_s, u"New Collection"_s, SidebarRow::kCollectionsHeaderGap,
                          &SourceListView::newCollection));
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

void SourceListView::renameCollection(int row)
{
    const QModelIndex index = m_model->index(row);
    setCurrentIndex(index);
    edit(index);
}

void SourceListView::syncSelection()
{
    const std::optional<SidebarItem> &selection = m_state.sidebarSelection();
    const int row = selection ? m_model->rowOf(*selection) : -1;
    const QModelIndex index = row >= 0 ? m_model->index(row) : QModelIndex();
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

void SourceListView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QListView::currentChanged(current, previous);
    if (m_syncing || !current.isValid())
        return;
    if (const std::optional<SidebarItem> item = m_model->item(current.row()))
        m_state.setSidebarSelection(item);
}

void SourceListView::handOverToBrowser()
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

void SourceListView::keyPressEvent(QKeyEvent *event)
{
    if (state() != QAbstractItemView::EditingState && event->key() == Qt::Key_Right && event->modifiers() == Qt::NoModifier) {
        handOverToBrowser();
        event->accept();
        return;
    }
    QListView::keyPressEvent(event);
}

void SourceListView::mousePressEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    const auto kind = index.isValid() ? m_model->kind(index.row()) : SidebarModel::Kind::SourcesHeader;
    const bool row = kind == SidebarModel::Kind::Source || kind == SidebarModel::Kind::Collection;
    if (row && event->button() == Qt::LeftButton
        && SidebarRow::layout(visualRect(index), static_cast<int>(kind)).button.contains(event->position())) {
        setFocus(Qt::MouseFocusReason);
        const std::optional<SidebarItem> item = m_model->item(index.row());
        if (const FolderSource *source = item ? item->source() : nullptr)
            m_state.toggleActivation(FontNode::folder(source->path));
        else if (const FontCollection *collection = item ? item->collection() : nullptr)
            m_state.toggleCollectionActivation(*collection);
        event->accept(); // the button doesn't select
        return;
    }
    QListView::mousePressEvent(event);
}

void SourceListView::contextMenuEvent(QContextMenuEvent *event)
{
    const QModelIndex index = event->reason() == QContextMenuEvent::Mouse ? indexAt(event->pos()) : currentIndex();
    const std::optional<SidebarItem> item = index.isValid() ? m_model->item(index.row()) : std::nullopt;
    if (!item)
        return;
    QMenu *menu = nullptr;
    if (const FolderSource *source = item->source()) {
        menu = ContextMenus::buildSourceMenu(m_state, *source, this);
    } else if (const FontCollection *found = item->collection()) {
        const FontCollection collection = *found;
        const int row = index.row();
        menu = ContextMenus::buildCollectionMenu(
            m_state, collection, this, [this, row] { renameCollection(row); },
            [this, id = collection.id] {
                const QString icon = m_chooseIcon();
                if (!icon.isEmpty())
                    m_state.setCollectionIcon(id, icon);
            });
    }
    if (!menu)
        return;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const QPoint at = event->reason() == QContextMenuEvent::Mouse ? event->globalPos()
                                                                   : viewport()->mapToGlobal(visualRect(index).center());
    menu->popup(at);
}

int SourceListView::collectionRowAt(const QPoint &point) const
{
    const QModelIndex index = indexAt(point);
    return index.isValid() && m_model->kind(index.row()) == SidebarModel::Kind::Collection ? index.row() : -1;
}

void SourceListView::setDropRow(int row)
{
    m_delegate->setDropRow(row);
    viewport()->update();
}

void SourceListView::dragEnterEvent(QDragEnterEvent *event)
{
    if (Drops::carriesFiles(event->mimeData()) && Drops::safeAction(event->possibleActions()))
        event->accept();
    else
        event->ignore();
}

void SourceListView::dragMoveEvent(QDragMoveEvent *event)
{
    const int row = collectionRowAt(event->position().toPoint());
    const std::optional<Qt::DropAction> action = Drops::safeAction(event->possibleActions());
    setDropRow(row >= 0 && action ? row : -1);
    if (row < 0 || !action) {
        event->ignore(visualRect(m_model->index(std::max(0, row))));
        return;
    }
    event->setDropAction(*action);
    event->accept(visualRect(m_model->index(row)));
}

void SourceListView::dragLeaveEvent(QDragLeaveEvent *event)
{
    setDropRow(-1);
    event->accept();
}

void SourceListView::dropEvent(QDropEvent *event)
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

void SourceListView::focusInEvent(QFocusEvent *event)
{
    QListView::focusInEvent(event);
    m_delegate->setEmphasised(true);
    viewport()->update();
}

void SourceListView::focusOutEvent(QFocusEvent *event)
{
    QListView::focusOutEvent(event);
    m_delegate->setEmphasised(false);
    viewport()->update();
}
