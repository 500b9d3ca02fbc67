// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "model/CollectionRecords.h"
#include "model/FolderSearchResult.h"
#include "model/FolderSource.h"
#include "model/SidebarItem.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

QJsonValue parse(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << json.toStdString();
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

const QUuid kId = QUuid::fromString(u"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2"_s);

} // namespace

TEST(FolderSourceJson, WritesCompactOrderedKeysAndReadsThemBack)
{
    const FolderSource source{kId, u"/home/me/Fonts \"Pro\"\\n\n\U0001F600/é"_s, u"Fonts"_s};
    QByteArray json;
    source.appendJson(json);
    EXPECT_TRUE(json.startsWith(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","path":"/home/me/Fonts \"Pro\"\\n\n)"))
        << json.toStdString();
    EXPECT_TRUE(json.endsWith(R"(","name":"Fonts"})")) << json.toStdString();

    const Expected<FolderSource> decoded = FolderSource::fromJson(parse(json));
    ASSERT_TRUE(decoded) << decoded.error().toStdString();
    EXPECT_EQ(decoded.value(), source);
    EXPECT_EQ(qHash(decoded.value()), qHash(source));
}

TEST(FolderSourceJson, DecodingIsStrictAboutRequiredKeysAndUuids)
{
    // Other writers: escaped slashes, lower-case UUID, other key order, extra keys.
    const Expected<FolderSource> tolerant = FolderSource::fromJson(
        parse(R"({"name":"F","extra":1,"path":"\/a\/b","id":"6f1c1a52-0d63-4b4a-9c4e-1b2f8e3d42e2"})"));
    ASSERT_TRUE(tolerant) << tolerant.error().toStdString();
    EXPECT_EQ(tolerant.value().path, u"/a/b"_s);
    EXPECT_EQ(tolerant.value().id, kId);

    const auto failure = [](const QByteArray &json) { return FolderSource::fromJson(parse(json)).error(); };
    EXPECT_EQ(failure(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","path":"/a"})"), u"key \"name\" is missing"_s);
    EXPECT_EQ(failure(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","path":3,"name":"x"})"),
              u"key \"path\" must be a string but is a number"_s);
    EXPECT_EQ(failure(R"({"id":"not-a-uuid","path":"/a","name":"x"})"),
              u"key \"id\" is not a valid UUID: \"not-a-uuid\""_s);
    EXPECT_FALSE(failure(R"({"id":"{6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2}","path":"/a","name":"x"})").isEmpty());
    EXPECT_FALSE(failure(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42EZ","path":"/a","name":"x"})").isEmpty());
    EXPECT_FALSE(FolderSource::fromJson(QJsonValue(u"just a string"_s)));
}

TEST(FontCollectionJson, IconPathIsOptionalAndNeverNull)
{
    FontCollection collection{kId, u"Display"_s, {{u"/A"_s, true}, {u"/b.otf"_s, false}}, std::nullopt};
    QByteArray json;
    collection.appendJson(json);
    EXPECT_EQ(json, QByteArray(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"Display","members":)"
                               R"([{"path":"/A","isDirectory":true},{"path":"/b.otf","isDirectory":false}]})"));
    Expected<FontCollection> decoded = FontCollection::fromJson(parse(json));
    ASSERT_TRUE(decoded) << decoded.error().toStdString();
    EXPECT_EQ(decoded.value(), collection);

    collection.iconPath = u"/icons/x.png"_s;
    json.clear();
    collection.appendJson(json);
    EXPECT_TRUE(json.endsWith(R"(,"iconPath":"/icons/x.png"})"));
    EXPECT_EQ(FontCollection::fromJson(parse(json)).value(), collection);

    decoded = FontCollection::fromJson(
        parse(R"({"iconPath":null,"members":[],"name":"N","id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2"})"));
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded.value().iconPath.has_value());
    EXPECT_TRUE(decoded.value().members.isEmpty());
}

TEST(FontCollectionJson, AMissingOrMistypedKeyFailsWithItsName)
{
    const auto failure = [](const QByteArray &json) { return FontCollection::fromJson(parse(json)).error(); };
    EXPECT_EQ(failure(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"N"})"), u"key \"members\" is missing"_s);
    EXPECT_EQ(failure(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"N","members":{}})"),
              u"key \"members\" must be an array but is an object"_s);
    EXPECT_EQ(failure(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"N","members":)"
                      R"([{"path":"/a","isDirectory":true},{"path":"/b"}]})"),
              u"member 2: key \"isDirectory\" is missing"_s);
    EXPECT_EQ(failure(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"N","members":)"
                      R"([{"path":"/a","isDirectory":"yes"}]})"),
              u"member 1: key \"isDirectory\" must be a boolean but is a string"_s);
    EXPECT_EQ(failure(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"N","members":[],"iconPath":4})"),
              u"key \"iconPath\" must be a string or null but is a number"_s);
    EXPECT_EQ(failure(R"({"name":"N","members":[]})"), u"key \"id\" is missing"_s);
}

