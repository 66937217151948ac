#include "bundled/CppcheckOutput.h"

#include "platform/Exceptions.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(CppcheckOutput, GivesFindingsWithTheirPathsAndOtherText) {
    const CppcheckOutput output = ReadCppcheckOutput("cppcheck: note\r\n"
                                                     "\x1e"
                                                     "f0.cpp\x1f"
                                                     "3\x1f"
                                                     "14\x1f"
                                                     "error\x1fnullPointer\x1f"
                                                     "476\x1fNull pointer: a|b:c\x1f\"\n"
                                                     "\x1d"
                                                     "f1.h\x1f"
                                                     "9\n"
                                                     "\x1d"
                                                     "f0.cpp\x1f"
                                                     "3\n"
                                                     "\x1e"
                                                     "f1.h\x1f"
                                                     "0\x1f"
                                                     "0\x1fstyle\x1fx\x1f"
                                                     "0\x1f");
    ASSERT_EQ(output.findings.size(), 2U);
    const std::vector<FindingPlace> path = {{"f1.h", 9}, {"f0.cpp", 3}};
    const FindingPlace begin = {"f0.cpp", 3};
    EXPECT_EQ(output.findings[0], (Finding{begin, 14, "error", "nullPointer", 476, "Null pointer: a|b:c\x1f\"", path}));
    const FindingPlace none = {"f1.h", 0};
    EXPECT_EQ(output.findings[1], (Finding{none, 0, "style", "x", 0, "", {}}));
    EXPECT_EQ(output.otherText, "cppcheck: note\n");
}

TEST(CppcheckOutput, RefusesFieldsThatAreNotThoseOfTheTemplate) {
    for (const char* text : {"\x1e", "\x1e{file}\x1f{line}\x1f{column}\x1fs\x1fi\x1f\x1fm",
                             "\x1e"
                             "f\x1f"
                             "1\x1f"
                             "1\x1fs\x1fi\x1f"
                             "1",
                             "\x1e"
                             "f\x1f"
                             "-1\x1f"
                             "1\x1fs\x1fi\x1f"
                             "1\x1fm"}) {
        EXPECT_THROW(static_cast<void>(ReadCppcheckOutput(text)), ZelmException) << text;
    }
}

} // namespace
} // namespace Orvanta
