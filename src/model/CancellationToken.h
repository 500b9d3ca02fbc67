// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <functional>
#include <memory>

// What a background job polls to learn it should stop. Either a shared flag that
// the job's owner sets, or a check of the owner's choosing (a promise's
// isCanceled, say). A default-constructed token is never cancelled.
class CancellationToken
{
public:
    CancellationToken() = default;
    static CancellationToken create() { return CancellationToken(std::make_shared<std::atomic_bool>(false), {}); }
    static CancellationToken fromCheck(std::function<bool()> check) { return CancellationToken({}, std::move(check)); }

    void cancel() const
    {
        if (m_flag)
            m_flag->store(true, std::memory_order_relaxed);
    }
    bool isCancelled() const
    {
        if (m_flag && m_flag->load(std::memory_order_relaxed))
            return true;
        return m_check && m_check();
    }

private:
    CancellationToken(std::shared_ptr<std::atomic_bool> flag, std::function<bool()> check)
        : m_flag(std::move(flag)), m_check(std::move(check))
    {
    }
    std::shared_ptr<std::atomic_bool> m_flag;
    std::function<bool()> m_check;
};
