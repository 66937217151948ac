#!/usr/bin/env python3
"""Each check finds the fault that it is there for, and nothing in a repository without faults."""
import os
import subprocess
import sys
import tempfile
import unittest

CHECKS = os.path.dirname(os.path.abspath(__file__))

# A check, a file with a fault, its text, and what the check says of it.
CASES = [
    ("layers", "src/platform/A.cpp", '#include "app/Run.h"\n', "src/platform may not include src/app/Run.h"),
    ("layers", "src/report/A.cpp", '#include "settings/S.h"\n', "src/report may not include src/settings/S.h"),
    ("layers", "src/report/A.cpp", '#include "report/Gone.h"\n', "which is no file of the repository"),
    ("layers", "src/settings/S.h", '#include "settings/T.h"\n', "include cycle: src/settings/S.h -> src/settings/T.h"),
    ("layers", "src/attic/A.cpp", '#include "settings/S.h"\n', "src/attic has no row in cmake/Rooms.cmake"),
    ("platform_conditionals", "src/app/A.cpp", "#if defined(_WIN32)\n", "tests for the system"),
    ("platform_conditionals", "src/app/A.cpp", "#include <unistd.h>\n", "includes a header of the system"),
    ("platform_conditionals", "src/platform/posix/A.cpp", "#include <windows.h>\n", "includes windows.h outside"),
    ("text", "docs/a.md", "x" * 121 + "\n", "121 columns"),
    ("text", "src/app/A.cpp", "int x; \n", "blanks at the end"),
    ("text", "src/app/A.cpp", "\n" * 501, "501 lines"),
    ("links", "docs/a.md", "[b](gone.md)\n", "docs/gone.md, which does not exist"),
    ("links", "docs/a.md", "[b](../README.md#gone)\n", "the heading #gone"),
]
GOOD = {
    "cmake/Rooms.cmake": 'set(ORVANTA_ROOMS "src/platform"\n"src/report platform" "src/settings platform"\n'
                         '"src/app report settings platform")\n',
    "README.md": "# The project\n\n[itself](#the-project), [elsewhere](https://elsewhere.example/)\n",
    "src/app/Run.h": '#include "settings/S.h"\n#include "app/Version.h"\n',
    "src/app/Version.h.in": "#define VERSION @VERSION@\n",
    "src/settings/S.h": "#include <string>\n",
    "src/settings/T.h": '#include "settings/S.h"\n',
    "src/platform/posix/P.cpp": "#include <unistd.h>\n",
    "src/platform/windows/P.cpp": "#include <windows.h>\n",
}


def run_check(check, files):
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["git", "init", "-q", folder], check=True)
        for name, text in files.items():
            path = os.path.join(folder, name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        script = os.path.join(CHECKS, f"check_{check}.py")
        return subprocess.run([sys.executable, script, folder], capture_output=True, text=True)


class Checks(unittest.TestCase):
    def test_find_the_fault(self):
        for check, name, text, said in CASES:
            with self.subTest(check=check, said=said):
                run = run_check(check, {**GOOD, name: text})
                self.assertEqual(run.returncode, 1, run.stderr)
                self.assertIn(f"{name}", run.stdout)
                self.assertIn(said, run.stdout)

    def test_pass_a_good_repository(self):
        for check in sorted({case[0] for case in CASES}):
            with self.subTest(check=check):
                run = run_check(check, GOOD)
                self.assertEqual((run.returncode, run.stdout), (0, ""), run.stderr)


if __name__ == "__main__":
    unittest.main()
