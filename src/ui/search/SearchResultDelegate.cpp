// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/search/SearchResultDelegate.h"

#include "ui/common/Reading.h"
#include "ui/common/RowButton.h"

#include "ui/common/RowBackground.h"
#include "ui/common/LicenseColours.h"

#include "ui/browser/FontNodeDelegate.h"
#include "ui/search/SearchResultsModel.h"
#include "ui/common/Symbols.h"

#include "services/LicenseStatus.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

constexpr qreal kMargin = 8;       // left and right of the highlight
constexpr qreal kInner = 8;        // inside the highlight
constexpr qreal kVertical = 5;
constexpr qreal kButtonSide = 18;
constexpr qreal kIconSide = 20;
constexpr qreal kSpacing = 10;

} // namespace

QFont SearchResultDelegate::nameFont(const QFont &base)
{
    QFont font = base;
    font.setWeight(QFont::Medium);
    return font;
}

QFont SearchResultDelegate::countFont(const QFont &base)
{
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 11 / 13);
    return font;
}

SearchResultDelegate::Layout SearchResultDelegate::layout(const QRect &row, const QFont &font, Qt::LayoutDirection direction)
{
    const QRectF r(row);
    Layout parts;
    parts.background = r.adjusted(kMargin, 1, -kMargin, -1);
    const qreal middle = r.center().y();
    qreal x = parts.background.left() + kInner;
    parts.button = QRectF(x, middle - kButtonSide / 2, kButtonSide, kButtonSide);
    x += kButtonSide + kSpacing;
    parts.icon = QRectF(x, middle - kIconSide / 2, kIconSide, kIconSide);
    x += kIconSide + kSpacing;
    const qreal width = std::max<qreal>(0, parts.background.right() - kInner - x);
    const qreal nameHeight = QFontMetricsF(nameFont(font)).height();
    const qreal countHeight = QFontMetricsF(countFont(font)).height();
    const qreal top = middle - (nameHeight + countHeight) / 2;
    parts.name = QRectF(x, top, width, nameHeight);
    parts.count = QRectF(x, top + nameHeight, width, countHeight);
    Reading::mirror(row, direction, {&parts.background, &parts.button, &parts.icon, &parts.name, &parts.count});
    return parts;
}

QSize SearchResultDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const qreal text = QFontMetricsF(nameFont(option.font)).height() + QFontMetricsF(countFont(option.font)).height();
    return {300, static_cast<int>(std::ceil(std::max(text, kIconSide) + 2 * kVertical + 2))};
}

void SearchResultDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QPalette &palette = option.palette;
    const Layout parts = layout(option.rect, option.font, option.direction);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    RowBackground::paint(*painter, parts.background, palette,
                         RowBackground::stateOf(false, false, option.state & QStyle::State_MouseOver));
    Symbols::drawActivation(*painter, parts.button,
                            static_cast<ActivationState>(index.data(SearchResultsModel::ActivationRole).toInt()), palette);
    const auto license = static_cast<LicenseStatus>(index.data(SearchResultsModel::LicenseRole).toInt());
    Symbols::drawFolder(*painter, parts.icon, Symbols::forAppearance(LicenseColours::color(license), palette));
    painter->setPen(palette.color(QPalette::Text));
    painter->setFont(nameFont(option.font));
    const QString name = index.data(Qt::DisplayRole).toString();
    painter->drawText(parts.name, Reading::leading(option.direction) | Qt::AlignVCenter,
                      QFontMetricsF(painter->font()).elidedText(name, Qt::ElideMiddle, parts.name.width()));
    painter->setPen(Symbols::secondary(palette));
    painter->setFont(countFont(option.font));
    const QString line = index.data(SearchResultsModel::CountTextRole).toString() + u" \u00b7 "_s
                         + index.data(SearchResultsModel::LocationRole).toString();
    painter->drawText(parts.count, Reading::leading(option.direction) | Qt::AlignVCenter,
                      QFontMetricsF(painter->font()).elidedText(line, Qt::ElideMiddle, parts.count.width()));
    painter->restore();
}

bool SearchResultDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    if (event->type() == QEvent::ToolTip && layout(option.rect, option.font, option.direction).button.contains(event->pos())) {
        QToolTip::showText(event->globalPos(),
                           FontNodeDelegate::buttonToolTip(index.data(SearchResultsModel::ActivationRole).toInt()), view);
        return true;
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

bool SearchResultDelegate::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &option,
                                       const QModelIndex &index)
{
    const auto hit = RowButton::hit(event, layout(option.rect, option.font, option.direction).button);
    if (hit == RowButton::Hit::Click)
        Q_EMIT activationClicked(index);
    return hit != RowButton::Hit::Outside;
}
