#!/usr/bin/env python3
"""check_text [REPOSITORY]: lines of at most 120 columns, files of at most 500 lines, no blanks at a line's end.

The columns of C++ files are the formatter's business: it lets the rows of a table grow.
"""
import os
import re

import repository

LONGEST_LINE = 120
LONGEST_FILE = 500
DATA_TABLE = re.compile(r"constexpr [\w:<>, ]+\b\w+\[\] = \{")  # a source that is mostly a table may be longer
TEXT_FILES = (".h", ".cpp", ".txt", ".cmake", ".py", ".bash", ".md", "Makefile", ".ci/run")


def has_script_line(folder, name):
    with open(os.path.join(folder, name), "rb") as file:
        return file.read(2) == b"#!"


folder = repository.root()
faults = []
for name in repository.files(folder, ""):
    in_data = name.startswith("tests/") and "/data/" in name or name.startswith("tests/fuzz/seeds/")
    if in_data or not (name.endswith(TEXT_FILES) or has_script_line(folder, name)):
        continue
    content = repository.lines(folder, name)
    shows_output = False
    for number, line in content:
        if name.endswith(".md") and line.startswith("```"):
            shows_output = line.startswith("```text")
        is_table = name.endswith(".md") and line.startswith("|")
        may_be_wide = name.endswith((".h", ".cpp")) or is_table or shows_output
        if len(line) > LONGEST_LINE and not may_be_wide:
            faults.append(f"{name}:{number}: {len(line)} columns, more than {LONGEST_LINE}")
        if line != line.rstrip():
            faults.append(f"{name}:{number}: blanks at the end of the line")
    if name.endswith((".h", ".cpp")) and len(content) > LONGEST_FILE:
        if not any(DATA_TABLE.search(line) for _, line in content):
            faults.append(f"{name}: {len(content)} lines, more than {LONGEST_FILE}")
repository.finish(faults)
