#include "buildinput/trace/TraceReader.h"
#include "unit/buildinput/Collecting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

namespace Orvanta {

namespace {

/// A build of a hundred processes, in the way that a trace shows it: two at once, half of their calls in two parts.
std::vector<std::string> LinesOfABuild() {
    std::vector<std::string> lines = {R"(1  execve("/bin/make", ["make"], ["PWD=/", "A=1"]) = 0)",
                                      R"(1  getcwd("/", 4096) = 2)"};
    for (int process = 2; process < 100; ++process) {
        const std::string id = std::to_string(process);
        lines.emplace_back("1  clone3({flags=CLONE_VM|CLONE_VFORK}, 88 <unfinished ...>");
        lines.push_back(id + "  chdir(\"usr\") = 0");
        lines.push_back(id + "  openat(AT_FDCWD, \"lib\", O_RDONLY|O_DIRECTORY) = 3");
        lines.push_back(id + "  execve(\"/bin/gcc\", [\"gcc\", \"-c\", \"a.c\"], [\"A=1\"] <unfinished ...>");
        lines.push_back("1  <... clone3 resumed>) = " + id);
        lines.push_back(id + "  <... execve resumed>) = 0");
        lines.push_back(id + "  fchdir(3) = 0");
        lines.push_back(id + "  vfork() = 1" + id);
        lines.push_back("1" + id + "  execve(\"/bin/cc\", [\"cc\", \"-c\", \"b.c\"], 0x7f /* 3 vars */) = 0");
        lines.push_back("1" + id + "  +++ exited with 0 +++");
        lines.push_back(id + "  +++ exited with 0 +++");
    }
    return lines;
}

/// Reads a trace that may be broken in any way: it has to end, in order or with an error of the program's own, and to
/// account for each compiler that it found.
void ReadBroken(const std::vector<std::string>& lines) {
    Collecting collecting;
    collecting.settings.compilerFilter = {"no compiler"};
    std::string trace;
    for (const std::string& line : lines) {
        trace += line + '\n';
    }
    std::istringstream stream(trace);
    try {
        (void)ReadTrace(stream, "strace_out", collecting.collector);
    } catch (const ZelmException&) {
        // No process, no compiler, or a compiler without a folder.
    }
    const CollectedCommands collected = collecting.collector.Take();
    EXPECT_TRUE(collected.units.empty());
    EXPECT_EQ(collected.skipped.size(), collected.invocations);
    EXPECT_LE(collected.invocations, 4 * lines.size());
}

/// Breaks a trace in one of several ways.
void Break(std::vector<std::string>& lines, std::mt19937& random) {
    const auto below = [&random](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    switch (below(5)) {
    case 0: // cut
        lines.resize(below(lines.size()) + 1);
        lines.back().resize(below(lines.back().size() + 1));
        break;
    case 1: // doubled
        for (std::size_t i = 0; i < 20; ++i) {
            const std::string line = lines[below(lines.size())];
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(below(lines.size())), line);
        }
        break;
    case 2: // out of order
        std::shuffle(lines.begin(), lines.end(), random);
        break;
    case 3: // lines lost
        for (std::size_t i = 0; i < 50 && lines.size() > 1; ++i) {
            lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(below(lines.size())));
        }
        break;
    default: // bytes changed
        for (std::size_t i = 0; i < 100; ++i) {
            std::string& line = lines[below(lines.size())];
            if (!line.empty()) {
                line[below(line.size())] = "\"\\()[]<> 0129.,=\n\r\xFF"[below(19)];
            }
        }
    }
}

TEST(TraceReader, SurvivesBrokenTraces) {
    const std::vector<std::string> whole = LinesOfABuild();
    std::mt19937 random(20260); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same cases in every run
    testing::internal::CaptureStdout();
    for (int round = 0; round < 120; ++round) {
        std::vector<std::string> lines = whole;
        Break(lines, random);
        if (round % 3 == 0) {
            Break(lines, random);
        }
        ReadBroken(lines);
    }
    (void)testing::internal::GetCapturedStdout();
}

} // namespace

} // namespace Orvanta
