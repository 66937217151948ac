#!/usr/bin/env python3
"""check_layers [REPOSITORY]: includes go downwards only, and no two files include each other in a cycle."""
import os
import posixpath
import re
import sys

import repository

TABLE = "cmake/Rooms.cmake"
INCLUDE = re.compile(r'\s*#\s*include\s*"([^"]+)"')


def read_rooms(folder):
    """A room, and the rooms that it may include beside itself: the table that the build links by."""
    with open(os.path.join(folder, TABLE), encoding="utf-8") as file:
        table = re.search(r"set\(ORVANTA_ROOMS(.*?)\)", file.read(), re.DOTALL)
    if not table:
        sys.exit(f"{TABLE} has no table of rooms")
    rows = [row.split() for row in re.findall(r'"([^"]*)"', table[1])]
    return {room: {"src/" + included for included in rest} for room, *rest in rows}


def room_of(name):
    return "/".join(name.split("/")[:2])


def included_file(name, target, known):
    """The repository's file that an include names: by its path from src/ or cores/, or beside the including file."""
    beside = posixpath.normpath(posixpath.join(posixpath.dirname(name), target))
    return next((path for path in ("src/" + target, "cores/" + target, beside) if path in known), None)


def read_includes(folder, allowed):
    sources = repository.code_files(folder)
    # A header that the build makes counts as where its template stands.
    generated = [name.removesuffix(".in") for name in repository.files(folder, ".h.in")]
    known = set(sources + generated)
    graph, faults = {name: [] for name in generated}, []
    for name in sources:
        room = room_of(name)
        graph[name] = []
        for number, line in repository.lines(folder, name):
            match = INCLUDE.match(line)
            if not match or not name.startswith(("src/", "cores/")):
                continue
            target = included_file(name, match[1], known)
            if target is None:
                faults.append(f'{name}:{number}: includes "{match[1]}", which is no file of the repository')
                continue
            graph[name].append(target)
            if room not in allowed:
                faults.append(f"{name}:{number}: {room} has no row in {TABLE}")
            elif room_of(target) != room and room_of(target) not in allowed[room]:
                faults.append(f"{name}:{number}: {room} may not include {target}")
    return graph, faults


def find_cycles(graph):
    """One fault for each cycle that a walk along the includes runs into."""
    faults, finished = [], set()

    def walk(name, path):
        if name in path:
            faults.append("include cycle: " + " -> ".join(path[path.index(name):] + [name]))
        elif name not in finished:
            for target in graph[name]:
                walk(target, path + [name])
            finished.add(name)

    for name in graph:
        walk(name, [])
    return faults


graph, faults = read_includes(repository.root(), read_rooms(repository.root()))
repository.finish(faults + find_cycles(graph))
