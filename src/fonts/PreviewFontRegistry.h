// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "MappedFile.h"

#include <QHash>
#include <QMutex>
#include <QString>

#include <memory>

// Morvane's own registry of fonts it may draw previews with, standing in for
// process-wide registration: registering maps the file, so a preview is always drawn
// from that exact file, never from an installed font of the same name. The file is
// mapped, not copied: the memory it takes is the system's page cache, which it can
// reclaim, whatever the size of the fonts. Thread-safe: the metadata worker
// registers, the interface thread draws.
class PreviewFontRegistry
{
public:
    virtual ~PreviewFontRegistry() = default;

    // False when the file can't be mapped (see MappedFile).
    virtual bool registerFont(const QString &path);
    virtual void unregisterFont(const QString &path);

    // The registered file's bytes; they stay valid while the pointer is held, even
    // once the font is unregistered.
    std::shared_ptr<const MappedFile> fontFile(const QString &path) const;
    qsizetype count() const;

private:
    mutable QMutex m_mutex;
    QHash<QString, std::shared_ptr<const MappedFile>> m_fonts;
};
