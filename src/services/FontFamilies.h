// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fonts/FaceRecord.h"

#include <QList>
#include <QString>

#include <iterator>
#include <memory>
#include <vector>

// A face as an answer lists it: enough to show, sort and act on a row of a long list
// cheaply; FontCatalog::face() has the whole record.
struct FoundFace
{
    QString path;
    int faceIndex = 0;
    QString style;
    QString postScriptName;
    int weight = 400;
    int width = 5;
    bool italic = false;
    bool variable = false;
    FaceRecord::Classification classification = FaceRecord::Classification::Unknown;
    qint64 glyphCount = 0;
};

// A family of the answer, its faces by width, weight, then upright before italic.
struct FontFamily
{
    QString name;
    QList<FoundFace> faces;
};

// The families of an answer, in order. A family all of whose faces answer is the
// catalogue's own, shared (the catalogue lists every family once per change of the
// library); one only some of whose faces answer is a copy of its own. So a question
// whose answer is 50,000 families copies no face, and touches no family it leaves out.
class FontFamilies
{
public:
    using Shared = std::shared_ptr<const std::vector<FontFamily>>;

    qsizetype size() const { return qsizetype(m_rows.size()); }
    bool isEmpty() const { return m_rows.empty(); }
    qsizetype faceCount() const { return m_faceCount; }
    const FontFamily &at(qsizetype i) const
    {
        const quint32 row = m_rows[size_t(i)];
        return row & kOwn ? m_own[row & ~kOwn] : (*m_shared)[row];
    }
    const FontFamily &operator[](qsizetype i) const { return at(i); }

    // The catalogue's list that appendShared() picks from.
    void share(Shared families) { m_shared = std::move(families); }
    void appendShared(quint32 family)
    {
        m_rows.push_back(family);
        m_faceCount += (*m_shared)[family].faces.size();
    }
    void append(FontFamily family)
    {
        m_rows.push_back(kOwn | quint32(m_own.size()));
        m_faceCount += family.faces.size();
        m_own.push_back(std::move(family));
    }
    void reserve(qsizetype count) { m_rows.reserve(size_t(count)); }

    class const_iterator
    {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = FontFamily;
        using difference_type = qsizetype;
        using pointer = const FontFamily *;
        using reference = const FontFamily &;

        const_iterator() = default;
        const_iterator(const FontFamilies *families, qsizetype at) : m_families(families), m_at(at) {}
        reference operator*() const { return m_families->at(m_at); }
        pointer operator->() const { return &m_families->at(m_at); }
        const_iterator &operator++() { ++m_at; return *this; }
        const_iterator operator++(int) { const_iterator was = *this; ++m_at; return was; }
        const_iterator &operator--() { --m_at; return *this; }
        const_iterator &operator+=(difference_type n) { m_at += n; return *this; }
        const_iterator operator+(difference_type n) const { return {m_families, m_at + n}; }
        const_iterator operator-(difference_type n) const { return {m_families, m_at - n}; }
        difference_type operator-(const const_iterator &other) const { return m_at - other.m_at; }
        reference operator[](difference_type n) const { return m_families->at(m_at + n); }
        friend bool operator==(const const_iterator &a, const const_iterator &b) { return a.m_at == b.m_at; }
        friend auto operator<=>(const const_iterator &a, const const_iterator &b) { return a.m_at <=> b.m_at; }

    private:
        const FontFamilies *m_families = nullptr;
        qsizetype m_at = 0;
    };
    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, size()}; }
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }

private:
    static constexpr quint32 kOwn = 0x80000000u;
    Shared m_shared;
    std::vector<quint32> m_rows; // an index into m_shared, or kOwn | an index into m_own
    std::vector<FontFamily> m_own;
    qsizetype m_faceCount = 0;
};
