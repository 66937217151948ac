#include "platform/Log.h"

#include "platform/Exceptions.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace Orvanta {
namespace {

TEST(LogFile, HoldsEveryLineThoseForVerboseOutputIncluded) {
    const TestFolder folder;
    Log log;
    EXPECT_FALSE(log.IsVerbose());
    log.VerboseLine("seen nowhere");
    log.OpenFile(folder / "log");
    EXPECT_TRUE(log.IsVerbose());
    log.Line("line");
    log.VerboseLine("verbose");
    log.Text("text\n");
    EXPECT_EQ(folder.Read("log"), "line\nverbose\ntext\n");
    EXPECT_THROW(Log().OpenFile(folder / "no/log"), ZelmException);
}

TEST(LogFile, HasWholeLinesOfEveryThread) {
    constexpr std::size_t Threads = 4;
    constexpr std::size_t LinesOfEach = 50;
    const TestFolder folder;
    Log log;
    log.OpenFile(folder / "log");
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < Threads; ++thread) {
        threads.emplace_back([&log, thread] {
            for (std::size_t line = 0; line < LinesOfEach; ++line) {
                log.VerboseLine(std::string(100, static_cast<char>('a' + thread)));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::string text = folder.Read("log");
    ASSERT_EQ(text.size(), Threads * LinesOfEach * 101);
    for (std::size_t begin = 0; begin < text.size(); begin += 101) {
        EXPECT_EQ(text.substr(begin, 101), std::string(100, text[begin]) + "\n");
    }
}

} // namespace
} // namespace Orvanta
