// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <functional>

// Typing letters on a list selects the next row whose name begins with them: a letter
// typed after a pause starts a new search past the current row, letters typed on
// lengthen the prefix (which may still match the current row), and the search wraps.
// Times are given by the caller, so the rules can be tested without waiting.
class TypeAhead
{
public:
    static constexpr qint64 kPauseMs = 1000; // a longer pause starts a new search

    // Whether letters were typed within the pause: a space then belongs to the name.
    bool isTyping(qint64 nowMs) const;
    // Adds `text` and returns the row to select, or -1 when no name matches.
    int type(const QString &text, qint64 nowMs, int current, int count, const std::function<QStringView(int)> &nameOf);
    // Any other key ends the search.
    void reset() { m_typed.clear(); }

private:
    QString m_typed;
    qint64 m_lastMs = 0;
};
