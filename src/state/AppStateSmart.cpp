// SPDX-License-Identifier: GPL-3.0-or-later
// Smart collections: a saved catalogue question whose answer's files are the members.
#include "AppState.h"

#include "services/FontQueryJson.h"

#include <QLocale>

bool AppState::refuseLargeQuestion(const QJsonObject &question, const QString &name)
{
    const qsizetype size = FontQueryJson::size(question);
    if (size <= FontQueryJson::kMaxSize)
        return false;
    sayQuestionTooLarge(name, size);
    return true;
}

void AppState::sayQuestionTooLarge(const QString &name, qsizetype size)
{
    const QLocale locale;
    setNotice(tr("The filters of \u201c%1\u201d are too long to ask (%2; at most %3): its fonts stay as they were. "
                 "Shorten the filter text, or the list of folders or characters, and save again.")
                  .arg(name, locale.formattedDataSize(size), locale.formattedDataSize(FontQueryJson::kMaxSize)));
}

void AppState::createSmartCollection(const QString &name, const FontQuery &query)
{
    if (refuseLargeQuestion(FontQueryJson::toJson(query), name))
        return;
    createCollection(name);
    const std::optional<FontCollection> made = selectedCollection();
    if (!made)
        return;
    QList<FontCollection> collections = m_collections;
    for (FontCollection &collection : collections) {
        if (collection.id == made->id)
            collection.smartQuery = FontQueryJson::toJson(query);
    }
    setCollections(std::move(collections));
    saveCollections();
    renewSmartCollections();
}

void AppState::setSmartQuery(const QUuid &id, const FontQuery &query)
{
    QList<FontCollection> collections = m_collections;
    const auto smart = std::find_if(collections.begin(), collections.end(),
                                    [&](const FontCollection &c) { return c.id == id && c.isSmart(); });
    if (smart == collections.end() || refuseLargeQuestion(FontQueryJson::toJson(query), smart->name))
        return;
    smart->smartQuery = FontQueryJson::toJson(query);
    setCollections(std::move(collections));
    saveCollections();
    renewSmartCollections();
}

void AppState::renewSmartCollections()
{
    m_smartRenewals->renew();
}

void AppState::applySmartAnswer(const QUuid &id, const QList<CollectionMember> &members)
{
    QList<FontCollection> collections = m_collections;
    const auto smart = std::find_if(collections.begin(), collections.end(),
                                    [&](const FontCollection &c) { return c.id == id && c.isSmart(); });
    if (smart == collections.end() || smart->members == members)
        return; // gone, or nothing new
    smart->members = members;
    clearCollectionMemos();
    setCollections(std::move(collections));
    saveCollections();
}
