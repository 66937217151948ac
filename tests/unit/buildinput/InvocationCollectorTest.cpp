#include "buildinput/InvocationCollector.h"

#include "Collecting.h"
#include "platform/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <sstream>

namespace Orvanta {

namespace {

using Words = std::vector<std::string>;
using testing::HasSubstr;

/// A folder with compilers that are known by their names, and one that can't be started.
class InvocationCollectorTest : public testing::Test {
protected:
    InvocationCollectorTest() {
        for (const char* name : {"clang", "clang++", "armcc", "ccache"}) {
            (void)MakeProgram(folder_, name);
        }
        (void)MakeProgram(folder_, "broken", "neither a script nor a program");
    }

    [[nodiscard]] std::string Program(std::string_view name) const { return folder_ / name; }

    void Add(Words arguments, const std::string& directory = "/", const Environment& environment = {}) {
        collecting_.collector.AddInvocation(std::move(arguments), directory, environment);
    }

    TestFolder folder_;
    Collecting collecting_;
};

struct ExpectedFate {
    Words arguments; ///< "%" stands for the folder
    InvocationFate fate;
    std::string what;
    std::string reasonHolds;
};

TEST_F(InvocationCollectorTest, TellsTheFateOfWhatGivesNoUnit) {
    (void)folder_.Write("bad.rsp", "-c 'a.c");
    (void)folder_.Write("zero.rsp", std::string("-DA=\0b", 6));
    const std::string zero("a\0.c", 4);
    using enum InvocationFate;
    const ExpectedFate rows[] = {
        {{}, Unreadable, "", "command string can't be split"},
        {{"", "-c", "a.c"}, Unreadable, "a.c", "names no compiler"},
        {{"%/clang", "-c", zero}, Unreadable, zero, "zero byte"},
        {{"%/clang", "a.c", "@zero.rsp"}, Unreadable, "a.c", "zero byte"},
        {{"%/clang", "@bad.rsp", "-o", "a.o"}, Unreadable, "a.o", "response file \"bad.rsp\": 'a.c"},
        {{"%/none", "-c", "a.c"}, CompilerUnusable, "a.c", "%/none"},
        {{"%/broken", "-c", "a.c"}, CompilerUnusable, "a.c", "%/broken"},
        {{"%/armcc", "--via", "none.via"}, Unreadable, "none.via", "none.via"},
        {{"%/ccache", "%/clang", "-oa.o"}, SkippedLauncher, "a.o", "ccache command"},
        {{"%/clang", "a.o", "-o", "x"}, NotACompilation, "x", ""},
        {{"%/clang", "--version"}, NotACompilation, "%/clang --version", ""},
    };
    const auto inFolder = [this](std::string text) {
        return text.starts_with("%/") ? folder_ / text.substr(2) : text;
    };
    for (const ExpectedFate& row : rows) {
        Words arguments;
        for (const std::string& argument : row.arguments) {
            arguments.push_back(inFolder(argument));
        }
        Add(arguments, folder_.Path());
    }
    const Words command = {Program("clang"), "-c", "a.c"};
    const Environment zeroValue = {{"A", zero}};
    Add(command, zero);
    Add(command, "/", zeroValue);
    const CollectedCommands collected = collecting_.collector.Take();

    EXPECT_TRUE(collected.units.empty());
    EXPECT_EQ(collected.invocations, std::size(rows) + 2);
    ASSERT_EQ(collected.skipped.size(), collected.invocations);
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(collected.skipped[i].invocation, i + 1);
        EXPECT_EQ(collected.skipped[i].fate, rows[i].fate) << i << ": " << collected.skipped[i].reason;
        EXPECT_EQ(collected.skipped[i].what, inFolder(rows[i].what));
        EXPECT_FALSE(collected.skipped[i].reason.empty());
        EXPECT_THAT(collected.skipped[i].reason, HasSubstr(inFolder(rows[i].reasonHolds)));
    }
    EXPECT_EQ(collected.skipped[std::size(rows)].fate, InvocationFate::Unreadable);
    EXPECT_EQ(collected.skipped[std::size(rows) + 1].fate, InvocationFate::Unreadable);
}

// What stands in front of a compiler, or around it, as databases have it. A row is the command and what it becomes: its
// folder and words, or "(REASON)".
struct LaunchedCase {
    const char* command;
    const char* outcome;
};

// clang-format off
const LaunchedCase LaunchedCases[] = {
    {"distcc %/clang -c a.c", "%: %/clang -c a.c"},
    {"/opt/bin/sccache %/clang -c a.c", "%: %/clang -c a.c"},
    {"buildcache icecc %/clang -c a.c", "%: %/clang -c a.c"},
    {"env -i -u X A=1 PATH=/p %/clang -c a.c", "% A=1 PATH=/p: %/clang -c a.c"},
    {"env -C sub -- %/clang -c a.c", "%/sub: %/clang -c a.c"},
    {"env --chdir=sub %/clang -c a.c", "%/sub: %/clang -c a.c"},
    {"cmake -E chdir sub %/clang -c a.c", "%/sub: %/clang -c a.c"},
    {"./libtool --tag CC --mode compile %/clang -c a.c", "%: %/clang -c a.c"},
    {"nice -n 5 time -o t %/clang -c a.c", "%: %/clang -c a.c"},
    {"timeout -k 9 60 %/clang -c a.c", "%: %/clang -c a.c"},
    {"cmake -E env --unset=B A=1 %/clang -c a.c", "% A=1: %/clang -c a.c"},
    {"/usr/bin/cmake -E __run_co_compile --launcher=x --tidy=clang-tidy;-p --source=a.c -- %/clang -c a.c",
     "%: %/clang -c a.c"},
    {"cmake -E copy a.c b.c", "(a tool of CMake)"},
    {"/bin/sh ../libtool --tag=CC --mode=compile %/clang -prefer-pic -Wc,-DA -Xcompiler -DB -c a.c -o a.lo",
     "%: %/clang -DA -DB -c a.c -o a.lo"},
    {"./libtool --mode=link %/clang -o liba.la a.lo", "(another step of libtool than to compile)"},
    {"wrap-it %/clang -c a.c", "%: %/clang -c a.c"},
    {"other-wrap %/clang -c a.c", "(the program \"other-wrap\" looks like a launcher: the key \"launcher\" of a settings "
                                  "file makes it one)"},
    {"python3 other-wrap.py --log distcc %/clang -c a.c", "(the program \"python3\" looks like a launcher: the key "
                                                         "\"launcher\" of a settings file makes it one)"},
    {"%/ccache distcc %/clang -c a.c", "(ccache command)"},
    {"nice %/ccache depend_mode=true %/clang -c a.c", "(ccache command)"},
    // Lines for a shell, as ninja's own list of commands has them.
    {":", "(no command of a compiler)"},
    {": && %/clang a.o -o a && :", "(link only)"},
    {": && cmake -E rm -f a.a && ar qc a.a a.o && :", "(no command of a compiler)"},
    {"cd %/e && cd f && %/clang -c a.c -DA 2> err && touch x", "%/e/f: %/clang -c a.c -DA"},
    {"python3 gen.py ; env A=1 %/clang -c a.c > log", "% A=1: %/clang -c a.c"},
    {"cd sub && cmake -E touch x", "(no command of a compiler)"},
    // A flag that nobody knows, and what stands behind it.
    {"%/clang --new-flag value -c a.c", "%: %/clang --new-flag value -c a.c"},
    {"%/clang --new-flag a.c", "%: %/clang --new-flag a.c"},
};

// clang-format on

std::string WithSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

TEST_F(InvocationCollectorTest, FindsTheCompilerInWhatStandsAroundIt) {
    collecting_.settings.launcherNames = {"wrap-it"};
    const auto inFolder = [this](std::string text) {
        for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%')) {
            text.replace(at, 1, folder_.Path());
        }
        return text;
    };
    for (const LaunchedCase& row : LaunchedCases) {
        std::istringstream stream(inFolder(row.command));
        Add(Words(std::istream_iterator<std::string>(stream), {}), folder_.Path());
        const CollectedCommands collected = collecting_.collector.Take();
        ASSERT_EQ(collected.units.size() + collected.skipped.size(), 1U) << row.command;
        std::string outcome;
        if (collected.units.empty()) {
            outcome = '(' + collected.skipped[0].reason + ')';
        } else {
            outcome = *collected.units[0].absoluteDirectory;
            for (const auto& [name, value] : *collected.units[0].environment) {
                outcome += ' ' + name + '=' + value;
            }
            outcome += ':';
            for (const std::string& word : collected.units[0].arguments.ToVector()) {
                outcome += ' ' + word;
            }
        }
        EXPECT_EQ(WithSlashes(outcome), WithSlashes(inFolder(row.outcome))) << row.command;
    }
}

