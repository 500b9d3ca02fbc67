// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/FontCatalog.h"

#include <QJsonObject>

// A catalogue question as a smart collection keeps it: only what it asks is written,
// under names that read as what they are.
namespace FontQueryJson {

QJsonObject toJson(const FontQuery &query);
FontQuery fromJson(const QJsonObject &json);

// Roughly how many characters a stored question holds, without writing it out. A
// question past `kMaxSize` (a "collections.json" edited by hand, a pasted book) is kept
// but never asked: answering it would hold the catalogue for minutes.
qsizetype size(const QJsonObject &json);
constexpr qsizetype kMaxSize = 64 * 1024;

} // namespace FontQueryJson
