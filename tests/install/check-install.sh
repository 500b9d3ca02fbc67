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
         "$share/icons/hicolor/scalable/apps/$id.svg" "$share/metainfo/$id.metainfo.xml"; do
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
echo "install ok"
