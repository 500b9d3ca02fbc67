// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

// The one problem the user must hear of that no view shows by itself (a font folder
// that can't be written, an icon that can't be used), one concern of the store: it
// stays until dismissed or replaced by the next.
class Notices : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    const QString &text() const { return m_text; }
    // The files it is about, one line each with what went wrong; often none.
    const QStringList &details() const { return m_details; }
    void say(const QString &text, const QStringList &details = {})
    {
        if (m_text == text && m_details == details)
            return;
        m_text = text;
        m_details = details;
        Q_EMIT changed();
    }

Q_SIGNALS:
    void changed();

private:
    QString m_text;
    QStringList m_details;
};
