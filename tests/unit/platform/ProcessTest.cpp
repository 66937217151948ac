#include "platform/Process.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(ProcessExceptions, NameTheCommandWordByWord) {
    const Arguments command = {"cc", "-c", "a b.c", ""};
    EXPECT_EQ(CommandLineText(command), "cc -c a b.c ");
    EXPECT_EQ(CommandLineText({}), "");
    EXPECT_STREQ(ProcessReturnCodeException(command, -1).what(), "Command \"cc -c a b.c \" returned code -1.");
    EXPECT_STREQ(ProcessReturnCodeException({"cc", "%2%"}, 2, "%4%", "").what(),
                 "Command \"cc %2%\" returned code 2.\nStdout:\n%4%\nStderr:\n");
    EXPECT_STREQ(ProcessInterruptedException(command).what(), "Command \"cc -c a b.c \" was interrupted.");
}

} // namespace
} // namespace Orvanta
