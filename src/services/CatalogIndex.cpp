// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogIndex.h"
#include "model/SharedPaths.h"

#include "FontCatalog.h"

#include "discovery/NameCollator.h"

#include <QLocale>

namespace {

template <typename T>
void putAt(std::vector<T> &table, quint32 id, const T &value)
{
    if (id >= table.size())
        table.resize(size_t(id) + 1);
    table[id] = value;
}

} // namespace

void CatalogIndex::clear()
{
    *this = CatalogIndex();
}

void CatalogIndex::setName(quint32 id, const QString &text)
{
    putAt(m_names, id, text);
    m_familyTable.reset();
}

void CatalogIndex::setText(quint32 id, const QString &text)
{
    putAt(m_texts, id, text);
    if (id < m_lists.size())
        m_lists[id] = {}; // an id the database reused: split again when a list needs it
}

void CatalogIndex::setCoverage(quint32 id, const QByteArray &ranges)
{
    putAt(m_coverage, id, ranges);
}

void CatalogIndex::setFile(quint32 id, const File &file)
{
    const QString folder = file.path.left(std::max<qsizetype>(file.path.lastIndexOf(u'/'), 0));
    auto known = m_folderIds.constFind(folder);
    if (known == m_folderIds.cend()) {
        known = m_folderIds.insert(folder, quint32(m_folders.size()));
        m_folders.push_back(folder);
    }
    File entry = file;
    entry.path = SharedPaths::share(file.path);
    entry.folder = *known;
    putAt(m_files, id, entry);
}

void CatalogIndex::add(const IndexedFace &face)
{
    // Lists are split once, when the first face that lists them arrives. Instance names
    // have spaces: they are kept one per line, every other list word by word.
    for (const int column : {IndexedFace::Axes, IndexedFace::Instances, IndexedFace::Colour, IndexedFace::Languages,
                             IndexedFace::Scripts}) {
        const quint32 id = face.texts[size_t(column)];
        if (id >= m_lists.size())
            m_lists.resize(size_t(id) + 1);
        if (m_lists[id].isEmpty() && !text(id).isEmpty()) {
            const QString &joined = text(id);
            m_lists[id] = joined.split(joined.contains(u'\n') ? u'\n' : u' ', Qt::SkipEmptyParts);
        }
    }
    m_facesOfFile[face.file].append(quint32(m_faces.size()));
    m_faces.push_back(face);
    m_familyTable.reset();
}

void CatalogIndex::removeFacesOf(quint32 file)
{
    const QList<quint32> positions = m_facesOfFile.take(file);
    for (const quint32 at : positions)
        m_faces[at].file = 0;
    m_removed += positions.size();
    m_familyTable.reset();
    if (m_removed > 1024 && m_removed * 4 > qsizetype(m_faces.size()))
        compact();
}

const CatalogIndex::FamilyTable &CatalogIndex::familyTable() const
{
    if (m_familyTable)
        return *m_familyTable;
    std::vector<qint32> groupOf(m_names.size(), -1);
    std::vector<std::pair<quint32, std::vector<quint32>>> groups; // family name id, faces
    for (quint32 at = 0; at < m_faces.size(); ++at) {
        const quint32 family = m_faces[at].names[IndexedFace::Family];
        if (m_faces[at].file == 0 || family >= groupOf.size())
            continue;
        if (groupOf[family] < 0) {
            groupOf[family] = qint32(groups.size());
            groups.push_back({family, {}});
        }
        groups[size_t(groupOf[family])].second.push_back(at);
    }
    NameCollator(QLocale()).stableSort(groups, [this](const auto &group) { return QStringView(m_names[group.first]); });

    FamilyTable table;
    auto families = std::make_shared<std::vector<FontFamily>>();
    families->reserve(groups.size());
    table.familyOfFace.assign(m_faces.size(), kNoFamily);
    for (auto &[familyName, positions] : groups) {
        // Narrow to wide, light to heavy, upright first; then by style name, then as indexed.
        std::sort(positions.begin(), positions.end(), [this](quint32 a, quint32 b) {
            const IndexedFace &x = m_faces[a], &y = m_faces[b];
            if (std::tie(x.width, x.weight, x.italic) != std::tie(y.width, y.weight, y.italic))
                return std::tie(x.width, x.weight, x.italic) < std::tie(y.width, y.weight, y.italic);
            if (x.names[IndexedFace::Style] != y.names[IndexedFace::Style]) {
                const int styles = name(x.names[IndexedFace::Style]).compare(name(y.names[IndexedFace::Style]));
                if (styles != 0)
                    return styles < 0;
            }
            return a < b;
        });
        FontFamily family{m_names[familyName], {}};
        family.faces.reserve(qsizetype(positions.size()));
        for (const quint32 at : positions) {
            family.faces.append(found(m_faces[at]));
            table.familyOfFace[at] = quint32(families->size());
        }
        families->push_back(std::move(family));
        table.positions.push_back(std::move(positions));
    }
    table.families = std::move(families);
    m_familyTable = std::move(table);
    return *m_familyTable;
}

