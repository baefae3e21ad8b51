#!/usr/bin/env python3
"""Reads the #include lines of the driver and of qlmhost and fails on a circle or an upward include.

A unit is a source with its header (same folder, same stem). Under driver/ the folders are layered
bottom to top in LAYERS: a folder may include itself and the folders below it, never one above.
Across the driver and each tool, no two units may reach each other through their includes, however
long the road. The driver's largest source must stay within MAX_DRIVER_LINES.

Usage: check-layers.py [--graph]   (--graph prints each folder's and unit's includes)
"""
import os
import re
import sys

ROOT = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))

# Bottom to top.
LAYERS = ["foundation", "devmode", "config", "dialogue", "framework", "dialogs", "tabs", "entry"]
TOOL_DIRS = ["tools/qlmhost", "tools/qlmwin", "tools/pjlsim"]
MAX_DRIVER_LINES = 700
SOURCE_ENDINGS = (".cpp", ".h", ".c")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def sources(folder):
    for base, _, files in os.walk(os.path.join(ROOT, folder)):
        for name in sorted(files):
            if name.endswith(SOURCE_ENDINGS):
                yield os.path.relpath(os.path.join(base, name), ROOT)


def resolve(including, target):
    """The repository path an include names: beside the includer first, then from the root."""
    beside = os.path.normpath(os.path.join(os.path.dirname(including), target))
    if os.path.exists(os.path.join(ROOT, beside)):
        return beside
    if os.path.exists(os.path.join(ROOT, target)):
        return os.path.normpath(target)
    return None


def unit_of(path):
    return os.path.splitext(path)[0]


def circles(edges):
    """Every set of nodes that reach each other (Tarjan's strongly connected components)."""
    index, low, on_stack, stack, found = {}, {}, set(), [], []

    def visit(node):
        index[node] = low[node] = len(index)
        stack.append(node)
        on_stack.add(node)
        for nxt in sorted(edges.get(node, ())):
            if nxt not in index:
                visit(nxt)
                low[node] = min(low[node], low[nxt])
            elif nxt in on_stack:
                low[node] = min(low[node], index[nxt])
        if low[node] == index[node]:
            group = []
            while True:
                member = stack.pop()
                on_stack.discard(member)
                group.append(member)
                if member == node:
                    break
            if len(group) > 1:
                found.append(sorted(group))

    for node in sorted(edges):
        if node not in index:
            visit(node)
    return found


def main():
    show = "--graph" in sys.argv[1:]
    faults = []
    unit_edges = {}
    folder_edges = {}

    for folder in ["driver"] + TOOL_DIRS:
        for path in sources(folder):
            with open(os.path.join(ROOT, path), encoding="utf-8", errors="replace") as f:
                text = f.read()
            if path.startswith("driver/") and path.endswith(".cpp"):
                lines = text.count("\n")
                if lines > MAX_DRIVER_LINES:
                    faults.append(f"{path}: {lines} lines, more than {MAX_DRIVER_LINES}")
            for target in INCLUDE.findall(text):
                resolved = resolve(path, target)
                if resolved is None:
                    if path.startswith("driver/"):
                        faults.append(f"{path}: includes \"{target}\", which is not there")
                    continue
                if not resolved.startswith(("driver/", "tools/")):
                    continue
                a, b = unit_of(path), unit_of(resolved)
                if a != b:
                    unit_edges.setdefault(a, set()).add(b)
                parts_a, parts_b = path.split("/"), resolved.split("/")
                if parts_a[0] == "driver" and parts_b[0] == "driver":
                    fa, fb = parts_a[1], parts_b[1]
                    if fa not in LAYERS:
                        faults.append(f"{path}: folder driver/{fa} has no place in the layers")
                        continue
                    if fb not in LAYERS:
                        faults.append(f"{path}: includes {resolved}, outside the layers")
                        continue
                    if fa != fb:
                        folder_edges.setdefault(fa, set()).add(fb)
                    if LAYERS.index(fb) > LAYERS.index(fa):
                        faults.append(f"{path}: includes {resolved}, a layer above ({fa} < {fb})")
                elif parts_a[0] == "driver" and parts_b[0] == "tools":
                    faults.append(f"{path}: the driver includes a tool's {resolved}")

    for group in circles(unit_edges):
        faults.append("include circle between units: " + ", ".join(group))
    for group in circles(folder_edges):
        faults.append("include circle between folders: " + ", ".join(group))

    if show:
        for fa in LAYERS:
            print(f"driver/{fa} -> " + ", ".join(sorted(folder_edges.get(fa, ()), key=LAYERS.index)))
        for a in sorted(unit_edges):
            print(f"  {a} -> " + ", ".join(sorted(unit_edges[a])))

    for fault in faults:
        print(f"check-layers: {fault}", file=sys.stderr)
    if faults:
        return 1
    print("check-layers: " + " < ".join(LAYERS) + "; no circle, no upward include")
    return 0


if __name__ == "__main__":
    sys.exit(main())
