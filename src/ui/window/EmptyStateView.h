// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QPushButton;

// The detail area when nothing is selected and no search runs: an invitation to add
// a folder of fonts.
class EmptyStateView : public QWidget
{
    Q_OBJECT

public:
    explicit EmptyStateView(QWidget *parent = nullptr);
    QPushButton *addButton() const { return m_add; }

Q_SIGNALS:
    void addFolderRequested();

private:
    QPushButton *m_add;
};
