#!/usr/bin/env python3
"""kill_runs PROGRAM [--rounds N] [--shards N] [--seed S]: runs that are killed or stopped cost nothing but time.

Each round edits a small project, starts a run of a random kind, ends it at a random moment by a random signal, looks at
what it left (no process, no temporary file), and lets another run of that kind go to its end: its report must be the
one of a run in a folder where nothing happened before. Where that is possible, the other run mostly resumes the first,
now and then behind one more edit. In one round of four the cores hang. In the rounds of --shards, which come last, one
of several shards is ended and run again, and the parts of all are merged. Prints the seed of the run; the same seed
gives the same edits, kinds and signals.
"""
import argparse
import json
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
UNITS = 24
SIGNALS = [signal.SIGKILL] * 5 + [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]
STOPPED = 130
SOON = 10  # seconds: machines may be slow, but nothing may hang


class Fault(Exception):
    """What must not be."""


class Kind:
    """A way to run `analyze`, with an output folder of its own."""

    def __init__(self, name, options, report, reads=json.loads):
        self.name, self.options, self.report, self.reads = name, options, report, reads


def lines_of(text):
    return [json.loads(line) for line in text.splitlines()]


KINDS = [
    Kind("full", [], "r.json"),
    Kind("lines", [], "r.jsonl", lines_of),
    Kind("raw", [], "r.rawlog", str.splitlines),
    Kind("incremental", ["-i"], "r.json"),
    Kind("incremental lines", ["-i"], "r.jsonl", lines_of),
    Kind("listed", ["-S", "list.txt"], "r.json"),
    Kind("across units", ["--intermodular"], "r.json"),
]


class Project:
    """Sources, headers and a database that random edits change."""

    def __init__(self, folder, rng):
        self.folder, self.rng, self.version = folder, rng, 0
        self.units, self.flags = list(range(UNITS)), {}
        for header in range(4):
            self.write_header(header)
        for unit in self.units:
            self.write_unit(unit)
        self.write_database()

    def write(self, name, text):
        (self.folder / name).write_text(text, encoding="utf-8")

    def write_header(self, number):
        self.version += 1
        self.write(f"h{number}.h", f"int finding_h{number}_v{self.version};\n")

    def write_unit(self, number):
        self.version += 1
        extra = f"#ifdef EXTRA\nint finding_extra_{number};\n#endif\n"
        self.write(f"u{number}.c", f'#include "h{number % 4}.h"\nint finding_u{number}_v{self.version};\n{extra}')

    def write_database(self):
        entries = [{"directory": str(self.folder), "file": f"u{unit}.c",
                    "arguments": ["gcc", *self.flags.get(unit, []), "-c", f"u{unit}.c"]} for unit in self.units]
        self.write("compile_commands.json", json.dumps(entries))
        self.write("list.txt", "".join(f"u{unit}.c\n" for unit in self.units[::3]))

    def edit(self):
        unit = self.rng.choice(self.units)
        what = self.rng.choice(["nothing", "header", "unit", "touch", "flags", "remove", "add"])
        if what == "header":
            self.write_header(self.rng.randrange(4))
        elif what == "unit":
            self.write_unit(unit)
        elif what == "touch":
            os.utime(self.folder / f"u{unit}.c")
        elif what == "flags":
            self.flags[unit] = [] if self.flags.get(unit) else ["-DEXTRA"]
        elif what == "remove" and len(self.units) > UNITS // 2:
            self.units.remove(unit)
        elif what == "add":
            missing = [unit for unit in range(UNITS) if unit not in self.units]
            self.units = sorted(self.units + missing[:1])
        self.write_database()
        return what


