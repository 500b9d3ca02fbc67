// SPDX-License-Identifier: GPL-3.0-or-later
// Activation: which fonts are active, the state of every font, folder and collection
// row, and batches that activate or deactivate fonts with progress.
#include "AppState.h"

#include "services/Diagnostics.h"
#include "services/FontActivationService.h"

#include <QElapsedTimer>
#include <QCoroFuture>
#include <QDateTime>
#include <QDir>
#include <QLocale>
#include <QPointer>
#include <QtConcurrent/qtconcurrenttask.h>

#include <atomic>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kChunkSize = 8;

// `label` names the kind of batch ("Activating", "Deactivating", "Restoring", "Updating").
QString progressMessage(const QString &label, qsizetype done, qsizetype total)
{
    const char *text = label == u"Activating"_s     ? QT_TRANSLATE_NOOP("AppState", "Activating fonts (%1 of %2)...")
                       : label == u"Deactivating"_s ? QT_TRANSLATE_NOOP("AppState", "Deactivating fonts (%1 of %2)...")
                       : label == u"Restoring"_s    ? QT_TRANSLATE_NOOP("AppState", "Restoring fonts (%1 of %2)...")
                                                    : QT_TRANSLATE_NOOP("AppState", "Updating fonts (%1 of %2)...");
    return QCoreApplication::translate("AppState", text).arg(done).arg(total);
}

template <typename Fonts, typename Count>
Count countOf(const Fonts &fonts, const QSet<QString> &activated)
{
    Count count;
    for (const FontNode &font : fonts) {
        ++count.total;
        if (activated.contains(font.path()))
            ++count.active;
    }
    return count;
}

bool isUnder(const QString &path, const QString &folder)
{
    return path.size() > folder.size() && path.startsWith(folder) && (path.at(folder.size()) == u'/' || folder.endsWith(u'/'));
}

} // namespace

ActivationState AppState::activationState(const FontNode &node)
{
    if (node.isFont()) {
        if (!m_activatedFonts.contains(node.path()))
            return ActivationState::Inactive;
        return m_sessionFonts.contains(node.path()) ? ActivationState::Session : ActivationState::Active;
    }
    auto memo = m_activationStateCache.constFind(node.path());
    // Read from the scan only; a folder it does not know has no fonts.
    if (memo == m_activationStateCache.cend())
        memo = m_activationStateCache.insert(node.path(),
                                             countOf<decltype(m_fileSystemService->allFonts(node.path())), ActiveCount>(
                                                 m_fileSystemService->allFonts(node.path()), m_activatedFonts));
    return activationStateFor(memo->active, memo->total);
}

ActivationState AppState::collectionActivationState(const FontCollection &collection)
{
    auto memo = m_collectionStateCache.constFind(collection.id);
    if (memo == m_collectionStateCache.cend()) {
        const auto fonts = allFontsInCollection(collection);
        memo = m_collectionStateCache.insert(collection.id, countOf<decltype(fonts), ActiveCount>(fonts, m_activatedFonts));
    }
    return activationStateFor(memo->active, memo->total);
}

bool AppState::countChanged(const QStringList &changed, bool nowActive)
{
    // Only what the scan knows is counted, as when a row's count is first taken.
    QStringList fonts;
    for (const QString &font : changed) {
        if (m_fileSystemService->exists(font))
            fonts.append(font);
    }
    const bool outside = fonts.size() < changed.size();
    const qint64 step = nowActive ? 1 : -1;
    for (auto it = m_activationStateCache.begin(); it != m_activationStateCache.end(); ++it) {
        for (const QString &font : fonts)
            it->active += isUnder(font, it.key()) ? step : 0;
    }
    for (const FontCollection &collection : m_collectionList->all()) {
        const auto memo = m_collectionStateCache.find(collection.id);
        if (memo == m_collectionStateCache.end())
            continue;
        for (const QString &font : fonts) {
            const bool member = std::any_of(collection.members.cbegin(), collection.members.cend(), [&](const CollectionMember &m) {
                return m.isDirectory ? isUnder(font, m.path) : m.path == font;
            });
            memo->active += member ? step : 0;
        }
    }
    return outside;
}

