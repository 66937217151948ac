#pragma once

#include "platform/Environment.h"
#include "platform/Process.h"
#include "report/MessageLine.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace Orvanta {

/// How a run of the core ended.
struct CoreEnd {
    int exitCode = 0;
    std::string standardOutput;
    std::string standardError;
};

/// The built core, run as the driver runs it, in a project with blanks and a letter outside of ASCII in its path.
class Core : public testing::Test {
protected:
    // A unit of the given preprocessed text; settings that stand twice are those given.
    std::string WriteUnit(const std::string& text, const std::string& moreSettings = "") {
        folder_.Write("temp \303\244/u.i", text);
        return folder_.Write("temp \303\244/u.cfg",
                             "analysis-mode=4\nengines=cppcheck\ni-file=" + (folder_ / "temp \303\244/u.i") +
                                 "\nlanguage=C++\noutput-file=" + (folder_ / Fragment) +
                                 "\nplatform=linux64\npreprocessor=gcc\nsource-file=u.cpp\n"
                                 "std=c++17\n" +
                                 moreSettings);
    }

    CoreEnd Run(const std::string& settings, const Environment& changes = {}, const Arguments& moreArguments = {}) {
        Arguments arguments = {"--cfg", settings};
        arguments.insert(arguments.end(), moreArguments.begin(), moreArguments.end());
        return RunWith(arguments, changes);
    }

    CoreEnd RunWith(Arguments command, const Environment& changes) {
        command.insert(command.begin(), ORVANTA_CORE_PATH);
        CoreEnd end;
        Process process(command, project_, EnvironmentBlock(WithChanges(changes)),
                        MakeRedirectToStringProcessor(end.standardOutput),
                        MakeRedirectToStringProcessor(end.standardError));
        end.exitCode = process.get_exit_status();
        return end;
    }

    std::vector<OrvlogConverter::ReportMessage> Findings() {
        std::vector<OrvlogConverter::ReportMessage> findings;
        std::istringstream lines(folder_.Read(Fragment));
        for (std::string line; std::getline(lines, line);) {
            findings.push_back(OrvlogConverter::ReadMessageLine(line));
        }
        return findings;
    }

    static constexpr const char* Fragment = "temp \303\244/u.findings";
    TestFolder folder_;
    std::string project_ = folder_.MakeFolder("pro ject \303\244");
};

/// A unit with two faults of the user's and one of a system header.
inline constexpr const char* Faulty = "# 0 \"u.cpp\"\n"
                                      "# 1 \"/opt/x/sys.h\" 1 3\n"
                                      "template <class concept X> struct { ;\n"
                                      "# 1 \"u.cpp\" 2\n"
                                      "# 1 \"in c.h\" 1\n"
                                      "int g() {\n"
                                      "    const int array[2] = {0, 0};\n"
                                      "    return array[2];\n"
                                      "}\n"
                                      "# 2 \"u.cpp\" 2\n"
                                      "int f() {\n"
                                      "    int* p = \n"
                                      "# 3 \"u.cpp\" 3 4\n"
                                      "            __null\n"
                                      "# 3 \"u.cpp\"\n"
                                      "                ;\n"
                                      "    return *p;\n"
                                      "}\n";

} // namespace Orvanta
