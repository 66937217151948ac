#include "analysis/VisualStudioEnvironment.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <thread>

namespace Orvanta {

namespace {

struct PlaceCase {
    const char* compiler;
    std::vector<std::string> places;
};

const PlaceCase PlaceCases[] = {
    {R"(C:\VS 14.0\VC\bin\cl.exe)",
     {R"(C:\VS 14.0\VC\vcvarsall.bat)", R"(C:\VS 14.0\VC\Auxiliary\Build\vcvarsall.bat)"}},
    {R"(C:\VS 14.0\VC\bin\amd64\cl.exe)",
     {R"(C:\VS 14.0\VC\vcvarsall.bat)", R"(C:\VS 14.0\VC\Auxiliary\Build\vcvarsall.bat)"}},
    {"c:/vs/vc/Tools/MSVC/14.29/bin/Hostx64/x64/cl.exe",
     {R"(c:/vs/vc\vcvarsall.bat)", R"(c:/vs/vc\Auxiliary\Build\vcvarsall.bat)"}},
    {R"(C:\VS\VC\Tools\Llvm\x64\bin\clang-cl.exe)",
     {R"(C:\VS\VC\vcvarsall.bat)", R"(C:\VS\VC\Auxiliary\Build\vcvarsall.bat)"}},
    {R"(C:\LLVM\bin\clang-cl.exe)", {}},
    {R"(C:\cl.exe)", {}},
    {"cl.exe", {}},
};

/// A machine with one script, which says for each target what it is asked for.
struct Machine {
    VisualStudioEnvironment::Host Host() {
        return {PathRules::Windows, [this](const std::string& path) { return path == script; },
                [this](const std::string& command) {
                    ++runs;
                    lastCommand = command;
                    return output;
                }};
    }

    std::string script = R"(C:\VS\VC\Auxiliary\Build\vcvarsall.bat)";
    std::string output = "** banner **\r\norvanta-environment \r\nINCLUDE=C:\\inc\r\nOdd=a=b\r\n";
    std::atomic<int> runs = 0;
    std::string lastCommand;
};

CompilerInfo CompilerAt(const char* path, CompilerType type = CompilerType::Cl) {
    CompilerInfo compiler;
    compiler.type = type;
    compiler.path = path;
    return compiler;
}

const CompilerInfo Cl = CompilerAt(R"(C:\VS\VC\Tools\MSVC\14.29\bin\Hostx64\x64\cl.exe)");

class VisualStudioEnvironmentTest : public testing::Test {
protected:
    /// What `ask` writes to the program's standard output.
    template <typename Ask>
    static std::string Said(const Ask& ask) {
        testing::internal::CaptureStdout();
        ask();
        return testing::internal::GetCapturedStdout();
    }

    Machine machine_;
    Log log_;
    VisualStudioEnvironment environment_{log_, machine_.Host()};
};

} // namespace

TEST(SetUpScriptPlaces, AreThoseOfBothLayouts) {
    for (const PlaceCase& row : PlaceCases) {
        EXPECT_EQ(SetUpScriptPlaces(row.compiler, PathRules::Windows), row.places) << row.compiler;
    }
}

TEST(PrintedVariables, StandBehindTheMarker) {
    const Environment expected = {
        {"A", "1"},
        {"B", "x=y; z "},
        {"C", ""},
    };
    EXPECT_EQ(PrintedVariables("NOISE=1\r\norvanta-environment \r\nA=1\r\nB=x=y; z \r\nC=\r\n=C:=C:\\\r\nno pair\r\n"),
              expected);
    EXPECT_EQ(PrintedVariables("orvanta-environment\nA=1\nB=x=y; z \nC="), expected);
    EXPECT_EQ(PrintedVariables("[ERROR] unknown target\r\nA=1\r\n"), std::nullopt);
    EXPECT_EQ(PrintedVariables("the word orvanta-environment alone\nA=1\n"), std::nullopt);
    EXPECT_EQ(PrintedVariables(""), std::nullopt);
}

TEST_F(VisualStudioEnvironmentTest, RunsTheScriptForTheTarget) {
    const auto variables = environment_.VariablesFor(Cl, "x64");
    ASSERT_NE(variables, nullptr);
    EXPECT_EQ(variables->at("INCLUDE"), "C:\\inc");
    EXPECT_EQ(machine_.lastCommand,
              "\"C:\\VS\\VC\\Auxiliary\\Build\\vcvarsall.bat\" amd64 && echo orvanta-environment && set");
    (void)environment_.VariablesFor(Cl, "Win32");
    EXPECT_EQ(machine_.lastCommand,
              "\"C:\\VS\\VC\\Auxiliary\\Build\\vcvarsall.bat\" x86 && echo orvanta-environment && set");
    EXPECT_EQ(machine_.runs, 2);
}

TEST_F(VisualStudioEnvironmentTest, RunsTheScriptOnceForManyThreads) {
    std::atomic<int> served = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&] { served += environment_.VariablesFor(Cl, "x64") != nullptr ? 1 : 0; });
        }
    }
    EXPECT_EQ(served, 8);
    EXPECT_EQ(machine_.runs, 1);
}

TEST_F(VisualStudioEnvironmentTest, TellsOfAFailedScriptOncePerCompiler) {
    machine_.output = "[ERROR] something is missing\r\n";
    const std::string said = Said([&] {
        for (const char* const platform : {"x64", "Win32", "x64"}) {
            EXPECT_EQ(environment_.VariablesFor(Cl, platform), nullptr);
        }
    });
    EXPECT_EQ(said, "The compiler \"" + Cl.path +
                        "\" is run in the environment that there is: its set-up script vcvarsall.bat failed: "
                        "\"C:\\VS\\VC\\Auxiliary\\Build\\vcvarsall.bat\"\n");
    EXPECT_EQ(machine_.runs, 2) << "once for each target";
}

TEST_F(VisualStudioEnvironmentTest, TakesAnEnvironmentWithoutHeadersForAFailure) {
    machine_.output = "[ERROR] something is missing\r\norvanta-environment \r\nPATH=C:\\\r\n";
    EXPECT_NE(Said([&] { EXPECT_EQ(environment_.VariablesFor(Cl, "x64"), nullptr); }).find("vcvarsall.bat failed"),
              std::string::npos);
}

TEST_F(VisualStudioEnvironmentTest, TellsOfAMissingScriptWhereOneIsNeeded) {
    machine_.script = "";
    EXPECT_EQ(Said([&] { (void)environment_.VariablesFor(Cl, "x64"); }),
              "The compiler \"" + Cl.path +
                  "\" is run in the environment that there is: its set-up script vcvarsall.bat was not found\n");
    const CompilerInfo ownClangCl = CompilerAt(R"(C:\LLVM\bin\clang-cl.exe)", CompilerType::ClangCl);
    EXPECT_EQ(Said([&] { (void)environment_.VariablesFor(ownClangCl, "x64"); }), "")
        << "it looks for Visual Studio itself";
    EXPECT_EQ(machine_.runs, 0);
}

TEST(VisualStudioEnvironment, AsksForNothingWhereThereAreNoScripts) {
    Machine machine;
    VisualStudioEnvironment::Host host = machine.Host();
    host.rules = PathRules::Posix;
    host.exists = [](const std::string&) {
        return true;
    };
    Log log;
    VisualStudioEnvironment environment(log, host);
    EXPECT_EQ(environment.VariablesFor(CompilerAt("/VS/VC/bin/cl"), "x64"), nullptr);
    EXPECT_EQ(machine.runs, 0);
}

} // namespace Orvanta
