// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/fontlist/FontListDelegate.h"

#include "ui/common/Reading.h"
#include "ui/common/RowBackground.h"
#include "ui/common/RowButton.h"
#include "ui/common/Symbols.h"
#include "ui/common/TextStyles.h"
#include "ui/fontlist/FontListModel.h"
#include "ui/fontlist/FontSampleCache.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr qreal kButtonSide = 18;
constexpr qreal kNameWidth = 190;
constexpr qreal kIndent = 4;

} // namespace

FontListDelegate::FontListDelegate(FontSampleCache &samples, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_samples(samples)
{
}

void FontListDelegate::setSample(const QString &text, int pixelSize)
{
    m_text = text;
    m_pixelSize = pixelSize;
}

FontListDelegate::Layout FontListDelegate::layout(const QRect &row, Qt::LayoutDirection direction)
{
    const QRectF r(row);
    Layout parts;
    parts.background = r.adjusted(2, 1, -2, -1);
    const qreal middle = r.center().y();
    qreal x = r.left() + kIndent;
    parts.button = QRectF(x, middle - kButtonSide / 2, kButtonSide, kButtonSide);
    x += kButtonSide + 8;
    parts.name = QRectF(x, r.top() + 2, kNameWidth, r.height() / 2 - 2);
    parts.caption = QRectF(x, middle, kNameWidth, r.height() / 2 - 2);
    x += kNameWidth + 12;
    parts.sample = QRectF(x, r.top() + 2, std::max<qreal>(0, r.right() - 6 - x), r.height() - 4);
    Reading::mirror(row, direction, {&parts.background, &parts.button, &parts.name, &parts.caption, &parts.sample});
    return parts;
}

QSize FontListDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const int text = 2 * option.fontMetrics.height() + 6;
    return {600, std::max(text, int(m_pixelSize * 1.5) + 6)};
}

void FontListDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QPalette &palette = option.palette;
    const bool selected = option.state & QStyle::State_Selected;
    const bool emphasised = selected && option.widget && option.widget->hasFocus();
    const Layout parts = layout(option.rect, option.direction);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    RowBackground::paint(*painter, parts.background, palette,
                         RowBackground::stateOf(selected, emphasised, option.state & QStyle::State_MouseOver));
    const QColor onAccent = palette.color(QPalette::Active, QPalette::HighlightedText);
    const QColor text = emphasised ? onAccent : palette.color(QPalette::Text);
    QPalette buttonPalette = palette;
    if (emphasised)
        buttonPalette.setColor(QPalette::WindowText, onAccent);
    Symbols::drawActivation(*painter, parts.button.adjusted(2, 2, -2, -2),
                            static_cast<ActivationState>(index.data(FontListModel::ActivationRole).toInt()), buttonPalette);

    const Qt::Alignment leading = Reading::leading(option.direction);
    const QString name = index.data().toString();
    painter->setFont(option.font);
    painter->setPen(text);
    painter->drawText(parts.name, leading | Qt::AlignBottom | Qt::TextSingleLine,
                      option.fontMetrics.elidedText(name, Qt::ElideRight, int(parts.name.width())));
    QFont caption = option.font;
    caption.setPointSizeF(TextStyles::captionSize(option.font));
    painter->setFont(caption);
    const QColor secondary = emphasised ? onAccent : Symbols::secondary(palette);
    painter->setPen(secondary);
    painter->drawText(parts.caption, leading | Qt::AlignTop | Qt::TextSingleLine,
                      index.data(FontListModel::CaptionRole).toString());

    // The sample: in the face itself, one line, clipped at the row's end.
    const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
    const FontSampleCache::Sample sample =
        m_samples.sample(index.data(FontListModel::PathRole).toString(), index.data(FontListModel::FaceIndexRole).toInt(),
                         m_text.isEmpty() ? name : m_text, int(m_pixelSize * ratio), text);
    painter->setClipRect(parts.sample);
    if (sample.state == FontSampleCache::State::Ready) {
        const QSizeF size = QSizeF(sample.image.size()) / ratio;
        const qreal top = parts.sample.center().y() - size.height() / 2;
        const qreal left = option.direction == Qt::RightToLeft ? parts.sample.right() - size.width() : parts.sample.left();
        painter->drawImage(QRectF(QPointF(left, top), size), sample.image);
    } else if (sample.state == FontSampleCache::State::Failed) {
        painter->setFont(option.font);
        painter->drawText(parts.sample, leading | Qt::AlignVCenter | Qt::TextSingleLine, tr("Unable to preview"));
    }
    painter->restore();
}

bool FontListDelegate::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &option,
                                   const QModelIndex &index)
{
    const auto hit = RowButton::hit(event, layout(option.rect, option.direction).button);
    if (hit == RowButton::Hit::Click)
        Q_EMIT activationClicked(index);
    return hit != RowButton::Hit::Outside;
}
