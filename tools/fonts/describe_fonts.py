#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Prints what fontTools reads from font files, as JSON, for Morvane's tests to
compare with its own reader.

Usage: describe_fonts.py FONT...
A file fontTools can't read gives null. Collections give their first face.
The name rules are Morvane's documented ones, applied here with fontTools' own
decoding: English (US) Windows, then English Mac, then other English, then the rest
in table order; within each, Unicode records before legacy encodings; control
characters dropped; an empty name counts as missing.
"""
import json
import sys
import unicodedata

from fontTools.ttLib import TTCollection, TTFont

UNICODE_WINDOWS = {0, 1, 10}


def language_rank(record):
    if record.platformID == 3 and record.langID == 0x0409:
        return 0
    if record.platformID == 1 and record.langID == 0:
        return 1
    if record.platformID == 3 and (record.langID & 0x3FF) == 0x09:
        return 2
    return 3


def is_unicode(record):
    return record.platformID == 0 or (record.platformID == 3 and record.platEncID in UNICODE_WINDOWS)


def decodable(record):
    return is_unicode(record) or record.platformID == 3 and record.platEncID in (2, 3, 4, 5, 6) \
        or record.platformID == 1 and record.platEncID in (0, 1, 2, 3, 25)


def name(font, name_id):
    best = None
    for index, record in enumerate(font["name"].names):
        if record.nameID != name_id or not decodable(record):
            continue
        try:
            text = record.toUnicode()
        except UnicodeDecodeError:
            continue
        text = "".join(c for c in text if unicodedata.category(c) != "Cc")
        if not text:
            continue
        key = (language_rank(record) * 2 + (0 if is_unicode(record) else 1), index)
        if best is None or key < best[0]:
            best = (key, text)
    return best[1] if best else ""


def describe(path):
    try:
        if path.lower().endswith((".ttc", ".otc")):
            font = TTCollection(path).fonts[0]
        else:
            font = TTFont(path, lazy=True)
        font["name"]
    except Exception:
        return None
    axes = []
    if "fvar" in font:
        for axis in font["fvar"].axes:
            axes.append({"tag": axis.axisTag, "name": name(font, axis.axisNameID) or axis.axisTag,
                         "min": axis.minValue, "default": axis.defaultValue, "max": axis.maxValue})
    return {
        "postScriptName": name(font, 6),
        "familyName": name(font, 16) or name(font, 1),
        "styleName": name(font, 17) or name(font, 2) or "Regular",
        "fullName": name(font, 4),
        "glyphCount": font["maxp"].numGlyphs,
        "axes": axes,
    }


print(json.dumps({path: describe(path) for path in sys.argv[1:]}, ensure_ascii=False))
