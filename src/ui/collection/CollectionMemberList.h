// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>
#include <QUuid>

class AppState;
class CollectionMemberModel;

// The members' list of a collection view: keys and clicks on members.
class CollectionMemberList : public QListView
{
    Q_OBJECT

public:
    CollectionMemberList(AppState &state, QUuid collectionId, QWidget *parent = nullptr);
    CollectionMemberModel *memberModel() const { return m_model; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void jump(const QModelIndex &index);

    AppState &m_state;
    QUuid m_collectionId;
    CollectionMemberModel *m_model;
};
