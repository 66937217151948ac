#!/usr/bin/env python3
"""compare_texts DRIVER CORE FAMILY [--all]: what the driver preprocesses is the compiler's own text, flag by flag.

Makes command lines of every option that the compiler lists, in the forms in which it may be written: alone, with a
value in the next word, with a glued one. Each line that the compiler accepts is preprocessed by it, and by the driver
as an entry of a database. The texts must be equal, each entry must be one unit, and the driver must leave no file in
the project. The sources spell out macros and look for headers, so that a lost value, or one that swallows the next
flag, is another text. Without --all, an even choice of the options is tried.
FAMILY is gcc, clang, clang-cl or arm-none-eabi-gcc. CORE is any program that keeps the core's protocol.
"""
import concurrent.futures
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

CHOICE = 200  # options without a value in the next word, of each family
BEFORE, AFTER = "-DBEFORE=1", "-DAFTER=2"
VALUES = ("dir", "forced.h", "1", "spare.o")  # the first that the compiler accepts counts
VALUES_OF = {"-x": "c",
             "--assert": "machine=x", "-A": "machine=x", "--std": "c99", "--stdlib": "libc++", "--machine": "32",
             "--param": "max-inline-insns-single=9", "-target": "x86_64-linux-gnu", "-arch": "x86_64",
             "-meabi": "gnu", "-mhwdiv": "arm", "--mhwdiv": "arm", "-mthread-model": "single", "--language": "c",
             "-Xlinker": "-z", "--for-linker": "-z", "-Xassembler": "-v", "--for-assembler": "-v",
             "--specs": "own.specs",
             "-Xclang": "-Wall", "-Xpreprocessor": "-Wall", "-mllvm": "-time-passes"}
GLUED = ("1", "dir")
# What these print or make is no compilation, or they ask for the text in another form, or for what the driver leaves
# out on purpose (docs/compilers.md). The last line is of those that name the output.
LEFT_OUT = re.compile(r"""--?(
    E|M|MM|MG|S|c|preprocess|assemble|compile|precompile|dependencies|user-dependencies|fsyntax-only|emit-.*|analyze|
    migrate|rewrite-.*|verify-pch|extract-api|help.*|HELP|target-help|version|v|verbose|\#\#\#|print-.*|dumpversion|
    dumpfullversion|dumpmachine|dumpspecs|autocomplete=|via-file-asm|wrapper|ccc-print-.*|
    C|CC|P|comments(-in-macros)?|no-line-commands|fdirectives-only|fminimize-whitespace|frewrite-.*|fpch-preprocess|
    fdebug-cpp|d|dM|dD|dN|dI|dU|dump|g\w*3|O.*|optimize.*|
    o|output.*
    )""", re.VERBOSE)
LEFT_OUT_CL = re.compile(r"[-/](c|E|EP|P|C|d1PP|Zs|\?|help|HELP|O.*|F[adeimopRr].*|Y.*|link|T[cp]|showIncludes.*|o|v|"
                         r"-version|###|-analyze|emit-.*|analyze.*|fsyntax-only|print.*)")


def run(command, folder):
    return subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace", check=False)


class Family:
    """A compiler, its options, and how it is asked for preprocessed text."""
    introducer, left_out = "-", LEFT_OUT
    compile_flags = ["-c"]

    def __init__(self, program, everything):
        self.program = program
        self.step = 1 if everything else 6

    def help(self, *words):
        return run([self.program, *words], ".").stdout

    def expected(self, words, source, target):
        return [self.program, *words, "-DORVANTA", "-w", "-E", "-o", target, source]

    def macros(self):
        sets = ([], ["-fPIC"], ["-fopenmp"], ["-pthread"], ["-ffast-math"], ["-std=c99"], ["-march=native"], ["-ansi"],
                ["-fshort-enums", "-fshort-wchar", "-funsigned-char"], ["-fsanitize=address"], ["-m32"])
        return "".join(self.help(*flags, "-dM", "-E", "-x", "c", "/dev/null") for flags in sets)


class Gnu(Family):
    def options(self):
        """The options with a value in the next word, and the others."""
        def listed(word):
            return [line.split()[0] for line in self.help("--help=" + word).splitlines() if line.startswith("  -")]
        separate = [re.split("[<=,]", name)[0] for name in listed("separate") + listed("joined,separate")]
        separate += ["--for-linker", "--for-assembler", "--param", "--prefix", "--sysroot", "--specs", "--std",
                     "--machine", "--language", "-Xlinker", "-Xassembler", "-Xpreprocessor", "-T", "-u", "-z", "-e",
                     "--entry", "-B", "-l", "--library-directory"]
        others = sum((listed(word) for word in ("common", "target", "c", "c++")), [])
        return separate, others


class Clang(Family):
    def options(self):
        names = [line.split("\t")[0].strip() for line in self.help("--autocomplete=-").splitlines()]
        separate = [line.split()[0] for line in self.help("--help-hidden").splitlines()
                    if re.match(r"  -\S+ <", line)]
        # Many take a value and have no text of help. These beginnings are of flags that never do.
        others = [name for name in names if not name.endswith("=") and not re.match("-[fWmgOR]", name)]
        return separate + others[::self.step], names


class ClangCl(Clang):
    introducer, left_out = "/", LEFT_OUT_CL
    compile_flags = ["/c"]

    def options(self):
        names = [line.split() for line in self.help("-help").splitlines() if re.match(r"  [-/]", line)]
        return [words[0] for words in names if len(words) > 1 and words[1].startswith("<")], [w[0] for w in names]

    def expected(self, words, source, target):
        return [self.program, *words, "-DORVANTA", "/P", "/Fi" + target, source]

    def macros(self):
        return "".join(self.help("-clang:-dM", "/E", *flags, os.devnull) for flags in ([], ["/TC", "/std:c11"], ["/J"]))


