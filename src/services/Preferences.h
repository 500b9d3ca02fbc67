// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <mutex>
#include <optional>

class SaveQueue;

// The preview text and size, in a settings file under $XDG_CONFIG_HOME/Morvane. A change
// is written by the save queue after a pause of half a second (and at quit), so typing
// or dragging the size slider costs one write, never one on the interface thread; a
// failure reaches the save-failure banner like any other save. Reads see the latest
// value at once.
class Preferences
{
public:
    static constexpr const char *previewTextKey = "morvane_preview_text";
    static constexpr const char *previewSizeKey = "morvane_preview_size";
    static constexpr double defaultPreviewSize = 36.0;
    static constexpr const char *fileName = "Morvane.conf";
    static QString defaultPreviewText();

    explicit Preferences(SaveQueue &queue);

    QString previewText() const;
    void setPreviewText(const QString &text);
    double previewSize() const;
    void setPreviewSize(double size);
    QString settingsPath() const;
    // The font list's sample size in points, 12 to 96.
    static constexpr double defaultListSize = 24.0;
    double listSize() const;
    void setListSize(double size);
    // Where the window was and how wide its sidebar, as the window last left them:
    // opaque bytes the window makes and reads, empty and 0 when never saved.
    QByteArray windowGeometry() const;
    int sidebarWidth() const;
    void setWindowLayout(const QByteArray &geometry, int sidebarWidth);
    // Whether fonts that sandboxed programs can't otherwise see are copied for them.
    bool copiesForSandboxes() const;
    void setCopiesForSandboxes(bool allowed);
    // Whether fonts activated for this session stay active until logout, not until quit.
    bool sessionFontsLastUntilLogout() const;
    void setSessionFontsLastUntilLogout(bool untilLogout);

private:
    struct Unsaved
    {
        std::mutex mutex;
        std::optional<QString> text;
        std::optional<double> size;
        std::optional<QByteArray> geometry;
        std::optional<int> sidebarWidth;
        std::optional<double> listSize;
        std::optional<bool> copies;
        std::optional<bool> untilLogout;
    };
    void scheduleWrite();

    SaveQueue &m_queue;
    std::shared_ptr<Unsaved> m_unsaved = std::make_shared<Unsaved>(); // shared with the queued write
};
