// SPDX-License-Identifier: GPL-3.0-or-later
#include "StateTestSupport.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

class Collections : public testing::Test, public StoreFixture
{
protected:
    Collections()
    {
        for (const QString &file : {u"Sans/a.ttf"_s, u"Sans/b.otf"_s, u"Sans/Deep/d.ttf"_s, u"Serif/s.otf"_s,
                                    u"Serif/notes.txt"_s})
            writeFile(path(file));
        source = addSource(library);
        scan();
    }

    QStringList savedNames()
    {
        QStringList names;
        for (const FontCollection &collection : written().loadCollections())
            names.append(collection.name);
        return names;
    }

    QStringList names()
    {
        QStringList result;
        for (const FontCollection &collection : store->collections())
            result.append(collection.name);
        return result;
    }

    QUuid idOf(const QString &name)
    {
        for (const FontCollection &collection : store->collections()) {
            if (collection.name == name)
                return collection.id;
        }
        return {};
    }

    FontCollection collection(const QString &name)
    {
        for (const FontCollection &collection : store->collections()) {
            if (collection.name == name)
                return collection;
        }
        return {};
    }

    QStringList fontsIn(const QString &name)
    {
        return nodeNames(store->allFontsInCollection(collection(name)));
    }

    FolderSource source;
};

} // namespace

TEST_F(Collections, NewCollectionsGetFreeNamesGoOnTopAndAreSelected)
{
    store->createCollection(u"New Collection"_s);
    store->createCollection(u"New Collection"_s);
    store->createCollection(u"New Collection"_s);
    EXPECT_EQ(names(), (QStringList{u"New Collection 3"_s, u"New Collection 2"_s, u"New Collection"_s}));
    EXPECT_EQ(store->selectedCollection()->name, u"New Collection 3"_s);
    EXPECT_EQ(savedNames(), names());
    // The name check is exact: another letter case is another name.
    store->createCollection(u"new collection"_s);
    EXPECT_EQ(names().first(), u"new collection"_s);
}

TEST_F(Collections, RenamingSortsWithFavoritesFirst)
{
    for (const QString &name : {u"Beta"_s, u"alpha"_s, u"Gamma"_s})
        store->createCollection(name);
    store->sortCollections();
    EXPECT_EQ(names(), (QStringList{u"alpha"_s, u"Beta"_s, u"Gamma"_s}));
    store->setSidebarSelection(SidebarItem(collection(u"Gamma"_s)));
    store->renameCollection(idOf(u"Gamma"_s), u"favorites"_s);
    EXPECT_EQ(names(), (QStringList{u"favorites"_s, u"alpha"_s, u"Beta"_s}));
    EXPECT_EQ(savedNames(), names());
    EXPECT_EQ(store->selectedCollection()->name, u"favorites"_s); // the selection follows by id
    store->renameCollection(idOf(u"Beta"_s), u"alpha"_s); // no uniqueness check here
    EXPECT_EQ(names(), (QStringList{u"favorites"_s, u"alpha"_s, u"alpha"_s}));

    // Nothing to rename, or nothing readable to rename to: nothing changes.
    QSignalSpy changed(store.get(), &AppState::collectionsChanged);
    store->renameCollection(QUuid::createUuid(), u"Nobody"_s);
    for (const QString &blank : {QString(), u" "_s, u" \t "_s})
        store->renameCollection(idOf(u"favorites"_s), blank);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(names(), (QStringList{u"favorites"_s, u"alpha"_s, u"alpha"_s}));
    EXPECT_EQ(savedNames(), names());
}

