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

using namespace Qt::StringLiterals;

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

AppState::ConflictChoice activationConflicts(QWidget *parent, const QList<AppState::ActivationConflict> &conflicts)
{
    if (conflicts.isEmpty())
        return AppState::ConflictChoice::KeepBoth;
    const AppState::ActivationConflict &first = conflicts.constFirst();
    const auto name = [](const QString &path) { return path.section(u'/', -1); };
    const QString question =
        conflicts.size() == 1
            ? tr("\u201c%1\u201d is already active from another file.").arg(first.postScriptName)
            : tr("%1 fonts are already active from other files.").arg(QLocale().toString(conflicts.size()));
    const QString detail =
        conflicts.size() == 1
            ? tr("%1 is active now, and %2 has the same PostScript name. With both active, every program picks one "
                 "of them on its own. Replace the active one, or keep both?")
                  .arg(first.active.constFirst(), first.font)
            : tr("With both files of a name active, every program picks one of them on its own. Replace the active "
                 "ones, or keep both?");
    QMessageBox box(QMessageBox::Question, QCoreApplication::applicationName(), question, QMessageBox::Cancel,
                    parent ? parent->window() : nullptr);
    box.setInformativeText(detail);
    QStringList lines;
    for (const AppState::ActivationConflict &conflict : conflicts)
        lines.append(conflict.postScriptName + u": "_s + name(conflict.font) + u" \u2190 "_s + conflict.active.join(u", "_s));
    if (conflicts.size() > 1)
        box.setDetailedText(lines.join(u'\n'));
    QPushButton *replace = box.addButton(tr("Replace"), QMessageBox::AcceptRole);
    QPushButton *both = box.addButton(tr("Keep Both"), QMessageBox::AcceptRole);
    box.setDefaultButton(replace);
    box.setEscapeButton(QMessageBox::Cancel);
    box.exec();
    if (box.clickedButton() == replace)
        return AppState::ConflictChoice::Replace;
    if (box.clickedButton() == both)
        return AppState::ConflictChoice::KeepBoth;
    return AppState::ConflictChoice::Cancel;
}

} // namespace Confirmations
