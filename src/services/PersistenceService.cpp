// SPDX-License-Identifier: GPL-3.0-or-later
#include "PersistenceService.h"

#include "AtomicFile.h"
#include "Console.h"
#include "RegularFile.h"

#include "model/Json.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSettings>
#include <QStandardPaths>

#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

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

QString lastExtension(const QString &path)
{
    const QString name = path.section(u'/', -1);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? QString() : name.mid(dot + 1);
}

QString withoutLastExtension(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.left(dot) : name;
}

} // namespace

QString PersistenceService::defaultPreviewText()
{
    return u"The quick brown fox jumps over the lazy dog"_s;
}

// One thread that writes the queued files in turn. A file's newer save replaces its
// queued one: only the latest state of each file matters.
class PersistenceService::Writer
{
public:
    struct Job
    {
        QString path;
        std::function<QByteArray()> encode;
        QString failureMessage;
        QString lastError; // why its last write failed; a retry failing alike prints nothing
    };

    Writer()
        : m_thread([this] { run(); })
    {
    }

    ~Writer()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_stopping = true;
            requeueFailed(); // one last try at quitting: the space may be back
        }
        m_wake.notify_all();
        m_thread.join(); // writes whatever is still queued first
    }

    void queue(const QString &fileName, Job job)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_failed.erase(fileName); // this newer state replaces the one that failed
            m_pending.insert_or_assign(fileName, std::move(job));
            // Anything changed: the space may be back, so what failed before goes again.
            requeueFailed();
        }
        m_wake.notify_all();
    }

    void retryFailed()
    {
        {
            const std::lock_guard lock(m_mutex);
            requeueFailed();
        }
        m_wake.notify_all();
    }

    QString unsavedFailure()
    {
        const std::lock_guard lock(m_mutex);
        return m_failed.empty() ? QString() : m_failed.begin()->second.lastError;
    }

    void waitUntilWritten()
    {
        std::unique_lock lock(m_mutex);
        m_idle.wait(lock, [this] { return m_pending.empty() && !m_busy; });
    }

    void setObserver(SaveObserver observer)
    {
        const std::lock_guard lock(m_observerMutex); // no call is under way once this returns
        m_observer = std::move(observer);
    }

private:
    void run()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_wake.wait(lock, [this] { return m_stopping || !m_pending.empty(); });
            if (m_pending.empty())
                return; // stopping, and everything is written
            auto next = m_pending.begin();
            const QString fileName = next->first;
            Job job = std::move(next->second);
            m_pending.erase(next);
            m_busy = true;
            lock.unlock();
            const bool written = write(fileName, job);
            if (written)
                job = {}; // the saved state is released here, not under the lock
            lock.lock();
            // A failed state is kept until it is written or replaced: quitting or a
            // later change must not lose it.
            if (!written && m_pending.find(fileName) == m_pending.end())
                m_failed.insert_or_assign(fileName, std::move(job));
            m_busy = false;
            if (m_pending.empty())
                m_idle.notify_all();
        }
    }

    bool write(const QString &fileName, Job &job)
    {
        const std::optional<QString> error = AtomicFile::write(job.path, job.encode());
        if (error && *error != job.lastError)
            Console::printLine(job.failureMessage + *error);
        job.lastError = error.value_or(QString());
        const std::lock_guard lock(m_observerMutex);
        if (m_observer)
            m_observer(fileName, error.value_or(QString()));
        return !error;
    }

    void requeueFailed()
    {
        for (auto &[name, job] : m_failed) {
            if (m_pending.find(name) == m_pending.end())
                m_pending.insert_or_assign(name, std::move(job));
        }
        m_failed.clear();
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::map<QString, Job> m_pending;
    std::map<QString, Job> m_failed; // file name -> the latest state, not written yet
    bool m_busy = false;
    bool m_stopping = false;
    std::mutex m_observerMutex;
    SaveObserver m_observer;
    std::thread m_thread; // last: started once everything above exists
};

PersistenceService::PersistenceService(std::optional<QString> directory)
    : m_directory(std::move(directory))
    , m_writer(std::make_unique<Writer>())
{
}

PersistenceService::~PersistenceService() = default;

void PersistenceService::waitForWrites()
{
    m_writer->waitUntilWritten();
}

void PersistenceService::retryFailedSaves()
{
    m_writer->retryFailed();
}

QString PersistenceService::unsavedFailure()
{
    return m_writer->unsavedFailure();
}

void PersistenceService::setSaveObserver(SaveObserver observer)
{
    m_writer->setObserver(std::move(observer));
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

QString PersistenceService::settingsPath() const
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/Morvane/Morvane.conf"_s;
}

void PersistenceService::save(const char *fileName, std::function<QByteArray()> encode, const QString &failureMessage)
{
    const QString name = QLatin1StringView(fileName);
    m_writer->queue(name, {storageURL() + u'/' + name, std::move(encode), failureMessage, {}});
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
    const QString idText = Json::uuidText(collectionId);
    const QString iconsFolder = collectionIconsURL();
    const QDir folder(iconsFolder);
    const QStringList entries = folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    QStringList earlier;
    for (const QString &entry : entries) {
        if (withoutLastExtension(entry) == idText)
            earlier.append(folder.filePath(entry));
    }
    // The stored icon chosen again (from the icon folder itself, or through a link):
    // removing the earlier icons first would delete the very file to be copied.
    if (sourcePath && !sourcePath->isEmpty()) {
        for (const QString &stored : std::as_const(earlier)) {
            if (RegularFile::sameFile(stored, *sourcePath))
                return stored;
        }
    }
    for (const QString &stored : std::as_const(earlier))
        QFile::remove(stored);
    if (!sourcePath || sourcePath->isEmpty())
        return std::nullopt;
    // Read without trusting the path: a pipe chosen in the file dialog would block the
    // copy for ever, a device would never end.
    const RegularFile::Contents image = RegularFile::read(*sourcePath, kMaxIconBytes);
    // The point is always written: a source without extension ends in a bare point.
    const QString target = iconsFolder + u'/' + idText + u'.' + lastExtension(*sourcePath);
    const std::optional<QString> failure = image.ok() ? AtomicFile::write(target, image.bytes) : image.error;
    if (failure) {
        Console::printLine(u"Failed to copy collection icon: "_s + *failure);
        if (error)
            *error = *failure;
        return std::nullopt;
    }
    return target;
}

QString PersistenceService::previewText() const
{
    const QSettings settings(settingsPath(), QSettings::IniFormat);
    const QVariant value = settings.value(QLatin1StringView(previewTextKey));
    return value.isValid() ? value.toString() : defaultPreviewText();
}

void PersistenceService::setPreviewText(const QString &text)
{
    QSettings settings(settingsPath(), QSettings::IniFormat);
    settings.setValue(QLatin1StringView(previewTextKey), text);
    settings.sync();
}

double PersistenceService::previewSize() const
{
    const QSettings settings(settingsPath(), QSettings::IniFormat);
    bool ok = false;
    const double size = settings.value(QLatin1StringView(previewSizeKey)).toDouble(&ok);
    return ok && size > 0 ? size : defaultPreviewSize;
}

void PersistenceService::setPreviewSize(double size)
{
    QSettings settings(settingsPath(), QSettings::IniFormat);
    settings.setValue(QLatin1StringView(previewSizeKey), size);
    settings.sync();
}