TEST_F(InvocationCollectorTest, CutsALongCommandOnlyBetweenCharacters) {
    std::string version = "--version";
    for (int i = 0; i < 100; ++i) {
        version += "\xC3\xA4";
    }
    Add({Program("clang"), version});
    Add({Program("clang"), version.insert(0, "-")});
    for (const SkippedInvocation& skipped : collecting_.collector.Take().skipped) {
        EXPECT_LE(skipped.what.size(), 123U);
        EXPECT_TRUE(skipped.what.ends_with("\xC3\xA4...")) << skipped.what;
    }
}

TEST_F(InvocationCollectorTest, MakesOneUnitForEachSource) {
    Add({Program("clang"), "-c", "a.c", "-O2", "b.cpp"});
    Add({Program("clang"), "-c", "c.c"});
    const CollectedCommands collected = collecting_.collector.Take();

    ASSERT_EQ(collected.units.size(), 3U);
    EXPECT_EQ(collected.units[0].SourceFile(), "a.c");
    EXPECT_EQ(collected.units[1].SourceFile(), "b.cpp");
    EXPECT_EQ(collected.units[1].invocation, 1U);
    EXPECT_EQ(collected.units[2].invocation, 2U);
    EXPECT_EQ(collected.units[1].arguments.ToVector(), (Words{Program("clang"), "-c", "a.c", "-O2", "b.cpp"}));
    EXPECT_EQ(collected.units[2].compiler->type, CompilerType::Clang);
    EXPECT_EQ(collected.units[0].compiler, collected.units[2].compiler);
}