void AppState::saveActivatedFonts()
{
    // Waiting activations are saved with the rest: an unmounted drive or a font folder
    // that can't be written for a while must not make them forgotten. Fonts active for
    // this session only are never saved as active.
    if (m_waitingActivations.isEmpty() && m_sessionFonts.isEmpty())
        m_persistenceService.saveActivatedFonts(m_activatedFonts);
    else
        m_persistenceService.saveActivatedFonts((m_activatedFonts - m_sessionFonts) + m_waitingActivations);
    saveSessionFonts();
}

void AppState::cancelBatch()
{
    if (!m_isProcessing || !m_batch)
        return;
    if (m_isProcessingStalled && m_batch->giveUp())
        return; // nothing answers: stop waiting now
    m_batch->requestStop();
}

QCoro::Task<std::optional<QStringList>> AppState::awaitBatchJob(std::shared_ptr<ActivationBatch> batch,
                                                                 QFuture<QStringList> job)
{
    QPointer<AppState> self(this);
    m_stallTimer.start();
    std::optional<QStringList> result = co_await batch->await(job);
    if (!self)
        co_return std::nullopt;
    m_stallTimer.stop();
    setIsProcessingStalled(false);
    co_return result;
}

void AppState::reportFontFailures(const QStringList &failed, const QHash<QString, QString> &reasons, qsizetype total,
                                  bool activate)
{
    if (failed.isEmpty())
        return;
    const QString fallback = activate ? tr("it couldn't be activated") : tr("it couldn't be deactivated");
    if (failed.size() == 1) {
        const QString &path = failed.constFirst();
        const QString text = activate ? tr("Couldn't activate \u201c%1\u201d: %2") : tr("Couldn't deactivate \u201c%1\u201d: %2");
        setNotice(text.arg(path.section(u'/', -1), reasons.value(path, fallback)));
        return;
    }
    QStringList details;
    for (const QString &path : failed)
        details.append(path + u" \u2014 "_s + reasons.value(path, fallback));
    const QLocale locale;
    const QString text = activate ? tr("%1 of %2 fonts couldn't be activated.") : tr("%1 of %2 fonts couldn't be deactivated.");
    setNotice(text.arg(locale.toString(failed.size()), locale.toString(total)), details);
}

void AppState::reportSystemFailures(const QStringList &failed, const QString &reason)
{
    if (failed.isEmpty())
        return;
    QString fonts = FontActivationService::defaultLinkFolder().section(u'/', 0, -2); // the user's font folder
    const QString home = QDir::homePath();
    if (fonts.startsWith(home + u'/'))
        fonts = u"~"_s + fonts.mid(home.size());
    // Spelled out for one: without a translation loaded, Qt leaves "%n" plurals alone.
    const int count = static_cast<int>(failed.size());
    const QString what = count == 1 ? tr("1 font couldn't be activated") : tr("%n fonts couldn't be activated", nullptr, count);
    setNotice(tr("Morvane can't write to %1 (%2), so %3. They stay saved and are activated again when Morvane "
                 "starts with the folder writable; to fix it, run \u201csudo chown -R $USER %1\u201d.")
                  .arg(fonts, reason, what));
}

QCoro::Task<> AppState::setActivation(QList<FontNode> fonts, bool activate)
{
    if (m_isProcessing || m_isIndexing || fonts.isEmpty())
        co_return;
    QPointer<AppState> self(this);
    const QString label = fonts.size() == 1 ? u"Updating"_s : activate ? u"Activating"_s : u"Deactivating"_s;
    if (activate)
        co_await guardedActivation(fonts, label);
    else
        co_await batchProcess(fonts, activate, label);
    if (self)
        saveActivatedFonts();
}

