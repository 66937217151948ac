#!/usr/bin/env python3
"""run_corpus CORE [KIND...]: the bundled core finds planted faults, and leaves right code alone.

Each file of units/ is a kind of fault. It holds units, each behind a line "//// fault" or "//// right", which are
preprocessed and analyzed one by one. A fault counts as found when a finding stands in a line that is marked "HERE". A
right unit counts as blamed when it has a finding of level 1 or 2. Prints what was not found and who was blamed.
"""
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

LEAST_FOUND = 90  # percent of the faults
MOST_BLAMED = 5  # percent of the right units
LANGUAGES = {".c": ("gcc", "C", "c11"), ".cpp": ("g++", "C++", "c++17")}


def units_of(path):
    parts = re.split(r"^//// (fault|right)\n", path.read_text(), flags=re.MULTILINE)
    for number, (word, code) in enumerate(zip(parts[1::2], parts[2::2])):
        yield f"{path.stem}-{number // 2 + 1}-{word}", word == "fault", code, path.suffix


def analyze(core, folder, unit):
    name, is_fault, code, suffix = unit
    compiler, language, standard = LANGUAGES[suffix]
    source = folder / (name + suffix)
    source.write_text(code)
    text, findings, settings = (source.with_suffix(end) for end in (".i", ".json", ".cfg"))
    subprocess.run([compiler, "-std=" + standard, "-D_GNU_SOURCE", "-E", source, "-o", text], check=True)
    settings.write_text(f"i-file={text}\nsource-file={source}\noutput-file={findings}\nlanguage={language}\n"
                        f"std={standard}\npreprocessor=gcc\nplatform=linux64\nanalysis-mode=4\n")
    subprocess.run([core, "--cfg", settings], cwd=folder, check=True, stdout=subprocess.DEVNULL)
    marked = {number for number, line in enumerate(code.splitlines(), 1) if "// HERE" in line}
    messages = [json.loads(line) for line in findings.read_text().splitlines()]
    if is_fault:
        return name, any(message["positions"][0]["line"] in marked for message in messages), messages
    return name, any(message["level"] < 3 for message in messages), messages


def main():
    core, kinds = os.path.abspath(sys.argv[1]), sys.argv[2:]
    corpus = pathlib.Path(__file__).parent / "units"
    units = [unit for path in sorted(corpus.glob("*.c*"))
             if path.suffix in LANGUAGES and (not kinds or path.stem in kinds) for unit in units_of(path)]
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda unit: analyze(core, pathlib.Path(folder), unit), units))
    faults = [result for result in results if result[0].endswith("-fault")]
    right = [result for result in results if result[0].endswith("-right")]
    for name, has_finding, messages in results:
        if has_finding != name.endswith("-fault"):
            print("not found:" if name.endswith("-fault") else "blamed:", name)
            for message in messages:
                print(f"    line {message['positions'][0]['line']}, level {message['level']}: {message['message']}")
    found, blamed = (sum(result[1] for result in group) for group in (faults, right))
    print(f"{found} of {len(faults)} faults found, {blamed} of {len(right)} right units blamed")
    return int(found * 100 < LEAST_FOUND * len(faults) or blamed * 100 > MOST_BLAMED * len(right))


if __name__ == "__main__":
    sys.exit(main())
