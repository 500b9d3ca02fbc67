// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QFileDialog;
class QWidget;

// The sidebar's choosers, as the add button and "Set Custom Icon…" build them: the
// non-native dialog, whose views take several folders at once and whose layout takes a
// message.
namespace FolderChoosers {

QFileDialog *makeFolderChooser(QWidget *parent);
QFileDialog *makeIconChooser(QWidget *parent);

} // namespace FolderChoosers
