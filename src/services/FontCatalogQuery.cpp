// SPDX-License-Identifier: GPL-3.0-or-later
// Asking the catalogue: one pass over the faces in memory, with each distinct text
// judged once (the word index says which names a word starts; a language list or a
// cmap is looked at once however many faces share it), families sorted as the library
// sorts names.
#include "FontCatalog.h"

#include "CatalogSql.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <vector>

using namespace Qt::StringLiterals;
using CatalogSql::Statement;

namespace {

// A yes or no per distinct text, worked out when first asked.
class Memo
{
public:
    explicit Memo(size_t size) : m_answers(size, -1) {}
    template <typename Judge>
    bool operator()(quint32 id, Judge judge)
    {
        if (id >= m_answers.size())
            return judge();
        if (m_answers[id] < 0)
            m_answers[id] = judge() ? 1 : 0;
        return m_answers[id] == 1;
    }

private:
    std::vector<qint8> m_answers;
};

bool containsAll(const QStringList &list, const QStringList &wanted)
{
    return std::all_of(wanted.cbegin(), wanted.cend(), [&](const QString &w) { return list.contains(w); });
}

template <typename Enum>
quint32 maskOf(const QList<Enum> &values)
{
    quint32 mask = 0;
    for (const Enum value : values)
        mask |= 1u << quint32(value);
    return mask;
}

bool isUnder(QStringView path, const QString &root)
{
    return path.startsWith(root) && (root == u"/"_s || path.size() == root.size() || path.at(root.size()) == u'/');
}

} // namespace

QList<FoundFace> FontQueryAnswer::faces() const
{
    QList<FoundFace> all;
    all.reserve(faceCount());
    for (const FontFamily &family : families)
        all += family.faces;
    return all;
}

