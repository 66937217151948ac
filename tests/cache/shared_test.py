#!/usr/bin/env python3
"""shared_test.py DRIVER CORE [ROUNDS [SEED]]: a folder of results that many runs use at once, some of which are killed.

Each round starts eight runs of eight checkouts with one cache and kills some of them at a random moment. Whatever was
killed, no result is damaged, and each report is that of a run without a cache.
"""
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

from project import UNITS, Project

RUNS = 8


def main():
    driver, core = sys.argv[1:3]
    rounds = int(sys.argv[3]) if len(sys.argv) > 3 else 2
    seed = int(sys.argv[4]) if len(sys.argv) > 4 else random.randrange(1 << 32)
    print(f"seed {seed}")
    chooser = random.Random(seed)
    with tempfile.TemporaryDirectory() as folder:
        projects = []
        for run in range(RUNS):
            checkout = pathlib.Path(folder) / f"checkout{run}"
            (checkout / ".git").mkdir(parents=True)
            projects.append(Project(str(checkout), driver, core))
        expected = [project.analyze()[2] for project in projects]
        for round_number in range(rounds):
            cache = pathlib.Path(folder) / f"cache{round_number}"
            running = [subprocess.Popen(project.command("--cache", str(cache)), cwd=project.folder,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) for project in projects]
            for process in chooser.sample(running, RUNS // 2):
                time.sleep(chooser.random() / 4)
                process.send_signal(signal.SIGKILL)
            for process in running:
                process.wait()
            # First by whoever reads, then by whoever looks after it.
            for project, report in zip(projects, expected):
                code, output, found = project.analyze("--cache", str(cache))
                if code != 0 or found != report:
                    sys.exit(f"round {round_number}: another report with code {code}\n{output}")
            if f"Result cache: {UNITS} of {UNITS} files were known" not in output:
                sys.exit(f"round {round_number}: results are missing\n{output}")
            if cache.exists():
                subprocess.run([projects[0].driver, "cache", "verify", "--cache", str(cache)], check=True)


if __name__ == "__main__":
    main()
