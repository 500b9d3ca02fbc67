// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

// The user's licence label of a font file or folder, kept as file tags.
// Declaration order is the order menus list them in.
enum class LicenseStatus {
    Licensed,
    LicensedNonCommercial,
    Unlicensed,
    PartiallyLicensed,
    PublicDomain,
    OpenSource,
    Trial,
    None,
};

namespace License {

const QList<LicenseStatus> &allCases();
// The seven tag names that carry a licence status; every other tag is the user's own.
const QSet<QString> &allLicenseTags();

QString rawValue(LicenseStatus status); // the display name, "No Status" for none
QStringList tags(LicenseStatus status);  // "Licensed" before "Non-Commercial"; none for None

// The status a file's tags express; the earliest rule that holds wins, so
// conflicting tags set by hand show the first status in this order.
LicenseStatus from(const QStringList &tags);

} // namespace License