FontQueryAnswer FontCatalog::query(const FontQuery &query, const FaceFilter &keep, const QStringList &countIn,
                                   const std::atomic_bool *cancelled) const
{
    const std::lock_guard lock(m_mutex);
    FontQueryAnswer answer;
    if (!m_db)
        return answer;
    loadIndex();
    const CatalogIndex &index = m_index;
    const std::vector<IndexedFace> &faces = index.faces();

    // Each word a prefix of some word of the face's names or makers: "dej san" finds
    // DejaVu Sans. The word index says which distinct names each word starts.
    std::vector<std::vector<bool>> namesOfWord;
    for (QString word : query.text.split(u' ', Qt::SkipEmptyParts)) {
        word.remove(u'"');
        // "noto -", "noto & sans": a word of punctuation alone matches no name, and
        // would empty the answer. Code points, so a letter beyond the BMP counts.
        const QList<uint> codePoints = word.toUcs4();
        if (std::none_of(codePoints.cbegin(), codePoints.cend(), [](uint c) { return QChar::isLetterOrNumber(char32_t(c)); }))
            continue;
        std::vector<bool> hit(index.nameIdLimit(), false);
        Statement match(m_db, "SELECT rowid FROM names_words WHERE names_words MATCH ?");
        match.bind(1, u'"' + word + u"\"*"_s);
        while (match.step()) {
            const auto id = quint64(match.number(0));
            if (id < hit.size())
                hit[id] = true;
        }
        namesOfWord.push_back(std::move(hit));
    }
    const FontQuery everything;
    const bool byWeight = query.minWeight != everything.minWeight || query.maxWeight != everything.maxWeight;
    const bool byWidth = query.minWidth != everything.minWidth || query.maxWidth != everything.maxWidth;
    Memo languagesMatch(index.textIdLimit()), scriptsMatch(index.textIdLimit());
    const quint32 classes = maskOf(query.classifications), formats = maskOf(query.formats);

    // Duplicates: a PostScript name and version that more than one file has.
    QSet<quint64> duplicated;
    if (query.duplicates) {
        QHash<quint64, quint32> firstFile;
        for (const IndexedFace &face : faces) {
            if (face.file == 0 || index.name(face.names[IndexedFace::PostScript]).isEmpty())
                continue;
            const quint64 key = quint64(face.names[IndexedFace::PostScript]) << 32 | face.texts[IndexedFace::Version];
            const auto first = firstFile.constFind(key);
            if (first == firstFile.cend())
                firstFile.insert(key, face.file);
            else if (*first != face.file)
                duplicated.insert(key);
        }
    }

    // Required characters: each distinct cmap judged once, from memory.
    QList<char32_t> required;
    for (const char32_t c : query.requiredCharacters.toUcs4()) {
        if (!QChar::isSpace(c))
            required.append(c);
    }
    std::sort(required.begin(), required.end());
    required.erase(std::unique(required.begin(), required.end()), required.end());
    if (!required.isEmpty())
        loadCoverage();
    Memo coverageMatch(m_index.coverageIdLimit());
    const auto coversRequired = [&](quint32 id) {
        return coverageMatch(id, [&] { return CatalogSql::coversAll(m_index.coverage(id), required); });
    };

    std::vector<quint32> found;
    for (quint32 at = 0; at < faces.size(); ++at) {
        if (cancelled && (at & 4095) == 0 && cancelled->load())
            return FontQueryAnswer{.cancelled = true};
        const IndexedFace &face = faces[at];
        // A weight or width asked about keeps only faces whose class is known and in range;
        // one not asked about hides no face, whatever its OS/2 table says.
        if (face.file == 0
            || (byWeight && (face.weight < 1 || face.weight > 1000 || face.weight < query.minWeight || face.weight > query.maxWeight))
            || (byWidth && (face.width < 1 || face.width > 9 || face.width < query.minWidth || face.width > query.maxWidth)))
            continue;
        if ((query.italic && face.italic != *query.italic) || (query.monospaced && face.monospaced != *query.monospaced))
            continue;
        if ((classes && !(classes & (1u << face.classification))) || (formats && !(formats & (1u << face.outline))))
            continue;
        if (query.variable && index.text(face.texts[IndexedFace::Axes]).isEmpty() == *query.variable)
            continue;
        if (query.colour && index.text(face.texts[IndexedFace::Colour]).isEmpty() == *query.colour)
            continue;
        const bool wordsMatch = std::all_of(namesOfWord.cbegin(), namesOfWord.cend(), [&](const std::vector<bool> &hit) {
            return std::any_of(face.names.cbegin(), face.names.cend(), [&](quint32 id) { return id < hit.size() && hit[id]; });
        });
        if (!wordsMatch)
            continue;
        const quint32 languages = face.texts[IndexedFace::Languages], scripts = face.texts[IndexedFace::Scripts];
        if (!query.languages.isEmpty()
            && !languagesMatch(languages, [&] { return containsAll(index.list(languages), query.languages); }))
            continue;
        if (!query.scripts.isEmpty() && !scriptsMatch(scripts, [&] { return containsAll(index.list(scripts), query.scripts); }))
            continue;
        if (query.duplicates
            && !duplicated.contains(quint64(face.names[IndexedFace::PostScript]) << 32 | face.texts[IndexedFace::Version]))
            continue;
        if (!required.isEmpty() && !coversRequired(face.coverage))
            continue;
        if (keep) {
            const CatalogIndex::File *file = index.file(face.file);
            if (!file || !keep(file->path, index.name(face.names[IndexedFace::PostScript])))
                continue;
        }
        found.push_back(at);
    }

    // Counts for the filter menus: each distinct language list once.
    std::vector<int> languageLists(index.textIdLimit(), 0);
    std::array<int, 16> classCounts{};
    QList<QString> roots;
    for (const QString &folder : countIn)
        roots.append(QDir::cleanPath(folder));
    std::vector<int> rootCounts(size_t(roots.size()), 0);
    // Which roots each folder is under, worked out once per folder.
    std::vector<QList<qsizetype>> rootsOfFolder(roots.isEmpty() ? 0 : index.folderCount());
    std::vector<bool> folderSeen(rootsOfFolder.size(), false);
    for (const quint32 at : found) {
        const IndexedFace &face = faces[at];
        const quint32 languages = face.texts[IndexedFace::Languages];
        if (languages < languageLists.size())
            ++languageLists[languages];
        ++classCounts[face.classification & 15];
        const CatalogIndex::File *file = roots.isEmpty() ? nullptr : index.file(face.file);
        if (!file)
            continue;
        if (!folderSeen[file->folder]) {
            folderSeen[file->folder] = true;
            for (qsizetype r = 0; r < roots.size(); ++r) {
                if (isUnder(index.folder(file->folder), roots.at(r)))
                    rootsOfFolder[file->folder].append(r);
            }
        }
        for (const qsizetype r : std::as_const(rootsOfFolder[file->folder]))
            ++rootCounts[size_t(r)];
    }
    for (quint32 id = 0; id < languageLists.size(); ++id) {
        if (languageLists[id] == 0)
            continue;
        for (const QString &language : index.list(id))
            answer.languageCounts[language] += languageLists[id];
    }
    for (size_t c = 0; c < classCounts.size(); ++c) {
        if (classCounts[c])
            answer.classificationCounts.insert(FaceRecord::Classification(c), classCounts[c]);
    }
    for (qsizetype r = 0; r < roots.size(); ++r) {
        if (rootCounts[size_t(r)])
            answer.sourceCounts.insert(countIn.at(r), rootCounts[size_t(r)]);
    }

    // Families in the library's order, each with its faces in order: a family whose every
    // face answers is the catalogue's own, shared; one only some of whose faces answer gets
    // a list of those.
    const CatalogIndex::FamilyTable &table = index.familyTable();
    const std::vector<FontFamily> &all = *table.families;
    std::vector<quint32> answering(all.size(), 0);
    std::vector<bool> answers(faces.size(), false);
    for (const quint32 at : found) {
        const quint32 family = table.familyOfFace[at];
        if (family != CatalogIndex::kNoFamily) {
            ++answering[family];
            answers[at] = true;
        }
    }
    answer.families.share(table.families);
    for (quint32 family = 0; family < all.size(); ++family) {
        const std::vector<quint32> &positions = table.positions[family];
        if (answering[family] == 0)
            continue;
        if (answering[family] == positions.size()) {
            answer.families.appendShared(family);
            continue;
        }
        FontFamily some{all[family].name, {}};
        for (size_t i = 0; i < positions.size(); ++i) {
            if (answers[positions[i]])
                some.faces.append(all[family].faces.at(qsizetype(i)));
        }
        answer.families.append(std::move(some));
    }
    return answer;
}

