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
    return qHashMulti(seed, item.kindIndex(), item.payloadId());
}

LibraryView LibraryView::of(Kind kind)
{
    static const QUuid all = QUuid::fromString(u"{6d6f7276-616e-6500-0000-000000000001}");
    static const QUuid active = QUuid::fromString(u"{6d6f7276-616e-6500-0000-000000000002}");
    static const QUuid duplicates = QUuid::fromString(u"{6d6f7276-616e-6500-0000-000000000003}");
    static const QUuid conflicts = QUuid::fromString(u"{6d6f7276-616e-6500-0000-000000000004}");
    const QUuid ids[] = {all, active, duplicates, conflicts};
    return LibraryView{kind, ids[kind]};
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
