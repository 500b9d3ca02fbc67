// SPDX-License-Identifier: GPL-3.0-or-later
// Isolation of every test: HOME and the XDG folders point at a fresh temporary
// folder before anything runs, and at a new one before each test, so no test can
// reach the real user's fonts, tags or settings.
#include "TestSupport.h"

#include <QMutex>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QLocale>
#include <QStandardPaths>
#include <QTemporaryDir>


#include <cstdlib>
#include <memory>
#include <unistd.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<QTemporaryDir> g_processRoot;
QString g_testRoot;
int g_testCounter = 0;

void pointEnvironmentAt(const QString &root)
{
    const auto setFolder = [&root](const char *variable, const QString &sub) {
        const QString path = root + u'/' + sub;
        QDir().mkpath(path);
        qputenv(variable, QFile::encodeName(path));
    };
    setFolder("HOME", u"home"_s);
    setFolder("XDG_DATA_HOME", u"home/.local/share"_s);
    setFolder("XDG_CONFIG_HOME", u"home/.config"_s);
    setFolder("XDG_CACHE_HOME", u"home/.cache"_s);
    setFolder("XDG_RUNTIME_DIR", u"runtime"_s);
    QFile::setPermissions(root + u"/runtime"_s, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    g_testRoot = root;
}

// Run as root, fontconfig writes caches to the system's /var/cache/fontconfig before
// the user's own folder. Tests read the system's configuration but write caches only
// to the test's own cache folder, as an ordinary user's fontconfig does.
void useOwnFontconfigCaches(const QString &root)
{
    const QString config = root + u"/fonts.conf"_s;
    QFile file(config);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write("<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"urn:fontconfig:fonts.dtd\">\n"
               "<fontconfig>\n"
               "  <dir>/usr/share/fonts</dir>\n"
               "  <dir prefix=\"xdg\">fonts</dir>\n"
               "  <cachedir prefix=\"xdg\">fontconfig</cachedir>\n"
               "  <include ignore_missing=\"yes\">/etc/fonts/conf.d</include>\n"
               "</fontconfig>\n");
    qputenv("FONTCONFIG_FILE", QFile::encodeName(config));
}

class FreshFolderPerTest : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo &) override
    {
        pointEnvironmentAt(g_processRoot->path() + u"/test-"_s + QString::number(++g_testCounter));
    }
};

} // namespace

void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

void PrintTo(const QByteArray &bytes, std::ostream *out)
{
    *out << '"' << bytes.toStdString() << '"';
}

void PrintTo(const QStringList &list, std::ostream *out)
{
    *out << '[' << list.join(u", "_s).toStdString() << ']';
}

namespace TestSupport {

QString testRoot()
{
    return g_testRoot;
}

QString makeDir(const QString &path)
{
    EXPECT_TRUE(QDir().mkpath(path)) << path.toStdString();
    return path;
}

QString writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(path.section(u'/', 0, -2));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(content);
    return path;
}

void ageFolders(const QString &root)
{
    QStringList folders{root};
    QDirIterator it(root, QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        folders.append(it.next());
    // Deepest first: setting a folder's times leaves its parent's alone anyway, but a
    // parent set last is surely an hour old.
    std::sort(folders.begin(), folders.end(), [](const QString &a, const QString &b) { return a.size() > b.size(); });
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const timespec hourAgo{now.tv_sec - 3600, 0};
    const timespec times[2] = {hourAgo, hourAgo};
    for (const QString &folder : std::as_const(folders))
        EXPECT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(folder).constData(), times, 0), 0) << folder.toStdString();
}

void makeSymlink(const QString &target, const QString &linkPath)
{
    EXPECT_EQ(::symlink(QFile::encodeName(target).constData(), QFile::encodeName(linkPath).constData()), 0)
        << linkPath.toStdString();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

bool isolateProcess()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // A process started by a test (a death test's child) lives inside its parent's
    // folder, which the parent removes; a child that aborts can't clean up after itself.
    const QString parentRoot = qEnvironmentVariable("MORVANE_TEST_PROCESS_ROOT");
    const QString base = parentRoot.isEmpty() ? QDir::tempPath() : parentRoot;
    g_processRoot = std::make_unique<QTemporaryDir>(base + u"/morvane-test-XXXXXX"_s);
    if (!g_processRoot->isValid())
        return false;
    if (parentRoot.isEmpty())
        qputenv("MORVANE_TEST_PROCESS_ROOT", QFile::encodeName(g_processRoot->path()));
    pointEnvironmentAt(g_processRoot->path() + u"/process"_s);
    useOwnFontconfigCaches(g_processRoot->path());
    // ICU collation needs a real locale; the C locale would bypass it.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    return true;
}

void isolateEachTest()
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    testing::UnitTest::GetInstance()->listeners().Append(new FreshFolderPerTest);
}

void removeProcessRoot()
{
    g_processRoot.reset();
}

namespace {

QMutex capturedMutex;
QString *capturedText = nullptr;
QtMessageHandler previousHandler = nullptr;

void captureMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QLatin1StringView category(context.category ? context.category : "");
    if (category.startsWith(QLatin1StringView("morvane."))) {
        const QMutexLocker lock(&capturedMutex);
        if (capturedText) {
            *capturedText += category + u": "_s + message + u'\n';
            return;
        }
    }
    previousHandler(type, context, message);
}

} // namespace

CapturedLog::CapturedLog()
{
    const QMutexLocker lock(&capturedMutex);
    capturedText = new QString;
    previousHandler = qInstallMessageHandler(captureMessage);
}

CapturedLog::~CapturedLog()
{
    qInstallMessageHandler(previousHandler);
    const QMutexLocker lock(&capturedMutex);
    delete std::exchange(capturedText, nullptr);
}

QString CapturedLog::text() const
{
    const QMutexLocker lock(&capturedMutex);
    return *capturedText;
}

QString fontOfLink(const QString &entry)
{
    if (QFileInfo(entry).isSymLink())
        return QFile::symLinkTarget(entry);
    // A hard link, clone or copy: the dot link beside it names its font.
    const qsizetype slash = entry.lastIndexOf(u'/');
    return QFile::symLinkTarget(entry.left(slash + 1) + u'.' + entry.mid(slash + 1));
}

QStringList linkEntries(const QString &linkFolder)
{
    QStringList entries;
    QDirIterator it(linkFolder, QDir::Files | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext())
        entries.append(it.next());
    return entries;
}

QSet<QString> fontsListedByFontconfig(const QString &linkFolder)
{
    QProcess process;
    process.start(QStringLiteral("fc-list"), {QStringLiteral("--format=%{file}\\n")});
    EXPECT_TRUE(process.waitForFinished(60'000));
    QSet<QString> fonts;
    for (const QString &file : QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)) {
        if (file.startsWith(linkFolder + u'/'))
            fonts.insert(fontOfLink(file));
    }
    return fonts;
}

} // namespace TestSupport
