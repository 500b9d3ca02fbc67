// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>
#include <utility>

// A decoded value or the text of what went wrong. Decoders never throw across
// the library boundary; callers print or wrap the error text instead.
template <typename T>
class Expected
{
public:
    Expected(T value) : m_value(std::move(value)) {}
    static Expected failure(QString error)
    {
        Expected result;
        result.m_error = std::move(error);
        return result;
    }

    bool hasValue() const { return m_value.has_value(); }
    explicit operator bool() const { return hasValue(); }
    const T &value() const & { return *m_value; }
    T &&value() && { return std::move(*m_value); }
    const QString &error() const { return m_error; }

private:
    Expected() = default;
    std::optional<T> m_value;
    QString m_error;
};
