#!/usr/bin/env python3
"""check_options REPOSITORY PROGRAM: the pages on options and the program know the same ones.

A page describes an option in a table row whose first cell shows it, with its value's name:
| `-j N`, `--threads N` | ...
"""
import os
import re
import subprocess
import sys

import repository

# A long form stands behind the short one, or in the next line when both are too wide for one.
HELP_OPTION = re.compile(r"^\s+(?:(-[A-Za-z])\S*,\s+)?(--[a-z][a-z-]*)", re.MULTILINE)
CELL_OPTION = re.compile(r"`(-[A-Za-z]|--[a-z][a-z-]*)((?: [^`]+)?)`")


def options_of_help(program):
    """Every option of the help, short and long."""
    run = subprocess.run([program, "analyze", "--help"], capture_output=True, text=True, stdin=subprocess.DEVNULL)
    return {option for forms in HELP_OPTION.findall(run.stdout) for option in forms if option}


def options_of_page(folder, name):
    """Every option of a page, with whether it takes a value; and a fault for each that stands twice."""
    found, faults = {}, []
    for number, line in repository.lines(folder, name):
        if not line.startswith("| `-"):
            continue
        for option, value in CELL_OPTION.findall(line.split(" | ")[0]):
            if option in found:
                faults.append(f"{name}:{number}: {option} is described twice")
            found[option] = bool(value)
    return found, faults


def rejected(program, option, takes_value):
    """What the program says to an option that it doesn't know; nothing when it knows it."""
    missing = os.path.join(os.sep, "no-such-folder", "settings.cfg")
    command = [program, "analyze", option] + (["1"] if takes_value else []) + ["--cfg", missing]
    run = subprocess.run(command, capture_output=True, text=True, stdin=subprocess.DEVNULL)
    if "Config file doesn't exist: " + missing in run.stdout:
        return None
    return run.stdout.splitlines()[0] if run.stdout else run.stderr


folder, program = repository.root(), sys.argv[2]
visible, faults = options_of_page(folder, "docs/analyze-options.md")
hidden, more = options_of_page(folder, "docs/hidden-options.md")
faults += more
in_help = options_of_help(program)
faults += [f"docs/analyze-options.md: {option} of --help is missing" for option in sorted(in_help - set(visible))]
faults += [f"docs/analyze-options.md: {option} is not in --help" for option in sorted(set(visible) - in_help)]
faults += [f"docs/hidden-options.md: --help shows {option}" for option in sorted(set(hidden) & in_help)]
for option, takes_value in hidden.items():
    answer = rejected(program, option, takes_value)
    if answer:
        faults.append(f"docs/hidden-options.md: the program does not take {option}: {answer}")
if not in_help:
    faults.append("analyze --help shows no option")
repository.finish(faults)
