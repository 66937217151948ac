#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // Code Composer Studio
    {"armcl -mv7M4 --code_state=16 --float_support=FPv4SPD16 -me --include_path=/opt/ti/include "
     "--include_path=../inc -g --gcc --define=ccs=\"ccs\" --define=PART_TM4C123GH6PM --diag_warning=225 "
     "--diag_wrap=off --display_error_number --gen_func_subsections=on --abi=eabi --ual {--preproc_with_compile} "
     "{--preproc_dependency=main.d_raw} {--obj_directory=.} <../main.c>",
     "C", "c90", "unsigned", "/opt/ti/include|../inc", "ccs=\"ccs\"|PART_TM4C123GH6PM"},
    // Code Composer Studio, a long command in a file
    {"armcl {--cmd_file=options}[--define=A=1 --include_path=in~c] -mv7R4 --endian=big --abi=eabi -c <a.c>",
     "C", "c90", "unsigned", "in~c", "A=1", nullptr, "/* made by the IDE */\n--define=A=1\n--include_path=\"in c\"\n"},
    // CMake
    {"armcl --compile_only {--c_file=}<%/src/a.c> -DAPP=1 --include_path=%/include -mv7M3 --c99 "
     "{--preproc_with_compile --preproc_dependency=a.d} {--output_file=a.obj}",
     "C", "c99", "unsigned", "%/include", "APP=1"},
    // CMake
    {"armcl --compile_only {--cpp_file=}<%/src/a.cpp> -DAPP --include_path=%/include -mv7M3 --c++14 --exceptions "
     "{--output_file=a.obj}",
     "C++", "c++14", "unsigned", "%/include", "APP"},
    {"armcl -c -mv5e {-frobj} {-fs=obj} {-ppd=a.d} {-ppa} -I=inc -I ../inc2 -Iinc3 -D=A -DB=2 -D C <a.c>",
     "C", "c90", "unsigned", "inc|../inc2|inc3", "A|B=2|C"},
    {"armcl --silicon_version=7M4 --plain_char=signed --c11 -c <a.c>", "C", "c11", "signed", "", ""},
    {"armcl -mv6M0 -mc --c89 --strict_ansi -c <a.c>", "C", "c90", "signed", "", ""},
    {"armcl --plain_char=unsigned --cpp_default -c <a.c>", "C++", "c++14", "unsigned", "", ""},
    {"armcl -c -mv7M4 --c++03 --rtti --preinclude=config.h <a.cpp>", "C++", "c++03", "unsigned", "", ""},
    // A name says another language than the flag
    {"armcl -c {-fc=}<a.inc> --relaxed_ansi [--c_extension=inc]", "C", "c90", "unsigned", "", ""},
    {"armcl -c -DX {-fp}<a.c>[--cpp_default]", "C++", "c++14", "unsigned", "", "X"},
    // Options that begin like others
    {"armcl --fp_mode=relaxed --fp_reassoc=on --opt_level=3 --opt_for_speed=5 --symdebug:dwarf {--obj_extension=.o} "
     "{-eo.o} {-k} {-al} {--asm_directory=asm} -c <a.cc>",
     "C++", "c++14", "unsigned", "", ""},
    // Compiled and linked
    {"armcl -mv7M4 --c99 -g -O2 <a.c> {-z -o app.out lnk.cmd --rom_model}", "C", "c99", "unsigned", "", ""},
    {"armcl {-@options}[-DIN_FILE --undefine=Y] --quiet --compile_only {--emit_warnings_as_errors} <a.c>",
     "C", "c90", "unsigned", "", "IN_FILE", nullptr, "-DIN_FILE\n; no option\n--undefine=Y"},
};
// clang-format on

} // namespace

Family TiArmCGTFamily() {
    return {
        .name = "ti",
        .strict = "armcl",
        .title = "TI ARM",
        .version = "",
        .preprocessor = "ti_arm_cgt",
        .platform = "arm",
        .ending = "--no_warnings --preproc_only --preproc_with_line --output_file=@ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
