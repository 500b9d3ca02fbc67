#pragma once

#include "model/ActivationState.h"
#include "model/SidebarItem.h"

#include <QAbstractListModel>

#include <optional>

class AppState;

// The sidebar's rows over the store: a "Sources" header, the sources (or a placeholder
// when there are none), a "Collections" header, the collections. Headers and the
// placeholder can't be selected. Copies nothing: rows point into the store's lists.
class SidebarModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum class Kind { SourcesHeader, Placeholder, Source, CollectionsHeader, Collection };
    enum Role {
        KindRole = Qt::UserRole + 1,
        CaptionRole,    // "12 fonts", "3 fonts · 1 item"; empty while unknown
        ActivationRole, // ActivationState as int
        IconRole,       // a collection's custom icon (QImage), when it loads
        FavoritesRole,  // a collection named Favorites, in any letter case
    };

    explicit SidebarModel(AppState &state, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    Kind kind(int row) const;
    // The source or collection of a row; none for headers and the placeholder.
    std::optional<SidebarItem> item(int row) const;
    int rowOf(const SidebarItem &item) const;
    int collectionsHeaderRow() const;

    // "1 font", "12 fonts", "0 items".
    static QString count(qsizetype number, const QString &noun);

private:
    std::optional<qsizetype> sourceFontCount(int sourceIndex) const;
    ActivationState activation(int row) const;
    QString caption(int row) const;
    void refreshAll(const QList<int> &roles);

    AppState &m_state;
};
