// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/preview/SampleView.h"

#include "ui/common/Symbols.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

SampleView::SampleView(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::ClickFocus);
    setCursor(Qt::IBeamCursor);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void SampleView::setRenderer(SampleRenderer *renderer)
{
    m_renderer = renderer;
    relayout();
}

void SampleView::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    m_anchor = m_cursor = 0;
    setAccessibleDescription(text);
    relayout();
}

void SampleView::setPointSize(double points)
{
    if (m_points == points)
        return;
    m_points = points;
    relayout();
}

void SampleView::setWaterfall(const QList<double> &pointSizes)
{
    if (m_waterfall == pointSizes)
        return;
    m_waterfall = pointSizes;
    relayout();
}

void SampleView::relayout()
{
    m_laidOutWidth = -1;
    updateGeometry(); // the height may change with the text, the size or the axes
    update();
}

double SampleView::pixelsFor(double points) const
{
    return points * logicalDpiY() / 72.0;
}

double SampleView::labelWidth() const
{
    return m_waterfall.isEmpty() ? 0 : fontMetrics().horizontalAdvance(u"96"_s) + 12;
}

QList<SampleView::Line> SampleView::layoutFor(int width) const
{
    QList<Line> lines;
    if (!m_renderer)
        return lines;
    const double unitsPerEm = m_renderer->unitsPerEm();
    double y = kPadding;
    const auto addLine = [&](const ShapedLine &shaped, qsizetype offset, double pixelSize, double left, const QString &label) {
        const double scale = pixelSize / unitsPerEm;
        Line line{shaped, offset, pixelSize, y, m_renderer->lineHeight() * scale, y + m_renderer->ascent() * scale, left, label};
        y += line.height;
        lines.append(line);
    };
    if (!m_waterfall.isEmpty()) {
        // One line at each size, unwrapped: the point is to compare the sizes.
        QString oneLine = m_text;
        oneLine.replace(u'\n', u' ');
        const ShapedLine shaped = m_renderer->layout(oneLine).value(0);
        for (const double points : m_waterfall)
            addLine(shaped, 0, pixelsFor(points), labelWidth(), QString::number(points));
        return lines;
    }
    const double pixelSize = pixelsFor(m_points);
    const double maxWidth = std::max(1, width - 2 * kPadding) * unitsPerEm / pixelSize;
    qsizetype offset = 0;
    for (const QString &paragraph : m_text.split(u'\n')) {
        for (const ShapedLine &shaped : m_renderer->layout(paragraph, maxWidth))
            addLine(shaped, offset, pixelSize, 0, {});
        offset += paragraph.size() + 1;
    }
    return lines;
}

void SampleView::updateLayout()
{
    if (m_laidOutWidth == width())
        return;
    m_lines = layoutFor(width());
    m_laidOutWidth = width();
}

int SampleView::heightForWidth(int width) const
{
    const QList<Line> lines = width == m_laidOutWidth ? m_lines : layoutFor(width);
    const double bottom = lines.isEmpty() ? 0 : lines.constLast().top + lines.constLast().height;
    return std::max(kMinimumHeight, qCeil(bottom) + kPadding);
}

QSize SampleView::sizeHint() const
{
    const int width = std::max(200, m_laidOutWidth);
    return {width, heightForWidth(width)};
}

QSize SampleView::minimumSizeHint() const
{
    return {100, kMinimumHeight};
}

void SampleView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    const int before = heightForWidth(m_laidOutWidth);
    updateLayout();
    if (heightForWidth(width()) != before)
        updateGeometry();
}

void SampleView::paintEvent(QPaintEvent *)
{
    // A file changed under us is not read again: the owner opens it anew.
    if (m_renderer && m_renderer->fileChanged())
        Q_EMIT fileChanged();
    updateLayout();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    if (!m_renderer)
        return;
    painter.setClipRect(rect().adjusted(1, 1, -1, -1));
    const qsizetype selectionStart = std::min(m_anchor, m_cursor);
    const qsizetype selectionEnd = std::max(m_anchor, m_cursor);
    QColor highlight = palette().color(QPalette::Highlight);
    highlight.setAlpha(90);
    const QColor ink = palette().color(QPalette::WindowText);
    for (const Line &line : std::as_const(m_lines)) {
        const double scale = line.pixelSize / m_renderer->unitsPerEm();
        const double left = kPadding + line.left;
        for (const PlacedGlyph &glyph : line.shaped.glyphs) {
            const qsizetype at = line.textOffset + glyph.cluster;
            if (at >= selectionStart && at < selectionEnd)
                painter.fillRect(QRectF(left + glyph.x * scale, line.top, glyph.advance * scale, line.height), highlight);
        }
        if (!line.label.isEmpty()) {
            painter.setPen(Symbols::secondary(palette()));
            painter.drawText(QPointF(kPadding, line.baseline), line.label);
        }
        m_renderer->paint(painter, line.shaped, QPointF(left, line.baseline), line.pixelSize, ink);
    }
}

qsizetype SampleView::positionAt(QPointF point) const
{
    if (m_lines.isEmpty())
        return 0;
    const auto found = std::find_if(m_lines.cbegin(), m_lines.cend(),
                                    [&](const Line &line) { return point.y() < line.top + line.height; });
    const Line &line = found == m_lines.cend() ? m_lines.constLast() : *found;
    const QList<PlacedGlyph> &glyphs = line.shaped.glyphs;
    const double x = (point.x() - kPadding - line.left) * m_renderer->unitsPerEm() / line.pixelSize;
    const bool leftToRight = glyphs.size() < 2 || glyphs.constFirst().cluster <= glyphs.constLast().cluster;
    for (qsizetype i = 0; i < glyphs.size(); ++i) {
        const PlacedGlyph &glyph = glyphs.at(i);
        if (x >= glyph.x + glyph.advance / 2)
            continue;
        if (leftToRight)
            return line.textOffset + glyph.cluster;
        // Right to left: left of a glyph's middle lies after it in reading order.
        return line.textOffset + (i == 0 ? line.shaped.textEnd : glyphs.at(i - 1).cluster);
    }
    return line.textOffset + (leftToRight || glyphs.isEmpty() ? line.shaped.textEnd : glyphs.constLast().cluster);
}

void SampleView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    updateLayout();
    m_anchor = m_cursor = positionAt(event->position());
    update();
}

void SampleView::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    m_cursor = positionAt(event->position());
    update();
}

void SampleView::mouseDoubleClickEvent(QMouseEvent *)
{
    selectAll();
}

QString SampleView::selectedText() const
{
    const qsizetype start = std::min(m_anchor, m_cursor);
    return m_text.mid(start, std::max(m_anchor, m_cursor) - start);
}

void SampleView::selectAll()
{
    m_anchor = 0;
    m_cursor = m_text.size();
    update();
}

void SampleView::copySelection() const
{
    if (!selectedText().isEmpty())
        QApplication::clipboard()->setText(selectedText());
}

void SampleView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::SelectAll))
        selectAll();
    else if (event->matches(QKeySequence::Copy))
        copySelection();
    else
        QWidget::keyPressEvent(event);
}

void SampleView::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu menu(this);
    QAction *copy = menu.addAction(tr("Copy"), this, &SampleView::copySelection);
    copy->setEnabled(!selectedText().isEmpty());
    menu.addAction(tr("Select All"), this, &SampleView::selectAll);
    menu.exec(event->globalPos());
}

void SampleView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        relayout(); // the waterfall's labels
}
