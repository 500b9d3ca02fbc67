// SPDX-License-Identifier: GPL-3.0-or-later
// Type-ahead rules on a list of names, with the times given: no waiting, no widgets.
#include "TestSupport.h"

#include "ui/common/TypeAhead.h"

#include <QStringList>

using namespace Qt::StringLiterals;

TEST(TypeAhead, SelectsTheNextNameBeginningWithWhatWasTyped)
{
    const QStringList names{u"Arial"_s, u"Avenir"_s, u"Bodoni"_s, u"bembo"_s, u"Caslon"_s};
    const auto nameOf = [&names](int row) { return QStringView(names.at(row)); };
    struct Key
    {
        QString text;
        qint64 atMs;
        int expected; // the row selected; -1 none
    };
    struct Case
    {
        const char *what;
        int current;
        QList<Key> keys;
    };
    const QList<Case> cases{
        {"one letter goes past the current row", 0, {{u"a"_s, 0, 1}}},
        {"from nothing selected, the first match", -1, {{u"b"_s, 0, 2}}},
        {"letter case doesn't matter", 2, {{u"B"_s, 0, 3}}},
        {"it wraps round", 4, {{u"a"_s, 0, 0}}},
        {"typing on lengthens the prefix", 0, {{u"b"_s, 0, 2}, {u"e"_s, 300, 3}}},
        {"a longer prefix may keep the current row", 2, {{u"b"_s, 0, 3}, {u"o"_s, 300, 2}}},
        {"after a pause a new search starts", -1, {{u"b"_s, 0, 2}, {u"c"_s, 1500, 4}}},
        {"within the pause it doesn't", -1, {{u"b"_s, 0, 2}, {u"c"_s, 900, -1}}},
        {"no match selects nothing", 0, {{u"z"_s, 0, -1}}},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.what);
        TypeAhead typeAhead;
        int current = test.current;
        for (const Key &key : test.keys) {
            const int row = typeAhead.type(key.text, key.atMs, current, static_cast<int>(names.size()), nameOf);
            EXPECT_EQ(row, key.expected) << key.text.toStdString();
            if (row >= 0)
                current = row;
        }
    }

    // A space belongs to the name only while typing; any other key ends the search.
    TypeAhead typeAhead;
    EXPECT_FALSE(typeAhead.isTyping(0));
    typeAhead.type(u"b"_s, 0, -1, static_cast<int>(names.size()), nameOf);
    EXPECT_TRUE(typeAhead.isTyping(500));
    EXPECT_FALSE(typeAhead.isTyping(1500));
    typeAhead.reset();
    EXPECT_FALSE(typeAhead.isTyping(10));
}
