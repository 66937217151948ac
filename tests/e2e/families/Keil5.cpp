#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // uVision
    {"armcc --c99 -c --cpu Cortex-M3 -D__EVAL -g -O0 --apcs=interwork -I ../Inc -I ./RTE/_Target_1 "
     "-D__UVISION_VERSION=\"515\" -DSTM32F10X_MD {-o ./Objects/main.o} {--omf_browse ./Objects/main.crf} {--depend "
     "./Objects/main.d} <main.c>",
     "C", "c99", "unsigned", "../Inc|./RTE/_Target_1", "__EVAL|__UVISION_VERSION=\"515\"|STM32F10X_MD"},
    // uVision, a long command in a file
    {"armcc {--via options}[--c99 -c --cpu=Cortex-M4.fp -Iinc~dir -DUSE_HAL] <main.c>",
     "C", "c99", "unsigned", "inc~dir", "USE_HAL", nullptr,
     "; made by the IDE\n--c99 -c --cpu=Cortex-M4.fp\n-I\"inc dir\"\n-DUSE_HAL -o main.o\n"},
    // CMake
    {"armcc -DAPP=1 -I%/include --cpu=Cortex-M0 --apcs=interwork --c90 {--depend=a.d --depend_single_line "
     "--no_depend_system_headers} {-o a.o} -c <%/a.c>",
     "C", "c90", "unsigned", "%/include", "APP=1"},
    // CMake
    {"armcc --cpp -I%/include -DNDEBUG --cpu=Cortex-M3 -Ospace {--depend=a.d --depend_single_line "
     "--no_depend_system_headers} {-o a.o} -c <%/a.cpp>",
     "C++", "c++03", "unsigned", "%/include", "NDEBUG"},
    {"armcc --cpp11 --no_rtti --exceptions --cpu Cortex-R4 --fpu=VFPv3_D16 -c -O3 -Otime <a.cpp>",
     "C++", "c++11", "unsigned", "", ""},
    // Several folders in one value
    {"armcc --c99 -Iinc,../lib/inc,drv -J/opt/arm/include -c <a.c>",
     "C", "c99", "unsigned", "inc|../lib/inc|drv|/opt/arm/include", ""},
    {"armcc --c99 --signed_chars -D A=1 -U B -c <a.c>", "C", "c99", "signed", "", "A=1"},
    {"armcc --unsigned_chars --c90 --strict --diag_suppress=9931,870 -c <a.c>", "C", "c90", "unsigned", "", ""},
    // No language stated
    {"armcc --cpu=ARM7TDMI --arm --littleend -c <a.c>", "C", "c90", "unsigned", "", ""},
    {"armcc --cpu=7-A --thumb --vla -c <a.cpp> {--list} {--list_dir=lst} {--asm} {--interleave}",
     "C++", "c++98", "unsigned", "", ""},
    // A flag for the language holds whatever the extension
    {"armcc --cpp --preinclude=config.h --preinclude board.h -c <a.c>", "C++", "c++03", "unsigned", "", ""},
    // make
    {"armcc -c --cpu Cortex-M3 -g {--md} {--phony_targets} {--depend_dir=d} {--depend_format=unix} -I. "
     "--split_sections --bss_threshold=0 {-oobj/a.o} <../a.c>",
     "C", "c90", "unsigned", ".", ""},
    {"armcc --c99 --device=DSTM32 --old_style_preprocessing --locale=japanese --multibyte_chars {--output_dir=obj} "
     "{--pch} {--errors=err.txt} -c <a.c>",
     "C", "c99", "unsigned", "", ""},
};
// clang-format on

} // namespace

Family Keil5Family() {
    return {
        .name = "keil5",
        .strict = "armcc",
        .title = "Keil 5",
        .version = "",
        .preprocessor = "keil5",
        .platform = "arm",
        .ending = "-W -E -o @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
