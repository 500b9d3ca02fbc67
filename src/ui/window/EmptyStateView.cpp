// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/EmptyStateView.h"

#include "ui/common/Symbols.h"
#include "ui/common/TextStyles.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// "folder.badge.plus" at 48 units, secondary.
class AddFolderPicture : public QWidget
{
public:
    explicit AddFolderPicture(QWidget *parent)
        : QWidget(parent)
    {
        const int side = static_cast<int>(font().pointSizeF() * 48 / 13 * 1.4);
        setFixedSize(side, side);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Symbols::drawFolderBadgePlus(painter, QRectF(rect()).adjusted(1, 1, -1, -1), Symbols::secondary(palette()),
                                     palette().color(QPalette::Window));
    }
};

} // namespace

EmptyStateView::EmptyStateView(QWidget *parent)
    : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setSpacing(16);
    column->addStretch(1);
    column->addWidget(new AddFolderPicture(this), 0, Qt::AlignHCenter);
    auto *title = new QLabel(tr("No Font Sources"), this);
    title->setFont(TextStyles::title2(title->font()));
    TextStyles::applySecondary(title);
    column->addWidget(title, 0, Qt::AlignHCenter);
    auto *hint = new QLabel(tr("Add a folder containing your fonts to get started."), this);
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignCenter);
    TextStyles::applySecondary(hint); // read to get started: as readable as the title
    column->addWidget(hint); // the full width, so it wraps only when the window is narrow
    m_add = new QPushButton(tr("Add Folder"), this);
    m_add->setAccessibleName(m_add->text());
    m_add->setDefault(true); // drawn in the accent colour where the style allows
    m_add->setMinimumHeight(m_add->sizeHint().height() * 5 / 4);
    m_add->setMinimumWidth(m_add->sizeHint().width() + 24);
    connect(m_add, &QPushButton::clicked, this, &EmptyStateView::addFolderRequested);
    column->addWidget(m_add, 0, Qt::AlignHCenter);
    column->addStretch(1);
}
