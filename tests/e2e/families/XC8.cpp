#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // MPLAB X
    {"xc8-cc -mcpu=16F877A -c -mdfp=/opt/dfp/xc8 -fno-short-double -fno-short-float -memi=wordwrite -O0 {-fasmfile} "
     "-maddrqual=ignore -xassembler-with-cpp -mwarn=-3 -DXPRJ_default=default -msummary=-psect,-class,+mem -ginhx32 "
     "-std=c99 -gdwarf-3 -mstack=compiled:auto:auto {-o build/main.p1} <main.c>",
     "C", "c99", "unsigned", "", "XPRJ_default=default"},
    // MPLAB X
    {"xc8-cc -mcpu=18F4550 -c -mdebugger=pickit4 {-MP} {-MMD} {-MF a.d} -xassembler-with-cpp -Iinc -D__DEBUG=1 "
     "-mno-keep-startup -mno-osccal -mdefault-config-bits -std=c90 {-o a.p1} <../a.c>",
     "C", "c90", "unsigned", "inc", "__DEBUG=1"},
    // CMake
    {"xc8-cc -mcpu=16F1789 -DAPP -I%/inc {-O2} -std=c99 {-o a.p1} -c <%/a.c>", "C", "c99", "unsigned", "%/inc", "APP"},
    {"xc8-cc -mcpu=16F18446 -fsigned-char -c <a.c>", "C", "c99", "signed", "", ""},
    {"xc8-cc -mcpu=16F18446 -fsigned-char -funsigned-char -c <a.c>", "C", "c99", "unsigned", "", ""},
    {"xc8-cc -mcpu=18F45K20 -std=c90 -fshort-double -fno-short-float -mc90lib -c <a.c>",
     "C", "c90", "unsigned", "", ""},
    {"xc8-cc -mcpu=18F45K20 -std=c90 -fno-short-double -mrom=0-7fff -c <a.c>", "C", "c90", "unsigned", "", ""},
    {"xc8-cc -mcpu=pic10f200 -std=gnu99 -mreserve=ram@0x20 -UX -DA -c <a.c>", "C", "c99", "unsigned", "", "A"},
    // Compiled and linked
    {"xc8-cc -mcpu=12F1840 -mwarn=0 -merrata=none {-Os} <a.c> {-o a.elf}", "C", "c99", "unsigned", "", ""},
    {"xc8-cc -mcpu=16F877A {@options}[-DIN_FILE -Iinc] -c <a.c>",
     "C", "c99", "unsigned", "inc", "IN_FILE", nullptr, "-DIN_FILE\n-Iinc\n"},
};
// clang-format on

} // namespace

Family XC8Family() {
    return {
        .name = "xc8",
        .strict = "xc8",
        .title = "XC8",
        .version = "Microchip MPLAB XC8 C Compiler V2.40\nBuild date: Jul  4 2022\n",
        .preprocessor = "gcc",
        .platform = "pic8",
        .ending = "-w -E -o @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
