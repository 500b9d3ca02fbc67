// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What an activation button shows for a font, folder or collection.
enum class ActivationState { Inactive, Active, Mixed };

// The one rule for every kind: nothing active (or nothing at all) is inactive,
// everything active is active, anything between is mixed.
inline ActivationState activationStateFor(long long activeCount, long long totalCount)
{
    if (totalCount == 0 || activeCount == 0)
        return ActivationState::Inactive;
    return activeCount == totalCount ? ActivationState::Active : ActivationState::Mixed;
}
