// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ActivationState.h"
#include "services/FontCatalog.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QSet>

#include <vector>

class AppState;

// The font list's rows: a row per family of a catalogue answer, in its order, and under
// each a row per face. A family is active when all its faces' files are, mixed when some.
class FontListModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Role {
        ActivationRole = Qt::UserRole + 1, // ActivationState as int
        CaptionRole,                       // a family's "8 styles"
        PathRole,                          // the file of the face drawn (a family: its regular face)
        FaceIndexRole,
        IsFamilyRole,
        PostScriptRole,                    // a face's PostScript name
    };

    explicit FontListModel(AppState &state, QObject *parent = nullptr);

    // `samePlace`: a new answer to the question already shown. Families and faces that
    // came or went are inserted and removed in ranges, rows whose face or file changed
    // (`changedFiles`: read again since) say so, and nothing else moves, so the chosen
    // row, the open families and the scroll stay. A change too large or out of order is
    // one layout change that keeps them just the same. Otherwise the list starts afresh.
    void setAnswer(const FontQueryAnswer &answer, bool samePlace = false, const QSet<QString> &changedFiles = {});
    QStringView familyName(int row) const { return m_rows.at(size_t(row)).family.name; }

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    // Rows drag out as their files (a family: all of them), to a file manager or a collection.
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDragActions() const override;

    // The files a row stands for: a face's one, a family's every one.
    QStringList pathsOf(const QModelIndex &index) const;
    // Where duplicates are compared: each face row says its file's folder, size and date.
    void setShowsFiles(bool shows);
    // Every file of the answer with a face of this PostScript name.
    QStringList pathsWithPostScriptName(const QString &name) const;
    ActivationState activation(const QModelIndex &index) const;
    // The face that draws a family: the upright regular width closest to weight 400, the
    // one with the most glyphs among equals.
    static const FoundFace &regularFace(const FontFamily &family);

private:
    // A family as shown: its faces' list is the answer's own, shared, not copied. Face
    // rows know their family by its id, which stays while rows around it come and go.
    struct Row
    {
        FontFamily family;
        quint32 id = 0;
        mutable qint8 state = -1; // ActivationState; -1: not counted since the last change
    };
    QString fileCaption(const QString &path) const;
    bool m_showsFiles = false;
    mutable QHash<QString, QString> m_fileCaptions; // read once per answer
    const Row *rowOf(const QModelIndex &index) const;
    const FontFamily *familyOf(const QModelIndex &index) const;
    const FoundFace *faceOf(const QModelIndex &index) const;
    Row newRow(const FontFamily &family) { return {family, ++m_lastId}; }
    void reindex();
    // The ranged way; false (nothing done) when the change is too large or reorders rows.
    bool applyInPlace(const FontQueryAnswer &answer, const QSet<QString> &changedFiles);
    // How one list of keys becomes another: runs of positions removed (in the old list)
    // and inserted (in the new one); followed only when the keys both share keep their order.
    struct Ranges
    {
        QList<std::pair<int, int>> removed; // first, last
        QList<std::pair<int, int>> inserted;
        bool inOrder = true;

        qsizetype count() const { return removed.size() + inserted.size(); }
        bool isEmpty() const { return removed.isEmpty() && inserted.isEmpty(); }
    };
    static Ranges diff(const QStringList &before, const QStringList &after);
    void applyFaces(int row, const QList<FoundFace> &faces, const Ranges &ranges, const QSet<QString> &changedFiles);
    void applyAsLayoutChange(const FontQueryAnswer &answer);

    AppState &m_state;
    std::vector<Row> m_rows;
    QHash<quint32, int> m_rowOfId;
    quint32 m_lastId = 0;
};
