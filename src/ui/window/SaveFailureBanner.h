// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

class AppState;

// Across the window while the library can't be saved: what failed, where, and what it
// means. A red wash over the window's own colour with its own text colour, so it reads
// on a light and a dark desktop alike.
class SaveFailureBanner : public QLabel
{
    Q_OBJECT

public:
    explicit SaveFailureBanner(AppState &state, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    // The window's palette changes reach us through it: our own palette is the style sheet's.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void sync();
    void restyle();

    AppState &m_state;
};
