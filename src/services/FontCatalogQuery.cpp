// SPDX-License-Identifier: GPL-3.0-or-later
// Asking the catalogue: the filters in SQL over the face table and its text index,
// families gathered and sorted as the library sorts names.
#include "FontCatalog.h"

#include "CatalogSql.h"
#include "discovery/NameCollator.h"

#include <QLocale>

#include <algorithm>
#include <variant>
#include <vector>

using namespace Qt::StringLiterals;
using CatalogSql::Statement;

namespace {

constexpr const char *kColumns =
    "files.path, f.face, f.family, f.style, f.full, f.ps, f.weight, f.width, f.italic, f.mono, f.class, f.foundry, "
    "f.designer, f.vendor, f.version, f.licence, f.licence_url, f.outline, f.axes, f.instances, f.colour, f.glyphs, "
    "f.languages, f.scripts, f.coverage, files.size, files.mtime";
constexpr int kLanguagesColumn = 22;
constexpr int kCoverageColumn = 24;

FaceRecord faceFrom(const Statement &row, CatalogSql::SharedTexts &shared)
{
    FaceRecord r;
    r.path = row.text(0);
    r.faceIndex = static_cast<int>(row.number(1));
    r.family = shared.text(row.raw(2));
    r.style = shared.text(row.raw(3));
    r.fullName = row.text(4);
    r.postScriptName = row.text(5);
    r.weight = static_cast<int>(row.number(6));
    r.width = static_cast<int>(row.number(7));
    r.italic = row.number(8) != 0;
    r.monospaced = row.number(9) != 0;
    r.classification = static_cast<FaceRecord::Classification>(row.number(10));
    r.foundry = shared.text(row.raw(11));
    r.designer = shared.text(row.raw(12));
    r.vendorId = shared.text(row.raw(13));
    r.version = shared.text(row.raw(14));
    r.licence = shared.text(row.raw(15));
    r.licenceUrl = shared.text(row.raw(16));
    r.outline = static_cast<FaceRecord::Outline>(row.number(17));
    r.axes = shared.words(row.raw(18));
    r.namedInstances = shared.words(row.raw(19), u'\n');
    r.colourFormats = shared.words(row.raw(20));
    r.glyphCount = row.number(21);
    r.languages = shared.words(row.raw(kLanguagesColumn));
    r.scripts = shared.words(row.raw(23));
    r.size = row.number(25);
    r.modified = row.number(26);
    return r;
}

// Faces of a family: narrow to wide, light to heavy, upright before italic.
bool styleBefore(const FaceRecord &a, const FaceRecord &b)
{
    return std::tie(a.width, a.weight, a.italic, a.style, a.path, a.faceIndex)
           < std::tie(b.width, b.weight, b.italic, b.style, b.path, b.faceIndex);
}

int stopWhenCancelled(void *cancelled)
{
    return static_cast<const std::atomic_bool *>(cancelled)->load() ? 1 : 0;
}

// The query's clauses and their values, bound in the order the clauses come.
class Where
{
public:
    QByteArray sql;
    void add(const QByteArray &clause, const QString &value)
    {
        sql += clause;
        m_values.append(value);
    }
    void add(const QByteArray &clause, qint64 value)
    {
        sql += clause;
        m_values.append(value);
    }
    void bindTo(Statement &statement) const
    {
        int at = 0;
        for (const std::variant<QString, qint64> &value : m_values) {
            if (const auto *text = std::get_if<QString>(&value))
                statement.bind(++at, *text);
            else
                statement.bind(++at, std::get<qint64>(value));
        }
    }

private:
    QList<std::variant<QString, qint64>> m_values;
};

Where whereFor(const FontQuery &query)
{
    Where where;
    // Each word a prefix of some word of the names or makers: "dej san" finds DejaVu Sans.
    QStringList terms;
    for (QString word : query.text.split(u' ', Qt::SkipEmptyParts)) {
        word.remove(u'"');
        if (!word.isEmpty())
            terms.append(u'"' + word + u"\"*"_s);
    }
    if (!terms.isEmpty())
        where.add(" AND f.id IN (SELECT rowid FROM faces_text WHERE faces_text MATCH ?)", terms.join(u' '));
    // Whole words of the space-separated lists, as written (script tags have case).
    for (const QString &language : query.languages)
        where.add(" AND instr(' ' || f.languages || ' ', ?) > 0", u' ' + language + u' ');
    for (const QString &script : query.scripts)
        where.add(" AND instr(' ' || f.scripts || ' ', ?) > 0", u' ' + script + u' ');
    const auto anyOf = [&](const char *column, const auto &values) {
        if (values.isEmpty())
            return;
        where.sql += QByteArray(" AND ") + column + " IN (";
        for (qsizetype i = 0; i < values.size(); ++i)
            where.add(i ? ",?" : "?", qint64(values.at(i)));
        where.sql += ")";
    };
    anyOf("f.class", query.classifications);
    anyOf("f.outline", query.formats);
    if (query.minWeight > 0)
        where.add(" AND f.weight >= ?", qint64(query.minWeight));
    if (query.maxWeight < 1000)
        where.add(" AND f.weight <= ?", qint64(query.maxWeight));
    if (query.minWidth > 1)
        where.add(" AND f.width >= ?", qint64(query.minWidth));
    if (query.maxWidth < 9)
        where.add(" AND f.width <= ?", qint64(query.maxWidth));
    if (query.italic)
        where.add(" AND f.italic = ?", qint64(*query.italic));
    if (query.monospaced)
        where.add(" AND f.mono = ?", qint64(*query.monospaced));
    if (query.variable)
        where.sql += *query.variable ? " AND f.axes != ''" : " AND f.axes = ''";
    if (query.colour)
        where.sql += *query.colour ? " AND f.colour != ''" : " AND f.colour = ''";
    if (query.duplicates)
        where.sql += " AND (f.ps, f.version) IN (SELECT ps, version FROM faces WHERE ps != '' "
                     "GROUP BY ps, version HAVING count(DISTINCT file) > 1)";
    return where;
}

} // namespace

