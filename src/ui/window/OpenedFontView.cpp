// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/OpenedFontView.h"

#include "model/FontNode.h"
#include "state/AppState.h"
#include "ui/common/TextStyles.h"
#include "ui/preview/FontPreviewView.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

OpenedFontView::OpenedFontView(AppState &state, const QString &path, QWidget *parent)
    : QWidget(parent)
    , m_path(path)
    , m_addFolder(new QPushButton(tr("Add Folder as Source"), this))
    , m_preview(new FontPreviewView(state, FontNode::fontFile(path), this))
{
    const QFileInfo file(path);
    const QString folder = file.absolutePath();
    setAccessibleName(file.fileName());
    auto *name = new QLabel(file.fileName(), this);
    name->setFont(TextStyles::title2(font()));
    name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *where = new QLabel(tr("In %1").arg(QDir::toNativeSeparators(folder)), this);
    TextStyles::applySecondary(where);
    where->setTextInteractionFlags(Qt::TextSelectableByMouse);
    where->setWordWrap(true);
    m_addFolder->setAccessibleName(m_addFolder->text());
    // A folder that is a source already, or inside one, is in the library.
    const auto inLibrary = [&state, folder] {
        return std::any_of(state.sources().cbegin(), state.sources().cend(), [&](const FolderSource &source) {
            const QString root = QDir::cleanPath(source.path);
            return folder == root || folder.startsWith(root + u'/');
        });
    };
    const auto sync = [this, inLibrary] {
        m_addFolder->setEnabled(!inLibrary());
        m_addFolder->setToolTip(inLibrary() ? tr("This folder is in your library") : QString());
    };
    sync();
    connect(&state, &AppState::sourcesChanged, this, sync);
    connect(m_addFolder, &QPushButton::clicked, this, [&state, folder] { state.addSource(folder); });

    auto *header = new QHBoxLayout;
    header->setContentsMargins(0, 0, 16, 0);
    auto *titles = new QVBoxLayout;
    titles->addWidget(name);
    titles->addWidget(where);
    header->addLayout(titles, 1);
    header->addWidget(m_addFolder, 0, Qt::AlignTop);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 12, 0, 0);
    layout->addLayout(header);
    layout->addWidget(m_preview, 1);
}
