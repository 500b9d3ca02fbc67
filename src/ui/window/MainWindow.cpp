// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/MainWindow.h"

#include "services/FontQueryJson.h"
#include "ui/fontlist/FontListView.h"

#include <QLineEdit>
#include "ui/window/MessageArea.h"
#include "ui/window/SaveFailureBanner.h"
#include "ui/common/Confirmations.h"
#include "ui/common/WheelGuard.h"

#include "ui/collection/CollectionView.h"
#include "ui/collection/CollectionMemberList.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/window/EmptyStateView.h"
#include "ui/window/OpenedFontView.h"
#include "ui/window/ProcessingOverlay.h"
#include "ui/window/ReindexingStrip.h"
#include "ui/search/SearchResultsView.h"
#include "ui/sidebar/SidebarView.h"
#include "ui/window/ToolbarInputField.h"
#include "ui/window/UnavailableSourceView.h"

#include "services/PersistenceService.h"
#include "state/AppState.h"

#include <QKeyEvent>
#include <QContextMenuEvent>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QAction>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;

WindowStore::WindowStore() = default;
WindowStore::WindowStore(WindowStore &&) noexcept = default;
WindowStore::~WindowStore() = default;

MainWindow::MainWindow(WindowStore store, QWidget *parent)
    : QMainWindow(parent)
    , m_activation(std::move(store.activation))
    , m_persistence(std::move(store.persistence))
    , m_state(std::move(store.state))
{
    setWindowTitle(QString()); // the desktop shows the application's name
    setAccessibleName(tr("Morvane")); // what a screen reader names the window
    setWindowIcon(QIcon::fromTheme(u"org.morvane.Morvane"_s, QIcon(u":/morvane/org.morvane.Morvane.svg"_s)));
    setMinimumSize(900, 500);
    WheelGuard::install(this);
    // Two active files of one PostScript name: the user decides before it happens.
    m_state->setActivationGuard([this](const QList<AppState::ActivationConflict> &conflicts) {
        return Confirmations::activationConflicts(this, conflicts);
    });
    resize(1100, 650);
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_saveFailure = new SaveFailureBanner(*m_state, central);
    layout->addWidget(m_saveFailure);
    m_messages = new MessageArea(*m_state, central);
    layout->addWidget(m_messages);
    // The sidebar is always there: no toggle, and no drag can fold it away.
    m_split = new QSplitter(Qt::Horizontal, central);
    m_split->setChildrenCollapsible(false);
    m_sidebar = new SidebarView(*m_state, m_split);
    m_split->addWidget(m_sidebar);
    m_split->addWidget(buildDetailColumn(m_split));
    m_split->setCollapsible(0, false);
    m_split->setCollapsible(1, false);
    m_split->setStretchFactor(0, 0);
    m_split->setStretchFactor(1, 1);
    m_split->setSizes({200, 900});
    // Where the user left the window and its divider.
    if (const QByteArray geometry = m_persistence->windowGeometry(); !geometry.isEmpty())
        restoreGeometry(geometry);
    if (const int sidebar = m_persistence->sidebarWidth(); sidebar > 0)
        m_split->setSizes({sidebar, std::max(1, width() - sidebar)});
    layout->addWidget(m_split, 1);
    setCentralWidget(central);
    buildToolbar();
    m_overlay = new ProcessingOverlay(*m_state, this);

    connect(m_sidebar, &SidebarView::collectionFocusRequested, this, [this] {
        if (!m_collection)
            return;
        CollectionMemberList *list = m_collection->memberList();
        if (!list->currentIndex().isValid() && list->model()->rowCount() > 0)
            list->setCurrentIndex(list->model()->index(0, 0));
        list->setFocus(Qt::OtherFocusReason);
    });
    connect(m_empty, &EmptyStateView::addFolderRequested, this, &MainWindow::addFolders);
    connect(m_state.get(), &AppState::unavailableSourcesChanged, this, &MainWindow::showDetail);
    connect(m_unavailable, &UnavailableSourceView::retryRequested, m_state.get(), [this] { m_state->refreshFileSystem(); });
    connect(m_state.get(), &AppState::sidebarSelectionChanged, this, &MainWindow::showDetail);
    connect(m_state.get(), &AppState::openedFontFileChanged, this, &MainWindow::showDetail);
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
    m_unavailable = new UnavailableSourceView(m_detail);
    m_detail->addWidget(m_unavailable);
    m_detail->addWidget(m_results);
    // "Edit Filters…" on a smart collection: All Fonts with its question, to change it.
    connect(m_state.get(), &AppState::smartEditRequested, this, [this](const QUuid &id) {
        const QList<FontCollection> &collections = m_state->collections();
        const auto smart = std::find_if(collections.cbegin(), collections.cend(),
                                        [&](const FontCollection &c) { return c.id == id && c.isSmart(); });
        if (smart == collections.cend())
            return;
        const FontCollection collection = *smart;
        m_state->setSidebarSelection(SidebarItem(LibraryView::of(LibraryView::AllFonts)));
        showDetail();
        if (m_fontList)
            m_fontList->editSmartCollection(collection.id, collection.name, FontQueryJson::fromJson(*collection.smartQuery));
    });
    // "12 fonts named like …": All Fonts, filtered by the same words; the search ends.
    connect(m_results, &SearchResultsView::fontsRequested, this, [this](const QString &asked) {
        const QString text = asked; // the search's own words, which choosing All Fonts clears
        m_state->setSidebarSelection(SidebarItem(LibraryView::of(LibraryView::AllFonts)));
        showDetail();
        if (m_fontList) {
            m_fontList->filterField()->setText(text);
            m_fontList->setFocus();
        }
    });
    m_detail->addWidget(m_browser);
    m_detail->addWidget(m_empty);
    layout->addWidget(m_detail, 1);
    return column;
}

