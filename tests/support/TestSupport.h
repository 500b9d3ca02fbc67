// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <cstdio>
#include <ostream>

// Lets GoogleTest print Qt strings in failure messages.
void PrintTo(const QString &text, std::ostream *out);
void PrintTo(const QByteArray &bytes, std::ostream *out);
void PrintTo(const QStringList &list, std::ostream *out);

namespace TestSupport {

// The fresh, private folder this test runs in. HOME and the XDG folders point inside it.
QString testRoot();

// Small helpers for building real trees; each fails the test on error.
QString makeDir(const QString &path);
QString writeFile(const QString &path, const QByteArray &content = {});
void makeSymlink(const QString &target, const QString &linkPath);
// Every folder's times under `root` (itself too) an hour back, as a library copied in
// long ago: a rescan then trusts what it listed.
void ageFolders(const QString &root);
QByteArray readFile(const QString &path);

// What `action` printed on standard output.
template <typename Action>
QString capturedStdout(Action action)
{
    testing::internal::CaptureStdout();
    action();
    std::fflush(stdout);
    return QString::fromStdString(testing::internal::GetCapturedStdout());
}

// What Morvane's logging categories ("morvane.*") say while it lives, one
// "category: message" line each, kept from the terminal.
class CapturedLog
{
public:
    CapturedLog();
    ~CapturedLog();
    CapturedLog(const CapturedLog &) = delete;
    CapturedLog &operator=(const CapturedLog &) = delete;
    QString text() const;
};

// Used by the shared main: isolate before the application object exists.
bool isolateProcess();
void isolateEachTest();
void removeProcessRoot();

// fontconfig is the judge: what a newly started application sees, through fc-list in
// this test's own environment, with the links in `linkFolder` mapped back to the fonts.
QSet<QString> fontsListedByFontconfig(const QString &linkFolder);
// The font an entry of our link folder stands for, whatever kind of link it is.
QString fontOfLink(const QString &entry);
// Every entry of our link folder (not the dot links that record a file entry's font).
QStringList linkEntries(const QString &linkFolder);

} // namespace TestSupport
