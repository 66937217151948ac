#include "compilers/CommandLineReader.h"

#include "compilers/Gcc.h"
#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Orvanta {

namespace {

// The sources of an outline as the command writes them.
std::string SourcesOf(const Compiler& model, const Words& words) {
    Words sources;
    for (const SourceArgument& source : OutlineInvocation(model, words).sources) {
        sources.push_back(words[source.index].substr(source.offset));
    }
    return Join(sources);
}

struct SourceCase {
    const char* name;
    std::string_view command;
    std::string_view sources;
};

// clang-format off
const SourceCase SourceCases[] = {
    {"CompileOnly", "gcc -c a.c -o a.o", "a.c"},
    {"CompileAndLink", "g++ a.cpp b.o -lm -o a", "a.cpp"},
    {"Several", "gcc -c b.c a.c sub/b.c", "b.c a.c sub/b.c"},
    {"EveryExtension", "g++ -c a.c b.cc c.cp d.cxx e.cpp f.CPP g.c++ h.C",
     "a.c b.cc c.cp d.cxx e.cpp f.CPP g.c++ h.C"},
    {"Preprocessed", "gcc -c a.i b.ii", "a.i b.ii"},
    {"ToAssembly", "gcc -S a.c", "a.c"},
    {"SyntaxOnly", "gcc -fsyntax-only a.c", "a.c"},
    {"AfterTwoDashes", "gcc -c -- a.c -b.c", "a.c -b.c"},
    {"StatedLanguage", "gcc -c -x c++ a.inc b -x c odd.txt", "a.inc b odd.txt"},
    {"StatedLanguageEnds", "gcc -c -xc a.inc -x none b.inc c.c", "a.inc c.c"},
    {"LanguageLongForm", "gcc -c --language=c++ a.inc", "a.inc"},
    {"ProcessorWordIsNoLanguage", "icc -xHost -c a.c", "a.c"},
    {"HeaderBesideSource", "gcc -c a.h b.c", "b.c"},
    {"VerboseCompilation", "gcc -v -c a.c", "a.c"},
};

// clang-format on

struct ValueCase {
    const char* name;
    std::string_view command;
};

// clang-format off
// Each command compiles a.c; every other file in it belongs to a flag.
const ValueCase ValueCases[] = {
    {"OutputIsNoInput", "gcc -o x.c -c a.c"},
    {"ForcedIncludeIsNoInput", "gcc -include pre.c -imacros m.c -c a.c"},
    {"DependencyValues", "gcc -MD -MF d.c -MT t.c -MQ q.c -c a.c"},
    {"LinkerValues", "gcc -Xlinker x.c -T s.c -u u.c -L l.c -z z.c a.c"},
    {"AssemblerValue", "gcc -Xassembler x.c -c a.c"},
    {"TuningValues", "gcc --param p.c -arch x.c -target t.c -c a.c"},
    {"ClangValues", "clang -mllvm x.c -Xclang y.c -include-pch p.c -serialize-diagnostics d.c -MJ j.c -c a.c"},
    {"FolderValues", "gcc -I i.c -isystem s.c -iquote q.c --sysroot r.c -B b.c -c a.c"},
    {"MacroValues", "gcc -D d.c -U u.c -A a=b.c -c a.c"},
    {"SeveralValues", "clang -sectcreate x.c y.c z.c -segaddr s.c t.c -Xarch_arm u.c -Xopenmp-target=a v.c -c a.c"},
    {"ValuesOfLongNames", "gcc --for-linker l.c --assert x.c --prefix p.c --include-with-prefix-after i.c -c a.c"},
    {"DumpValues", "gcc -dumpbase b.c -dumpdir d.c -aux-info x.c -c a.c"},
    {"PieceIsNoInput", "gcc -Wp,-MMD,dep.c -Wl,x.c -Wa,y.c -c a.c"},
    {"ValueMissingAtTheEnd", "gcc -c a.c -o"},
    {"HandedOnMissing", "clang -c a.c -Xclang"},
};

// clang-format on

struct ReasonCase {
    const char* name;
    std::string_view command;
    std::string_view reason;
};

// clang-format off
const ReasonCase ReasonCases[] = {
    {"Objects", "gcc a.o b.o libc.a -o prog", "link only"},
    {"VersionedLibrary", "gcc libz.so.1.2 -shared -o libq.so", "link only"},
    {"WordOfATemplate", "gcc a.o @VERSION@ -o prog", "link only"},
    {"StatedLanguageEnded", "gcc -xc++ -xnone main.o -o prog", "link only"},
    {"AssemblyFile", "gcc -c a.S", "assembly"},
    {"StatedAssembly", "gcc -c -x assembler-with-cpp a.c", "assembly"},
    {"StandardInput", "gcc -c -x c - -o a.o", "reads standard input"},
    {"StandardInputAfterTwoDashes", "gcc -c -x c -- -", "reads standard input"},
    {"Preprocessing", "gcc -E a.c -o a.i", "preprocessing only"},
    {"PreprocessingLong", "gcc --preprocess a.c", "preprocessing only"},
    {"PreprocessingBeatsCompiling", "gcc -E -c a.c", "preprocessing only"},
    {"DependenciesBeatCompiling", "gcc -c -MM a.c", "dependencies only"},
    {"FlagTest", "gcc -Wfoo -c -x c /dev/null -o a.o", "a test of flags"},
    {"StandardInputByItsName", "gcc -c -x c /dev/stdin", "reads standard input"},
    {"Macros", "gcc -dM -E -x c /dev/null", "preprocessing only"},
    {"Dependencies", "gcc -M a.c", "dependencies only"},
    {"UserDependencies", "g++ -MM -MF a.d -MT a.o a.cpp", "dependencies only"},
    {"DependenciesInList", "gcc -Wp,-M a.c", "dependencies only"},
    {"Version", "gcc --version", "prints information only"},
    {"VersionWithSource", "gcc -c a.c --version", "prints information only"},
    {"DryRun", "gcc -### -c a.c", "prints information only"},
    {"Question", "gcc -print-file-name=libstdc++.so", "prints information only"},
    {"Help", "gcc --help=optimizers", "prints information only"},
    {"VerboseAlone", "gcc -v", "prints information only"},
    {"HeaderByExtension", "g++ -c pch.h -o pch.h.gch", "precompiled header"},
    {"HeaderByLanguage", "g++ -x c++-header -c cmake_pch.hxx.cxx -o cmake_pch.hxx.gch", "precompiled header"},
    {"HeaderByFrontEnd", "clang++ -Xclang -emit-pch -Xclang -include -Xclang p.hxx -c p.hxx.cxx", "precompiled header"},
    {"OtherLanguage", "gcc -c a.m b.f90", "no C or C++ source"},
    {"UnknownCompiled", "gcc -c notes.txt", "no C or C++ source"},
    {"Nothing", "gcc -lm -O2", "no input"},
    {"CompilerAlone", "gcc", "no input"},
};

// clang-format on

class OutlineSources : public testing::TestWithParam<SourceCase> {};

class OutlineValues : public testing::TestWithParam<ValueCase> {};

class OutlineReason : public testing::TestWithParam<ReasonCase> {};

} // namespace

