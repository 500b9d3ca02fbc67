#pragma once

#include <QMainWindow>

#include <memory>

class AppState;
class CollectionView;
class ColumnBrowserView;
class QStackedWidget;
class SourceListView;
class FontActivationService;
class PersistenceService;
class QLabel;

// Morvane's one window. It owns the store and the services it is built on, and
// restores the saved library the first time it is shown.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    AppState &state() { return *m_state; }
    ColumnBrowserView &browser() { return *m_browser; }
    SourceListView &sidebar() { return *m_sidebar; }
    // The selected collection's view; none while a source is selected.
    CollectionView *collectionView() const { return m_collection; }
    // A second start of Morvane asked for this window.
    void bringToFront();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void updateStatus();
    void showSelection();
    void updateSaveFailure();

    std::unique_ptr<FontActivationService> m_activation;
    std::unique_ptr<PersistenceService> m_persistence;
    std::unique_ptr<AppState> m_state;
    QLabel *m_status = nullptr;
    QLabel *m_saveFailure = nullptr;
    ColumnBrowserView *m_browser = nullptr;
    SourceListView *m_sidebar = nullptr;
    QStackedWidget *m_detail = nullptr;
    CollectionView *m_collection = nullptr;
};
