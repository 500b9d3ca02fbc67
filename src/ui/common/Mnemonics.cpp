// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/Mnemonics.h"

#include <QAction>
#include <QMenu>
#include <QSet>

namespace Mnemonics {

namespace {

// The character after a single '&', if the text has one.
QChar marked(const QString &text)
{
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text.at(i) == u'&') {
            if (text.at(i + 1) != u'&')
                return text.at(i + 1).toLower();
            ++i; // "&&" is a plain ampersand
        }
    }
    return {};
}

} // namespace

void assign(QMenu *menu)
{
    const QList<QAction *> actions = menu->actions();
    QSet<QChar> used;
    for (const QAction *action : actions) {
        if (const QChar taken = marked(action->text()); !taken.isNull())
            used.insert(taken);
    }
    for (QAction *action : actions) {
        if (action->menu())
            assign(action->menu());
        const QString text = action->text();
        if (action->isSeparator() || text.isEmpty() || !marked(text).isNull())
            continue;
        for (qsizetype i = 0; i < text.size(); ++i) {
            const QChar letter = text.at(i).toLower();
            if (letter.isLetterOrNumber() && !used.contains(letter) && (i == 0 || text.at(i - 1) != u'&')) {
                QString withMark = text;
                withMark.insert(i, u'&');
                action->setText(withMark);
                used.insert(letter);
                break;
            }
        }
    }
}

} // namespace Mnemonics
