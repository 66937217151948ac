#include "compilers/ClangCl.h"

#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

#include <iterator>

namespace Orvanta {

namespace {

// A stated target, so that no compiler is started.
const std::string Compiler64 = "clang-cl --target=x86_64-pc-windows-msvc ";
constexpr std::string_view Target64 = "--target=x86_64-pc-windows-msvc";

struct KeptCase {
    const char* name;
    const char* flags;
    const char* kept;
};

const KeptCase KeptCases[] = {
    {"FlagsOfCl", "/nologo -DA /I inc /Fo: a.obj /O2 -Zi /Yupch.h", "/nologo -DA /I inc"},
    {"SystemFolders", "/imsvc s -imsvct /winsysroot w", "/imsvc s -imsvct /winsysroot w"},
    {"FrontEndPairs", "-Xclang -include -Xclang f.h -Xclang -fsome", "-Xclang -include -Xclang f.h -Xclang -fsome"},
    {"DependencyFiles", "-clang:-MD -clang:-MTa.obj -clang:-MFa.d -clang:-MF /clang:-MMD", ""},
    {"DependencyFilesSeparate", "/clang:-MD /clang:-MF /clang:a.d /clang:-DX", "/clang:-DX"},
    {"Driver", "/clang:-O2 /clang:-fwrapv /clang:-isystem /clang:s", "/clang:-fwrapv /clang:-isystem /clang:s"},
    {"StrictWarnings", "-Wall -Werror -Werror=switch -Wno-unused", "-Wall -Wno-unused"},
    {"ValuesThatAreNoSources", "-mllvm x.c -resource-dir y.c", "-mllvm x.c -resource-dir y.c"},
};

class ClangClKept : public testing::TestWithParam<KeptCase> {};

} // namespace

TEST_P(ClangClKept, HoldsWhatPreprocessingNeeds) {
    const ParsedCommand command = ReadAs<ClangCl>(Compiler64 + GetParam().flags + " -- a.cpp");
    std::string expected(Target64);
    if (*GetParam().kept != '\0') {
        expected.append(" ").append(GetParam().kept);
    }
    EXPECT_EQ(Join(command.keptArguments), expected);
    EXPECT_EQ(command.sourceFile, "a.cpp");
}

INSTANTIATE_TEST_SUITE_P(Cases, ClangClKept, testing::ValuesIn(KeptCases), CaseName<KeptCase>);

TEST(ClangCl, ReadsWhatIsHandedOnAsClangDoes) {
    const ParsedCommand command =
        ReadAs<ClangCl>(Compiler64 + "/clang:-std=c++20 /clang:-isystem /clang:s /clang:-DA=1 -Xclang -include "
                                     "-Xclang f.h /clang:-funsigned-char /c a.cpp");
    EXPECT_EQ(command.cppStandard, FlagKind::StandardCpp20);
    EXPECT_EQ(Join(command.systemIncludes), "s");
    EXPECT_EQ(Join(command.defines), "A=1");
    EXPECT_EQ(Join(command.forcedIncludes), "f.h");
    EXPECT_TRUE(command.unsignedChar);
}

TEST(ClangCl, TakesTheTargetFromItsFlags) {
    const std::pair<const char*, const char*> cases[] = {
        {"-m32", "Win32"},
        {"/m64", "x64"},
        {"-m32 -m64", "x64"},
        {"--target=i686-pc-windows-msvc", "Win32"},
        {"--target=aarch64-pc-windows-msvc", "x64"},
        {"--target=i686-pc-windows-msvc --target=x86_64-msvc", "x64"},
        {"--target=x86_64-pc-windows-msvc /clang:-m32", "Win32"},
        {"/clang:--target=i686-pc-windows-msvc", "Win32"},
    };
    for (const auto& [flags, platform] : cases) {
        EXPECT_EQ(ReadAs<ClangCl>(std::string("clang-cl ") + flags + " a.c").platformWord, platform) << flags;
    }
}

// Without the dashes, the driver would take a path from the root for a flag.
TEST(ClangCl, GivesASourceThatLooksLikeAFlagBehindDashes) {
    const ClangCl model;
    const std::pair<const char*, const char*> cases[] = {
        {"/home/me/a.c", "/Fi/t/a.i -- /home/me/a.c"},
        {"-a.c", "/Fi/t/a.i -- -a.c"},
        {"@a.c", "/Fi/t/a.i ./@a.c"},
        {"src/a.c", "/Fi/t/a.i src/a.c"},
        {"C:\\src\\a.c", "/Fi/t/a.i C:\\src\\a.c"},
    };
    for (const auto& [source, end] : cases) {
        ParsedCommand command;
        command.compilerPath = "clang-cl";
        command.sourceFile = source;
        EXPECT_EQ(Join(model.BuildPreprocessCommand(command, "/t/a.i")), std::string("clang-cl /P ") + end);
    }
}

TEST(ClangCl, ReadsAPreprocessedSourceAsPlainText) {
    const ParsedCommand command = ReadAs<ClangCl>(Compiler64 + "/c a.ii");
    EXPECT_EQ(command.keptArguments.back(), "/TP");
    EXPECT_EQ(command.language, Language::Cpp);
}

} // namespace Orvanta
