"""`analyze --incremental` when nothing, or little, has changed.

Against `ninja` on an up-to-date build of the same size: both projects have the same sources, each of which includes the
same headers, and both have been run before. By itself where a build is very large, and against a full run where the
findings of nearly all units are carried over while one unit takes its time.
"""
import json
import pathlib
import random
import subprocess
import tempfile

from measuring import Row, compared, measure, measure_rounds

NINJA_RULE = "rule cc\n  command = touch $out\n  depfile = $out.d\n  deps = gcc\n"
FINDING = ('{"falseAlarm":false,"level":1,"code":"V501","message":"Of unit %d, number %d: there are identical '
           'sub-expressions.","positions":[{"file":"%s","line":%d}],"cwe":571}\n')
FINDINGS_OF_UNIT = 100
JOBS = 2


class Project:
    """A generated project, as both programs want it."""

    def __init__(self, folder, programs, units, headers, included, slow=()):
        self.folder = folder
        self.programs = programs
        headers = [folder / f"include/component-library{number % 40}/public/interface/header{number}.h"
                   for number in range(headers)]
        self.sources = [folder / f"source/module{number % 100}/{'slow' if number in slow else 'unit'}{number}.c"
                        for number in range(units)]
        for path in headers + self.sources:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(f"int {path.stem};\n")
        chooser = random.Random(1)
        self.included = {source: chooser.sample(headers, included) for source in self.sources}
        for source, chosen in self.included.items():
            source.with_suffix(".c.included").write_text("".join(f"<}}include{{>{path}\n" for path in chosen))
        self.write_database()

    def write_database(self):
        compiler = str(self.programs["compiler"])
        database = [
            {"directory": str(self.folder), "file": str(source),
             "arguments": [compiler, "-std=c17", "-O2", "-Iinclude", "-c", str(source), "-o",
                           str(source.with_suffix(".o"))]}
            for source in self.sources
        ]
        (self.folder / "compile_commands.json").write_text(json.dumps(database))

    def write_ninja(self):
        for source, chosen in self.included.items():
            source.with_suffix(".o.d").write_text(f"{source.with_suffix('.o')}: " + " ".join(map(str, chosen)) + "\n")
        edges = [f"build {source.with_suffix('.o')}: cc {source}\n" for source in self.sources]
        (self.folder / "build.ninja").write_text(NINJA_RULE + "".join(edges))

    def write_findings(self):
        for number, source in enumerate(self.sources):
            source.with_suffix(".c.findings").write_text(
                "".join(FINDING % (number, finding, source, finding + 1) for finding in range(FINDINGS_OF_UNIT)))

    def driver(self, *options):
        return [self.programs["driver"], "analyze", *options, "-q", "-j", str(JOBS), "-f", "compile_commands.json",
                "-o", "report.json", "--orvanta-path", self.programs["core"]]

    def run(self, command):
        subprocess.run(command, cwd=self.folder, check=True, stdout=subprocess.DEVNULL)

    def measure(self, *options):
        return measure(self.programs["measure"], self.driver(*options), self.folder)


def against_ninja(programs, rounds):
    with tempfile.TemporaryDirectory() as folder:
        project = Project(pathlib.Path(folder), programs, units=10000, headers=2000, included=300)
        project.write_ninja()
        commands = {"driver": project.driver("-i"), "ninja": ["ninja"]}
        for command in commands.values():
            project.run(command)
        pairs = measure_rounds(programs["measure"], commands, folder, rounds)
    figures = [("wall", "wall", 0.8, 0.37), ("total", "CPU", 0.8, 0.47), ("peak", "peak memory", 0.5, 0.29)]
    return [compared(f"nothing changed, 10,000 units of 300 headers: {name}, `ninja`", pairs, ("driver", "ninja"),
                     figure, limit, before)
            for figure, name, limit, before in figures]


def very_large(programs):
    with tempfile.TemporaryDirectory() as folder:
        project = Project(pathlib.Path(folder), programs, units=100000, headers=2000, included=20)
        project.run(project.driver("-i"))
        # The least of three: what else the machine did is no part of it.
        runs = [project.measure("-i") for _ in range(3)]
    wall = min(run["wall"] for run in runs)
    peak = max(run["peak"] for run in runs) / 1024
    return [Row("nothing changed, 100,000 units: wall", f"{wall:.2f} s", "", wall, 3, "s"),
            Row("nothing changed, 100,000 units: peak memory", f"{peak:.0f} MB", "", peak, 150, "MB")]


def behind_slow_unit(programs):
    with tempfile.TemporaryDirectory() as folder:
        project = Project(pathlib.Path(folder), programs, units=4000, headers=20, included=5, slow=[0])
        project.write_findings()
        full = project.measure()
        project.run(project.driver("-i"))
        project.sources[0].write_text("int changed;\n")
        carried = project.measure("-i")
    pairs = [{"incremental": carried, "full": full}]
    return [compared("400,000 findings carried over behind a slow unit: peak memory, a full run", pairs,
                     ("incremental", "full"), "peak", 1.3)]


def rows(programs, rounds):
    return against_ninja(programs, rounds) + behind_slow_unit(programs) + very_large(programs)
