// SPDX-License-Identifier: GPL-3.0-or-later
#include "Console.h"

#include <QMutex>

#include <cstdio>

namespace Console {

void printLine(const QString &line)
{
    // Worker threads report too; keep their lines whole.
    static QMutex mutex;
    const QMutexLocker lock(&mutex);
    const QByteArray bytes = line.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

} // namespace Console
