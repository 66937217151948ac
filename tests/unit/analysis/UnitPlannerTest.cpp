#include "analysis/UnitPlanner.h"

#include "compilers/CompilerRegistry.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "support/HostPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvanta {
namespace {

using Words = std::vector<std::string>;

/// A command for a GCC whose standard is stated: nothing is started to plan it.
CompileCommand CommandOf(Words flags, const std::string& source, Environment variables = {}) {
    CompileCommand command;
    command.workingDirectory = command.absoluteDirectory = std::make_shared<const std::string>(HostPath("/p/build"));
    flags.insert(flags.begin(), {"gcc", "-std=c11"});
    flags.push_back(source);
    command.arguments = ArgumentList(flags);
    command.source.index = flags.size() - 1;
    command.environment = std::make_shared<const Environment>(std::move(variables));
    CompilerInfo compiler;
    compiler.type = CompilerType::Gcc;
    compiler.path = HostPath("/usr/bin/gcc");
    command.compiler = std::make_shared<const CompilerInfo>(compiler);
    return command;
}

class UnitPlanning : public testing::Test {
protected:
    UnitPlan Plan(const CompileCommand& command, std::size_t unit = 0) {
        return UnitPlanner(settings_, registry_, places_, log_, stop_)
            .Plan(command, unit, IntermodularAnalysisMode::None);
    }

    RunSettings settings_;
    CompilerRegistry registry_;
    RunPlaces places_ = {HostPath("/core"), "", HostPath("/units"), HostPath("/temporary"), HostPath("/out")};
    Log log_;
    StopFlag stop_;
};

struct VerdictCase {
    const char* systemFolder;
    const char* excluded;
    bool analyzesSystemPaths;
    UnitVerdict verdict;
};

const VerdictCase VerdictCases[] = {
    {"/p/other", "/p/third", false, UnitVerdict::Analyze},
    {"/p/sys", "/p/third", false, UnitVerdict::InSystemFolder},
    {"../sys/.", "/p/third", false, UnitVerdict::InSystemFolder}, // of the unit's folder
    {"/p/sys", "/p/third", true, UnitVerdict::Analyze},
    {"/p/sy", "/p/third", false, UnitVerdict::Analyze}, // no folder of the source
    {"/", "/p/third", false, UnitVerdict::Analyze},     // as a system root it would hold every source
    {"/p/sys", "/p/sys", false, UnitVerdict::ExcludedBySetting},
};

TEST_F(UnitPlanning, LeavesOutWhatTheUserOrAFolderOfTheSystemExcludes) {
    for (const VerdictCase& row : VerdictCases) {
        settings_ = RunSettings();
        settings_.exclusions.Add(HostPath(row.excluded));
        settings_.analyzeSystemPaths = row.analyzesSystemPaths;
        const CompileCommand command = CommandOf({"-isystem", HostPath(row.systemFolder)}, HostPath("/p/sys/a.c"));
        EXPECT_EQ(Plan(command).verdict, row.verdict) << row.systemFolder << " " << row.excluded;
    }
}

// In the block, names and values are one text; Windows has its "Path" in other letters.
std::string ValueIn(const EnvironmentBlock& block, const std::string& name) {
    for (const std::string& entry : block.Entries()) {
        if (EqualsIgnoringCase(std::string_view(entry).substr(0, name.size() + 1), name + "=")) {
            return entry.substr(name.size() + 1);
        }
    }
    return "none";
}

TEST_F(UnitPlanning, LaysTheRunsVariablesOverTheInvocationsAndThoseOverTheDriversOwn) {
    settings_.environmentChanges = {{"RUN", "run"}, {"SUNPRO_DEPENDENCIES", "f"}};
    CompileCommand command = CommandOf({}, "a.c", {{"RUN", "build"}, {"BUILD", "build"}, {"DEPENDENCIES_OUTPUT", "f"}});
    const UnitPlan changed = Plan(command);
    EXPECT_EQ(ValueIn(*changed.environment, "RUN"), "run");
    EXPECT_EQ(ValueIn(*changed.environment, "BUILD"), "build");
    EXPECT_NE(ValueIn(*changed.environment, "PATH"), "none");
    EXPECT_EQ(ValueIn(*changed.environment, "DEPENDENCIES_OUTPUT"), "none"); // would make the compiler write files
    EXPECT_EQ(ValueIn(*changed.environment, "SUNPRO_DEPENDENCIES"), "none");
    EXPECT_EQ(changed.coreEnvironment, changed.environment);

    // All that the build had is the compiler's; the core belongs to this run.
    command.environmentScope = EnvironmentScope::Whole;
    const UnitPlan whole = Plan(command);
    EXPECT_EQ(ValueIn(*whole.environment, "PATH"), "none");
    EXPECT_EQ(ValueIn(*whole.environment, "RUN"), "run");
    EXPECT_NE(ValueIn(*whole.coreEnvironment, "PATH"), "none");
    EXPECT_EQ(ValueIn(*whole.coreEnvironment, "BUILD"), "none");
}

TEST_F(UnitPlanning, RunsTheIdentifiedProgramWithTheBuildsFoldersInFrontOfTheUsers) {
    settings_.extraIncludes = {HostPath("/user")};
    const UnitPlan plan = Plan(CommandOf({"-Ibuild", "-DX"}, "a.c"));
    EXPECT_EQ(plan.preprocessing.front(), HostPath("/usr/bin/gcc"));
    EXPECT_EQ(plan.parsed.userIncludes, (Words{"build", HostPath("/user")}));
    EXPECT_EQ(plan.parsed.defines, (Words{"X", "ORVANTA"}));
    for (const std::string& word : {std::string("-Ibuild"), "-I" + HostPath("/user"), std::string("-DORVANTA")}) {
        EXPECT_NE(std::find(plan.preprocessing.begin(), plan.preprocessing.end(), word), plan.preprocessing.end())
            << word;
    }
}

TEST_F(UnitPlanning, TellsTheCoreTheStatedStandardUnlessTheUserHasNamedOne) {
    EXPECT_EQ(Plan(CommandOf({}, "a.c")).settings.find("std")->second, "c11");
    settings_.userSettings.emplace("std", "c99");
    EXPECT_EQ(Plan(CommandOf({}, "a.c")).settings.find("std")->second, "c99");
}

TEST_F(UnitPlanning, GivesUnitsOfOneNameFilesOfTheirOwn) {
    const CompileCommand command = CommandOf({}, std::string(300, 'a') + ".c");
    const UnitFiles first = Plan(command, 0).files;
    const UnitFiles second = Plan(command, 1).files;
    std::vector<std::string> paths;
    for (const UnitFiles& files : {first, second}) {
        for (const std::string& path :
             {files.preprocessedPath, files.fragmentPath, files.dependenciesPath, files.collectedPath}) {
            EXPECT_LT(FileNameOf(path).size(), 200U);
            paths.push_back(path);
        }
    }
    std::sort(paths.begin(), paths.end());
    EXPECT_EQ(std::adjacent_find(paths.begin(), paths.end()), paths.end());
    EXPECT_TRUE(first.preprocessedPath.starts_with(HostPath("/units")));
    EXPECT_TRUE(first.collectedPath.starts_with(HostPath("/temporary")));
}

} // namespace
} // namespace Orvanta
