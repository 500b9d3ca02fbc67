// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QTimer;

// A small spinning indicator of work without a known end. It turns only while shown.
class BusyIndicator : public QWidget
{
    Q_OBJECT

public:
    explicit BusyIndicator(int side, QWidget *parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    int m_side;
    int m_step = 0;
    QTimer *m_timer;
};