TEST_P(OutlineSources, AreTheFilesThatTheInvocationCompiles) {
    const Gcc model;
    const Words words = Split(GetParam().command);
    EXPECT_EQ(SourcesOf(model, words), GetParam().sources) << OutlineInvocation(model, words).reason;
}

TEST_P(OutlineValues, AreNoInputs) {
    EXPECT_EQ(SourcesOf(Gcc(), Split(GetParam().command)), "a.c");
}

TEST_P(OutlineReason, SaysWhyNothingIsCompiled) {
    const InvocationOutline outline = OutlineInvocation(Gcc(), Split(GetParam().command));
    EXPECT_EQ(outline.reason, GetParam().reason);
    EXPECT_TRUE(outline.sources.empty());
}

INSTANTIATE_TEST_SUITE_P(Cases, OutlineSources, testing::ValuesIn(SourceCases), CaseName<SourceCase>);
INSTANTIATE_TEST_SUITE_P(Cases, OutlineValues, testing::ValuesIn(ValueCases), CaseName<ValueCase>);
INSTANTIATE_TEST_SUITE_P(Cases, OutlineReason, testing::ValuesIn(ReasonCases), CaseName<ReasonCase>);

namespace {

// A family with flags that name a source of a given language and open the linker's part.
class SlashFamily : public Compiler {
public:
    SlashFamily() : Compiler(CompilerType::Cl, "slash", Introducers, FlagTable({Rows})) {}

    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override {
        return {command.compilerPath, outputPath};
    }

private:
    static constexpr std::string_view Introducers[] = {"-", "/"};
    static constexpr FlagRow Rows[] = {
        {"Tc", FlagKind::SourceOfLanguage, FlagEffect::NamesC},
        {"Tp", FlagKind::SourceOfLanguage, FlagEffect::NamesCpp},
        {"link", FlagKind::LinkerPart},
    };
};

} // namespace

TEST(OutlineInvocation, TakesSourcesOutOfFlagsAndStopsAtTheLinkersPart) {
    EXPECT_EQ(SourcesOf(SlashFamily(), Split("cl -c /Tcone.txt /Tp two.txt /link three.c")), "one.txt two.txt");
}

TEST(ReadCommandLine, TakesTheLanguageOfASourceNamedByAFlag) {
    const SlashFamily model;
    const Words words = Split("cl -c /Tcone.txt /Tp two.txt");
    const InvocationOutline outline = OutlineInvocation(model, words);
    ASSERT_EQ(outline.sources.size(), 2U);
    const ParsedCommand first = ReadCommandLine(model, words, outline.sources[0]);
    const ParsedCommand second = ReadCommandLine(model, words, outline.sources[1]);
    EXPECT_EQ(first.sourceFile, "one.txt");
    EXPECT_EQ(first.language, Language::C);
    EXPECT_EQ(second.sourceFile, "two.txt");
    EXPECT_EQ(second.language, Language::Cpp);
}

// Compilers fail on them; a flag's value may begin with the same sign.
TEST(OutlineInvocation, TellsOfAResponseFileThatIsNotThere) {
    const Gcc model;
    const Words missing = Split("gcc -c a.c -install_name @rpath/x @gone.rsp");
    EXPECT_EQ(OutlineInvocation(model, missing).missingResponseFile, 5U);
    EXPECT_EQ(OutlineInvocation(model, Split("gcc -c a@b.c @VERSION@ -Wl,-rpath,@loader_path")).missingResponseFile,
              std::nullopt);
}

} // namespace Orvanta
