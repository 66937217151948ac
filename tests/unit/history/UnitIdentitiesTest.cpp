#include "history/UnitIdentities.h"

#include "support/HostPath.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <memory>
#include <sstream>

namespace Orvanta {
namespace {

class UnitIdentities : public testing::Test {
protected:
    UnitIdentities() {
        folder_.Write("rules", "all");
        makers_.corePath = folder_ / "core";
        CompilerInfo compiler;
        compiler.type = CompilerType::Gcc;
        compiler.path = folder_ / "gcc";
        compiler.version = "12";
        unit_.absoluteDirectory = std::make_shared<std::string>(HostPath("/p"));
        unit_.arguments = Words("gcc a.c");
        unit_.environment = std::make_shared<Environment>();
        unit_.compiler = std::make_shared<CompilerInfo>(compiler);
        unit_.source = {1, 0};
        OverrideSetting(settings_, "rules-config", folder_ / "rules");
    }

    static ArgumentList Words(const std::string& text) {
        std::istringstream words(text);
        return ArgumentList(std::vector<std::string>{std::istream_iterator<std::string>(words), {}});
    }

    [[nodiscard]] UnitIdentity Identity() const { return IdentifyUnits({&unit_, 1}, settings_, makers_).front(); }

    TestFolder folder_;
    CompileCommand unit_;
    RunSettings settings_;
    ResultMakers makers_;
};

// A change that goes unseen here would leave out of date findings in a report for ever.
TEST_F(UnitIdentities, InputsHoldAllThatDecidesAResult) {
    const auto variables = std::make_shared<Environment>();
    variables->emplace("CPATH", "x");
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"argument",
         [&] {
             unit_.arguments = Words("gcc a.c -DX");
         }},
        {"split of arguments",
         [&] {
             unit_.arguments = Words("gcc a.c-DX");
         }},
        {"folder",
         [&] {
             unit_.absoluteDirectory = std::make_shared<std::string>(HostPath("/q"));
         }},
        {"variable",
         [&] {
             unit_.environment = variables;
         }},
        {"scope of variables",
         [&] {
             unit_.environmentScope = EnvironmentScope::Whole;
         }},
        {"version of the core",
         [&] {
             makers_.coreVersion = "2";
         }},
        {"version of the program",
         [&] {
             makers_.ownVersion = "2";
         }},
        {"place of the core",
         [&] {
             makers_.corePath = folder_ / "other";
         }},
        {"setting",
         [&] {
             OverrideSetting(settings_, "timeout", "5");
         }},
        {"file of rules",
         [&] {
             folder_.Write("rules", "few");
         }},
        {"include folder",
         [&] {
             settings_.extraIncludes.push_back(HostPath("/i"));
         }},
        {"--env",
         [&] {
             settings_.environmentChanges["A"] = "b";
         }},
        {"system folders",
         [&] {
             settings_.analyzeSystemPaths = true;
         }},
    };
    for (const auto& [name, change] : changes) {
        const Fingerprint before = Identity().inputs;
        change();
        EXPECT_NE(Identity().inputs, before) << name;
    }
    const Fingerprint before = Identity().inputs;
    OverrideSetting(settings_, "output-file", "elsewhere.json");
    EXPECT_EQ(Identity().inputs, before) << "where the report goes decides no result";
}

// Their content counts, not when and where they were installed: it is looked at like that of a header.
TEST_F(UnitIdentities, ProgramsAreAmongTheFilesOfAUnit) {
    EXPECT_EQ(*Identity().programs, (std::vector<std::string>{folder_ / "gcc", folder_ / "core"}));
    const Fingerprint before = Identity().inputs;
    folder_.Write("gcc", "new");
    EXPECT_EQ(Identity().inputs, before);
}

} // namespace
} // namespace Orvanta