void MainWindow::buildToolbar()
{
    m_toolbar = new QToolBar(tr("Search"), this);
    m_toolbar->setObjectName(u"searchToolbar"_s);
    m_toolbar->setMovable(false);
    m_toolbar->setFloatable(false);
    m_toolbar->toggleViewAction()->setVisible(false);
    m_search = new ToolbarInputField(tr("Search…"), m_toolbar);
    m_search->lineEdit()->setAccessibleName(tr("Search"));
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
        more->setAccessibleName(tr("More Toolbar Items"));
    auto *find = new QAction(tr("Find"), this);
    find->setShortcut(QKeySequence::Find);
    find->setShortcutContext(Qt::WindowShortcut);
    connect(find, &QAction::triggered, m_search, &ToolbarInputField::focusField);
    addAction(find);
    // Tab: the sidebar, then the search field, then the browser, as they read.
    setTabOrder(m_sidebar->lastTabStop(), m_search->lineEdit());
}

// The field, the store's query and the sidebar's selection keep in step: typing ends
// the selection, clearing the search goes back to the first source, and choosing
// anything in the sidebar ends the search.
void MainWindow::watchSearch()
{
    connect(m_search, &ToolbarInputField::draftChanged, this,
            [this](const QString &draft) { m_state->setSearchQuery(AppState::trimmedQuery(draft)); });
    connect(m_search, &ToolbarInputField::cleared, this, [this] { m_state->setSearchQuery(QString()); });
    // Down from the field into the hits, the first one current.
    connect(m_search, &ToolbarInputField::downPressed, this, [this] {
        SearchResultsList *hits = m_results->list();
        if (!m_state->isSearching() || !hits->isVisible() || hits->model()->rowCount() == 0)
            return;
        hits->setFocus(Qt::TabFocusReason);
        if (!hits->currentIndex().isValid())
            hits->setCurrentIndex(hits->model()->index(0, 0));
    });
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
    std::optional<FolderSource> source;
    if (m_state->isSearching()) {
        m_detail->setCurrentWidget(m_results);
    } else if (!m_state->openedFontFile().isEmpty()) {
        if (!m_opened || m_opened->path() != m_state->openedFontFile()) {
            if (m_opened)
                m_opened->deleteLater();
            m_opened = new OpenedFontView(*m_state, m_state->openedFontFile(), m_detail);
            m_detail->addWidget(m_opened);
        }
        m_detail->setCurrentWidget(m_opened);
    } else if ((source = m_state->selectedSource()) && !m_state->isSourceAvailable(*source)) {
        m_unavailable->setFolder(source->path);
        m_detail->setCurrentWidget(m_unavailable);
    } else if (source) {
        m_detail->setCurrentWidget(m_browser);
    } else if ((collection = m_state->selectedCollection())) {
        showCollection(collection->id);
        return;
    } else if (const std::optional<LibraryView> library = m_state->selectedLibraryView()) {
        if (!m_fontList) {
            m_fontList = new FontListView(*m_state, m_detail);
            m_detail->addWidget(m_fontList);
        }
        m_fontList->setLibraryView(library->kind);
        m_detail->setCurrentWidget(m_fontList);
    } else {
        m_detail->setCurrentWidget(m_empty);
    }
    retireCollectionView(); // a collection's view lives while it is shown
}

