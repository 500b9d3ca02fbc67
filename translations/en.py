# SPDX-License-Identifier: GPL-3.0-or-later
# English plural forms (tools/fill_translations.py).
TEXTS = {
    "%n fonts couldn't be activated": ("%n font couldn't be activated", "%n fonts couldn't be activated"),
    "%n styles": ("%n style", "%n styles"),
    "%Ln fonts": ("%Ln font", "%Ln fonts"),
    "%n items can't be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.":
        ("%n item can't be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders.",
         "%n items can't be opened: Morvane opens font files (.ttf, .otf, .ttc, .otc, .dfont) and folders."),
    "%n font(s)": ("%n font", "%n fonts"),
    "%n item(s)": ("%n item", "%n items"),
}
