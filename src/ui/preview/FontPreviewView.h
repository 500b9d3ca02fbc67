// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/CancellationToken.h"
#include "model/FontNode.h"
#include "fonts/FontMetadata.h"
#include "fonts/SampleRenderer.h"

#include <QHash>
#include <QScrollArea>

#include <array>
#include <memory>
#include <optional>

class AppState;
class AxisControls;
class FeatureToggles;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QVBoxLayout;
class SampleView;

// The pane beside the columns for the selected font file: its metadata and activation
// button, a live sample of the store's preview text at the store's size, drawn from
// that very file, the axes of a variable font, its OpenType features, and its basic
// character set. One pane shows one file: another font gets a new pane, and the old
// one's pending request is cancelled with it.
class FontPreviewView : public QScrollArea
{
    Q_OBJECT

public:
    FontPreviewView(AppState &state, FontNode fontNode, QWidget *parent = nullptr);
    ~FontPreviewView() override;

    static constexpr int kMinimumSize = 12;
    static constexpr int kMaximumSize = 96;
    static constexpr std::array<double, 7> kWaterfallSizes{12, 18, 24, 36, 48, 72, 96};

    const FontNode &fontNode() const { return m_fontNode; }
    bool isLoading() const { return m_isLoading; }
    const std::optional<FontMetadata> &metadata() const { return m_metadata; }
    const QHash<quint32, double> &axisValues() const { return m_axisValues; }
    SampleView *sample() const { return m_sample; }

    // "Variable Font (1 axis)", "Variable Font (3 axes)", "Static Font".
    static QString typeText(const FontMetadata &metadata);

Q_SIGNALS:
    // The metadata request ended (with or without metadata) and the pane shows it.
    void loaded();

protected:
    void changeEvent(QEvent *event) override;

private:
    QWidget *buildMetadataSection();
    QWidget *buildPreviewSection();
    QWidget *buildCharacterSet();
    void startLoading();
    // The previewed file changed on disk (truncated, rewritten): read it again.
    void reloadChangedFile();
    void applyMetadata(std::optional<FontMetadata> metadata);
    void showMetadata(const FontMetadata &metadata);
    void applyVariations();
    void applyFeatures();
    void syncActivation();
    void syncText();
    void syncSize();
    void stepSize(int direction);
    double shownSize() const;

    AppState &m_state;
    FontNode m_fontNode;
    CancellationToken m_cancellation = CancellationToken::create();
    bool m_isLoading = true;
    std::optional<FontMetadata> m_metadata;
    QHash<quint32, double> m_axisValues;
    std::unique_ptr<SampleRenderer> m_renderer;

    QVBoxLayout *m_layout = nullptr;
    QLabel *m_status = nullptr;
    QWidget *m_details = nullptr;
    QLabel *m_heading = nullptr;
    QHash<QString, QLabel *> m_values;
    QPushButton *m_activate = nullptr;
    QLineEdit *m_textField = nullptr;
    QPushButton *m_clear = nullptr;
    QLabel *m_sizeLabel = nullptr;
    QSlider *m_sizeSlider = nullptr;
    QCheckBox *m_waterfall = nullptr;
    SampleView *m_sample = nullptr;
    QLabel *m_noPreview = nullptr;
    AxisControls *m_axes = nullptr;
    FeatureToggles *m_features = nullptr;
    QWidget *m_characterSet = nullptr;
    SampleView *m_characters = nullptr;
};