TEST_F(InvocationCollectorTest, ExpandsResponseFilesInTheInvocationsDirectory) {
    (void)folder_.Write("sub/flags.rsp", "-c \"a b.c\"");
    collecting_.collector.SetBaseDirectory(folder_.Path());
    Add({Program("clang"), "@flags.rsp", "-Da@b"}, "sub");
    const CollectedCommands collected = collecting_.collector.Take();

    ASSERT_EQ(collected.units.size(), 1U);
    EXPECT_EQ(collected.units[0].arguments.ToVector(), (Words{Program("clang"), "-c", "a b.c", "-Da@b"}));
    EXPECT_EQ(collected.units[0].SourceFile(), "a b.c");
}

TEST_F(InvocationCollectorTest, UnwrapsALauncherWhenAskedTo) {
    collecting_.settings.ignoreCcache = true;
    Add({Program("ccache"), Program("clang"), "-c", "a.c"});
    const CollectedCommands collected = collecting_.collector.Take();

    ASSERT_EQ(collected.units.size(), 1U);
    EXPECT_TRUE(collected.units[0].wrapped);
    EXPECT_EQ(collected.units[0].arguments.ToVector(), (Words{Program("clang"), "-c", "a.c"}));
}

struct FilterCase {
    const char* filter;
    const char* program;
    bool passes;
};

TEST_F(InvocationCollectorTest, LeavesOutOtherCompilersThanThoseAskedFor) {
    const FilterCase rows[] = {
        {"clang", "clang", true},    {"CLANG.exe", "clang", true}, {"clang", "clang++", false},
        {"clang++", "clang", false}, {"lang", "clang", false},     {"ccache", "clang", false},
    };
    for (const FilterCase& row : rows) {
        Collecting collecting;
        collecting.settings.compilerFilter = {"other", row.filter};
        collecting.settings.ignoreCcache = true;
        collecting.collector.AddInvocation({Program(row.program), "-c", "a.c"}, "/", {});
        collecting.collector.AddInvocation({Program("ccache"), Program(row.program), "-c", "a.c"}, "/", {});
        const CollectedCommands collected = collecting.collector.Take();
        const bool launcherPasses = row.passes || std::string_view(row.filter) == "ccache";
        EXPECT_EQ(collected.units.size(), (row.passes ? 1U : 0U) + (launcherPasses ? 1U : 0U)) << row.filter;
        for (const SkippedInvocation& skipped : collected.skipped) {
            EXPECT_EQ(skipped.fate, InvocationFate::OtherCompiler);
            EXPECT_THAT(skipped.reason, HasSubstr(skipped.invocation == 1 ? row.program : "ccache"));
        }
    }
}

TEST_F(InvocationCollectorTest, TakesRelativeDirectoriesFromTheBaseAndKeepsThemAsWritten) {
    const Words command = {Program("clang"), "-c", "a.c"};
    Add(command, "x");
    collecting_.collector.SetBaseDirectory("/base/of it");
    for (const char* directory : {"x", "", "./x/../y", "/abs/../z/", "x"}) {
        Add(command, directory);
    }
    const std::vector<CompileCommand> units = collecting_.collector.Take().units;

    ASSERT_EQ(units.size(), 6U);
    const Words expected = {NormalizePath(JoinPath(CurrentDirectory(), "x")),
                            NormalizePath("/base/of it/x"),
                            NormalizePath("/base/of it"),
                            NormalizePath("/base/of it/y"),
                            NormalizePath("/z"),
                            NormalizePath("/base/of it/x")};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(*units[i].absoluteDirectory, expected[i]);
    }
    EXPECT_EQ(*units[3].workingDirectory, "./x/../y");
}

TEST_F(InvocationCollectorTest, HoldsWhatManyUnitsShareOnce) {
    const Words command = {Program("clang"), "-c", "a.c"};
    Add(command, "/a", {{"A", "1"}});
    Add(command, "/b", {});
    Add(command, "/a", {{"A", "1"}});
    Add(command, "/b", {});
    const std::vector<CompileCommand> units = collecting_.collector.Take().units;

    ASSERT_EQ(units.size(), 4U);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(units[i].workingDirectory, units[i + 2].workingDirectory);
        EXPECT_EQ(units[i].absoluteDirectory, units[i + 2].absoluteDirectory);
        EXPECT_EQ(units[i].environment, units[i + 2].environment);
    }
    EXPECT_EQ(*units[0].environment, (Environment{{"A", "1"}}));
    EXPECT_TRUE(units[1].environment->empty());
}

} // namespace

} // namespace Orvanta