// The view may be handling the very key or click that led here (Enter on a member
// jumps to its source): it goes once that is over.
void MainWindow::retireCollectionView()
{
    if (!m_collection)
        return;
    m_detail->removeWidget(m_collection);
    m_collection->hide();
    m_collection->deleteLater();
    m_collection = nullptr;
}

void MainWindow::showCollection(const QUuid &id)
{
    if (!m_collection || m_collection->collectionId() != id) {
        retireCollectionView();
        m_collection = new CollectionView(*m_state, id, m_detail);
        m_detail->addWidget(m_collection);
    }
    m_detail->setCurrentWidget(m_collection);
}

// Shift+F10 opens the context menu of whatever has the keys, as the Menu key does;
// widgets pass it up to here because none of them takes it.
void MainWindow::keyPressEvent(QKeyEvent *event)
{
    QWidget *focus = QApplication::focusWidget();
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier && focus && focus->window() == this) {
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, focus->rect().center(), focus->mapToGlobal(focus->rect().center()));
        QApplication::sendEvent(focus, &menu);
        event->accept();
        return;
    }
    QMainWindow::keyPressEvent(event);
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

QString MainWindow::plainReason(const QString &systemError)
{
    const QHash<QString, QString> plain{
        {QString::fromLocal8Bit(std::strerror(ENOSPC)), tr("the disk is full")},
        {QString::fromLocal8Bit(std::strerror(EDQUOT)), tr("your disk quota is used up")},
        {QString::fromLocal8Bit(std::strerror(EFBIG)), tr("the file is larger than this system allows")},
        {QString::fromLocal8Bit(std::strerror(EROFS)), tr("the disk is read-only")},
        {QString::fromLocal8Bit(std::strerror(EACCES)), tr("Morvane may not write to its folder")},
    };
    return plain.value(systemError, systemError);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    m_persistence->setWindowLayout(saveGeometry(), m_split->sizes().value(0));
    // What could not be saved gets one more try (the space may be back), and the user
    // the last word before it is lost.
    m_persistence->retryFailedSaves();
    m_persistence->waitForWrites();
    const QString failure = m_persistence->unsavedFailure();
    if (!failure.isEmpty()) {
        const QString reason = plainReason(failure);
        const bool quit = m_confirmQuit ? m_confirmQuit(reason) : [&] {
            QMessageBox box(QMessageBox::Warning, tr("Morvane"),
                            tr("Your last changes couldn't be saved: %1. Quit anyway?").arg(reason), QMessageBox::NoButton,
                            this);
            box.setInformativeText(tr("If you quit now, the changes made since the problem began are lost. "
                                      "Free some space, then close Morvane again."));
            QPushButton *quitButton = box.addButton(tr("Quit Anyway"), QMessageBox::DestructiveRole);
            box.addButton(QMessageBox::Cancel);
            box.setDefaultButton(QMessageBox::Cancel);
            box.exec();
            return box.clickedButton() == quitButton;
        }();
        if (!quit) {
            event->ignore();
            return;
        }
    }
    QMainWindow::closeEvent(event);
}

bool MainWindow::finishBackgroundWork(int msecs)
{
    const bool finished = m_state->waitForBackgroundWork(msecs);
    m_persistence->waitForWrites();
    return finished;
}

void MainWindow::openPaths(const QStringList &paths, std::function<bool(const QString &folder)> ask)
{
    QStringList refused;
    for (const QString &given : paths) {
        const QFileInfo info(given);
        const QString path = info.absoluteFilePath();
        if (info.isDir()) {
            const bool add = ask ? ask(path)
                                 : QMessageBox::question(this, tr("Add Folder as Source"),
                                                         tr("Add “%1” as a source of fonts?").arg(info.fileName()),
                                                         QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes)
                                       == QMessageBox::Yes;
            if (add)
                m_state->addSource(QDir::cleanPath(path));
        } else if (info.isFile() && isFontFileName(info.fileName())) {
            m_state->openFontFile(path);
        } else {
            refused.append(QDir::toNativeSeparators(given));
        }
    }
    // Spelled out for one: without a translation loaded, Qt leaves "%n" plurals alone.
    if (refused.size() == 1)
        m_state->setNotice(tr("“%1” can't be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.")
                               .arg(refused.constFirst()));
    else if (!refused.isEmpty())
        m_state->setNotice(tr("%n items can't be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.",
                              nullptr, int(refused.size())),
                           refused);
}

void MainWindow::bringToFront()
{
    setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
}
