#include "MainWindow.h"

#include "CollectionView.h"
#include "ColumnBrowserView.h"
#include "SourceListView.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"

#include <QLabel>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_activation(std::make_unique<FontActivationService>())
    , m_persistence(std::make_unique<PersistenceService>())
    , m_state(std::make_unique<AppState>(*m_activation, *m_persistence))
{
    setWindowTitle(u"Morvane"_s);
    resize(1100, 700);
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    m_saveFailure = new QLabel(central);
    m_saveFailure->setAccessibleName(u"Save problem"_s);
    m_saveFailure->setWordWrap(true);
    m_saveFailure->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_saveFailure->setStyleSheet(u"QLabel { background: #fde2e1; color: #5c1a16; padding: 8px 12px; }"_s);
    m_saveFailure->hide();
    layout->addWidget(m_saveFailure);
    // The sidebar, then the selected source's browser or the selected collection's view.
    auto *split = new QSplitter(Qt::Horizontal, central);
    split->setChildrenCollapsible(false);
    m_sidebar = new SourceListView(*m_state, split);
    m_detail = new QStackedWidget(split);
    m_browser = new ColumnBrowserView(*m_state, m_detail);
    m_detail->addWidget(m_browser);
    split->addWidget(m_sidebar);
    split->addWidget(m_detail);
    split->setStretchFactor(1, 1);
    split->setSizes({220, 880});
    layout->addWidget(split, 1);
    setCentralWidget(central);
    connect(m_state.get(), &AppState::sidebarSelectionChanged, this, &MainWindow::showSelection);
    connect(m_sidebar, &SourceListView::collectionFocusRequested, this, [this] {
        if (!m_collection)
            return;
        CollectionMemberList *list = m_collection->memberList();
        if (!list->currentIndex().isValid() && list->model()->rowCount() > 0)
            list->setCurrentIndex(list->model()->index(0, 0));
        list->setFocus(Qt::OtherFocusReason);
    });
    m_status = new QLabel(this);
    m_status->setAccessibleName(u"Status"_s);
    statusBar()->addWidget(m_status, 1);
    connect(m_state.get(), &AppState::saveFailureChanged, this, &MainWindow::updateSaveFailure);
    connect(m_state.get(), &AppState::isIndexingChanged, this, &MainWindow::updateStatus);
    connect(m_state.get(), &AppState::isProcessingChanged, this, &MainWindow::updateStatus);
    connect(m_state.get(), &AppState::processingMessageChanged, this, &MainWindow::updateStatus);
}

// The store goes first: it waits for a running batch job, which uses the services.
MainWindow::~MainWindow()
{
    m_state.reset();
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

void MainWindow::showSelection()
{
    const std::optional<SidebarItem> &selection = m_state->sidebarSelection();
    const FontCollection *collection = selection ? selection->collection() : nullptr;
    if (!collection) {
        delete m_collection;
        m_collection = nullptr;
        m_detail->setCurrentWidget(m_browser);
        return;
    }
    if (m_collection && m_collection->collectionId() == collection->id)
        return;
    delete m_collection;
    m_collection = new CollectionView(*m_state, collection->id, m_detail);
    m_detail->addWidget(m_collection);
    m_detail->setCurrentWidget(m_collection);
}

void MainWindow::updateStatus()
{
    if (m_state->isProcessing())
        m_status->setText(m_state->processingMessage());
    else if (m_state->isIndexing())
        m_status->setText(u"Updating font library…"_s);
    else
        m_status->clear();
}
