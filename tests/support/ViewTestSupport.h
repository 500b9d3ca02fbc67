// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/FontActivating.h"
#include "state/AppState.h"

// Activation that always succeeds, remembering nothing: for views, whose concern is the store.
class InstantActivation : public FontActivating
{
public:
    bool activateFont(const QString &) override { return true; }
    bool deactivateFont(const QString &) override { return true; }
};

// Makes `folder` the store's one source, selected and scanned, without the background
// refresh that adding a source starts.
inline void showFolderAsSource(AppState &store, const QString &folder)
{
    const FolderSource source{QUuid::createUuid(), folder, QStringLiteral("Library")};
    store.setSourcesForTesting({source});
    store.setSidebarSelection(SidebarItem(source));
    auto service = std::make_shared<FileSystemService>();
    service->insertPreScannedRoot(folder);
    service->deepScan(folder);
    service->freeze();
    store.installLibrary(service, {});
}