void CatalogIndex::removeFile(quint32 file)
{
    removeFacesOf(file);
    if (file < m_files.size())
        m_files[file] = {};
}

const CatalogIndex::File *CatalogIndex::file(quint32 id) const
{
    return id < m_files.size() && !m_files[id].path.isEmpty() ? &m_files[id] : nullptr;
}

void CatalogIndex::compact()
{
    m_familyTable.reset();
    std::erase_if(m_faces, [](const IndexedFace &face) { return face.file == 0; });
    m_removed = 0;
    m_facesOfFile.clear();
    for (quint32 at = 0; at < m_faces.size(); ++at)
        m_facesOfFile[m_faces[at].file].append(at);
}

FaceRecord CatalogIndex::record(const IndexedFace &face) const
{
    FaceRecord r;
    if (const File *where = file(face.file)) {
        r.path = where->path;
        r.size = where->size;
        r.modified = where->modified;
    }
    r.faceIndex = face.faceIndex;
    r.family = name(face.names[IndexedFace::Family]);
    r.style = name(face.names[IndexedFace::Style]);
    r.fullName = name(face.names[IndexedFace::Full]);
    r.postScriptName = name(face.names[IndexedFace::PostScript]);
    r.foundry = name(face.names[IndexedFace::Foundry]);
    r.designer = name(face.names[IndexedFace::Designer]);
    r.weight = face.weight;
    r.width = face.width;
    r.italic = face.italic;
    r.monospaced = face.monospaced;
    r.classification = FaceRecord::Classification(face.classification);
    r.vendorId = text(face.texts[IndexedFace::Vendor]);
    r.version = text(face.texts[IndexedFace::Version]);
    r.licence = text(face.texts[IndexedFace::Licence]);
    r.licenceUrl = text(face.texts[IndexedFace::LicenceUrl]);
    r.outline = FaceRecord::Outline(face.outline);
    r.axes = list(face.texts[IndexedFace::Axes]);
    r.namedInstances = list(face.texts[IndexedFace::Instances]);
    r.colourFormats = list(face.texts[IndexedFace::Colour]);
    r.glyphCount = face.glyphs;
    r.languages = list(face.texts[IndexedFace::Languages]);
    r.scripts = list(face.texts[IndexedFace::Scripts]);
    return r;
}

FoundFace CatalogIndex::found(const IndexedFace &face) const
{
    const File *where = file(face.file);
    return FoundFace{
        .path = where ? where->path : QString(),
        .faceIndex = face.faceIndex,
        .style = name(face.names[IndexedFace::Style]),
        .postScriptName = name(face.names[IndexedFace::PostScript]),
        .weight = face.weight,
        .width = face.width,
        .italic = face.italic,
        .variable = !text(face.texts[IndexedFace::Axes]).isEmpty(),
        .classification = FaceRecord::Classification(face.classification),
        .glyphCount = face.glyphs,
    };
}