qsizetype FontQueryAnswer::faceCount() const
{
    qsizetype count = 0;
    for (const FontFamily &family : families)
        count += family.faces.size();
    return count;
}

QList<FaceRecord> FontQueryAnswer::faces() const
{
    QList<FaceRecord> all;
    all.reserve(faceCount());
    for (const FontFamily &family : families)
        all += family.faces;
    return all;
}

FontQueryAnswer FontCatalog::query(const FontQuery &query, const FaceFilter &keep, const std::atomic_bool *cancelled) const
{
    const std::lock_guard lock(m_mutex);
    FontQueryAnswer answer;
    if (!m_db)
        return answer;
    const Where where = whereFor(query);
    Statement select(m_db, QByteArray("SELECT ") + kColumns + " FROM faces f JOIN files ON files.id = f.file WHERE 1"
                               + where.sql);
    if (!select)
        return answer;
    where.bindTo(select);

    QList<char32_t> required;
    for (const char32_t c : query.requiredCharacters.toUcs4()) {
        if (!QChar::isSpace(c))
            required.append(c);
    }
    // Families share their cmaps: each distinct coverage is looked at once.
    QHash<qint64, bool> coverageAnswers;
    Statement coverage(m_db, "SELECT ranges FROM coverage WHERE id = ?");
    const auto coversRequired = [&](qint64 id) {
        const auto known = coverageAnswers.constFind(id);
        if (known != coverageAnswers.cend())
            return *known;
        FaceRecord ranges;
        coverage.bind(1, id);
        if (coverage.step())
            ranges.codePoints = CatalogSql::decodeRanges(coverage.bytes(0));
        coverage.reset();
        const bool covers = std::all_of(required.cbegin(), required.cend(), [&](char32_t c) { return ranges.covers(c); });
        coverageAnswers.insert(id, covers);
        return covers;
    };

    if (cancelled)
        sqlite3_progress_handler(m_db, 1000, stopWhenCancelled, const_cast<std::atomic_bool *>(cancelled));
    CatalogSql::SharedTexts shared;
    QHash<QString, qsizetype> familyAt;
    QHash<QByteArray, int> languageLists; // each distinct list of languages, and how many faces have it
    while (select.step()) {
        if (!required.isEmpty() && !coversRequired(select.number(kCoverageColumn)))
            continue;
        FaceRecord face = faceFrom(select, shared);
        if (keep && !keep(face))
            continue;
        const QByteArray languages = select.raw(kLanguagesColumn);
        ++languageLists[QByteArray(languages.constData(), languages.size())]; // a copy: the row goes
        ++answer.classificationCounts[face.classification];
        auto at = familyAt.constFind(face.family);
        if (at == familyAt.cend()) {
            at = familyAt.insert(face.family, answer.families.size());
            answer.families.append({face.family, {}});
        }
        answer.families[*at].faces.append(std::move(face));
        if (cancelled && cancelled->load())
            break;
    }
    if (cancelled) {
        sqlite3_progress_handler(m_db, 0, nullptr, nullptr);
        if (cancelled->load())
            return FontQueryAnswer{.cancelled = true};
    }
    for (auto it = languageLists.cbegin(); it != languageLists.cend(); ++it) {
        for (const QString &language : shared.words(it.key()))
            answer.languageCounts[language] += it.value();
    }
    for (FontFamily &family : answer.families)
        std::sort(family.faces.begin(), family.faces.end(), styleBefore);
    std::vector<FontFamily> sorted(std::make_move_iterator(answer.families.begin()),
                                   std::make_move_iterator(answer.families.end()));
    NameCollator(QLocale()).stableSort(sorted, [](const FontFamily &family) { return QStringView(family.name); });
    answer.families = QList<FontFamily>(std::make_move_iterator(sorted.begin()), std::make_move_iterator(sorted.end()));
    return answer;
}

std::optional<FaceRecord> FontCatalog::face(const QString &path, int faceIndex) const
{
    const std::lock_guard lock(m_mutex);
    if (!m_db)
        return std::nullopt;
    Statement select(m_db, QByteArray("SELECT ") + kColumns + ", coverage.ranges FROM faces f JOIN files ON files.id = f.file "
                               "JOIN coverage ON coverage.id = f.coverage WHERE files.path = ? AND f.face = ?");
    select.bind(1, path);
    select.bind(2, qint64(faceIndex));
    if (!select.step())
        return std::nullopt;
    CatalogSql::SharedTexts shared;
    FaceRecord record = faceFrom(select, shared);
    record.codePoints = CatalogSql::decodeRanges(select.bytes(27));
    return record;
}

QSet<QString> FontCatalog::sharedPostScriptNames(const QSet<QString> &paths) const
{
    const std::lock_guard lock(m_mutex);
    QSet<QString> shared;
    if (!m_db || paths.size() < 2)
        return shared;
    QHash<QString, QString> firstFileOf; // PostScript name → a file that has it
    Statement all(m_db, "SELECT files.path, f.ps FROM faces f JOIN files ON files.id = f.file WHERE f.ps != ''");
    while (all.step()) {
        const QString path = all.text(0);
        if (!paths.contains(path))
            continue;
        const QString name = all.text(1);
        const auto first = firstFileOf.constFind(name);
        if (first == firstFileOf.cend())
            firstFileOf.insert(name, path);
        else if (*first != path)
            shared.insert(name);
    }
    return shared;
}
