#include "compilers/Cl.h"

#include "compilers/CompilerTarget.h"
#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

#include <optional>

namespace Orvanta {

namespace {

// A place that tells the target, so that no compiler is started.
const std::string X64 = "/VC/Tools/MSVC/14.29/bin/Hostx64/x64/cl ";
const std::string X86 = "/VC/Tools/MSVC/14.29/bin/Hostx64/x86/cl ";

struct KeptCase {
    const char* name;
    const char* flags;
    const char* kept;
};

const KeptCase KeptCases[] = {
    {"BothIntroducers", "/DA -DB /EHsc -GR-", "/DA -DB /EHsc -GR-"},
    {"ValuesGluedAndSeparate", "/I a /Ib /D X=1 /DY /U Z /UW /FI f.h /FIg.h",
     "/I a /Ib /D X=1 /DY /U Z /UW /FI f.h /FIg.h"},
    {"SystemFolders", "/external:I s /external:It /external:W0", "/external:I s /external:It /external:W0"},
    {"OutputsGlued", "/Foa.obj /Fdp.pdb /Fea.exe /Fa /Fal.asm /Fm /FR /Fria.sbr /FAcs", ""},
    {"OutputsBehindAColon", "/Fo: o.obj /Fd:p.pdb /Fe: a.exe /Fi: i.i /Fp: x.pch", ""},
    {"PrecompiledHeaders", "/Ycpch.h /Yupch.h /Yu /Y- /Fpx.pch /FIpch.h", "/FIpch.h"},
    {"Dependencies", "/showIncludes /sourceDependencies d.json /sourceDependenciesd.json", ""},
    {"DebuggingAndCode", "/Zi /ZI /Z7 /FS /Gm- /MP /MP4 /O2 /Od /Ob1 /Oy- /F 1000", ""},
    {"StrictWarnings", "/W4 /WX /WX- /we4700 /wd4996 /w", "/W4 /wd4996 /w"},
    {"PreprocessedText", "/C /PD /d1PP", ""},
    {"Language", "/permissive- /Za /Ze /Zc:inline /J /await /std:c++17",
     "/permissive- /Za /Ze /Zc:inline /J /await /std:c++17"},
    {"RuntimeLibrary", "/MD /MDd /MT /LD /RTC1 /GL /nologo", "/MD /MDd /MT /LD /RTC1 /GL /nologo"},
    {"NamesThatBeginAlike", "/FC /FAsu /FD /openmp /openmp:llvm /options:strict /diagnostics:caret",
     "/FC /openmp /openmp:llvm /options:strict /diagnostics:caret"},
    {"ValuesThatAreNoSources", "/AI m.cpp /FU n.cpp /reference o.cpp /analyze:log p.cpp",
     "/AI m.cpp /FU n.cpp /reference o.cpp"},
};

class ClKept : public testing::TestWithParam<KeptCase> {};

struct OutlineCase {
    const char* name;
    const char* words;
    const char* sources;
    const char* reason;
};

const OutlineCase OutlineCases[] = {
    {"WithoutC", "a.cpp", "a.cpp", ""},
    {"CaseOfExtensions", "/c A.CPP b.Cxx c.C D.Cc", "A.CPP b.Cxx c.C D.Cc", ""},
    {"SourceOfLanguage", "/c /Tca.x /Tp b.y c.x", "a.x b.y", ""},
    {"AllOfOneLanguage", "/c a.x b.obj c.LIB /TP", "a.x", ""},
    {"LinkersPart", "a.cpp /link b.cpp /out:a.exe", "a.cpp", ""},
    {"ObjectBehindALoneFo", "/c /Fo a.cpp", "a.cpp", ""},
    {"ObjectsOnly", "a.obj b.lib", "", "link only"},
    {"Preprocessing", "/c /P a.cpp", "", "preprocessing only"},
    {"PreprocessingToOutput", "/EP a.cpp", "", "preprocessing only"},
    {"PreprocessingWithoutMarkers", "/E /c a.cpp", "", "preprocessing only"},
    {"Dependencies", "/scanDependencies d.json a.cpp", "", "dependencies only"},
    {"Help", "/?", "", "prints information only"},
    {"PathLikeAFlag", "/c /home/me/a.c", "/home/me/a.c", ""},
    {"PathBehindDashes", "/c -- /Users/me/a.c", "/Users/me/a.c", ""},
    {"PathTakenForAFlag", "/c /Users/me/a.c", "", "no input"},
};

class ClOutline : public testing::TestWithParam<OutlineCase> {};

struct StandardCase {
    const char* flags;
    std::optional<FlagKind> c;
    std::optional<FlagKind> cpp;
};

constexpr std::optional<FlagKind> None;

const StandardCase StandardCases[] = {
    {"", None, None},
    {"/std:c++14", None, FlagKind::StandardCpp14},
    {"-std:c++17", None, FlagKind::StandardCpp17},
    {"/std:c++20", None, FlagKind::StandardCpp20},
    {"/std:c++latest", None, FlagKind::StandardCpp20},
    {"/std:c11", FlagKind::StandardC11, None},
    {"/std:c17 /std:c++17", FlagKind::StandardC17, FlagKind::StandardCpp17},
    {"/std:clatest", FlagKind::StandardC2x, None},
    {"/std:c++17 /std:c++23preview", None, None},
};

struct TargetCase {
    const char* text;
    std::optional<TargetBits> bits;
};

} // namespace

TEST_P(ClKept, HoldsWhatPreprocessingNeeds) {
    const ParsedCommand command = ReadAs<Cl>(X64 + GetParam().flags + " a.cpp");
    EXPECT_EQ(Join(command.keptArguments), GetParam().kept);
    EXPECT_EQ(command.sourceFile, "a.cpp");
}

INSTANTIATE_TEST_SUITE_P(Cases, ClKept, testing::ValuesIn(KeptCases), CaseName<KeptCase>);

TEST_P(ClOutline, TellsSourcesFromTheRest) {
    const Cl model;
    const Words words = Split(X64 + GetParam().words);
    const InvocationOutline outline = OutlineInvocation(model, words);
    Words sources;
    for (const SourceArgument& source : outline.sources) {
        sources.push_back(words[source.index].substr(source.offset));
    }
    EXPECT_EQ(Join(sources), GetParam().sources);
    EXPECT_EQ(outline.reason, GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(Cases, ClOutline, testing::ValuesIn(OutlineCases), CaseName<OutlineCase>);

TEST(Cl, TakesStandardsOfBothLanguages) {
    for (const StandardCase& row : StandardCases) {
        const ParsedCommand command = ReadAs<Cl>(X64 + row.flags + " a.cpp");
        EXPECT_EQ(command.cStandard, row.c) << row.flags;
        EXPECT_EQ(command.cppStandard, row.cpp) << row.flags;
    }
}

TEST(Cl, SortsFoldersMacrosAndOutput) {
    const ParsedCommand command =
        ReadAs<Cl>(X64 + "/I a -Ib /external:Is /D A=1 /DB /FIf.h /FI g.h /Foout/a.obj /c a.cpp");
    EXPECT_EQ(Join(command.userIncludes), "a b");
    EXPECT_EQ(Join(command.systemIncludes), "s");
    EXPECT_EQ(Join(command.defines), "A=1 B");
    EXPECT_EQ(Join(command.forcedIncludes), "f.h g.h");
    EXPECT_EQ(command.outputFile, "out/a.obj");
}

// The source stands bare in the preprocessing command: what named its language is said again.
TEST(Cl, SaysAStatedLanguageAgain) {
    const std::pair<const char*, const char*> cases[] = {
        {"/Tca.x", "/TC"},     {"/Tp a.c", "/TP"},    {"a.cpp /TC", "/TC"}, {"/TC /TP a.c", "/TP"},
        {"/TC /Tpa.c", "/TP"}, {"a.c /link /TP", ""}, {"/D N a.c", "/D N"},
    };
    for (const auto& [words, kept] : cases) {
        const ParsedCommand command = ReadAs<Cl>(X64 + words);
        EXPECT_EQ(Join(command.keptArguments), kept) << words;
        EXPECT_EQ(command.language.has_value(), std::string_view(kept).starts_with("/T")) << words;
    }
    EXPECT_EQ(ReadAs<Cl>(X64 + "/Tca.x").language, Language::C);
}

TEST(Cl, BuildsThePreprocessingCommandInItsOrder) {
    const Cl model;
    ParsedCommand command = ReadAs<Cl>("cl /nologo /c /DX /Foa.obj a.cpp");
    command.invocationPrefix = {"wrapper"};
    EXPECT_EQ(Join(model.BuildPreprocessCommand(command, "/t/a.i")), "wrapper cl /nologo /c /DX /P /Fi/t/a.i a.cpp");
    command.sourceFile = "-a.cpp";
    EXPECT_EQ(model.BuildPreprocessCommand(command, "/t/a.i").back(), "./-a.cpp");
}

TEST(Cl, TakesTargetAndSwitchesFromPathAndFlags) {
    const ParsedCommand plain = ReadAs<Cl>(X64 + "a.cpp");
    EXPECT_EQ(plain.platformWord, "x64");
    EXPECT_FALSE(plain.unsignedChar);
    EXPECT_FALSE(plain.effects.Has(FlagEffect::Coroutines));
    const ParsedCommand other = ReadAs<Cl>(X86 + "-J /await:strict a.cpp");
    EXPECT_EQ(other.platformWord, "Win32");
    EXPECT_TRUE(other.unsignedChar);
    EXPECT_TRUE(other.effects.Has(FlagEffect::Coroutines));
    EXPECT_FALSE(ReadAs<Cl>(X64 + "a.cpp /link /J").unsignedChar);
}

TEST(CompilerTarget, IsToldByTheCompilersPlace) {
    const TargetCase cases[] = {
        {R"(C:\VS\VC\Tools\MSVC\14.29\bin\Hostx64\x64\cl.exe)", TargetBits::Bits64},
        {R"(C:\VS\VC\Tools\MSVC\14.29\bin\HostX86\X64\cl.exe)", TargetBits::Bits64},
        {R"(C:\VS\VC\Tools\MSVC\14.29\bin\Hostx64\x86\cl.exe)", TargetBits::Bits32},
        {R"(C:\VS\VC\Tools\MSVC\14.29\bin\Hostx64\arm64\cl.exe)", TargetBits::Bits64},
        {R"(C:\VS 14.0\VC\bin\cl.exe)", TargetBits::Bits32},
        {R"(C:\VS 14.0\VC\BIN\amd64\cl.exe)", TargetBits::Bits64},
        {R"(C:\VS 14.0\VC\bin\amd64_x86\cl.exe)", TargetBits::Bits32},
        {R"(C:\VS 14.0\VC\bin\x86_amd64\cl.exe)", TargetBits::Bits64},
        {"/opt/msvc/bin/x64/cl", TargetBits::Bits64},
        {"/usr/bin/cl", std::nullopt},
        {R"(C:\x64\tools\cl.exe)", std::nullopt},
        {"cl", std::nullopt},
    };
    for (const TargetCase& row : cases) {
        EXPECT_EQ(TargetByCompilerPath(row.text), row.bits) << row.text;
    }
}

TEST(CompilerTarget, IsToldByTheBanner) {
    const TargetCase cases[] = {
        {"Microsoft (R) C/C++ Optimizing Compiler Version 19.29.30133 for x64\r\n", TargetBits::Bits64},
        {"Microsoft (R) C/C++ Optimizing Compiler Version 19.29.30133 for x86\r\n", TargetBits::Bits32},
        {"Microsoft (R) 32-bit C/C++ Optimizing Compiler Version 13.10.3077 for 80x86", TargetBits::Bits32},
        {"Compilador de optimizaci\xc3\xb3n de C/C++ versi\xc3\xb3n 19.16 para ARM64\n", TargetBits::Bits64},
        {"clang version 14.0.6\nTarget: x86_64-pc-windows-msvc\nThread model: posix\n", TargetBits::Bits64},
        {"clang version 14.0.6\nTarget: i386-pc-windows-msvc\nInstalledDir: /x64\n", TargetBits::Bits32},
        {"no word of it", std::nullopt},
        {"", std::nullopt},
    };
    for (const TargetCase& row : cases) {
        EXPECT_EQ(TargetByVersionText(row.text), row.bits) << row.text;
    }
}

} // namespace Orvanta
