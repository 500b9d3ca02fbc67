// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What the font list draws for a language (fontconfig's codes: "hu", "zh-cn", "sr"):
// a sentence for the most used languages, otherwise letters of the language from
// fontconfig's orthography; empty for a code fontconfig doesn't know.
namespace LanguageSamples {

QString sampleFor(const QString &language);
// The language's own name and its name in English ("magyar", "Hungarian"); empty when
// the system's locale data doesn't know it.
QString nativeName(const QString &language);
QString englishName(const QString &language);

} // namespace LanguageSamples
