#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# A virtual display, a private session bus and the accessibility bus, then the script.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# Nothing here touches the real user's home; Morvane gets a home of its own as well.
export HOME=$scratch XDG_DATA_HOME=$scratch/data XDG_CONFIG_HOME=$scratch/config XDG_CACHE_HOME=$scratch/cache
inside=$scratch/inside.sh
cat > "$inside" <<INSIDE
#!/usr/bin/env bash
export XDG_RUNTIME_DIR=$scratch/run
mkdir -m 700 -p \$XDG_RUNTIME_DIR
/usr/libexec/at-spi-bus-launcher --launch-immediately >/dev/null 2>&1 &
# Morvane looks for the accessibility bus once, at start: it must be up by then.
for _ in \$(seq 100); do
  dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress >/dev/null 2>&1 && break
  sleep 0.1
done
exec /usr/bin/python3 "$here/drive_window.py" "$1"
INSIDE
chmod +x "$inside"
xvfb-run -a -s '-screen 0 1280x800x24' dbus-run-session -- "$inside"
