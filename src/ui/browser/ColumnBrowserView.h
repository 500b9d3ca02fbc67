// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QWidget>

class AppState;
class FontPreviewView;
class QFrame;
class QHBoxLayout;
class QLabel;
class QScrollArea;
class SingleColumnView;

// The detail area for a source: a breadcrumb bar, then a horizontally scrolling row of
// columns (one per level of the store's columns, each followed by a 1-px divider) and
// the selected font's preview pane at the end. A column is rebuilt only when its
// identity (its index and first item) changes; when the columns change, the last one
// (or the preview) scrolls into view.
class ColumnBrowserView : public QWidget
{
    Q_OBJECT

public:
    explicit ColumnBrowserView(AppState &state, QWidget *parent = nullptr);

    QList<SingleColumnView *> columns() const;
    FontPreviewView *previewPane() const { return m_preview; }
    QScrollArea *scrollArea() const { return m_scroll; }
    QWidget *breadcrumbBar() const { return m_breadcrumb; }

private:
    struct Column
    {
        QString key;
        SingleColumnView *view = nullptr;
        QFrame *divider = nullptr;
    };

    void rebuildColumns();
    void rebuildPreview();
    void rebuildBreadcrumb();
    void syncColumns();
    void scrollToEnd();
    bool hasKeyboard() const;
    void focusActiveColumn();

    AppState &m_state;
    QWidget *m_retiredCrumbs = nullptr; // replaced crumbs, until they are deleted
    QWidget *m_breadcrumb = nullptr;
    QHBoxLayout *m_crumbs = nullptr;
    QScrollArea *m_scroll = nullptr;
    QWidget *m_row = nullptr;
    QHBoxLayout *m_rowLayout = nullptr;
    QList<Column> m_columns;
    FontPreviewView *m_preview = nullptr;
    QString m_previewKey;
    bool m_scrollToSelection = false; // a jump's rows come into view once laid out
};
