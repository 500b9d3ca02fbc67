// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/UnavailableSourceView.h"

#include "ui/common/TextStyles.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

UnavailableSourceView::UnavailableSourceView(QWidget *parent)
    : QWidget(parent)
    , m_message(new QLabel(this))
    , m_retry(new QPushButton(tr("Try Again"), this))
{
    auto *column = new QVBoxLayout(this);
    column->setSpacing(16);
    column->addStretch(1);
    auto *title = new QLabel(tr("Not Available"), this);
    title->setFont(TextStyles::title2(title->font()));
    TextStyles::applySecondary(title);
    column->addWidget(title, 0, Qt::AlignHCenter);
    m_message->setWordWrap(true);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(m_message);
    auto *hint = new QLabel(tr("Its active fonts stay saved and are activated again when the folder is back: "
                               "connect the drive or share, or make the folder readable."),
                            this);
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignCenter);
    TextStyles::applyTertiary(hint);
    column->addWidget(hint);
    m_retry->setAccessibleName(m_retry->text());
    connect(m_retry, &QPushButton::clicked, this, &UnavailableSourceView::retryRequested);
    column->addWidget(m_retry, 0, Qt::AlignHCenter);
    column->addStretch(1);
}

void UnavailableSourceView::setFolder(const QString &path)
{
    m_message->setText(tr("Not available \u2014 the folder %1 can't be reached.").arg(path));
    m_message->setAccessibleName(m_message->text());
}
