// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/MessageArea.h"
#include "ui/common/Wash.h"

#include "state/AppState.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

MessageArea::MessageArea(AppState &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_text(new QLabel(this))
    , m_show(new QPushButton(tr("&Show"), this))
    , m_dismiss(new QPushButton(tr("&Dismiss"), this))
{
    setObjectName(u"messageArea"_s);
    setAttribute(Qt::WA_StyledBackground);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(12, 6, 8, 6);
    m_text->setAccessibleName(tr("Message"));
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(m_text, 1);
    m_show->setAccessibleName(tr("Show"));
    m_show->setAccessibleDescription(tr("Lists the files the message is about"));
    m_dismiss->setAccessibleName(tr("Dismiss"));
    row->addWidget(m_show, 0, Qt::AlignTop);
    row->addWidget(m_dismiss, 0, Qt::AlignTop);
    connect(m_show, &QPushButton::clicked, this, &MessageArea::showDetails);
    connect(m_dismiss, &QPushButton::clicked, &state, &AppState::dismissNotice);
    connect(&state, &AppState::noticeChanged, this, &MessageArea::sync);
    restyle();
    sync();
}

void MessageArea::sync()
{
    m_text->setText(m_state.notice());
    m_show->setVisible(!m_state.noticeDetails().isEmpty());
    setVisible(!m_state.notice().isEmpty());
}

// A yellow wash over the window's own colour, with its own text colour: readable on a
// light and a dark desktop alike.
void MessageArea::restyle()
{
    // From the window's palette: our own is the style sheet's, and setting one changes it.
    const QPalette colours = window()->palette();
    const QColor wash = Wash::over(colours, QColor(255, 204, 0), QColor(255, 214, 10), 0.28, 0.18);
    const QString sheet = u"QWidget#messageArea { background: %1; } QWidget#messageArea > QLabel { color: %2; }"_s.arg(
        wash.name(), colours.color(QPalette::WindowText).name());
    if (styleSheet() != sheet)
        setStyleSheet(sheet);
}

void MessageArea::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        restyle();
}

// The files concerned, one per line with what went wrong, to read or copy.
void MessageArea::showDetails()
{
    auto *dialog = new QDialog(window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Files Concerned"));
    dialog->setAccessibleName(dialog->windowTitle());
    auto *column = new QVBoxLayout(dialog);
    auto *heading = new QLabel(m_state.notice(), dialog);
    heading->setWordWrap(true);
    column->addWidget(heading);
    auto *list = new QPlainTextEdit(m_state.noticeDetails().join(u'\n'), dialog);
    list->setReadOnly(true);
    list->setLineWrapMode(QPlainTextEdit::NoWrap);
    list->setAccessibleName(tr("Files"));
    column->addWidget(list, 1);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);
    connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    column->addWidget(buttons);
    dialog->resize(560, 360);
    dialog->open();
}
