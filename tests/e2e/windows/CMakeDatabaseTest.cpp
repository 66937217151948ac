// Guards against a database that CMake has written on Windows and that is read as if it came from elsewhere: its paths
// have backslashes or slashes, drive letters in either case, and its long commands stand in response files.

#include "e2e/support/SandboxTest.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace Orvanta {

namespace {

class CMakeDatabaseTest : public SandboxTest {
protected:
    static std::string WithSlashes(std::string path) {
        std::replace(path.begin(), path.end(), '\\', '/');
        return path;
    }

    static std::string WithSmallDrive(std::string path) {
        path.front() = static_cast<char>(path.front() - 'A' + 'a');
        return path;
    }
};

TEST_F(CMakeDatabaseTest, GivesTheUnitsOfTheBuild) {
    const std::string compiler = sandbox.AddCompiler("Program Files/mingw/fake-gcc.exe", "gcc 12\n");
    const std::string build = sandbox.Path("build");
    sandbox.Write("src/main.c", "int m;\n");
    sandbox.Write("src/two words.c", "int t;\n");
    sandbox.Write("src/small.c", "int s;\n");
    sandbox.Write("build/CMakeFiles/app.dir/includes_C.rsp",
                  "-IC:/deps/include \"-IC:/Program Files/lib/include\" -isystem C:/sdk\n");
    const std::string start = '"' + compiler + "\" -DQUOTED=\\\"x\\\" -DBACK=a\\b -std=gnu11 ";
    const nlohmann::json database = {
        {{"directory", WithSlashes(build)},
         {"command", start + "-o CMakeFiles\\app.dir\\src\\main.c.obj -c " + sandbox.Path("src/main.c")}},
        {{"directory", WithSlashes(build)},
         {"command", start + "@CMakeFiles\\app.dir\\includes_C.rsp -o CMakeFiles\\app.dir\\t.obj -c \"" +
                         sandbox.Path("src/two words.c") + '"'}},
        {{"directory", WithSmallDrive(build)},
         {"command", WithSmallDrive(WithSlashes(compiler)).insert(0, 1, '"') + "\" -std=c11 -c ..\\src\\small.c"}},
    };
    sandbox.Write("compile_commands.json", database.dump(1));
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector<std::string>{"..\\src\\small.c", sandbox.Path("src/main.c"),
                                                                   sandbox.Path("src/two words.c")}))
        << result;
    EXPECT_EQ(Report().size(), 3U);
    const std::string name = "Program Files/mingw/fake-gcc.exe";
    EXPECT_EQ(sandbox.CompilerCalls(name, "-DQUOTED=\"x\" -DBACK=a\\b -std=gnu11"), 2U)
        << sandbox.Read("tools/" + name + ".calls");
    EXPECT_EQ(sandbox.CompilerCalls(name, "-IC:/deps/include -IC:/Program Files/lib/include -isystem C:/sdk"), 1U)
        << sandbox.Read("tools/" + name + ".calls");
}

TEST_F(CMakeDatabaseTest, PathsOfEitherCaseAreExcluded) {
    sandbox.AddUnit("src/a.c");
    sandbox.AddUnit("lib/b.c");
    const RunResult result = sandbox.Analyze({"-e", WithSlashes(WithSmallDrive(sandbox.Path("LIB")))});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(sandbox.AnalyzedSources(), std::vector{sandbox.Path("src/a.c")}) << result;
}

TEST_F(CMakeDatabaseTest, PathsBeyondTheOldLimitReachTheReport) {
    std::string folder = "deep";
    while (folder.size() < 300) {
        folder += "/" + std::string(40, 'n');
    }
    const std::string report = folder + "/report.json";
    sandbox.AddUnit("a.c", {"finding V501 1 1 found"});
    sandbox.Write(report, "earlier");
    const RunResult result = sandbox.Analyze({"-o", report});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(MessagesOf(Report(report)), std::vector<std::string>{"found"});
}

} // namespace

} // namespace Orvanta
