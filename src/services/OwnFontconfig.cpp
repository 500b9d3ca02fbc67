// SPDX-License-Identifier: GPL-3.0-or-later
#include "OwnFontconfig.h"

#include <QDir>
#include <QFile>
#include <QMutex>

#include <fontconfig/fontconfig.h>

using namespace Qt::StringLiterals;

namespace {

QMutex g_mutex;
bool g_replaced = false;
QByteArray g_userFile; // FONTCONFIG_FILE before leaveOut(); empty: fontconfig's default
bool g_userFileSet = false;

QByteArray xmlEscaped(const QString &text)
{
    return text.toHtmlEscaped().toUtf8();
}

} // namespace

namespace OwnFontconfig {

QString leaveOut(const QString &linkFolder, const QString &folderForConfig)
{
    const QMutexLocker lock(&g_mutex);
    g_userFileSet = qEnvironmentVariableIsSet("FONTCONFIG_FILE");
    g_userFile = qgetenv("FONTCONFIG_FILE");
    const QString include = g_userFileSet ? QFile::decodeName(g_userFile) : u"/etc/fonts/fonts.conf"_s;
    if (!QDir().mkpath(folderForConfig))
        return {};
    const QString path = folderForConfig + u"/morvane-fonts.conf"_s;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return {};
    const QByteArray config = "<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"urn:fontconfig:fonts.dtd\">\n"
                              "<fontconfig>\n  <include ignore_missing=\"yes\">" +
                              xmlEscaped(include) +
                              "</include>\n  <selectfont><rejectfont><glob>" + xmlEscaped(linkFolder) +
                              "*</glob></rejectfont></selectfont>\n</fontconfig>\n";
    if (file.write(config) != config.size() || !file.flush())
        return {};
    file.close();
    qputenv("FONTCONFIG_FILE", QFile::encodeName(path));
    g_replaced = true;
    return path;
}

void restoreEnvironment()
{
    const QMutexLocker lock(&g_mutex);
    if (!g_replaced)
        return;
    if (g_userFileSet)
        qputenv("FONTCONFIG_FILE", g_userFile);
    else
        qunsetenv("FONTCONFIG_FILE");
}

_FcConfig *loadUserConfig()
{
    const QMutexLocker lock(&g_mutex);
    if (!g_replaced)
        return FcInitLoadConfig();
    FcConfig *config = FcConfigCreate();
    const QByteArray file = g_userFileSet ? g_userFile : QByteArray();
    // A null name is fontconfig's own default, as when FONTCONFIG_FILE is not set.
    if (!FcConfigParseAndLoad(config, file.isEmpty() ? nullptr : reinterpret_cast<const FcChar8 *>(file.constData()),
                              FcTrue)) {
        FcConfigDestroy(config);
        return FcInitLoadConfig();
    }
    return config;
}

} // namespace OwnFontconfig
