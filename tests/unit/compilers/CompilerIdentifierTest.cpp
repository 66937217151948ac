#include "compilers/CompilerIdentifier.h"

#include "support/HostPath.h"
#include "support/TestFolder.h"
#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace Orvanta {

namespace {

struct NameCase {
    const char* name;
    std::string_view path;
    std::optional<CompilerType> type;
};

const NameCase NameCases[] = {
    {"ClangCl", "/usr/bin/clang-cl", CompilerType::ClangCl},
    {"ClangClUpperCase", "C:/x/CLANG-CL.EXE", CompilerType::ClangCl},
    {"ClangClWithVersion", "clang-cl-14", CompilerType::Clang},
    {"ClByStem", "/x/cl.exe", CompilerType::Cl},
    {"ArmClang", "/x/armclang", CompilerType::Keil6},
    {"ArmClangExe", "/x/ArmClang.exe", CompilerType::Clang},
    {"ClangInside", "/x/arm-Clang++-14", CompilerType::Clang},
    {"Qcc", "qcc", CompilerType::Qcc},
    {"Xc8", "XC8-CC", CompilerType::XC8},
    {"ArmCc", "armcc", CompilerType::Keil5},
    {"ArmCcExe", "armcc.exe", std::nullopt},
    {"ArmCl", "armcl", CompilerType::TiArmCGT},
    {"Gcc", "/usr/bin/gcc", std::nullopt},
    {"GccARM", "arm-none-eabi-gcc", std::nullopt},
    {"OnlyTheFolder", "/opt/clang/bin/gcc", std::nullopt},
};

struct VersionCase {
    const char* name;
    std::string_view text;
    CompilerType type;
};

const VersionCase VersionCases[] = {
    {"DebianGcc", "gcc (Debian 12.2.0-14) 12.2.0\nCopyright (C) 2022\n", CompilerType::Gcc},
    {"Clang", "clang version 15.0.7\nTarget: x86_64\n", CompilerType::Clang},
    {"ClangNotFirst", "Debian clang version 14.0.6\n", CompilerType::Gcc},
    {"ClangUpperCase", "Clang version 15\n", CompilerType::Gcc},
    {"Apple", "Apple LLVM version 10.0.1 (clang-1001.0.46.4)\n", CompilerType::Clang},
    {"GnuArm", "arm-none-eabi-gcc (GNU Arm Embedded Toolchain 10.3) 10.3.1", CompilerType::GccARM},
    {"ArmWithoutGnu", "some cc (Arm Embedded 1.0)", CompilerType::Gcc},
    {"Iar7", "IAR ANSI C/C++ Compiler V7.80.4.12462/W32 for ARM\n", CompilerType::IARArm_v7_OrOlder},
    {"Iar8", "IAR ANSI C/C++ Compiler V8.50.1.245/LNX for ARM\n", CompilerType::IARArm},
    {"IarNoVersion", "IAR C/C++ Compiler, Version Vx", CompilerType::IARArm},
    {"IarAnyOldWord", "IAR V9.1 for V7", CompilerType::IARArm_v7_OrOlder},
    {"IarNegative", "IAR V-1", CompilerType::IARArm_v7_OrOlder},
    {"IarOverflow", "IAR V4294967296", CompilerType::IARArm},
    {"IarCaseCounts", "Iar V7.1", CompilerType::Gcc},
    {"IarBeforeOthers", "clang IAR V8", CompilerType::IARArm},
    {"Xc8", "Microchip MPLAB XC8 C Compiler V2.36\n", CompilerType::XC8},
    {"Xc8Later", " Microchip MPLAB XC8 C Compiler V2.36\n", CompilerType::Gcc},
    {"Nothing", "", CompilerType::Gcc},
};

class NameRules : public testing::TestWithParam<NameCase> {};

class VersionRules : public testing::TestWithParam<VersionCase> {};

} // namespace

TEST_P(NameRules, GiveTheFamilyAsFarAsTheNameTells) {
    const std::optional<FamilyRuling> ruling = FamilyByName(GetParam().path);
    EXPECT_EQ(ruling ? std::optional(ruling->type) : std::nullopt, GetParam().type);
}

