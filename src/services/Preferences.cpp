// SPDX-License-Identifier: GPL-3.0-or-later
#include "Preferences.h"

#include "SaveQueue.h"

#include <QSettings>

#include <algorithm>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

QString Preferences::defaultPreviewText()
{
    return u"The quick brown fox jumps over the lazy dog"_s;
}

Preferences::Preferences(SaveQueue &queue)
    : m_queue(queue)
{
}

QString Preferences::settingsPath() const
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/Morvane/"_s +
           QLatin1StringView(fileName);
}

QString Preferences::previewText() const
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        if (m_unsaved->text)
            return *m_unsaved->text;
    }
    const QSettings settings(settingsPath(), QSettings::IniFormat);
    const QVariant value = settings.value(QLatin1StringView(previewTextKey));
    return value.isValid() ? value.toString() : defaultPreviewText();
}

double Preferences::previewSize() const
{
    std::optional<double> unsaved;
    {
        const std::lock_guard lock(m_unsaved->mutex);
        unsaved = m_unsaved->size;
    }
    bool ok = unsaved.has_value();
    double size = unsaved.value_or(0);
    if (!unsaved) {
        const QSettings settings(settingsPath(), QSettings::IniFormat);
        size = settings.value(QLatin1StringView(previewSizeKey)).toDouble(&ok);
    }
    return ok && size > 0 ? size : defaultPreviewSize;
}

namespace {
constexpr const char *kGeometryKey = "morvane_window_geometry";
constexpr const char *kSidebarKey = "morvane_sidebar_width";
constexpr const char *kListSizeKey = "morvane_list_size";
constexpr const char *kCopiesKey = "morvane_copy_fonts_for_sandboxes";
constexpr const char *kUntilLogoutKey = "morvane_session_fonts_until_logout";
} // namespace

bool Preferences::sessionFontsLastUntilLogout() const
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        if (m_unsaved->untilLogout)
            return *m_unsaved->untilLogout;
    }
    return QSettings(settingsPath(), QSettings::IniFormat).value(QLatin1StringView(kUntilLogoutKey), false).toBool();
}

void Preferences::setSessionFontsLastUntilLogout(bool untilLogout)
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        m_unsaved->untilLogout = untilLogout;
    }
    scheduleWrite();
}

bool Preferences::copiesForSandboxes() const
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        if (m_unsaved->copies)
            return *m_unsaved->copies;
    }
    return QSettings(settingsPath(), QSettings::IniFormat).value(QLatin1StringView(kCopiesKey), false).toBool();
}

void Preferences::setCopiesForSandboxes(bool allowed)
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        m_unsaved->copies = allowed;
    }
    scheduleWrite();
}

double Preferences::listSize() const
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        if (m_unsaved->listSize)
            return *m_unsaved->listSize;
    }
    bool ok = false;
    const double size = QSettings(settingsPath(), QSettings::IniFormat).value(QLatin1StringView(kListSizeKey)).toDouble(&ok);
    return ok && size >= 12 && size <= 96 ? size : defaultListSize; // a hand-edited value out of range is not kept
}

void Preferences::setListSize(double size)
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        m_unsaved->listSize = std::clamp(size, 12.0, 96.0);
    }
    scheduleWrite();
}

QByteArray Preferences::windowGeometry() const
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        if (m_unsaved->geometry)
            return *m_unsaved->geometry;
    }
    return QSettings(settingsPath(), QSettings::IniFormat).value(QLatin1StringView(kGeometryKey)).toByteArray();
}

int Preferences::sidebarWidth() const
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        if (m_unsaved->sidebarWidth)
            return *m_unsaved->sidebarWidth;
    }
    return std::max(0, QSettings(settingsPath(), QSettings::IniFormat).value(QLatin1StringView(kSidebarKey)).toInt());
}

void Preferences::setWindowLayout(const QByteArray &geometry, int sidebarWidth)
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        m_unsaved->geometry = geometry;
        m_unsaved->sidebarWidth = sidebarWidth;
    }
    scheduleWrite();
}

void Preferences::setPreviewText(const QString &text)
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        m_unsaved->text = text;
    }
    scheduleWrite();
}

void Preferences::setPreviewSize(double size)
{
    {
        const std::lock_guard lock(m_unsaved->mutex);
        m_unsaved->size = size;
    }
    scheduleWrite();
}

void Preferences::scheduleWrite()
{
    // The write takes whatever is unsaved when it runs; values stay readable until then.
    m_queue.queue(
        QLatin1StringView(fileName),
        [unsaved = m_unsaved, path = settingsPath()]() -> std::optional<QString> {
            QSettings settings(path, QSettings::IniFormat);
            std::optional<QString> text;
            std::optional<double> size;
            std::optional<QByteArray> geometry;
            std::optional<int> sidebar;
            std::optional<double> listSize;
            std::optional<bool> copies;
            std::optional<bool> untilLogout;
            {
                const std::lock_guard lock(unsaved->mutex);
                text = unsaved->text;
                size = unsaved->size;
                geometry = unsaved->geometry;
                sidebar = unsaved->sidebarWidth;
                listSize = unsaved->listSize;
                copies = unsaved->copies;
                untilLogout = unsaved->untilLogout;
            }
            if (text)
                settings.setValue(QLatin1StringView(previewTextKey), *text);
            if (size)
                settings.setValue(QLatin1StringView(previewSizeKey), *size);
            if (geometry)
                settings.setValue(QLatin1StringView(kGeometryKey), *geometry);
            if (sidebar)
                settings.setValue(QLatin1StringView(kSidebarKey), *sidebar);
            if (listSize)
                settings.setValue(QLatin1StringView(kListSizeKey), *listSize);
            if (copies)
                settings.setValue(QLatin1StringView(kCopiesKey), *copies);
            if (untilLogout)
                settings.setValue(QLatin1StringView(kUntilLogoutKey), *untilLogout);
            settings.sync();
            if (settings.status() != QSettings::NoError)
                return u"can't write %1"_s.arg(path);
            // Written: reads go to the file again, unless a newer value came meanwhile.
            const std::lock_guard lock(unsaved->mutex);
            if (unsaved->text == text)
                unsaved->text.reset();
            if (unsaved->size == size)
                unsaved->size.reset();
            if (unsaved->geometry == geometry)
                unsaved->geometry.reset();
            if (unsaved->sidebarWidth == sidebar)
                unsaved->sidebarWidth.reset();
            if (unsaved->listSize == listSize)
                unsaved->listSize.reset();
            if (unsaved->copies == copies)
                unsaved->copies.reset();
            if (unsaved->untilLogout == untilLogout)
                unsaved->untilLogout.reset();
            return std::nullopt;
        },
        u"Failed to save preferences: "_s, 500ms);
}
