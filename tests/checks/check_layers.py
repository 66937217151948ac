#!/usr/bin/env python3
"""check_layers [REPOSITORY]: includes go downwards only, and no two files include each other in a cycle."""
import posixpath
import re

import repository

# A room, and the rooms that it may include beside itself.
ALLOWED = {
    "src/platform": set(),
    "src/report": {"src/platform"},
    "src/settings": {"src/platform"},
    "src/compilers": {"src/settings", "src/platform"},
    "src/buildinput": {"src/compilers", "src/settings", "src/platform"},
    "src/suppress": {"src/report", "src/settings", "src/platform"},
    "src/history": {"src/buildinput", "src/compilers", "src/settings", "src/report", "src/platform"},
    "src/analysis": {"src/history", "src/suppress", "src/buildinput", "src/compilers", "src/settings", "src/report",
                     "src/platform"},
    "src/app": {"src/analysis", "src/history", "src/suppress", "src/buildinput", "src/compilers", "src/settings",
                "src/report", "src/platform"},
    "cores/cppcheck": {"src/report", "src/settings", "src/platform"},
}
INCLUDE = re.compile(r'\s*#\s*include\s*"([^"]+)"')


def room_of(name):
    return "/".join(name.split("/")[:2])


def included_file(name, target, known):
    """The repository's file that an include names: by its path from src/ or cores/, or beside the including file."""
    beside = posixpath.normpath(posixpath.join(posixpath.dirname(name), target))
    return next((path for path in ("src/" + target, "cores/" + target, beside) if path in known), None)


def read_includes(folder):
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
            if room not in ALLOWED:
                faults.append(f"{name}:{number}: {room} is no room that this check knows")
            elif room_of(target) != room and room_of(target) not in ALLOWED[room]:
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


graph, faults = read_includes(repository.root())
repository.finish(faults + find_cycles(graph))
