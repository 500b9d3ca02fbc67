// SPDX-License-Identifier: GPL-3.0-or-later
// Fonts active for this session only: activated like any other, never saved as active,
// and switched off when Morvane quits, or kept until the user logs out (a preference).
// A record of them lives in $XDG_RUNTIME_DIR, which the system empties at logout: a
// start that finds it (and the preference) keeps them; any other start, after a crash
// or a power cut included, finds their links unsaved and takes them away.
#include "AppState.h"

#include "services/AtomicFile.h"
#include "services/Diagnostics.h"

#include <QCoroTask>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

QString AppState::sessionRecordPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u"/Morvane/session-fonts.json"_s;
}

bool AppState::sessionFontsLastUntilLogout() const
{
    return m_persistenceService.sessionFontsLastUntilLogout();
}

void AppState::setSessionFontsLastUntilLogout(bool untilLogout)
{
    m_persistenceService.setSessionFontsLastUntilLogout(untilLogout);
}

QCoro::Task<> AppState::activateForSession(FontNode node)
{
    // Named first: GCC 12 mishandles temporaries inside co_await.
    QList<FontNode> fonts;
    if (node.isFont()) {
        fonts.append(node);
    } else {
        const std::span<const FontNode> below = m_fileSystemService->allFonts(node.path());
        fonts = QList<FontNode>(below.begin(), below.end());
    }
    co_await sessionBatch(fonts);
}

QCoro::Task<> AppState::activateCollectionForSession(FontCollection collection)
{
    const QList<FontNode> fonts = allFontsInCollection(collection);
    co_await sessionBatch(fonts);
}

QCoro::Task<> AppState::sessionBatch(QList<FontNode> fonts)
{
    // The same guard and batch as every activation; only what it records differs.
    if (m_isProcessing || m_isIndexing || fonts.isEmpty())
        co_return;
    QPointer<AppState> self(this);
    const QString label = u"Activating"_s;
    co_await guardedActivation(fonts, label, true);
    if (self)
        saveActivatedFonts(); // the saved set stays as it was; the session's record changes
}

void AppState::saveSessionFonts()
{
    const QString path = sessionRecordPath();
    if (m_sessionFonts.isEmpty()) {
        if (m_sessionRecorded)
            QFile::remove(path);
        m_sessionRecorded = false;
        return;
    }
    QJsonArray fonts;
    for (const QString &font : std::as_const(m_sessionFonts))
        fonts.append(font);
    QDir().mkpath(path.section(u'/', 0, -2));
    // Small, and in memory (the runtime folder is a tmpfs): written as it changes.
    if (const std::optional<QString> error = AtomicFile::write(path, QJsonDocument(fonts).toJson(QJsonDocument::Compact)))
        qCWarning(lcStorage).noquote() << u"Can't record the fonts active for this session in %1: %2"_s.arg(path, *error);
    m_sessionRecorded = true;
}

QSet<QString> AppState::takeSessionRecord() const
{
    const QString path = sessionRecordPath();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonDocument document = QJsonDocument::fromJson(file.read(64 << 20));
    file.close();
    if (!sessionFontsLastUntilLogout()) {
        QFile::remove(path); // Morvane quit (or stopped) since: they ended with it
        return {};
    }
    QSet<QString> fonts;
    for (const QJsonValue &font : document.array()) {
        if (font.isString())
            fonts.insert(font.toString());
    }
    return fonts;
}

void AppState::endSession()
{
    if (m_sessionFonts.isEmpty() || sessionFontsLastUntilLogout())
        return;
    // Quitting: the batch machinery is gone with the event loop, so straight to the
    // service, on this thread, once every job has stopped.
    const QStringList fonts(m_sessionFonts.cbegin(), m_sessionFonts.cend());
    m_fontActivationService.beginBatch();
    m_fontActivationService.deactivateFonts(fonts);
    m_fontActivationService.finishBatch();
    QFile::remove(sessionRecordPath());
}
