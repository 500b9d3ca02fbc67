// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLineEdit;
class QToolButton;

// The toolbar's search field: a magnifier, a borderless line edit with its prompt, and
// a clear button that is invisible and disabled while the field is empty. Escape in the
// field clears it, as the button does.
class ToolbarInputField : public QWidget
{
    Q_OBJECT

public:
    ToolbarInputField(const QString &placeholder, QWidget *parent = nullptr);

    QString draft() const;
    void setDraft(const QString &draft);
    QLineEdit *lineEdit() const { return m_edit; }
    QToolButton *clearButton() const { return m_clear; }
    // Focus to the field, its text selected for replacing.
    void focusField();

Q_SIGNALS:
    void draftChanged(const QString &draft);
    // After the clear button or Escape emptied the draft.
    void cleared();
    // Down in the field: the keys go on to what the field found.
    void downPressed();

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void clear();

    QLineEdit *m_edit;
    QToolButton *m_clear;
};
