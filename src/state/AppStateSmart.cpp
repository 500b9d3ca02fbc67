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
    const QJsonObject question = FontQueryJson::toJson(query);
    if (refuseLargeQuestion(question, name))
        return;
    const FontCollection collection = m_collectionList->create(name, question);
    setSidebarSelection(SidebarItem(collection));
    renewSmartCollections();
}

void AppState::setSmartQuery(const QUuid &id, const FontQuery &query)
{
    const FontCollection *smart = m_collectionList->find(id);
    const QJsonObject question = FontQueryJson::toJson(query);
    if (!smart || !smart->isSmart() || refuseLargeQuestion(question, smart->name))
        return;
    m_collectionList->setSmartQuery(id, question);
    renewSmartCollections();
}

void AppState::renewSmartCollections()
{
    m_smartRenewals->renew();
}

void AppState::applySmartAnswer(const QUuid &id, const QList<CollectionMember> &members)
{
    m_collectionList->setSmartMembers(id, members);
}
