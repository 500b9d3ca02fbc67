// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include <QHash>

class AppState;
class AxisControls;
class FontSampleCache;
class QLabel;
class QScrollArea;
class QVBoxLayout;
class QSlider;
class QToolButton;

// Two to twelve faces side by side: the same text in each, one under another at one
// size, each labelled with its family and style; "Overlay" draws two faces over each other
// in two colours on one baseline to compare proportions. Each variable face gets its own
// axis sliders beside the samples. Escape (or "Back") returns.
class CompareView : public QWidget
{
    Q_OBJECT

public:
    struct Face
    {
        QString path;
        int faceIndex = 0;
        QString label; // "DejaVu Sans Bold"
    };

    CompareView(AppState &state, FontSampleCache &samples, QWidget *parent = nullptr);

    void setFaces(const QList<Face> &faces);
    const QList<Face> &faces() const { return m_faces; }
    QSlider *sizeSlider() const { return m_size; }
    QToolButton *overlayButton() const { return m_overlay; }
    QWidget *canvas() const { return m_canvas; }
    // The axis sliders of the face at `index`; none for a face that is not variable.
    AxisControls *axisControls(qsizetype index) const { return m_axes.value(index); }
    QHash<quint32, double> variations(qsizetype index) const;

    static constexpr int kMostFaces = 12;

Q_SIGNALS:
    void closeRequested();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    friend class CompareCanvas;
    AppState &m_state;
    FontSampleCache &m_samples;
    QList<Face> m_faces;
    QSlider *m_size;
    QToolButton *m_overlay;
    QWidget *m_canvas;
    QScrollArea *m_axesScroll = nullptr;
    QWidget *m_axesPanel;
    QVBoxLayout *m_axesLayout;
    QList<AxisControls *> m_axes; // beside m_faces, null for a face without axes
};
