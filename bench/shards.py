"""A run spread over shards: what it costs to merge the parts, and to run two shards side by side.

The parts are made from results that no run has had: children would take hours for so many. The two shards are compared
with one run of the whole with as many threads, of a project whose core takes its time.
"""
import concurrent.futures
import pathlib
import random
import subprocess
import tempfile
import time

from foresight import SleepingProject
from measuring import Row, compared, measure

UNITS = 100000
PARTS = 64
PAIRS = 3
UNITS_OF_RUN = 200


def make_parts(programs, folder, units=UNITS, parts=PARTS):
    """Writes the parts of a run; gives their paths."""
    version = subprocess.run([programs["driver"], "--version"], check=True, stdout=subprocess.PIPE, text=True).stdout
    subprocess.run([programs["make_parts"], folder, str(units), str(parts), version.split()[1]], check=True)
    return sorted(folder.glob("*.orvpart"))


def merging(programs):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        command = [programs["driver"], "merge", "-q", "-o", folder / "report.json", *make_parts(programs, folder)]
        # The least of three: what else the machine did is no part of it.
        runs = [measure(programs["measure"], command, folder) for _ in range(3)]
        size = sum(part.stat().st_size for part in folder.glob("*.orvpart")) / UNITS
    wall, peak = min(run["wall"] for run in runs), max(run["peak"] for run in runs) / 1024
    return [Row("100,000 units in 64 parts merged: wall", f"{wall:.2f} s", "", wall, 5, "s", 1.3),
            Row("100,000 units in 64 parts merged: peak memory", f"{peak:.0f} MB", "", peak, 200, "MB", 39),
            Row("what a part takes on disk for each unit", f"{size:.0f} bytes", "", size, 200, "bytes", 34)]


def side_by_side(programs):
    chooser = random.Random(1)
    times = [min(2000, int(chooser.lognormvariate(4.5, 1))) for _ in range(UNITS_OF_RUN)]

    def run(project, *options):
        begin = time.monotonic()
        command = [programs["driver"], "analyze", "-q", "--orvanta-path", programs["core"], *options]
        subprocess.run(command, cwd=project.folder, check=True, stdout=subprocess.DEVNULL)
        return time.monotonic() - begin

    with tempfile.TemporaryDirectory() as name:
        project = SleepingProject(pathlib.Path(name), programs, times, chooser)
        run(project, "-j", "2", "-o", "whole.json", "--stats", "costs")
        pairs = []
        for _ in range(PAIRS):
            shards = [("-j", "1", "--shard", f"{number}/2", "-o", f"{number}.orvpart", "--costs", "costs")
                      for number in (1, 2)]
            with concurrent.futures.ThreadPoolExecutor() as pool:
                wall = max(pool.map(lambda options: run(project, *options), shards))
            pairs.append({"shards": {"wall": wall}, "whole": {"wall": run(project, "-j", "2", "-o", "whole.json")}})
        merge = [programs["driver"], "merge", "-q", "-o", "merged.json", "1.orvpart", "2.orvpart"]
        subprocess.run(merge, cwd=project.folder, check=True)
        same = (project.folder / "merged.json").read_bytes() == (project.folder / "whole.json").read_bytes()
    rows = [compared("two shards side by side (`-j 1` each): wall, one run with `-j 2`", pairs, ("shards", "whole"),
                     "wall", 1.05, 1.02)]
    return rows if same else rows + [Row("merged report differs", "", "", 1, 0)]


def rows(programs):
    return merging(programs) + side_by_side(programs)
