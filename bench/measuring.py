"""What the scripts that measure whole runs share."""
import statistics
import subprocess
import sys


def find_programs(build, names):
    """The paths of programs below the build folder, by the names of `names`."""
    programs = {name: build / path for name, path in names.items()}
    for path in programs.values():
        if not path.exists():
            sys.exit(f"{path} is missing: cmake --preset bench && cmake --build --preset bench")
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


def median_ratio(pairs, way, other, figure):
    """The median of the ratios of the pairs."""
    return statistics.median(pair[way][figure] / pair[other][figure] for pair in pairs)


def row(name, value, limit, unit):
    """Prints a figure beside its limit; whether it is reached."""
    verdict = "reached" if value <= limit else "MISSED"
    print(f"{name:<54} {value:>8.2f} {limit:>8.2f} {unit:<12} {verdict}")
    return value <= limit
