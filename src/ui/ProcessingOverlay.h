#pragma once

#include <QPointer>
#include <QWidget>

class AppState;
class QGraphicsOpacityEffect;
class QLabel;
class QProgressBar;
class QPropertyAnimation;

// While a batch job runs: the whole window dimmed under a card with the job's message,
// a progress bar and the percentage. Nothing beneath it takes the mouse or the keyboard,
// menu shortcuts included. It fades in and out.
class ProcessingOverlay : public QWidget
{
    Q_OBJECT

public:
    ProcessingOverlay(AppState &state, QWidget *window);

    QLabel *message() const { return m_message; }
    QLabel *percentage() const { return m_percentage; }
    QProgressBar *bar() const { return m_bar; }
    // What "99%" reads at 0.999: the progress in whole per cent, cut, never rounded up.
    static QString percentText(double progress);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void follow();
    void refresh();

    AppState &m_state;
    QWidget *m_card;
    QLabel *m_message;
    QProgressBar *m_bar;
    QLabel *m_percentage;
    QGraphicsOpacityEffect *m_fade;
    QPropertyAnimation *m_animation;
    QPointer<QWidget> m_focusBefore;
};
