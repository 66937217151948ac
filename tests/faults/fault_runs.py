#!/usr/bin/env python3
"""fault_runs BIN SHIM [--share N] [--seed S] [--kind KIND]: one failing call of the system, at every place.

For every way to run the programs in BIN and every kind of call, lets the 1st, 2nd, 3rd ... call fail until a run makes
fewer calls. No run may crash, hang, end with 0 and lack a finding, tear a file, or leave a child or a temporary file
behind; the next run without a fault must be whole. --share takes every N-th place only, from a random one on.
"""
import argparse
import errno
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
CORE = HERE.parent / "kill" / "line_core"
ERRORS = {"open": ["EMFILE", "EACCES"], "read": ["EIO", "EINTR"], "write": ["ENOSPC", "EINTR"], "rename": ["EIO"],
          "mkdir": ["ENOSPC"], "stat": ["EIO"], "sync": ["EIO"], "pipe": ["EMFILE"], "spawn": ["EAGAIN", "ENOMEM"],
          "thread": ["EAGAIN"], "alloc": ["ENOMEM"]}
STEPS = {"alloc": 97, "stat": 3, "read": 3}  # of calls that a run makes by the hundred
HANGS_AFTER = 30  # seconds


class Fault(Exception):
    """What must not be."""


def documents(text):
    return json.loads(text)["warnings"]


def lines(text):
    return [json.loads(line) for line in text.splitlines()]


class Way:
    """A command, the file that it makes and how that reads."""

    def __init__(self, name, program, words, output, read, prepare=(), edit=None):
        self.name, self.program, self.words, self.output, self.read = name, program, words, output, read
        self.prepare, self.edit = prepare, edit


ANALYZE = ["analyze", "-q", "-j", "2", "--orvanta-path", str(CORE)]
FULL = [*ANALYZE, "-o", "r.json"]
INCREMENTAL = [*FULL, "-i"]
SHARDS = [[*ANALYZE, "--shard", f"{number}/2", "-o", f"{number}.orvpart"] for number in (1, 2)]


def touch_one(folder):
    (folder / "u1.c").write_text("int finding_edited;\n", encoding="utf-8")


WAYS = [
    Way("full", "orvanta-analyzer", FULL, "r.json", documents, [FULL]),
    Way("lines", "orvanta-analyzer", [*ANALYZE, "-o", "r.jsonl"], "r.jsonl", lines),
    Way("first incremental", "orvanta-analyzer", INCREMENTAL, "r.json", documents),
    Way("next incremental", "orvanta-analyzer", INCREMENTAL, "r.json", documents, [INCREMENTAL], touch_one),
    Way("across units", "orvanta-analyzer", [*FULL, "--intermodular"], "r.json", documents),
    Way("listed", "orvanta-analyzer", [*FULL, "-S", "list.txt"], "r.json", documents),
    Way("merge", "orvanta-analyzer", ["merge", "-q", "-o", "m.json", "1.orvpart", "2.orvpart"], "m.json", documents,
        SHARDS),
    Way("suppress", "orvanta-analyzer", ["suppress", "all.jsonl"], "suppress_base.json", json.loads),
    Way("filter", "orvanta-analyzer", ["filter-suppressed", "-o", "f.json", "-s", "base.json", "all.jsonl"],
        "f.json", documents),
    Way("convert", "orvlog-converter", ["all.jsonl", "-t", "json", "-o", "c.json"], "c.json", documents),
]


def write_project(folder, binaries):
    entries = []
    for unit in range(3):
        (folder / f"u{unit}.c").write_text(f'#include "h.h"\nint finding_u{unit};\n', encoding="utf-8")
        entries.append({"directory": str(folder), "file": f"u{unit}.c", "arguments": ["gcc", "-c", f"u{unit}.c"]})
    (folder / "h.h").write_text("int finding_h;\n", encoding="utf-8")
    (folder / "list.txt").write_text("u0.c\nu2.c\n", encoding="utf-8")
    (folder / "compile_commands.json").write_text(json.dumps(entries), encoding="utf-8")
    for words in ([*ANALYZE, "-o", "all.jsonl"], ["suppress", "all.jsonl", "-f", "u0.c", "-o", "base.json"]):
        subprocess.run([binaries / "orvanta-analyzer", *words], cwd=folder, check=True, stdout=subprocess.DEVNULL)


