"""What a run costs that is spread over machines, and how that grows with the build.

One shard of each build runs for real, with a trivial compiler and core: it reads the whole database and chooses its
units. Parts as all shards would write them are then merged.
"""
import filecmp
import json
import pathlib
import sys
import tempfile

import shards
from measuring import Row, measure

UNITS_OF_SHARD = 1000
UNITS_OF_FOLDER = 100
FINDING = ('{"falseAlarm":false,"level":1,"code":"V501","message":"Of unit %d: there are identical sub-expressions.",'
           '"positions":[{"file":"%s","line":1}],"cwe":571}\n')


def make_project(root, compiler, units):
    with open(root / "compile_commands.json", "w", encoding="utf-8") as database:
        for number in range(units):
            folder = f"{root}/module{number // UNITS_OF_FOLDER}"
            if number % UNITS_OF_FOLDER == 0:
                pathlib.Path(folder).mkdir()
            source = f"{folder}/Source{number}.c"
            open(source, "wb").close()
            arguments = [compiler, "-std=c17", "-O2", f"-I{folder}", f"-I{root}/include", "-DNDEBUG", "-Wall", "-c",
                         source, "-o", f"{source}.o"]
            entry = {"directory": str(root), "file": source, "arguments": arguments}
            database.write(("[\n" if number == 0 else ",\n") + json.dumps(entry))
        database.write("\n]\n")


def shard_command(programs, number, count, part):
    return [programs["driver"], "analyze", "-q", "--shard", f"{number}/{count}", "-o", part, "--orvanta-path",
            programs["core"]]


def merge_command(programs, parts):
    return [programs["driver"], "merge", "-q", "-o", "report.json", *parts]


def cut(programs, units, count):
    """All shards of a build, one behind the other, and merging, against one run of the whole."""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        make_project(root, str(programs["compiler"]), units)
        for number in range(0, units, 10):
            source = root / f"module{number // UNITS_OF_FOLDER}/Source{number}.c"
            source.with_suffix(".c.findings").write_text(FINDING % (number, source), encoding="ascii")
        parts = [f"{number}.orvpart" for number in range(1, count + 1)]
        commands = [shard_command(programs, number, count, part) for number, part in enumerate(parts, 1)]
        runs = [measure(programs["measure"], command, folder)
                for command in [*commands, merge_command(programs, parts)]]
        one = measure(programs["measure"], [programs["driver"], "analyze", "-q", "-o", "one.json", "--orvanta-path",
                                            programs["core"]], folder)
        if not filecmp.cmp(root / "report.json", root / "one.json", shallow=False):
            sys.exit("the report of the shards is not that of one run")
    total = sum(run["total"] for run in runs)
    return Row(f"{units:,} units in {count} shards with all children, and merging: CPU, one run", f"{total:.2f} s",
               f"{one['total']:.2f} s", total / one["total"], 1.3)


def grown(programs, units, limits):
    """The rows of one size. `limits`: seconds and megabytes of a shard, of merging, and of all parts."""
    count = units // UNITS_OF_SHARD
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        make_project(root, str(programs["compiler"]), units)
        shard = measure(programs["measure"], shard_command(programs, 1, count, "1.orvpart"), folder)
    with tempfile.TemporaryDirectory() as folder:
        parts = shards.make_parts(programs, pathlib.Path(folder), units, count)
        merge = measure(programs["measure"], merge_command(programs, parts), folder)
        size = sum(part.stat().st_size for part in parts) / 1e6
    ours = [(shard["own"], "s"), (shard["peak"] / 1024, "MB"), (merge["total"], "s"), (merge["peak"] / 1024, "MB"),
            (size, "MB")]
    names = ["one shard, the driver's own CPU", "one shard, peak memory", "merging, CPU", "merging, peak memory",
             "all parts together"]
    return [Row(f"{units:,} units in {count:,} shards: {name}", f"{value:.2f} {unit}", "", value, limit, unit)
            for (value, unit), name, limit in zip(ours, names, limits)]


def rows(programs):
    return [cut(programs, 10000, 10), *grown(programs, 10000, (1, 20, 0.1, 20, 1)),
            *grown(programs, 100000, (2, 70, 0.5, 70, 6)), *grown(programs, 1000000, (10, 500, 6, 500, 60))]