TEST(FontCollection, EqualityHashingAndContains)
{
    const FontCollection a{kId, u"N"_s, {{u"/A"_s, true}, {u"/b.otf"_s, false}}, std::nullopt};
    FontCollection reordered = a;
    std::swap(reordered.members[0], reordered.members[1]);
    EXPECT_NE(a, reordered);
    FontCollection withIcon = a;
    withIcon.iconPath = QString();
    EXPECT_NE(a, withIcon); // present-but-empty is not absent
    FontCollection copy = a;
    EXPECT_EQ(a, copy);
    EXPECT_EQ(qHash(a), qHash(copy));
    EXPECT_NE(CollectionMember({u"/A"_s, true}), CollectionMember({u"/A"_s, false}));

    EXPECT_TRUE(a.contains(u"/A"_s));
    EXPECT_FALSE(a.contains(u"/A/x.otf"_s)); // does not look inside folder members
    EXPECT_FALSE(a.contains(u"/a"_s));
    EXPECT_TRUE(a.contains(u"/b.otf"_s));

    const FontCollection fresh = FontCollection::create(u"New"_s);
    EXPECT_FALSE(fresh.id.isNull());
    EXPECT_NE(fresh.id, FontCollection::create(u"New"_s).id);
    EXPECT_TRUE(fresh.members.isEmpty());
    EXPECT_FALSE(fresh.iconPath.has_value());
}

TEST(SidebarItem, EqualByKindAndIdOnly)
{
    const FolderSource source{kId, u"/a"_s, u"a"_s};
    FontCollection collection{kId, u"Old name"_s, {}, std::nullopt};
    const SidebarItem asSource(source);
    const SidebarItem asCollection(collection);
    EXPECT_NE(asSource, asCollection);
    EXPECT_EQ(QSet<SidebarItem>({asSource, asCollection}).size(), 2);

    collection.name = u"New name"_s;
    collection.members.append({u"/x.otf"_s, false});
    EXPECT_EQ(SidebarItem(collection), asCollection);
    EXPECT_EQ(qHash(SidebarItem(collection)), qHash(asCollection));
    ASSERT_NE(asCollection.collection(), nullptr);
    EXPECT_EQ(asCollection.collection()->name, u"Old name"_s);
    EXPECT_EQ(asSource.collection(), nullptr);
}

TEST(FolderSearchResult, IdJoinsSourceAndFolder)
{
    const FontNode folder = FontNode::folder(u"/Fonts/Sans"_s);
    const FolderSource one{kId, u"/Fonts"_s, u"Fonts"_s};
    const FolderSource two{QUuid::createUuid(), u"/Fonts"_s, u"Fonts"_s};
    const FolderSearchResult first = FolderSearchResult::make(folder, one, {folder});
    EXPECT_EQ(first.id, u"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2:/Fonts/Sans"_s);
    EXPECT_NE(first.id, FolderSearchResult::make(folder, two, {folder}).id);
}

// A smart collection keeps its question beside its members; written back, a file with it
// is byte for byte what was read, and one without it reads as a plain collection.
TEST(FontCollectionJson, ASmartQueryRoundTripsExactly)
{
    const QByteArray written =
        R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"Hungarian sans","members":[{"path":"/a.otf","isDirectory":false}],)"
        R"("smartQuery":{"classifications":[2],"languages":["hu"],"text":"grotesk \"Ő\""}})";
    const Expected<FontCollection> read = FontCollection::fromJson(parse(written));
    ASSERT_TRUE(read) << read.error().toStdString();
    ASSERT_TRUE(read.value().isSmart());
    EXPECT_EQ(read.value().smartQuery->value("languages"_L1).toArray().at(0).toString(), u"hu"_s);
    QByteArray again;
    read.value().appendJson(again);
    EXPECT_EQ(again, written);

    // Fields a newer Morvane wrote survive the rewrite, byte for byte.
    const QByteArray newer =
        R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"Later","members":[],)"
        R"("colour":"#ff8800","pinned":true,"shared":{"with":["ana","óscar"],"since":2027}})";
    const Expected<FontCollection> later = FontCollection::fromJson(parse(newer));
    ASSERT_TRUE(later) << later.error().toStdString();
    QByteArray rewritten;
    later.value().appendJson(rewritten);
    EXPECT_EQ(parse(rewritten), parse(newer)) << rewritten.toStdString();
    EXPECT_TRUE(rewritten.contains(R"("pinned":true)")) << rewritten.toStdString();

    const Expected<FontCollection> plain = FontCollection::fromJson(
        parse(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"x","members":[],"smartQuery":null})"));
    ASSERT_TRUE(plain);
    EXPECT_FALSE(plain.value().isSmart());
    EXPECT_FALSE(FontCollection::fromJson(
        parse(R"({"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"x","members":[],"smartQuery":"hu"})")));
}
