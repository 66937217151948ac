"""What a run says of itself while it goes on, and how well it fills its threads.

On a terminal of its own: how far off the time left is at half of the run, in a project that was analyzed before and in
one that was not; how much longer a skewed project takes than the lower bound; and what the status line costs. The core
sleeps for as long as the name of a source says, so other work on the machine counts little.
"""
import concurrent.futures
import json
import os
import pathlib
import pty
import random
import re
import statistics
import sys
import tempfile
import time

from measuring import Row, measure
from whole_runs import Project as TrivialProject

JOBS = 2
UNITS = 300
SEEDS = range(1, 4)
LEFT = re.compile(rb"\r\[\d+/\d+\] \d+ running, (?:(\d+):)?(\d+):(\d\d) left")


def run_on_terminal(command, folder, environment):
    """Runs a command; gives its pieces of output with the time of each, the usage of all its processes, and the wall
    time."""
    begin = time.monotonic()
    process, terminal = pty.fork()
    if process == 0:
        os.chdir(folder)
        os.execve(command[0], list(map(str, command)), environment)
    pieces = []
    while True:
        try:
            piece = os.read(terminal, 65536)
        except OSError:  # how the end of a terminal shows
            break
        if not piece:
            break
        pieces.append((time.monotonic() - begin, piece))
    _, status, usage = os.wait4(process, 0)
    os.close(terminal)
    if status != 0:
        sys.exit(f"a run failed with {status}: {' '.join(map(str, command))}")
    return pieces, usage, time.monotonic() - begin


class SleepingProject:
    """A project whose units take known times, in milliseconds. The size of a source hints at its time, as it does in
    real projects: most of a text comes from headers."""

    def __init__(self, folder, programs, times, chooser):
        self.folder, self.programs = folder, programs
        self.bound = max(max(times), sum(times) / JOBS) / 1000
        sources = [folder / f"takes{milliseconds}ms-{number}.c" for number, milliseconds in enumerate(times)]
        for source, milliseconds in zip(sources, times):
            source.write_text("\n" * int(500 + 20 * milliseconds * chooser.lognormvariate(0, 1)))
        (folder / "compile_commands.json").write_text(json.dumps(
            [{"directory": str(folder), "arguments": [str(programs["compiler"]), "-std=c17", "-c", str(source)]}
             for source in sources]))

    def run(self):
        """The wall time of a run, and the seconds that it said were left at half of it."""
        command = [self.programs["driver"], "analyze", "-j", JOBS, "-o", "report.json", "--orvanta-path",
                   self.programs["core"]]
        environment = dict(os.environ, TERM="xterm", TMPDIR=str(self.folder))
        pieces, _, wall = run_on_terminal(command, self.folder, environment)
        told = None
        for when, piece in pieces:
            for match in LEFT.finditer(piece) if when <= wall / 2 else ():
                told = int(match[1] or 0) * 3600 + int(match[2]) * 60 + int(match[3])
        if told is None:
            sys.exit("no time left was told in the first half of a run")
        return wall, told


def errors(programs, seed):
    """How far off the time left was in the first and in the second run of a project."""
    chooser = random.Random(seed)
    times = [int(chooser.lognormvariate(4.9, 0.9)) for _ in range(UNITS)]
    with tempfile.TemporaryDirectory() as folder:
        project = SleepingProject(pathlib.Path(folder), programs, times, chooser)
        runs = [project.run() for _ in range(2)]
    return [abs(told - wall / 2) / (wall / 2) for wall, told in runs]


def makespan(programs):
    """The wall time of a project whose longest unit, four fifths of the bound, stands last; run before."""
    chooser = random.Random(1)
    times = [int(chooser.lognormvariate(4.0, 1)) for _ in range(200)]
    times.append(int(0.8 * sum(times) / (JOBS - 0.8)))
    with tempfile.TemporaryDirectory() as folder:
        project = SleepingProject(pathlib.Path(folder), programs, times, chooser)
        project.run()
        return project.run()[0], project.bound


def status_cost(programs, rounds):
    """The CPU of the trivial pair with lines and status line on a terminal, against xargs."""
    pairs = []
    with tempfile.TemporaryDirectory() as folder:
        project = TrivialProject(pathlib.Path(folder), str(programs["compiler"]), programs)
        command = [word for word in project.driver() if word != "-q"]
        environment = dict(project.environment, TERM="xterm")
        for _ in range(rounds + 1):
            xargs = measure(programs["measure"], project.xargs(), project.folder, project.environment)["total"]
            _, usage, _ = run_on_terminal(command, project.folder, environment)
            pairs.append((usage.ru_utime + usage.ru_stime, xargs))
    return pairs[1:]


def rows(programs, rounds):
    with concurrent.futures.ThreadPoolExecutor(len(SEEDS)) as pool:
        new, known = zip(*pool.map(lambda seed: errors(programs, seed), SEEDS))
    wall, bound = makespan(programs)
    pairs = status_cost(programs, rounds)
    ours, yardstick = (statistics.median(pair[way] for pair in pairs) for way in (0, 1))
    ratio = statistics.median(pair[0] / pair[1] for pair in pairs)
    return [Row("time left at half of the run, analyzed before: worst error", f"{100 * max(known):.0f} %", "",
                max(known), 0.2),
            Row("the same, never analyzed", f"{100 * max(new):.0f} %", "", max(new), 0.4),
            Row("a skewed project, lower bound: wall", f"{wall:.2f} s", f"{bound:.2f} s", wall / bound, 1.1),
            Row("trivial pair with a status line, `xargs -P`: CPU of all", f"{ours:.2f} s", f"{yardstick:.2f} s", ratio,
                0.7)]
