#include "platform/Process.h"

#include "platform/LockFile.h"
#include "platform/Paths.h"
#include "support/TestFolder.h"
#include "unit/platform/ChildProgram.h"
#include "unit/platform/StartError.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace Orvanta {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds LongTime{60'000}; // no correct run comes near it

// Whether a program that held a lock as long as it lived has gone; waits for its end.
bool Ends(const std::string& directory, const std::string& key) {
    const auto deadline = std::chrono::steady_clock::now() + LongTime;
    LockFile lifeline;
    while (lifeline.Take(directory, key) != LockFile::State::Held) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

TEST(ProcessExceptions, NameTheCommandWordByWord) {
    const Arguments command = {"cc", "-c", "a b.c", ""};
    EXPECT_EQ(CommandLineText(command), "cc -c a b.c ");
    EXPECT_EQ(CommandLineText({}), "");
    EXPECT_STREQ(ProcessReturnCodeException(command, -1).what(), "Command \"cc -c a b.c \" returned code -1.");
    const ProcessReturnCodeException full({"cc", "%2%"}, 2, {"%4%", "Stdout:"});
    EXPECT_STREQ(full.what(), "Command \"cc %2%\" returned code 2.\nStdout:\n%4%\nStderr:\nStdout:");
    EXPECT_EQ(full.Summary(), "Command \"cc %2%\" returned code 2.");
    EXPECT_EQ(full.Output().standardError, "Stdout:");
    EXPECT_EQ(full.ExitCode(), 2);
    EXPECT_STREQ(ProcessInterruptedException(command).what(), "Command \"cc -c a b.c \" was interrupted.");
}

TEST(ChildThatCannotStart, SaysWhatWasMissing) {
    using Cause = ProcessStartException::Cause;
    const TestFolder folder;
    const std::string text = folder.Write("text", "no folder\n");
    const std::string nowhere = HostPath("/nowhere/cc");
    const std::string child = ORVANTA_PLATFORM_CHILD;
    const std::string quoted = '"' + child + '"';
    const std::string zero("a\0b", 3);
    const std::string huge(4'000'000, 'x');

    const auto program = [](const std::string& words) {
        return StartError(words, Cause::Program);
    };
    const auto directory = [&](const std::string& name, const std::string& reason) {
        return StartError(quoted + " in \"" + name + "\": " + reason, Cause::Directory);
    };
    const auto command = [&](const std::string& reason) {
        return StartError(quoted + ": " + reason, Cause::Command);
    };
    EXPECT_EQ(TryToStart({nowhere}), program('"' + nowhere + "\": No such file or directory"));
    EXPECT_EQ(TryToStart({"no-such-cc"}, folder.Path()), program("\"no-such-cc\": No such file or directory"));
    EXPECT_EQ(TryToStart({}), program("\"\": the command is empty"));
    EXPECT_EQ(TryToStart({child}, nowhere), directory(nowhere, "No such file or directory"));
    EXPECT_EQ(TryToStart({child}, text), directory(text, "Not a directory"));
    EXPECT_EQ(TryToStart({child, zero}), command("an argument holds a zero byte"));
    EXPECT_EQ(TryToStart({child, huge}), command("Argument list too long"));
}

TEST(Child, GivesBothOutputsWholeHoweverLong) {
    ChildProgram child({"print", "300000"});
    EXPECT_EQ(child.End(), 0);
    EXPECT_EQ(child.StandardOutput(), std::string(300'000, 'o') + "end");
    EXPECT_EQ(child.StandardError(), std::string(300'000, 'e'));
}

TEST(Child, EndsWithItsCodeWhichStays) {
    for (const int code : {0, 1, 255}) {
        ChildProgram child({"exit", std::to_string(code)});
        EXPECT_EQ(child.End(), code);
        int again = -1;
        EXPECT_TRUE(child.ItsProcess().try_get_exit_status(again));
        EXPECT_EQ(again, code) << "a code once taken stays";
    }
}

TEST(Child, GetsItsArgumentsAsTheyAre) {
    const Arguments arguments = {
        "",           " ",         "a b",        "tab\there",
        "\"",         "\\",        "\\\"",       "a\\\\\"b c\\\\",
        "c:\\dir\\",  "c:\\a b\\", "*",          "?",
        "%PATH%",     "^&|<>()",   "'",          "gr\xC3\xBC\xC3\x9F \xE6\xBA\x90 \xF0\x9F\x98\x80",
        "-x=\"y z\"", "@file",     "line\nbreak"};
    Arguments command = {"show-arguments"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::string shown;
    for (const std::string& argument : arguments) {
        shown += std::to_string(argument.size()) + ':' + argument;
    }
    ChildProgram child(command);
    EXPECT_EQ(child.End(), 0);
    EXPECT_EQ(child.StandardOutput(), shown);
}

TEST(Child, SeesItsEnvironmentItsFolderAndAnEmptyInput) {
    const TestFolder folder;
    const std::string directory = folder.MakeFolder("a b");
    ChildProgram child({"show-conditions", "ORVANTA_A", "ORVANTA_B"}, {{"ORVANTA_A", "x=y z \xC3\xA4"}}, directory);
    EXPECT_EQ(child.End(), 0);
    EXPECT_EQ(child.StandardOutput(), "ORVANTA_A=x=y z \xC3\xA4\nORVANTA_B is not set\n" + directory + "\n0 bytes\n");
}

TEST(Wait, WithATimeOutOfZeroIsOneLook) {
    const TestFolder folder;
    ChildProgram running({"hold-lock", folder.Path(), "key"});
    const WaitResult look = WaitWithTimeout(running.ItsProcess(), milliseconds(0), PollInterval, StopFlag());
    EXPECT_FALSE(look.finished);
    EXPECT_EQ(look.exitCode, 1);
    EXPECT_FALSE(running.ItsProcess().HasEnded()) << "the wait doesn't kill";

    ChildProgram ended({"exit", "5"});
    EXPECT_EQ(ended.End(), 5);
    const WaitResult known = WaitWithTimeout(ended.ItsProcess(), milliseconds(0), PollInterval, StopFlag());
    EXPECT_TRUE(known.finished);
    EXPECT_EQ(known.exitCode, 5);
}

TEST(Wait, EndsWithAStopRequest) {
    const TestFolder folder;
    ChildProgram child({"hold-lock", folder.Path(), "key"});
    StopFlag stop;
    std::thread user([&] { stop.Set(); });
    const WaitResult limited = WaitWithTimeout(child.ItsProcess(), LongTime, PollInterval, stop);
    const WaitResult unlimited = WaitUntilEndOrStop(child.ItsProcess(), stop);
    user.join();
    for (const WaitResult& result : {limited, unlimited}) {
        EXPECT_FALSE(result.finished);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(JudgeEnd({"core"}, result, child.ItsProcess(), {}), ProcessOutcome::Stopped);
    }
    EXPECT_FALSE(child.ItsProcess().HasEnded());
}

std::string ErrorOfJudging(const Arguments& command, WaitResult result, ChildProgram& child) {
    try {
        static_cast<void>(
            JudgeEnd(command, result, child.ItsProcess(), {child.StandardOutput(), child.StandardError()}));
        return "no error";
    } catch (const ProcessException& error) {
        return error.what();
    }
}

TEST(TimeOut, KillsTheWholeTree) {
    const TestFolder folder;
    ChildProgram child({"hold-lock-in-grandchild", folder.Path(), "key"});
    ASSERT_EQ(child.FirstLine(), "held");
    const WaitResult result = WaitWithTimeout(child.ItsProcess(), milliseconds(20), milliseconds(5), StopFlag());
    EXPECT_FALSE(result.finished);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(ErrorOfJudging({"core", "--cfg"}, result, child), "Command \"core --cfg\" was interrupted.");
    EXPECT_NE(child.End(), 0);
    EXPECT_TRUE(Ends(folder.Path(), "key"));
}

TEST(JudgedEnd, OfAFailedChildShowsBothOutputs) {
    ChildProgram child({"fail"});
    const WaitResult result = WaitUntilEndOrStop(child.ItsProcess(), StopFlag());
    EXPECT_EQ(ErrorOfJudging({"cc"}, result, child), "Command \"cc\" returned code 2.\nStdout:\nout\nStderr:\nerr");
}

TEST(Kill, EndsTheTreeWhenTheObjectGoes) {
    const TestFolder folder;
    auto child = std::make_unique<ChildProgram>(Arguments{"hold-lock-in-grandchild", folder.Path(), "key"});
    ASSERT_EQ(child->FirstLine(), "held");
    child.reset();
    EXPECT_TRUE(Ends(folder.Path(), "key"));
}

TEST(Kill, LeavesOthersAloneWhenTheChildHasEndedByItself) {
    const TestFolder folder;
    {
        ChildProgram child({"leave-grandchild", folder.Path(), "key", folder / "go-on"});
        EXPECT_EQ(child.End(), 0) << "its outputs are still open in the grandchild";
        EXPECT_EQ(child.StandardOutput(), "held\n");
    }
    LockFile lifeline;
    EXPECT_EQ(lifeline.Take(folder.Path(), "key"), LockFile::State::HeldByOther);
    folder.Write("go-on", "");
    EXPECT_TRUE(Ends(folder.Path(), "key"));
}

// The outputs of some children, one after the other.
std::string OutputsOf(std::size_t thread, int children) {
    const StopFlag stop;
    std::string outputs;
    for (int child = 0; child < children; ++child) {
        ChildProgram program({"show-arguments", std::to_string(thread), std::to_string(child)});
        if (WaitUntilEndOrStop(program.ItsProcess(), stop).finished) {
            outputs += program.StandardOutput() + '\n';
        }
    }
    return outputs;
}

TEST(Children, OfManyThreadsDoNotMix) {
    constexpr std::size_t Threads = 8;
    constexpr int ChildrenOfEach = 20;
    std::vector<std::string> outputs(Threads);
    std::vector<std::string> expected(Threads);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < Threads; ++thread) {
        for (int child = 0; child < ChildrenOfEach; ++child) {
            const std::string number = std::to_string(child);
            expected[thread] += "1:" + std::to_string(thread) + std::to_string(number.size()) + ':' + number + '\n';
        }
        threads.emplace_back([thread, &output = outputs[thread]] { output = OutputsOf(thread, ChildrenOfEach); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(outputs, expected);
}

} // namespace
} // namespace Orvanta
