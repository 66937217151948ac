#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "support/HostPath.h"
#include "unit/bundled-core/CoreRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvanta {
namespace {

using testing::HasSubstr;

TEST_F(Core, SaysWhichEngineIsMissing) {
    const Environment noPrograms{{"PATH", folder_.Path()}};
    const CoreEnd named = Run(WriteUnit(Faulty), noPrograms);
    EXPECT_NE(named.exitCode, 0);
    EXPECT_EQ(Trim(named.standardError),
              "Cppcheck was not found along PATH: install the package \"cppcheck\", or leave "
              "it out of \"engines\"");
    const CoreEnd none = RunWith({"--version"}, noPrograms);
    EXPECT_NE(none.exitCode, 0);
    EXPECT_EQ(Trim(none.standardError),
              "Neither Cppcheck nor clang-tidy was found along PATH: install the package \"cppcheck\" or "
              "\"clang-tidy\", or name another core with --orvanta-path");
}

TEST_F(Core, ListsDependenciesWithoutAnalyzing) {
    const Environment noPrograms{{"PATH", folder_.Path()}};
    const CoreEnd end = Run(WriteUnit(Faulty), noPrograms, {"--display-dependencies", "--skip-analysis"});
    ASSERT_EQ(end.exitCode, 0) << end.standardError;
    std::string lines;
    for (const std::string& path :
         {JoinPath(project_, "u.cpp"), HostPath("/opt/x/sys.h"), JoinPath(project_, "in c.h")}) {
        lines += "<}include{>" + path + "\n";
    }
    EXPECT_EQ(end.standardOutput, lines);
    EXPECT_FALSE(PathExists(folder_ / Fragment));
}

TEST_F(Core, RefusesWhatItDoesNotUnderstand) {
    EXPECT_THAT(Run(folder_ / "none.cfg").standardError, HasSubstr("Can't open config file "));
    const std::string settings = WriteUnit(Faulty);
    EXPECT_THAT(Run(settings, {}, {"--skip-analysis"}).standardError, HasSubstr("go together"));
    EXPECT_THAT(Run(settings, {}, {"--fast"}).standardError, HasSubstr("argument \"--fast\" is not understood"));
    EXPECT_EQ(Run(settings, {}, {"--fast"}).exitCode, 1);
}

} // namespace
} // namespace Orvanta
