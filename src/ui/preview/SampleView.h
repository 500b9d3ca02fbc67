// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fonts/SampleRenderer.h"

#include <QList>
#include <QWidget>

// Text drawn by a SampleRenderer from the font file itself, in a rounded box: wrapped
// paragraphs at one size, or a waterfall of one line per size. The text can be
// selected with the mouse (or all of it with Ctrl+A) and copied.
class SampleView : public QWidget
{
    Q_OBJECT

public:
    explicit SampleView(QWidget *parent = nullptr);

    // Not owned; it must outlive its use here. None: the box stays empty.
    void setRenderer(SampleRenderer *renderer);
    void setText(const QString &text);
    const QString &text() const { return m_text; }
    void setPointSize(double points);
    // Each size its own line, the text unwrapped; empty: wrapped at the one point size.
    void setWaterfall(const QList<double> &pointSizes);
    // The renderer's axes or features changed: shape again.
    void relayout();

    QString selectedText() const;
    void selectAll();

    // Pixels to the em for a size in points on this screen.
    double pixelsFor(double points) const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    static constexpr int kPadding = 10;

Q_SIGNALS:
    // The renderer's file changed on disk since it was opened; it draws nothing more.
    void fileChanged();

public:
    static constexpr int kMinimumHeight = 40;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Line
    {
        ShapedLine shaped;
        qsizetype textOffset = 0; // of the line's paragraph in the whole text
        double pixelSize = 0;
        double top = 0;
        double height = 0;
        double baseline = 0;
        double left = 0;
        QString label; // the waterfall's size
    };

    QList<Line> layoutFor(int width) const;
    void updateLayout();
    qsizetype positionAt(QPointF point) const;
    double labelWidth() const;
    void copySelection() const;

    SampleRenderer *m_renderer = nullptr;
    QString m_text;
    double m_points = 36;
    QList<double> m_waterfall;
    QList<Line> m_lines;
    int m_laidOutWidth = -1;
    qsizetype m_anchor = 0; // selection, as text positions
    qsizetype m_cursor = 0;
};
