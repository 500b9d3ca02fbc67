// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/browser/FontNodeDelegate.h"

#include "ui/common/Reading.h"
#include "ui/common/RowButton.h"
#include "ui/common/LicenseColours.h"
#include "ui/common/RowBackground.h"

#include "ui/browser/FontNodeListModel.h"
#include "ui/common/Symbols.h"

#include "services/LicenseStatus.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

constexpr qreal kRowPadding = 2;     // left and right of the row
constexpr qreal kVerticalPadding = 4;
constexpr qreal kButtonLead = 4;
constexpr qreal kButtonSide = 18;
constexpr qreal kSpacing = 6;
constexpr qreal kIconWidth = 16;
constexpr qreal kChevronWidth = 10;
constexpr qreal kChevronTrail = 6;

} // namespace

FontNodeDelegate::Layout FontNodeDelegate::layout(const QRect &row, bool isFolder)
{
    const QRectF r(row);
    Layout parts;
    parts.background = r.adjusted(kRowPadding, 0, -kRowPadding, 0);
    const qreal middle = r.center().y();
    qreal x = r.left() + kRowPadding + kButtonLead;
    parts.button = QRectF(x, middle - kButtonSide / 2, kButtonSide, kButtonSide);
    x += kButtonSide + kSpacing;
    parts.icon = QRectF(x, middle - kIconWidth / 2, kIconWidth, kIconWidth);
    x += kIconWidth + kSpacing;
    const qreal right = r.right() - kRowPadding;
    qreal textRight = right;
    if (isFolder) {
        parts.chevron = QRectF(right - kChevronTrail - kChevronWidth, middle - kChevronWidth / 2, kChevronWidth,
                               kChevronWidth);
        textRight = parts.chevron.left() - kSpacing;
    }
    parts.text = QRectF(x, r.top() + kVerticalPadding, std::max<qreal>(0, textRight - x), r.height() - 2 * kVerticalPadding);
    return parts;
}

QString FontNodeDelegate::buttonToolTip(int activationState)
{
    switch (static_cast<ActivationState>(activationState)) {
    case ActivationState::Active: return tr("Deactivate");
    case ActivationState::Session: return tr("Active for this session: Deactivate");
    case ActivationState::Mixed: return tr("Activate All");
    case ActivationState::Inactive: break;
    }
    return tr("Activate");
}

FontNodeDelegate::Layout FontNodeDelegate::layout(const QRect &row, bool isFolder, Qt::LayoutDirection direction)
{
    Layout parts = layout(row, isFolder);
    Reading::mirror(row, direction, {&parts.background, &parts.button, &parts.icon, &parts.text, &parts.chevron});
    return parts;
}

QSize FontNodeDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const int content = std::max(option.fontMetrics.height(), static_cast<int>(kButtonSide));
    return {240, content + static_cast<int>(2 * kVerticalPadding)};
}

void FontNodeDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QPalette &palette = option.palette;
    const bool folder = index.data(FontNodeListModel::IsFolderRole).toBool();
    const bool selected = option.state & QStyle::State_Selected;
    const bool hovered = option.state & QStyle::State_MouseOver;
    const bool emphasised = selected && m_activeColumn; // white text on the accent colour
    const Layout parts = layout(option.rect, folder, option.direction);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    RowBackground::paint(*painter, parts.background, palette, RowBackground::stateOf(selected, emphasised, hovered));

    const auto state = static_cast<ActivationState>(index.data(FontNodeListModel::ActivationRole).toInt());
    // On the accent colour the empty ring takes the text colour there, to stay visible.
    QPalette buttonPalette = palette;
    if (emphasised)
        buttonPalette.setColor(QPalette::WindowText, palette.color(QPalette::Active, QPalette::HighlightedText));
    Symbols::drawActivation(*painter, parts.button.adjusted(2, 2, -2, -2), state, buttonPalette);

    const QColor onAccent = palette.color(QPalette::Active, QPalette::HighlightedText);
    if (folder) {
        const auto status = static_cast<LicenseStatus>(index.data(FontNodeListModel::LicenseRole).toInt());
        Symbols::drawFolder(*painter, parts.icon,
                            emphasised ? LicenseColours::selectedColor(status)
                                       : Symbols::forAppearance(LicenseColours::color(status), palette));
        QColor chevron = emphasised ? onAccent : Symbols::secondary(palette);
        if (emphasised)
            chevron.setAlphaF(0.7f);
        Symbols::drawChevron(*painter, parts.chevron, chevron, option.direction == Qt::RightToLeft);
    } else {
        Symbols::drawFontFile(*painter, parts.icon, emphasised ? onAccent : Symbols::secondary(palette));
    }

    painter->setPen(emphasised ? onAccent : palette.color(QPalette::WindowText));
    painter->setFont(option.font);
    const QString name = index.data(Qt::DisplayRole).toString();
    const QString shown = option.fontMetrics.elidedText(name, Qt::ElideMiddle, static_cast<int>(parts.text.width()));
    painter->drawText(parts.text, Qt::AlignVCenter | Reading::leading(option.direction) | Qt::TextSingleLine, shown);
    painter->restore();
}

bool FontNodeDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                            const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const Layout parts = layout(option.rect, index.data(FontNodeListModel::IsFolderRole).toBool(), option.direction);
    const QString tip = parts.button.contains(event->pos())
        ? buttonToolTip(index.data(FontNodeListModel::ActivationRole).toInt())
        : index.data(Qt::DisplayRole).toString();
    QToolTip::showText(event->globalPos(), tip, view);
    return true;
}

bool FontNodeDelegate::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &option,
                                   const QModelIndex &index)
{
    const auto hit = RowButton::hit(
        event, layout(option.rect, index.data(FontNodeListModel::IsFolderRole).toBool(), option.direction).button);
    if (hit == RowButton::Hit::Click)
        Q_EMIT activationClicked(index);
    return hit != RowButton::Hit::Outside;
}
