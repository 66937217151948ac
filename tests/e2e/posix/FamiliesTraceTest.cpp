// Guards against command lines of embedded compilers that are read well from a database, and otherwise from the trace
// of a build.

#include "e2e/families/FamilyProject.h"
#include "e2e/support/SandboxTest.h"

#include <algorithm>

namespace Orvanta {

namespace {

std::string InTrace(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted += '"';
}

std::string LinesOf(const FamilyUnit& unit, std::size_t process) {
    const std::string number = std::to_string(process);
    std::string lines = "100 vfork() = " + number + '\n';
    lines += number + " chdir(" + InTrace(unit.directory) + ") = 0\n";
    lines += number + " execve(" + InTrace(unit.command.front()) + ", [";
    for (const std::string& word : unit.command) {
        lines += (&word == &unit.command.front() ? "" : ", ") + InTrace(word);
    }
    return lines + "], 0x7ffd7e9c2a60 /* 24 vars */) = 0\n" + number + " +++ exited with 0 +++\n";
}

class FamiliesTraceTest : public SandboxTest {};

TEST_F(FamiliesTraceTest, EveryUnitIsReadAsItsCompilerReadsIt) {
    std::vector<FamilyUnit> units = WriteFamilyProject(sandbox);
    std::erase_if(units, [](const FamilyUnit& unit) {
        return std::string_view(unit.family->preprocessor) == "visualcpp"; // no compilers of a build on this system
    });
    std::string trace = "100 execve(\"/usr/bin/make\", [\"make\", \"-j2\"], 0x7ffd7e9c2a60 /* 24 vars */) = 0\n";
    for (const FamilyUnit& unit : units) {
        trace += LinesOf(unit, 101 + static_cast<std::size_t>(&unit - units.data()));
    }
    sandbox.Write("strace_out", trace);
    const RunResult result = sandbox.Analyze({"-f", "strace_out", "--verbose", "-o", "report.json", "-j", "2"});
    ExpectFamilyUnits(sandbox, units, result);
}

} // namespace

} // namespace Orvanta
