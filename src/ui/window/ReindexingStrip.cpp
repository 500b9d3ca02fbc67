// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/ReindexingStrip.h"

#include "ui/common/BusyIndicator.h"

#include "state/AppState.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

ReindexingStrip::ReindexingStrip(AppState &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_indicator(new QWidget(this))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto *row = new QHBoxLayout(m_indicator);
    row->setContentsMargins(8, 8, 8, 8);
    row->setSpacing(6);
    row->addStretch(1);
    row->addWidget(new BusyIndicator(14, m_indicator));
    auto *label = new QLabel(tr("Updating font library…"), m_indicator);
    QFont small = label->font();
    small.setPointSizeF(small.pointSizeF() * 11 / 13);
    label->setFont(small);
    row->addWidget(label);
    row->addStretch(1);
    column->addWidget(m_indicator);
    auto *divider = new QFrame(this);
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Plain);
    divider->setFixedHeight(1);
    divider->setForegroundRole(QPalette::Mid);
    column->addWidget(divider);
    // The library's scan first, then the catalogue's reading of new and changed fonts.
    const auto sync = [this, label] {
        label->setText(m_state.isIndexing() ? tr("Updating font library…") : m_state.catalogueMessage());
        m_indicator->setVisible(m_state.isIndexing() || (m_state.isCataloguing() && m_state.catalogueMessage().size() > 0));
    };
    sync();
    connect(&state, &AppState::isIndexingChanged, this, sync);
    connect(&state, &AppState::catalogueProgressChanged, this, sync);
}