QCoro::Task<> AppState::toggleActivation(FontNode node)
{
    if (m_isProcessing || m_isIndexing)
        co_return;
    QPointer<AppState> self(this);
    // Arguments are named first: GCC 12 mishandles temporaries inside co_await.
    if (node.isFont()) {
        const QList<FontNode> single{node};
        const QString label = u"Updating"_s;
        const bool activate = !m_activatedFonts.contains(node.path());
        if (activate)
            co_await guardedActivation(single, label);
        else
            co_await batchProcess(single, activate, label);
    } else if (node.isDirectory()) {
        co_await toggleFolder(node);
    }
    if (self)
        saveActivatedFonts();
}

QCoro::Task<> AppState::toggleFolder(FontNode node)
{
    const std::span<const FontNode> below = m_fileSystemService->allFonts(node.path());
    if (below.empty())
        co_return;
    const QList<FontNode> fonts(below.begin(), below.end());
    // A mixed folder becomes fully active, unless every font of it still off is one
    // that was turned down: then the button does what its menu's "Deactivate All Fonts
    // in Folder" does, and says which fonts can't be activated.
    const ActivationState state = activationState(node);
    bool activate = !isOn(state);
    QStringList refused;
    if (state == ActivationState::Mixed) {
        bool onlyRefusedLeft = true;
        for (const FontNode &font : fonts) {
            if (m_activatedFonts.contains(font.path()))
                continue;
            if (m_refusedFonts.contains(font.path()))
                refused.append(font.path());
            else
                onlyRefusedLeft = false;
        }
        activate = !(onlyRefusedLeft && !refused.isEmpty());
    }
    const QString label = activate ? u"Activating"_s : u"Deactivating"_s;
    QPointer<AppState> self(this);
    if (activate) {
        co_await guardedActivation(fonts, label);
        co_return;
    }
    co_await batchProcess(fonts, activate, label);
    if (!self)
        co_return;
    if (refused.size() == 1) {
        setNotice(tr("Turned off the fonts in \u201c%1\u201d. \u201c%2\u201d couldn't be activated: %3")
                      .arg(node.name(), refused.constFirst().section(u'/', -1), m_refusedFonts.value(refused.constFirst())));
    } else if (!refused.isEmpty()) {
        QStringList details;
        for (const QString &path : std::as_const(refused))
            details.append(path + u" \u2014 "_s + m_refusedFonts.value(path));
        setNotice(tr("Turned off the fonts in \u201c%1\u201d. %n of its fonts couldn't be activated.", nullptr,
                     int(refused.size()))
                      .arg(node.name()),
                  details);
    }
}

QCoro::Task<> AppState::toggleCollectionActivation(FontCollection collection)
{
    if (m_isProcessing || m_isIndexing)
        co_return;
    const QList<FontNode> fonts = allFontsInCollection(collection);
    if (fonts.isEmpty())
        co_return;
    QPointer<AppState> self(this);
    const bool activate = !isOn(collectionActivationState(collection));
    const QString label = activate ? u"Activating"_s : u"Deactivating"_s;
    if (activate)
        co_await guardedActivation(fonts, label);
    else
        co_await batchProcess(fonts, activate, label);
    if (self)
        saveActivatedFonts();
}

