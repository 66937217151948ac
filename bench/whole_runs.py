"""Whole runs of the driver against `xargs -P` doing the same two child processes per unit.

Both run alternately on the same generated project. With a trivial compiler and a trivial core nothing but the two ways
of running them counts.
"""
import json
import os
import pathlib
import statistics
import tempfile

from measuring import Row, compared, measure_rounds

SMALL_SOURCE = "#include <stdio.h>\n#include <stdlib.h>\n#include <string.h>\nint value%d(void) { return %d; }\n"
UNIT_SCRIPT = '"$COMPILER" -std=c17 -DORVANTA -w -E -o "$1.i" "$1.c" && "$CORE" --cfg "$1.cfg"'
UNITS = 400
JOBS = 2


class Project:
    """A generated project, with what both ways of running it need."""

    def __init__(self, folder, compiler, programs):
        self.folder = folder
        self.programs = programs
        bases = [folder / f"unit{number}" for number in range(UNITS)]
        for number, base in enumerate(bases):
            base.with_suffix(".c").write_text(SMALL_SOURCE % (number, number))
            base.with_suffix(".cfg").write_text(f"output-file={base}.out\nsource-file={base}.c\n")
        database = [
            {"directory": str(folder), "arguments": [compiler, "-std=c17", "-O2", "-c", f"{base}.c", "-o", f"{base}.o"]}
            for base in bases
        ]
        (folder / "compile_commands.json").write_text(json.dumps(database))
        (folder / "units").write_text("".join(f"{base}\n" for base in bases))
        self.environment = dict(os.environ, COMPILER=compiler, CORE=str(programs["core"]), TMPDIR=str(folder))

    def driver(self):
        return [self.programs["driver"], "analyze", "-q", "-j", str(JOBS), "-f", self.folder / "compile_commands.json",
                "-o", self.folder / "report.json", "--orvanta-path", self.programs["core"]]

    def xargs(self):
        return ["xargs", "-a", self.folder / "units", "-P", str(JOBS), "-n", "1", "sh", "-c", UNIT_SCRIPT, "sh"]

    def rounds(self, rounds):
        commands = {"xargs": self.xargs(), "driver": self.driver()}
        return measure_rounds(self.programs["measure"], commands, self.folder, rounds, self.environment)


def compare(name, compiler, programs, rounds, limit, before):
    """The rows of one compiler, and the pairs of runs that they come from."""
    with tempfile.TemporaryDirectory() as folder:
        pairs = Project(pathlib.Path(folder), compiler, programs).rounds(rounds)
    ways = "driver", "xargs"
    return [compared(f"{name}, {UNITS} units: wall, `xargs -P`", pairs, ways, "wall", limit, before[0]),
            compared(f"{name}, {UNITS} units: CPU of all, `xargs -P`", pairs, ways, "total", limit, before[1])], pairs


def rows(programs, rounds):
    trivial, pairs = compare("trivial compiler and core", str(programs["compiler"]), programs, rounds, 1.0,
                             (0.41, 0.63))
    own = statistics.median(pair["driver"]["own"] for pair in pairs) * 1000 / UNITS
    peak = max(pair["driver"]["peak"] for pair in pairs) / 1024
    trivial += [Row("the driver's own CPU for each unit", f"{own:.2f} ms", "", own, 0.5, "ms", 0.37),
                Row("peak memory of that run", f"{peak:.1f} MB", "", peak, 10, "MB", 6.1)]
    real, _ = compare("`gcc -E` and a trivial core", "/usr/bin/gcc", programs, max(3, rounds // 3), 1.05,
                      (0.93, 0.93))
    return trivial + real
