#!/usr/bin/env python3
"""slurm_test.py PROGRAMS [TEST...]: the recipes for Slurm, in one that is started for them on this machine.

Each report is compared with that of one run without Slurm, byte for byte. PROGRAMS is the folder of the built programs;
the compilers and the core are real ones.
"""
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

from cluster import SOON, Cluster, wait_until

HERE = pathlib.Path(__file__).resolve().parent
RECIPES = HERE.parent.parent / "integrations/slurm"
PROGRAMS = pathlib.Path(sys.argv[1]).resolve()
UNITS = 8
SHARDS = "4"
CLUSTER = Cluster(os.path.realpath(tempfile.mkdtemp(prefix="orvanta-slurm-")))

# Each unit has a fault that the core sees in it, and hands a null pointer to the next one: a fault across files.
UNIT = """\
int use{next}(const int *p);
int use{unit}(const int *p) {{ return *p; }}
int pass{unit}(void) {{ int values[2] = {{0}}; return use{next}(0) + values[{unit} + 2]; }}
"""


class SlurmTest(unittest.TestCase):
    def setUp(self):
        self.folder = CLUSTER.folder / self.id().split(".")[-1]
        self.folder.mkdir()
        entries = []
        for unit in range(UNITS):
            text = UNIT.format(unit=unit, next=(unit + 1) % UNITS)
            (self.folder / f"u{unit}.c").write_text(text, encoding="ascii")
            entries.append({"directory": str(self.folder), "file": f"u{unit}.c",
                            "arguments": ["gcc", "-c", f"u{unit}.c"]})
        (self.folder / "compile_commands.json").write_text(json.dumps(entries), encoding="ascii")
        self.hold = self.folder / "hold"
        CLUSTER.environment["HELD_NODE"] = str(self.hold)
        self.options = ["--engines", "cppcheck", "--orvanta-path", str(HERE / "held_core")]

    def analyze_here(self, *more):
        """What one run without Slurm ends with, and its report."""
        run = CLUSTER.run("orvanta-analyzer", "analyze", "-q", "-o", "here.json", *self.options, *more,
                          cwd=self.folder)
        report = (self.folder / "here.json").read_bytes()
        self.assertNotEqual(json.loads(report)["warnings"], [], run.stdout)
        return run.returncode, report

    def submit(self, *words):
        run = CLUSTER.run(RECIPES / "submit", *words, *self.options, cwd=self.folder, seconds=90)
        return run.returncode, run.stdout

    def report(self, name="out/report.json"):
        return (self.folder / name).read_bytes()

    def test_array(self):
        expected = self.analyze_here("--fail-on", "GA:1")
        self.assertEqual(expected[0], 2)
        CLUSTER.environment["ORVANTA_FAIL_ON"] = "GA:1"
        self.addCleanup(CLUSTER.environment.pop, "ORVANTA_FAIL_ON")
        code, said = self.submit(SHARDS, "out")
        self.assertEqual((code, self.report()), expected, said)

    def test_shard_that_is_sent_again(self):
        expected = self.analyze_here()
        CLUSTER.environment.update(ORVANTA_FOLDER="out", ORVANTA_SHARDS=SHARDS)
        (self.folder / "out/parts").mkdir(parents=True)
        self.send("--array=1,2,4")
        code, said = self.merge()
        self.assertEqual(code, 1, said)
        self.assertIn("1 of 4 shards is missing: 3", said)
        self.send("--array=3")
        code, said = self.merge()
        self.assertEqual((code, self.report()), expected, said)

    def send(self, array):
        CLUSTER.run("sbatch", array, RECIPES / "shard.sbatch", *self.options, cwd=self.folder)
        wait_until("the tasks end", lambda: CLUSTER.ask("squeue", "-h") == "")

    def merge(self):
        run = CLUSTER.run("bash", RECIPES / "merge.sbatch", cwd=self.folder)
        return run.returncode, run.stdout

    def test_stages(self):
        expected = self.analyze_here("--intermodular")
        self.assertIn(b"ctunullpointer", expected[1])
        code, said = self.submit("--intermodular", SHARDS, "out")
        self.assertEqual((code, self.report()), expected, said)

    def test_stages_that_do_not_go_on(self):
        """Without a core nothing is collected: the jobs behind end all the same, and say why."""
        self.options = ["--orvanta-path", "/nowhere"]
        code, said = self.submit("--intermodular", "2", "out")
        self.assertEqual(code, 1, said)
        self.assertIn("doesn't exist: /nowhere", said)

    def test_launcher(self):
        expected = self.analyze_here()
        (self.folder / "out").mkdir()
        CLUSTER.environment["ORVANTA_FOLDER"] = "out"
        run = CLUSTER.run("sbatch", "--wait", "--output=log", RECIPES / "launcher.sbatch", *self.options,
                          cwd=self.folder)
        said = run.stdout + (self.folder / "log").read_text(encoding="utf-8")
        self.assertEqual((run.returncode, self.report()), expected, said)
        self.assertEqual(os.listdir(self.folder / "out/shared"), [])

    def test_launcher_that_is_interrupted(self):
        """What it has started on another node ends with it, although the allocation goes on."""
        self.hold.write_text("n2\n", encoding="ascii")
        (self.folder / "out").mkdir()
        job = re.search(r"\d+", CLUSTER.ask("salloc", "--no-shell", "--ntasks=2"))[0]
        environment = {**CLUSTER.environment, "ORVANTA_FOLDER": "out", "SLURM_JOB_ID": job, "SLURM_NTASKS": "2"}
        with subprocess.Popen(["bash", RECIPES / "launcher.sbatch", *self.options], env=environment, cwd=self.folder,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True) as run:
            wait_until("a core hangs on n2", pathlib.Path(f"{self.hold}.hangs").exists)
            run.send_signal(signal.SIGINT)
            said = run.communicate(timeout=SOON)[0]
        self.assertEqual(run.returncode, 130, said)
        wait_until("no step is left", lambda: CLUSTER.ask("squeue", "-h", "--steps", "-j", job) == "")
        wait_until("no process is left", lambda: not CLUSTER.processes(f"SLURM_JOB_ID={job}"))
        self.assertEqual(os.listdir(self.folder / "out/shared"), [], said)
        self.assertEqual(CLUSTER.ask("squeue", "-h", "-j", job, "-o", "%T"), "RUNNING")
        CLUSTER.run("scancel", job)

    def test_task_whose_node_is_lost(self):
        """It begins again on the other one. The last test, since the node stays dead."""
        expected = self.analyze_here()
        self.hold.write_text("n2\n", encoding="ascii")
        with subprocess.Popen([RECIPES / "submit", SHARDS, "out", *self.options], env=CLUSTER.environment,
                              cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True) as run:
            try:
                wait_until("a task hangs on n2", pathlib.Path(f"{self.hold}.hangs").exists)
                CLUSTER.crash("n2")
                said = run.communicate(timeout=60)[0]
            finally:
                run.kill()
        self.assertEqual((run.returncode, self.report()), expected, said)
        self.assertEqual(CLUSTER.ask("sinfo", "-h", "-n", "n2", "-o", "%T"), "down*")


def interrupt(*_):
    raise KeyboardInterrupt  # the one that the tests' runner lets pass


def main():
    signal.signal(signal.SIGTERM, interrupt)
    CLUSTER.environment.update(PATH=f"{PROGRAMS}{os.pathsep}{os.environ['PATH']}",
                               CORE=str(PROGRAMS.parent / "lib/orvanta/Orvanta.exe"))
    is_good = False
    try:
        CLUSTER.start()
        is_good = unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2, exit=False).result.wasSuccessful()
    finally:
        CLUSTER.stop()
        if not is_good:
            CLUSTER.show_logs()
    if not is_good:
        sys.exit(1)
    shutil.rmtree(CLUSTER.folder)


main()
