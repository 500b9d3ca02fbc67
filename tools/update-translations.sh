#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Gathers every text put through tr() into translations/*.ts, keeping what is already
# translated. English holds only the plural forms ("%n font(s)" -> "1 font", "2 fonts").
set -euo pipefail
cd "$(dirname "$0")/.."
lupdate=/usr/lib/qt6/bin/lupdate
"$lupdate" -silent -locations none -no-obsolete src -ts translations/morvane_de.ts
"$lupdate" -silent -locations none -no-obsolete -pluralonly src -ts translations/morvane_en.ts
