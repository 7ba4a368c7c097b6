#!/usr/bin/env python3
"""What a screen reader finds on the main screens of the window.

Opens the window once per screen (`trestle --open`) on the sample company and
walks its accessibility tree over AT-SPI. Fails on any showing control, table
or painted area without a name, and on a schedule chart or continuation sheet
without rows. Run it inside a private D-Bus session on a virtual display
(screenreader.sh does both).
"""
import os
import subprocess
import sys
import time

try:
    import pyatspi
except ImportError:
    sys.exit("FAIL: python3-pyatspi is not installed (scripts/setup installs it)")

TRESTLE = sys.argv[1]

# (what the screen is, --open arguments, tables that must have rows, a tab to choose first)
SCREENS = [
    ("hub", ["hub"], ["Contract · billed · cost by project"], None),
    ("project list", ["projects"], [], None),
    ("project editor", ["projects", "GV-101"], [], None),
    ("estimate editor", ["estimates", "1"], ["Lines"], None),
    ("pay application", ["payapps", "GV-101"], ["G703 continuation sheet"], None),
    ("schedule", ["schedule", "GV-101"], ["Schedule chart"], None),
    ("plan viewer", ["plans", "A-101"], [], None),
    ("job cost", ["jobcost", "GV-101"], ["Job cost by code"], None),
    ("WIP schedule", ["reports"], ["Over / under billing by job"], "WIP Schedule"),
]

# Things a person operates or reads as a whole: each must say what it is.
NAMED_ROLES = {
    "push button", "toggle button", "check box", "radio button", "combo box", "text",
    "password text", "spin button", "slider", "page tab", "list", "tree", "tree table",
    "table", "progress bar", "entry", "date editor", "link", "chart", "menu button",
}
# Roles a painted area takes when nothing says otherwise.
PAINTED_ROLES = {"filler", "panel", "unknown", "canvas", "drawing area", "image", "graphic", "chart"}
# A blank spacer is no painted area; anything this big that draws is.
PAINTED_MIN = 16
# Item views list every cell; the first ones show whether cells are named at all.
MAX_CHILDREN = 400


def find_app(pid, deadline):
    desktop = pyatspi.Registry.getDesktop(0)
    while time.time() < deadline:
        for i in range(desktop.childCount):
            app = desktop.getChildAtIndex(i)
            try:
                if app is not None and app.get_process_id() == pid and app.childCount > 0:
                    return app
            except Exception:
                continue
        time.sleep(0.3)
    return None


def extents(acc):
    try:
        e = acc.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        return e.x, e.y, e.width, e.height
    except NotImplementedError:
        return 0, 0, 0, 0


def walk(acc, path, out, tables):
    try:
        states = acc.getState()
        role = acc.getRoleName()
        name = (acc.name or "").strip()
        count = acc.childCount
    except Exception:
        return
    if not states.contains(pyatspi.STATE_SHOWING):
        return
    here = path + [f"{role} '{name}'"]
    x, y, w, h = extents(acc)
    if role in NAMED_ROLES and not name and w > 0 and h > 0:
        out.append(f"{role} without a name at {x},{y} {w}x{h}: " + " > ".join(here[-4:]))
    elif role in PAINTED_ROLES and count == 0 and not name and w >= PAINTED_MIN and h >= PAINTED_MIN:
        out.append(f"painted area ({role}) without a name at {x},{y} {w}x{h}: " + " > ".join(here[-4:]))
    if role == "table":
        try:
            rows = acc.queryTable().nRows
        except NotImplementedError:
            rows = sum(1 for i in range(min(count, MAX_CHILDREN))
                       if acc.getChildAtIndex(i) is not None and acc.getChildAtIndex(i).getRoleName() == "table row")
        tables[name] = max(rows, tables.get(name, 0))
    for i in range(min(count, MAX_CHILDREN)):
        try:
            child = acc.getChildAtIndex(i)
        except Exception as e:
            out.append(f"reading a child of {role} '{name}' failed: {e}")
            return
        if child is not None:
            walk(child, here, out, tables)


def find_named(acc, role, name):
    try:
        if acc.getRoleName() == role and acc.name == name:
            return acc
        for i in range(acc.childCount):
            found = find_named(acc.getChildAtIndex(i), role, name)
            if found is not None:
                return found
    except Exception:
        pass
    return None


def start(args):
    env = dict(os.environ, QT_QPA_PLATFORM="xcb", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_ACCESSIBILITY="1")
    # A display server that has only just started may turn the first client away.
    for _ in range(3):
        proc = subprocess.Popen([TRESTLE, "--open", *args], env=env)
        try:
            proc.wait(1.5)
        except subprocess.TimeoutExpired:
            return proc
        time.sleep(1)
    return proc


def check(label, args, needs_rows, tab):
    proc = start(args)
    try:
        app = find_app(proc.pid, time.time() + 30)
        if app is None:
            return [f"{label}: the window never appeared on the accessibility bus"]
        # Screens build their bodies on the first turns of the loop.
        time.sleep(2.5)
        if proc.poll() is not None:
            return [f"{label}: the program stopped with status {proc.returncode}"]
        if tab:
            found = find_named(app, "page tab", tab)
            if found is None:
                return [f"{label}: no tab '{tab}' to choose"]
            found.queryAction().doAction(0)
            time.sleep(1.5)
        problems, tables = [], {}
        for i in range(app.childCount):
            walk(app.getChildAtIndex(i), [], problems, tables)
        for table in needs_rows:
            if table not in tables:
                problems.append(f"no table named '{table}' (tables: {sorted(tables)})")
            elif tables[table] == 0:
                problems.append(f"table '{table}' has no rows")
        if proc.poll() is not None:
            problems.append(f"the program stopped with status {proc.returncode} while being read")
        print(f"{label}: {len(tables)} tables {dict(sorted(tables.items()))}, {len(problems)} problems")
        return [f"{label}: {p}" for p in problems]
    finally:
        proc.terminate()
        try:
            proc.wait(10)
        except subprocess.TimeoutExpired:
            proc.kill()
            proc.wait()


def main():
    only = sys.argv[2:]
    failures = []
    for label, args, needs_rows, tab in SCREENS:
        if only and args[0] not in only:
            continue
        found = check(label, args, needs_rows, tab)
        for f in found:
            print("FAIL:", f, flush=True)
        failures += found
    if failures:
        sys.exit(1)
    print("every showing control, table and painted area has a name")


main()
