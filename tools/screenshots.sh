#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Makes the README's screenshots: Morvane on a generated sample library, under a virtual
# X display, in a throwaway home folder. Writes docs/screenshots/*.png.
#   tools/screenshots.sh [build/src/app/morvane]
# Needs xvfb, xauth, xdotool, imagemagick and attr; installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."
bin=$(realpath "${1:-build/src/app/morvane}")
[ -x "$bin" ] || { echo "screenshots: build first (make build)"; exit 2; }
out=$PWD/docs/screenshots
mkdir -p "$out"

need=()
for p in xvfb xauth xdotool imagemagick attr dbus fonts-dejavu-core fonts-inter-variable; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || need+=("$p")
done
if [ ${#need[@]} -gt 0 ]; then
  s=(); [ "$(id -u)" -ne 0 ] && s=(sudo)
  DEBIAN_FRONTEND=noninteractive "${s[@]}" apt-get install -y -qq --no-install-recommends "${need[@]}" >/dev/null
fi

work=$(mktemp -d /tmp/morvane-screens.XXXXXX)
trap 'rm -rf "$work"' EXIT

# A small library: DejaVu in nested folders, Inter's variable font, two licence tags,
# two collections and a few active fonts.
sample_home() {
  local home=$1 lib=$1/Fonts dv=/usr/share/fonts/truetype/dejavu
  local data=$home/.local/share/Morvane
  mkdir -p "$data" "$home/.config" "$home/.cache" "$home/run"
  chmod 700 "$home/run"
  [ "${2:-}" = empty ] && return
  mkdir -p "$lib/Sans/Mono" "$lib/Serif" "$lib/Variable" "$lib/Licensed Pack" "$lib/Sans Display"
  cp "$dv"/DejaVuSans.ttf "$dv"/DejaVuSans-Bold.ttf "$dv"/DejaVuSans-Oblique.ttf "$lib/Sans/"
  cp "$dv"/DejaVuSansMono.ttf "$dv"/DejaVuSansMono-Bold.ttf "$lib/Sans/Mono/"
  cp "$dv"/DejaVuSerif.ttf "$dv"/DejaVuSerif-Bold.ttf "$lib/Serif/"
  cp "$dv"/DejaVuSans-Bold.ttf "$lib/Sans Display/Display Bold.ttf"
  cp "$(fc-list : file | grep -i 'inter.*var' | grep -vi italic | head -n1 | cut -d: -f1)" "$lib/Variable/InterVariable.ttf"
  cp "$dv"/DejaVuSerif-Bold.ttf "$lib/Licensed Pack/Pack Serif Bold.ttf"
  setfattr -n user.xdg.tags -v "Licensed" "$lib/Licensed Pack" 2>/dev/null || true
  setfattr -n user.xdg.tags -v "Trial" "$lib/Serif" 2>/dev/null || true
  printf '[{"id":"6F1C2A3B-1111-4222-8333-944455566677","path":"%s","name":"Fonts"}]' "$lib" > "$data/sources.json"
  printf '[{"id":"0A1B2C3D-0000-4000-8000-000000000001","name":"Favorites","members":[{"path":"%s","isDirectory":false},{"path":"%s","isDirectory":true}]},{"id":"0A1B2C3D-0000-4000-8000-000000000002","name":"Client Work","members":[{"path":"%s","isDirectory":false}]}]' \
    "$lib/Sans/DejaVuSans.ttf" "$lib/Serif" "$lib/Variable/InterVariable.ttf" > "$data/collections.json"
  printf '["%s","%s"]' "$lib/Sans/DejaVuSans.ttf" "$lib/Sans/Mono/DejaVuSansMono.ttf" > "$data/activated_fonts.json"
}

# shot NAME [empty] -- XDOTOOL-ARGS: one run of the window, one picture.
shot() {
  local name=$1 kind=$2; shift 3
  local home=$work/$name
  sample_home "$home" "$kind"
  cat > "$work/$name.sh" <<INSIDE
#!/usr/bin/env bash
export HOME=$home XDG_DATA_HOME=$home/.local/share XDG_CONFIG_HOME=$home/.config
export XDG_CACHE_HOME=$home/.cache XDG_RUNTIME_DIR=$home/run
"$bin" >"$work/$name.log" 2>&1 &
app=\$!
sleep 3
[ \$# -gt 0 ] && xdotool "\$@"
sleep 1
import -window root -crop 1100x650+0+0 +repage "$out/$name.png"
kill \$app; wait \$app 2>/dev/null || true
INSIDE
  chmod +x "$work/$name.sh"
  timeout 60 xvfb-run -a -s '-screen 0 1100x650x24' dbus-run-session -- "$work/$name.sh" "$@"
  echo "docs/screenshots/$name.png"
}

shot browser full -- mousemove 330 127 click 1 sleep 0.6 mousemove 570 179 click 1 sleep 1.5 mousemove 900 600
shot search full -- mousemove 550 35 click 1 sleep 0.3 key s a n s sleep 1 mousemove 900 600
shot empty empty --
shot fontlist full -- mousemove 80 95 click 1 sleep 2 mousemove 900 600
shot compare full -- mousemove 80 95 click 1 sleep 2 mousemove 300 133 click 1 keydown ctrl mousemove 300 241 click 1 mousemove 300 295 click 1 keyup ctrl sleep 0.5 mousemove 878 70 click 1 sleep 1.5 mousemove 900 600
