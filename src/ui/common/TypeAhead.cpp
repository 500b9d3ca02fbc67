// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/TypeAhead.h"

bool TypeAhead::isTyping(qint64 nowMs) const
{
    return !m_typed.isEmpty() && nowMs - m_lastMs <= kPauseMs;
}

int TypeAhead::type(const QString &text, qint64 nowMs, int current, int count,
                    const std::function<QStringView(int)> &nameOf)
{
    if (!isTyping(nowMs))
        m_typed.clear();
    m_lastMs = nowMs;
    m_typed += text;
    if (count <= 0)
        return -1;
    // A new search looks past the current row; a longer prefix may still match it.
    const int start = m_typed.size() == 1 ? current + 1 : std::max(current, 0);
    for (int step = 0; step < count; ++step) {
        const int row = (start + step) % count;
        if (nameOf(row).startsWith(m_typed, Qt::CaseInsensitive))
            return row;
    }
    return -1;
}
