// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/FontCatalog.h"

#include <QJsonObject>

// A catalogue question as a smart collection keeps it: only what it asks is written,
// under names that read as what they are.
namespace FontQueryJson {

QJsonObject toJson(const FontQuery &query);
FontQuery fromJson(const QJsonObject &json);

} // namespace FontQueryJson
