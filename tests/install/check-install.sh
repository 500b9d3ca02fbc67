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
for f in "$prefix/bin/morvane" "$share/applications/$id.desktop" \
         "$share/icons/hicolor/scalable/apps/$id.svg" "$share/metainfo/$id.metainfo.xml"; do
  [ -e "$f" ] || { echo "not installed: ${f#"$prefix"/}"; exit 1; }
done
entry=$share/applications/$id.desktop
desktop-file-validate "$entry"
appstreamcli validate --no-net --explain "$share/metainfo/$id.metainfo.xml"
grep -qx 'Exec=morvane' "$entry" || { echo "Exec is not morvane"; exit 1; }
grep -qx "Icon=$id" "$entry" || { echo "Icon is not $id"; exit 1; }
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" "$share/metainfo/$id.metainfo.xml" ||
  { echo "the metainfo does not launch $id.desktop"; exit 1; }
if grep -q '^MimeType=' "$entry"; then echo "Morvane opens no single files: no MimeType"; exit 1; fi
echo "install ok"
