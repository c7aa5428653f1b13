#!/usr/bin/env python3
"""Drives the real Zonara the way a screen reader user does.

Everything is read from the accessibility bus (AT-SPI) and done through its
actions, or typed on the keyboard; nothing reaches into the program. Run
inside a private session bus and an X server:

    dbus-run-session -- xvfb-run -a python3 screenreader_walkthrough.py ZONARA
"""

import json
import os
import signal
import subprocess
import sys
import tempfile
import time

import pyatspi
from gi.repository import GLib

ZONARA = sys.argv[1]
checks = {"passed": 0, "failed": 0}
heard = []  # (event, role, name) in the order Zonara announced them


def check(condition, what):
    checks["passed" if condition else "failed"] += 1
    print(("PASS  " if condition else "FAIL  ") + what, flush=True)
    return condition


def pump(seconds=0.0):
    end = time.time() + seconds
    context = GLib.MainContext.default()
    while True:
        while context.pending():
            context.iteration(False)
        if time.time() >= end:
            return
        time.sleep(0.02)


def wait_for(predicate, seconds=6.0):
    end = time.time() + seconds
    while time.time() < end:
        pump(0.05)
        try:
            result = predicate()
        except Exception:  # objects come and go while we look
            result = None
        if result:
            return result
    return None


def on_event(event):
    try:
        if event.type.startswith("object:state-changed") and event.detail1 != 1:
            return
        heard.append((event.type, event.source.getRoleName(), event.source.name))
    except Exception:
        heard.append((event.type, "gone", ""))


def walk(accessible, found=None):
    """Every showing object below accessible, as (role, name, object)."""
    found = [] if found is None else found
    try:
        states = accessible.getState()
        if not states.contains(pyatspi.STATE_SHOWING):
            return found
        found.append((accessible.getRoleName(), accessible.name, accessible))
        for index in range(accessible.childCount):
            child = accessible.getChildAtIndex(index)
            if child is not None:
                walk(child, found)
    except Exception:
        pass
    return found


def find(root, role, name=None):
    for found_role, found_name, accessible in walk(root):
        if found_role == role and (name is None or found_name == name):
            return accessible
    return None


def focused_entry(root):
    """The name of the text field that has the keyboard, if any."""
    for role, name, accessible in walk(root):
        if role in ("entry", "text") and accessible.getState().contains(pyatspi.STATE_FOCUSED):
            return name or "(unnamed)"
    return None


def act(accessible, action):
    actions = accessible.queryAction()
    names = [actions.getName(i) for i in range(actions.nActions)]
    if not check(action in names, f"{accessible.name!r} offers {action!r} (has {names})"):
        return
    actions.doAction(names.index(action))
    pump(0.3)


def key(name):
    subprocess.run(["xdotool", "key", "--clearmodifiers", name], check=True)
    pump(0.4)


def type_text(text):
    subprocess.run(["xdotool", "type", "--delay", "30", text], check=True)
    pump(0.4)


def saved():
    output = subprocess.run([ZONARA, "list", "--json"], capture_output=True, text=True, check=True)
    return json.loads(output.stdout)


def last_focus():
    """The last object announced as focused: what a screen reader speaks."""
    for event, role, name in reversed(heard):
        if event in ("focus:", "object:state-changed:focused"):
            return role, name
    return None


def main():
    config = tempfile.mkdtemp(prefix="zonara-a11y-")
    os.environ.update({"XDG_CONFIG_HOME": config, "TZ": "UTC", "ZONARA_REDUCE_MOTION": "1",
                       "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_ACCESSIBILITY": "1"})
    subprocess.run([ZONARA, "add", "Europe/Stockholm"], check=True, capture_output=True)
    subprocess.run([ZONARA, "add", "Asia/Tokyo", "--nickname", "Tokyo office"], check=True,
                   capture_output=True)
    names = [zone["displayName"] for zone in saved()]

    # Its own process group, off our output: its bus daemons must not outlive the test.
    bus = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"],
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                           start_new_session=True)
    time.sleep(1)
    pyatspi.Registry.registerEventListener(on_event, "focus:", "object:state-changed:focused",
                                           "object:state-changed:selected",
                                           "object:state-changed:showing",
                                           "object:property-change:accessible-name",
                                           "object:children-changed")
    zonara = subprocess.Popen([ZONARA], stderr=subprocess.DEVNULL)
    try:
        run(zonara, names)
    finally:
        zonara.kill()
        os.killpg(bus.pid, signal.SIGKILL)
    print(f"{checks['passed']} passed, {checks['failed']} failed")
    return 1 if checks["failed"] else 0


