// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/Confirmations.h"

#include "model/FolderSource.h"
#include "model/CollectionRecords.h"
#include "state/AppState.h"

#include <QCoreApplication>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace Confirmations {

namespace {

QString tr(const char *text, int n = -1)
{
    return QCoreApplication::translate("Confirmations", text, nullptr, n);
}

// Cancel is the default: Enter on a question about destroying keeps things.
void ask(QWidget *parent, const QString &question, const QString &detail, const QString &action,
         std::function<void()> act)
{
    QPointer<QWidget> owner(parent);
    QMetaObject::invokeMethod(
        parent,
        [owner, question, detail, action, act = std::move(act)] {
            if (!owner)
                return;
            QMessageBox box(QMessageBox::Question, QCoreApplication::applicationName(), question, QMessageBox::Cancel,
                            owner->window());
            box.setInformativeText(detail);
            box.setWindowModality(Qt::WindowModal);
            QPushButton *confirm = box.addButton(action, QMessageBox::DestructiveRole);
            box.setDefaultButton(QMessageBox::Cancel);
            box.setEscapeButton(QMessageBox::Cancel);
            box.exec();
            if (box.clickedButton() == confirm)
                act();
        },
        Qt::QueuedConnection);
}

} // namespace

void removeSource(QWidget *parent, const AppState &state, const FolderSource &source, std::function<void()> act)
{
    const qsizetype active = state.activeFontCount(source);
    // Spelled out for one: without a translation loaded, Qt leaves "%n" plurals alone.
    const QString cost = active == 0 ? QString()
                         : active == 1
                             ? tr("Its 1 active font will be deactivated. ")
                             : tr("Its %1 active fonts will be deactivated. ", static_cast<int>(active))
                                   .arg(QLocale().toString(active));
    ask(parent, tr("Remove \u201c%1\u201d from Morvane?").arg(source.name),
        cost + tr("The files stay where they are."), tr("Remove Source"), std::move(act));
}

void deleteCollection(QWidget *parent, const FontCollection &collection, std::function<void()> act)
{
    const auto items = static_cast<int>(collection.members.size());
    const QString what = items == 1 ? tr("Its 1 item stays where it is on disk; only the collection goes.")
                                    : tr("Its %1 items stay where they are on disk; only the collection goes.", items)
                                          .arg(QLocale().toString(items));
    ask(parent, tr("Delete the collection \u201c%1\u201d?").arg(collection.name), what, tr("Delete Collection"),
        std::move(act));
}

} // namespace Confirmations
