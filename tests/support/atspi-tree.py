#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Prints what a screen reader finds of the programs on the accessibility bus of this session:
# one line per accessible, indented by its depth, "role 'name'", for the applications whose
# name is the first argument. Uses Debian's pyatspi, as orca does.
import sys

import pyatspi


def walk(node, depth, out):
    if depth > 20:
        return
    out.append("  " * depth + f"{node.getRoleName()} '{node.name}'")
    for index in range(node.childCount):
        child = node.getChildAtIndex(index)
        if child is not None:
            walk(child, depth + 1, out)


lines = []
for application in pyatspi.Registry.getDesktop(0):
    if application is not None and application.name == sys.argv[1]:
        walk(application, 0, lines)
print("\n".join(lines))
