// Guards against a family whose command lines are recognised but misread: a core that is told the wrong language,
// standard, target or sign of plain char, folders or macros that get lost, words that the compiler refuses.

#include "e2e/families/FamilyProject.h"
#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

class FamiliesTest : public SandboxTest {};

TEST_F(FamiliesTest, MixedDatabaseIsReadAsItsCompilersDo) {
    const std::vector<FamilyUnit> units = WriteFamilyProject(sandbox);
    ASSERT_GE(units.size(), 120U);
    for (const FamilyUnit& unit : units) {
        sandbox.AddEntry({unit.command, unit.directory});
    }
    const RunResult result = sandbox.Analyze({"--verbose", "-j", "2"});
    ExpectFamilyUnits(sandbox, units, result);
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

// The size of floating-point types is a matter of XC8 alone.
TEST_F(FamiliesTest, CoreIsToldOfXC8sFloatingPointFlags) {
    const std::string compiler =
        sandbox.AddCompiler("xc8-cc", "Microchip MPLAB XC8 C Compiler V2.40\n", "strict xc8\n");
    for (const auto& [flags, source] : {
             std::pair{Arguments{}, "a.c"},
             std::pair{Arguments{"-fno-short-float"}, "b.c"},
             std::pair{Arguments{"-fno-short-double", "-fno-short-float"}, "c.c"},
             std::pair{Arguments{"-fshort-double"}, "d.c"},
         }) {
        sandbox.Write(source, "int value;\n");
        Entry entry{{compiler, "-mcpu=18F4550", "-std=c90"}};
        entry.arguments.insert(entry.arguments.end(), flags.begin(), flags.end());
        entry.arguments.insert(entry.arguments.end(), {"-c", source});
        sandbox.AddEntry(entry);
    }
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 0) << result;
    std::string told;
    for (const CoreCall& call : sandbox.CoreCalls()) {
        told += call.Setting("fshort-float") + '/' + call.Setting("fshort-double") + ' ';
    }
    EXPECT_EQ(told, "no/no yes/no yes/yes no/no ");
}

struct RefusedCase {
    const char* strict;
    const char* command;
    const char* reason;
};

// The double that stands in for compilers that no package offers must refuse what they refuse, or the test above shows
// nothing.
TEST_F(FamiliesTest, StrictDoublesRefuseWhatTheirCompilersRefuse) {
    const RefusedCase rows[] = {
        {"armcc", "--frobnicate -E -o a.i a.c", "unknown switch --frobnicate"},
        {"armcc", "-E --depend=a.d -o a.i a.c", "unknown switch --depend=a.d"},
        {"armcc", "-E -o a.i -o b.i a.c", "a second output: b.i"},
        {"armcc", "-E -o -Iinc a.c", "a switch where the value of -o must stand"},
        {"armcl", "--preproc_only --output_file=a.i -z a.c", "unknown switch -z"},
        {"armcl", "--preproc_only --output_file= a.c", "unknown switch --output_file="},
        {"iccarm7", "--preprocess=nl a.i --source_encoding x a.c", "unknown switch --source_encoding"},
        {"iccarm8", "--preprocess=nl a.i --enable_multibytes a.c", "unknown switch --enable_multibytes"},
        {"iccarm8", "--preprocess=nl a.i --eec++ a.c", "unknown switch --eec++"},
        {"iccarm8", "--preprocess=nl a.i a.c b.c", "a second source: b.c"},
        {"iccarm8", "a.c --preprocess=nl", "no value behind --preprocess=nl"},
        {"qcc", "-o a.i a.c", "the command preprocesses no source"},
        {"gcc", "-P -E -o a.i a.c", "unknown switch -P"},
        {"xc8", "-E -mthumb -o a.i a.c", "unknown switch -mthumb"},
        {"cl", "/nologo /Foa.obj /P /Fia.i a.c", "unknown switch /Foa.obj"},
    };
    sandbox.Write("a.c", "int value;\n");
    for (const RefusedCase& row : rows) {
        const std::string compiler = sandbox.AddCompiler("cc", "", std::string("strict ") + row.strict + '\n');
        std::istringstream words(row.command);
        Arguments command{compiler};
        for (std::string word; words >> word;) {
            command.push_back(word);
        }
        const RunResult result = RunningDriver(command, sandbox.Path(), sandbox.DriverEnvironment()).Wait();
        EXPECT_NE(result.exitCode, 0) << row.command << result;
        EXPECT_NE(result.errors.find(row.reason), std::string::npos) << row.command << result;
    }
}

} // namespace

} // namespace Orvanta
