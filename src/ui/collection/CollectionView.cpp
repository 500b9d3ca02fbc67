// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/collection/CollectionView.h"

#include "ui/common/RowBackground.h"
#include "ui/common/LicenseColours.h"

#include "ui/collection/CollectionMemberList.h"
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

CollectionView::CollectionView(AppState &state, QUuid collectionId, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_collectionId(collectionId)
{
    setAccessibleName(tr("Collection"));
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
    m_name->setAccessibleName(tr("Collection name"));
    titles->addWidget(m_name);
    m_counts = new QLabel(header);
    m_counts->setAccessibleName(tr("Collection contents"));
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
    auto *empty = new QLabel(tr("Drag fonts or folders here"), m_body);
    empty->setAccessibleName(tr("Empty collection"));
    empty->setAlignment(Qt::AlignCenter);
    TextStyles::applySecondary(empty);
    m_body->addWidget(m_list);
    m_body->addWidget(empty);
    m_row->addWidget(m_body, 1);
    layout->addLayout(m_row, 1);

    connect(&state, &AppState::collectionsChanged, this, &CollectionView::syncHeader);
    connect(&state, &AppState::activatedFontsChanged, this, &CollectionView::syncHeader);
    connect(&state, &AppState::cachedColumnsChanged, this, &CollectionView::syncHeader);
    // The selected member, not merely the current one: Tab into the list shows nothing new.
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &CollectionView::syncPreview);
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
    m_counts->setText(SidebarModel::fontCount(m_state.allFontsInCollection(collection).size()) + u" · "_s
                      + SidebarModel::itemCount(collection.members.size()));
    const bool active = m_state.collectionActivationState(collection) == ActivationState::Active;
    m_toggle->setText(active ? tr("Deactivate All") : tr("Activate All"));
    m_toggle->setAccessibleName(m_toggle->text());
    m_toggle->setEnabled(!collection.members.isEmpty());

    QPixmap icon(64, 64);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    const std::optional<QImage> custom = collection.iconPath ? m_state.collectionIcon(*collection.iconPath) : std::nullopt;
    SidebarDelegate::drawCollectionIcon(painter, QRectF(4, 4, 56, 56), custom.value_or(QImage()),
                                   SidebarModel::isFavorites(collection.name), palette(), collection.isSmart());
    painter.end();
    icon.setDevicePixelRatio(2);
    m_icon->setPixmap(icon);
    m_body->setCurrentIndex(collection.members.isEmpty() ? 1 : 0);
}

void CollectionView::syncPreview()
{
    const QModelIndexList chosen = m_list->selectionModel()->selectedIndexes();
    const QModelIndex current = chosen.isEmpty() ? QModelIndex() : chosen.constFirst();
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
