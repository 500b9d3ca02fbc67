// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QMenu;

// Gives each item of a menu (and of its submenus) a keyboard mnemonic: the first letter
// of its text that no other item of that menu has taken, underlined when Alt is held.
// The text shown and read aloud stays the same.
namespace Mnemonics {

void assign(QMenu *menu);

} // namespace Mnemonics
