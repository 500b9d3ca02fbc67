// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/collection/CollectionView.h"

#include "ui/common/RowBackground.h"
#include "ui/common/LicenseColours.h"

#include "ui/collection/CollectionMemberModel.h"
#include "ui/common/ContextMenus.h"
#include "ui/common/Drops.h"
#include "ui/browser/FontNodeDelegate.h"
#include "ui/preview/FontPreviewView.h"
#include "ui/sidebar/SidebarModel.h"
#include "ui/sidebar/SidebarDelegate.h"
#include "ui/common/Symbols.h"
#include "ui/common/TextStyles.h"

#include "services/LicenseStatus.h"
#include "state/AppState.h"

#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int kRowHeight = 40;

// One member: its activation button (none when missing), a folder in its licence
// colour or the font symbol, the name, and the folder holding it in secondary text.
class CollectionMemberDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static FontNodeDelegate::Layout layout(const QRect &row) { return FontNodeDelegate::layout(row, false); }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override { return {300, kRowHeight}; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QPalette &palette = option.palette;
        const bool selected = option.state & QStyle::State_Selected;
        const bool emphasised = selected && option.widget && option.widget->hasFocus();
        const FontNodeDelegate::Layout parts = layout(option.rect);
        const bool missing = index.data(CollectionMemberModel::MissingRole).toBool();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        RowBackground::paint(*painter, parts.background, palette,
                             RowBackground::stateOf(selected, emphasised, option.state & QStyle::State_MouseOver));
        if (missing)
            painter->setOpacity(0.45);
        const QColor onAccent = palette.color(QPalette::Active, QPalette::HighlightedText);
        QPalette buttonPalette = palette;
        if (emphasised)
            buttonPalette.setColor(QPalette::WindowText, onAccent);
        const int state = index.data(CollectionMemberModel::ActivationRole).toInt();
        if (state >= 0)
            Symbols::drawActivation(*painter, parts.button.adjusted(2, 2, -2, -2), static_cast<ActivationState>(state),
                                    buttonPalette);
        if (index.data(CollectionMemberModel::IsFolderRole).toBool()) {
            const auto status = static_cast<LicenseStatus>(index.data(CollectionMemberModel::LicenseRole).toInt());
            Symbols::drawFolder(*painter, parts.icon,
                                emphasised ? LicenseColours::selectedColor(status)
                                           : Symbols::forAppearance(LicenseColours::color(status), palette));
        } else {
            Symbols::drawFontFile(*painter, parts.icon, emphasised ? onAccent : Symbols::secondary(palette));
        }
        const QRectF text = parts.text.adjusted(0, 0, -6, 0);
        painter->setFont(option.font);
        painter->setPen(emphasised ? onAccent : palette.color(QPalette::WindowText));
        const QRectF nameRect(text.left(), text.top(), text.width(), text.height() / 2);
        painter->drawText(nameRect, Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine,
                          option.fontMetrics.elidedText(index.data().toString(), Qt::ElideMiddle, int(text.width())));
        QFont caption = option.font;
        caption.setPointSizeF(TextStyles::captionSize(option.font));
        painter->setFont(caption);
        painter->setPen(emphasised ? onAccent : Symbols::secondary(palette));
        const QString folder = index.data(CollectionMemberModel::FolderRole).toString();
        const QString line = missing ? u"Missing · "_s + folder : folder;
        painter->drawText(QRectF(text.left(), text.center().y() + 1, text.width(), text.height() / 2),
                          Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                          QFontMetrics(caption).elidedText(line, Qt::ElideMiddle, int(text.width())));
        painter->restore();
    }
};

} // namespace

CollectionMemberList::CollectionMemberList(AppState &state, QUuid collectionId, QWidget *parent)
    : QListView(parent)
    , m_state(state)
    , m_collectionId(collectionId)
    , m_model(new CollectionMemberModel(state, collectionId, this))
{
    setAccessibleName(u"Members"_s);
    setModel(m_model);
    setItemDelegate(new CollectionMemberDelegate(this));
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
    switch (event->key()) {
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
        m_state.setShouldFocusSidebar(true);
        break;
    default:
        QListView::keyPressEvent(event);
        return;
    }
    event->accept();
}

void CollectionMemberList::mousePressEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.isValid() && event->button() == Qt::LeftButton
        && index.data(CollectionMemberModel::ActivationRole).toInt() >= 0
        && CollectionMemberDelegate::layout(visualRect(index)).button.contains(event->position())) {
        const CollectionMember &member = m_model->members().at(index.row());
        m_state.toggleActivation(member.isDirectory ? FontNode::folder(member.path) : FontNode::fontFile(member.path));
        event->accept(); // the button doesn't select
        return;
    }
    QListView::mousePressEvent(event);
}

