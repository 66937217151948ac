"""A small project for tests of the cache of results."""
import json
import os
import pathlib
import shutil
import subprocess

UNITS = 8


class Project:
    """Some sources in a folder, and the programs that analyze them."""

    def __init__(self, folder, driver, core):
        self.folder, self.driver, self.core = pathlib.Path(folder), os.path.abspath(driver), os.path.abspath(core)
        entries = []
        for unit in range(UNITS):
            name = f"u{unit}.c"
            (self.folder / name).write_text(f"int f{unit}(int *p) {{ return p ? {unit} : *p; }}\n", encoding="ascii")
            entries.append({"directory": folder, "file": name, "arguments": ["gcc", "-c", name]})
        (self.folder / "compile_commands.json").write_text(json.dumps(entries), encoding="ascii")

    def command(self, *options):
        return [self.driver, "analyze", "-j2", "-o", "report.json", "--orvanta-path", self.core, *options]

    def analyze(self, *options):
        """The exit code of a run without a history, what it said, and its report."""
        shutil.rmtree(self.folder / ".Orvanta", ignore_errors=True)
        run = subprocess.run(self.command(*options), cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                             text=True, check=False, timeout=120)
        return run.returncode, run.stdout, (self.folder / "report.json").read_bytes()
