// SPDX-License-Identifier: GPL-3.0-or-later
#include "PersistenceService.h"

#include "AtomicFile.h"
#include "Console.h"
#include "CollectionIconStore.h"
#include "Preferences.h"
#include "RegularFile.h"
#include "SaveQueue.h"

#include "model/Json.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSettings>
#include <QStandardPaths>


using namespace Qt::StringLiterals;

namespace {

constexpr const char *kSourcesFile = "sources.json";
constexpr const char *kCollectionsFile = "collections.json";
constexpr const char *kActivatedFontsFile = "activated_fonts.json";

// Where a parse error is, as a person looks for it in an editor.
QString describeParseError(const QByteArray &bytes, const QJsonParseError &error)
{
    if (bytes.trimmed().isEmpty())
        return u"the file is empty"_s;
    const QByteArray before = bytes.left(error.offset);
    const qsizetype line = before.count('\n') + 1;
    const qsizetype column = error.offset - (before.lastIndexOf('\n') + 1) + 1;
    return u"not valid JSON at line %1, column %2: %3"_s.arg(line).arg(column).arg(error.errorString());
}

// Decoding one record of each kind, with the record's own error text.
template <typename Record>
Expected<Record> decodeRecord(const QJsonValue &value)
{
    return Record::fromJson(value);
}

template <>
Expected<QString> decodeRecord<QString>(const QJsonValue &value)
{
    if (!value.isString())
        return Expected<QString>::failure(u"expected a path string but found %1"_s.arg(Json::typeName(value)));
    return value.toString();
}

template <typename Record>
Expected<QList<Record>> decodeList(const QByteArray &bytes)
{
    using Result = Expected<QList<Record>>;
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return Result::failure(describeParseError(bytes, parseError));
    if (!document.isArray())
        return Result::failure(u"expected a JSON array at the top level but found %1"_s
                                   .arg(document.isObject() ? u"an object"_s : u"another value"_s));
    const QJsonArray array = document.array();
    QList<Record> records;
    records.reserve(array.size());
    for (qsizetype i = 0; i < array.size(); ++i) {
        Expected<Record> record = decodeRecord<Record>(array.at(i));
        if (!record)
            return Result::failure(u"record %1: %2"_s.arg(i + 1).arg(record.error()));
        records.append(std::move(record).value());
    }
    return records;
}

template <typename Record>
QByteArray encodeList(const QList<Record> &records)
{
    QByteArray json("[");
    for (qsizetype i = 0; i < records.size(); ++i) {
        if (i > 0)
            json.append(',');
        records.at(i).appendJson(json);
    }
    json.append(']');
    return json;
}

} // namespace

QString PersistenceService::defaultPreviewText()
{
    return Preferences::defaultPreviewText();
}

PersistenceService::PersistenceService(std::optional<QString> directory)
    : m_directory(std::move(directory))
    , m_queue(std::make_unique<SaveQueue>())
    , m_preferences(std::make_unique<Preferences>(*m_queue))
{
}

PersistenceService::~PersistenceService() = default;

void PersistenceService::waitForWrites()
{
    m_queue->waitUntilWritten();
}

void PersistenceService::retryFailedSaves()
{
    m_queue->retryFailed();
}

QString PersistenceService::unsavedFailure()
{
    return m_queue->unsavedFailure();
}

void PersistenceService::setSaveObserver(SaveObserver observer)
{
    m_queue->setObserver(std::move(observer));
}

QString PersistenceService::defaultStorageFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Morvane"_s;
}

QString PersistenceService::storageURL() const
{
    const QString folder = m_directory.value_or(defaultStorageFolder());
    QDir().mkpath(folder); // failure shows up as a failed write later
    return folder;
}

QString PersistenceService::collectionIconsURL() const
{
    const QString folder = storageURL() + u"/CollectionIcons"_s;
    QDir().mkpath(folder);
    return folder;
}

void PersistenceService::save(const char *fileName, std::function<QByteArray()> encode, const QString &failureMessage)
{
    const QString name = QLatin1StringView(fileName);
    m_queue->queue(
        name, [path = QString(storageURL() + u'/' + name), encode = std::move(encode)] { return AtomicFile::write(path, encode()); },
        failureMessage);
}

void PersistenceService::saveSources(const QList<FolderSource> &sources)
{
    save(kSourcesFile, [sources] { return encodeList(sources); }, u"Failed to save sources: "_s);
}

void PersistenceService::saveCollections(const QList<FontCollection> &collections)
{
    save(kCollectionsFile, [collections] { return encodeList(collections); }, u"Failed to save collections: "_s);
}

namespace {

QByteArray encodePaths(const QSet<QString> &paths)
{
    QByteArray json;
    json.reserve(paths.size() * 96 + 2);
    json.append('[');
    bool first = true;
    for (const QString &path : paths) {
        if (!first)
            json.append(',');
        first = false;
        Json::appendString(json, path);
    }
    json.append(']');
    return json;
}

} // namespace

void PersistenceService::saveActivatedFonts(const QSet<QString> &paths)
{
    // The set is shared, not copied: encoding 100,000 paths happens on the writer.
    save(kActivatedFontsFile, [paths] { return encodePaths(paths); }, u"Failed to save activated fonts: "_s);
}

