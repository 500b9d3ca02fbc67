// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/fontlist/FontSampleCache.h"

#include "fonts/MappedFile.h"
#include "fonts/SampleRenderer.h"

#include <QCoreApplication>
#include <QPainter>
#include <QThread>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr int kCacheKilobytes = 64 * 1024;
constexpr int kWidestSample = 4096; // pixels: a row shows far less

QString keyOf(const QString &path, int faceIndex, const QString &text, int pixelSize, const QColor &colour,
              const FontSampleCache::Variations &variations)
{
    QString key = path + u'\x1f' + QString::number(faceIndex) + u'\x1f' + QString::number(pixelSize) + u'\x1f'
                  + QString::number(colour.rgba(), 16) + u'\x1f' + text;
    if (!variations.isEmpty()) {
        // Hash order differs between equal maps: the key lists the axes in tag order.
        QList<quint32> tags = variations.keys();
        std::sort(tags.begin(), tags.end());
        for (const quint32 tag : std::as_const(tags))
            key += u'\x1e' + QString::number(tag) + u'=' + QString::number(variations.value(tag));
    }
    return key;
}

} // namespace

FontSampleCache::FontSampleCache(QObject *parent)
    : QObject(parent)
    , m_images(kCacheKilobytes)
{
    // Rows come and go as the list scrolls: drawing yields to the interface.
    m_pool.setThreadPriority(QThread::LowPriority);
}

FontSampleCache::~FontSampleCache()
{
    m_pool.clear();
    m_pool.waitForDone();
}

QImage FontSampleCache::draw(const QString &path, int faceIndex, const QString &text, int pixelSize, const QColor &colour,
                             const Variations &variations)
{
    const std::shared_ptr<const MappedFile> file = MappedFile::open(path);
    const std::unique_ptr<SampleRenderer> renderer = file ? SampleRenderer::open(file, faceIndex) : nullptr;
    if (!renderer || text.isEmpty())
        return {};
    if (!variations.isEmpty())
        renderer->setVariations(variations);
    const QList<ShapedLine> lines = renderer->layout(text);
    if (lines.isEmpty() || lines.first().glyphs.isEmpty())
        return {};
    const ShapedLine &line = lines.first();
    const double scale = pixelSize / renderer->unitsPerEm();
    const int width = std::min(kWidestSample, int(std::ceil(line.width * scale)) + 2);
    const int height = int(std::ceil((renderer->ascent() + renderer->descent()) * scale)) + 2;
    if (width <= 2 || height <= 2 || height > 4 * pixelSize)
        return {};
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double baseline = 1 + renderer->ascent() * scale;
    renderer->paint(painter, line, QPointF(1, baseline), pixelSize, colour);
    painter.end();
    image.setText(u"baseline"_s, QString::number(baseline)); // where samples of several faces line up
    return image;
}

FontSampleCache::Sample FontSampleCache::sample(const QString &path, int faceIndex, const QString &text, int pixelSize,
                                                const QColor &colour, const Variations &variations)
{
    const QString key = keyOf(path, faceIndex, text, pixelSize, colour, variations);
    if (const QImage *image = m_images.object(key))
        return {State::Ready, *image};
    if (m_failed.contains(key))
        return {State::Failed, {}};
    if (!m_drawing.contains(key)) {
        m_drawing.insert(key);
        // The pool is drained before the cache goes, and an answer posted to a cache that
        // has gone is dropped with it.
        m_pool.start([this, key, path, faceIndex, text, pixelSize, colour, variations] {
            QImage image = draw(path, faceIndex, text, pixelSize, colour, variations);
            QMetaObject::invokeMethod(
                this, [this, key, path, image = std::move(image)] { finished(key, path, image); }, Qt::QueuedConnection);
        });
    }
    return {State::Drawing, {}};
}

void FontSampleCache::forget(const QSet<QString> &paths)
{
    if (paths.isEmpty())
        return;
    const auto drawnFrom = [&paths](const QString &key) { return paths.contains(key.section(u'\x1f', 0, 0)); };
    for (const QString &key : m_images.keys()) {
        if (drawnFrom(key))
            m_images.remove(key);
    }
    m_failed.removeIf(drawnFrom);
}

void FontSampleCache::finished(const QString &key, const QString &path, const QImage &image)
{
    m_drawing.remove(key);
    if (image.isNull())
        m_failed.insert(key);
    else
        m_images.insert(key, new QImage(image), std::max<qsizetype>(1, image.sizeInBytes() / 1024));
    Q_EMIT sampleReady(path);
}
