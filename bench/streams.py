"""What is read and written record by record: databases, traces, reports of a million findings."""
import csv
import pathlib
import re
import statistics
import subprocess
import tempfile

from measuring import Row, measure

FINDINGS = 1000000
FINDING = ('{"falseAlarm":false,"level":%d,"code":"V%d","message":"There are identical sub-expressions \'%s\' to the '
           'left and to the right of the \'==\' operator.","positions":[{"file":"/home/user/project/src/module/Source'
           '%d.cpp","line":%d}],"cwe":571,"sastId":"MISRA-C-8.13"}\n')
TEXT_FORMS = ["json", "raw", "misra", "text", "csv", "gitlab", "github", "teamcity", "junit", "sonarqube"]
PAGE_FORMS = ["sarif", "html"]
AGGREGATES = ("_mean", "_median", "_stddev", "_cv")
SECONDS = re.compile(r"reader: ([\d.e+-]+) s, of [^:]*: ([\d.e+-]+) s")
PEAK = re.compile(r"(?:VmHWM|Peak memory):\s*(\d+) (kB|MB)")


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def by_output(name, text, limit, before=None):
    ours, yardstick = map(float, SECONDS.search(text).groups())
    return Row(name, f"{ours:.2f} s", f"{yardstick:.2f} s", ours / yardstick, limit, before=before)


def peak_by_output(name, text, limit):
    number, unit = PEAK.search(text).groups()
    peak = int(number) / (1024 if unit == "kB" else 1)
    return Row(name, f"{peak:.0f} MB", "", peak, limit, "MB")


def inputs(programs):
    database = output_of(programs["read_database"])
    database_peak = output_of(programs["read_database"], "--peak")
    trace = output_of(programs["read_trace"])
    return [by_output("database of 100,000 entries: CPU, a plain pass of the JSON library", database, 1.1, 0.9),
            peak_by_output("database of 100,000 entries: peak memory", database_peak, 120),
            by_output("trace of 100,000 compilations: CPU, `grep -c`", trace, 3, 2.23),
            peak_by_output("trace of 100,000 compilations: peak memory", trace, 200)]


def filtering(programs):
    # A row a line, as what is measured writes lines of its own among them.
    text = output_of(programs["filter_report"], "--benchmark_format=csv",
                     "--benchmark_filter=FilterReport|ParseAndDump")
    seconds = {}
    for run in csv.DictReader(line for line in text.splitlines() if line.startswith(('name,', '"'))):
        if not run["name"].endswith(AGGREGATES):
            seconds.setdefault(run["name"].split("/")[0], []).append(float(run["cpu_time"]) / 1000)
    ours, yardstick = (statistics.median(seconds[name]) for name in ("FilterReport", "ParseAndDumpEachLine"))
    return Row("1,000,000 lines filtered by a base of 500,000: CPU, parsing and writing each", f"{ours:.2f} s",
               f"{yardstick:.2f} s", ours / yardstick, 0.5, before=0.38)


def write_report(path):
    with open(path, "w", encoding="ascii") as report:
        for number in range(FINDINGS):
            report.write(FINDING % (number % 3 + 1, 501 + number % 99, f"value{number}", number % 1000, number % 5000))


def converted(programs, report, form):
    command = [programs["converter"], report, "-t", form, "-o", report.parent / f"out.{form}"]
    return measure(programs["measure"], command, report.parent)


def forms(programs):
    with tempfile.TemporaryDirectory() as folder:
        report = pathlib.Path(folder) / "report.jsonl"
        write_report(report)
        # "totals" writes a page of counts: what it costs is the reading.
        reading = statistics.median(converted(programs, report, "totals")["total"] for _ in range(3))
        runs = {form: converted(programs, report, form) for form in TEXT_FORMS + PAGE_FORMS}
    rows = [Row(f"1,000,000 findings as `{form}`: CPU, reading them", f"{runs[form]['total']:.2f} s",
                f"{reading:.2f} s", runs[form]["total"] / reading, 2)
            for form in TEXT_FORMS]
    peak = max(runs[form]["peak"] for form in TEXT_FORMS) / 1024
    rows.append(Row("the largest of these: peak memory", f"{peak:.0f} MB", "", peak, 150, "MB"))
    return rows, {form: runs[form]["peak"] / 1024 for form in PAGE_FORMS}


def rows(programs):
    form_rows, whole = forms(programs)
    needs = ", ".join(f"`{form}` {peak:.0f} MB" for form, peak in whole.items())
    note = f"1,000,000 findings need, in forms that are written for one reader: {needs}"
    return inputs(programs) + [filtering(programs)] + form_rows, note
