// SPDX-License-Identifier: GPL-3.0-or-later
#include "FolderSearchResult.h"
#include "Json.h"
#include "SidebarItem.h"

QUuid SidebarItem::payloadId() const
{
    return std::visit([](const auto &payload) { return payload.id; }, m_payload);
}

size_t qHash(const SidebarItem &item, size_t seed) noexcept
{
    return qHashMulti(seed, item.isSource() ? 0 : 1, item.payloadId());
}

FolderSearchResult FolderSearchResult::make(const FontNode &folder, const FolderSource &source,
                                            QList<FontNode> navigationPath)
{
    return make(Json::uuidText(source.id) + u':', folder, source, std::move(navigationPath));
}

FolderSearchResult FolderSearchResult::make(const QString &idPrefix, const FontNode &folder, const FolderSource &source,
                                            QList<FontNode> navigationPath)
{
    return FolderSearchResult{idPrefix + folder.id(), folder, source, std::move(navigationPath)};
}
