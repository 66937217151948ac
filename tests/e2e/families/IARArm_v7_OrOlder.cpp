#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // Embedded Workbench
    {"iccarm <../src/main.c> -D STM32F10X_HD -D USE_STDPERIPH_DRIVER {-lCN List} {-o Obj} --no_cse --no_unroll "
     "--no_inline --no_code_motion --no_tbaa --no_clustering --no_scheduling --debug --endian=little --cpu=Cortex-M3 "
     "-e --fpu=None --dlib_config DLib_Config_Normal.h -I ../inc -I ../lib/ -Ol",
     "C", "c99", "unsigned", "../inc|../lib/", "STM32F10X_HD|USE_STDPERIPH_DRIVER"},
    // Embedded Workbench writes its commands into a file
    {"iccarm {-f options}[-DIN_FILE -I in~c --cpu=Cortex-M4F] <a.c>",
     "C", "c99", "unsigned", "in~c", "IN_FILE", nullptr,
     "// the project's options\n-DIN_FILE\n-I \"in c\"\n--cpu=Cortex-M4F --silent\n"},
    // CMake
    {"iccarm {--silent} <%/src/a.c> -DAPP -I%/inc --cpu=Cortex-M0 -e -r {--dependencies=ns a.o.d} {-o a.o}",
     "C", "c99", "unsigned", "%/inc", "APP"},
    // CMake
    {"iccarm {--silent} <%/src/a.cpp> -DAPP -I%/inc --ec++ --cpu=Cortex-M3 {-o a.o}",
     "C++", "c++98", "unsigned", "%/inc", "APP"},
    {"iccarm --eec++ --system_include_dir /opt/iar/c --cpu Cortex-M4 <a.cpp>",
     "C++", "c++98", "unsigned", "/opt/iar/c", ""},
    {"iccarm --c++ --no_exceptions --no_rtti --cpu=ARM7TDMI --interwork <a.cpp>", "C++", "c++98", "unsigned", "", ""},
    {"iccarm --c89 --strict --char_is_signed <a.c> {--output a.o}", "C", "c90", "signed", "", ""},
    {"iccarm --char_is_unsigned --vla -Ohz {--remarks} {--warnings_are_errors} <a.c>", "C", "c99", "unsigned", "", ""},
    {"iccarm {--IDE2} {--IDE3} {--utf8_text_in} --preinclude config.h -I. -UX <a.c>", "C", "c99", "unsigned", ".", ""},
    {"iccarm {--enable_multibytes} {--dependencies a.d} {--preprocess=c a.i} {--diagnostics_tables t.lst} -D A=1 "
     "<a.c>",
     "C", "c99", "unsigned", "", "A=1"},
    // A flag for the language holds whatever the extension
    {"iccarm --eec++ {-lA list/} --require_prototypes <a.c>", "C++", "c++98", "unsigned", "", ""},
};
// clang-format on

} // namespace

Family OlderIARArmFamily() {
    return {
        .name = "iar7",
        .strict = "iccarm7",
        .title = "IAR for ARM before 8",
        .version = "\n   IAR ANSI C/C++ Compiler V7.80.4.12462/W32 for ARM\n   Copyright 1999-2017 IAR Systems AB.\n",
        .preprocessor = "iar",
        .platform = "arm",
        .ending = "--no_warnings --silent --enable_multibytes --preprocess=nl @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