TEST_F(Collections, MembersAreUniqueAndExpandIntoFontsOnce)
{
    store->createCollection(u"Work"_s);
    const QUuid work = idOf(u"Work"_s);
    store->addToCollection(work, font(u"Sans/a.ttf"_s));
    store->addToCollection(work, font(u"Sans/a.ttf"_s));
    EXPECT_EQ(collection(u"Work"_s).members.size(), 1);
    EXPECT_EQ(fontsIn(u"Work"_s), QStringList{u"a.ttf"_s});

    // The font and then its folder: two members, the font listed once, in member order.
    store->addToCollection(work, folder(u"Sans"_s));
    EXPECT_EQ(collection(u"Work"_s).members,
              (QList<CollectionMember>{{path(u"Sans/a.ttf"_s), false}, {path(u"Sans"_s), true}}));
    const QStringList fonts = fontsIn(u"Work"_s);
    EXPECT_EQ(fonts.size(), 3);
    EXPECT_EQ(fonts.first(), u"a.ttf"_s);
    EXPECT_EQ(QSet<QString>(fonts.begin(), fonts.end()), (QSet<QString>{u"a.ttf"_s, u"b.otf"_s, u"d.ttf"_s}));
    EXPECT_TRUE(written().loadCollections().first().contains(path(u"Sans"_s)));

    // A member the scan never saw (deleted since) gives nothing and stays a member.
    store->addToCollection(work, FontNode::fromPath(path(u"Gone/x.otf"_s)));
    EXPECT_EQ(fontsIn(u"Work"_s).size(), 3);
    EXPECT_EQ(collection(u"Work"_s).members.size(), 3);

    store->removeFromCollection(work, {path(u"Sans"_s), true});
    EXPECT_EQ(fontsIn(u"Work"_s), QStringList{u"a.ttf"_s});
    EXPECT_EQ(written().loadCollections().first().members.size(), 2);
}

