#include "PersistenceService.h"

#include "Console.h"

#include "model/Json.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>
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

PersistenceService::PersistenceService(std::optional<QString> directory)
    : m_directory(std::move(directory))
{
}

QString PersistenceService::storageURL() const
{
    const QString folder = m_directory.value_or(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Morvane"_s);
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

void PersistenceService::save(const char *fileName, const QByteArray &json, const QString &failureMessage)
{
    // QSaveFile writes a temporary file and renames it over the old one, so a crash
    // or a full disk leaves the previous file as it was.
    QSaveFile file(storageURL() + u'/' + QLatin1StringView(fileName));
    if (!file.open(QIODevice::WriteOnly) || file.write(json) != json.size() || !file.commit())
        Console::printLine(failureMessage + file.errorString());
}

void PersistenceService::saveSources(const QList<FolderSource> &sources)
{
    save(kSourcesFile, encodeList(sources), u"Failed to save sources: "_s);
}

void PersistenceService::saveCollections(const QList<FontCollection> &collections)
{
    save(kCollectionsFile, encodeList(collections), u"Failed to save collections: "_s);
}

void PersistenceService::saveActivatedFonts(const QSet<QString> &paths)
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
    save(kActivatedFontsFile, json, u"Failed to save activated fonts: "_s);
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

template <typename Record>
QList<Record> PersistenceService::loadList(const char *fileName, const QString &failureMessage)
{
    const QString filePath = storageURL() + u'/' + QLatin1StringView(fileName);
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return {}; // missing on first run, or unreadable: silently empty
    const QByteArray bytes = file.readAll();
    Expected<QList<Record>> decoded = decodeList<Record>(bytes);
    if (decoded)
        return std::move(decoded).value();
    // The next save would overwrite what the user had: keep it.
    const QString copy = keepUnreadableCopy(filePath, bytes);
    const QString kept = copy.isEmpty() ? u" (could not keep a copy of the file)"_s
                                        : u" (the file was kept as %1)"_s.arg(copy);
    Console::printLine(failureMessage + decoded.error() + kept);
    return {};
}

QList<FolderSource> PersistenceService::loadSources()
{
    return loadList<FolderSource>(kSourcesFile, u"Failed to load sources: "_s);
}

QList<FontCollection> PersistenceService::loadCollections()
{
    return loadList<FontCollection>(kCollectionsFile, u"Failed to load collections: "_s);
}

QSet<QString> PersistenceService::loadActivatedFonts()
{
    const QList<QString> paths = loadList<QString>(kActivatedFontsFile, u"Failed to load activated fonts: "_s);
    return QSet<QString>(paths.begin(), paths.end());
}

std::optional<QString> PersistenceService::storeCollectionIcon(const QUuid &collectionId,
                                                               const std::optional<QString> &sourcePath)
{
    const QString idText = Json::uuidText(collectionId);
    const QString iconsFolder = collectionIconsURL();
    const QDir folder(iconsFolder);
    const QStringList entries = folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        if (withoutLastExtension(entry) == idText)
            QFile::remove(folder.filePath(entry));
    }
    if (!sourcePath || sourcePath->isEmpty())
        return std::nullopt;
    // The point is always written: a source without extension ends in a bare point.
    const QString target = iconsFolder + u'/' + idText + u'.' + lastExtension(*sourcePath);
    QFile source(*sourcePath);
    if (!source.copy(target)) {
        Console::printLine(u"Failed to copy collection icon: "_s + source.errorString());
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
