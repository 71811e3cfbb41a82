#!/usr/bin/env python3
"""Fails when a file knows one that it must not: check_layering.py ROOT [BUILD]

docs/layers.txt, which explains itself, says which folders the files of a folder may include. Beside that are refused:
a circle of includes, two files of one stem, an include that is not written from the root of the tree, and a source that
no CMakeLists.txt lists. Where the build folder BUILD has object files, what they link against has to stand below them by
the map, so that a private declaration in the place of an include does not get around it.
"""
import functools
import json
import os
import re
import subprocess
import sys

SUFFIXES = (".h", ".hpp", ".hh", ".cpp", ".cc")
# Programs outside the tree; they include what is installed.
OUTSIDE = ("tests/consumer",)
INCLUDE = re.compile(r'\s*#\s*include\s*([<"])([^>"]+)[>"]')


class Map:
    """Which folder knows which others."""

    def __init__(self, path, problems):
        self.known = {}
        self.walls = set()
        with open(path, encoding="utf8") as file:
            lines = [line.split("#")[0].strip() for line in file]
        for line in filter(None, lines):
            match = re.fullmatch(r"(wall\s+)?([^\s:]+):(.*)", line)
            if not match or match[2] in self.known:
                problems.append(f"docs/layers.txt: a folder is missing or stands twice: {line}")
                continue
            folders = set()
            for name in match[3].split():
                found = self.named(name)
                if not found:
                    problems.append(f"docs/layers.txt: {match[2]} knows {name}, which does not stand before it")
                folders |= found
            self.known[match[2]] = folders
            if match[1]:
                self.walls.add(match[2])

    def named(self, name):
        if not name.endswith("/*"):
            return {name} & set(self.known)
        above = name[:-2]
        return {f for f in self.known if (f == above or f.startswith(above + "/")) and f not in self.walls}

    def allows(self, user, used):
        return user == used or used in self.known[user]

    @functools.lru_cache(maxsize=None)
    def reaches(self, user, used):
        """Whether the folders that a folder knows lead to another, as what it includes includes."""
        return user == used or any(self.reaches(known, used) for known in self.known[user])


def tree_files(root):
    for base, folders, names in os.walk(root):
        here = os.path.relpath(base, root)
        folders[:] = sorted(f for f in folders if not f.startswith((".", "build")) and
                            os.path.normpath(os.path.join(here, f)) not in OUTSIDE)
        for name in sorted(names):
            if name.endswith(SUFFIXES):
                yield os.path.normpath(os.path.join(here, name))


def includes_of(root, path):
    """Of the tree's own files, and of those that are missing: line number, path."""
    with open(os.path.join(root, path), encoding="utf8") as file:
        for number, line in enumerate(file, 1):
            match = INCLUDE.match(line)
            if not match or match[2].startswith("moc_") or match[2].endswith(".moc"):
                continue
            if match[1] == '"' or os.path.exists(os.path.join(root, match[2])):
                yield number, match[2]


def is_listed(root, path):
    """Whether the CMakeLists.txt of a folder above names the source."""
    folder = os.path.dirname(path)
    while True:
        lists = os.path.join(root, folder, "CMakeLists.txt")
        if os.path.exists(lists):
            with open(lists, encoding="utf8") as file:
                if re.search(rf"[\s/(]{re.escape(os.path.basename(path))}[\s)]", file.read()):
                    return True
        if not folder:
            return False
        folder = os.path.dirname(folder)


def find_circle(edges):
    """One circle, as a list that ends as it begins; None when there is none."""
    done = set()
    for start in sorted(edges):
        road, places = [(start, iter(sorted(edges[start])))], {start: 0}
        while road:
            node, rest = road[-1]
            following = next((n for n in rest if n not in done), None)
            if following is None:
                done.add(node)
                del places[node]
                road.pop()
            elif following in places:
                return [n for n, _ in road[places[following]:]] + [following]
            else:
                places[following] = len(road)
                road.append((following, iter(sorted(edges.get(following, ())))))
    return None


def check_includes(root, layers, problems):
    owners, edges = {}, {}
    for path in tree_files(root):
        folder, stem = os.path.dirname(path), os.path.splitext(path)[0]
        if folder not in layers.known:
            problems.append(f"{path}: its folder is not listed in docs/layers.txt")
            continue
        if owners.setdefault(os.path.basename(stem), stem) != stem:
            problems.append(f"{path}: another file has this stem, {owners[os.path.basename(stem)]}")
        if path.endswith((".cpp", ".cc")) and not is_listed(root, path):
            problems.append(f"{path}: no CMakeLists.txt lists it")
        edges.setdefault(stem, set())
        for number, target in includes_of(root, path):
            if not os.path.exists(os.path.join(root, target)):
                problems.append(f"{path}:{number}: include of {target} names no file from the root of the tree")
            elif not layers.allows(folder, os.path.dirname(target)):
                problems.append(f"{path}:{number}: include of {target}, which {folder} does not know")
            elif os.path.splitext(target)[0] != stem:
                edges[stem].add(os.path.splitext(target)[0])
    circle = find_circle(edges)
    if circle:
        problems.append("files include each other in a circle: " + " -> ".join(circle))


def symbols(objects):
    """Of each object file: the symbols that it alone defines, and those that it needs."""
    listing = subprocess.run(["nm", "-A", "-P", *objects], check=True, capture_output=True, text=True).stdout
    defined, needed = {}, []
    for line in listing.splitlines():
        place, name, kind = line.split()[:3]
        if kind in "TDBRC":
            defined[name] = place[:-1]
        elif kind == "U":
            needed.append((place[:-1], name))
    return defined, needed


def check_objects(root, build, layers, problems):
    source_of = {}
    with open(os.path.join(build, "compile_commands.json"), encoding="utf8") as file:
        for entry in json.load(file):
            path = os.path.relpath(entry["file"], root)
            output = re.search(r" -o (\S+)", entry["command"])
            target = os.path.join(entry["directory"], output[1]) if output else ""
            if os.path.isfile(target) and os.path.dirname(path) in layers.known:
                source_of[target] = path
    if not source_of:
        return
    defined, needed = symbols(sorted(source_of))
    found = set()
    for user, name in needed:
        if name in defined:
            path, other = source_of[user], source_of[defined[name]]
            if not layers.reaches(os.path.dirname(path), os.path.dirname(other)) and (path, other) not in found:
                found.add((path, other))
                problems.append(f"{path}: uses {name} of {other}, which does not stand below it")


def main():
    root = os.path.realpath(sys.argv[1])
    problems = []
    layers = Map(os.path.join(root, "docs/layers.txt"), problems)
    for folder in layers.known:
        if not os.path.isdir(os.path.join(root, folder)):
            problems.append(f"docs/layers.txt: {folder} is listed and does not exist")
    check_includes(root, layers, problems)
    if len(sys.argv) > 2:
        check_objects(root, os.path.realpath(sys.argv[2]), layers, problems)
    if problems:
        sys.exit("The layering is broken:\n  " + "\n  ".join(problems))


main()
