#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when a floor of Morvane includes a floor above it, or one it has no business
with: the README's Architecture section, as a test. Usage: check_floors.py SRC_FOLDER"""
import os
import re
import sys

# What each floor may include besides itself; anything else of ours is a fault.
ALLOWED = {
    "model": set(),
    "discovery": {"model"},
    "fonts": set(),
    "services": {"fonts", "discovery", "model"},
    "state": {"services", "fonts", "discovery", "model"},
    "ui": {"state", "services", "fonts", "model"},
    "app": {"ui", "state", "services", "fonts", "discovery", "model"},
}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def main(src):
    faults = []
    for floor, allowed in ALLOWED.items():
        for folder, _, files in os.walk(os.path.join(src, floor)):
            for name in files:
                if not name.endswith((".h", ".cpp")):
                    continue
                path = os.path.join(folder, name)
                with open(path, encoding="utf-8") as source:
                    for included in INCLUDE.findall(source.read()):
                        top = included.split("/")[0] if "/" in included else floor
                        if top in ALLOWED and top != floor and top not in allowed:
                            faults.append("%s includes %s" % (os.path.relpath(path, src), included))
    for fault in faults:
        print(fault)
    print("%d passed, %d failed" % (len(ALLOWED), len({f.split("/")[0] for f in faults})))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
