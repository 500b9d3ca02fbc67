#include "MainWindow.h"

#include "CollectionView.h"
#include "ColumnBrowserView.h"
#include "EmptyStateView.h"
#include "ProcessingOverlay.h"
#include "ReindexingStrip.h"
#include "SearchResultsView.h"
#include "SourceListView.h"
#include "ToolbarInputField.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

MainWindow::MainWindow(QWidget *parent)
    : MainWindow(std::make_unique<FontActivationService>(), parent)
{
}

MainWindow::MainWindow(std::unique_ptr<FontActivating> activation, QWidget *parent)
    : QMainWindow(parent)
    , m_activation(std::move(activation))
    , m_persistence(std::make_unique<PersistenceService>())
    , m_state(std::make_unique<AppState>(*m_activation, *m_persistence))
{
    setWindowTitle(QString()); // the desktop shows the application's name
    setWindowIcon(QIcon::fromTheme(u"org.morvane.Morvane"_s, QIcon(u":/morvane/org.morvane.Morvane.svg"_s)));
    setMinimumSize(900, 500);
    resize(1100, 650);
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_saveFailure = new QLabel(central);
    m_saveFailure->setAccessibleName(u"Save problem"_s);
    m_saveFailure->setWordWrap(true);
    m_saveFailure->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_saveFailure->setStyleSheet(u"QLabel { background: #fde2e1; color: #5c1a16; padding: 8px 12px; }"_s);
    m_saveFailure->hide();
    layout->addWidget(m_saveFailure);
    // The sidebar is always there: no toggle, and no drag can fold it away.
    m_split = new QSplitter(Qt::Horizontal, central);
    m_split->setChildrenCollapsible(false);
    m_sidebar = new SourceListView(*m_state, m_split);
    m_sidebar->setMinimumWidth(kSidebarMinimum);
    m_sidebar->setMaximumWidth(kSidebarMaximum);
    m_split->addWidget(m_sidebar);
    m_split->addWidget(buildDetailColumn(m_split));
    m_split->setCollapsible(0, false);
    m_split->setCollapsible(1, false);
    m_split->setStretchFactor(0, 0);
    m_split->setStretchFactor(1, 1);
    m_split->setSizes({200, 900});
    layout->addWidget(m_split, 1);
    setCentralWidget(central);
    buildToolbar();
    m_overlay = new ProcessingOverlay(*m_state, this);

    connect(m_sidebar, &SourceListView::collectionFocusRequested, this, [this] {
        if (!m_collection)
            return;
        CollectionMemberList *list = m_collection->memberList();
        if (!list->currentIndex().isValid() && list->model()->rowCount() > 0)
            list->setCurrentIndex(list->model()->index(0, 0));
        list->setFocus(Qt::OtherFocusReason);
    });
    connect(m_empty, &EmptyStateView::addFolderRequested, this, &MainWindow::addFolders);
    connect(m_state.get(), &AppState::saveFailureChanged, this, &MainWindow::updateSaveFailure);
    connect(m_state.get(), &AppState::sidebarSelectionChanged, this, &MainWindow::showDetail);
    connect(m_state.get(), &AppState::searchQueryChanged, this, &MainWindow::showDetail);
    connect(m_state.get(), &AppState::collectionsChanged, this, &MainWindow::showDetail);
    connect(m_state.get(), &AppState::sourcesChanged, this, &MainWindow::showDetail);
    watchSearch();
    showDetail();
}

// The store goes first: it waits for a running batch job, which uses the services.
MainWindow::~MainWindow()
{
    m_state.reset();
}

QWidget *MainWindow::buildDetailColumn(QWidget *parent)
{
    auto *column = new QWidget(parent);
    auto *layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_strip = new ReindexingStrip(*m_state, column);
    layout->addWidget(m_strip);
    m_detail = new QStackedWidget(column);
    m_results = new SearchResultsView(*m_state, m_detail);
    m_browser = new ColumnBrowserView(*m_state, m_detail);
    m_empty = new EmptyStateView(m_detail);
    m_detail->addWidget(m_results);
    m_detail->addWidget(m_browser);
    m_detail->addWidget(m_empty);
    layout->addWidget(m_detail, 1);
    return column;
}

