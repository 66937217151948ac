#include "compilers/Gcc.h"

#include "compilers/Qcc.h"
#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

namespace {

struct KeptCase {
    const char* name;
    std::string_view command;
    std::string_view kept;
};

// clang-format off
const KeptCase KeptCases[] = {
    {"OptimisationDebugAndDependencies", "gcc -O2 -g3 -MD -MF deps.d -c a.c", "-c"},
    {"CMake",
     "/usr/bin/c++ -DQ=1 -I/src/inc -isystem /ext -O2 -g -DNDEBUG -std=gnu++17 -MD -MT o/a.o -MF o/a.o.d -o o/a.o "
     "-c a.cpp",
     "-DQ=1 -I/src/inc -isystem /ext -g -DNDEBUG -std=gnu++17 -c"},
    {"Kbuild",
     "gcc -Wp,-MMD,kernel/.fork.o.d -nostdinc -I./inc -include ./inc/k.h -D__KERNEL__ -std=gnu11 -m64 -mno-sse -O2 "
     "--param=allow-store-data-races=0 -Wno-main -DKBUILD_BASENAME='\"fork\"' -c -o kernel/fork.o kernel/fork.c",
     "-nostdinc -I./inc -include ./inc/k.h -D__KERNEL__ -std=gnu11 -m64 -mno-sse --param=allow-store-data-races=0 "
     "-Wno-main -DKBUILD_BASENAME='\"fork\"' -c"},
    {"Libtool",
     "gcc -DHAVE_CONFIG_H -I. -g -O2 -MT a.lo -MD -MP -MF .deps/a.Tpo -c a.c -fPIC -DPIC -o .libs/a.o",
     "-DHAVE_CONFIG_H -I. -g -c -fPIC -DPIC"},
    {"Meson",
     "cc -Ilib/x.p -Ilib -fdiagnostics-color=always -D_FILE_OFFSET_BITS=64 -Wall -O0 -g -fPIC -MD -MQ x.o -MF x.o.d "
     "-o x.o -c ../x.c",
     "-Ilib/x.p -Ilib -fdiagnostics-color=always -D_FILE_OFFSET_BITS=64 -Wall -O0 -g -fPIC -c"},
    {"Bazel",
     "/usr/bin/gcc -U_FORTIFY_SOURCE -MD -MF b/a.d -frandom-seed=b/a.o -iquote . -iquote b/bin "
     "-fno-canonical-system-headers -D__DATE__=\"redacted\" -c a.cc -o b/a.o",
     "-U_FORTIFY_SOURCE -frandom-seed=b/a.o -iquote . -iquote b/bin -fno-canonical-system-headers "
     "-D__DATE__=\"redacted\" -c"},
    {"CMakePrecompiledHeader",
     "g++ -Winvalid-pch -include /b/cmake_pch.hxx -o a.o -c a.cpp",
     "-Winvalid-pch -include /b/cmake_pch.hxx -c"},
    {"LinkInputs", "gcc a.c b.o libx.a -lm -L. -Wl,-z,now -o prog", "-lm -L. -Wl,-z,now"},
    {"OtherSources", "gcc -c -Ia a.c b.c -Ib c.c", "-c -Ia -Ib"},
    {"LaterLanguage", "gcc -c -x c++ a.inc -x c b.inc -DA", "-c -x c++ -DA"},
    {"StageFlags", "gcc -c -S -P -C -v -H -save-temps=obj a.c", "-c -S"},
    {"LongForms",
     "gcc --include-directory=i --define-macro A --undefine-macro=B --output=x.o --std=c11 --compile a.c",
     "--include-directory=i --define-macro A --undefine-macro=B --std=c11"},
    {"TwoDashes", "gcc -c -DA -- a.c", "-c -DA"},
    {"ListWithOneKept", "gcc -Wp,-MD,x.d,-DA,-I,inc,-MT,t -c a.c", "-Wp,-DA -Wp,-I,inc -c"},
    {"ListKeptWhole", "gcc -Wp,-D_FORTIFY_SOURCE=2 -Wpedantic -c a.c", "-Wp,-D_FORTIFY_SOURCE=2 -Wpedantic -c"},
    {"HandedOn", "gcc -Xpreprocessor -MD -Xpreprocessor x.d -Xpreprocessor -DA -c a.c", "-Xpreprocessor -DA -c"},
    {"PreprocessedC", "gcc -c a.i", "-c -x c"},
    {"PreprocessedByStatedLanguage", "gcc -x c++-cpp-output -c a.txt", "-x c++-cpp-output -c -x c++"},
    {"PreprocessedByCppDriver", "/usr/bin/x86_64-linux-gnu-g++-12 -c a.i", "-c -x c++"},
};

// clang-format on

class GccKept : public testing::TestWithParam<KeptCase> {};

} // namespace