QString PersistenceService::keepUnreadableCopy(const QString &filePath, const QByteArray &bytes) const
{
    // One copy per distinct content: starting again with the same bad file adds none.
    const QFileInfo info(filePath);
    const QString prefix = info.fileName() + u".unreadable-"_s;
    for (const QFileInfo &earlier : info.dir().entryInfoList({prefix + u'*'}, QDir::Files)) {
        QFile file(earlier.filePath());
        if (earlier.size() == bytes.size() && file.open(QIODevice::ReadOnly) && file.readAll() == bytes)
            return earlier.filePath();
    }
    const QString base = filePath + u".unreadable-"_s + QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    QString copy = base;
    for (int n = 2; QFile::exists(copy); ++n)
        copy = base + u'-' + QString::number(n);
    return QFile::copy(filePath, copy) ? copy : QString();
}

QString PersistenceService::moveUnreadableAside(const QString &filePath) const
{
    // A file we may not read can't be copied, but it can be moved out of the way of
    // the next save (which would replace it) by renaming it in its folder.
    const QString base = filePath + u".unreadable-"_s + QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    QString aside = base;
    for (int n = 2; QFileInfo::exists(aside); ++n)
        aside = base + u'-' + QString::number(n);
    return QFile::rename(filePath, aside) ? aside : QString();
}

template <typename Record>
QList<Record> PersistenceService::loadList(const char *fileName, const QString &failureMessage, LoadStatus *status)
{
    waitForWrites();
    const QString filePath = storageURL() + u'/' + QLatin1StringView(fileName);
    const auto report = [&](LoadStatus result) {
        if (status)
            *status = result;
    };
    RegularFile::Contents contents = RegularFile::read(filePath, kMaxSavedFileBytes);
    if (!contents.ok()) {
        if (contents.missing && !QFileInfo(filePath).isSymLink()) {
            report(LoadStatus::Missing); // first run: silently empty
            return {};
        }
        // A pipe or a device is left alone (there is nothing to keep); a file we may
        // not read, or one too large to be ours, is moved out of the next save's way.
        const QString aside = QFileInfo(filePath).isFile() || !contents.special ? moveUnreadableAside(filePath) : QString();
        Console::printLine(failureMessage + contents.error +
                           (aside.isEmpty() ? u" (the file was left where it is)"_s
                                            : u" (the file was moved to %1)"_s.arg(aside)));
        report(LoadStatus::Unreadable);
        return {};
    }
    const QByteArray bytes = std::move(contents.bytes);
    Expected<QList<Record>> decoded = decodeList<Record>(bytes);
    if (decoded) {
        report(LoadStatus::Read);
        return std::move(decoded).value();
    }
    // The next save would overwrite what the user had: keep it.
    const QString copy = keepUnreadableCopy(filePath, bytes);
    const QString kept = copy.isEmpty() ? u" (could not keep a copy of the file)"_s
                                        : u" (the file was kept as %1)"_s.arg(copy);
    Console::printLine(failureMessage + decoded.error() + kept);
    report(LoadStatus::Unreadable);
    return {};
}

QList<FolderSource> PersistenceService::loadSources(LoadStatus *status)
{
    return loadList<FolderSource>(kSourcesFile, u"Failed to load sources: "_s, status);
}

QList<FontCollection> PersistenceService::loadCollections(LoadStatus *status)
{
    return loadList<FontCollection>(kCollectionsFile, u"Failed to load collections: "_s, status);
}

QSet<QString> PersistenceService::loadActivatedFonts(LoadStatus *status)
{
    const QList<QString> paths = loadList<QString>(kActivatedFontsFile, u"Failed to load activated fonts: "_s, status);
    return QSet<QString>(paths.begin(), paths.end());
}

std::optional<QString> PersistenceService::storeCollectionIcon(const QUuid &collectionId,
                                                               const std::optional<QString> &sourcePath, QString *error)
{
    return CollectionIconStore::store(collectionIconsURL(), collectionId, sourcePath, error);
}

QString PersistenceService::previewText() const
{
    return m_preferences->previewText();
}

void PersistenceService::setPreviewText(const QString &text)
{
    m_preferences->setPreviewText(text);
}

double PersistenceService::listSize() const
{
    return m_preferences->listSize();
}

bool PersistenceService::sessionFontsLastUntilLogout() const
{
    return m_preferences->sessionFontsLastUntilLogout();
}

void PersistenceService::setSessionFontsLastUntilLogout(bool untilLogout)
{
    m_preferences->setSessionFontsLastUntilLogout(untilLogout);
}

bool PersistenceService::copiesForSandboxes() const
{
    return m_preferences->copiesForSandboxes();
}

void PersistenceService::setCopiesForSandboxes(bool allowed)
{
    m_preferences->setCopiesForSandboxes(allowed);
}

void PersistenceService::setListSize(double size)
{
    m_preferences->setListSize(size);
}

double PersistenceService::previewSize() const
{
    return m_preferences->previewSize();
}

void PersistenceService::setPreviewSize(double size)
{
    m_preferences->setPreviewSize(size);
}

QString PersistenceService::settingsPath() const
{
    return m_preferences->settingsPath();
}

QByteArray PersistenceService::windowGeometry() const
{
    return m_preferences->windowGeometry();
}

int PersistenceService::sidebarWidth() const
{
    return m_preferences->sidebarWidth();
}

void PersistenceService::setWindowLayout(const QByteArray &geometry, int sidebarWidth)
{
    m_preferences->setWindowLayout(geometry, sidebarWidth);
}
