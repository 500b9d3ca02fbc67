// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/TextStyles.h"

#include "ui/common/Symbols.h"

#include <QEvent>
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

namespace {

// Keeps a label's text at the secondary colour of the palette it would inherit, when
// the desktop switches between light and dark.
class SecondaryColour : public QObject
{
public:
    SecondaryColour(QLabel *label, bool tertiary)
        : QObject(label)
        , m_tertiary(tertiary)
    {
    }
    static void refresh(QLabel *label, bool tertiary)
    {
        const QPalette inherited = label->parentWidget() ? label->parentWidget()->palette() : QPalette();
        const QColor colour = tertiary ? Symbols::tertiary(inherited) : Symbols::secondary(inherited);
        QPalette palette = label->palette();
        if (palette.color(QPalette::WindowText) == colour)
            return; // also ends the change event that setting it sends
        palette.setColor(QPalette::WindowText, colour);
        label->setPalette(palette);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange)
            refresh(static_cast<QLabel *>(watched), m_tertiary);
        return false;
    }

private:
    bool m_tertiary;
};

} // namespace

void applySecondary(QLabel *label)
{
    SecondaryColour::refresh(label, false);
    label->installEventFilter(new SecondaryColour(label, false));
}

void applyTertiary(QLabel *label)
{
    SecondaryColour::refresh(label, true);
    label->installEventFilter(new SecondaryColour(label, true));
}

void applyCaption(QLabel *label)
{
    QFont font = label->font();
    font.setPointSizeF(captionSize(font));
    label->setFont(font);
    applySecondary(label);
}

} // namespace TextStyles
