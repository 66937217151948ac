#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // Embedded Workbench
    {"iccarm <../src/main.c> -D USE_HAL_DRIVER -D STM32F407xx {-o Obj} --debug --endian=little --cpu=Cortex-M4 -e "
     "--fpu=VFPv4_sp --dlib_config DLib_Config_Full.h -I ../Core/Inc -Ohz --no_path_in_file_macros {--dependencies=n "
     "Obj/main.d}",
     "C", "c17", "unsigned", "../Core/Inc", "USE_HAL_DRIVER|STM32F407xx"},
    // Embedded Workbench hands its commands on in a file
    {"iccarm {--f options}[-D IN_FILE -Iinc --cpu=Cortex-M33 --cmse] <a.c>",
     "C", "c17", "unsigned", "inc", "IN_FILE", nullptr, "-D IN_FILE -Iinc\n--cpu=Cortex-M33 --cmse"},
    // CMake
    {"iccarm {--silent} <%/src/a.c> -DNDEBUG -I%/inc --cpu=Cortex-M7 -e --diag_suppress=Pe186 {--dependencies=ns "
     "a.o.d} {-o a.o}",
     "C", "c17", "unsigned", "%/inc", "NDEBUG"},
    // CMake
    {"iccarm {--silent} <%/src/a.cpp> -DNDEBUG -I%/inc --cpu=Cortex-M7 --c++ --libc++ {--dependencies=ns a.o.d} {-o "
     "a.o}",
     "C++", "c++17", "unsigned", "%/inc", "NDEBUG"},
    {"iccarm --c89 --cpu_mode thumb --cpu=Cortex-A9 --system_include_dir=/opt/c <a.c>",
     "C", "c90", "unsigned", "/opt/c", ""},
    {"iccarm --char_is_signed -I inc <a.c>", "C", "c17", "signed", "inc", ""},
    {"iccarm --c++ --char_is_unsigned --no_exceptions --guard_calls <a.cc>", "C++", "c++17", "unsigned", "", ""},
    // The encodings are those of the preprocessing command
    {"iccarm {--source_encoding utf8} {--text_out=utf8} {--no_bom} -DA <a.c>", "C", "c17", "unsigned", "", "A"},
    {"iccarm {--mfc} {--discard_unused_publics} {--stack_usage} --aapcs=vfp -DM <a.c>",
     "C", "c17", "unsigned", "", "M"},
    {"iccarm --preinclude=cfg.h -UB <a.c>", "C", "c17", "unsigned", "", ""},
    {"iccarm {--remarks} {--warnings_are_errors} {--error_limit=0} --stack_protection --strict <a.c> {-lcN .}",
     "C", "c17", "unsigned", "", ""},
    {"iccarm --c++ {-S} -D X=1 -DY <../a.cpp> {--header_context}", "C++", "c++17", "unsigned", "", "X=1|Y"},
};
// clang-format on

} // namespace

Family IARArmFamily() {
    return {
        .name = "iar8",
        .strict = "iccarm8",
        .title = "IAR for ARM",
        .version = "IAR ANSI C/C++ Compiler V9.30.1.335/LNX for ARM\nCopyright 1999-2022 IAR Systems AB.\n",
        .preprocessor = "iar",
        .platform = "arm",
        .ending = "--no_warnings --silent --source_encoding locale --text_out locale --preprocess=nl @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
