// SPDX-License-Identifier: GPL-3.0-or-later
#include "Assembly.h"

#include "services/FontActivationService.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"

namespace Assembly {

WindowStore store(std::unique_ptr<FontActivating> activation)
{
    WindowStore built;
    built.activation = activation ? std::move(activation) : std::make_unique<FontActivationService>();
    built.persistence = std::make_unique<PersistenceService>();
    built.state = std::make_unique<AppState>(*built.activation, *built.persistence);
    return built;
}

} // namespace Assembly
