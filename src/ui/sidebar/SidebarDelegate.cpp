// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sidebar/SidebarDelegate.h"

#include "ui/common/Reading.h"
#include "ui/common/RowButton.h"

#include "ui/common/RowBackground.h"

#include "ui/browser/FontNodeDelegate.h"
#include "ui/sidebar/SidebarModel.h"
#include "ui/common/Symbols.h"
#include "ui/common/TextStyles.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

using Kind = SidebarModel::Kind;

constexpr qreal kPadding = 4;
constexpr qreal kButtonSide = 18;
constexpr qreal kSpacing = 6;
constexpr int kRowHeight = 40;
constexpr int kPlaceholderHeight = 72;

Kind kindOf(const QModelIndex &index)
{
    return static_cast<Kind>(index.data(SidebarModel::KindRole).toInt());
}

// An SVG icon drawn dark on a dark sidebar would vanish: a mostly dark one is drawn inverted there.
QImage forAppearance(const QImage &image, const QPalette &palette)
{
    if (!Symbols::isDark(palette))
        return image;
    qint64 lightness = 0;
    qint64 opaque = 0;
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < argb.height(); y += 2) {
        for (int x = 0; x < argb.width(); x += 2) {
            const QRgb pixel = argb.pixel(x, y);
            if (qAlpha(pixel) > 128) {
                lightness += qGray(pixel);
                ++opaque;
            }
        }
    }
    if (opaque == 0 || lightness / opaque >= 90)
        return image;
    QImage inverted = argb;
    inverted.invertPixels(QImage::InvertRgb);
    return inverted;
}

} // namespace

SidebarDelegate::Layout SidebarDelegate::layout(const QRect &row, int kind, Qt::LayoutDirection direction)
{
    const QRectF r(row);
    Layout parts;
    parts.background = r.adjusted(kPadding, 1, -kPadding, -1);
    const qreal middle = r.center().y();
    qreal x = r.left() + kPadding + 4;
    parts.button = QRectF(x, middle - kButtonSide / 2, kButtonSide, kButtonSide);
    x += kButtonSide + kSpacing;
    const qreal iconSide = static_cast<Kind>(kind) == Kind::Collection ? 22 : 18;
    parts.icon = QRectF(x, middle - iconSide / 2, iconSide, iconSide);
    x += iconSide + 10;
    const qreal width = std::max<qreal>(0, r.right() - kPadding - 4 - x);
    parts.name = QRectF(x, r.top() + 3, width, r.height() / 2 - 1);
    parts.caption = QRectF(x, middle + 1, width, r.height() / 2 - 4);
    Reading::mirror(row, direction, {&parts.background, &parts.button, &parts.icon, &parts.name, &parts.caption});
    return parts;
}

QSize SidebarDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &index) const
{
    return {200, kindOf(index) == Kind::Placeholder ? kPlaceholderHeight : kRowHeight};
}

void SidebarDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const Kind kind = kindOf(index);
    if (kind == Kind::Placeholder)
        return paintPlaceholder(painter, option);

    const QPalette &palette = option.palette;
    const bool selected = option.state & QStyle::State_Selected;
    const bool emphasised = selected && m_emphasised;
    const Layout parts = layout(option.rect, static_cast<int>(kind), option.direction);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    RowBackground::paint(*painter, parts.background, palette,
                         RowBackground::stateOf(selected, emphasised, option.state & QStyle::State_MouseOver));
    if (index.row() == m_dropRow) {
        QPainterPath shape;
        shape.addRoundedRect(parts.background, RowBackground::kRadius, RowBackground::kRadius);
        painter->setPen(QPen(palette.color(QPalette::Active, QPalette::Highlight), 2));
        painter->drawPath(shape);
    }

    const QColor onAccent = palette.color(QPalette::Active, QPalette::HighlightedText);
    QPalette buttonPalette = palette;
    if (emphasised)
        buttonPalette.setColor(QPalette::WindowText, onAccent);
    const auto state = static_cast<ActivationState>(index.data(SidebarModel::ActivationRole).toInt());
    Symbols::drawActivation(*painter, parts.button.adjusted(2, 2, -2, -2), state, buttonPalette);
    paintIcon(painter, parts.icon, index, emphasised ? buttonPalette : palette);

    painter->setFont(option.font);
    painter->setPen(emphasised ? onAccent : palette.color(QPalette::WindowText));
    const QString name = option.fontMetrics.elidedText(index.data().toString(), Qt::ElideRight,
                                                       static_cast<int>(parts.name.width()));
    const Qt::Alignment leading = Reading::leading(option.direction);
    painter->drawText(parts.name, leading | Qt::AlignBottom | Qt::TextSingleLine, name);
    QFont caption = option.font;
    caption.setPointSizeF(TextStyles::captionSize(option.font));
    painter->setFont(caption);
    QColor captionColour = emphasised ? onAccent : Symbols::secondary(palette);
    painter->setPen(captionColour);
    painter->drawText(parts.caption, leading | Qt::AlignTop | Qt::TextSingleLine,
                      index.data(SidebarModel::CaptionRole).toString());
    painter->restore();
}

