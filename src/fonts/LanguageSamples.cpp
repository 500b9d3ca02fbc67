// SPDX-License-Identifier: GPL-3.0-or-later
#include "fonts/LanguageSamples.h"

#include <QHash>
#include <QLocale>

#include <fontconfig/fontconfig.h>

using namespace Qt::StringLiterals;

namespace LanguageSamples {

namespace {

// Pangrams where the language has a well-known one, else a plain sentence.
const QHash<QString, QString> &sentences()
{
    static const QHash<QString, QString> table = {
        {u"en"_s, u"The quick brown fox jumps over the lazy dog"_s},
        {u"de"_s, u"Victor jagt zwölf Boxkämpfer quer über den großen Sylter Deich"_s},
        {u"fr"_s, u"Portez ce vieux whisky au juge blond qui fume"_s},
        {u"es"_s, u"El veloz murciélago hindú comía feliz cardillo y kiwi"_s},
        {u"it"_s, u"Quel vituperabile xenofobo zelante assaggia il whisky ed esclama: alleluja!"_s},
        {u"pt"_s, u"Zebras caolhas de Java querem mandar fax para moça gigante de New York"_s},
        {u"nl"_s, u"Pa's wijze lynx bezag vroom het fikse aquaduct"_s},
        {u"pl"_s, u"Pchnąć w tę łódź jeża lub ośm skrzyń fig"_s},
        {u"cs"_s, u"Příliš žluťoučký kůň úpěl ďábelské ódy"_s},
        {u"hu"_s, u"Árvíztűrő tükörfúrógép"_s},
        {u"ru"_s, u"Съешь же ещё этих мягких французских булок, да выпей чаю"_s},
        {u"uk"_s, u"Чуєш їх, доцю, га? Кумедна ж ти, прощайся без ґольфів!"_s},
        {u"el"_s, u"Ξεσκεπάζω την ψυχοφθόρα βδελυγμία"_s},
        {u"tr"_s, u"Pijamalı hasta yağız şoföre çabucak güvendi"_s},
        {u"sv"_s, u"Flygande bäckasiner söka hwila på mjuka tuvor"_s},
        {u"ro"_s, u"Înjurând pițigăiat, zoofobul comandă vexat whisky și tequila"_s},
        {u"vi"_s, u"Tôi có thể ăn thủy tinh mà không hại gì"_s},
        {u"ja"_s, u"私はガラスを食べられます。それは私を傷つけません。"_s},
        {u"zh-cn"_s, u"我能吞下玻璃而不伤身体。"_s},
        {u"zh-tw"_s, u"我能吞下玻璃而不傷身體。"_s},
        {u"ko"_s, u"나는 유리를 먹을 수 있어요. 그래도 아프지 않아요"_s},
        {u"ar"_s, u"أنا قادر على أكل الزجاج و هذا لا يؤلمني"_s},
        {u"he"_s, u"אני יכול לאכול זכוכית וזה לא מזיק לי"_s},
        {u"fa"_s, u"من می توانم بدون احساس درد شيشه بخورم"_s},
        {u"ur"_s, u"میں کانچ کھا سکتا ہوں اور مجھے تکلیف نہیں ہوتی"_s},
        {u"hi"_s, u"मैं काँच खा सकता हूँ और मुझे उससे कोई चोट नहीं पहुंचती"_s},
        {u"mr"_s, u"मी काच खाऊ शकतो, मला ते दुखत नाही"_s},
        {u"bn"_s, u"আমি কাঁচ খেতে পারি, তাতে আমার কোনো ক্ষতি হয় না"_s},
        {u"ta"_s, u"நான் கண்ணாடி சாப்பிடுவேன், அதனால் எனக்கு ஒரு கேடும் வராது"_s},
        {u"th"_s, u"ฉันกินกระจกได้ แต่มันไม่ทำให้ฉันเจ็บ"_s},
    };
    return table;
}

QLocale localeOf(const QString &language)
{
    return QLocale(QString(language).replace(u'-', u'_'));
}

bool knownTo(const QLocale &locale, const QString &language)
{
    // QLocale falls back to "C" for a code it doesn't know.
    return locale.language() != QLocale::C && !language.isEmpty();
}

} // namespace

QString sampleFor(const QString &language)
{
    const auto found = sentences().constFind(language);
    if (found != sentences().cend())
        return *found;
    const QByteArray code = language.toUtf8();
    const FcCharSet *charset = FcLangGetCharSet(reinterpret_cast<const FcChar8 *>(code.constData()));
    if (!charset)
        return {};
    // Letters of the orthography, past the Latin basics most of them share.
    QString letters;
    FcChar32 map[FC_CHARSET_MAP_SIZE];
    FcChar32 next = 0;
    for (FcChar32 base = FcCharSetFirstPage(charset, map, &next); base != FC_CHARSET_DONE && letters.size() < 40;
         base = FcCharSetNextPage(charset, map, &next)) {
        for (int word = 0; word < FC_CHARSET_MAP_SIZE && letters.size() < 40; ++word) {
            for (int bit = 0; bit < 32; ++bit) {
                const char32_t c = base + FcChar32(word) * 32 + FcChar32(bit);
                if ((map[word] >> bit & 1) && c > 0x7f && QChar::isLetter(c))
                    letters += QString::fromUcs4(&c, 1);
            }
        }
    }
    if (letters.isEmpty()) { // Latin basics only
        for (char32_t c = U'A'; c <= U'Z'; ++c) {
            if (FcCharSetHasChar(charset, c))
                letters += QChar(c);
        }
    }
    return letters;
}

QString nativeName(const QString &language)
{
    const QLocale locale = localeOf(language);
    return knownTo(locale, language) ? locale.nativeLanguageName() : QString();
}

QString englishName(const QString &language)
{
    const QLocale locale = localeOf(language);
    return knownTo(locale, language) ? QLocale::languageToString(locale.language()) : QString();
}

} // namespace LanguageSamples
