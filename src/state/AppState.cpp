#include "AppState.h"

#include <QLocale>

AppState::AppState(FontActivating &fontActivationService, PersistenceService &persistenceService, QObject *parent)
    : QObject(parent)
    , m_fileSystemService(std::make_shared<FileSystemService>())
    , m_fontActivationService(fontActivationService)
    , m_persistenceService(persistenceService)
    , m_previewService(std::make_unique<FontPreviewService>(FontPreviewService::kEvictionBound))
    , m_collator(QLocale())
{
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    // Empty and frozen until the first refresh brings a scan.
    std::const_pointer_cast<FileSystemService>(m_fileSystemService)->freeze();
}

AppState::~AppState() = default;

void AppState::setNavigationPath(const QList<FontNode> &path)
{
    // Nodes compare by id, so this is the element-wise id comparison.
    if (m_navigationPath == path)
        return;
    m_navigationPath = path;
    Q_EMIT navigationPathChanged();
}

void AppState::setActiveColumnIndex(int index)
{
    if (m_activeColumnIndex == index)
        return;
    m_activeColumnIndex = index;
    Q_EMIT activeColumnIndexChanged();
}

void AppState::setCachedColumns(QList<QList<FontNode>> columns)
{
    m_cachedColumns = std::move(columns);
    Q_EMIT cachedColumnsChanged();
}

void AppState::setCollections(QList<FontCollection> collections)
{
    if (m_collections == collections)
        return;
    m_collections = std::move(collections);
    Q_EMIT collectionsChanged();
}

void AppState::setSources(QList<FolderSource> sources)
{
    if (m_sources == sources)
        return;
    m_sources = std::move(sources);
    Q_EMIT sourcesChanged();
}

void AppState::setSourcesForTesting(QList<FolderSource> sources)
{
    setSources(std::move(sources));
}

void AppState::setSidebarSelection(const std::optional<SidebarItem> &selection)
{
    // Items compare by kind and id; a renamed collection's newer copy still replaces
    // the older one so the selection never holds stale data.
    const bool same = m_sidebarSelection.has_value() == selection.has_value() &&
                      (!selection || *m_sidebarSelection == *selection);
    m_sidebarSelection = selection;
    if (!same)
        Q_EMIT sidebarSelectionChanged();
}

void AppState::setShouldFocusBrowser(bool focus)
{
    if (m_shouldFocusBrowser == focus)
        return;
    m_shouldFocusBrowser = focus;
    Q_EMIT shouldFocusBrowserChanged();
}

void AppState::setShouldFocusSidebar(bool focus)
{
    if (m_shouldFocusSidebar == focus)
        return;
    m_shouldFocusSidebar = focus;
    Q_EMIT shouldFocusSidebarChanged();
}

void AppState::setPreviewText(const QString &text)
{
    if (m_previewText == text)
        return;
    m_previewText = text;
    m_persistenceService.setPreviewText(text);
    Q_EMIT previewTextChanged();
}

void AppState::setPreviewSize(double size)
{
    if (m_previewSize == size)
        return;
    m_previewSize = size;
    m_persistenceService.setPreviewSize(size);
    Q_EMIT previewSizeChanged();
}

void AppState::setSearchQuery(const QString &query)
{
    if (m_searchQuery == query)
        return;
    m_searchQuery = query;
    Q_EMIT searchQueryChanged();
}

bool AppState::isSearching() const
{
    // Spaces and tabs only; a line break counts as text.
    qsizetype start = 0;
    qsizetype end = m_searchQuery.size();
    const auto blank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (start < end && blank(m_searchQuery.at(start)))
        ++start;
    while (end > start && blank(m_searchQuery.at(end - 1)))
        --end;
    return end > start;
}

void AppState::refreshFileSystem()
{
    // The background refresh arrives with library loading; until then a member the
    // last scan did not see shows up at the next scan.
}

void AppState::installLibrary(std::shared_ptr<const FileSystemService> service, QList<FolderSearchResult> searchIndex)
{
    m_fileSystemService = std::move(service);
    m_searchIndex = std::move(searchIndex);
    m_activationStateCache.clear();
    m_collectionFontsCache.clear();
    m_collectionStateCache.clear();
    m_sortedMembersCache.clear();
    m_iconCache.clear();
    m_missingIcons.clear();
    setCachedColumns(buildColumns());
}
