// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What an activation button shows for a font, folder or collection. Session: a font
// active only until the session ends (never saved as active).
enum class ActivationState { Inactive, Active, Mixed, Session };

// Active, for now or for good: what a button's click then switches off.
inline bool isOn(ActivationState state)
{
    return state == ActivationState::Active || state == ActivationState::Session;
}

// The one rule for every kind: nothing active (or nothing at all) is inactive,
// everything active is active, anything between is mixed.
inline ActivationState activationStateFor(long long activeCount, long long totalCount)
{
    if (totalCount == 0 || activeCount == 0)
        return ActivationState::Inactive;
    return activeCount == totalCount ? ActivationState::Active : ActivationState::Mixed;
}
