// Activation: which fonts are active, the state of every font, folder and collection
// row, and batches that activate or deactivate fonts with progress.
#include "AppState.h"

#include <QCoroFuture>
#include <QDir>
#include <QPointer>
#include <QtConcurrent/qtconcurrenttask.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kChunkSize = 8;

QString progressMessage(const QString &label, qsizetype done, qsizetype total)
{
    return u"%1 fonts (%2 of %3)..."_s.arg(label).arg(done).arg(total);
}

template <typename Fonts>
ActivationState stateOf(const Fonts &fonts, const QSet<QString> &activated)
{
    long long active = 0;
    long long total = 0;
    for (const FontNode &font : fonts) {
        ++total;
        if (activated.contains(font.path()))
            ++active;
    }
    return activationStateFor(active, total);
}

} // namespace

ActivationState AppState::activationState(const FontNode &node)
{
    if (node.isFont())
        return m_activatedFonts.contains(node.path()) ? ActivationState::Active : ActivationState::Inactive;
    const auto memo = m_activationStateCache.constFind(node.path());
    if (memo != m_activationStateCache.cend())
        return *memo;
    // Read from the scan only; a folder it does not know has no fonts.
    const ActivationState state = stateOf(m_fileSystemService->allFonts(node.path()), m_activatedFonts);
    m_activationStateCache.insert(node.path(), state);
    return state;
}

ActivationState AppState::collectionActivationState(const FontCollection &collection)
{
    const auto memo = m_collectionStateCache.constFind(collection.id);
    if (memo != m_collectionStateCache.cend())
        return *memo;
    const ActivationState state = stateOf(allFontsInCollection(collection), m_activatedFonts);
    m_collectionStateCache.insert(collection.id, state);
    return state;
}

void AppState::saveActivatedFonts()
{
    m_persistenceService.saveActivatedFonts(m_activatedFonts);
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
        co_await batchProcess(single, !m_activatedFonts.contains(node.path()), label);
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
    // A mixed folder becomes fully active.
    const bool activate = activationState(node) != ActivationState::Active;
    const QString label = activate ? u"Activating"_s : u"Deactivating"_s;
    co_await batchProcess(fonts, activate, label);
}

QCoro::Task<> AppState::toggleCollectionActivation(FontCollection collection)
{
    if (m_isProcessing || m_isIndexing)
        co_return;
    const QList<FontNode> fonts = allFontsInCollection(collection);
    if (fonts.isEmpty())
        co_return;
    QPointer<AppState> self(this);
    const bool activate = collectionActivationState(collection) != ActivationState::Active;
    const QString label = activate ? u"Activating"_s : u"Deactivating"_s;
    co_await batchProcess(fonts, activate, label);
    if (self)
        saveActivatedFonts();
}

QCoro::Task<> AppState::deactivateAllFonts()
{
    if (m_isProcessing || m_isIndexing)
        co_return;
    // Only what the library shows: active paths outside every source stay as they are.
    QList<FontNode> active;
    for (const FolderSource &source : std::as_const(m_sources)) {
        for (const FontNode &font : m_fileSystemService->allFonts(QDir::cleanPath(source.path))) {
            if (m_activatedFonts.contains(font.path()))
                active.append(font);
        }
    }
    if (active.isEmpty())
        co_return;
    QPointer<AppState> self(this);
    const QString label = u"Deactivating"_s;
    co_await batchProcess(active, false, label);
    if (self)
        saveActivatedFonts();
}

QCoro::Task<> AppState::batchProcess(QList<FontNode> fonts, bool activate, QString label)
{
    QStringList paths;
    QSet<QString> seen;
    for (const FontNode &font : std::as_const(fonts)) {
        if (!seen.contains(font.path())) {
            seen.insert(font.path());
            paths.append(font.path());
        }
    }
    if (paths.isEmpty())
        co_return;
    QPointer<AppState> self(this);
    const qsizetype total = paths.size();
    setIsProcessing(true);
    setProcessing(0.0, progressMessage(label, 0, total));

    FontActivating *service = &m_fontActivationService;
    service->beginBatch();
    for (qsizetype start = 0; start < total; start += kChunkSize) {
        const QStringList chunk = paths.mid(start, kChunkSize);
        // One job per chunk, awaited before the next: the interface stays free between them.
        const QFuture<QStringList> job = QtConcurrent::task([service, chunk, activate] {
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
        m_runningJob = QFuture<void>(job);
        const QStringList succeeded = co_await job;
        if (!self)
            co_return;
        // Changed in place: copying a set of 100,000 paths per chunk would add up.
        bool changed = false;
        for (const QString &path : succeeded) {
            if (!activate) {
                changed |= m_activatedFonts.remove(path);
            } else if (!m_activatedFonts.contains(path)) {
                m_activatedFonts.insert(path);
                changed = true;
            }
        }
        if (changed) {
            m_activationStateCache.clear();
            m_collectionStateCache.clear();
            Q_EMIT activatedFontsChanged();
        }
        const qsizetype done = std::min(start + kChunkSize, total);
        setProcessing(static_cast<double>(done) / static_cast<double>(total), progressMessage(label, done, total));
    }
    // The system's font list catches up once per batch; what it turns down then is
    // not active after all.
    const QFuture<QStringList> finish = QtConcurrent::task([service] { return service->finishBatch(); }).spawn();
    m_runningJob = QFuture<void>(finish);
    const QStringList turnedDown = co_await finish;
    if (!self)
        co_return;
    bool changed = false;
    for (const QString &path : turnedDown)
        changed |= m_activatedFonts.remove(path);
    if (changed) {
        m_activationStateCache.clear();
        m_collectionStateCache.clear();
        Q_EMIT activatedFontsChanged();
    }
    setIsProcessing(false);
}
