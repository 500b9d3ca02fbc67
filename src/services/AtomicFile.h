// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Replaces a file's content whole, or not at all. The bytes go to a new file beside
// it; every write is checked (short writes included), the file is synced and closed,
// renamed over the old one, and the folder synced so the rename itself survives a
// power cut. On any failure the new file is removed and the old one is untouched.
namespace AtomicFile {

// The error's description on failure, nothing on success.
std::optional<QString> write(const QString &path, const QByteArray &bytes);

} // namespace AtomicFile
