#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // uVision
    {"armcc --c99 --gnu -c --cpu Cortex-M4.fp -g -O1 --apcs=interwork --split_sections -I../Core/Inc "
     "-D__UVISION_VERSION=\"536\" -DUSE_HAL_DRIVER {-o obj/a.o} {--omf_browse obj/a.crf} {--depend obj/a.d} <a.c>",
     "C", "c99", "unsigned", "../Core/Inc", "__UVISION_VERSION=\"536\"|USE_HAL_DRIVER"},
    {"armcc --gnu --cpp --no_rtti -c -Iinc <a.cpp>", "C++", "c++03", "unsigned", "inc", ""},
    // mbed
    {"armcc -c --gnu -O3 -Otime --split_sections --apcs=interwork --brief_diagnostics --multibyte_chars "
     "--cpu=Cortex-M3 --thumb {--no_depend_system_headers} -DTARGET_LPC1768 --c99 {--depend=a.d} {-o a.o} <a.c>",
     "C", "c99", "unsigned", "", "TARGET_LPC1768"},
    {"armcc --c90 --gnu --signed_chars -c <a.c>", "C", "c90", "signed", "", ""},
    {"armcc -c --cpp11 --gnu -DB <a.cc>", "C++", "c++11", "unsigned", "", "B"},
    // In a file with options
    {"armcc {--via=options}[--gnu -c -Iinc --c99] <a.c>",
     "C", "c99", "unsigned", "inc", "", nullptr, "--gnu -c -Iinc\n# a comment\n--c99"},
    // No language stated
    {"armcc --gnu -c --cpu=Cortex-M0plus --enum_is_int --wchar32 <a.c>", "C", "c90", "unsigned", "", ""},
};
// clang-format on

} // namespace

Family Keil5GnuFamily() {
    return {
        .name = "keil5gnu",
        .strict = "armcc",
        .title = "Keil 5",
        .version = "",
        .preprocessor = "keil5_gnu",
        .platform = "arm",
        .ending = "-W -E -o @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