TEST_P(GccKept, HoldsWhatPreprocessingNeeds) {
    EXPECT_EQ(Join(ReadAs<Gcc>(GetParam().command).keptArguments), GetParam().kept);
}

INSTANTIATE_TEST_SUITE_P(Cases, GccKept, testing::ValuesIn(KeptCases), CaseName<KeptCase>);

TEST(Gcc, ReadsValuesGluedSeparateAndOutOfLists) {
    const ParsedCommand command =
        ReadAs<Gcc>("gcc -Ia -I b -iquote q -isystem s -isystemt -idirafter u --sysroot=/x --sysroot /y -isysroot /z "
                    "-DA -D B=1 -Wp,-DC,-Ip,-isystem,v -include f.h -includeg.h -o first.o -olast.o -c a.c");
    EXPECT_EQ(Join(command.userIncludes), "a b q p");
    EXPECT_EQ(Join(command.systemIncludes), "s t u /x /y /z v");
    EXPECT_EQ(Join(command.defines), "A B=1 C");
    EXPECT_EQ(Join(command.forcedIncludes), "f.h g.h");
    EXPECT_EQ(command.outputFile, "last.o");
    EXPECT_EQ(command.sourceFile, "a.c");
    EXPECT_EQ(command.compilerPath, "gcc");
    EXPECT_EQ(command.compilerType, CompilerType::Gcc);
}

namespace {

struct StandardCase {
    const char* name;
    std::string_view command;
    std::string_view c; // the core's words, "" when the command gives none
    std::string_view cpp;
};

const StandardCase StandardCases[] = {
    {"None", "gcc -c a.c", "", ""},
    {"Gnu17", "gcc -std=gnu17 -c a.c", "c17", ""},
    {"Gnu18Unknown", "gcc -std=gnu18 -c a.c", "", ""},
    {"Gnu1xUnknown", "gcc -std=gnu1x -c a.c", "", ""},
    {"UnknownHidesEarlier", "g++ -std=c++17 -std=gnu++23 -c a.cpp", "", ""},
    {"C2x", "gcc -std=c2x -c a.c", "c20", ""},
    {"Amendment1", "gcc -std=iso9899:199409 -c a.c", "c90", ""},
    {"LastWins", "gcc -std=c99 -std=c11 -c a.c", "c11", ""},
    {"OneOfEach", "gcc -std=c99 --std=c++14 -c a.c", "c99", "c++14"},
    {"Ansi", "gcc -ansi -c a.c", "c90", "c++98"},
    {"AnsiThenC11", "gcc -ansi -std=c11 -c a.c", "c11", "c++98"},
    {"ValueInTheNextWord", "gcc --std c99 --machine 32 -c a.c", "c99", ""},
    {"Concepts", "g++ -std=c++17 -fconcepts -c a.cpp", "", "c++20"},
};

class GccStandard : public testing::TestWithParam<StandardCase> {};

std::string_view WordOf(std::optional<FlagKind> standard, Language language) {
    return standard ? StandardWord(*standard, language) : std::string_view();
}

} // namespace

TEST_P(GccStandard, IsOneForEachLanguage) {
    const ParsedCommand command = ReadAs<Gcc>(GetParam().command);
    EXPECT_EQ(WordOf(command.cStandard, Language::C), GetParam().c);
    EXPECT_EQ(WordOf(command.cppStandard, Language::Cpp), GetParam().cpp);
}

