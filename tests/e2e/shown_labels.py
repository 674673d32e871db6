#!/usr/bin/python3
"""Prints, one a line, the texts of the labels that the desktop program shows
now, as the accessibility tree (AT-SPI) gives them to assistive technology."""
import sys

import pyatspi


def walk(node, out):
    try:
        states = node.getState()
    except Exception:  # a widget that went away while the tree was read
        return
    if not states.contains(pyatspi.STATE_SHOWING):
        return
    if node.getRole() == pyatspi.ROLE_LABEL and node.name:
        out.append(node.name)
    for i in range(node.childCount):
        child = node.getChildAtIndex(i)
        if child is not None:
            walk(child, out)


def main():
    desktop = pyatspi.Registry.getDesktop(0)
    for i in range(desktop.childCount):
        app = desktop.getChildAtIndex(i)
        if app is not None and app.name.lower() == sys.argv[1].lower():
            texts = []
            for j in range(app.childCount):
                walk(app.getChildAtIndex(j), texts)
            print("\n".join(texts))
            return 0
    print("no application named " + sys.argv[1], file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main())
