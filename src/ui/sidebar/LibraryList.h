// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>

class AppState;

// The sidebar's first section: "All Fonts" and "Active Fonts", each with the number of
// faces it holds ("12,345 fonts"). Choosing one is the store's sidebar selection, as a
// source or a collection is; Tab into the list chooses nothing.
class LibraryList : public QListView
{
    Q_OBJECT

public:
    LibraryList(AppState &state, QWidget *parent = nullptr);

    void syncSelection();
    int contentHeight() const;

protected:
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;

private:
    AppState &m_state;
    bool m_syncing = false;
};
