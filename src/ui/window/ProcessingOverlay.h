// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>

class AppState;
class QGraphicsOpacityEffect;
class QLabel;
class QProgressBar;
class QPushButton;
class QPropertyAnimation;

// While a batch job runs: the whole window dimmed under a card with the job's message,
// a progress bar and the percentage. Nothing beneath it takes the mouse or the keyboard,
// menu shortcuts included (but Quit). It shows only once the job has run 200 ms, and
// fades in and out. "Cancel" (or Escape) stops the job after the fonts in hand; a job
// that stops making progress gets a note, and Cancel then stops waiting at once.
class ProcessingOverlay : public QWidget
{
    Q_OBJECT

public:
    ProcessingOverlay(AppState &state, QWidget *window);

    QLabel *message() const { return m_message; }
    QLabel *percentage() const { return m_percentage; }
    QProgressBar *bar() const { return m_bar; }
    // Shown when the job stops making progress: why.
    QLabel *stalledNote() const { return m_stalled; }
    QPushButton *cancelButton() const { return m_cancel; }
    // What "99%" reads at 0.999: the progress in whole per cent, cut, never rounded up.
    static QString percentText(double progress);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void follow();
    void appear();
    void refresh();

    AppState &m_state;
    QWidget *m_card;
    QLabel *m_message;
    QProgressBar *m_bar;
    QLabel *m_percentage;
    QLabel *m_stalled;
    QPushButton *m_cancel;
    QGraphicsOpacityEffect *m_fade;
    QPropertyAnimation *m_animation;
    QPointer<QWidget> m_focusBefore;
    QTimer m_showDelay;
};
