#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs Morvane into a throwaway prefix and checks what the desktop reads from it:
# the launcher entry, the icon and the AppStream metainfo.
set -euo pipefail
build=$1
id=$2 # what the program passes to QGuiApplication::setDesktopFileName
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null
share=$prefix/share
for f in "$prefix/bin/morvane" "$share/applications/$id.desktop" "$share/man/man1/morvane.1" \
         "$share/icons/hicolor/scalable/apps/$id.svg" "$share/icons/hicolor/16x16/apps/$id.svg" "$share/metainfo/$id.metainfo.xml"; do
  [ -e "$f" ] || { echo "not installed: ${f#"$prefix"/}"; exit 1; }
done
entry=$share/applications/$id.desktop
# Debian 12's validator knows the entry format up to 1.4; SingleMainWindow is 1.5's
# (GNOME and KDE read it): that one complaint is expected, any other fails.
problems=$(desktop-file-validate "$entry" 2>&1 | grep -v 'key "SingleMainWindow" in group "Desktop Entry"' || true)
[ -z "$problems" ] || { echo "$problems"; exit 1; }
appstreamcli validate --no-net --explain "$share/metainfo/$id.metainfo.xml"
grep -qx 'Exec=morvane %F' "$entry" || { echo "Exec is not morvane %F"; exit 1; }
grep -qx 'SingleMainWindow=true' "$entry" || { echo "no SingleMainWindow=true"; exit 1; }
grep -qx "Icon=$id" "$entry" || { echo "Icon is not $id"; exit 1; }
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" "$share/metainfo/$id.metainfo.xml" ||
  { echo "the metainfo does not launch $id.desktop"; exit 1; }
# "Open With" offers Morvane for every type shared-mime-info gives our font files.
types=$(sed -n 's/^MimeType=//p' "$entry")
for t in font/ttf font/otf font/collection application/x-font-ttf application/x-font-otf; do
  case ";$types" in *";$t;"*) ;; *) echo "MimeType lacks $t"; exit 1 ;; esac
done
if [ -f /usr/share/mime/packages/freedesktop.org.xml ]; then
  for ext in ttf otf ttc; do
    t=$(python3 -c "import re,sys;s=open('/usr/share/mime/packages/freedesktop.org.xml').read();print(next(m.group(1) for m in re.finditer(r'<mime-type type=\"([^\"]+)\">(.*?)</mime-type>',s,re.S) if re.search(r'<glob pattern=\"\\*\\.$ext\"',m.group(2)) and m.group(1).startswith('font/')))")
    case ";$types" in *";$t;"*) ;; *) echo "MimeType lacks $t, the type of .$ext"; exit 1 ;; esac
  done
fi
grep -q '^\.SH SYNOPSIS' "$share/man/man1/morvane.1" || { echo "the man page has no synopsis"; exit 1; }
summary=$(sed -n 's:.*<summary>\(.*\)</summary>.*:\1:p' "$share/metainfo/$id.metainfo.xml")
[ ${#summary} -le 35 ] || { echo "the summary is longer than a software centre shows: $summary"; exit 1; }
meta=$share/metainfo/$id.metainfo.xml
# What a software centre shows: screenshots with captions, a content rating, releases.
python3 - "$meta" <<'PY' || exit 1
import sys, xml.etree.ElementTree as ET
root = ET.parse(sys.argv[1]).getroot()
lang = "{http://www.w3.org/XML/1998/namespace}lang"
shots = root.findall("screenshots/screenshot")
problems = []
if not shots:
    problems.append("no screenshots")
for shot in shots:
    if not (shot.findtext("image") or "").startswith("https://"):
        problems.append("a screenshot without an https image")
    if not [c for c in shot.findall("caption") if lang not in c.attrib]:
        problems.append("a screenshot without a caption")
if root.find("content_rating") is None:
    problems.append("no content rating")
if not root.findall("releases/release"):
    problems.append("no releases")
if not [s for s in root.findall("summary") if s.get(lang) == "de"]:
    problems.append("no German summary")
print("\n".join(problems))
sys.exit(1 if problems else 0)
PY
# German, all the way: the launcher entry, and the compiled texts beside the program.
grep -q '^Comment\[de\]=' "$entry" || { echo "the entry has no German comment"; exit 1; }
grep -q '^GenericName\[de\]=' "$entry" || { echo "the entry has no German generic name"; exit 1; }
for language in de en; do
  [ -s "$share/morvane/translations/morvane_$language.qm" ] || { echo "morvane_$language.qm is not installed"; exit 1; }
done
help=$(LANG=de_DE.UTF-8 LANGUAGE=de QT_QPA_PLATFORM=offscreen "$prefix/bin/morvane" --help)
case "$help" in *"Ordner voller Schriften"*) ;; *) echo "the installed program's help is not German under LANG=de_DE.UTF-8"; exit 1 ;; esac
echo "install ok"
