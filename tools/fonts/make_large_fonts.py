#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes COUNT distinct copies of a real font grown past SIZE bytes by a private
table, for Morvane's memory benchmark of large fonts (CJK families run to 10-30 MB).

Usage: make_large_fonts.py OUTPUT_FOLDER COUNT SIZE
Needs Debian's python3-fonttools and fonts-dejavu-core (run with /usr/bin/python3).
"""
import os
import shutil
import sys

from fontTools.ttLib import TTFont, newTable


def main(out, count, size):
    os.makedirs(out, exist_ok=True)
    first = os.path.join(out, "Large 000.ttf")
    if not os.path.exists(first) or os.path.getsize(first) < size:
        font = TTFont("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf")
        padding = newTable("zPad")
        padding.data = bytes(range(256)) * (size // 256 + 1)
        font["zPad"] = padding
        font.save(first)
    for i in range(1, count):
        path = os.path.join(out, "Large %03d.ttf" % i)
        if not os.path.exists(path) or os.path.getsize(path) != os.path.getsize(first):
            shutil.copyfile(first, path)


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]), int(sys.argv[3]))
