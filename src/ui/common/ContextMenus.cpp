// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/ContextMenus.h"
#include "ui/common/Confirmations.h"
#include "ui/common/LicenseColours.h"
#include "ui/common/Mnemonics.h"

#include "services/LicenseStatus.h"
#include "state/AppState.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QMenu>
#include <QPixmap>
#include <QUrl>

namespace {
// The context its texts are translated in.
struct ContextMenuText
{
    Q_DECLARE_TR_FUNCTIONS(ContextMenuText)
};
} // namespace

using namespace Qt::StringLiterals;

namespace ContextMenus {

namespace {

void openContainingFolder(AppState &state, const QString &path)
{
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath())))
        return;
    state.setNotice(QCoreApplication::translate("ContextMenus",
                                                "No file manager answered, so \u201c%1\u201d can't be shown. It is in %2.")
                        .arg(QFileInfo(path).fileName(), QFileInfo(path).absolutePath()));
}

// Beside every "Activate …": the same fonts, active until the session ends.
void addSessionItem(QMenu *menu, const std::function<void()> &activate)
{
    QObject::connect(menu->addAction(ContextMenuText::tr("Activate for This Session")), &QAction::triggered, menu, activate);
}

} // namespace

void revealInFileManager(AppState &state, const QString &path, const QDBusConnection &bus)
{
    // With no session bus the call ends at once and a watcher would never fire.
    if (!bus.isConnected()) {
        openContainingFolder(state, path);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &state,
                     [&state, path](QDBusPendingCallWatcher *finished) {
                         if (finished->isError())
                             openContainingFolder(state, path);
                         finished->deleteLater();
                     });
}

void addLicenseMenu(QMenu *menu, AppState &state, const QString &path)
{
    QMenu *statuses = menu->addMenu(ContextMenuText::tr("License Status"));
    const LicenseStatus current = License::from(state.finderTagService().tags(path));
    const qreal ratio = menu->devicePixelRatioF();
    for (const LicenseStatus status : License::allCases()) {
        QAction *item = statuses->addAction(License::rawValue(status));
        // Styles draw an icon in place of the check mark: the current one gets the mark.
        if (status != LicenseStatus::None && status != current)
            item->setIcon(QIcon(QPixmap::fromImage(LicenseColours::menuDotImage(status, ratio))));
        item->setCheckable(true);
        item->setChecked(status == current);
        QObject::connect(item, &QAction::triggered, menu, [&state, status, path] { state.setLicenseStatus(status, path); });
    }
}

QMenu *buildNodeMenu(AppState &state, const FontNode &node, QWidget *parent)
{
    auto *menu = new QMenu(parent);
    menu->setAccessibleName(node.name().toString());
    const QString path = node.path();
    QObject::connect(menu->addAction(ContextMenuText::tr("Show in File Manager")), &QAction::triggered, menu,
                     [&state, path] { revealInFileManager(state, path); });
    menu->addSeparator();
    const bool active = isOn(state.activationState(node));
    const QString toggle = node.isDirectory()
        ? (active ? ContextMenuText::tr("Deactivate All Fonts in Folder") : ContextMenuText::tr("Activate All Fonts in Folder"))
        : (active ? ContextMenuText::tr("Deactivate Font") : ContextMenuText::tr("Activate Font"));
    QObject::connect(menu->addAction(toggle), &QAction::triggered, menu, [&state, node] { state.toggleActivation(node); });
    if (!active)
        addSessionItem(menu, [&state, node] { state.activateForSession(node); });
    // Smart collections are not offered: their members are their question's answer.
    QList<FontCollection> plain = state.collections();
    plain.removeIf([](const FontCollection &collection) { return collection.isSmart(); });
    if (!plain.isEmpty()) {
        menu->addSeparator();
        QMenu *collections = menu->addMenu(ContextMenuText::tr("Add to Collection"));
        for (const FontCollection &collection : std::as_const(plain)) {
            QAction *item = collections->addAction(QString(collection.name).replace(u'&', u"&&"_s)); // a name's own "&" shows as one
            item->setEnabled(!collection.contains(path));
            const QUuid id = collection.id;
            QObject::connect(item, &QAction::triggered, menu, [&state, id, node] { state.addToCollection(id, node); });
        }
    }
    menu->addSeparator();
    addLicenseMenu(menu, state, path);
    Mnemonics::assign(menu);
    return menu;
}

