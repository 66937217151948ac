#!/usr/bin/env python3
"""compare_inputs PROGRAM CORE PROJECT...: a traced build and its compilation database give the same units.

Builds real projects under strace, has the driver read the trace and the database, and compares what it would analyze:
the same sources, in the same folders, with the same arguments. The text of each unit must be its compiler's own. The
database is the build tool's own, what libtool says it runs, or bear's.
PROJECT is one of:
    googletest-make, googletest-ninja    the sources that the Debian package googletest ships, built with CMake
    libltdl                              those of libltdl-dev, built with configure, automake's rules and libtool
    NAME                                 the Debian source package of that name, built by make; needs bear and a network
CORE is any program that keeps the core's protocol.
"""
import glob
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

STRACE = ["strace", "-f", "--seccomp-bpf", "-v", "-s", "1048576", "-e", "trace=process,chdir,fchdir,getcwd,open,openat"]
GOOGLETEST = "/usr/src/googletest"
LIBLTDL = "/usr/share/libtool"
# Flags that only write make's rules: the build tool adds them to the command, but not to its database.
DEPENDENCY_FLAGS = {"-MD": 0, "-MMD": 0, "-MP": 0, "-MT": 1, "-MF": 1, "-MQ": 1}
JOBS = "-j2"


def run(command, folder, **options):
    done = subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False, **options)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} ended with {done.returncode}:\n{done.stdout[-4000:]}")
    return done.stdout


def cmake_project(generator, *options):
    """Traces a build of GoogleTest; returns the paths of its trace and database."""
    def build(folder):
        run(["cmake", "-S", GOOGLETEST, "-B", folder, "-G", generator, "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
             "-DCMAKE_CXX_FLAGS=-O0 -w", "-DINSTALL_GTEST=OFF", *options], folder)
        trace = os.path.join(folder, "strace_out")
        run(STRACE + ["-o", trace, "cmake", "--build", folder, "--", JOBS], folder)
        return trace, os.path.join(folder, "compile_commands.json")
    return build


def libltdl(folder):
    """Traces a build of libltdl, which compiles each source twice; returns the paths of its trace and database."""
    parent = os.path.dirname(folder)  # configure refuses a folder with a blank in its name
    place = os.path.join(parent, "libltdl-build")
    os.mkdir(place)
    shutil.copytree(LIBLTDL, os.path.join(parent, "libltdl"))
    shutil.copytree(os.path.join(LIBLTDL, "build-aux"), os.path.join(parent, "build-aux"))
    run(["../libltdl/configure", "--quiet", "--enable-ltdl-install", "CC=" + shutil.which("gcc"),
         "CFLAGS=-O0 -w"], place)
    trace, database = os.path.join(folder, "strace_out"), os.path.join(folder, "compile_commands.json")
    said = run(STRACE + ["-o", trace, "make", "V=1", JOBS], place)
    # Behind a redirection stands nothing that is the compiler's.
    commands = [line.partition(":  ")[2].partition(" >")[0] for line in said.splitlines()
                if line.startswith("libtool: compile:")]
    with open(database, "w", encoding="utf-8") as file:
        json.dump([{"directory": place, "command": command, "file": ""} for command in commands], file)
    return trace, database


def debian_lists(folder):
    """Options for apt with lists of its own: the machine's, with the sources' added."""
    for part in ("lists/partial", "cache/archives/partial", "parts"):
        os.makedirs(os.path.join(folder, part))
    machine = glob.glob("/etc/apt/sources.list") + glob.glob("/etc/apt/sources.list.d/*.list")
    for path in machine:
        with open(path, encoding="utf-8") as file:
            lines = [line.replace("deb ", "deb-src ", 1) for line in file if line.startswith("deb ")]
        with open(os.path.join(folder, "parts", os.path.basename(path) + ".list"), "w", encoding="utf-8") as file:
            file.writelines(lines)
    for path in glob.glob("/etc/apt/sources.list.d/*.sources"):
        with open(path, encoding="utf-8") as file:
            text = file.read().replace("Types: deb\n", "Types: deb-src\n")
        with open(os.path.join(folder, "parts", os.path.basename(path)), "w", encoding="utf-8") as file:
            file.write(text)
    places = {"Dir::Etc::sourcelist": "/dev/null", "Dir::Etc::sourceparts": f"{folder}/parts",
              "Dir::State::lists": f"{folder}/lists", "Dir::Cache": f"{folder}/cache"}
    return [word for place in places.items() for word in ("-o", "=".join(place))]


