// Guards against units of cl that are preprocessed without the headers of their Visual Studio, and against a set-up
// script that is run for every unit.

#include "e2e/support/SandboxTest.h"

#include <filesystem>

namespace Orvanta {

namespace {

constexpr const char* NewLayout = "tools/Program Files (x86)/VS/VC/Auxiliary/Build/vcvarsall.bat";
constexpr const char* OldLayout = "tools/Program Files (x86)/VS/VC/vcvarsall.bat";

// Notes its argument beside itself and sets what a real one sets.
constexpr const char* Script = "@echo off\r\n"
                               "echo %~1>>\"%~dp0calls.txt\"\r\n"
                               "echo ** a banner **\r\n"
                               "set INCLUDE=C:\\Kits\\%~1\r\n";

class VisualStudioTest : public SandboxTest {
protected:
    /// Adds three units for a compiler that shows what it finds in its environment.
    void AddUnits(const std::string& place) {
        const std::string compiler =
            sandbox.AddCompiler("Program Files (x86)/VS/VC/" + place + "/cl.exe", "",
                                "show-variable INCLUDE\nshow-variable PERSON\nstd-number 201402L\n");
        for (const char* const source : {"a.cpp", "b.cpp", "c.cpp"}) {
            sandbox.Write(source, "int x;\n");
            sandbox.AddEntry({{compiler, "/nologo", "/c", source}});
        }
    }

    void ExpectIncludeEverywhere(const std::string& value) const {
        const std::vector<CoreCall> calls = sandbox.CoreCalls();
        EXPECT_EQ(calls.size(), 3U);
        for (const CoreCall& call : calls) {
            EXPECT_NE(call.preprocessed.find("// INCLUDE=" + value + '\n'), std::string::npos) << call.preprocessed;
        }
    }
};

TEST_F(VisualStudioTest, SetUpScriptIsRunOncePerTarget) {
    struct Layout {
        const char* script;
        const char* place;
        const char* argument;
    };

    const Layout layouts[] = {
        {NewLayout, "Tools/MSVC/14.29/bin/Hostx64/x64", "amd64"},
        {NewLayout, "Tools/MSVC/14.29/bin/Hostx64/x86", "x86"},
        {OldLayout, "bin", "x86"},
        {OldLayout, "bin/amd64", "amd64"},
    };
    for (const Layout& layout : layouts) {
        SCOPED_TRACE(layout.place);
        sandbox.ForgetEntries();
        sandbox.ForgetCoreCalls();
        std::filesystem::remove_all(sandbox.Path("tools"));
        sandbox.Write(layout.script, Script);
        AddUnits(layout.place);
        const RunResult result = sandbox.Analyze({"-j", "3"});
        EXPECT_EQ(result.exitCode, 0) << result;
        EXPECT_FALSE(result.Says("vcvarsall")) << result;
        ExpectIncludeEverywhere(std::string("C:\\Kits\\") + layout.argument);
        const std::string script = layout.script;
        EXPECT_EQ(sandbox.Read(script.substr(0, script.rfind('/')) + "/calls.txt"),
                  std::string(layout.argument) + "\r\n");
    }
}

TEST_F(VisualStudioTest, OwnVariablesGoOverThoseOfTheScript) {
    sandbox.Write(NewLayout, Script);
    AddUnits("Tools/MSVC/14.29/bin/Hostx64/x64");
    sandbox.SetVariable("PERSON", "J\xc3\xbcrgen");
    const RunResult result = sandbox.Analyze({"--env", "include=C:\\mine"});
    EXPECT_EQ(result.exitCode, 0) << result;
    ExpectIncludeEverywhere("C:\\mine");
    for (const CoreCall& call : sandbox.CoreCalls()) {
        EXPECT_NE(call.preprocessed.find("// PERSON=J\xc3\xbcrgen\n"), std::string::npos) << call.preprocessed;
    }
}

TEST_F(VisualStudioTest, RunGoesOnWithoutAScript) {
    AddUnits("Tools/MSVC/14.29/bin/Hostx64/x64");
    sandbox.SetVariable("INCLUDE", "C:\\there");
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(result.Count("set-up script vcvarsall.bat was not found"), 1U) << result;
    ExpectIncludeEverywhere("C:\\there");
}

TEST_F(VisualStudioTest, RunGoesOnWhenTheScriptFails) {
    AddUnits("Tools/MSVC/14.29/bin/Hostx64/x64");
    sandbox.Write(NewLayout, "@echo off\r\necho [ERROR] no such target\r\nexit /b 1\r\n");
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(result.Count("set-up script vcvarsall.bat failed"), 1U) << result;
    ExpectIncludeEverywhere("(not set)");
}

} // namespace

} // namespace Orvanta
