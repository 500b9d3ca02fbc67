// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>
#include <QStackedWidget>

class AppState;
class QLabel;
class QPushButton;
class SearchResultsModel;

// The hits as a list. A click on a row's button toggles the folder's activation; a
// click elsewhere leaves the search for that folder in the browser; a drag offers the
// folder's path and navigates nowhere.
class SearchResultsList : public QListView
{
    Q_OBJECT

public:
    SearchResultsList(AppState &state, SearchResultsModel *model, QWidget *parent = nullptr);
    // Opens the hit as a click does (a screen reader's "Press").
    Q_INVOKABLE void chooseRow(const QModelIndex &index) { open(index.row()); }
    // A line of the view's own above the hits, as wide as the list (hidden: no room).
    void setTopLine(QWidget *line);
    void updateTopLine();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void open(int row);
    QWidget *m_topLine = nullptr;

    AppState &m_state;
    SearchResultsModel *m_model;
    bool m_buttonPressed = false; // the press in progress is the activation button's
};

// What fills the detail area during a folder search: "Searching folders…" while the
// search or the library's indexing runs, else the hits, else "No matching folders".
class SearchResultsView : public QStackedWidget
{
    Q_OBJECT

public:
    explicit SearchResultsView(AppState &state, QWidget *parent = nullptr);

    SearchResultsList *list() const { return m_list; }
    QWidget *progressPage() const { return m_progress; }
    QWidget *emptyPage() const { return m_empty; }
    // "12 fonts named like “dejavu”": opens All Fonts with that text. Hidden when none are.
    QPushButton *fontsLink() const { return m_fontsLink; }

Q_SIGNALS:
    void fontsRequested(const QString &text);

private:
    void refresh();
    void countFonts();

    AppState &m_state;
    SearchResultsModel *m_model;
    SearchResultsList *m_list;
    QWidget *m_progress;
    QWidget *m_empty;
    QPushButton *m_fontsLink;
    quint64 m_countGeneration = 0;
};
