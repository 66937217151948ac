#!/usr/bin/env python3
"""check_platform_conditionals [REPOSITORY]: which system it runs on is known to src/platform alone."""
import re

import repository

CONDITIONAL = re.compile(r"\s*#\s*(if|ifdef|ifndef|elif)\b.*\b(_WIN32|_WIN64|WIN32|_MSC_VER|__MINGW\w*|__CYGWIN__"
                         r"|__linux\w*|__unix\w*|__APPLE__|_POSIX\w*)\b")
SYSTEM_HEADER = re.compile(r"\s*#\s*include\s*<(windows\.h|process\.h|unistd\.h|spawn\.h|fcntl\.h|poll\.h|signal\.h"
                           r"|csignal|pthread\.h|dirent\.h|sys/[^>]+)>", re.IGNORECASE)
WINDOWS_HEADER = re.compile(r"\s*#\s*include\s*<windows\.h>", re.IGNORECASE)


def judge(name, line):
    if not name.startswith("src/platform/"):
        if CONDITIONAL.match(line):
            return "tests for the system outside src/platform"
        if SYSTEM_HEADER.match(line):
            return "includes a header of the system outside src/platform"
    elif WINDOWS_HEADER.match(line) and not (name.startswith("src/platform/windows/") and name.endswith(".cpp")):
        return "includes windows.h outside src/platform/windows/*.cpp"
    return None


folder = repository.root()
faults = []
# Programs of the tests and benchmarks may talk to the system: they make it fail on purpose.
for name in (name for name in repository.code_files(folder) if name.startswith(("src/", "cores/"))):
    for number, line in repository.lines(folder, name):
        fault = judge(name, line)
        if fault:
            faults.append(f"{name}:{number}: {fault}")
repository.finish(faults)
