#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Drives the real Morvane window through the accessibility tree (AT-SPI), as a screen
reader does: every control it shows has a name; the search field, its clear button, the
search hits and a menu command all work without a mouse.

Run inside a virtual display and a private D-Bus session (see run_drive_window.sh).
Usage: drive_window.py MORVANE_BINARY
"""
import contextlib
import os
import shutil
import subprocess
import sys
import tempfile
import time

import pyatspi

NAMED_ROLES = {
    pyatspi.ROLE_PUSH_BUTTON, pyatspi.ROLE_TEXT, pyatspi.ROLE_CHECK_BOX, pyatspi.ROLE_SLIDER,
    pyatspi.ROLE_COMBO_BOX, pyatspi.ROLE_LIST, pyatspi.ROLE_TOGGLE_BUTTON, pyatspi.ROLE_ENTRY,
}
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)
        print("FAIL:", message)
    return condition


def walk(node):
    try:
        yield node
        for i in range(node.childCount):
            child = node.getChildAtIndex(i)
            if child is not None:
                yield from walk(child)
    except Exception:  # a node may vanish while the tree is read
        return


def showing(node):
    try:
        return node.getState().contains(pyatspi.STATE_SHOWING)
    except Exception:
        return False


def find(root, role, name, visible=True):
    for node in walk(root):
        try:
            if node.getRole() == role and node.name == name and (not visible or showing(node)):
                return node
        except Exception:
            pass
    return None


def wait_for(what, deadline=20):
    end = time.monotonic() + deadline
    while time.monotonic() < end:
        found = what()
        if found:
            return found
        time.sleep(0.1)
    return None


def sample_home():
    home = tempfile.mkdtemp(prefix="morvane-a11y-")
    env = dict(os.environ, HOME=home, XDG_DATA_HOME=home + "/.local/share", XDG_CONFIG_HOME=home + "/.config",
               XDG_CACHE_HOME=home + "/.cache", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_QPA_PLATFORM="xcb",
               LANG="C.UTF-8", LANGUAGE="", LC_ALL="C.UTF-8")  # English whatever the machine's locale
    library = home + "/Fonts"
    dejavu = "/usr/share/fonts/truetype/dejavu/"
    for folder, font in (("Noto Sans", dejavu + "DejaVuSans.ttf"), ("Noto Sans", dejavu + "DejaVuSansMono.ttf"),
                         ("Serif", dejavu + "DejaVuSerif.ttf"),
                         ("Variable", "/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf")):
        os.makedirs(library + "/" + folder, exist_ok=True)
        shutil.copy(font, library + "/" + folder)
    os.makedirs(env["XDG_DATA_HOME"] + "/Morvane")
    with open(env["XDG_DATA_HOME"] + "/Morvane/sources.json", "w") as saved:
        saved.write('[{"id":"6F1C1A52-0D63-4B4A-9C4E-1B2F8E3D42E2","name":"Fonts","path":"%s"}]' % library)
    return home, env


def states(node):
    try:
        return node.getState()
    except Exception:
        return None


def act(node, name):
    action = node.queryAction()
    names = [action.getName(i) for i in range(action.nActions)]
    if check(name in names, "%s offers no %s action (only %s)" % (node.name, name, names)):
        action.doAction(names.index(name))


def open_row(row):
    """Chooses a row as a click would."""
    act(row, "Press")


def states_and_values(app):
    """What a screen reader says of the window, a row's activation and an axis."""
    check(find(app, pyatspi.ROLE_FRAME, "Morvane") is not None, "the window is not named Morvane")
    folder = find(app, pyatspi.ROLE_LIST_ITEM, "Noto Sans")
    if not check(folder is not None, "no row Noto Sans in the browser"):
        return
    # Qt 6.4's bridge sends no "checkable" (the in-process tests check it is set); checked,
    # mixed, expandable and expanded come through.
    check(not states(folder).contains(pyatspi.STATE_CHECKED), "an inactive folder reads as checked")
    check(states(folder).contains(pyatspi.STATE_EXPANDABLE), "a folder row is not expandable")
    open_row(folder)
    check(wait_for(lambda: states(folder).contains(pyatspi.STATE_EXPANDED), 5), "an open folder does not read as expanded")
    font = wait_for(lambda: find(app, pyatspi.ROLE_LIST_ITEM, "DejaVuSans.ttf"))
    if not check(font is not None, "opening Noto Sans shows no DejaVuSans.ttf"):
        return
    # A toggle while the library is still being read at start is ignored, as a click
    # is: the user presses again.
    def toggled():
        if states(font).contains(pyatspi.STATE_CHECKED):
            return True
        act(font, "Toggle")
        time.sleep(0.5)
        return False
    check(wait_for(toggled), "an activated font does not read as checked")
    check(wait_for(lambda: states(folder).contains(pyatspi.STATE_INDETERMINATE), 5),
          "a folder with some fonts active does not read as mixed")

    variable = find(app, pyatspi.ROLE_LIST_ITEM, "Variable")
    if not check(variable is not None, "no row Variable"):
        return
    open_row(variable)
    inter = wait_for(lambda: find(app, pyatspi.ROLE_LIST_ITEM, "Inter-roman.var.ttf"))
    if not check(inter is not None, "opening Variable shows no Inter"):
        return
    open_row(inter)
    weight = wait_for(lambda: find(app, pyatspi.ROLE_SLIDER, "Weight"))
    if check(weight is not None, "the preview of Inter has no Weight slider"):
        value = weight.queryValue()
        check((value.minimumValue, value.currentValue, value.maximumValue) == (100.0, 400.0, 900.0),
              "Weight reads %s in %s to %s, not 400 in 100 to 900"
              % (value.currentValue, value.minimumValue, value.maximumValue))


