// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSet>
#include <QString>

#include <functional>
#include <memory>

class FontCatalog;
class QTimer;

// How many faces the library's own lists hold ("All Fonts", "Active Fonts"), one concern
// of the store: counted in one pass over the catalogue off the interface thread, a
// quarter of a second after a burst of changes; -1 until counted.
class LibraryCounts : public QObject
{
    Q_OBJECT

public:
    using Catalog = std::function<std::shared_ptr<FontCatalog>()>;
    using Activated = std::function<QSet<QString>()>;
    LibraryCounts(Catalog catalog, Activated activated, QObject *parent = nullptr);

    qsizetype allFaces() const { return m_all; }
    qsizetype activeFaces() const { return m_active; }
    void countSoon();

Q_SIGNALS:
    void changed();

private:
    void count();

    Catalog m_catalog;
    Activated m_activated;
    QTimer *m_soon;
    qsizetype m_all = -1;
    qsizetype m_active = -1;
};