void SidebarDelegate::paintIcon(QPainter *painter, const QRectF &box, const QModelIndex &index, const QPalette &palette) const
{
    const bool emphasised = palette.color(QPalette::WindowText) == palette.color(QPalette::Active, QPalette::HighlightedText);
    if (kindOf(index) == Kind::Source) {
        Symbols::drawArchiveBox(*painter, box, emphasised ? palette.color(QPalette::WindowText) : Symbols::secondary(palette));
        return;
    }
    drawCollectionIcon(*painter, box, index.data(SidebarModel::IconRole).value<QImage>(),
                       index.data(SidebarModel::FavoritesRole).toBool(), palette, index.data(SidebarModel::SmartRole).toBool());
}

void SidebarDelegate::drawFunnel(QPainter &painter, const QRectF &box, const QColor &colour)
{
    // A wide rim narrowing to a short stem: the filter a smart collection keeps.
    const QRectF r = box.adjusted(box.width() * 0.08, box.height() * 0.12, -box.width() * 0.08, -box.height() * 0.08);
    QPainterPath funnel;
    funnel.moveTo(r.left(), r.top());
    funnel.lineTo(r.right(), r.top());
    funnel.lineTo(r.center().x() + r.width() * 0.1, r.top() + r.height() * 0.55);
    funnel.lineTo(r.center().x() + r.width() * 0.1, r.bottom());
    funnel.lineTo(r.center().x() - r.width() * 0.1, r.bottom() - r.height() * 0.12);
    funnel.lineTo(r.center().x() - r.width() * 0.1, r.top() + r.height() * 0.55);
    funnel.closeSubpath();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPath(funnel);
    painter.restore();
}

void SidebarDelegate::drawCollectionIcon(QPainter &painter, const QRectF &box, const QImage &custom, bool favorites,
                                    const QPalette &palette, bool smart)
{
    if (!custom.isNull()) {
        painter.save();
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(box, forAppearance(custom, palette)); // stretched to the box
        painter.restore();
    } else if (smart) {
        drawFunnel(painter, box, Symbols::purple(palette));
    } else if (favorites) {
        Symbols::drawStar(painter, box.adjusted(1, 1, -1, -1), Symbols::amber());
    } else {
        Symbols::drawStack(painter, box.adjusted(1, 1, -1, -1), Symbols::purple(palette));
    }
}

void SidebarDelegate::paintPlaceholder(QPainter *painter, const QStyleOptionViewItem &option) const
{
    // The row can't be chosen, but its words are meant to be read: not the disabled greys.
    QPalette palette = option.palette;
    palette.setCurrentColorGroup(QPalette::Active);
    painter->save();
    const QRectF area = QRectF(option.rect).adjusted(12, 6, -12, -6);
    Symbols::drawArchiveBox(*painter, QRectF(area.left(), area.top() + 2, 18, 18), Symbols::secondary(palette));
    QFont title = option.font;
    title.setWeight(QFont::DemiBold);
    painter->setFont(title);
    painter->setPen(Symbols::secondary(palette));
    painter->drawText(QRectF(area.left() + 26, area.top(), area.width() - 26, 22), Qt::AlignLeft | Qt::AlignVCenter,
                      tr("No Sources"));
    QFont caption = option.font;
    caption.setPointSizeF(TextStyles::captionSize(option.font));
    painter->setFont(caption);
    painter->drawText(QRectF(area.left(), area.top() + 26, area.width(), area.height() - 26),
                      Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, tr("Click the + button to add a font folder."));
    painter->restore();
}

QWidget *SidebarDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const
{
    auto *field = new QLineEdit(parent);
    field->setPlaceholderText(tr("Name"));
    field->setAccessibleName(tr("Name"));
    return field;
}

void SidebarDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const Layout parts = layout(option.rect, index.data(SidebarModel::KindRole).toInt(), option.direction);
    const int height = editor->sizeHint().height();
    editor->setGeometry(QRectF(parts.name.left() - 2, option.rect.center().y() - height / 2.0, parts.name.width() + 2,
                               height).toRect());
}

bool SidebarDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                           const QModelIndex &index)
{
    const Kind kind = kindOf(index);
    if (event->type() != QEvent::ToolTip || kind == Kind::Placeholder)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const Layout parts = layout(option.rect, static_cast<int>(kind), option.direction);
    const QString tip = parts.button.contains(event->pos())
        ? FontNodeDelegate::buttonToolTip(index.data(SidebarModel::ActivationRole).toInt())
        : index.data().toString();
    QToolTip::showText(event->globalPos(), tip, view);
    return true;
}

bool SidebarDelegate::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &option,
                                  const QModelIndex &index)
{
    const Kind kind = kindOf(index);
    if (kind == Kind::Placeholder)
        return false;
    const auto hit = RowButton::hit(event, layout(option.rect, static_cast<int>(kind), option.direction).button);
    if (hit == RowButton::Hit::Click)
        Q_EMIT activationClicked(index);
    return hit != RowButton::Hit::Outside;
}
