// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class AppState;
class QLabel;
class QPushButton;

// The one place above the detail area where the window says what went wrong: the
// store's notice on a yellow wash, "Show" when it lists the files concerned, and
// "Dismiss". A message stays until dismissed or replaced by the next one.
class MessageArea : public QWidget
{
    Q_OBJECT

public:
    explicit MessageArea(AppState &state, QWidget *parent = nullptr);

    QLabel &text() const { return *m_text; }
    QPushButton &showButton() const { return *m_show; }
    QPushButton &dismissButton() const { return *m_dismiss; }

protected:
    void changeEvent(QEvent *event) override;

private:
    void sync();
    void restyle();
    void showDetails();

    AppState &m_state;
    QLabel *m_text;
    QPushButton *m_show;
    QPushButton *m_dismiss;
};
