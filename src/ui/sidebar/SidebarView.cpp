// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sidebar/SidebarView.h"

#include "ui/common/TextStyles.h"
#include "ui/sidebar/FolderChoosers.h"
#include "ui/sidebar/LibraryList.h"
#include "ui/sidebar/SidebarDelegate.h"
#include "ui/sidebar/SidebarList.h"
#include "ui/sidebar/SidebarModel.h"

#include "state/AppState.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

SidebarView::SidebarView(AppState &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_model(new SidebarModel(state, this))
    , m_library(new LibraryList(state, this))
    , m_sources(new SidebarList(*this, state, m_model, false))
    , m_collections(new SidebarList(*this, state, m_model, true))
{
    setAccessibleName(tr("Sidebar"));
    setMinimumWidth(kMinimumWidth);
    setMaximumWidth(kMaximumWidth);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(header(tr("Library"), QString(), 0, nullptr));
    layout->addWidget(m_library);
    layout->addWidget(header(tr("Sources"), tr("Add a font folder source"), SidebarDelegate::kCollectionsHeaderGap,
                             &SidebarView::addSources));
    layout->addWidget(m_sources);
    layout->addWidget(header(tr("Collections"), tr("New Collection"), SidebarDelegate::kCollectionsHeaderGap,
                             &SidebarView::newCollection));
    layout->addWidget(m_collections, 1);
    m_chooseFolders = [this] {
        std::unique_ptr<QFileDialog> chooser(FolderChoosers::makeFolderChooser(this));
        return chooser->exec() == QDialog::Accepted ? chooser->selectedFiles() : QStringList();
    };
    m_chooseIcon = [this] {
        std::unique_ptr<QFileDialog> chooser(FolderChoosers::makeIconChooser(this));
        return chooser->exec() == QDialog::Accepted ? chooser->selectedFiles().value(0) : QString();
    };
    connect(m_model, &SidebarModel::synced, this, [this] {
        fitSources();
        syncSelection();
    });
    connect(&state, &AppState::sidebarSelectionChanged, this, &SidebarView::syncSelection);
    // A jump within the selected source changes no selection, only the columns.
    connect(&state, &AppState::jumped, this, [this](const SidebarItem &target) { m_jumpedTo = target; });
    connect(&state, &AppState::cachedColumnsChanged, this, [this] {
        if (m_jumpedTo)
            syncSelection();
    });
    connect(&state, &AppState::sidebarFocusRequested, this, [this] { setFocus(Qt::OtherFocusReason); });
    fitSources();
    syncSelection();
}

QWidget *SidebarView::header(const QString &title, const QString &tip, int gap, void (SidebarView::*add)())
{
    auto *bar = new QWidget(this);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(12, gap, 6, 2);
    auto *label = new QLabel(title, bar);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 11 / 13);
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    TextStyles::applySecondary(label);
    layout->addWidget(label);
    layout->addStretch(1);
    if (!add)
        return bar; // a section nobody adds to
    auto *button = new QToolButton(bar);
    button->setText(u"+"_s);
    button->setAutoRaise(true);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    connect(button, &QToolButton::clicked, this, add);
    m_lastTabStop = button; // the collections' header is made last
    layout->addWidget(button);
    return bar;
}

SidebarList *SidebarView::listShowing(int row) const
{
    return m_collections->showsRow(row) ? m_collections : m_sources;
}

void SidebarView::fitSources()
{
    // The sources take the room they need, up to half the sidebar; the collections the rest.
    const int wanted = m_sources->contentHeight() + 2;
    m_sources->setFixedHeight(std::min(wanted, std::max(80, height() / 2)));
}

void SidebarView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fitSources();
}

void SidebarView::syncSelection()
{
    const std::optional<SidebarItem> &selection = m_state.sidebarSelection();
    // The store itself chose this row in a jump (a search hit, a collection member): it
    // comes into view even where the list had it chosen already, scrolled away.
    const std::optional<SidebarItem> jumpedTo = std::exchange(m_jumpedTo, std::nullopt);
    const bool reveal = jumpedTo && selection && *jumpedTo == *selection;
    m_sources->syncSelection(reveal);
    m_collections->syncSelection(reveal);
    setFocusProxy(selection && selection->isCollection() ? static_cast<QWidget *>(m_collections)
                  : selection && selection->isLibrary()  ? static_cast<QWidget *>(m_library)
                                                         : m_sources);
}

void SidebarView::addSources()
{
    for (const QString &folder : m_chooseFolders())
        m_state.addSource(folder);
}

void SidebarView::newCollection()
{
    m_state.createCollection();
}

void SidebarView::pickIcon(const QUuid &collectionId)
{
    const QString icon = m_chooseIcon();
    if (!icon.isEmpty())
        m_state.setCollectionIcon(collectionId, icon);
}

void SidebarView::renameCollection(int row)
{
    const QModelIndex index = m_collections->indexForRow(row);
    m_collections->setCurrentIndex(index);
    m_collections->setFocus();
    m_collections->edit(index);
}

void SidebarView::handOver()
{
    const std::optional<SidebarItem> &selection = m_state.sidebarSelection();
    if (!selection)
        return;
    if (selection->isCollection()) {
        Q_EMIT collectionFocusRequested();
        return;
    }
    const QList<QList<FontNode>> &columns = m_state.cachedColumns();
    if (!columns.isEmpty() && !columns.first().isEmpty())
        m_state.selectNode(columns.first().first(), 0);
    m_state.requestBrowserFocus();
}

void SidebarView::moveAcross(bool down)
{
    SidebarList *target = down ? m_collections : m_sources;
    const int row = target->edgeRow(!down); // the first collection; going up, the last source
    if (row < 0)
        return;
    target->setFocus(Qt::OtherFocusReason);
    target->setCurrentIndex(target->indexForRow(row));
}
