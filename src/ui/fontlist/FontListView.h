// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/SidebarItem.h"
#include "services/FontCatalog.h"
#include "ui/common/TypeAhead.h"

#include <QSet>
#include <QElapsedTimer>
#include <QFutureWatcher>
#include <QTreeView>
#include <QWidget>

#include <functional>
#include <optional>
#include <utility>

class AppState;
class CompareView;
class FontFilterBar;
class FontListDelegate;
class FontListModel;
class FontSampleCache;
class QLabel;
class QLineEdit;
class QSlider;
class QStackedWidget;
class QTimer;
class QToolButton;

// The tree of the font list: Space toggles the chosen row's activation, Enter shows the
// face's file in its source's browser; arrows, Right and Left (open, close) are the tree's;
// letters typed choose the next family whose name begins with them (a space typed within
// the pause belongs to the name).
class FontListTree : public QTreeView
{
    Q_OBJECT

public:
    FontListTree(AppState &state, QWidget *parent = nullptr);

Q_SIGNALS:
    void toggleRequested(const QModelIndex &index);
    void openRequested(const QModelIndex &index);
    void compareRequested();
    // "Keep Only This File Active": the face row's file on, its namesakes' off.
    void keepOnlyRequested(const QModelIndex &index);

public:
    // Duplicates and Conflicts offer to keep one file of a PostScript name.
    void setOffersKeepOne(bool offers) { m_offersKeepOne = offers; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    // The menu of the face's file (a family: its regular face's), as the browser's row has.
    void contextMenuEvent(QContextMenuEvent *event) override;
    // Only the arrow: the row's own rounded background shows the selection.
    void drawBranches(QPainter *painter, const QRect &rect, const QModelIndex &index) const override;

private:
    bool typing() const;

    AppState &m_state;
    bool m_offersKeepOne = false;
    TypeAhead m_typeAhead;
    QElapsedTimer m_sinceTyped;
};

// "All Fonts" or "Active Fonts": the catalogue's families, each drawn in its own face,
// narrowed by a filter field ("Filter fonts…"; text in quotes must be mapped character
// by character) and the filter bar's menus, with the number of families and faces shown.
// The rows draw the preview text at the list's own size (saved), each font's name when
// "Names" is on, or with one language chosen that language's sample.
class FontListView : public QWidget
{
    Q_OBJECT

public:
    FontListView(AppState &state, QWidget *parent = nullptr);

    void setLibraryView(LibraryView::Kind kind);
    LibraryView::Kind libraryView() const { return m_kind; }

    QLineEdit *filterField() const { return m_filter; }
    FontFilterBar *filterBar() const { return m_bar; }
    QSlider *sizeSlider() const { return m_size; }
    QToolButton *namesButton() const { return m_names; }
    QToolButton *saveSmartButton() const { return m_saveSmart; }
    QToolButton *compareButton() const { return m_compareButton; }
    CompareView *compareView() const { return m_compare; }
    bool isComparing() const;
    // The chosen rows (two to twelve) side by side; a family stands for its regular face.
    void compareSelected();
    // Tests answer the name question themselves (empty: cancelled).
    void setNameChooser(std::function<QString()> chooser) { m_chooseName = std::move(chooser); }
    // The question the field and the bar ask together.
    FontQuery currentQuery() const;
    // Shows a smart collection's question to change it; "Save Filters" keeps the change.
    void editSmartCollection(const QUuid &id, const QString &name, const FontQuery &query);
    bool isEditingSmartCollection() const { return !m_editing.isNull(); }
    // What the rows draw now: empty for each font's own name.
    QString sampleText() const;
    QLabel *countLabel() const { return m_count; }
    FontListTree *tree() const { return m_tree; }
    FontListModel *model() const { return m_model; }
    FontSampleCache *samples() const { return m_samples; }
    bool isQuerying() const { return m_querying; }

    // The question the field asks: words to match, and quoted characters to be mapped.
    static FontQuery queryFor(const QString &filter, LibraryView::Kind kind);

private:
    void ask();
    void answered(const FontQueryAnswer &answer);
    void updateSample();
    void toggle(const QModelIndex &index);
    void open(const QModelIndex &index);

    AppState &m_state;
    LibraryView::Kind m_kind = LibraryView::AllFonts;
    QLineEdit *m_filter;
    QLabel *m_count;
    FontFilterBar *m_bar;
    QSlider *m_size;
    QToolButton *m_names;
    QToolButton *m_saveSmart;
    QToolButton *m_compareButton = nullptr;
    CompareView *m_compare = nullptr;
    QStackedWidget *m_pages = nullptr;
    std::function<QString()> m_chooseName;
    QUuid m_editing; // the smart collection whose filters are shown
    FontListTree *m_tree;
    FontListModel *m_model;
    FontSampleCache *m_samples;
    QSet<QString> m_changedFiles; // read again since the answer shown: their rows redraw
    FontListDelegate *m_delegate;
    QTimer *m_askSoon;
    QFutureWatcher<FontQueryAnswer> *m_asking = nullptr; // the newest question
    bool m_querying = false;
    FontQuery m_asked;                   // the newest question
    LibraryView::Kind m_askedKind{};
    std::optional<std::pair<FontQuery, LibraryView::Kind>> m_shown; // the question the list answers
};
