// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class AppState;
class QLabel;

// Atop the detail area: a small spinner with "Updating font library…" while the
// library is re-indexed, and always a divider below. It takes room rather than covering.
class ReindexingStrip : public QWidget
{
    Q_OBJECT

public:
    explicit ReindexingStrip(AppState &state, QWidget *parent = nullptr);
    QWidget *indicator() const { return m_indicator; }

private:
    AppState &m_state;
    QWidget *m_indicator;
};