void MainWindow::buildToolbar()
{
    m_toolbar = new QToolBar(u"Search"_s, this);
    m_toolbar->setObjectName(u"searchToolbar"_s);
    m_toolbar->setMovable(false);
    m_toolbar->setFloatable(false);
    m_toolbar->toggleViewAction()->setVisible(false);
    m_search = new ToolbarInputField(u"Search…"_s, m_toolbar);
    m_search->lineEdit()->setAccessibleName(u"Search"_s);
    // Centred: a stretch on either side of the field.
    for (int side = 0; side < 2; ++side) {
        auto *stretch = new QWidget(m_toolbar);
        stretch->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        m_toolbar->addWidget(stretch);
        if (side == 0)
            m_toolbar->addWidget(m_search);
    }
    addToolBar(Qt::TopToolBarArea, m_toolbar);
    // Shown only when the window is too narrow for the field; screen readers still list it.
    if (auto *more = m_toolbar->findChild<QToolButton *>(u"qt_toolbar_ext_button"_s))
        more->setAccessibleName(u"More Toolbar Items"_s);
    auto *find = new QAction(u"Find"_s, this);
    find->setShortcut(QKeySequence::Find);
    find->setShortcutContext(Qt::WindowShortcut);
    connect(find, &QAction::triggered, m_search, &ToolbarInputField::focusField);
    addAction(find);
}

// The field, the store's query and the sidebar's selection keep in step: typing ends
// the selection, clearing the search goes back to the first source, and choosing
// anything in the sidebar ends the search.
void MainWindow::watchSearch()
{
    connect(m_search, &ToolbarInputField::draftChanged, this,
            [this](const QString &draft) { m_state->setSearchQuery(AppState::trimmedQuery(draft)); });
    connect(m_search, &ToolbarInputField::cleared, this, [this] { m_state->setSearchQuery(QString()); });
    connect(m_state.get(), &AppState::searchQueryChanged, this, [this] {
        if (!m_state->searchQuery().isEmpty()) {
            m_state->setSidebarSelection(std::nullopt);
            return;
        }
        m_search->setDraft(QString());
        if (!m_state->sidebarSelection() && !m_state->sources().isEmpty())
            m_state->setSidebarSelection(SidebarItem(m_state->sources().first()));
    });
    connect(m_state.get(), &AppState::sidebarSelectionChanged, this, [this] {
        if (!m_state->sidebarSelection())
            return;
        if (!m_search->draft().isEmpty() || m_state->isSearching()) {
            m_search->setDraft(QString());
            m_state->setSearchQuery(QString());
        }
    });
}

QWidget *MainWindow::detail() const
{
    return m_detail->currentWidget();
}

void MainWindow::showDetail()
{
    std::optional<FontCollection> collection;
    if (m_state->isSearching()) {
        m_detail->setCurrentWidget(m_results);
    } else if (m_state->selectedSource()) {
        m_detail->setCurrentWidget(m_browser);
    } else if ((collection = m_state->selectedCollection())) {
        showCollection(collection->id);
        return;
    } else {
        m_detail->setCurrentWidget(m_empty);
    }
    delete m_collection; // a collection's view lives while it is shown
    m_collection = nullptr;
}

void MainWindow::showCollection(const QUuid &id)
{
    if (!m_collection || m_collection->collectionId() != id) {
        delete m_collection;
        m_collection = new CollectionView(*m_state, id, m_detail);
        m_detail->addWidget(m_collection);
    }
    m_detail->setCurrentWidget(m_collection);
}

void MainWindow::addFolders()
{
    m_sidebar->addSources();
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    m_state->loadPersistedState(); // once per store, whatever the number of shows
}

// Shown until a save succeeds again: until then, what the user changes lives only in
// this run.
void MainWindow::updateSaveFailure()
{
    const QString failure = m_state->saveFailure();
    m_saveFailure->setVisible(!failure.isEmpty());
    m_saveFailure->setText(failure.isEmpty() ? QString()
                                             : u"Morvane can't save its library: %1. Changes made now will be lost "
                                               u"when Morvane quits."_s.arg(failure));
}

void MainWindow::bringToFront()
{
    setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
}
