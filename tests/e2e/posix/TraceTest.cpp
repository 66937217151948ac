// Guards against a traced build that is read as another one: commands lost or found twice, folders or variables that
// are not those of the build. The traces are made here, by strace, of builds by make.

#include "e2e/support/SandboxTest.h"

#include <cstdlib>
#include <filesystem>

namespace Orvanta {

namespace {

constexpr const char* Makefile = "all:\n"
                                 "\t$(CC) -std=c17 -c top.c -o top.o\n"
                                 "\tcd 'odd dir' && $(CC) -std=c17 -DTEXT='\"a b\"' -c odd.c -o odd.o\n"
                                 "\t$(MAKE) -C sub\n"
                                 "\techo 'int x;' >gone.c; $(CC) -std=c17 -c gone.c -o gone.o; rm gone.c\n";

class TraceTest : public SandboxTest {
protected:
    TraceTest() {
        compiler_ = sandbox.AddCompiler("gcc", "gcc (Fake) 12.2.0\n", "show-variable NAME_1\nshow-variable NAME_2\n");
        sandbox.Write("Makefile", Makefile);
        sandbox.Write("sub/Makefile", "all:\n\t$(CC) -std=c17 -c below.c -o below.o\n");
        for (const char* const source : {"top.c", "odd dir/odd.c", "sub/below.c"}) {
            sandbox.Write(source, "int value;\n");
        }
    }

    /// Builds the project under strace, started in `folder` as a user would, with these options.
    void Trace(const std::string& options, const std::string& variables = "") const {
        const std::string command = "cd '" + sandbox.Path() + "' && " + variables + " strace " + options +
                                    " -o strace_out make CC='" + compiler_ + "' >make.log 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << sandbox.Read("make.log");
    }

    /// In the order of the sources' names.
    [[nodiscard]] std::vector<std::string> FoldersAndSources() const {
        std::vector<std::string> found;
        for (const CoreCall& call : sandbox.CoreCalls()) {
            found.push_back(std::filesystem::relative(call.directory, sandbox.Path()).string() + ": " +
                            call.Setting("source-file"));
        }
        return found;
    }

    std::string compiler_;
};

constexpr const char* Recommended = "-f -v -s 1048576 -e trace=process,chdir,fchdir,getcwd,open,openat";

TEST_F(TraceTest, UnitsAreThoseOfTheBuild) {
    const std::vector<std::string> expected = {"sub: below.c", "odd dir: odd.c", ".: top.c"};
    for (const char* const options : {Recommended, "-f -tt -T -y -s 4096", "-ff -ttt -v -s 4096 -e trace=process,chdir",
                                      "-f -r -xx -v -s 1048576 -e trace=process,chdir,getcwd"}) {
        Trace(options);
        if (!sandbox.Exists("strace_out")) { // a file for each process
            const std::string merge = "cd '" + sandbox.Path() + "' && strace-log-merge strace_out >strace_out";
            ASSERT_EQ(std::system(merge.c_str()), 0);
        }
        const RunResult result = sandbox.Analyze({"-f", "strace_out", "-j", "1", "-o", "report.json", "--verbose"});
        EXPECT_EQ(result.exitCode, 0) << options << result;
        EXPECT_TRUE(result.Says("Using tracing file: strace_out\n")) << result;
        EXPECT_TRUE(result.Says("Compiler invocations: 4 (3 analyzed, 0 failed, 1 skipped, 0 excluded)\n")) << result;
        EXPECT_TRUE(result.Says("Skipped: 1 source deleted since the trace\n")) << result;
        EXPECT_TRUE(result.Says("Skipped: invocation 4 (gone.c): source deleted since the trace\n")) << result;
        EXPECT_FALSE(result.Says("never started")) << result;
        EXPECT_EQ(FoldersAndSources(), expected) << options;
        EXPECT_EQ(Report().size(), 3U);
        sandbox.ForgetCoreCalls();
        ASSERT_EQ(std::system(("cd '" + sandbox.Path() + "' && rm -rf strace_out* .Orvanta").c_str()), 0);
    }
}

TEST_F(TraceTest, VariablesOfTheBuildReplaceThoseOfTheDriver) {
    Trace(Recommended, "NAME_1=traced");
    sandbox.SetVariable("NAME_1", "own");
    sandbox.SetVariable("NAME_2", "own");
    const auto preprocessed = [this](const Arguments& options) {
        sandbox.ForgetCoreCalls();
        const RunResult result = sandbox.Analyze(options);
        EXPECT_EQ(sandbox.CoreCalls().size(), 3U) << result;
        return sandbox.CoreCalls().empty() ? std::string() : sandbox.CoreCalls().front().preprocessed;
    };
    EXPECT_NE(preprocessed({"-f", "strace_out"}).find("// NAME_1=traced\n// NAME_2=(not set)\n"), std::string::npos);
    EXPECT_NE(preprocessed({"-f", "strace_out", "-E", "NAME_2=given"}).find("// NAME_1=traced\n// NAME_2=given\n"),
              std::string::npos);
    Trace("-f -s 4096", "NAME_1=traced");
    EXPECT_NE(preprocessed({"-f", "strace_out"}).find("// NAME_1=own\n// NAME_2=own\n"), std::string::npos);
}

TEST_F(TraceTest, WhatATraceDoesNotTellIsSaid) {
    Trace("-f -v -e trace=process,chdir,getcwd -s 5");
    const RunResult cut = sandbox.Analyze({"-f", "strace_out", "-o", "report.json"});
    EXPECT_EQ(cut.exitCode, 1) << cut;
    EXPECT_EQ(cut.Count("the trace shows its arguments only in part"), 4U) << cut;
    EXPECT_TRUE(cut.Says("strace -f -v -s 1048576")) << cut;

    Trace("-f -e trace=process -s 4096");
    const RunResult unplaced = sandbox.Analyze({"-f", "strace_out", "-o", "report.json"});
    EXPECT_EQ(unplaced.exitCode, 1) << unplaced;
    EXPECT_TRUE(unplaced.Says("\nError: No pwd\n")) << unplaced;
    EXPECT_TRUE(unplaced.Says("--trace-dir")) << unplaced;

    const RunResult placed = sandbox.Analyze({"-f", "strace_out", "--trace-dir", "."});
    EXPECT_FALSE(placed.Says("No pwd")) << placed;
    EXPECT_EQ(sandbox.AnalyzedSources(), std::vector<std::string>{"top.c"}) << placed;
}

struct NoTrace {
    const char* text;
    const char* message;
};

TEST_F(TraceTest, FilesWithoutABuildEndTheRunWithTheirReason) {
    const NoTrace rows[] = {
        {"", "Error: No roots found\n"},
        {"{}\n", "Error: Couldn't parse strace_out"},
        {"1 execve(\"/bin/ls\", [\"ls\"], []) = 0\n",
         "No compiler invocations were detected. Consider specifying the compiler name with the '-C' argument.\n"},
    };
    for (const NoTrace& row : rows) {
        sandbox.Write("strace_out", row.text);
        const RunResult result = sandbox.Analyze({"-f", "strace_out"});
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says(row.message)) << row.message << result;
    }
}

} // namespace

} // namespace Orvanta
