// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "FontFamilies.h"
#include "fonts/FaceRecord.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <vector>

// The catalogue's faces in memory, for questions answered within a frame: numbers per
// face and ids into tables of the distinct texts (a library of 100,000 faces has a few
// thousand distinct names). The ids are the database's own, so the database's text
// index over names answers which names a word starts.
struct IndexedFace
{
    enum Name { Family, Style, Full, PostScript, Foundry, Designer, NameCount };
    enum Text { Vendor, Version, Licence, LicenceUrl, Axes, Instances, Colour, Languages, Scripts, TextCount };

    quint32 file = 0; // 0 once removed
    quint32 coverage = 0;
    std::array<quint32, NameCount> names{};
    std::array<quint32, TextCount> texts{};
    qint32 glyphs = 0;
    // As the OS/2 table has them, out of range too (a width class of 500, a weight of
    // 28,926): such a face answers every question but those about weight or width.
    quint16 weight = 400;
    quint16 width = 5;
    qint32 faceIndex = 0;
    bool italic = false;
    bool monospaced = false;
    quint8 classification = 0;
    quint8 outline = 0;
};

class CatalogIndex
{
public:
    struct File
    {
        QString path;
        qint64 size = 0;
        qint64 modified = 0;
        quint32 folder = 0; // set by setFile()
    };

    bool isLoaded() const { return m_loaded; }
    void setLoaded() { m_loaded = true; }
    void clear();

    void setName(quint32 id, const QString &text);
    void setText(quint32 id, const QString &text);
    void setFile(quint32 id, const File &file);
    void add(const IndexedFace &face);
    // Its faces leave the answers; the slots are reused once many are free.
    void removeFacesOf(quint32 file);
    void removeFile(quint32 file);

    const std::vector<IndexedFace> &faces() const { return m_faces; }
    const QString &name(quint32 id) const { return id < m_names.size() ? m_names[id] : m_empty; }
    const QString &text(quint32 id) const { return id < m_texts.size() ? m_texts[id] : m_empty; }
    // A list text (languages, scripts, axes, colour formats, instances), split once.
    const QStringList &list(quint32 id) const { return id < m_lists.size() ? m_lists[id] : m_emptyList; }
    const File *file(quint32 id) const;
    QList<quint32> facesOf(quint32 file) const { return m_facesOfFile.value(file); } // positions in faces()
    // The folders the files are in, by number, so that a question about folders is
    // asked once per folder rather than once per face.
    const QString &folder(quint32 id) const { return m_folders[id]; }
    size_t folderCount() const { return m_folders.size(); }
    size_t nameIdLimit() const { return m_names.size(); }
    size_t textIdLimit() const { return m_texts.size(); }
    size_t coverageIdLimit() const { return m_coverage.size(); }

    // Each distinct cmap's ranges as the database keeps them (CatalogSql::encodeRanges),
    // by coverage id: loaded by the first question about characters, then kept current.
    bool hasCoverage() const { return m_coverageLoaded; }
    void setCoverageLoaded() { m_coverageLoaded = true; }
    void setCoverage(quint32 id, const QByteArray &ranges);
    const QByteArray &coverage(quint32 id) const { return id < m_coverage.size() ? m_coverage[id] : m_emptyBytes; }

    // The whole record but its code points.
    FaceRecord record(const IndexedFace &face) const;
    // What an answer's row needs.
    FoundFace found(const IndexedFace &face) const;

    // Every family, in the library's order, each with its faces in their order: built
    // once and kept until a face or name arrives or goes, so that a question answering
    // tens of thousands of families shares them rather than sorting and copying them.
    struct FamilyTable
    {
        FontFamilies::Shared families;
        std::vector<std::vector<quint32>> positions; // each family's faces, positions in faces()
        std::vector<quint32> familyOfFace;           // by position in faces(); kNoFamily once removed
    };
    static constexpr quint32 kNoFamily = quint32(-1);
    const FamilyTable &familyTable() const;

private:
    void compact();

    bool m_loaded = false;
    bool m_coverageLoaded = false;
    std::vector<QByteArray> m_coverage;
    std::vector<IndexedFace> m_faces;
    qsizetype m_removed = 0;
    std::vector<QString> m_names;
    std::vector<QString> m_texts;
    std::vector<QStringList> m_lists;
    std::vector<File> m_files; // by id; ids are the database's row numbers, dense
    std::vector<QString> m_folders;
    QHash<QString, quint32> m_folderIds;
    QHash<quint32, QList<quint32>> m_facesOfFile; // positions in m_faces
    mutable std::optional<FamilyTable> m_familyTable; // none: to be built again
    static inline const QString m_empty{};
    static inline const QStringList m_emptyList{};
    static inline const QByteArray m_emptyBytes{};
};
