// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class AppState;
class FontPreviewView;
class QPushButton;

// A font file opened from outside Morvane (the command line, a file manager's "Open
// With"): its name, the folder it lives in with "Add Folder as Source", and the preview
// pane for the file itself (its details, "Activate", samples).
class OpenedFontView : public QWidget
{
    Q_OBJECT

public:
    OpenedFontView(AppState &state, const QString &path, QWidget *parent = nullptr);

    const QString &path() const { return m_path; }
    QPushButton *addFolderButton() const { return m_addFolder; }
    FontPreviewView *preview() const { return m_preview; }

private:
    QString m_path;
    QPushButton *m_addFolder;
    FontPreviewView *m_preview;
};
