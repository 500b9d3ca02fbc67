#include "TextStyles.h"

#include "Symbols.h"

#include <QLabel>

namespace TextStyles {

double captionSize(const QFont &base)
{
    return base.pointSizeF() * 10 / 13;
}

QFont title2(const QFont &base)
{
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 17 / 13);
    font.setWeight(QFont::DemiBold);
    return font;
}

void applySecondary(QLabel *label)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, Symbols::secondary(palette));
    label->setPalette(palette);
}

void applyCaption(QLabel *label)
{
    QFont font = label->font();
    font.setPointSizeF(captionSize(font));
    label->setFont(font);
    applySecondary(label);
}

} // namespace TextStyles
