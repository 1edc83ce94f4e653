#!/usr/bin/env python3
"""Finds circles among the units of src/ and fails on one that is not allowed.

A unit is a header and the source of the same name. One unit reaches another when its header or its source
includes the other's header. Units that reach each other cannot be understood, tested or taken out alone.

    scripts/circles.py        says which units stand in a circle; exit status 1 when it must not be
"""
import pathlib
import re
import sys

# The link's state works on the types of its interface, whose functions work on the state.
ALLOWED = [{"libvesk/link/veskmsg", "libvesk/link/veskmsg_state"}]

INCLUDE = re.compile(r'^\s*#include "([^"]+)\.h"', re.MULTILINE)


def edges(src):
    """Maps each unit to the units that it includes."""
    graph = {}
    for path in sorted(src.rglob("*")):
        if path.suffix in (".h", ".cpp"):
            unit = str(path.relative_to(src).with_suffix(""))
            graph.setdefault(unit, set()).update(set(INCLUDE.findall(path.read_text())) - {unit})
    return {unit: {other for other in others if other in graph} for unit, others in graph.items()}


def circles(graph):
    """The strongly connected components of more than one unit (Tarjan's algorithm)."""
    index, low, stack, found = {}, {}, [], []

    def visit(unit):
        index[unit] = low[unit] = len(index)
        stack.append(unit)
        for other in sorted(graph[unit]):
            if other not in index:
                visit(other)
                low[unit] = min(low[unit], low[other])
            elif other in stack:
                low[unit] = min(low[unit], index[other])
        if low[unit] == index[unit]:
            component = set()
            while unit not in component:
                component.add(stack.pop())
            if len(component) > 1:
                found.append(component)

    sys.setrecursionlimit(10000)
    for unit in sorted(graph):
        if unit not in index:
            visit(unit)
    return found


def main():
    src = pathlib.Path(__file__).resolve().parent.parent / "src"
    graph = edges(src)
    if not graph:
        sys.exit(f"circles.py: no sources below {src}")
    wrong = [c for c in circles(graph) if not any(c <= allowed for allowed in ALLOWED)]
    for component in wrong:
        print(f"circle of {len(component)} units:", file=sys.stderr)
        for unit in sorted(component):
            inside = ", ".join(sorted(graph[unit] & component))
            print(f"  {unit} includes {inside}", file=sys.stderr)
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
