// SPDX-License-Identifier: GPL-3.0-or-later
// One file of a font kept active where several claim its PostScript name: the others
// off, that one on, through the same guarded batches as every activation, saved once.
#include "AppState.h"

#include <QPointer>

using namespace Qt::StringLiterals;

QCoro::Task<> AppState::keepOnlyActive(FontNode keep, QList<FontNode> others)
{
    if (m_isProcessing || m_isIndexing)
        co_return;
    QPointer<AppState> self(this);
    // Off first: fontconfig would otherwise pick between the two for a moment.
    QList<FontNode> active;
    for (const FontNode &font : std::as_const(others)) {
        if (m_activatedFonts.contains(font.path()))
            active.append(font);
    }
    if (!active.isEmpty()) {
        const QString label = u"Deactivating"_s;
        co_await batchProcess(active, false, label);
        if (!self)
            co_return;
    }
    if (!m_activatedFonts.contains(keep.path()) || m_sessionFonts.contains(keep.path())) {
        const QList<FontNode> one{keep};
        const QString label = u"Updating"_s;
        co_await batchProcess(one, true, label);
        if (!self)
            co_return;
    }
    saveActivatedFonts();
}