def run(zonara, names):
    desktop = pyatspi.Registry.getDesktop(0)
    app = wait_for(lambda: next((a for a in desktop if a and a.name == "zonara"), None))
    if not check(app is not None, "Zonara is on the accessibility bus"):
        return
    # Without a tray the panel opens as an ordinary window.
    panel = wait_for(lambda: find(app, "frame", "Zonara"))
    if not check(panel is not None, "the panel is announced as a window named Zonara"):
        return

    # Every control a user can reach has a name.
    unnamed = [role for role, name, _ in walk(panel)
               if role in ("push button", "check box", "list item", "list", "entry", "text",
                           "combo box", "page tab", "toggle button") and not name]
    check(not unnamed, f"every control is named (unnamed: {unnamed})")

    # Down from the header walks into the list, one announced card at a time.
    add_button = find(panel, "push button", "Add city")
    check(add_button.getState().contains(pyatspi.STATE_FOCUSED), "the panel opens on Add city")
    for name in names:
        key("Down")
        check(last_focus() == ("list item", name), f"Down announces the card {name!r}")
        card = find(panel, "list item", name)
        check(card is not None and card.getState().contains(pyatspi.STATE_SELECTED),
              f"{name!r} is the selected item")

    # Add a city by the search result's own action.
    act(add_button, "Press")
    check(wait_for(lambda: focused_entry(panel)) == "Search city, country, or time zone",
          "the search field has the keyboard")
    unnamed = [role for role, name, _ in walk(panel) if role == "push button" and not name]
    check(not unnamed, f"the search view's buttons are named (unnamed: {unnamed})")
    type_text("auckland")
    result = wait_for(lambda: find(find(panel, "list", "Cities and time zones"), "list item",
                                   "Auckland"))
    if check(result is not None, "the results list Auckland"):
        act(result, "Add")
    card = wait_for(lambda: find(panel, "list item", "Auckland"))
    check(card is not None, "Auckland's card is in the list")
    check(any(z["identifier"] == "Pacific/Auckland" for z in saved()), "Auckland was saved")
    if card is None:
        return

    # Pin and rename through the card's actions.
    act(card, "Pin")
    check(wait_for(lambda: any(z["identifier"] == "Pacific/Auckland" and z["pinned"]
                               for z in saved())), "the Pin action pinned Auckland")
    check(wait_for(lambda: "Unpin" in [card.queryAction().getName(i)
                                       for i in range(card.queryAction().nActions)]),
          "the card now offers Unpin")
    act(card, "Rename")
    field = wait_for(lambda: focused_entry(panel))
    check(field == "Nickname for Auckland", f"the rename field has the keyboard ({field!r})")
    key("ctrl+a")
    type_text("Kiwi")
    key("Return")
    check(wait_for(lambda: any(z["nickname"] == "Kiwi" for z in saved())), "the rename was saved")
    card = wait_for(lambda: find(panel, "list item", "Kiwi"))
    if not check(card is not None, "the card is announced by its new name"):
        return

    # Remove, reading the whole tree without pause while the card goes.
    act(card, "Remove city\u2026")
    remove = wait_for(lambda: find(panel, "push button", "Remove"))
    if check(remove is not None, "the removal asks to confirm"):
        remove.queryAction().doAction(0)
        end = time.time() + 1.5
        walks = 0
        while time.time() < end and zonara.poll() is None:
            pump()
            walk(app)
            walks += 1
        check(zonara.poll() is None, f"Zonara survives {walks} reads of its tree during removal")
        check(find(panel, "list item", "Kiwi") is None, "the card is gone")
        check(all(z["identifier"] != "Pacific/Auckland" for z in saved()), "the city is removed")
        check(any(event == "object:children-changed:remove" for event, _, _ in heard),
              "the list announced that a card left")

    # Planning: a typed time moves every card; the strip is spoken as it comes and changes.
    card = find(panel, "list item", "Tokyo office")
    act(card, "Set time\u2026")
    field = wait_for(lambda: focused_entry(panel))
    check(field == "Time in Tokyo office", f"the time field has the keyboard ({field!r})")
    type_text("15:00")
    key("Return")
    strip = wait_for(lambda: find(panel, "notification"))
    check(strip is not None and strip.name.endswith(" 15:00 in Tokyo office"),
          f"the strip names the moment ({strip.name if strip else None!r})")
    check(("object:state-changed:showing", "notification", strip.name if strip else "") in heard,
          "the strip was announced as it appeared")
    check(find(panel, "push button", "Back to now") is not None, "Back to now is reachable")
    check(last_focus() == ("list item", "Tokyo office"), "the keyboard is back on the card")
    key("Right")
    check(wait_for(lambda: find(panel, "notification").name.endswith(" 15:15 in Tokyo office")),
          "Right moves the moment a quarter hour")
    check(any(e == "object:property-change:accessible-name" and r == "notification"
              and n.endswith("15:15 in Tokyo office") for e, r, n in heard),
          "the strip's new text was announced")
    key("Escape")
    check(wait_for(lambda: find(panel, "notification") is None), "Escape goes back to now")

    # Escape closes the window; launching Zonara again brings the panel back.
    key("Escape")
    check(wait_for(lambda: find(app, "frame", "Zonara") is None), "Escape closes the panel")
    subprocess.run([ZONARA], check=True, timeout=10, stderr=subprocess.DEVNULL)
    check(wait_for(lambda: find(app, "frame", "Zonara")) is not None,
          "launching Zonara again shows the panel")
    check(zonara.poll() is None, "Zonara is still running")


if __name__ == "__main__":
    sys.exit(main())
