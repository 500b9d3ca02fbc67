// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUuid>
#include <QWidget>

class AppState;
class CollectionMemberList;
class FontPreviewView;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QStackedWidget;

// The detail area while a collection is selected: a header with its icon, name, counts
// and "Activate All"/"Deactivate All", the members in order (a missing one dimmed), and
// the preview of the selected font member beside them. Files and folders dropped here
// join the collection.
class CollectionView : public QWidget
{
    Q_OBJECT

public:
    CollectionView(AppState &state, QUuid collectionId, QWidget *parent = nullptr);

    QUuid collectionId() const { return m_collectionId; }
    CollectionMemberList *memberList() const { return m_list; }
    FontPreviewView *previewPane() const { return m_preview; }

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void syncHeader();
    void syncPreview();

    AppState &m_state;
    QUuid m_collectionId;
    QLabel *m_icon = nullptr;
    QLabel *m_name = nullptr;
    QLabel *m_counts = nullptr;
    QPushButton *m_toggle = nullptr;
    QHBoxLayout *m_row = nullptr; // the members, then the preview
    QStackedWidget *m_body = nullptr;
    CollectionMemberList *m_list = nullptr;
    FontPreviewView *m_preview = nullptr;
    QString m_previewPath;
};
