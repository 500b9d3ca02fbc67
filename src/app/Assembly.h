// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/window/MainWindow.h"

#include <memory>

class FontActivating;

// The shell builds what the window stands on: the activation and persistence services
// and the one store over them. Tests hand in another way of activating fonts.
namespace Assembly {

WindowStore store(std::unique_ptr<FontActivating> activation = {});

} // namespace Assembly
