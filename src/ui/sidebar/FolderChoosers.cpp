// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/sidebar/FolderChoosers.h"

#include <QCoreApplication>
#include <QAbstractItemView>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>

namespace {
// The context its texts are translated in.
struct FolderChooserText
{
    Q_DECLARE_TR_FUNCTIONS(FolderChooserText)
};
} // namespace

using namespace Qt::StringLiterals;

namespace {

// Options of a dialog that make it the non-native one, whose views can take several
// folders and whose layout can take a message.
QFileDialog *dialog(QWidget *parent, const QString &title, const QString &message)
{
    auto *chooser = new QFileDialog(parent, title);
    chooser->setOption(QFileDialog::DontUseNativeDialog);
    chooser->setOption(QFileDialog::ReadOnly); // no folder creation
    auto *label = new QLabel(message, chooser);
    label->setObjectName(u"message"_s);
    if (auto *grid = qobject_cast<QGridLayout *>(chooser->layout()))
        grid->addWidget(label, grid->rowCount(), 0, 1, grid->columnCount());
    return chooser;
}

} // namespace

QFileDialog *FolderChoosers::makeFolderChooser(QWidget *parent)
{
    QFileDialog *chooser = dialog(parent, FolderChooserText::tr("Choose a Font Folder"), FolderChooserText::tr("Select a folder containing fonts"));
    chooser->setFileMode(QFileDialog::Directory);
    chooser->setOption(QFileDialog::ShowDirsOnly);
    chooser->setDirectory(QDir::homePath()); // not wherever Morvane was started from
    for (const char *name : {"listView", "treeView"}) {
        if (auto *view = chooser->findChild<QAbstractItemView *>(QLatin1StringView(name)))
            view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    }
    return chooser;
}

QFileDialog *FolderChoosers::makeIconChooser(QWidget *parent)
{
    QFileDialog *chooser = dialog(parent, FolderChooserText::tr("Choose an Icon"), FolderChooserText::tr("Select a PNG or SVG image"));
    chooser->setFileMode(QFileDialog::ExistingFile);
    chooser->setMimeTypeFilters({u"image/png"_s, u"image/svg+xml"_s});
    chooser->setNameFilter(u"Images (*.png *.svg *.PNG *.SVG)"_s);
    return chooser;
}
