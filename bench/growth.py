"""What a run costs that is spread over machines, and how that grows with the build.

One shard of each build runs for real, with a trivial compiler and core: it reads the whole database and chooses its
units. The parts of all shards that are merged then are made without a run.
"""
import filecmp
import json
import pathlib
import sys
import tempfile

from measuring import Row, measure
from shards import make_parts

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


def shard_command(programs, number, shards, part):
    return [programs["driver"], "analyze", "-q", "--shard", f"{number}/{shards}", "-o", part, "--orvanta-path",
            programs["core"]]


def merge_command(programs, root):
    return [programs["driver"], "merge", "-q", "-o", "report.json",
            *sorted(path.relative_to(root) for path in root.glob("parts/*.orvpart"))]


def cut(programs, units, shards):
    """All shards of a build, one behind the other, and merging, against one run of the whole."""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        make_project(root, str(programs["compiler"]), units)
        (root / "parts").mkdir()
        for number in range(0, units, 10):
            source = root / f"module{number // UNITS_OF_FOLDER}/Source{number}.c"
            source.with_suffix(".c.findings").write_text(FINDING % (number, source), encoding="ascii")
        one = measure(programs["measure"], [programs["driver"], "analyze", "-q", "-o", "one.json", "--orvanta-path",
                                            programs["core"]], folder)
        runs = [measure(programs["measure"], shard_command(programs, number, shards, f"parts/{number}.orvpart"), folder)
                for number in range(1, shards + 1)]
        runs.append(measure(programs["measure"], merge_command(programs, root), folder))
        if not filecmp.cmp(root / "report.json", root / "one.json", shallow=False):
            sys.exit("the report of the shards is not that of one run")
    total = sum(run["total"] for run in runs)
    return Row(f"{units:,} units in {shards} shards with all children, and merging: CPU, one run", f"{total:.2f} s",
               f"{one['total']:.2f} s", total / one["total"], 1.3)


def grown(programs, units, limits):
    """The rows of one size. `limits`: seconds and megabytes of a shard, of merging."""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        make_project(root, str(programs["compiler"]), units)
        shards = units // UNITS_OF_SHARD
        shard = measure(programs["measure"], shard_command(programs, 1, shards, "one.orvpart"), folder)
        (root / "parts").mkdir()
        make_parts(programs, root / "parts", units, shards)
        merge = measure(programs["measure"], merge_command(programs, root), folder)
        size = sum(path.stat().st_size for path in root.glob("parts/*.orvpart")) / 1e6
    told = f"{units:,} units in {shards:,} shards"
    ours = [(shard["own"], "s"), (shard["peak"] / 1024, "MB"), (merge["total"], "s"), (merge["peak"] / 1024, "MB"),
            (size, "MB")]
    names = ["one shard, the driver's own CPU", "one shard, peak memory", "merging, CPU", "merging, peak memory",
             "all parts together"]
    return [Row(f"{told}: {name}", f"{value:.2f} {unit}", "", value, limit, unit)
            for (value, unit), name, limit in zip(ours, names, limits)]


def rows(programs):
    return [cut(programs, 10000, 10), *grown(programs, 10000, (1, 20, 0.2, 20, 1)),
            *grown(programs, 100000, (2, 70, 1, 70, 6)), *grown(programs, 1000000, (10, 500, 12, 500, 60))]