def debian_project(name):
    """Traces a build of a Debian source package by make, and another one by bear."""
    def build(folder):
        apt = os.path.join(folder, "apt")
        lists = debian_lists(apt)
        run(["apt-get", "-q", *lists, "update"], folder)
        run(["apt-get", "-q", *lists, "--download-only", "source", name], folder)
        archive = glob.glob(os.path.join(folder, "*.orig.tar.*"))[0]
        run(["tar", "xf", archive], folder)
        source = next(entry.path for entry in os.scandir(folder) if entry.is_dir() and entry.path != apt)
        trace, database = os.path.join(folder, "strace_out"), os.path.join(folder, "compile_commands.json")
        run(["bear", "--output", database, "--", "make", JOBS], source)
        run(["make", "clean"], source)
        run(STRACE + ["-o", trace, "make", JOBS], source)
        return trace, database
    return build


PROJECTS = {
    "googletest-make": cmake_project("Unix Makefiles"),
    "googletest-ninja": cmake_project("Ninja", "-Dgtest_build_samples=ON"),
    "libltdl": libltdl,
}


def plain(arguments):
    """The arguments without those that only write make's rules."""
    words, kept = iter(arguments), []
    for word in words:
        if word in DEPENDENCY_FLAGS:
            for _ in range(DEPENDENCY_FLAGS[word]):
                next(words, None)
        else:
            kept.append(word)
    return tuple(kept)


def units(program, core, path, folder):
    """What the driver would analyze, in the order of its text."""
    dump = os.path.join(folder, "units.json")
    # Everything is excluded: the run ends with 1.
    done = subprocess.run([program, "analyze", "-f", path, "--dump-json", dump, "-e", "*", "--orvanta-path", core],
                          cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, check=False)
    if not os.path.exists(dump):
        sys.exit(f"the driver wrote no units of {path}:\n{done.stdout}")
    with open(dump, encoding="utf-8") as file:
        entries = json.load(file)
    os.remove(dump)
    return sorted((entry["directory"], entry["file"], plain(entry["arguments"])) for entry in entries), done.stdout


def other_texts(program, database, folder):
    """Names the units whose text is not the compiler's own; only what is left out on purpose may make a difference."""
    done = subprocess.run([program, "verify", "--json", "-f", database, JOBS, "--analyze-specified-system-paths"],
                          cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True, check=False)
    answer = json.loads(done.stdout)
    faults = [f"another text: {unit}" for unit in answer["differences"]
              if not all(re.fullmatch(r"-O[123s]?|-Ofast|-Og|-g3", cause) for cause in unit["causes"])]
    faults += [f"no text: {unit}" for unit in answer["failures"]]
    if answer["equal"] + len(answer["differences"]) != answer["units"]:
        faults.append("not all units were compared")
    return faults


def compare(name, program, core):
    parent = os.path.realpath(tempfile.mkdtemp(prefix="orvanta-fidelity-"))
    folder = os.path.join(parent, "a build")
    os.mkdir(folder)
    trace, database = PROJECTS.get(name, debian_project(name))(folder)
    traced, output = units(program, core, trace, folder)
    expected, _ = units(program, core, database, folder)
    print(f"{name}: {len(traced)} units by the trace of {os.path.getsize(trace) >> 10} KB, {len(expected)} by the "
          f"database")
    faults = [f"only in the trace: {unit}" for unit in traced if unit not in expected]
    faults += [f"only in the database: {unit}" for unit in expected if unit not in traced]
    faults += [line for line in output.splitlines() if "never started" in line or "can't be read" in line]
    if traced != expected and not faults:
        faults.append("some units stand in one of both several times")
    if not expected:
        faults.append("the build compiled nothing")
    faults += other_texts(program, database, folder)
    if faults:
        print("\n".join(faults))
        print(f"the project is kept: {parent}")
    else:
        shutil.rmtree(parent)
    return not faults


program, core = map(os.path.abspath, sys.argv[1:3])
results = [compare(name, program, core) for name in sys.argv[3:]]
sys.exit(0 if results and all(results) else 1)
