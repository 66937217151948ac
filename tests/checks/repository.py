"""What the checks share: the repository's files, and how a check reports what it found."""
import os
import subprocess
import sys

CODE_FOLDERS = ("src", "cores", "tests", "bench")


def root():
    """The repository to check: the first argument, else the current folder."""
    return os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else ".")


def files(folder, *suffixes):
    """The files of a repository, tracked or new but not ignored, with one of the suffixes; relative, sorted."""
    listing = subprocess.run(
        ["git", "-c", "safe.directory=*", "ls-files", "--cached", "--others", "--exclude-standard", "-z"],
        cwd=folder, check=True, capture_output=True).stdout.decode()
    names = {name for name in listing.split("\0") if name.endswith(suffixes)}
    return sorted(name for name in names if os.path.isfile(os.path.join(folder, name)))


def code_files(folder):
    """The C++ files of our own."""
    return [name for name in files(folder, ".h", ".cpp") if name.split("/")[0] in CODE_FOLDERS]


def lines(folder, name):
    """The lines of a file with their numbers, from 1."""
    with open(os.path.join(folder, name), encoding="utf-8") as file:
        return list(enumerate(file.read().splitlines(), start=1))


def finish(faults):
    """Prints the faults, one a line, and ends the check."""
    for fault in faults:
        print(fault)
    sys.exit(1 if faults else 0)