QMenu *buildSourceMenu(AppState &state, const FolderSource &source, QWidget *parent)
{
    auto *menu = new QMenu(parent);
    menu->setAccessibleName(source.name);
    const QString path = source.path;
    // The row's round button, for the keyboard and for those who look in menus first.
    const FontNode root = FontNode::folder(path);
    const bool active = isOn(state.activationState(root));
    QObject::connect(menu->addAction(active ? QCoreApplication::translate("ContextMenus", "Deactivate All Fonts in Source")
                                            : QCoreApplication::translate("ContextMenus", "Activate All Fonts in Source")),
                     &QAction::triggered, menu, [&state, root] { state.toggleActivation(root); });
    if (!active)
        addSessionItem(menu, [&state, root] { state.activateForSession(root); });
    menu->addSeparator();
    QObject::connect(menu->addAction(ContextMenuText::tr("Show in File Manager")), &QAction::triggered, menu,
                     [&state, path] { revealInFileManager(state, path); });
    menu->addSeparator();
    addLicenseMenu(menu, state, path);
    menu->addSeparator();
    QObject::connect(menu->addAction(ContextMenuText::tr("Remove Source")), &QAction::triggered, menu, [&state, source, parent] {
        Confirmations::removeSource(parent, state, source, [&state, source] { state.removeSource(source); });
    });
    Mnemonics::assign(menu);
    return menu;
}

QMenu *buildCollectionMenu(AppState &state, const FontCollection &collection, QWidget *parent,
                           const std::function<void()> &rename, const std::function<void()> &pickIcon)
{
    auto *menu = new QMenu(parent);
    menu->setAccessibleName(collection.name);
    const bool active = isOn(state.collectionActivationState(collection));
    QObject::connect(menu->addAction(active ? QCoreApplication::translate("ContextMenus", "Deactivate All Fonts in Collection")
                                            : QCoreApplication::translate("ContextMenus", "Activate All Fonts in Collection")),
                     &QAction::triggered, menu, [&state, collection] { state.toggleCollectionActivation(collection); });
    if (!active)
        addSessionItem(menu, [&state, collection] { state.activateCollectionForSession(collection); });
    menu->addSeparator();
    if (collection.isSmart()) {
        const QUuid smart = collection.id;
        QObject::connect(menu->addAction(QCoreApplication::translate("ContextMenus", "Edit Filters…")), &QAction::triggered,
                         menu, [&state, smart] { state.requestSmartEdit(smart); });
    }
    QObject::connect(menu->addAction(ContextMenuText::tr("Rename")), &QAction::triggered, menu, rename);
    QObject::connect(menu->addAction(ContextMenuText::tr("Set Custom Icon…")), &QAction::triggered, menu, pickIcon);
    QAction *removeIcon = menu->addAction(ContextMenuText::tr("Remove Custom Icon"));
    removeIcon->setEnabled(collection.iconPath.has_value());
    const QUuid id = collection.id;
    QObject::connect(removeIcon, &QAction::triggered, menu, [&state, id] { state.setCollectionIcon(id, std::nullopt); });
    menu->addSeparator();
    QObject::connect(menu->addAction(ContextMenuText::tr("Delete Collection")), &QAction::triggered, menu, [&state, collection, parent] {
        Confirmations::deleteCollection(parent, collection, [&state, collection] { state.deleteCollection(collection); });
    });
    Mnemonics::assign(menu);
    return menu;
}

QMenu *buildMemberMenu(AppState &state, const CollectionMember &member, const QUuid &collectionId, QWidget *parent)
{
    auto *menu = new QMenu(parent);
    menu->setAccessibleName(QFileInfo(member.path).fileName());
    const QString path = member.path;
    QObject::connect(menu->addAction(ContextMenuText::tr("Show in File Manager")), &QAction::triggered, menu,
                     [&state, path] { revealInFileManager(state, path); });
    menu->addSeparator();
    addLicenseMenu(menu, state, path);
    const auto collection = std::find_if(state.collections().cbegin(), state.collections().cend(),
                                         [&](const FontCollection &c) { return c.id == collectionId; });
    if (collection == state.collections().cend() || !collection->isSmart()) {
        menu->addSeparator();
        QObject::connect(menu->addAction(ContextMenuText::tr("Remove from Collection")), &QAction::triggered, menu,
                         [&state, member, collectionId] { state.removeFromCollection(collectionId, member); });
    }
    Mnemonics::assign(menu);
    return menu;
}

} // namespace ContextMenus
