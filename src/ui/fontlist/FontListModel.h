// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ActivationState.h"
#include "services/FontCatalog.h"

#include <QAbstractItemModel>

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
    };

    explicit FontListModel(AppState &state, QObject *parent = nullptr);

    // `samePlace`: a new answer to the question already shown; the rows the views hold
    // on to (chosen, open, current) follow their family or face. Otherwise the list
    // starts afresh.
    void setAnswer(FontQueryAnswer answer, bool samePlace = false);
    const FontQueryAnswer &answer() const { return m_answer; }

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
    ActivationState activation(const QModelIndex &index) const;
    // The face that draws a family: the upright regular width closest to weight 400, the
    // one with the most glyphs among equals.
    static const FoundFace &regularFace(const FontFamily &family);

private:
    const FontFamily *familyOf(const QModelIndex &index) const;
    const FoundFace *faceOf(const QModelIndex &index) const;

    AppState &m_state;
    FontQueryAnswer m_answer;
    mutable std::vector<qint8> m_familyStates; // -1: not counted since the last change
};
