#!/usr/bin/env python3
"""Measures `analyze --incremental` when nothing has changed against `ninja` on an up-to-date build of the same size.

Both projects have the same sources, each of which includes the same headers, and both have been run before. The runs
take turns; each figure is the median over the rounds of the ratio of one round.

    cmake --preset bench && cmake --build --preset bench && bench/nothing_changed
"""
import argparse
import json
import pathlib
import random
import subprocess
import sys
import tempfile

from measuring import find_programs, measure_rounds, median_ratio, row

REPOSITORY = pathlib.Path(__file__).resolve().parent.parent
PROGRAMS = {"driver": "bin/orvanta-analyzer", "compiler": "bench/trivial_compiler", "core": "bench/trivial_core",
            "measure": "bench/measure"}
NINJA_RULE = "rule cc\n  command = touch $out\n  depfile = $out.d\n  deps = gcc\n"


class Project:
    """A generated project, as both programs want it."""

    def __init__(self, folder, options, programs):
        self.folder = folder
        self.programs = programs
        self.jobs = options.jobs
        headers = [folder / f"include/component-library{number % 40}/public/interface/header{number}.h"
                   for number in range(options.headers)]
        sources = [folder / f"source/module{number % 100}/unit{number}.c" for number in range(options.units)]
        for path in headers + sources:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(f"int {path.stem};\n")
        chooser = random.Random(1)
        for source in sources:
            included = chooser.sample(headers, options.included)
            source.with_suffix(".c.included").write_text("".join(f"<}}include{{>{path}\n" for path in included))
            source.with_suffix(".o.d").write_text(f"{source.with_suffix('.o')}: " + " ".join(map(str, included)) + "\n")
        self.write_builds(sources)

    def write_builds(self, sources):
        compiler = str(self.programs["compiler"])
        database = [
            {"directory": str(self.folder), "file": str(source),
             "arguments": [compiler, "-std=c17", "-O2", "-Iinclude", "-c", str(source), "-o",
                           str(source.with_suffix(".o"))]}
            for source in sources
        ]
        (self.folder / "compile_commands.json").write_text(json.dumps(database))
        edges = [f"build {source.with_suffix('.o')}: cc {source}\n" for source in sources]
        (self.folder / "build.ninja").write_text(NINJA_RULE + "".join(edges))

    def commands(self):
        driver = [self.programs["driver"], "analyze", "-i", "-q", "-j", str(self.jobs), "-f", "compile_commands.json",
                  "-o", "report.json", "--orvanta-path", self.programs["core"]]
        return {"driver": driver, "ninja": ["ninja"]}

    def run_all(self):
        """The first run of both, in which everything is done."""
        for command in self.commands().values():
            subprocess.run(command, cwd=self.folder, check=True, stdout=subprocess.DEVNULL)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=pathlib.Path, default=REPOSITORY / "build/bench", help="the build folder")
    parser.add_argument("--units", type=int, default=10000)
    parser.add_argument("--headers", type=int, default=2000)
    parser.add_argument("--included", type=int, default=300, help="headers that each unit includes")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--rounds", type=int, default=9)
    options = parser.parse_args()
    programs = find_programs(options.build.resolve(), PROGRAMS)

    with tempfile.TemporaryDirectory() as folder:
        project = Project(pathlib.Path(folder), options, programs)
        project.run_all()
        size = (pathlib.Path(folder) / ".Orvanta/depend_info.json").stat().st_size
        print(f"{options.units} units of {options.included} headers each, of {options.headers}; "
              f"depend_info.json: {size >> 20} MB; {options.rounds} rounds")
        pairs = measure_rounds(programs["measure"], project.commands(), folder, options.rounds)
    print(f"{'figure':<54} {'median':>8} {'limit':>8}")
    limits = {"wall": ("wall", 0.8), "total": ("CPU", 0.8), "peak": ("peak memory", 0.5)}
    reached = [row(f"nothing changed: {name}, driver to ninja", median_ratio(pairs, "driver", "ninja", figure), limit,
                   "times")
               for figure, (name, limit) in limits.items()]
    sys.exit(0 if all(reached) else 1)


if __name__ == "__main__":
    main()
