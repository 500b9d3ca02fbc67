#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes a library of many font families for Morvane's font list benchmarks: FAMILIES
families, each a Regular and a Bold face, taken in turn from DejaVu Sans, Serif and Sans
Mono cut down to the letters of Western and Central European languages, and renamed
"Sample Bcdfg" ... so that every family is a family of its own, with its own files.

Usage: make_family_corpus.py OUTPUT_FOLDER FAMILIES
Needs Debian's python3-fonttools and fonts-dejavu-core (run with /usr/bin/python3).
Files already there with the right size are kept, so a second run costs a listing.
"""
import io
import os
import sys

from fontTools import subset
from fontTools.ttLib import TTFont

DEJAVU = "/usr/share/fonts/truetype/dejavu/"
BASES = [("DejaVuSans", "Sans"), ("DejaVuSerif", "Serif"), ("DejaVuSansMono", "Mono")]
STYLES = [("", "Regular"), ("-Bold", "Bold")]
# Basic Latin, Latin-1 and the Hungarian double accents: enough for en, de, fr, hu, ...
UNICODES = list(range(0x20, 0x7F)) + list(range(0xA0, 0x100)) + [0x150, 0x151, 0x170, 0x171]
TOKEN = "QQQQQ"  # five letters in every name, replaced per family
LETTERS = "bcdfghjklmnprstvwxz"


def template(base, suffix, style):
    """The font's bytes with TOKEN where each family's letters go."""
    font = TTFont(DEJAVU + base + suffix + ".ttf")
    options = subset.Options()
    options.layout_features = []
    options.hinting = False
    options.drop_tables += ["FFTM", "kern", "GPOS", "GSUB"]
    subsetter = subset.Subsetter(options)
    subsetter.populate(unicodes=UNICODES)
    subsetter.subset(font)
    family = "Sample " + TOKEN
    names = {1: family, 2: style, 3: family + " " + style, 4: family + " " + style,
             6: "Sample" + TOKEN + "-" + style, 16: family, 17: style}
    table = font["name"]
    table.names = []
    for name_id, text in names.items():
        table.setName(text, name_id, 3, 1, 0x409)
        table.setName(text, name_id, 1, 0, 0)
    out = io.BytesIO()
    font.save(out)
    return out.getvalue()


def letters(number):
    text = ""
    for _ in range(5):
        number, digit = divmod(number, len(LETTERS))
        text += LETTERS[digit]
    return text[0].upper() + text[1:]


def main(out, families):
    os.makedirs(out, exist_ok=True)
    templates = {(base, suffix): template(base, suffix, style)
                 for base, _ in BASES for suffix, style in STYLES}
    tokens = (TOKEN.encode("ascii"), TOKEN.encode("utf-16-be"))
    for number in range(families):
        base, kind = BASES[number % len(BASES)]
        name = letters(number)
        folder = os.path.join(out, "%03d" % (number // 500))
        os.makedirs(folder, exist_ok=True)
        for suffix, style in STYLES:
            data = templates[(base, suffix)]
            path = os.path.join(folder, "Sample%s-%s-%s.ttf" % (name, kind, style))
            if os.path.exists(path) and os.path.getsize(path) == len(data):
                continue
            data = data.replace(tokens[0], name.encode("ascii"))
            data = data.replace(tokens[1], name.encode("utf-16-be"))
            with open(path, "wb") as f:
                f.write(data)


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]))