QCoro::Task<> AppState::deactivateAllFonts()
{
    if (m_isProcessing || m_isIndexing)
        co_return;
    // "All" is every active font: the sources' first, in their order, then those of
    // collection folders and files outside them, then any other active path (a font
    // activated from a folder since removed from the library).
    QList<FontNode> active;
    QSet<QString> taken;
    const auto take = [&](const FontNode &font) {
        if (m_activatedFonts.contains(font.path()) && !taken.contains(font.path())) {
            taken.insert(font.path());
            active.append(font);
        }
    };
    for (const FolderSource &source : sources()) {
        for (const FontNode &font : m_fileSystemService->allFonts(QDir::cleanPath(source.path)))
            take(font);
    }
    for (const FontCollection &collection : m_collectionList->all()) {
        for (const CollectionMember &member : collection.members) {
            if (!member.isDirectory)
                take(FontNode::fontFile(member.path));
            else
                for (const FontNode &font : m_fileSystemService->allFonts(QDir::cleanPath(member.path)))
                    take(font);
        }
    }
    QStringList others;
    for (const QString &path : std::as_const(m_activatedFonts)) {
        if (!taken.contains(path))
            others.append(path);
    }
    others.sort();
    for (const QString &path : std::as_const(others))
        take(FontNode::fontFile(path));
    // Nothing waits to come back either: the user asked for nothing active.
    const bool hadWaiting = !m_waitingActivations.isEmpty();
    setWaitingActivations({});
    if (active.isEmpty()) {
        if (hadWaiting)
            saveActivatedFonts();
        co_return;
    }
    QPointer<AppState> self(this);
    const QString label = u"Deactivating"_s;
    co_await batchProcess(active, false, label);
    if (self)
        saveActivatedFonts();
}

