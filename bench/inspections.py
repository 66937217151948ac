"""Questions about a very large build: one file of it, and all of it before a run."""
import json
import pathlib
import shutil
import subprocess
import tempfile
import time

from measuring import Row

ENTRIES = 100000
ENTRIES_PER_FOLDER = 40
FLAGS = ("-DPROJECT_SHARED", "-D{module}_EXPORTS", "-I{root}/build/{module}", "-I{root}/{module}", "-I{root}/include",
         "-I{root}/third_party/library/include", "-isystem", "/usr/include/library-2.0", "-O2", "-g", "-DNDEBUG",
         "-fPIC", "-fvisibility=hidden", "-Wall", "-Wextra", "-Wno-unused-parameter", "-std=gnu++17")


def make_project(root, compiler):
    """Sources that are there, and their database; returns the last of them."""
    with open(root / "compile_commands.json", "w", encoding="utf-8") as database:
        for number in range(ENTRIES):
            module = f"module{number // ENTRIES_PER_FOLDER}"
            source = root / module / f"Source{number}.cpp"
            source.parent.mkdir(exist_ok=True)
            source.touch()
            flags = [flag.format(module=module, root=root) for flag in FLAGS]
            command = [str(compiler), *flags, "-o", f"{module}/Source{number}.o", "-c", str(source)]
            entry = {"directory": str(root), "command": " ".join(command), "file": str(source)}
            database.write(("[\n" if number == 0 else ",\n") + json.dumps(entry, indent=2))
        database.write("\n]\n")
    return source


def least(command, root, codes):
    """The least wall time of three runs: what else the machine did is no part of it."""
    times = []
    for _ in range(3):
        begin = time.monotonic()
        code = subprocess.run(command, cwd=root, stdout=subprocess.DEVNULL, check=False).returncode
        times.append(time.monotonic() - begin)
        if code not in codes:
            raise RuntimeError(f"{command} ended with {code}")
    return min(times)


def rows(programs):
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        compiler = shutil.copy(programs["compiler"], root / "c++")
        source = make_project(root, compiler)
        core = ["--orvanta-path", programs["core"]]
        explain = least([programs["driver"], "explain", *core, source], root, {0})
        doctor = least([programs["driver"], "doctor", *core], root, {0, 2})
    return [Row("`explain` of one of 100,000 entries: wall", f"{explain:.2f} s", "", explain, 0.5, "s"),
            Row("`doctor` of 100,000 entries: wall", f"{doctor:.2f} s", "", doctor, 2, "s")]
