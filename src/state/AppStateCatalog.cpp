// SPDX-License-Identifier: GPL-3.0-or-later
// The font catalogue through the store: what the catalogue's jobs and questions need
// that only the store knows.
#include "AppState.h"

#include "LibraryCatalogue.h"

#include <QCoroFuture>
#include <QDir>
#include <QLocale>
#include <QPointer>

using namespace Qt::StringLiterals;

bool AppState::isCataloguing() const
{
    return m_catalogue->isWorking();
}

QString AppState::catalogueMessage() const
{
    if (!m_catalogue->isWorking() || m_catalogue->total() == 0)
        return {}; // nothing new to read: nothing to say
    const QLocale locale;
    return tr("Indexing fonts (%1 of %2)…").arg(locale.toString(m_catalogue->done()), locale.toString(m_catalogue->total()));
}

void AppState::setCatalogueSettleTime(int msecs)
{
    m_catalogue->setSettleTime(msecs);
}

void AppState::setCatalogueFile(const QString &path)
{
    m_catalogue->setFile(path);
}

bool AppState::waitForCatalogue(int msecs)
{
    return m_catalogue->waitUntilDone(msecs);
}

void AppState::indexCatalogue()
{
    m_catalogue->index({m_fileSystemService, sources(), m_collectionList->all(), m_activatedFonts});
}

LibraryCatalogue::Knowledge AppState::knowledgeFor(const FontQuery &query) const
{
    // Taken along shared, not copied.
    LibraryCatalogue::Knowledge knowledge;
    if (query.active || query.conflicts)
        knowledge.activated = m_activatedFonts;
    if (query.collection) {
        if (const FontCollection *collection = m_collectionList->find(*query.collection))
            knowledge.members = collection->members;
    }
    for (const FolderSource &source : sources())
        knowledge.sourceFolders.append(QDir::cleanPath(source.path));
    return knowledge;
}

QCoro::Task<FontQueryAnswer> AppState::queryFonts(FontQuery query)
{
    const quint64 generation = m_catalogue->questionsAsked() + 1;
    QPointer<AppState> self(this);
    QFuture<FontQueryAnswer> asked = askFonts(std::move(query)); // named: GCC 12 frees temporaries inside co_await twice
    FontQueryAnswer answer = co_await asked;
    if (!self || generation != m_catalogue->questionsAsked())
        co_return FontQueryAnswer{.cancelled = true}; // a newer question is being answered
    co_return answer;
}

QFuture<FontQueryAnswer> AppState::askFonts(FontQuery query)
{
    LibraryCatalogue::Knowledge knowledge = knowledgeFor(query);
    return m_catalogue->ask(std::move(query), std::move(knowledge));
}

QFuture<qsizetype> AppState::countFonts(FontQuery query)
{
    return m_catalogue->count(std::move(query));
}

qsizetype AppState::libraryFaceCount(LibraryView::Kind kind) const
{
    switch (kind) {
    case LibraryView::AllFonts: return m_libraryCounts->allFaces();
    case LibraryView::ActiveFonts: return m_libraryCounts->activeFaces();
    default: return -1; // asked of the catalogue when shown, not counted ahead
    }
}
