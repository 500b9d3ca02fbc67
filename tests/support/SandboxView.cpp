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
    writeFile(conf.filePath(u"fonts.conf"_s),
              "<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"urn:fontconfig:fonts.dtd\">\n"
              "<fontconfig><dir>/run/host/user-fonts</dir><cachedir>/run/cache</cachedir></fontconfig>\n");
    QProcess bwrap;
    bwrap.start(u"bwrap"_s, {u"--ro-bind"_s, u"/"_s, u"/"_s,
                             u"--tmpfs"_s, testRoot(), // no home, no sources: only what is bound below
                             u"--tmpfs"_s, u"/run"_s,
                             u"--ro-bind"_s, fonts, u"/run/host/user-fonts"_s,
                             u"--ro-bind"_s, conf.filePath(u"fonts.conf"_s), u"/run/host/fonts.conf"_s,
                             u"--dir"_s, u"/run/cache"_s,
                             u"--setenv"_s, u"FONTCONFIG_FILE"_s, u"/run/host/fonts.conf"_s,
                             u"--unsetenv"_s, u"FONTCONFIG_PATH"_s,
                             u"fc-list"_s, u"--format=%{file}|%{family[0]}\\n"_s});
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
