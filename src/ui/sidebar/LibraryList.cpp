// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sidebar/LibraryList.h"

#include "state/AppState.h"
#include "ui/common/Reading.h"
#include "ui/common/RowListAccessible.h"
#include "ui/common/RowBackground.h"
#include "ui/common/Symbols.h"
#include "ui/common/TextStyles.h"

#include <QAbstractListModel>
#include <QPainter>
#include <QStyledItemDelegate>

using namespace Qt::StringLiterals;

namespace {

constexpr int kRowHeight = 36;
constexpr int kCaptionRole = Qt::UserRole + 1;

class LibraryModel : public QAbstractListModel
{
public:
    explicit LibraryModel(AppState &state, QObject *parent) : QAbstractListModel(parent), m_state(state)
    {
        connect(&state, &AppState::libraryCountsChanged, this,
                [this] { Q_EMIT dataChanged(index(0), index(rowCount() - 1), {kCaptionRole, Qt::AccessibleDescriptionRole}); });
    }
    int rowCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : LibraryView::kKinds; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        const auto kind = LibraryView::Kind(index.row());
        switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            switch (kind) {
            case LibraryView::AllFonts: return LibraryList::tr("All Fonts");
            case LibraryView::ActiveFonts: return LibraryList::tr("Active Fonts");
            case LibraryView::Duplicates: return LibraryList::tr("Duplicates");
            case LibraryView::Conflicts: return LibraryList::tr("Conflicts");
            }
            return {};
        case kCaptionRole:
        case Qt::AccessibleDescriptionRole: {
            const qsizetype count = m_state.libraryFaceCount(kind);
            if (kind == LibraryView::Duplicates)
                return LibraryList::tr("One font in several files");
            if (kind == LibraryView::Conflicts)
                return LibraryList::tr("Active twice under one name");
            if (count < 0)
                return QString();
            return count == 1 ? LibraryList::tr("1 font") : LibraryList::tr("%Ln fonts", nullptr, int(count));
        }
        default:
            return {};
        }
    }

private:
    AppState &m_state;
};

class LibraryDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override { return {200, kRowHeight}; }
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QPalette &palette = option.palette;
        const bool selected = option.state & QStyle::State_Selected;
        const bool emphasised = selected && option.widget && option.widget->hasFocus();
        const QRectF r(option.rect);
        QRectF background = r.adjusted(4, 1, -4, -1);
        QRectF icon(r.left() + 10, r.center().y() - 9, 18, 18);
        QRectF name(icon.right() + 10, r.top() + 2, std::max<qreal>(0, r.right() - icon.right() - 18), r.height() / 2 - 1);
        QRectF caption(name.left(), r.center().y() + 1, name.width(), r.height() / 2 - 3);
        Reading::mirror(option.rect, option.direction, {&background, &icon, &name, &caption});
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        RowBackground::paint(*painter, background, palette,
                             RowBackground::stateOf(selected, emphasised, option.state & QStyle::State_MouseOver));
        const QColor onAccent = palette.color(QPalette::Active, QPalette::HighlightedText);
        if (index.row() == LibraryView::ActiveFonts) {
            QPalette mark = palette;
            if (emphasised)
                mark.setColor(QPalette::WindowText, onAccent);
            Symbols::drawActivation(*painter, icon.adjusted(1, 1, -1, -1), ActivationState::Active, mark);
        } else {
            Symbols::drawFontFile(*painter, icon, emphasised ? onAccent : Symbols::secondary(palette));
        }
        const Qt::Alignment leading = Reading::leading(option.direction);
        painter->setFont(option.font);
        painter->setPen(emphasised ? onAccent : palette.color(QPalette::WindowText));
        painter->drawText(name, leading | Qt::AlignBottom | Qt::TextSingleLine, index.data().toString());
        QFont small = option.font;
        small.setPointSizeF(TextStyles::captionSize(option.font));
        painter->setFont(small);
        painter->setPen(emphasised ? onAccent : Symbols::secondary(palette));
        painter->drawText(caption, leading | Qt::AlignTop | Qt::TextSingleLine, index.data(kCaptionRole).toString());
        painter->restore();
    }
};

} // namespace

LibraryList::LibraryList(AppState &state, QWidget *parent)
    : QListView(parent)
    , m_state(state)
{
    RowListAccessible::enable(this);
    setAccessibleName(tr("Library"));
    setModel(new LibraryModel(state, this));
    setItemDelegate(new LibraryDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    setMouseTracking(true);
    setFixedHeight(contentHeight());
    connect(&state, &AppState::sidebarSelectionChanged, this, &LibraryList::syncSelection);
    syncSelection();
}

int LibraryList::contentHeight() const
{
    return LibraryView::kKinds * kRowHeight + 2;
}

void LibraryList::syncSelection()
{
    const std::optional<LibraryView> view = m_state.selectedLibraryView();
    const QModelIndex index = view ? model()->index(int(view->kind), 0) : QModelIndex();
    if (index == currentIndex() && (!index.isValid() || selectionModel()->isSelected(index)))
        return;
    m_syncing = true;
    if (index.isValid())
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    else
        selectionModel()->clear();
    m_syncing = false;
}

void LibraryList::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QListView::selectionChanged(selected, deselected);
    if (m_syncing || selected.indexes().isEmpty())
        return;
    m_state.setSidebarSelection(SidebarItem(LibraryView::of(LibraryView::Kind(selected.indexes().first().row()))));
}
