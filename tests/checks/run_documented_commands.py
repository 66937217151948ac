#!/usr/bin/env python3
"""run_documented_commands REPOSITORY PROGRAM: runs the commands that the pages show, as a reader would.

A block of commands that follows the line <!-- run in a project --> is run by bash in a small CMake project of its own,
with the program on the search path. The first failing command fails the check.
"""
import os
import re
import subprocess
import sys
import tempfile

import repository

BLOCK = re.compile(r"^<!-- run in a project -->\n```sh\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PROJECT = {
    "CMakeLists.txt": "cmake_minimum_required(VERSION 3.20)\nproject(sample C CXX)\n"
                      "add_executable(sample main.cpp src/list.c third_party/old.c)\n",
    "main.cpp": 'extern "C" int First(void);\nint main() { return First(); }\n',
    "src/list.c": "int First(void) {\n    int values[3] = {0, 1, 2};\n    return values[3];\n}\n",
    "third_party/old.c": "int Old(void) {\n    int values[1] = {0};\n    return values[1];\n}\n",
    "analyzer.cfg": "# shared by everyone who works on the sample\nexclude-path=third_party\n",
}


def run_block(block, program):
    with tempfile.TemporaryDirectory() as project:
        for name, text in PROJECT.items():
            path = os.path.join(project, name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        environment = dict(os.environ, PATH=os.path.dirname(program) + os.pathsep + os.environ["PATH"])
        return subprocess.run(["bash", "-euo", "pipefail", "-c", block], cwd=project, env=environment, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)


folder, program = repository.root(), os.path.abspath(sys.argv[2])
faults, count = [], 0
for name in repository.files(folder, ".md"):
    with open(os.path.join(folder, name), encoding="utf-8") as page:
        blocks = BLOCK.findall(page.read())
    for block in blocks:
        count += 1
        run = run_block(block, program)
        if run.returncode != 0:
            faults.append(f"{name}: commands end with {run.returncode}:\n{block}-- output:\n{run.stdout}")
if count == 0:
    faults.append("no page shows commands that could be run")
repository.finish(faults)
