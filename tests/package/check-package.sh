#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Checks a built Debian package: lintian finds no error, and unpacked into a temporary
# root it holds a stripped program that starts, the launcher entry, the icon, the
# metainfo, the manual page and the translations.
# Usage: tests/package/check-package.sh build/deb/morvane_<version>_<arch>.deb
set -euo pipefail
deb=$(realpath "$1")
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
lintian --fail-on error --tag-display-limit 0 "$deb"
dpkg-deb -x "$deb" "$root"
id=org.morvane.Morvane
for f in usr/bin/morvane "usr/share/applications/$id.desktop" "usr/share/icons/hicolor/scalable/apps/$id.svg" "usr/share/icons/hicolor/16x16/apps/$id.svg" \
         "usr/share/metainfo/$id.metainfo.xml" usr/share/man/man1/morvane.1.gz \
         usr/share/morvane/translations/morvane_de.qm usr/share/morvane/translations/morvane_en.qm; do
  [ -e "$root/$f" ] || { echo "the package lacks /$f"; exit 1; }
done
if readelf -S "$root/usr/bin/morvane" | grep -q '\.symtab'; then
  echo "the packaged program is not stripped"; exit 1
fi
version=$(dpkg-deb -f "$deb" Version)
shown=$(QT_QPA_PLATFORM=offscreen "$root/usr/bin/morvane" --version)
[ "$shown" = "Morvane $version" ] || { echo "the packaged program says '$shown', not 'Morvane $version'"; exit 1; }
echo "package ok: $(basename "$deb")"
