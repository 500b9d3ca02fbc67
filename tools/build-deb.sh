#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the Debian package from a clean copy of the committed tree plus any changes
# not yet committed, in <build>/deb, so that nothing is written beside the repository.
# Usage: tools/build-deb.sh [BUILD_DIR]   -> BUILD_DIR/deb/morvane_<version>_<arch>.deb
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=$(realpath -m "${1:-$root/build}")/deb
version=$(dpkg-parsechangelog -l "$root/debian/changelog" -S Version)
rm -rf "$out"
mkdir -p "$out/morvane-$version"
# The sources as they are, without build trees or the repository itself.
tar -C "$root" --exclude=./build --exclude='./build-*' --exclude=./.git -cf - . | tar -C "$out/morvane-$version" -xf -
cd "$out/morvane-$version"
DEB_BUILD_OPTIONS="parallel=$(nproc) ${DEB_BUILD_OPTIONS:-}" dpkg-buildpackage -us -uc -b >"$out/build.log" 2>&1 ||
  { tail -40 "$out/build.log"; exit 1; }
ls "$out"/morvane_"$version"_*.deb