def program_of(name):
    """clang-cl lies in clang's own folder of programs."""
    found = shutil.which("clang")
    return os.path.join(os.path.dirname(os.path.realpath(found)), name) if found and name == "clang-cl" else name


FAMILIES = {"gcc": Gnu, "arm-none-eabi-gcc": Gnu, "clang": Clang, "clang-cl": ClangCl}


def candidates(family, everything):
    """Lists of forms of one option each: the first that the compiler accepts is the line."""
    separate, others = family.options()
    lines = []
    for name in dict.fromkeys(separate):
        if not family.left_out.fullmatch(name):
            values = ([VALUES_OF[name]] if name in VALUES_OF else []) + list(VALUES)
            lines.append([[name, value] for value in values])
    plain = [name for name in dict.fromkeys(others) if not family.left_out.fullmatch(name.split("=")[0])]
    step = 1 if everything else max(1, len(plain) // CHOICE)
    for name in plain[::step]:
        stem = re.split("[<\\[]", name)[0]
        glued = stem != name or stem.endswith(("=", ":"))
        lines.append([[stem + value] for value in GLUED] if glued else [[stem]])
    return lines


def make_project(folder, family):
    os.makedirs(os.path.join(folder, "dir"))
    names = sorted(set(re.findall(r"#define ([A-Za-z_]\w*) ", family.macros())))
    text = "".join(f'#ifdef {name}\n"{name}" {name}\n#endif\n' for name in names)
    text += "BEFORE AFTER ORVANTA FORCED SPECS DIR\n#if __has_include(<only.h>)\n#include <only.h>\n#endif\n"
    for name, content in (("all.h", text), ("forced.h", "#define FORCED 1\n"), ("dir/only.h", "#define DIR 1\nDIR\n"),
                          ("own.specs", "*cpp:\n+ -DSPECS=1\n")):
        write(os.path.join(folder, name), content)
    run(["gcc", "-c", "-x", "c", os.devnull, "-o", "spare.o"], folder)


def listing(folder):
    return {os.path.relpath(os.path.join(parent, name), folder)
            for parent, _, names in os.walk(folder) for name in names}


def read(path):
    with open(path, "rb") as file:
        return file.read()


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def accepted_lines(family, folder, forms):
    """The first form of each option that the compiler accepts, and its own text."""
    def attempt(numbered):
        number, choices = numbered
        source, target = f"unit{number}.c", f"unit{number}.expected"
        for words in choices:
            # What the compiler would write beside the text is of no interest here: each line has a folder of its own.
            place = f"{folder}-{number}"
            shutil.copytree(folder, place)
            write(os.path.join(place, source), SOURCE)
            line = [BEFORE, *words, AFTER]
            done = run(family.expected(line, source, target), place)
            path = os.path.join(place, target)
            text = read(path).replace(place.encode(), folder.encode()) if os.path.exists(path) else b""
            shutil.rmtree(place)
            if done.returncode == 0 and text:
                return source, line, text
        return None
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        return [line for line in pool.map(attempt, enumerate(forms)) if line]


SOURCE = '#include "all.h"\nint unit;\n'


def compare(driver, core, name, everything):
    family = FAMILIES[name](program_of(name), everything)
    if not shutil.which(family.program):
        sys.exit(f"{family.program} is not installed")
    parent = os.path.realpath(tempfile.mkdtemp(prefix="orvanta-texts-"))
    folder = os.path.join(parent, "project")
    forms = candidates(family, everything)
    make_project(folder, family)
    lines = accepted_lines(family, folder, forms)
    for source, _, _ in lines:
        write(os.path.join(folder, source), SOURCE)
    database = [{"directory": folder, "file": source,
                 "arguments": [family.program, *words, *family.compile_flags, source]} for source, words, _ in lines]
    write(os.path.join(folder, "compile_commands.json"), json.dumps(database))
    before = listing(folder)
    output = os.path.join(parent, "output")
    os.mkdir(output)
    done = run([driver, "analyze", "-f", "compile_commands.json", "-o", os.path.join(output, "report.json"), "-j2",
                "--dump-files", "--analyze-specified-system-paths", "--orvanta-path", core, "--verbose"], folder)
    faults = []
    texts = {}
    for path, _, names in os.walk(output):
        for file in names:
            match = re.fullmatch(r"\d+_(unit\d+\.c)\.Orvanta\.i", file)
            if match:
                texts.setdefault(match[1], []).append(read(os.path.join(path, file)))
    for source, words, text in lines:
        found = texts.get(source, [])
        if found != [text]:
            what = "no text" if not found else "several units" if len(found) > 1 else "another text"
            faults.append(f"{what}: {' '.join(words)}")
    faults += [f"left in the project: {path}" for path in sorted(listing(folder) - before)]
    if len(lines) < 150:
        faults.append("too few lines")
    print(f"{name}: {len(lines)} lines, {len(faults)} faults")
    if faults:
        print("\n".join(faults))
        write(os.path.join(parent, "run.txt"), done.stdout)
        print(f"the project is kept: {parent}")
    else:
        shutil.rmtree(parent)
    return not faults


DRIVER, CORE = map(os.path.abspath, sys.argv[1:3])
sys.exit(0 if compare(DRIVER, CORE, sys.argv[3], "--all" in sys.argv[4:]) else 1)
