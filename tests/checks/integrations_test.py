#!/usr/bin/env python3
"""integrations_test.py REPOSITORY FOLDER: what we give to build servers, CMake and pre-commit does what it says.

FOLDER holds the programs. The steps of the servers' files are run by bash, as the servers would, in a project that has
one fault of level 1.
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import yaml

REPOSITORY, PROGRAMS = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
FAULT = "src/list.c:3:1: error: Array 'values[3]' accessed at index 3, which is out of bounds."
PROJECT = {
    "CMakeLists.txt": "cmake_minimum_required(VERSION 3.20)\nproject(sample C)\nlist(APPEND CMAKE_MODULE_PATH "
                      f'"{REPOSITORY}/cmake")\ninclude(OrvantaAnalyzer)\nadd_library(sample src/list.c)\n',
    "src/list.c": "int First(void) {\n    int values[3] = {0, 1, 2};\n    return values[3];\n}\n",
    "src/unused.h": "int Second(void);\n",
}


def read(name):
    with open(os.path.join(REPOSITORY, name), encoding="utf-8") as file:
        return file.read()


def load(name):
    return yaml.safe_load(read(name))


def sample(name, language, word):
    """The block of a page of the documentation that is of this language and holds the word."""
    blocks = re.findall(rf"```{language}\n(.*?)```", read(name), re.DOTALL)
    return next(block for block in blocks if word in block)


class Integrations(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = os.path.join(os.path.realpath(folder.name), "a project")
        for name, text in PROJECT.items():
            os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
            with open(self.path(name), "w", encoding="utf-8") as file:
                file.write(text)

    def path(self, name):
        return os.path.join(self.folder, name)

    def run_in_project(self, command, **environment):
        search = PROGRAMS + os.pathsep + os.environ["PATH"]
        return subprocess.run(command, cwd=self.folder, env={**os.environ, "PATH": search, **environment}, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def configure(self, *options):
        run = self.run_in_project(["cmake", "-S", ".", "-B", "build", *options])
        self.assertEqual(run.returncode, 0, run.stdout)

    def test_cmake_targets(self):
        self.configure("-DORVANTA_FAIL_ON=GA:1")
        run = self.run_in_project(["cmake", "--build", "build", "--target", "analyze"])
        self.assertNotEqual(run.returncode, 0, run.stdout)
        self.assertIn(self.path(FAULT), run.stdout)
        self.assertTrue(os.path.exists(self.path("build/orvanta/report.html")))
        self.configure("-DORVANTA_FAIL_ON=64")
        run = self.run_in_project(["cmake", "--build", "build", "--target", "analyze-changed"])
        self.assertEqual(run.returncode, 0, run.stdout)
        self.assertIn(self.path(FAULT), run.stdout)

    def test_pre_commit_hook(self):
        hook = load(".pre-commit-hooks.yaml")[0]
        self.assertRegex("src/list.c", hook["files"])
        self.configure("-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        entry = os.path.join(REPOSITORY, hook["entry"])
        for name, code, said in [("src/list.c", 2, self.path(FAULT)), ("src/unused.h", 0, "")]:
            run = self.run_in_project([entry, name])
            self.assertEqual(run.returncode, code, run.stdout)
            self.assertIn(said, run.stdout)
        self.assertEqual(self.run_in_project([entry, "src/list.c"], ORVANTA_FAIL_ON="64").returncode, 0)

    def expected_report(self, *options):
        """Adds a file that fails and one that is fine: what one run of all of them ends with, and its report."""
        with open(self.path("CMakeLists.txt"), "a", encoding="utf-8") as file:
            file.write("add_library(more OBJECT src/more.c src/broken.c)\n")
        for name, text in [("src/more.c", "int More(void) { return 0; }\n"), ("src/broken.c", "#error broken\n")]:
            with open(self.path(name), "w", encoding="utf-8") as file:
                file.write(text)
        self.configure("-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        run = self.run_in_project(["orvanta-analyzer", "analyze", "-q", "-f", "build/compile_commands.json",
                                   "-o", "one.json", *options])
        return run.returncode, self.content("one.json")

    def content(self, name):
        with open(self.path(name), encoding="utf-8") as file:
            return file.read()

    def run_steps(self, lines, **environment):
        return self.run_in_project(["bash", "-eo", "pipefail", "-c", "\n".join(lines)], **environment)

    def test_github_shards(self):
        expected = self.expected_report("-r", self.folder)
        workflow = load("integrations/github/shards.yml")
        jobs = workflow["jobs"]
        shards = jobs["shard"]["strategy"]["matrix"]["shard"]
        os.mkdir(self.path("parts"))
        for shard in shards:
            values = {"matrix.shard": str(shard), "strategy.job-total": str(len(shards))}
            fill = lambda text: re.sub(r"\$\{\{ ([\w.-]+) \}\}", lambda match: values[match[1]], text)
            for step in jobs["shard"]["steps"]:
                environment = {name: fill(text) for name, text in step.get("env", {}).items()}
                if "run" in step:
                    self.run_steps([step["run"]], GITHUB_WORKSPACE=self.folder, **workflow["env"], **environment)
            upload = jobs["shard"]["steps"][-1]["with"]
            os.rename(self.path(fill(upload["path"])), self.path(f"parts/{fill(upload['path'])}"))
        codes = [self.run_steps([step["run"]], GITHUB_WORKSPACE=self.folder).returncode
                 for step in jobs["merge"]["steps"] if "run" in step]
        self.assertEqual((codes, self.content("report.json")), ([expected[0], 0], expected[1]))
        self.assertTrue(os.path.exists(self.path(jobs["merge"]["steps"][-1]["with"]["sarif_file"])))

    def test_gitlab_shards(self):
        """Each runner has a checkout of its own."""
        place = self.folder
        expected = self.expected_report("-r", place)
        shutil.rmtree(self.path("build"))
        file = load("integrations/gitlab/shards.yml")
        shard, merge = file[".orvanta-shard"], file[".orvanta-merge"]
        os.mkdir(self.path("orvanta"))
        for number in (1, 2):
            self.folder = shutil.copytree(place, f"{place}{number}")
            self.configure("-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
            self.run_steps(shard["script"], CI_PROJECT_DIR=self.folder, CI_NODE_INDEX=str(number), CI_NODE_TOTAL="2",
                           **shard["variables"])
            os.rename(self.path(f"orvanta/{number}.orvpart"), os.path.join(place, f"orvanta/{number}.orvpart"))
        self.folder = place
        run = self.run_steps(merge["script"], CI_PROJECT_DIR=self.folder, **merge["variables"])
        self.assertEqual((run.returncode, self.content("orvanta/report.json")), expected, run.stdout)
        for name in [*merge["artifacts"]["paths"], *merge["artifacts"]["reports"].values()]:
            self.assertTrue(os.path.exists(self.path(name)), name)

    def test_shards_by_gnu_parallel(self):
        expected = self.expected_report()
        script = os.path.join(REPOSITORY, "integrations/parallel/analyze-shards")
        run = self.run_in_project([script, ":", "3", "the parts", "-f", "build/compile_commands.json"])
        self.assertEqual((run.returncode, self.content("the parts/report.json")), expected, run.stdout)

    def github_steps(self, **inputs):
        """Runs the steps of the action with these inputs; what the last one gave, and the outputs."""
        action = load("integrations/github/action.yml")
        values = {name: inputs.get(name.replace("-", "_"), row["default"]) for name, row in action["inputs"].items()}
        outputs = self.path("outputs")
        open(outputs, "w", encoding="utf-8").close()
        for step in action["runs"]["steps"]:
            if step.get("if") == "inputs.package != ''" and not values["package"]:
                continue
            environment = {name: re.sub(r"\$\{\{ inputs\.([\w-]+) \}\}", lambda match: values[match[1]], text)
                           for name, text in step["env"].items()}
            run = self.run_in_project(["bash", "-eo", "pipefail", "-c", step["run"]], GITHUB_WORKSPACE=self.folder,
                                      GITHUB_OUTPUT=outputs, RUNNER_TEMP=self.path("temporary"), **environment)
            if run.returncode != 0:
                break
        with open(outputs, encoding="utf-8") as file:
            return run, dict(line.rstrip("\n").split("=", 1) for line in file)

    def test_github_action(self):
        self.configure("-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        for inputs, code in [({}, 0), ({"fail_on": "GA:1"}, 2), ({"fail_on": "GA:1", "options": "-e src"}, 1)]:
            run, outputs = self.github_steps(**inputs)
            self.assertEqual(run.returncode, code, run.stdout)
            if code != 1:
                self.assertIn("::error file=src/list.c,line=3,title=arrayIndexOutOfBounds::Array", run.stdout)
                self.assertTrue(os.path.exists(outputs["sarif"]) and os.path.exists(outputs["page"]), outputs)

    def test_gitlab_template(self):
        job = load("integrations/gitlab/orvanta.yml")[".orvanta"]
        self.configure("-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        for gate, code in [("", 0), ("GA:1", 2)]:
            variables = {**job["variables"], "ORVANTA_FAIL_ON": gate}
            run = self.run_in_project(["bash", "-eo", "pipefail", "-c", "\n".join(job["script"])],
                                      CI_PROJECT_DIR=self.folder, **variables)
            self.assertEqual(run.returncode, code, run.stdout)
            for name in [*job["artifacts"]["paths"], *job["artifacts"]["reports"].values()]:
                self.assertTrue(os.path.exists(self.path(name)), name)

    def run_script(self, lines):
        run = self.run_in_project(["bash", "-eo", "pipefail", "-c", "\n".join(lines)], WORKSPACE=self.folder)
        return run.returncode, run.stdout

    def test_jenkins_sample(self):
        text = sample("docs/ci.md", "groovy", "recordIssues")
        self.configure("-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        code, said = self.run_script(re.findall(r"^sh '(.*)'$", text, re.MULTILINE))
        self.assertEqual(code, 0, said)
        with open(self.path(re.search(r"pattern: '(.*?)'", text)[1]), encoding="utf-8") as file:
            self.assertIn(FAULT, file.read())
        self.assertTrue(os.path.exists(self.path("report.junit.xml")))

    def test_azure_sample(self):
        steps = yaml.safe_load(sample("docs/ci.md", "yaml", "PublishTestResults"))
        self.configure("-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        scripts = [step["script"] for step in steps if "script" in step]
        scripts = [script.replace("$(Build.SourcesDirectory)", self.folder) for script in scripts]
        self.assertEqual(self.run_script(scripts)[0], 2)
        for name in [steps[2]["inputs"]["testResultsFiles"], steps[3]["publish"]]:
            self.assertTrue(os.path.exists(self.path(name)), name)

    def test_accepted_findings_move_with_their_lines(self):
        self.configure("-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        analyze = "orvanta-analyzer analyze -q -f build/compile_commands.json -o report.json"
        self.assertEqual(self.run_script([analyze, "orvanta-analyzer suppress report.json"])[0], 0)
        fault = "int Second(void) {\n    int zero = 0;\n    return 7 / zero;\n}\n\n"
        with open(self.path("src/list.c"), "w", encoding="utf-8") as file:
            file.write(fault + PROJECT["src/list.c"])
        self.assertEqual(self.run_script([analyze + " -s suppress_base.json"])[0], 0)
        with open(self.path("report.json"), encoding="utf-8") as file:
            messages = [warning["message"] for warning in json.load(file)["warnings"]]
        self.assertEqual([message.split(" (")[0] for message in messages], ["[zerodiv] Division by zero."])

    def findings(self):
        """Makes the file that editors read, as their page says."""
        code, said = self.run_script([sample("docs/editors.md", "sh", "findings.txt")])
        self.assertEqual(code, 0, said)
        with open(self.path("findings.txt"), encoding="utf-8") as file:
            return file.read().splitlines()

    def test_problem_matcher(self):
        task = json.loads(sample("docs/editors.md", "json", "problemMatcher"))["tasks"][0]
        matcher = task["problemMatcher"]["pattern"]
        rows = [re.search(matcher["regexp"], line) for line in self.findings()]
        self.assertTrue(rows and all(rows))
        places = [tuple(row[matcher[field]] for field in ("file", "line", "severity", "code")) for row in rows]
        self.assertIn((self.path("src/list.c"), "3", "error", "arrayIndexOutOfBounds"), places)

    def test_vim_error_format(self):
        lines = self.findings()
        commands = sample("docs/editors.md", "vim", "errorformat").splitlines()
        listing = "call writefile(map(getqflist(), 'bufname(v:val.bufnr) . v:val.lnum . v:val.type'), 'read')"
        words = [word for command in [*commands, listing] for word in ("-c", command)]
        self.run_in_project(["vim", "-Nu", "NONE", "-es", *words, "-c", "qa!"])
        with open(self.path("read"), encoding="utf-8") as file:
            read_places = file.read().splitlines()
        self.assertEqual(len(read_places), len(lines))
        self.assertIn(self.path("src/list.c") + "3e", read_places)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
