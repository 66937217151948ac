#include "analysis/StandardProbe.h"

#include "compilers/Gcc.h"
#include "platform/Files.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace Orvanta {
namespace {

struct VersionCase {
    Language language;
    long version;
    const char* word;
};

constexpr VersionCase VersionCases[] = {
    {Language::C, 198900, "c90"},     {Language::C, 199409, "c90"},     {Language::C, 199500, "c99"},
    {Language::C, 199901, "c99"},     {Language::C, 201112, "c11"},     {Language::C, 201710, "c17"},
    {Language::C, 201800, "c20"},     {Language::C, 202311, "c20"},     {Language::Cpp, 199711, "c++98"},
    {Language::Cpp, 200399, "c++03"}, {Language::Cpp, 201103, "c++11"}, {Language::Cpp, 201402, "c++14"},
    {Language::Cpp, 201703, "c++17"}, {Language::Cpp, 202002, "c++20"},
};

TEST(StandardWordOfVersion, FollowsTheMacrosValue) {
    for (const VersionCase& row : VersionCases) {
        EXPECT_EQ(StandardWordOfVersion(row.version, row.language), row.word) << row.version;
    }
}

TEST(LastNumber, IsReadFromTheEnd) {
    EXPECT_EQ(LastNumber("# 1 \"123.cpp\"\n201703L\n\n"), 201703);
    EXPECT_EQ(LastNumber("198900"), 198900);
    EXPECT_EQ(LastNumber("no digits"), std::nullopt);
    EXPECT_EQ(LastNumber(""), std::nullopt);
    EXPECT_EQ(LastNumber("99999999999999999999999"), std::nullopt);
}

/// A copy of the fake compiler, which notes its calls.
class ScriptedCompiler {
public:
    explicit ScriptedCompiler(const std::string& script) {
        command_.compilerType = CompilerType::Gcc;
        command_.compilerPath = folder_.Write("compiler", "");
        std::filesystem::copy_file(ORVANTA_FAKE_COMPILER, command_.compilerPath,
                                   std::filesystem::copy_options::overwrite_existing);
        folder_.Write("compiler.script", script);
        folder_.MakeFolder("probe");
    }

    std::string Probe(Language language, std::vector<std::string> keptArguments = {}, const Environment& own = {}) {
        ParsedCommand command = command_;
        command.keptArguments = std::move(keptArguments);
        return probe_.ProbeLanguageStandard(model_, command, language, {directory_, OwnEnvironmentBlock()}, own).word;
    }

    [[nodiscard]] std::size_t Calls() const {
        const std::string calls = folder_.Read("compiler.calls");
        return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), '\n'));
    }

    [[nodiscard]] bool LeftNothing() const { return std::filesystem::is_empty(folder_ / "probe"); }

private:
    TestFolder folder_;
    Gcc model_;
    ParsedCommand command_;
    StopFlag stop_;
    std::string directory_ = folder_.Path();
    StandardProbe probe_{folder_ / "probe", stop_};
};

constexpr const char* AnswersByLanguage = "std-number 201112L\nstd-number-c++ 201402L\n";

TEST(StandardProbe, AsksOncePerCompilerLanguageAndDecisiveArguments) {
    ScriptedCompiler compiler(AnswersByLanguage);
    EXPECT_EQ(compiler.Probe(Language::C), "c11");
    EXPECT_EQ(compiler.Probe(Language::C, {"-Ione", "-D", "X", "-include", "a.h", "-Wall"}), "c11");
    EXPECT_EQ(compiler.Probe(Language::C, {"/Ione", "/D", "X", "/FI", "a.h", "/W4", "/external:I", "s"}), "c11");
    EXPECT_EQ(compiler.Calls(), 1U);
    EXPECT_EQ(compiler.Probe(Language::Cpp), "c++14");
    EXPECT_EQ(compiler.Calls(), 2U);
    EXPECT_EQ(compiler.Probe(Language::C, {"-fms-extensions"}), "c11");
    EXPECT_EQ(compiler.Calls(), 3U);
    EXPECT_EQ(compiler.Probe(Language::C, {}, {{"TARGET", "x"}}), "c11");
    EXPECT_EQ(compiler.Calls(), 4U);
    EXPECT_TRUE(compiler.LeftNothing());
}

TEST(StandardProbe, FallsBackWhenTheCompilerFailsOrSaysNothing) {
    ScriptedCompiler failing("exit 3\n");
    EXPECT_EQ(failing.Probe(Language::C), "c99");
    EXPECT_EQ(failing.Probe(Language::Cpp), "c++14");
    EXPECT_EQ(failing.Probe(Language::C, {"-include", "of-another-unit.h"}), "c99");
    EXPECT_EQ(failing.Calls(), 3U) << "a failure is no answer for other units";
    ScriptedCompiler silent("empty-output\n");
    EXPECT_EQ(silent.Probe(Language::Cpp), "c++14");
    EXPECT_TRUE(silent.LeftNothing());
}

} // namespace
} // namespace Orvanta