class Runs:
    def __init__(self, binaries, shim):
        self.binaries, self.shim = binaries, shim
        self.folder = pathlib.Path(os.path.realpath(tempfile.mkdtemp(prefix="orvanta-faults-")))
        self.project, self.temporary = self.folder / "project", self.folder / "temporary"
        self.mark = self.folder / "mark"
        self.made = self.folder / "made"
        self.made.mkdir()
        write_project(self.made, binaries)
        self.count = 0

    def run(self, way, words, fault=None):
        variables = {**os.environ, "TMPDIR": str(self.temporary)}
        if fault is not None:
            variables |= {"LD_PRELOAD": str(self.shim), "ORVANTA_FAULT": fault, "ORVANTA_FAULT_IN": way.program,
                          "ORVANTA_FAULT_MARK": str(self.mark)}
        self.count += 1
        return subprocess.run([self.binaries / way.program, *words], cwd=self.project, env=variables,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              errors="replace", timeout=HANGS_AFTER, check=False)

    def begin(self, way):
        for folder in (self.project, self.temporary):
            shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree(self.made, self.project)
        database = (self.project / "compile_commands.json")
        database.write_text(database.read_text(encoding="utf-8").replace(str(self.made), str(self.project)),
                            encoding="utf-8")
        self.temporary.mkdir()
        self.mark.unlink(missing_ok=True)
        for words in way.prepare:
            self.run(way, words)
        if way.edit is not None:
            way.edit(self.project)

    def output(self, way):
        path = self.project / way.output
        try:
            text = path.read_text(encoding="utf-8")
        except FileNotFoundError:
            return None
        try:
            return way.read(text)
        except (ValueError, KeyError, TypeError) as error:
            raise Fault(f"{way.output} is torn: {error}:\n{text[-400:]}") from error

    def expect_nothing_left(self):
        end = time.monotonic() + 5
        while left := [path.name for path in self.temporary.iterdir()] + self.processes():
            if time.monotonic() > end:
                raise Fault(f"left behind: {left}")
            time.sleep(0.02)
        if traces := list(self.project.glob("*.stacktrace.txt")):
            raise Fault(f"it crashed: {traces[0].read_text(errors='replace')[:2000]}")

    def processes(self):
        found = []
        for entry in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if os.readlink(entry / "cwd") == str(self.project):
                    found.append((entry / "cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace"))
            except OSError:
                pass
        return found

    def one_fault(self, way, kind, number, error, expected):
        """False when the run makes fewer calls."""
        self.begin(way)
        try:
            run = self.run(way, way.words, f"{kind}:{number}:{getattr(errno, error)}")
        except subprocess.TimeoutExpired as hang:
            raise Fault("it hangs") from hang
        if not self.mark.exists():
            return False
        try:
            # Without its crash handler the program does not begin.
            if run.returncode == -signal.SIGABRT and "Error: the crash handler's thread can't be started" in run.stdout:
                return True
            if run.returncode not in (0, 1):
                raise Fault(f"it ended with {run.returncode}")
            found = self.output(way)
            if run.returncode == 0 and found != expected:
                raise Fault(f"exit code 0 with {found} in place of {expected}")
            if run.returncode == 1 and not run.stdout.strip():
                raise Fault("it failed without a word")
            self.expect_nothing_left()
            after = self.run(way, way.words)
            if after.returncode != 0 or self.output(way) != expected:
                raise Fault(f"the next run ended with {after.returncode} and {self.output(way)}:\n{after.stdout}")
        except Fault as fault:
            raise Fault(f"{fault}\nit said:\n{run.stdout[-1500:]}") from fault
        return True


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("binaries", type=pathlib.Path)
    parser.add_argument("shim", type=pathlib.Path)
    parser.add_argument("--share", type=int, default=1)
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 32))
    parser.add_argument("--kind", choices=ERRORS)
    options = parser.parse_args()
    print(f"faults: --share {options.share} --seed {options.seed}", flush=True)
    rng = random.Random(options.seed)
    runs = Runs(options.binaries.resolve(), options.shim.resolve())
    faults = []
    for way in WAYS:
        runs.begin(way)
        clean = runs.run(way, way.words)
        expected = runs.output(way)
        if clean.returncode != 0 or not expected:
            sys.exit(f"{way.name} without a fault ended with {clean.returncode}: {expected}\n{clean.stdout}")
        for kind in [options.kind] if options.kind else ERRORS:
            for error in ERRORS[kind]:
                step = options.share * STEPS.get(kind, 1)
                number = 1 if options.share == 1 else rng.randint(1, step)
                try:
                    while runs.one_fault(way, kind, number, error, expected):
                        number += step
                except Fault as fault:
                    faults.append(f"{way.name}, call {number} of {kind} fails with {error}: {fault}")
                    print(faults[-1], flush=True)
    shutil.rmtree(runs.folder)
    print(f"{runs.count} runs, {len(faults)} faults")
    sys.exit(1 if faults else 0)


main()
