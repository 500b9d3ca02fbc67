// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCache>
#include <QColor>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QThreadPool>

// Samples of text drawn from each face's own file (never an installed font of the same
// name), shaped and rasterised off the interface thread and kept per face, text, size
// and colour (and axis setting, for a variable face). Asking for one not drawn yet starts it and answers null; sampleReady()
// says when it is there. A face that can't be drawn is remembered as such.
class FontSampleCache : public QObject
{
    Q_OBJECT

public:
    enum class State { Drawing, Ready, Failed };
    struct Sample
    {
        State state = State::Drawing;
        QImage image; // premultiplied ARGB, device pixels at the size asked
    };

    explicit FontSampleCache(QObject *parent = nullptr);
    ~FontSampleCache() override;

    using Variations = QHash<quint32, double>; // by axis tag; axes not named keep their defaults

    Sample sample(const QString &path, int faceIndex, const QString &text, int pixelSize, const QColor &colour,
                  const Variations &variations = {});
    bool isDrawing() const { return !m_drawing.isEmpty(); }
    // These files changed: what was drawn from them (or failed to be) is drawn again.
    void forget(const QSet<QString> &paths);

    // Draws one line of the text with the face, its baseline at the ascent (the image's
    // text "baseline" says where, in pixels); null when the file is not a font that can be
    // drawn or maps none of the text.
    static QImage draw(const QString &path, int faceIndex, const QString &text, int pixelSize, const QColor &colour,
                       const Variations &variations = {});

Q_SIGNALS:
    void sampleReady(const QString &path);

private:
    void finished(const QString &key, const QString &path, const QImage &image);

    QCache<QString, QImage> m_images; // cost: kilobytes
    QSet<QString> m_drawing;
    QSet<QString> m_failed;
    QThreadPool m_pool;
};