qsizetype FontCatalog::countFaces(const FaceFilter &keep) const
{
    const std::lock_guard lock(m_mutex);
    if (!m_db)
        return 0;
    loadIndex();
    m_index.familyTable(); // the list's first question, asked next, then finds its families ready
    qsizetype count = 0;
    for (const IndexedFace &face : m_index.faces()) {
        const CatalogIndex::File *file = face.file ? m_index.file(face.file) : nullptr;
        if (file && (!keep || keep(file->path, m_index.name(face.names[IndexedFace::PostScript]))))
            ++count;
    }
    return count;
}

std::optional<FaceRecord> FontCatalog::face(const QString &path, int faceIndex) const
{
    const std::lock_guard lock(m_mutex);
    if (!m_db)
        return std::nullopt;
    loadIndex();
    Statement file(m_db, "SELECT id FROM files WHERE path = ?");
    file.bind(1, path);
    if (!file.step())
        return std::nullopt;
    for (const quint32 at : m_index.facesOf(quint32(file.number(0)))) {
        const IndexedFace &face = m_index.faces()[at];
        if (face.faceIndex != faceIndex)
            continue;
        FaceRecord record = m_index.record(face);
        loadCoverage();
        record.codePoints = CatalogSql::decodeRanges(m_index.coverage(face.coverage));
        return record;
    }
    return std::nullopt;
}

QSet<QString> FontCatalog::sharedPostScriptNames(const QSet<QString> &paths) const
{
    const std::lock_guard lock(m_mutex);
    QSet<QString> shared;
    if (!m_db || paths.size() < 2)
        return shared;
    loadIndex();
    QHash<quint32, quint32> firstFileOf; // PostScript name → a file that has it
    for (const IndexedFace &face : m_index.faces()) {
        const CatalogIndex::File *file = face.file ? m_index.file(face.file) : nullptr;
        const quint32 name = face.names[IndexedFace::PostScript];
        if (!file || !paths.contains(file->path) || m_index.name(name).isEmpty())
            continue;
        const auto first = firstFileOf.constFind(name);
        if (first == firstFileOf.cend())
            firstFileOf.insert(name, face.file);
        else if (*first != face.file)
            shared.insert(m_index.name(name));
    }
    return shared;
}
