#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Prints what a screen reader finds of the programs on the accessibility bus of this session:
# one line per accessible, indented by its depth, "role 'name'", for the applications whose
# name is the first argument (an application's line ends with its process id). With
# "--do ROLE NAME ACTION" it does that action of that accessible instead. With "--events" it
# prints, until ended, what a screen reader is told: a line "listening", then one line per
# focus, window activation, change of name or description, or accessible shown,
# "event|detail|role|name|description".
# Uses Debian's pyatspi, as orca does.
import sys

import pyatspi
from gi.repository import Atspi

# A call unanswered for 800 ms counts as "hung" by default; under the sanitizers on a loaded
# machine Lulltide answers, only later.
Atspi.set_timeout(10000, 30000)


def walk(node, depth, out):
    if depth > 20:
        return
    line = "  " * depth + f"{node.getRoleName()} '{node.name}'"
    if depth == 0:
        line += f" pid {node.get_process_id()}"
    out.append(line)
    for index in range(node.childCount):
        child = node.getChildAtIndex(index)
        if child is not None:
            walk(child, depth + 1, out)


def find(node, role, name, depth=0):
    if depth > 20:
        return None
    if node.getRoleName() == role and node.name == name:
        return node
    for index in range(node.childCount):
        child = node.getChildAtIndex(index)
        found = find(child, role, name, depth + 1) if child is not None else None
        if found is not None:
            return found
    return None


def print_event(event):
    source = event.source
    try:
        # What the reader would find now, not what an earlier read left in the cache.
        source.clear_cache()
        line = f"{event.type}|{event.detail1}|{source.getRoleName()}|{source.name}|{source.description}"
    except Exception as error:  # the accessible went with its window
        line = f"{event.type}|{event.detail1}|gone|{error}|"
    print(line, flush=True)


if len(sys.argv) == 3 and sys.argv[2] == "--events":
    pyatspi.Registry.registerEventListener(
        print_event, "focus:", "window:activate", "object:property-change:accessible-description",
        "object:property-change:accessible-name", "object:state-changed:showing")
    print("listening", flush=True)
    pyatspi.Registry.start()
    sys.exit(0)

applications = [a for a in pyatspi.Registry.getDesktop(0) if a is not None and a.name == sys.argv[1]]
if len(sys.argv) == 6 and sys.argv[2] == "--do":
    # atspi-tree.py APPLICATION --do ROLE NAME ACTION: does that action of that accessible, as a
    # screen reader's user does; prints the action and whether it was done.
    for application in applications:
        target = find(application, sys.argv[3], sys.argv[4])
        if target is not None:
            actions = target.queryAction()
            names = [actions.getName(i) for i in range(actions.nActions)]
            if sys.argv[5] not in names:
                print("no action", sys.argv[5], "among", names)
                sys.exit(1)
            print(sys.argv[5], actions.doAction(names.index(sys.argv[5])))
            sys.exit(0)
    print("not found")
    sys.exit(1)
lines = []
for application in applications:
    walk(application, 0, lines)
print("\n".join(lines))
