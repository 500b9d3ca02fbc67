#pragma once

#include <QByteArray>
#include <QHash>
#include <QMutex>
#include <QString>

#include <optional>

// Morvane's own registry of fonts it may draw previews with, standing in for
// process-wide registration: registering loads the file's bytes, so a preview is
// always drawn from that exact file, never from an installed font of the same
// name. Thread-safe: the metadata worker registers, the interface thread draws.
class PreviewFontRegistry
{
public:
    virtual ~PreviewFontRegistry() = default;

    // False when the file can't be read.
    virtual bool registerFont(const QString &path);
    virtual void unregisterFont(const QString &path);

    // The registered bytes of the file, shared and cheap to copy.
    std::optional<QByteArray> fontData(const QString &path) const;
    qsizetype count() const;

private:
    mutable QMutex m_mutex;
    QHash<QString, QByteArray> m_fonts;
};
