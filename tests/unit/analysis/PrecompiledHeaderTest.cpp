#include "analysis/PrecompiledHeader.h"

#include "support/TestFolder.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(FindPrecompiledForm, PrefersTheFormForCppAndTellsWhereItLooked) {
    const TestFolder folder;
    const std::string header = folder / "pch.h";
    Log log(Log::Verbosity::Verbose);
    EXPECT_EQ(FindPrecompiledForm(header, log), std::nullopt);

    const std::string forC = header + ".gch/c";
    folder.Write("pch.h.gch/c", "");
    testing::internal::CaptureStdout();
    EXPECT_EQ(FindPrecompiledForm(header, log), forC);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "  Source file at path: '" + header + ".gch/c++' exists=false\n" +
                                                          "  Source file at path: '" + forC + "' exists=true\n");

    folder.Write("pch.h.gch/c++", "");
    EXPECT_EQ(FindPrecompiledForm(header, log), header + ".gch/c++");
}

} // namespace
} // namespace Orvanta