INSTANTIATE_TEST_SUITE_P(Cases, GccStandard, testing::ValuesIn(StandardCases), CaseName<StandardCase>);

TEST(Gcc, StatesALanguageOnlyWhenTheCommandDoes) {
    EXPECT_EQ(ReadAs<Gcc>("g++ -c a.c").language, std::nullopt);
    EXPECT_EQ(ReadAs<Gcc>("gcc -x c++ -c a.c").language, Language::Cpp);
    EXPECT_EQ(ReadAs<Gcc>("gcc -xc -c a.cpp").language, Language::C);
    EXPECT_EQ(ReadAs<Gcc>("gcc -x c++ -x none -c a.c -x c++").language, std::nullopt);
}

TEST(Gcc, TakesTargetAndCharacterSignFromTheirFlags) {
    EXPECT_EQ(ReadAs<Gcc>("gcc -c a.c").platformWord, "");
    EXPECT_EQ(ReadAs<Gcc>("gcc -m64 -m32 -c a.c").platformWord, "linux32");
    EXPECT_EQ(ReadAs<Gcc>("gcc -m64 -c a.c").platformWord, "linux64");
    EXPECT_TRUE(ReadAs<Gcc>("gcc -funsigned-char -fsigned-char -c a.c").unsignedChar);
    EXPECT_FALSE(ReadAs<Gcc>("gcc -fno-signed-char -c a.c").unsignedChar);
}

TEST(Gcc, TellsTheFilesThatFlagsName) {
    std::string files = Join(FilesNamedByFlags(
        ReadAs<Gcc>("gcc -imacros m.h -specs=nano.specs -B /b -Bt -fplugin=p.so --config=c.cfg -Xclang -ivfsoverlay "
                    "-Xclang v.yaml -I i -include f.h -MF d -T link.ld -c a.c")));
    std::replace(files.begin(), files.end(), '\\', '/');
    EXPECT_EQ(files, "m.h p.so c.cfg v.yaml /b/specs t/specs /b/nano.specs t/nano.specs nano.specs");
    EXPECT_EQ(Join(FilesNamedByFlags(ReadAs<Gcc>("gcc -O2 -c a.c"))), "");
}

TEST(Gcc, ReadsEachOfSeveralSourcesByItself) {
    const Gcc model;
    const Words words = Split("gcc -DA -c a.c -x c++ b.txt");
    const InvocationOutline outline = OutlineInvocation(model, words);
    ASSERT_EQ(outline.sources.size(), 2U);
    const ParsedCommand second = ReadCommandLine(model, words, outline.sources[1]);
    EXPECT_EQ(second.sourceFile, "b.txt");
    EXPECT_EQ(Join(second.keptArguments), "-DA -c -x c++");
    EXPECT_EQ(second.language, Language::Cpp);
}

TEST(Gcc, BuildsThePreprocessingCommandInItsOrder) {
    ParsedCommand command = ReadAs<Gcc>("gcc -DA -O2 -c a.c -Ib -o a.o");
    command.invocationPrefix = {"env", "-i"};
    command.compilerPath = "/usr/bin/gcc";
    EXPECT_EQ(Gcc().BuildPreprocessCommand(command, "/t/a.i"),
              Words({"env", "-i", "/usr/bin/gcc", "-DA", "-c", "-Ib", "-w", "-E", "-o", "/t/a.i", "a.c"}));

    EXPECT_EQ(Qcc().BuildPreprocessCommand(command, "/t/a.i"),
              Words({"env", "-i", "/usr/bin/gcc", "-DA", "-c", "-Ib", "-w", "-P", "-o", "/t/a.i", "a.c"}));
}

TEST(Gcc, GivesASourceThatLooksLikeAnOptionWithItsFolder) {
    EXPECT_EQ(Gcc().BuildPreprocessCommand(ReadAs<Gcc>("gcc -c -- -a.c"), "a.i").back(), "./-a.c");
}

} // namespace Orvanta