void CollectionMemberList::mouseDoubleClickEvent(QMouseEvent *event)
{
    jump(indexAt(event->position().toPoint()));
    event->accept();
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

CollectionView::CollectionView(AppState &state, QUuid collectionId, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_collectionId(collectionId)
{
    setAccessibleName(u"Collection"_s);
    setAcceptDrops(true);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto *header = new QWidget(this);
    auto *headerLayout = new QHBoxLayout(header);
    headerLayout->setContentsMargins(16, 12, 16, 12);
    headerLayout->setSpacing(10);
    m_icon = new QLabel(header);
    m_icon->setFixedSize(32, 32);
    headerLayout->addWidget(m_icon);
    auto *titles = new QVBoxLayout;
    titles->setSpacing(0);
    m_name = new QLabel(header);
    m_name->setFont(TextStyles::title2(font()));
    m_name->setAccessibleName(u"Collection name"_s);
    titles->addWidget(m_name);
    m_counts = new QLabel(header);
    m_counts->setAccessibleName(u"Collection contents"_s);
    TextStyles::applySecondary(m_counts);
    titles->addWidget(m_counts);
    headerLayout->addLayout(titles, 1);
    m_toggle = new QPushButton(header);
    connect(m_toggle, &QPushButton::clicked, this, [this] {
        for (const FontCollection &collection : m_state.collections()) {
            if (collection.id == m_collectionId)
                m_state.toggleCollectionActivation(collection);
        }
    });
    headerLayout->addWidget(m_toggle);
    layout->addWidget(header);
    auto *line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setForegroundRole(QPalette::Mid);
    layout->addWidget(line);

    m_row = new QHBoxLayout;
    m_row->setSpacing(0);
    m_body = new QStackedWidget(this);
    m_list = new CollectionMemberList(state, collectionId, m_body);
    auto *empty = new QLabel(u"Drag fonts or folders here"_s, m_body);
    empty->setAccessibleName(u"Empty collection"_s);
    empty->setAlignment(Qt::AlignCenter);
    TextStyles::applySecondary(empty);
    m_body->addWidget(m_list);
    m_body->addWidget(empty);
    m_row->addWidget(m_body, 1);
    layout->addLayout(m_row, 1);

    connect(&state, &AppState::collectionsChanged, this, &CollectionView::syncHeader);
    connect(&state, &AppState::activatedFontsChanged, this, &CollectionView::syncHeader);
    connect(&state, &AppState::cachedColumnsChanged, this, &CollectionView::syncHeader);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, &CollectionView::syncPreview);
    connect(m_list->memberModel(), &QAbstractItemModel::modelReset, this, &CollectionView::syncPreview);
    syncHeader();
}

void CollectionView::syncHeader()
{
    const auto &collections = m_state.collections();
    const auto found = std::find_if(collections.cbegin(), collections.cend(),
                                    [this](const FontCollection &c) { return c.id == m_collectionId; });
    if (found == collections.cend())
        return; // deleted: the window replaces this view
    const FontCollection &collection = *found;
    m_name->setText(collection.name);
    m_counts->setText(SidebarModel::count(m_state.allFontsInCollection(collection).size(), u"font"_s) + u" · "_s
                      + SidebarModel::count(collection.members.size(), u"item"_s));
    const bool active = m_state.collectionActivationState(collection) == ActivationState::Active;
    m_toggle->setText(active ? u"Deactivate All"_s : u"Activate All"_s);
    m_toggle->setAccessibleName(m_toggle->text());
    m_toggle->setEnabled(!collection.members.isEmpty());

    QPixmap icon(64, 64);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    const std::optional<QImage> custom = collection.iconPath ? m_state.collectionIcon(*collection.iconPath) : std::nullopt;
    SidebarDelegate::drawCollectionIcon(painter, QRectF(4, 4, 56, 56), custom.value_or(QImage()),
                                   SidebarModel::isFavorites(collection.name), palette());
    painter.end();
    icon.setDevicePixelRatio(2);
    m_icon->setPixmap(icon);
    m_body->setCurrentIndex(collection.members.isEmpty() ? 1 : 0);
}

void CollectionView::syncPreview()
{
    const QModelIndex current = m_list->currentIndex();
    const CollectionMember member = current.isValid() ? m_list->memberModel()->members().value(current.row())
                                                      : CollectionMember{};
    const bool showFont = current.isValid() && !member.isDirectory
                          && !current.data(CollectionMemberModel::MissingRole).toBool();
    const QString path = showFont ? member.path : QString();
    if (path == m_previewPath)
        return;
    m_previewPath = path;
    delete m_preview;
    m_preview = nullptr;
    if (path.isEmpty())
        return;
    m_preview = new FontPreviewView(m_state, FontNode::fontFile(path), this);
    m_preview->setMinimumWidth(400);
    m_row->addWidget(m_preview, 2);
    m_preview->show();
}

void CollectionView::dragEnterEvent(QDragEnterEvent *event)
{
    if (Drops::carriesFiles(event->mimeData()) && Drops::safeAction(event->possibleActions()))
        event->accept();
    else
        event->ignore();
}

void CollectionView::dragMoveEvent(QDragMoveEvent *event)
{
    // Our own rows dragged within the list stay where they are.
    if (event->source() == m_list || !Drops::safeAction(event->possibleActions())) {
        event->ignore();
        return;
    }
    event->setDropAction(*Drops::safeAction(event->possibleActions()));
    event->accept();
}

void CollectionView::dropEvent(QDropEvent *event)
{
    const std::optional<Qt::DropAction> action = Drops::safeAction(event->possibleActions());
    if (event->source() == m_list || !action) {
        event->ignore();
        return;
    }
    Drops::addToCollection(m_state, m_collectionId, event->mimeData());
    event->setDropAction(*action);
    event->accept();
}
