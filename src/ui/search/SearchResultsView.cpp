// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/search/SearchResultsView.h"
#include "ui/common/TopRowAnchor.h"
#include "ui/common/RowListAccessible.h"

#include "ui/common/BusyIndicator.h"
#include "ui/search/SearchResultDelegate.h"
#include "ui/search/SearchResultsModel.h"
#include "ui/common/Symbols.h"
#include "ui/common/TextStyles.h"

#include "state/AppState.h"

#include <QFutureWatcher>
#include <QKeyEvent>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// The empty state's magnifier, tertiary.
class MagnifierPicture : public QWidget
{
public:
    explicit MagnifierPicture(QWidget *parent)
        : QWidget(parent)
    {
        const int side = static_cast<int>(font().pointSizeF() * 36 / 13 * 1.4);
        setFixedSize(side, side);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Symbols::drawMagnifier(painter, QRectF(rect()).adjusted(2, 2, -2, -2), Symbols::tertiary(palette()));
    }
};

QLabel *styledLabel(const QString &text, QWidget *parent, qreal size, bool tertiary)
{
    auto *label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * size / 13);
    label->setFont(font);
    if (tertiary)
        TextStyles::applyTertiary(label);
    else
        TextStyles::applySecondary(label);
    return label;
}

QWidget *centredPage(QWidget *parent, const QList<QWidget *> &items, int spacing)
{
    auto *page = new QWidget(parent);
    auto *column = new QVBoxLayout(page);
    column->setSpacing(spacing);
    column->addStretch(1);
    for (QWidget *item : items) {
        item->setParent(page);
        if (qobject_cast<QLabel *>(item))
            column->addWidget(item); // the full width: texts wrap only when they must
        else
            column->addWidget(item, 0, Qt::AlignHCenter);
    }
    column->addStretch(1);
    return page;
}

} // namespace

SearchResultsList::SearchResultsList(AppState &state, SearchResultsModel *model, QWidget *parent)
    : QListView(parent)
    , m_state(state)
    , m_model(model)
{
    RowListAccessible::enable(this);
    setModel(model);
    TopRowAnchor::install(this);
    auto *delegate = new SearchResultDelegate(this);
    setItemDelegate(delegate);
    connect(delegate, &SearchResultDelegate::activationClicked, this, [this](const QModelIndex &index) {
        m_buttonPressed = true;
        m_state.toggleActivation(m_state.searchResults().at(index.row()).folder);
    });
    // A click (a press and release on one row, left button) opens, unless it was the
    // button's; a drag offers the folder's path through the model and navigates nowhere.
    // Qt reports the press only when the button didn't take it.
    connect(this, &QAbstractItemView::pressed, this, [this] { m_buttonPressed = false; });
    connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex &index) {
        if (!std::exchange(m_buttonPressed, false))
            open(index.row());
    });
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setDefaultDropAction(Qt::CopyAction);
    setUniformItemSizes(true);
    setMouseTracking(true); // the hover highlight
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setViewportMargins(0, 4, 0, 4);
    setBackgroundRole(QPalette::Base); // under the margins too
    setAutoFillBackground(true);
    setAccessibleName(tr("Search Results"));
    viewport()->setAttribute(Qt::WA_Hover);
}

// Return opens the current hit, Space toggles it, as in the browser.
void SearchResultsList::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex current = currentIndex();
    if (current.isValid() && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        open(current.row());
        return;
    }
    if (current.isValid() && event->key() == Qt::Key_Space) {
        m_state.toggleActivation(m_state.searchResults().at(current.row()).folder);
        return;
    }
    QListView::keyPressEvent(event);
}

void SearchResultsList::open(int row)
{
    if (row < m_state.searchResults().size())
        m_state.navigateToSearchResult(m_state.searchResults().at(row)); // taken by copy: it empties the list
}

SearchResultsView::SearchResultsView(AppState &state, QWidget *parent)
    : QStackedWidget(parent)
    , m_state(state)
    , m_model(new SearchResultsModel(state, this))
{
    auto *spinner = new BusyIndicator(22);
    auto *searching = new QLabel(tr("Searching folders…"));
    searching->setAlignment(Qt::AlignCenter); // under the spinner, the label being as wide as the page
    TextStyles::applySecondary(searching);
    m_progress = centredPage(this, {spinner, searching}, 8);
    m_list = new SearchResultsList(state, m_model, this);
    m_empty = centredPage(this,
                          {new MagnifierPicture(this), styledLabel(tr("No matching folders"), this, 15, false),
                           styledLabel(tr("Try a different search term."), this, 13, true)},
                          8);
    // Above the folders, the fonts whose names match: a line of its own in the list's top margin.
    m_fontsLink = new QPushButton(m_list);
    m_fontsLink->setFlat(true);
    m_fontsLink->setStyleSheet(u"QPushButton { text-align: left; color: palette(link); padding: 2px 8px; }"_s);
    m_list->setTopLine(m_fontsLink);
    m_fontsLink->setCursor(Qt::PointingHandCursor);
    m_fontsLink->hide();
    connect(m_fontsLink, &QPushButton::clicked, this, [this] { Q_EMIT fontsRequested(m_state.searchQuery()); });
    addWidget(m_progress);
    addWidget(m_list);
    addWidget(m_empty);
    connect(&state, &AppState::searchQueryChanged, this, &SearchResultsView::countFonts);
    connect(&state, &AppState::isSearchingFoldersChanged, this, &SearchResultsView::refresh);
    connect(&state, &AppState::isIndexingChanged, this, &SearchResultsView::refresh);
    connect(&state, &AppState::searchResultsChanged, this, &SearchResultsView::refresh);
    refresh();
}

void SearchResultsList::setTopLine(QWidget *line)
{
    m_topLine = line;
    updateTopLine();
}

void SearchResultsList::updateTopLine()
{
    const int height = m_topLine && !m_topLine->isHidden() ? m_topLine->sizeHint().height() + 4 : 0;
    setViewportMargins(0, height, 0, 0);
    if (m_topLine)
        m_topLine->setGeometry(2, 2, std::max(0, width() - 4), std::max(0, height - 4));
}

void SearchResultsList::resizeEvent(QResizeEvent *event)
{
    QListView::resizeEvent(event);
    updateTopLine();
}

void SearchResultsView::countFonts()
{
    const QString text = m_state.searchQuery().trimmed();
    const quint64 generation = ++m_countGeneration;
    if (text.isEmpty()) {
        m_fontsLink->hide();
        m_list->updateTopLine();
        return;
    }
    auto *watcher = new QFutureWatcher<qsizetype>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, generation, text] {
        const qsizetype count = watcher->result();
        watcher->deleteLater();
        if (generation != m_countGeneration)
            return; // the field has moved on
        m_fontsLink->setVisible(count > 0);
        const QLocale locale;
        m_fontsLink->setText(count == 1 ? tr("1 font named like “%1”").arg(text)
                                        : tr("%1 fonts named like “%2”").arg(locale.toString(count), text));
        m_fontsLink->setAccessibleName(m_fontsLink->text());
        m_list->updateTopLine();
        refresh();
    });
    watcher->setFuture(m_state.countFonts(FontQuery{.text = text}));
}

void SearchResultsView::refresh()
{
    if (m_state.isSearchingFolders() || m_state.isIndexing())
        setCurrentWidget(m_progress);
    else if (!m_state.searchResults().isEmpty() || !m_fontsLink->isHidden())
        setCurrentWidget(m_list); // folders, or only fonts, named like it
    else
        setCurrentWidget(m_empty);
}
