// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

// The detail area for a source whose folder can't be reached (a drive not mounted, a
// folder made unreadable): what is wrong, that its activations are kept, and a retry.
class UnavailableSourceView : public QWidget
{
    Q_OBJECT

public:
    explicit UnavailableSourceView(QWidget *parent = nullptr);
    void setFolder(const QString &path);
    QLabel *message() const { return m_message; }
    QPushButton *retryButton() const { return m_retry; }

Q_SIGNALS:
    void retryRequested();

private:
    QLabel *m_message;
    QPushButton *m_retry;
};