// A drop of several files is one change: one update for the views, one save.
TEST_F(Collections, ADropOfManyIsOneChange)
{
    store->createCollection(u"Work"_s);
    const QUuid work = idOf(u"Work"_s);
    store->addToCollection(work, font(u"Sans/a.ttf"_s));
    written();
    QStringList saves;
    persistence.setSaveObserver([&saves](const QString &file, const QString &) { saves.append(file); });
    QSignalSpy changed(store.get(), &AppState::collectionsChanged);
    store->addToCollection(work, QList<FontNode>{font(u"Sans/a.ttf"_s), folder(u"Sans"_s), font(u"Sans/b.otf"_s)});
    persistence.waitForWrites();
    persistence.setSaveObserver(nullptr);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(saves, QStringList{u"collections.json"_s});
    EXPECT_EQ(collection(u"Work"_s).members.size(), 3); // a.ttf was there already

    store->addToCollection(work, QList<FontNode>{folder(u"Sans"_s)}); // nothing new: nothing happens
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(Collections, MemosAreEmptiedByEveryChange)
{
    store->createCollection(u"Work"_s);
    const QUuid work = idOf(u"Work"_s);
    // Whoever is told of a change reads the new members and fonts, not the old memo.
    QList<qsizetype> seenMembers;
    QList<qsizetype> seenFonts;
    QObject::connect(store.get(), &AppState::collectionsChanged, [&] {
        if (!collection(u"Work"_s).id.isNull()) {
            seenMembers.append(store->sortedMembers(collection(u"Work"_s)).size());
            seenFonts.append(store->allFontsInCollection(collection(u"Work"_s)).size());
        }
    });
    store->addToCollection(work, folder(u"Serif"_s));
    EXPECT_EQ(fontsIn(u"Work"_s), QStringList{u"s.otf"_s});
    EXPECT_EQ(store->sortedMembers(collection(u"Work"_s)).size(), 1);

    store->addToCollection(work, font(u"Sans/b.otf"_s));
    EXPECT_EQ(fontsIn(u"Work"_s), (QStringList{u"s.otf"_s, u"b.otf"_s}));
    EXPECT_EQ(store->sortedMembers(collection(u"Work"_s)).size(), 2);

    // A refresh brings new fonts into folder members.
    writeFile(path(u"Serif/t.otf"_s));
    scan();
    EXPECT_EQ(fontsIn(u"Work"_s).size(), 3);

    // A font deleted on disk is gone after the next refresh; the member stays.
    QFile::remove(path(u"Sans/b.otf"_s));
    scan();
    EXPECT_EQ(fontsIn(u"Work"_s).size(), 2);

    store->setCollectionIcon(work, std::nullopt);
    store->createCollection(u"Other"_s);
    store->deleteCollection(collection(u"Other"_s));
    store->removeFromCollection(work, {path(u"Serif"_s), true});
    EXPECT_TRUE(fontsIn(u"Work"_s).isEmpty()); // only the deleted font's member is left
    EXPECT_EQ(store->sortedMembers(collection(u"Work"_s)).size(), 1);
    ASSERT_GE(seenMembers.size(), 2);
    EXPECT_EQ(seenMembers.mid(0, 2), (QList<qsizetype>{1, 2})); // the two members added
    EXPECT_EQ(seenFonts.mid(0, 2), (QList<qsizetype>{1, 2}));
    EXPECT_EQ(seenMembers.constLast(), 1);
    EXPECT_EQ(seenFonts.constLast(), 0);
}

TEST_F(Collections, MembersSortFoldersFirstThenByName)
{
    store->createCollection(u"Mixed"_s);
    const QUuid id = idOf(u"Mixed"_s);
    store->addToCollection(id, font(u"Serif/s.otf"_s));
    store->addToCollection(id, folder(u"Serif"_s));
    store->addToCollection(id, font(u"Sans/a.ttf"_s));
    store->addToCollection(id, folder(u"Sans/Deep"_s));
    store->addToCollection(id, FontNode::fromPath(testRoot() + u"/Other/A.ttf"_s));
    QStringList order;
    for (const CollectionMember &member : store->sortedMembers(collection(u"Mixed"_s)))
        order.append(member.path.mid(testRoot().size()));
    EXPECT_EQ(order, (QStringList{u"/Library/Sans/Deep"_s, u"/Library/Serif"_s, u"/Library/Sans/a.ttf"_s,
                                  u"/Other/A.ttf"_s, u"/Library/Serif/s.otf"_s}));
}

TEST_F(Collections, DeletingTheSelectedCollectionSelectsTheFirstSource)
{
    store->createCollection(u"Temp"_s);
    ASSERT_TRUE(store->selectedCollection().has_value());
    store->deleteCollection(collection(u"Temp"_s));
    EXPECT_TRUE(store->collections().isEmpty());
    EXPECT_EQ(store->selectedSource(), source);
    EXPECT_TRUE(savedNames().isEmpty());
}

TEST_F(Collections, IconsLoadReplaceAndFailedOnesAreNotRetried)
{
    store->createCollection(u"Icons"_s);
    const QUuid id = idOf(u"Icons"_s);
    QImage red(8, 8, QImage::Format_ARGB32);
    red.fill(Qt::red);
    const QString png = testRoot() + u"/icon.png"_s;
    ASSERT_TRUE(red.save(png));
    store->setCollectionIcon(id, png);
    const QString storedPng = *collection(u"Icons"_s).iconPath;
    EXPECT_TRUE(storedPng.endsWith(u".png"_s));
    ASSERT_TRUE(store->collectionIcon(storedPng).has_value());
    EXPECT_EQ(store->collectionIcon(storedPng)->pixelColor(2, 2), QColor(Qt::red));

    // Replaced by an SVG: another extension, one file, drawn by the decoder the
    // interface puts in place (the sidebar's tests look at the pixels).
    const QString svg = writeFile(testRoot() + u"/icon.svg"_s,
                                  R"(<svg xmlns="http://www.w3.org/2000/svg" width="10" height="10">)"
                                  R"(<rect width="10" height="10" fill="#0000ff"/></svg>)");
    store->setCollectionIcon(id, svg);
    const QString storedSvg = *collection(u"Icons"_s).iconPath;
    EXPECT_TRUE(storedSvg.endsWith(u".svg"_s));
    EXPECT_FALSE(QFile::exists(storedPng));
    QStringList decoded;
    store->setIconDecoder([&decoded](const QByteArray &bytes, const QString &path) {
        decoded.append(path);
        QImage image(4, 4, QImage::Format_ARGB32);
        image.fill(bytes.contains("#0000ff") ? Qt::blue : Qt::black);
        return image;
    });
    ASSERT_TRUE(store->collectionIcon(storedSvg).has_value());
    EXPECT_EQ(store->collectionIcon(storedSvg)->pixelColor(2, 2), QColor(Qt::blue));
    EXPECT_EQ(decoded, QStringList{storedSvg}) << "decoded once, then from the memo";
    store->setIconDecoder(nullptr);
    EXPECT_EQ(written().loadCollections().first().iconPath, storedSvg);

    // A broken file fails once and is not read again until an icon is set anew.
    const QString broken = writeFile(testRoot() + u"/broken.png"_s, "not an image");
    EXPECT_FALSE(store->collectionIcon(broken).has_value());
    ASSERT_TRUE(red.save(broken));
    EXPECT_FALSE(store->collectionIcon(broken).has_value());
    store->createCollection(u"Another"_s);
    store->setCollectionIcon(idOf(u"Another"_s), std::nullopt);
    EXPECT_TRUE(store->collectionIcon(broken).has_value());
}
