// What the tables of the embedded families say about whole invocations, and what families decide by
// whole arguments. What is read of each flag stands in the end-to-end tests' tables of families.

#include "compilers/CompilerRegistry.h"
#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

namespace Orvanta {

namespace {

using enum CompilerType;

struct OutlineCase {
    CompilerType type;
    const char* command;
    const char* outcome; // the sources, or "(REASON)"
};

const OutlineCase OutlineCases[] = {
    {Keil5, "armcc -c --depend a.c --omf_browse b.c -o c.c --cpu d.c e.c", "e.c"},
    {Keil5, "armcc --depend=a.d --list_dir=x.c -Aasm.c a.c b.s c.o", "a.c"},
    {Keil5, "armcc --cpp a.c b.o c.s", "a.c"},
    {Keil5, "armcc a.o b.o -o a.axf", "(link only)"},
    {Keil5, "armcc -c a.s", "(assembly)"},
    {Keil5, "armcc -E a.c", "(preprocessing only)"},
    {Keil5, "armcc -M a.c", "(dependencies only)"},
    {Keil5Gnu, "armcc --gnu --vsn", "(prints information only)"},
    {Keil6, "armclang --target=arm-arm-none-eabi -c -x c a.txt", "a.txt"},
    {TiArmCGT, "armcl --preproc_dependency=a.d a.c", "(dependencies only)"},
    {TiArmCGT, "armcl -ppd=a.d -ppa a.c", "a.c"},
    {TiArmCGT, "armcl -ppo -c a.c", "(preprocessing only)"},
    {TiArmCGT, "armcl --c_file=a.x -fcb.x -fp=c.x --asm_file=d.c -fae.c f.c", "a.x b.x c.x f.c"},
    {TiArmCGT, "armcl --asm_file=a.c", "(assembly)"},
    {TiArmCGT, "armcl --cpp_default a.asm b.c c.obj", "b.c"},
    {TiArmCGT, "armcl -z a.c -o a.out", "(link only)"},
    {TiArmCGT, "armcl a.c --run_linker lnk.c", "a.c"},
    {IARArm_v7_OrOlder, "iccarm a.c --preprocess=n b.c", "(preprocessing only)"},
    {IARArm, "iccarm a.c --preprocess=cns b.c", "(preprocessing only)"},
    {IARArm, "iccarm a.c --preprocess=c b.c -lCN c.c --dependencies=m d.c", "a.c"},
    {IARArm, "iccarm --dependencies d.c --text_out e.c -I f.c a.c", "a.c"},
    {IARArm, "iccarm --output_not_known=x.c --c++ a.c", "a.c"},
    {Qcc, "qcc -Vgcc_ntox86_64 -lang-c++ a.o -o a -P", "(preprocessing only)"},
    {Qcc, "qcc -V gcc_ntox86_64.c -lang-c++ a.o b.c -Wc,-DA,-I,c.c", "b.c"},
    {XC8, "xc8-cc -xassembler-with-cpp -mcpu=10f200 a.c b.p1", "a.c"},
    {XC8, "xc8-cc -mcpu=10f200 a.p1 b.p1 -o a.elf", "(link only)"},
    {GccARM, "arm-none-eabi-gcc -T link.c -specs=x.c a.c b.s", "a.c"},
};

struct FlagCase {
    CompilerType type;
    const char* flags;
    const char* result;
};

// What families decide by whole arguments, wherever these stand: the sign of plain char, the platform, the mode.
const FlagCase FlagCases[] = {
    {Gcc, "-fsigned-char", "signed"},
    {Gcc, "-funsigned-char -fsigned-char", "unsigned"},
    {Qcc, "-fno-signed-char", "signed"},
    {Keil5, "--signed_chars", "signed arm"},
    {Keil5, "--unsigned_chars --gnu=x", "unsigned arm"},
    {Keil5, "--gnu", "unsigned arm gnu"},
    {Keil5Gnu, "--c99", "unsigned arm gnu"},
    {Keil6, "-funsigned-char -fsigned-char", "signed arm"},
    {Keil6, "-fno-unsigned-char -fno-signed-char", "unsigned arm"},
    {TiArmCGT, "--plain_char=signed", "signed arm"},
    {GccARM, "-m32", "unsigned arm"},
    {GccARM, "-fsigned-char", "signed arm"},
    {GccARM, "-fsigned-char -funsigned-char", "unsigned arm"},
    {GccARM, "-fno-unsigned-char", "signed arm"},
    {GccARM, "-fsigned-char=1", "unsigned arm"},
    {IARArm_v7_OrOlder, "--char_is_signed", "signed arm"},
    {IARArm, "--char_is_signed --char_is_unsigned", "signed arm"},
    {IARArm, "--char_is_unsigned", "unsigned arm"},
    {XC8, "-fsigned-char -fno-short-float", "signed pic8 float"},
    {XC8, "-fno-signed-char", "unsigned pic8"},
    {XC8, "-fno-short-double -fno-short-floatx", "unsigned pic8 double"},
};

} // namespace

TEST(EmbeddedFamilies, TellSourcesFromValuesAndWhatCompilesNothing) {
    const CompilerRegistry registry;
    for (const OutlineCase& row : OutlineCases) {
        const Words words = Split(row.command);
        const InvocationOutline outline = OutlineInvocation(*registry.Get(row.type), words);
        Words sources;
        for (const SourceArgument& source : outline.sources) {
            sources.push_back(words[source.index].substr(source.offset));
        }
        EXPECT_EQ(sources.empty() ? '(' + std::string(outline.reason) + ')' : Join(sources), row.outcome)
            << row.command;
    }
}

TEST(EmbeddedFamilies, DecideByWholeArguments) {
    const CompilerRegistry registry;
    for (const FlagCase& row : FlagCases) {
        const Words words = Split("compiler -c a.c " + std::string(row.flags));
        const ParsedCommand command = ReadCommandLine(*registry.Get(row.type), words, {2, 0});
        std::string result = command.unsignedChar ? "unsigned" : "signed";
        result += (command.platformWord.empty() ? "" : " ") + command.platformWord;
        result += command.compilerType == Keil5Gnu ? " gnu" : "";
        result += command.effects.Has(FlagEffect::ShortFloat) ? " float" : "";
        result += command.effects.Has(FlagEffect::ShortDouble) ? " double" : "";
        EXPECT_EQ(result, row.result) << row.flags;
    }
}

} // namespace Orvanta
