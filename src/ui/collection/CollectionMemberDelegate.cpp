// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/collection/CollectionMemberDelegate.h"

#include "ui/collection/CollectionMemberModel.h"
#include "ui/common/LicenseColours.h"
#include "ui/common/Reading.h"
#include "ui/common/RowBackground.h"
#include "ui/common/RowButton.h"
#include "ui/common/Symbols.h"
#include "ui/common/TextStyles.h"

#include "services/LicenseStatus.h"

#include <QPainter>

using namespace Qt::StringLiterals;

void CollectionMemberDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QPalette &palette = option.palette;
    const bool selected = option.state & QStyle::State_Selected;
    const bool emphasised = selected && option.widget && option.widget->hasFocus();
    const FontNodeDelegate::Layout parts = layout(option.rect, option.direction);
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
    const QRectF text = option.direction == Qt::RightToLeft ? parts.text.adjusted(6, 0, 0, 0) : parts.text.adjusted(0, 0, -6, 0);
    const Qt::Alignment leading = Reading::leading(option.direction);
    painter->setFont(option.font);
    painter->setPen(emphasised ? onAccent : palette.color(QPalette::WindowText));
    const QRectF nameRect(text.left(), text.top(), text.width(), text.height() / 2);
    painter->drawText(nameRect, leading | Qt::AlignBottom | Qt::TextSingleLine,
                      option.fontMetrics.elidedText(index.data().toString(), Qt::ElideMiddle, int(text.width())));
    QFont caption = option.font;
    caption.setPointSizeF(TextStyles::captionSize(option.font));
    painter->setFont(caption);
    painter->setPen(emphasised ? onAccent : Symbols::secondary(palette));
    const QString folder = index.data(CollectionMemberModel::FolderRole).toString();
    const QString line = missing ? u"Missing · "_s + folder : folder;
    painter->drawText(QRectF(text.left(), text.center().y() + 1, text.width(), text.height() / 2),
                      leading | Qt::AlignTop | Qt::TextSingleLine,
                      QFontMetrics(caption).elidedText(line, Qt::ElideMiddle, int(text.width())));
    painter->restore();
}

bool CollectionMemberDelegate::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &option,
                                           const QModelIndex &index)
{
    if (index.data(CollectionMemberModel::ActivationRole).toInt() < 0)
        return false; // a missing member has no button
    const auto hit = RowButton::hit(event, layout(option.rect, option.direction).button);
    if (hit == RowButton::Hit::Click)
        Q_EMIT activationClicked(index);
    return hit != RowButton::Hit::Outside;
}