QCoro::Task<BatchResult> AppState::batchProcess(QList<FontNode> fonts, bool activate, QString label)
{
    // Taken whatever happens next: it never outlives the batch it was meant for.
    const bool forSession = std::exchange(m_nextBatchForSession, false);
    // Callers check isProcessing first; this is the last line of defence, as two
    // batches sharing the link folder and the progress fields would undo each other.
    if (m_batch) {
        qCWarning(lcActivation).noquote() << u"A batch was asked for while another ran; ignored: %1"_s.arg(label);
        co_return BatchResult{};
    }
    QStringList paths;
    QSet<QString> seen;
    for (const FontNode &font : std::as_const(fonts)) {
        if (!seen.contains(font.path())) {
            seen.insert(font.path());
            paths.append(font.path());
        }
    }
    if (paths.isEmpty())
        co_return BatchResult{};
    // Activated for good, a font active for this session only stays active for good.
    if (activate && !forSession && !m_sessionFonts.isEmpty()) {
        for (const QString &path : std::as_const(paths))
            m_sessionFonts.remove(path);
    }
    QPointer<AppState> self(this);
    const auto batch = std::make_shared<ActivationBatch>();
    m_batch = batch;
    BatchResult result;
    const qsizetype total = paths.size();
    QElapsedTimer took;
    took.start();
    setIsProcessing(true);
    setProcessing(0.0, progressMessage(label, 0, total));

    FontActivating *service = &m_fontActivationService;
    bool abandoned = false;
    bool outsideLibrary = false; // a font the scan does not know changed state
    qsizetype reached = 0;
    QStringList failed; // in the order asked, for the message
    for (qsizetype start = 0; start < total && !abandoned; start += kChunkSize) {
        if (batch->stopRequested()) {
            result.untouched = paths.mid(start);
            break;
        }
        const QStringList chunk = paths.mid(start, kChunkSize);
        // One job per chunk, awaited before the next: the interface stays free between them.
        // The service is only ever called from jobs: one stuck in the kernel holds it, and
        // the interface thread must never wait for it.
        const bool first = start == 0;
        const QFuture<QStringList> job = QtConcurrent::task([service, chunk, activate, first, ticket = m_jobs.ticket()] {
                                             if (first)
                                                 service->beginBatch();
                                             const QList<bool> results = activate ? service->activateFonts(chunk)
                                                                                  : service->deactivateFonts(chunk);
                                             QStringList succeeded;
                                             for (qsizetype i = 0; i < chunk.size(); ++i) {
                                                 if (results.value(i))
                                                     succeeded.append(chunk[i]);
                                             }
                                             return succeeded;
                                         })
                                             .withPriority(1)
                                             .spawn();
        const std::optional<QStringList> outcome = co_await awaitBatchJob(batch, job);
        if (!self)
            co_return result;
        if (!outcome) {
            abandoned = true;
            break;
        }
        const QStringList &succeeded = *outcome;
        for (const QString &path : chunk) {
            if (!succeeded.contains(path))
                failed.append(path);
        }
        // Changed in place: copying a set of 100,000 paths per chunk would add up.
        QStringList changed;
        for (const QString &path : succeeded) {
            if (activate ? !m_activatedFonts.contains(path) : m_activatedFonts.contains(path)) {
                changed.append(path);
                if (forSession)
                    m_sessionFonts.insert(path); // newly on; a font on for good stays so
            }
            if (!activate)
                m_sessionFonts.remove(path);
            if (activate) {
                m_activatedFonts.insert(path);
                if (!m_refusedFonts.isEmpty())
                    m_refusedFonts.remove(path); // it reads now: no longer turned down
            } else
                m_activatedFonts.remove(path);
        }
        if (!changed.isEmpty()) {
            outsideLibrary |= countChanged(changed, activate);
            Q_EMIT activatedFontsChanged();
        }
        const qsizetype done = std::min(start + kChunkSize, total);
        reached = done;
        setProcessing(static_cast<double>(done) / static_cast<double>(total), progressMessage(label, done, total));
    }
    // The system's font list catches up once per batch; what it turns down then is
    // not active after all.
    std::optional<QStringList> turnedDown;
    if (!abandoned) {
        const QFuture<QStringList> finish =
            QtConcurrent::task([service, ticket = m_jobs.ticket()] { return service->finishBatch(); }).spawn();
        turnedDown = co_await awaitBatchJob(batch, finish);
        if (!self)
            co_return result;
    }
    if (!turnedDown) {
        qCWarning(lcActivation).noquote() << u"Stopped waiting for fonts that did not answer: %1 (%2 fonts)"_s.arg(label).arg(total);
        setNotice(tr("Morvane stopped waiting for a font that didn't answer. Fonts done before stay as they are; "
                     "a file on a drive or network share that stopped responding is the usual cause."));
    } else {
        QString reason;
        result.systemFailures = service->takeSystemFailures(&reason);
        reportSystemFailures(result.systemFailures, reason);
        // The font's own failures, unless the system's failure already says it all.
        const QHash<QString, QString> reasons = service->takeFailureReasons();
        if (!result.untouched.isEmpty()) {
            const QLocale locale;
            setNotice((activate ? tr("Stopped after activating %1 of %2 fonts; the others are as they were.")
                                : tr("Stopped after deactivating %1 of %2 fonts; the others are as they were."))
                          .arg(locale.toString(reached), locale.toString(total)));
        } else if (result.systemFailures.isEmpty()) {
            reportFontFailures(failed + *turnedDown, reasons, total, activate);
        }
        // Remembered, so that a folder left mixed by them is switched off by its button,
        // not sent to try them again.
        if (activate && result.systemFailures.isEmpty()) {
            for (const QString &path : failed + *turnedDown)
                m_refusedFonts.insert(path, reasons.value(path, tr("it couldn't be activated")));
        }
    }
    QStringList refused;
    for (const QString &path : turnedDown.value_or(QStringList())) {
        m_sessionFonts.remove(path);
        if (m_activatedFonts.remove(path))
            refused.append(path);
    }
    if (!refused.isEmpty()) {
        outsideLibrary |= countChanged(refused, false);
        Q_EMIT activatedFontsChanged();
    }
    qCDebug(lcActivation) << (activate ? "activated" : "deactivated") << total << "fonts in" << took.elapsed() << "ms";
    // The catalogue's reading waits a little longer: a user often toggles again soon.
    m_catalogue->holdOff(2000);
    m_batch.reset();
    setIsProcessing(false);
    // A font outside the scanned library joined or left the active set: the catalogue
    // reads it in or lets it go, so "Active Fonts" shows what is active. (A refresh on
    // its way reads the catalogue anyway, with the active fonts as they are then.)
    if (m_hasLoaded && !m_isIndexing && outsideLibrary)
        indexCatalogue();
    co_return result;
}