@contextlib.contextmanager
def running(home, env):
    """Morvane started in `home`; yields its application on the accessibility bus (None if it
    never appears), and stops it and removes the home at the end."""
    morvane = subprocess.Popen([sys.argv[1]], env=env)
    try:
        yield wait_for(lambda: next((a for a in pyatspi.Registry.getDesktop(0)
                                     if a is not None and a.name.lower() == "morvane"), None))
    finally:
        morvane.terminate()
        morvane.wait(20)
        shutil.rmtree(home, ignore_errors=True)


def main():
    home, env = sample_home()
    # The registry answers before Morvane starts, so Morvane finds it ready to register with.
    wait_for(lambda: pyatspi.Registry.getDesktop(0).childCount >= 0)
    with running(home, env) as app:
        if not check(app is not None, "Morvane does not appear on the accessibility bus"):
            return
        field = wait_for(lambda: find(app, pyatspi.ROLE_TEXT, "Search"))
        if not check(field is not None, "no text field named Search"):
            return
        wait_for(lambda: find(app, pyatspi.ROLE_LIST_ITEM, "Noto Sans"))

        unnamed = [node.getRoleName() for node in walk(app)
                   if showing(node) and node.getRole() in NAMED_ROLES and not node.name]
        check(not unnamed, "controls without a name: %s" % unnamed)

        states_and_values(app)

        field.queryEditableText().setTextContents("sans")
        results = wait_for(lambda: find(app, pyatspi.ROLE_LIST, "Search Results"))
        check(results is not None, "typing in the field shows no search results")
        hit = wait_for(lambda: find(results, pyatspi.ROLE_LIST_ITEM, "Noto Sans")) if results else None
        print("search hit:", hit and hit.name, "/", hit and hit.description)
        if check(hit is not None, "the hit Noto Sans is not listed"):
            check("2 fonts" in (hit.description or ""), "the hit does not say 2 fonts: %r" % hit.description)
            check(find(results, pyatspi.ROLE_LIST_ITEM, "Serif") is None, "Serif matches sans")

        clear = find(app, pyatspi.ROLE_PUSH_BUTTON, "Clear")
        if check(clear is not None, "no Clear button while the field holds text"):
            clear.queryAction().doAction(0)
            check(wait_for(lambda: find(app, pyatspi.ROLE_LIST, "Search Results") is None),
                  "the results stay after Clear")
            check(field.queryText().getText(0, -1) == "", "the field keeps its text after Clear")

        # The font list: every control it shows has a name too.
        every = find(app, pyatspi.ROLE_LIST_ITEM, "All Fonts")
        if check(every is not None, "no All Fonts in the sidebar"):
            act(every, "Press")
            filter_field = wait_for(lambda: find(app, pyatspi.ROLE_TEXT, "Filter fonts"))
            check(filter_field is not None, "All Fonts shows no field named Filter fonts")
            check(wait_for(lambda: find(app, pyatspi.ROLE_SLIDER, "Sample size")) is not None, "no Sample size slider")
            unnamed = [node.getRoleName() for node in walk(app)
                       if showing(node) and node.getRole() in NAMED_ROLES and not node.name]
            check(not unnamed, "font list controls without a name: %s" % unnamed)

        command = find(app, pyatspi.ROLE_MENU_ITEM, "New Collection", visible=False)
        if check(command is not None, "no New Collection menu item"):
            command.queryAction().doAction(0)
            check(wait_for(lambda: find(app, pyatspi.ROLE_LIST_ITEM, "New Collection")),
                  "New Collection from the menu shows no new collection")


def german():
    """The window started under a German locale speaks German, with German plurals."""
    home, env = sample_home()
    env.update(LANG="de_DE.UTF-8", LANGUAGE="de", LC_ALL="de_DE.UTF-8")
    with running(home, env) as app:
        if not check(app is not None, "Morvane in German does not appear on the accessibility bus"):
            return
        field = wait_for(lambda: find(app, pyatspi.ROLE_TEXT, "Suche"))
        if not check(field is not None, "in German, no text field named Suche"):
            return
        check(wait_for(lambda: find(app, pyatspi.ROLE_LIST_ITEM, "Alle Schriften")) is not None,
              "in German, no Alle Schriften in the sidebar")
        check(find(app, pyatspi.ROLE_MENU_ITEM, "Neue Sammlung", visible=False) is not None,
              "in German, no menu item Neue Sammlung")
        wait_for(lambda: find(app, pyatspi.ROLE_LIST_ITEM, "Noto Sans"))
        field.queryEditableText().setTextContents("sans")
        results = wait_for(lambda: find(app, pyatspi.ROLE_LIST, "Suchergebnisse"))
        hit = wait_for(lambda: find(results, pyatspi.ROLE_LIST_ITEM, "Noto Sans")) if results else None
        if check(hit is not None, "in German, the hit Noto Sans is not listed under Suchergebnisse"):
            check((hit.description or "").startswith("inaktiv, 2 Schriften"),
                  "the German hit does not say inaktiv, 2 Schriften: %r" % hit.description)


main()
german()
print("%d failures" % len(failures))
sys.exit(1 if failures else 0)
