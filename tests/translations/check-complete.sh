#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The German translation is complete: every text in the sources as they are now (not
# only those gathered last time) has a German translation, and every plural both forms.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
for language in de en; do
  cp "$root/translations/morvane_$language.ts" "$scratch/"
done
/usr/lib/qt6/bin/lupdate -silent -locations none -no-obsolete "$root/src" -ts "$scratch/morvane_de.ts" 2>/dev/null
/usr/lib/qt6/bin/lupdate -silent -locations none -no-obsolete -pluralonly "$root/src" -ts "$scratch/morvane_en.ts" 2>/dev/null
python3 - "$scratch" <<'PY'
import sys, xml.etree.ElementTree as ET
bad = []
for language in ("de", "en"):
    for message in ET.parse(f"{sys.argv[1]}/morvane_{language}.ts").iter("message"):
        translation = message.find("translation")
        forms = [f.text for f in translation.findall("numerusform")]
        if translation.get("type") == "unfinished" or (message.get("numerus") == "yes" and (len(forms) != 2 or not all(forms))):
            bad.append(f"{language}: {message.findtext('source')}")
for line in bad:
    print("untranslated:", line)
print(f"{len(bad)} untranslated")
sys.exit(1 if bad else 0)
PY
