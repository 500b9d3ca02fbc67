// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/browser/ColumnBrowserView.h"

#include "ui/browser/FontNodeListModel.h"
#include "ui/preview/FontPreviewView.h"
#include "ui/browser/SingleColumnView.h"

#include "state/AppState.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QFrame *divider(Qt::Orientation orientation, QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setFrameShape(QFrame::NoFrame);
    line->setAutoFillBackground(true);
    line->setBackgroundRole(QPalette::Mid);
    if (orientation == Qt::Vertical)
        line->setFixedWidth(1);
    else
        line->setFixedHeight(1);
    return line;
}

QString columnKey(int index, const QList<FontNode> &column)
{
    // A column is the folder it lists: a row arriving at its top leaves it the same
    // column, with its scroll and hover.
    return QString::number(index) + u'-' + (column.isEmpty() ? u"empty"_s : column.constFirst().path().section(u'/', 0, -2));
}

} // namespace

ColumnBrowserView::ColumnBrowserView(AppState &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
{
    setAccessibleName(tr("Font browser"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    m_breadcrumb = new QWidget(this);
    m_breadcrumb->setAccessibleName(tr("Path"));
    m_breadcrumb->setAutoFillBackground(true);
    m_breadcrumb->setBackgroundRole(QPalette::AlternateBase);
    m_crumbs = new QHBoxLayout(m_breadcrumb);
    m_retiredCrumbs = new QWidget(this);
    m_retiredCrumbs->hide();
    m_crumbs->setContentsMargins(10, 5, 10, 5);
    m_crumbs->setSpacing(2);
    layout->addWidget(m_breadcrumb);
    layout->addWidget(divider(Qt::Horizontal, this));

    m_scroll = new QScrollArea(this);
    m_scroll->setAccessibleName(tr("Columns"));
    m_scroll->setFocusPolicy(Qt::NoFocus); // the columns themselves take the keys
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_row = new QWidget(m_scroll);
    m_rowLayout = new QHBoxLayout(m_row);
    m_rowLayout->setContentsMargins(0, 0, 0, 0);
    m_rowLayout->setSpacing(0);
    m_rowLayout->addStretch(1);
    m_scroll->setWidget(m_row);
    layout->addWidget(m_scroll, 1);

    connect(&m_state, &AppState::cachedColumnsChanged, this, &ColumnBrowserView::rebuildColumns);
    connect(&m_state, &AppState::navigationPathChanged, this, &ColumnBrowserView::rebuildBreadcrumb);
    connect(&m_state, &AppState::sidebarSelectionChanged, this, &ColumnBrowserView::rebuildBreadcrumb);
    connect(&m_state, &AppState::activeColumnIndexChanged, this, &ColumnBrowserView::syncColumns);
    connect(&m_state, &AppState::activatedFontsChanged, this, [this] {
        for (const Column &column : std::as_const(m_columns))
            column.view->nodeModel()->activationChanged();
    });
    connect(&m_state, &AppState::licenseTagsChanged, this, [this] {
        for (const Column &column : std::as_const(m_columns))
            column.view->nodeModel()->licensesChanged();
    });
    connect(&m_state, &AppState::browserFocusRequested, this, &ColumnBrowserView::focusActiveColumn);
    connect(&m_state, &AppState::jumped, this, [this] { m_scrollToSelection = true; });
    rebuildColumns();
    rebuildBreadcrumb();
}

QList<SingleColumnView *> ColumnBrowserView::columns() const
{
    QList<SingleColumnView *> views;
    for (const Column &column : m_columns)
        views.append(column.view);
    return views;
}

bool ColumnBrowserView::hasKeyboard() const
{
    const QWidget *focus = QApplication::focusWidget();
    return focus && m_row->isAncestorOf(focus);
}

void ColumnBrowserView::focusActiveColumn()
{
    if (m_columns.isEmpty())
        return;
    const int active = std::clamp(m_state.activeColumnIndex(), 0, static_cast<int>(m_columns.size()) - 1);
    m_columns.at(active).view->setFocus(Qt::OtherFocusReason);
}

void ColumnBrowserView::rebuildColumns()
{
    const bool keyboard = hasKeyboard();
    const QList<QList<FontNode>> &columns = m_state.cachedColumns();
    for (int i = 0; i < columns.size(); ++i) {
        const QString key = columnKey(i, columns.at(i));
        if (i < m_columns.size() && m_columns.at(i).key == key) {
            m_columns[i].view->setColumn(i, columns.at(i));
            continue;
        }
        // A new identity: a new column, with a fresh scroll position and hover.
        Column column{key, new SingleColumnView(m_state, i, m_row), divider(Qt::Vertical, m_row)};
        column.view->setColumn(i, columns.at(i));
        if (i < m_columns.size()) {
            delete m_columns.at(i).view;
            delete m_columns.at(i).divider;
            m_columns[i] = column;
        } else {
            m_columns.append(column);
        }
        m_rowLayout->insertWidget(2 * i, column.view);
        m_rowLayout->insertWidget(2 * i + 1, column.divider);
        // A layout shows new children only later, and a hidden column can't take focus.
        column.view->show();
        column.divider->show();
    }
    while (m_columns.size() > columns.size()) {
        const Column gone = m_columns.takeLast();
        delete gone.view;
        delete gone.divider;
    }
    rebuildPreview();
    syncColumns();
    // A jump (a search hit, a collection member) asks for its rows in view, even rows
    // that were selected before and have been scrolled away since.
    if (m_scrollToSelection && isVisible()) {
        for (const Column &column : std::as_const(m_columns))
            column.view->scrollToSelection();
        m_scrollToSelection = false;
    }
    if (keyboard)
        focusActiveColumn();
    scrollToEnd();
}

void ColumnBrowserView::rebuildPreview()
{
    const std::optional<FontNode> font = m_state.selectedFont();
    const QString key = font ? u"preview-"_s + font->path() : QString();
    if (key == m_previewKey)
        return;
    m_previewKey = key;
    delete m_preview;
    m_preview = nullptr;
    m_rowLayout->setStretch(m_rowLayout->count() - 1, 1);
    if (!font)
        return;
    m_preview = new FontPreviewView(m_state, *font, m_row);
    m_preview->setMinimumWidth(400);
    m_rowLayout->insertWidget(2 * static_cast<int>(m_columns.size()), m_preview, 1);
    m_preview->show();
    // The pane takes the room the columns leave, not the trailing stretch.
    m_rowLayout->setStretch(m_rowLayout->count() - 1, 0);
}

void ColumnBrowserView::syncColumns()
{
    for (const Column &column : std::as_const(m_columns))
        column.view->syncWithStore();
    if (hasKeyboard())
        focusActiveColumn();
}

void ColumnBrowserView::scrollToEnd()
{
    // After the new widths are laid out: the last column, or the preview, in full view.
    QTimer::singleShot(0, this, [this] {
        // The row's new width first, then its scroll range.
        m_row->layout()->activate();
        QCoreApplication::sendPostedEvents(m_row, QEvent::LayoutRequest);
        QWidget *last = m_preview ? m_preview : (m_columns.isEmpty() ? nullptr : m_columns.constLast().divider);
        if (last)
            m_scroll->ensureWidgetVisible(last, 0, 0);
    });
}

void ColumnBrowserView::rebuildBreadcrumb()
{
    // Deleted later: the crumb that was clicked is still inside its own clicked(). Until
    // then it waits, hidden, outside the bar.
    while (QLayoutItem *item = m_crumbs->takeAt(0)) {
        if (QWidget *crumb = item->widget()) {
            crumb->hide();
            crumb->setParent(m_retiredCrumbs);
            crumb->deleteLater();
        }
        delete item;
    }
    const std::optional<FolderSource> source = m_state.selectedSource();
    if (!source)
        return;
    const QList<FontNode> path = m_state.navigationPath();
    const auto addCrumb = [&](const QString &label, const QString &icon, bool current, auto pressed) {
        auto *button = new QToolButton(m_breadcrumb);
        button->setText(label);
        button->setAccessibleName(label);
        button->setIcon(QIcon::fromTheme(icon));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        // The current crumb stands out by look and is read as "current", a button still:
        // nothing about it is on or off.
        button->setAutoRaise(!current);
        if (current) {
            QFont bold = button->font();
            bold.setWeight(QFont::DemiBold);
            button->setFont(bold);
        }
        button->setAccessibleDescription(current ? tr("current") : QString());
        connect(button, &QToolButton::clicked, this, pressed);
        m_crumbs->addWidget(button);
    };
    addCrumb(source->name, u"folder-documents"_s, path.isEmpty(), [this] { m_state.showSourceRoot(); });
    for (int level = 0; level < path.size(); ++level) {
        auto *chevron = new QLabel(u"›"_s, m_breadcrumb);
        chevron->setForegroundRole(QPalette::PlaceholderText);
        m_crumbs->addWidget(chevron);
        const FontNode node = path.at(level);
        addCrumb(node.name().toString(), node.isDirectory() ? u"folder"_s : u"font-x-generic"_s,
                 level == path.size() - 1, [this, node, level] { m_state.selectNode(node, level); });
    }
    m_crumbs->addStretch(1);
}
