// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CollectionRecords.h"
#include "FolderSource.h"

#include <variant>

// One of the library's own lists of every font, above the sources.
struct LibraryView
{
    // Duplicates: faces whose PostScript name and version more than one file has;
    // Conflicts: active faces whose PostScript name another active file has too.
    enum Kind { AllFonts, ActiveFonts, Duplicates, Conflicts };
    static constexpr int kKinds = 4;
    Kind kind = AllFonts;
    QUuid id{}; // fixed per kind, so that items compare as sources and collections do

    static LibraryView of(Kind kind);
};

// The sidebar's selection: a library view, a source or a collection. Equal when of the
// same kind with the same id, so a renamed collection still matches the older selection.
class SidebarItem
{
public:
    explicit SidebarItem(FolderSource source) : m_payload(std::move(source)) {}
    explicit SidebarItem(FontCollection collection) : m_payload(std::move(collection)) {}
    explicit SidebarItem(LibraryView view) : m_payload(view) {}

    bool isSource() const { return m_payload.index() == 0; }
    bool isCollection() const { return m_payload.index() == 1; }
    bool isLibrary() const { return m_payload.index() == 2; }
    int kindIndex() const { return int(m_payload.index()); }
    const FolderSource *source() const { return std::get_if<FolderSource>(&m_payload); }
    const FontCollection *collection() const { return std::get_if<FontCollection>(&m_payload); }
    const LibraryView *library() const { return std::get_if<LibraryView>(&m_payload); }
    QUuid payloadId() const;

    friend bool operator==(const SidebarItem &a, const SidebarItem &b)
    {
        return a.m_payload.index() == b.m_payload.index() && a.payloadId() == b.payloadId();
    }

private:
    std::variant<FolderSource, FontCollection, LibraryView> m_payload;
};

size_t qHash(const SidebarItem &item, size_t seed = 0) noexcept;
