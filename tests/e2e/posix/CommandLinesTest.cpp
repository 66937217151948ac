// Guards against units that reach the core as another text than the real compilers make of their commands, and against
// files that a run leaves in the project.

#include "e2e/support/SandboxTest.h"
#include "platform/Executable.h"
#include "platform/Process.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace Orvanta {

namespace {

class CommandLinesTest : public SandboxTest {
protected:
    /// An entry whose command runs in "src".
    void Add(const Arguments& command, const Environment& variables = {}) {
        Entry entry;
        entry.arguments = command;
        entry.directory = sandbox.Path("src");
        entry.environment = variables;
        sandbox.AddEntry(entry);
    }

    /// Runs the entries, which all compile "src/a.c", and expects the core to get these texts, without line markers.
    void ExpectTexts(std::vector<std::string> texts) const {
        const RunResult result = sandbox.Analyze({"-j", "1", "--verbose"});
        EXPECT_EQ(result.exitCode, 0) << result;
        std::vector<std::string> found;
        for (const CoreCall& call : sandbox.CoreCalls()) {
            found.push_back(TextOf(call.preprocessed));
        }
        // The records of calls for one source are in no order.
        std::sort(found.begin(), found.end());
        std::sort(texts.begin(), texts.end());
        EXPECT_EQ(found, texts) << result;
    }

    static std::string TextOf(const std::string& preprocessed) {
        std::istringstream lines(preprocessed);
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            if (!line.empty() && line.front() != '#') {
                text += (text.empty() ? "" : " ") + line;
            }
        }
        return text;
    }

    [[nodiscard]] std::vector<std::string> Files() const {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(sandbox.Path("src"))) {
            files.push_back(entry.path().filename().string());
        }
        std::sort(files.begin(), files.end());
        return files;
    }
};

} // namespace

TEST_F(CommandLinesTest, TextIsTheOneThatTheCompilerReads) {
    const std::string clang = FindExecutable("clang");
    sandbox.Write("src/a.c", "int a = X;\n");
    sandbox.Write("src/p.h", "int p;\n#define X 7\n");
    sandbox.Write("src/old.h", "int old;\n");
    const std::string source = sandbox.Path("src");
    for (const char* const header : {"p.h", "old.h"}) {
        (void)RunAndRead("cd '" + source + "' && '" + clang + "' -x c-header " + header + " -o " + header + ".pch");
        ASSERT_TRUE(sandbox.Exists(std::string("src/") + header + ".pch"));
    }
    sandbox.Write("src/old.h", "int changed;\n#define X 8\n"); // the precompiled one is out of date
    // clang-format off
    const Arguments cases[] = {
        {clang, "-Xclang", "-include-pch", "-Xclang", "p.h.pch", "-c", "a.c"},
        {clang, "-include-pch", "old.h.pch", "-c", "a.c"},
        {clang, "-include-pch", "gone/p.h.pch", "-I.", "-c", "a.c"},
        {clang, "-working-directory", "../src", "-DX=1", "-c", "a.c"},
        {clang, "--driver-mode=cl", "/DX=2", "/c", "a.c"},
        {"nice", "env", "A=1", clang, "--std", "c99", "-DX=__STDC_VERSION__", "-c", "a.c"},
        {"cd", "../src", "&&", clang, "-DX=3", "-c", "a.c", "-o", "a.o"},
    };
    // clang-format on
    for (const Arguments& command : cases) {
        Add(command);
    }
    // A word that no system starts a program with: the build had it in a file.
    sandbox.Write("src/long.rsp", "-DX=4 -DLONG=" + std::string(200000, 'x') + " -c a.c");
    Add({clang, "@long.rsp"});
    ExpectTexts({"int p; int a = 7;", "int changed; int a = 8;", "int p; int a = 7;", "int a = 1;", "int a = 2;",
                 "int a = 199901L;", "int a = 3;", "int a = 4;"});
}

// Whoever has set them: the entry, the driver's own environment, a flag that hands on another.
TEST_F(CommandLinesTest, NothingIsLeftInTheProject) {
    const std::string gcc = FindExecutable("gcc");
    const std::string clang = FindExecutable("clang");
    sandbox.Write("src/a.c", "int a;\n");
    const std::string source = sandbox.Path("src");
    // clang-format off
    const Arguments cases[] = {
        {gcc, "-c", "a.c", "-MD", "-save-temps", "-time=t", "-fdump-go-spec=g", "-Wp,-MMD,d", "-aux-info", "x"},
        {gcc, "-c", "a.c", "-fdump-tree-all", "-fcallgraph-info", "-fstack-usage", "-Wp,-MD,e,-MT,f"},
        {clang, "-c", "a.c", "-save-stats=cwd", "-fproc-stat-report=p", "-mllvm", "-info-output-file=i", "-MJ", "j"},
        {clang, "-c", "a.c", "-Xclang", "-stats-file=s", "-module-dependency-dir", "m", "-ftime-trace", "-Xclang",
         "-mllvm", "-Xclang", "-info-output-file=k", "-gen-cdb-fragment-path", "c", "-serialize-diagnostics", "z"},
    };
    // clang-format on
    for (const Arguments& command : cases) {
        Environment variables;
        variables["DEPENDENCIES_OUTPUT"] = "o";
        variables["CC_PRINT_OPTIONS"] = "1";
        variables["CC_PRINT_OPTIONS_FILE"] = "q";
        Add(command, variables);
    }
    sandbox.SetVariable("SUNPRO_DEPENDENCIES", sandbox.Path("src/u"));
    sandbox.SetVariable("CC_LOG_DIAGNOSTICS", "1");
    sandbox.SetVariable("CC_LOG_DIAGNOSTICS_FILE", sandbox.Path("src/v"));
    ExpectTexts({"int a;", "int a;", "int a;", "int a;"});
    EXPECT_EQ(Files(), std::vector<std::string>{"a.c"});
}

TEST_F(CommandLinesTest, ACompilerThatWritesNoTextHasFailed) {
    sandbox.Write("src/a.c", "int a;\n");
    sandbox.Write("tools/mute-gcc", "#!/bin/sh\necho 'mute-gcc 1'\n");
    const std::string compiler = sandbox.Path("tools/mute-gcc");
    std::filesystem::permissions(compiler, std::filesystem::perms::owner_all);
    Add({compiler, "-c", "a.c"});
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("The compiler ended with code 0, but wrote no text.")) << result;
    EXPECT_TRUE(sandbox.CoreCalls().empty());
}

TEST_F(CommandLinesTest, AProjectInsideASystemFolderIsToldWithTheWayOut) {
    sandbox.Write("src/a.c", "int a;\n");
    Add({FindExecutable("gcc"), "-isystem", ".", "-c", "a.c"});
    const RunResult result = sandbox.Analyze();
    EXPECT_TRUE(result.Says("1 files lie inside the folders of -isystem")) << result;
    sandbox.ForgetEntries();
    Add({FindExecutable("gcc"), "-isystem", "", "-c", "a.c"});
    ExpectTexts({"int a;"});
}

} // namespace Orvanta
