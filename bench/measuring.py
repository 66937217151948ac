"""What the scripts that measure share: whole runs, and the rows of the table that they end in."""
import dataclasses
import statistics
import subprocess
import sys


@dataclasses.dataclass
class Row:
    """One figure beside what it is measured by. The yardstick is a text, empty where there is only a limit. `before` is
    what it was when it was last worked on: a value that grows is to be explained, also one within the limit."""
    figure: str
    ours: str
    yardstick: str
    value: float
    limit: float
    unit: str = "times"
    before: float | None = None

    def is_reached(self):
        return self.value <= self.limit

    def cells(self):
        verdict = "reached" if self.is_reached() else "**missed**"
        before = "-" if self.before is None else f"{self.before:g}"
        return [self.figure, self.ours, self.yardstick or "-", f"{self.value:.2f} {self.unit}", before,
                f"{self.limit:g}", verdict]


def print_table(rows):
    print("| figure, yardstick | ours | yardstick | result | before | limit | |")
    print("|---|---|---|---|---|---|---|")
    for row in rows:
        print("| " + " | ".join(row.cells()) + " |")


def find_programs(build, names):
    """The paths of programs below the build folder, by the names of `names`."""
    programs = {name: build / path for name, path in names.items()}
    for path in programs.values():
        if not path.exists():
            sys.exit(f"{path} is missing: tools/build bench")
    return programs


def measure(program, command, folder, environment=None):
    """Runs a command in a folder. Seconds of wall time, of CPU of all and of its own; peak memory in kilobytes."""
    line = subprocess.run([program, *command], env=environment, cwd=folder, check=True, stdout=subprocess.PIPE,
                          text=True).stdout
    code, wall, total, own, peak = line.split()
    if code != "0":
        sys.exit(f"a run failed with code {code}: {' '.join(map(str, command))}")
    return {"wall": float(wall), "total": float(total), "own": float(own), "peak": int(peak)}


def measure_rounds(program, commands, folder, rounds, environment=None):
    """Measures `rounds` pairs of runs of two commands, each first in turn; a pair before them warms the caches."""
    pairs = []
    for number in range(rounds + 1):
        ways = list(commands) if number % 2 else list(reversed(commands))
        pairs.append({way: measure(program, commands[way], folder, environment) for way in ways})
    return pairs[1:]


def text_of(figure, value):
    return f"{value / 1024:.1f} MB" if figure == "peak" else f"{value:.2f} s"


def compared(name, pairs, ways, figure, limit, before=None):
    """The row of two ways: each one's median, and the median of the ratios of the pairs."""
    ours, yardstick = (statistics.median(pair[way][figure] for pair in pairs) for way in ways)
    ratio = statistics.median(pair[ways[0]][figure] / pair[ways[1]][figure] for pair in pairs)
    return Row(name, text_of(figure, ours), text_of(figure, yardstick), ratio, limit, before=before)
