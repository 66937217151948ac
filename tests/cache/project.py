"""A small project for tests of the cache of results."""
import json
import os
import pathlib
import shutil
import subprocess

UNITS = 8


class Project:
    """Some sources in a folder, and the programs that analyze them.

    Without a compiler, gcc is taken; one that is given is copied beside the sources, as a stand-in wants it. The
    emulator runs programs of Windows.
    """

    def __init__(self, folder, driver, core, compiler=None, emulator=()):
        self.folder = pathlib.Path(folder)
        self.emulator = list(emulator)
        self.driver, self.core = os.path.abspath(driver), self.seen(os.path.abspath(core))
        command = "gcc"
        if compiler:
            command = self.seen(shutil.copy(compiler, self.folder / ("gcc" + pathlib.Path(compiler).suffix)))
            for name in ("gcc", "gcc.exe"):
                self.write(name + ".version", "gcc (Fake) 12.2.0\n")
        entries = []
        for unit in range(UNITS):
            name = f"u{unit}.c"
            self.write(name, f"int f{unit}(int *p) {{ return p ? {unit} : *p; }}\n")
            entries.append({"directory": self.seen(folder), "file": name, "arguments": [command, "-c", name]})
        self.write("compile_commands.json", json.dumps(entries))

    def seen(self, path):
        """A path as the programs see it: Wine shows the whole file system as a drive."""
        return f"Z:{path}" if self.emulator else str(path)

    def write(self, name, text):
        (self.folder / name).write_text(text, encoding="ascii")

    def command(self, *options):
        return [*self.emulator, self.driver, "analyze", "-j2", "-o", "report.json", "--orvanta-path", self.core,
                *options]

    def analyze(self, *options):
        """The exit code of a run without a history, what it said, and its report."""
        shutil.rmtree(self.folder / ".Orvanta", ignore_errors=True)
        run = subprocess.run(self.command(*options), cwd=self.folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, text=True, check=False, timeout=120)
        return run.returncode, run.stdout, (self.folder / "report.json").read_bytes()