class Runs:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder
        self.temporary = folder / "temporary"
        self.temporary.mkdir()

    def start(self, kind, output, threads, more=()):
        output.mkdir(exist_ok=True)
        command = [self.program, "analyze", "-q", "-j", str(threads), "--orvanta-path", HERE / "line_core",
                   "-o", output / kind.report, *kind.options, *more]
        return subprocess.Popen(command, cwd=self.folder / "project", env={**os.environ, "TMPDIR": str(self.temporary)},
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def go_to_end(self, kind, output, threads, more=()):
        run = self.start(kind, output, threads, more)
        said = run.communicate(timeout=60)[0]
        if run.returncode != 0:
            raise Fault(f"a run to the end ended with {run.returncode}:\n{said}")
        if left := list(output.glob(".Orvanta/*.journal")):
            raise Fault(f"a journal is left: {left}")

    def finish(self, kind, output, threads, more=()):
        self.go_to_end(kind, output, threads, more)
        return self.report(kind, output)

    @staticmethod
    def report(kind, output):
        path = output / kind.report
        text = path.read_text(encoding="utf-8") if path.exists() else None
        if text is not None:
            try:
                kind.reads(text)
            except ValueError as error:
                raise Fault(f"{path} is torn: {error}:\n{text[-400:]}") from error
        return text

    def processes(self):
        """The processes that work in the project."""
        found = []
        for entry in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if os.readlink(entry / "cwd") == str(self.folder / "project") and int(entry.name) != os.getpid():
                    found.append((entry / "cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace"))
            except OSError:
                pass
        return found

    def temporary_files(self):
        return [path.name for path in self.temporary.iterdir()]

    def expect_soon(self, what, find):
        end = time.monotonic() + SOON
        while left := find():
            if time.monotonic() > end:
                raise Fault(f"{what}: {left}")
            time.sleep(0.02)


def catches(run, sent):
    """Whether the run has come so far that it deals with the signal, or has ended."""
    status = pathlib.Path(f"/proc/{run.pid}/status").read_text(encoding="utf-8")
    fields = dict(line.split(":\t", 1) for line in status.splitlines())
    return fields["State"].startswith("Z") or bool(int(fields["SigCgt"], 16) >> (sent - 1) & 1)


def one_round(runs, project, rng, length):
    kind, sent, threads, edit = rng.choice(KINDS), rng.choice(SIGNALS), rng.choice([1, 2, 4]), project.edit()
    moment, hangs = rng.uniform(0, 1.1) * length, rng.random() < 0.25
    resumes = not kind.options and rng.random() < 0.75
    between = project.edit if resumes and rng.random() < 0.4 else lambda: "nothing"
    told = f"{kind.name}{', resumed' * resumes}, -j {threads}, after \"{edit}\"{', hanging' * hangs}"
    told += f": {sent.name} after {moment * 1000:.0f} ms"
    mark = project.folder / "hang"
    try:
        output = runs.folder / kind.name
        if hangs:
            mark.touch()
        run = runs.start(kind, output, threads)
        time.sleep(moment)
        if sent != signal.SIGKILL:
            runs.expect_soon("a signal is not dealt with", lambda: not catches(run, sent))
        run.send_signal(sent)
        run.communicate(timeout=SOON)
        if sent != signal.SIGKILL and run.returncode not in (0, STOPPED):
            raise Fault(f"the stopped run ended with {run.returncode}")
        mark.unlink(missing_ok=True)
        runs.expect_soon("a child goes on", runs.processes)
        runs.expect_soon("a temporary file is left", runs.temporary_files)
        runs.report(kind, output)
        told += f", then \"{between()}\""
        after = runs.finish(kind, output, threads, ["--resume"] * resumes)
        clean = runs.folder / "clean"
        expected = runs.finish(kind, clean, threads)
        shutil.rmtree(clean)
        if after != expected:
            raise Fault(f"the report differs from a clean run's:\n{after}\n--- expected:\n{expected}")
        runs.expect_soon("a temporary file is left", runs.temporary_files)
    except (Fault, subprocess.TimeoutExpired) as fault:
        raise Fault(f"{told}\n{fault}") from fault
    return run.returncode != 0


def shard_round(runs, project, rng, length):
    """A shard of several is ended, run again, and merged with the others: the report is that of one run."""
    count, sent, edit = rng.choice([2, 3, 5]), rng.choice(SIGNALS), project.edit()
    killed, resumes, moment = rng.randint(1, count), rng.random() < 0.5, rng.uniform(0, 1.1) * length
    told = f"shard {killed} of {count}{', resumed' * resumes}, after \"{edit}\""
    told += f": {sent.name} after {moment * 1000:.0f} ms"
    kind, output = KINDS[0], runs.folder / "shards"

    def part(number):
        return Kind("shard", ["--shard", f"{number}/{count}"], "part.orvpart"), output / str(number)

    def merge(*more):
        command = [runs.program, "merge", "-q", "-o", output / "r.json", *more]
        run = subprocess.run([*command, *sorted(output.glob("*/*.orvpart"))], cwd=runs.folder, capture_output=True,
                             text=True, timeout=60, check=False)
        return run.returncode, run.stdout

    try:
        shutil.rmtree(output, ignore_errors=True)
        output.mkdir()
        run = runs.start(*part(killed), 2)
        time.sleep(moment)
        if sent != signal.SIGKILL:
            runs.expect_soon("a signal is not dealt with", lambda: not catches(run, sent))
        run.send_signal(sent)
        run.communicate(timeout=SOON)
        runs.expect_soon("a child goes on", runs.processes)
        runs.expect_soon("a temporary file is left", runs.temporary_files)
        for number in range(1, count + 1):
            if number != killed:
                runs.go_to_end(*part(number), 2)
        clean = runs.folder / "clean"
        expected = runs.finish(kind, clean, 2)
        shutil.rmtree(clean)
        # What the ended shard has left is whole, or it is told that it is not.
        code, said = merge("--allow-missing")
        if (code == 0 and runs.report(kind, output) != expected) or (code != 0 and "hard" not in said) or (
                code != 0 and run.returncode == 0):
            raise Fault(f"merging what is left ended with {code}:\n{said}")
        runs.go_to_end(*part(killed), 2, ["--resume"] * resumes)
        code, said = merge()
        after = runs.report(kind, output)
        if code != 0 or after != expected:
            raise Fault(f"merging ended with {code}:\n{said}\n{after}\n--- expected:\n{expected}")
    except (Fault, subprocess.TimeoutExpired) as fault:
        raise Fault(f"{told}\n{fault}") from fault
    return run.returncode != 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", type=os.path.abspath)
    parser.add_argument("--rounds", type=int, default=100)
    parser.add_argument("--shards", type=int, default=5, help="rounds behind those, with shards that are merged")
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 32))
    options = parser.parse_args()
    print(f"kill test: {options.rounds} rounds, --shards {options.shards}, --seed {options.seed}", flush=True)
    signal.signal(signal.SIGHUP, signal.SIG_DFL)  # under nohup it is ignored, and the runs would ignore it as well
    rng = random.Random(options.seed)
    folder = pathlib.Path(os.path.realpath(tempfile.mkdtemp(prefix="orvanta-kill-")))
    (folder / "project").mkdir()
    project, runs = Project(folder / "project", rng), Runs(options.program, folder)
    begin = time.monotonic()
    runs.finish(KINDS[0], folder / "first", 2)
    length, ended = time.monotonic() - begin, 0
    rounds = [one_round] * options.rounds + [shard_round] * options.shards
    for number, do_round in enumerate(rounds, 1):
        try:
            ended += do_round(runs, project, rng, length)
        except Fault as fault:
            sys.exit(f"round {number}, --seed {options.seed}: {fault}\nkept: {folder}")
    print(f"{len(rounds)} rounds, {ended} of them ended in mid-run: every report as from a clean run")
    shutil.rmtree(folder)


main()
