// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ActivationState.h"
#include "model/SidebarItem.h"

#include "ui/common/RowSync.h"

#include <optional>

class AppState;

// The sidebar's rows over the store: the sources (or a placeholder when there are
// none), then the collections. The placeholder can't be selected. It keeps its own copy
// of the two lists and follows the store's changes row by row, so the lists keep their
// selection, editor and scroll position.
class SidebarModel : public SyncedListModel
{
    Q_OBJECT

public:
    enum class Kind { Placeholder, Source, Collection };
    enum Role {
        KindRole = Qt::UserRole + 1,
        CaptionRole,    // "12 fonts", "3 fonts · 1 item"; empty while unknown
        ActivationRole, // ActivationState as int
        IconRole,       // a collection's custom icon (QImage), when it loads
        FavoritesRole,  // a collection named Favorites, in any letter case
        SmartRole,      // a smart collection (its members a catalogue question's answer)
    };

    explicit SidebarModel(AppState &state, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    Kind kind(int row) const;
    // The source or collection of a row; none for the placeholder.
    std::optional<SidebarItem> item(int row) const;
    int rowOf(const SidebarItem &item) const;
    int firstCollectionRow() const;

    // "1 font", "12 fonts", "0 items".
    static QString fontCount(qsizetype number);
    static QString itemCount(qsizetype number);
    // A collection named Favorites, in any letter case, gets the star.
    static bool isFavorites(const QString &name);
    // "inactive", "active", "mixed": what screen readers hear of a row's button.
    static QString stateWord(ActivationState state);

Q_SIGNALS:
    // Around each catch-up with the store: rows moving then are not the user's doing.
    void aboutToSync();
    void synced();

private:
    void sync();
    std::optional<qsizetype> sourceFontCount(int sourceIndex) const;
    ActivationState activation(int row) const;
    QString caption(int row) const;
    void refreshAll(const QList<int> &roles);

    AppState &m_state;
    QList<FolderSource> m_sources; // one without an id while there are none: the placeholder
    QList<FontCollection> m_collections;
};
