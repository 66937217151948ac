#include "platform/Process.h"

#include "platform/Files.h"
#include "platform/LockFile.h"
#include "platform/Paths.h"
#include "platform/windows/ConsoleEvents.h"
#include "support/TestFolder.h"
#include "unit/platform/ChildProgram.h"
#include "unit/platform/StartError.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace Orvanta {
namespace {

using Cause = ProcessStartException::Cause;

TEST(ChildThatCannotStart, SaysThatTheWindowsWay) {
    const TestFolder folder;
    const std::string text = folder.Write("text.exe", "no program\n");
    EXPECT_EQ(TryToStart({text}), StartError("\"" + text + "\": Exec format error", Cause::Program));
    EXPECT_EQ(TryToStart({folder.Path()}),
              StartError("\"" + folder.Path() + "\": No such file or directory", Cause::Program));
}

TEST(Child, IsLookedUpAlongThePathOfItsOwnEnvironmentWithTheExtensionsOfIt) {
    const TestFolder folder;
    const std::string program = folder / "bin\\tool.exe";
    folder.MakeFolder("bin\\other\\tool.exe");
    std::filesystem::copy_file(ORVANTA_PLATFORM_CHILD, program);
    for (const std::string& path : {folder / "bin", std::string("bin")}) {
        std::string output;
        Process process({"tool", "show-arguments", "found"}, folder.Path(),
                        EnvironmentBlock({{"Path", "C:\\nowhere;" + (folder / "bin\\other") + ";" + path},
                                          {"PathExt", ".com;.exe"}}),
                        MakeRedirectToStringProcessor(output), nullptr);
        EXPECT_EQ(process.get_exit_status(), 0);
        EXPECT_EQ(output, "5:found") << path;
    }
}

TEST(Child, IsFoundFromItsOwnFolderWithoutItsExtension) {
    const TestFolder folder;
    folder.MakeFolder("sub");
    std::filesystem::copy_file(ORVANTA_PLATFORM_CHILD, folder / "tool.exe");
    std::string output;
    Process process({"..\\tool", "show-arguments", "found"}, folder / "sub", OwnEnvironmentBlock(),
                    MakeRedirectToStringProcessor(output), nullptr);
    EXPECT_EQ(process.get_exit_status(), 0);
    EXPECT_EQ(output, "5:found");
}

TEST(Child, MayBeABatchFile) {
    const TestFolder folder;
    const std::string script = folder.Write("a b.bat", "@echo off\r\necho [%1][%2]\r\nexit /b 7\r\n");
    std::string output;
    Process process({script, "x & y", "z"}, "", OwnEnvironmentBlock(), MakeRedirectToStringProcessor(output), nullptr);
    EXPECT_EQ(process.get_exit_status(), 7);
    EXPECT_EQ(output, "[\"x & y\"][z]\r\n");
}

struct BatchCase {
    Arguments arguments;
    const char* refusal; // the end of the reason; empty: they arrive as they are
};

const BatchCase BatchCases[] = {
    {{"x & y", "a|b", "<in", ">out>>", "a^b", "(c)", "!d!", "a\\b\\"}, ""},
    {{"-DTEXT=\"a b\"", "behind"}, ""},
    {{"-DTEXT=\"a&echo\""}, "\"&\" in its arguments behind a quote"},
    {{"a\" & echo ran"}, "\"&\" in its arguments behind a quote"},
    {{"one\"", "x & echo ran"}, "\"&\" in its arguments behind a quote"},
    {{"a\">ran", "b\""}, "\">\" in its arguments behind a quote"},
    {{"%PATH%"}, "\"%\" in its arguments"},
    {{"50%"}, "\"%\" in its arguments"},
    {{"a\necho ran"}, "a line break in its arguments"},
    {{"a\r"}, "a line break in its arguments"},
};

// Guards against arguments that the command interpreter takes for commands.
TEST(Child, ThatIsABatchFileGetsItsArgumentsAsTheyAreOrDoesNotStart) {
    const TestFolder folder;
    for (const char* const name : {"compiler.bat", "compiler.CMD"}) {
        const std::string script =
            folder.Write(name, "@\"" + std::string(ORVANTA_PLATFORM_CHILD) + "\" show-arguments %*\r\n");
        for (const BatchCase& row : BatchCases) {
            Arguments command = {script};
            std::string expected;
            for (const std::string& argument : row.arguments) {
                command.push_back(argument);
                expected += std::to_string(argument.size()) + ":" + argument;
            }
            std::string output;
            std::string refusal;
            try {
                Process process(command, folder.Path(), OwnEnvironmentBlock(), MakeRedirectToStringProcessor(output),
                                nullptr);
                EXPECT_EQ(process.get_exit_status(), 0);
            } catch (const ProcessStartException& error) {
                EXPECT_EQ(error.WhatFailed(), Cause::Command);
                refusal = error.Reason();
            }
            const bool isRefused = *row.refusal != '\0';
            EXPECT_EQ(refusal, isRefused ? std::string("a batch file can't be given ") + row.refusal : "");
            EXPECT_EQ(output, isRefused ? "" : expected);
        }
        // Points and blanks at the end are dropped by the system.
        EXPECT_THROW(Process({script + ". .", "%A%"}, "", OwnEnvironmentBlock(), nullptr, nullptr),
                     ProcessStartException);
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "ran"));
}

// How a child outside a job is ended.
TEST(TreeOfProcesses, IsFoundInTheListOfTheSystem) {
    const TestFolder folder;
    ChildProgram child({"hold-lock-in-grandchild", folder.Path(), "key", "tell-id"});
    const unsigned long id = std::stoul(child.FirstLine());
    while (child.StandardOutput().find("held") == std::string::npos && !child.ItsProcess().HasEnded()) {
        child.ItsProcess().WaitForChange(PollInterval);
    }
    ASSERT_TRUE(TerminateTreeOf(id));
    EXPECT_EQ(child.End(), 1);
    LockFile lock;
    EXPECT_EQ(lock.Take(folder.Path(), "key"), LockFile::State::Held);
}

TEST(RunAndReadOf, AnInterpretersCommandIsItsStandardOutput) {
    EXPECT_EQ(RunAndRead("echo a& echo b"), "a\nb\n");
    EXPECT_EQ(RunAndRead("exit 1"), "");
}

TEST(RunAndReadOf, KeepsTheQuotesOfABatchFile) {
    const TestFolder folder;
    const std::string script = folder.Write("Program Files (x86)/to.bat", "@echo off\r\nset RESULT=%~1\r\n");
    EXPECT_EQ(RunAndRead('"' + script + "\" word && echo marker && set RESULT"), "marker \nRESULT=word\n");
}

TEST(Child, IsMeasured) {
    constexpr std::size_t Size = 40'000'000; // held by the child, and much work to write
    ChildProgram child({"print", std::to_string(Size)});
    EXPECT_EQ(child.End(), 0);
    const ProcessCost cost = child.ItsProcess().Cost();
    EXPECT_GT(cost.processor.count(), 0);
    EXPECT_GT(cost.wall.count(), 0);
    // Wine tells no memory of a process that has ended.
    EXPECT_TRUE(cost.peakMemory == 0 || cost.peakMemory >= Size) << cost.peakMemory;
}

} // namespace
} // namespace Orvanta