TEST_P(VersionRules, GiveTheFamilyByTheFirstRuleThatFires) {
    EXPECT_EQ(FamilyByVersionText(GetParam().text).type, GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(Cases, NameRules, testing::ValuesIn(NameCases), CaseName<NameCase>);
INSTANTIATE_TEST_SUITE_P(Cases, VersionRules, testing::ValuesIn(VersionCases), CaseName<VersionCase>);

namespace {

// Text as a program means it: on Windows it writes line ends of two bytes.
std::string WithoutReturns(std::string text) {
    std::erase(text, '\r');
    return text;
}

class IdentifierTest : public testing::Test {
protected:
    // A copy of the fake compiler, which notes each of its calls beside itself.
    std::string MakeCompiler(const std::string& name, const std::string& version, const std::string& script = "") {
        const std::string path = folder.Write(name, "");
        std::filesystem::copy_file(ORVANTA_FAKE_COMPILER, path, std::filesystem::copy_options::overwrite_existing);
        folder.Write(name + ".version", version);
        folder.Write(name + ".script", script);
        return path;
    }

    std::string Calls(const std::string& name) const {
        return std::filesystem::exists(folder / (name + ".calls")) ? folder.Read(name + ".calls") : "";
    }

    CompilerIdentifier::Result Identify(std::string_view command, const Environment& environment = {},
                                        CompilerIdentifier::Query query = CompilerIdentifier::Query::IfPresent) {
        arguments = Split(command);
        return identifier.IdentifyCompiler(arguments, folder.Path(), environment, query);
    }

    // The lines that verbose output would show, gathered in a log file.
    std::string LogText() const { return folder.Read("log.txt"); }

    TestFolder folder;
    RunSettings settings;
    Log log;
    StopFlag stop;
    CompilerIdentifier identifier{settings, log, stop};
    Words arguments;
};

} // namespace

TEST_F(IdentifierTest, AsksACompilerOnceHoweverItIsNamed) {
    const std::string path = MakeCompiler("bin/mycc", "clang version 99\n");
    const CompilerIdentifier::Result first = Identify(path + " -c a.c");
    const CompilerIdentifier::Result again = Identify(path + " -c b.c");
    const CompilerIdentifier::Result relative = Identify("bin/mycc -c c.c");
    const CompilerIdentifier::Result searched = Identify("mycc -c d.c", {{"PATH", folder / "bin"}});
    EXPECT_EQ(first.compiler->type, CompilerType::Clang);
    EXPECT_EQ(again.compiler, first.compiler);
    EXPECT_EQ(relative.compiler, first.compiler);
    EXPECT_EQ(searched.compiler, first.compiler);
    EXPECT_EQ(Calls("bin/mycc"), "--version\n");
}

// More than some systems start a program with.
TEST_F(IdentifierTest, HoldsWhatIsWrongWithAnInvocationsVariablesAgainstNoOther) {
    const std::string path = MakeCompiler("mycc", "clang version 99\n");
    const CompilerIdentifier::Result first = Identify(path + " -c a.c", {{"HUGE", std::string(1U << 20U, 'x')}});
    EXPECT_TRUE(first.verdict == IdentificationVerdict::Known || first.verdict == IdentificationVerdict::Unusable);
    EXPECT_EQ(Identify(path + " -c b.c").verdict, IdentificationVerdict::Known);
    EXPECT_EQ(Identify(path + " -c c.c").verdict, IdentificationVerdict::Known);
    EXPECT_EQ(Calls("mycc"), "--version\n");
}

TEST_F(IdentifierTest, LooksInTheWorkingDirectoryBeforeTheSearchPath) {
    const std::string here = MakeCompiler("mycc", "here\n");
    (void)MakeCompiler("bin/mycc", "there\n");
    EXPECT_EQ(Identify("mycc -c a.c", {{"PATH", folder / "bin"}}).compiler->path, here);
}

TEST_F(IdentifierTest, TakesTheSearchPathOfTheRunBeforeThatOfTheInvocation) {
    (void)MakeCompiler("one/mycc", "one\n");
    const std::string two = MakeCompiler("two/mycc", "two\n");
    settings.environmentChanges = {{"PATH", folder / "two"}};
    EXPECT_EQ(Identify("mycc -c a.c", {{"PATH", folder / "one"}}).compiler->path, two);
}

TEST_F(IdentifierTest, ReadsTheAnswerOfAFailedQueryFromBothOutputs) {
    log.OpenFile(folder / "log.txt");
    const std::string path = MakeCompiler("mycc", "IAR Compiler\n", "version-stderr V7.1\nversion-exit 3\n");
    const CompilerIdentifier::Result result = Identify(path + " -c a.c");
    EXPECT_EQ(result.compiler->type, CompilerType::IARArm_v7_OrOlder);
    const std::string version = WithoutReturns(result.compiler->version);
    EXPECT_EQ(version, "IAR Compiler\nV7.1\n");
    EXPECT_EQ(WithoutReturns(LogText()), "Compiler at path: '" + path + "' exists=true\n" +
                                             "Compiler version output command returned code 3.\nCommand: " + path +
                                             " --version\nOutput:\n" + version + "\nCompiler family: '" + path +
                                             "' is IAR for ARM before 8\n");
}

TEST_F(IdentifierTest, RunsTheQueryInTheInvocationsEnvironmentWithTheRunsChanges) {
    settings.environmentChanges = {{"SECOND", "run"}};
    const std::string path = MakeCompiler("mycc", "", "version-show-variable FIRST\nversion-show-variable SECOND\n");
    const CompilerIdentifier::Result result = Identify(path, {{"FIRST", "entry"}, {"SECOND", "entry"}});
    EXPECT_EQ(WithoutReturns(result.compiler->version), "entry\nrun\n");
}

TEST_F(IdentifierTest, DoesNotAskAMissingCompilerUnlessToldTo) {
    log.OpenFile(folder / "log.txt");
    for (int i = 0; i < 2; ++i) {
        const CompilerIdentifier::Result missing = Identify("no-such-compiler -c a.c");
        EXPECT_EQ(missing.verdict, IdentificationVerdict::Missing);
        EXPECT_EQ(missing.compiler->path, folder / "no-such-compiler");
    }
    EXPECT_EQ(LogText(), "Compiler at path: '" + (folder / "no-such-compiler") + "' exists=false\n");
    EXPECT_EQ(Identify("no-such-compiler -c a.c", {}, CompilerIdentifier::Query::Always).verdict,
              IdentificationVerdict::Unusable);
    EXPECT_EQ(Identify(HostPath("/nowhere/clang") + " -c a.c", {}, CompilerIdentifier::Query::Always).verdict,
              IdentificationVerdict::Known);
}

TEST_F(IdentifierTest, SaysWhyAProgramCannotBeStarted) {
    const std::string path = folder.Write("mycc", "no program");
    const CompilerIdentifier::Result result = Identify(path + " -c a.c");
    EXPECT_EQ(result.verdict, IdentificationVerdict::Unusable);
    EXPECT_TRUE(result.compiler->fault.starts_with("Couldn't start \"" + path + "\": ")) << result.compiler->fault;
    (void)folder.MakeFolder("folder");
    EXPECT_EQ(Identify(folder / "folder").verdict, IdentificationVerdict::Missing);
}

TEST_F(IdentifierTest, UnwrapsTheLauncherOnlyWhereTheSettingsSaySo) {
    const std::string path = MakeCompiler("mycc", "gcc\n");
    EXPECT_EQ(Identify("/usr/bin/ccache " + path + " -c a.c").verdict, IdentificationVerdict::Launcher);
    EXPECT_EQ(Calls("mycc"), "");

    settings.ignoreCcache = true;
    const CompilerIdentifier::Result result = Identify("/usr/bin/ccache " + path + " -c a.c");
    EXPECT_EQ(result.verdict, IdentificationVerdict::Known);
    EXPECT_TRUE(result.wrapped);
    EXPECT_EQ(result.compiler->path, path);
    EXPECT_EQ(Join(arguments), path + " -c a.c");

    EXPECT_EQ(Identify("ccache.exe " + path).wrapped, false);
    EXPECT_EQ(Identify("ccache").verdict, IdentificationVerdict::Launcher);
    EXPECT_EQ(Identify("ccache no-such-compiler").verdict, IdentificationVerdict::Unusable);
}

// The hanging compiler opens the gate: the stop comes while the query waits for an answer that never comes.
TEST_F(IdentifierTest, GivesUpAQueryWhenTheUserWantsToStop) {
    const std::string path = MakeCompiler("mycc", "", "version-hang\n");
    std::thread user([this] {
        while (!std::filesystem::exists(folder / "version-query.hangs")) {
            std::this_thread::yield();
        }
        stop.Set();
    });
    const CompilerIdentifier::Result result = Identify(path + " -c a.c");
    user.join();
    EXPECT_EQ(result.verdict, IdentificationVerdict::Unknown);
    EXPECT_EQ(result.compiler->path, path);
}

} // namespace Orvanta
