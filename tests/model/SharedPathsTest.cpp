// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "model/SharedPaths.h"

using namespace Qt::StringLiterals;

// Two equal paths read apart are one string, kept while anyone holds it.
TEST(SharedPaths, EqualPathsAreOneStringWhileHeld)
{
    const QString base = u"/Fonts/Shared/"_s;
    QString held = SharedPaths::share(base + u"Held.ttf"_s);
    const QString again = SharedPaths::share(base + u"Held.ttf"_s);
    EXPECT_EQ(again.constData(), held.constData());

    (void)SharedPaths::share(base + u"Dropped.ttf"_s); // nobody keeps it
    const qsizetype before = SharedPaths::size();
    SharedPaths::dropUnused();
    EXPECT_EQ(SharedPaths::size(), before - 1);
    EXPECT_EQ(SharedPaths::share(base + u"Held.ttf"_s).constData(), held.constData());

    held.clear();
    const QString copy = again; // still held through another owner
    SharedPaths::dropUnused();
    EXPECT_EQ(SharedPaths::share(base + u"Held.ttf"_s).constData(), copy.constData());
}
