// SPDX-License-Identifier: GPL-3.0-or-later
#include "SandboxView.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace TestSupport {

std::optional<QHash<QString, QString>> familiesSeenInSandbox()
{
    const QString fonts = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/fonts"_s;
    QDir().mkpath(fonts); // as a new user's: there, and empty
    QTemporaryDir conf(QDir::tempPath() + u"/morvane-sandbox-XXXXXX"_s); // outside the hidden test folder
    if (!conf.isValid())
        return std::nullopt;
    // Flatpak reads the folder as the path its caches were written for, from the user's
    // own cache folder: a stale cache of ours would show there.
    writeFile(conf.filePath(u"fonts.conf"_s),
              "<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"urn:fontconfig:fonts.dtd\">\n"
              "<fontconfig><remap-dir as-path=\"" + QFile::encodeName(fonts) + "\">/run/host/user-fonts</remap-dir>"
              "<cachedir>/run/host/user-fonts-cache</cachedir><cachedir>/run/cache</cachedir></fontconfig>\n");
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/fontconfig"_s;
    QDir().mkpath(caches);
    QProcess bwrap;
    bwrap.start(u"bwrap"_s, {u"--ro-bind"_s, u"/"_s, u"/"_s,
                             u"--tmpfs"_s, testRoot(), // no home, no sources: only what is bound below
                             u"--tmpfs"_s, u"/run"_s,
                             u"--ro-bind"_s, fonts, u"/run/host/user-fonts"_s,
                             u"--ro-bind"_s, caches, u"/run/host/user-fonts-cache"_s,
                             u"--ro-bind"_s, conf.filePath(u"fonts.conf"_s), u"/run/host/fonts.conf"_s,
                             u"--dir"_s, u"/run/cache"_s,
                             u"--setenv"_s, u"FONTCONFIG_FILE"_s, u"/run/host/fonts.conf"_s,
                             u"--unsetenv"_s, u"FONTCONFIG_PATH"_s,
                             // Listed is not enough: a cache can name a file the sandbox can't open.
                             u"sh"_s, u"-c"_s,
                             u"fc-list --format='%{file}|%{family[0]}\\n' | while IFS= read -r line; do "
                             u"[ -r \"${line%%|*}\" ] && printf '%s\\n' \"$line\"; done; true"_s});
    if (!bwrap.waitForFinished(60'000) || bwrap.exitStatus() != QProcess::NormalExit || bwrap.exitCode() != 0)
    {
        std::fprintf(stderr, "bwrap: %s\n", bwrap.readAllStandardError().constData());
        return std::nullopt; // no bwrap, or no namespaces for it here
    }
    QHash<QString, QString> seen;
    const QString inside = u"/run/host/user-fonts/"_s;
    for (const QString &line : QString::fromUtf8(bwrap.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)) {
        const QString file = line.section(u'|', 0, 0);
        EXPECT_TRUE(file.startsWith(inside)) << line.toStdString();
        seen.insert(fontOfLink(fonts + u'/' + file.mid(inside.size())), line.section(u'|', 1));
    }
    return seen;
}

} // namespace TestSupport
