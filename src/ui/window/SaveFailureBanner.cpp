// SPDX-License-Identifier: GPL-3.0-or-later
#include "SaveFailureBanner.h"

#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/common/Wash.h"

#include <QDir>
#include <QEvent>

using namespace Qt::StringLiterals;

SaveFailureBanner::SaveFailureBanner(AppState &state, QWidget *parent)
    : QLabel(parent)
    , m_state(state)
{
    setObjectName(u"saveFailure"_s);
    setAccessibleName(tr("Save problem"));
    setWordWrap(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setAttribute(Qt::WA_StyledBackground);
    connect(&m_state, &AppState::saveFailureChanged, this, &SaveFailureBanner::sync);
    restyle();
    sync();
}

void SaveFailureBanner::sync()
{
    const QString failure = m_state.saveFailure();
    setVisible(!failure.isEmpty());
    if (failure.isEmpty()) {
        setText(QString());
        setAccessibleName(tr("Save problem"));
        return;
    }
    QString folder = PersistenceService::defaultStorageFolder();
    const QString home = QDir::homePath();
    if (folder.startsWith(home + u'/'))
        folder = u"~"_s + folder.mid(home.size());
    setText(tr("Morvane can't save its library in %1: %2. Changes made now are lost when Morvane quits, "
               "unless the folder can be written again before then.")
                .arg(folder, failure));
    setAccessibleName(text()); // a screen reader says what the window shows
}

void SaveFailureBanner::restyle()
{
    // From the window's palette: our own is the style sheet's, and setting one changes it.
    const QPalette colours = window()->palette();
    const QColor wash = Wash::over(colours, QColor(255, 59, 48), QColor(255, 69, 58), 0.16, 0.22);
    const QString sheet = u"QLabel#saveFailure { background: %1; color: %2; padding: 8px 12px; }"_s.arg(
        wash.name(), colours.color(QPalette::WindowText).name());
    if (styleSheet() != sheet)
        setStyleSheet(sheet);
}

void SaveFailureBanner::showEvent(QShowEvent *event)
{
    QLabel::showEvent(event);
    window()->removeEventFilter(this); // once, whichever window we are in now
    window()->installEventFilter(this);
    restyle();
}

bool SaveFailureBanner::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == window() && event->type() == QEvent::PaletteChange)
        restyle();
    return QLabel::eventFilter(watched, event);
}
