#include "MainWindow.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"

#include <QLabel>
#include <QStatusBar>

using namespace Qt::StringLiterals;

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_activation(std::make_unique<FontActivationService>())
    , m_persistence(std::make_unique<PersistenceService>())
    , m_state(std::make_unique<AppState>(*m_activation, *m_persistence))
{
    setWindowTitle(u"Morvane"_s);
    resize(1100, 700);
    m_status = new QLabel(this);
    statusBar()->addWidget(m_status, 1);
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

void MainWindow::updateStatus()
{
    if (m_state->isProcessing())
        m_status->setText(m_state->processingMessage());
    else if (m_state->isIndexing())
        m_status->setText(u"Updating font library…"_s);
    else
        m_status->clear();
}
