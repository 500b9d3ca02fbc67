#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the Debian 12 packages Morvane needs to build, test and benchmark.
# Installs only what is missing; does nothing (and needs no network) when all is present.
set -euo pipefail

packages=(
  # toolchain
  g++ cmake make pkg-config
  # Qt 6 (Core, Gui, Widgets, Concurrent, DBus, Test) and SVG icons
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev libgl-dev
  # translations: Qt Linguist (lupdate, lrelease, CMake support) and Qt's own texts
  qt6-tools-dev qt6-l10n-tools qt6-translations-l10n
  # coroutines over QFuture
  qcoro-qt6-dev
  # font parsing, shaping and registration
  libfreetype-dev libharfbuzz-dev libfontconfig-dev fontconfig
  # the font catalogue: an SQLite database with full-text search
  libsqlite3-dev
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  # real fonts for tests, and a generator for fonts with chosen names and axes
  fonts-dejavu-core fonts-inter-variable python3 python3-fonttools
  # checks of the installed desktop entry and AppStream metainfo
  desktop-file-utils appstream
  # the Debian package (make deb) and its check
  debhelper dpkg-dev lintian
  # a sandboxed app's view of the user's fonts, made as Flatpak makes it
  bubblewrap
  # a screen reader's view of the real window: virtual display, session bus, AT-SPI
  xvfb xauth dbus at-spi2-core python3-pyatspi
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing missing packages: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
