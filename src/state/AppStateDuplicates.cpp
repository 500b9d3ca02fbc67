// SPDX-License-Identifier: GPL-3.0-or-later
// Files that claim one PostScript name: one of them kept active, the others off, through
// the same guarded batches as every activation; and the question asked before the
// user's activations would make two active files claim one name.
#include "AppState.h"

#include <QCoroFuture>
#include <QPointer>

#include <algorithm>

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

QCoro::Task<std::optional<QList<FontNode>>> AppState::passGuard(QList<FontNode> fonts)
{
    if (!m_activationGuard || fonts.isEmpty())
        co_return QList<FontNode>{};
    QPointer<AppState> self(this);
    // The catalogue's own question about conflicts, asked as if the batch were done.
    QSet<QString> batch;
    for (const FontNode &font : std::as_const(fonts))
        batch.insert(font.path());
    LibraryCatalogue::Knowledge knowledge = knowledgeFor(FontQuery{});
    knowledge.activated = m_activatedFonts + batch;
    FontQuery query;
    query.conflicts = true;
    const QFuture<FontQueryAnswer> asked = m_catalogue->answer(query, std::move(knowledge));
    const FontQueryAnswer answer = co_await asked;
    if (!self)
        co_return std::nullopt;
    QHash<QString, QStringList> incoming, active; // by PostScript name
    for (const FoundFace &face : answer.faces()) {
        QStringList &side = batch.contains(face.path) ? incoming[face.postScriptName] : active[face.postScriptName];
        if (!side.contains(face.path))
            side.append(face.path);
    }
    QList<ActivationConflict> conflicts;
    for (auto it = incoming.cbegin(); it != incoming.cend(); ++it) {
        const QStringList others = active.value(it.key());
        if (others.isEmpty())
            continue; // only files of this batch share the name: the user chose them together
        for (const QString &font : *it)
            conflicts.append({it.key(), font, others});
    }
    if (conflicts.isEmpty())
        co_return QList<FontNode>{};
    std::sort(conflicts.begin(), conflicts.end(),
              [](const ActivationConflict &a, const ActivationConflict &b) { return a.font < b.font; });
    switch (m_activationGuard(conflicts)) {
    case ConflictChoice::Cancel: co_return std::nullopt;
    case ConflictChoice::KeepBoth: co_return QList<FontNode>{};
    case ConflictChoice::Replace: break;
    }
    QList<FontNode> off;
    QSet<QString> seen;
    for (const ActivationConflict &conflict : std::as_const(conflicts)) {
        for (const QString &path : conflict.active) {
            if (!seen.contains(path) && m_activatedFonts.contains(path)) {
                seen.insert(path);
                off.append(FontNode::fontFile(path));
            }
        }
    }
    co_return off;
}

QCoro::Task<bool> AppState::guardedActivation(QList<FontNode> fonts, QString label, bool forSession)
{
    QPointer<AppState> self(this);
    // Busy while the catalogue is asked and the user answers: no other batch starts.
    setIsProcessing(true);
    const std::optional<QList<FontNode>> replaced = co_await passGuard(fonts);
    if (!self)
        co_return false;
    if (!replaced) {
        setIsProcessing(false);
        co_return false;
    }
    if (!replaced->isEmpty()) {
        const QString off = u"Deactivating"_s;
        co_await batchProcess(*replaced, false, off);
        if (!self)
            co_return false;
    }
    m_nextBatchForSession = forSession;
    co_await batchProcess(fonts, true, label);
    if (self && !m_batch)
        setIsProcessing(false); // a batch that found nothing to do never said it was busy
    co_return true;
}
