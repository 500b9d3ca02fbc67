#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fills translations/<lang>.ts from a table of source text -> translation.

Usage: fill_translations.py TS_FILE TABLE.py
TABLE.py defines TEXTS = {source: translation or (singular, plural)}.
Messages already translated are kept; those in the table are (re)written; the rest
are left unfinished and listed, so that a missing text is seen."""
import runpy
import sys
import xml.etree.ElementTree as ET


def main():
    ts_path, table_path = sys.argv[1], sys.argv[2]
    texts = runpy.run_path(table_path)["TEXTS"]
    tree = ET.parse(ts_path)
    missing = []
    for message in tree.iter("message"):
        source = message.findtext("source")
        translation = message.find("translation")
        if source not in texts:
            if translation.get("type") == "unfinished":
                missing.append(source)
            continue
        wanted = texts[source]
        for child in list(translation):
            translation.remove(child)
        translation.text = None
        if message.get("numerus") == "yes":
            forms = wanted if isinstance(wanted, tuple) else (wanted, wanted)
            translation.text = "\n            "
            for form in forms:
                element = ET.SubElement(translation, "numerusform")
                element.text = form
        else:
            translation.text = wanted if isinstance(wanted, str) else wanted[0]
        translation.attrib.pop("type", None)
    tree.write(ts_path, encoding="utf-8", xml_declaration=True)
    with open(ts_path, "r+", encoding="utf-8") as ts:
        body = ts.read().replace("<?xml version='1.0' encoding='utf-8'?>", '<?xml version="1.0" encoding="utf-8"?>\n<!DOCTYPE TS>', 1)
        ts.seek(0)
        ts.write(body)
        ts.truncate()
    for source in missing:
        print("untranslated:", source.replace("\n", "\\n"))
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
