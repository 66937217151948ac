#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // uVision
    {"armclang -xc -std=c99 --target=arm-arm-none-eabi -mcpu=cortex-m3 -c -fno-rtti -funsigned-char -fshort-enums "
     "-fshort-wchar -gdwarf-3 {-O1} -ffunction-sections -Wno-packed -Wno-missing-variable-declarations -I "
     "./RTE/_Target_1 -I ../Inc -D__UVISION_VERSION=\"536\" -D_RTE_ {-o ./Objects/main.o} {-MD} <main.c>",
     "C", "c99", "unsigned", "./RTE/_Target_1|../Inc", "__UVISION_VERSION=\"536\"|_RTE_"},
    // uVision
    {"armclang -xc++ --target=arm-arm-none-eabi -mcpu=cortex-m4 -mfpu=fpv4-sp-d16 -mfloat-abi=hard -c -fno-rtti "
     "-std=c++11 -fno-exceptions -Iinc {-MD} {-o main.o} <main.cpp>",
     "C++", "c++11", "unsigned", "inc", ""},
    // CMake
    {"armclang --target=arm-arm-none-eabi -mcpu=cortex-m33 -mcmse -DAPP -I%/include -isystem %/cmsis {-Os} -g "
     "-std=gnu11 {-MD -MT a.o -MF a.o.d -o a.o} -c <%/src/a.c>",
     "C", "c11", "unsigned", "%/include|%/cmsis", "APP"},
    // CMSIS-Build
    {"armclang -c -mcpu=Cortex-M7 --target=arm-arm-none-eabi -mfpu=fpv5-d16 -mlittle-endian -fsigned-char -std=gnu17 "
     "-DA=\"x\" {-o a.o} {-MMD} {-MF a.d} <a.c>",
     "C", "c17", "signed", "", "A=\"x\""},
    {"armclang --target=aarch64-arm-none-eabi -march=armv8-a -c <a.c>", "C", "c11", "unsigned", "", ""},
    {"armclang --target=arm-arm-none-eabi -mcpu=cortex-m0 -fno-unsigned-char -c <a.cpp>",
     "C++", "c++14", "signed", "", ""},
    {"armclang --target=arm-arm-none-eabi -mthumb -mcpu=cortex-a9 -fsigned-char -funsigned-char -std=c++14 -c <a.cc>",
     "C++", "c++14", "unsigned", "", ""},
    {"armclang --target=arm-arm-none-eabi -mcpu=cortex-m23 -std=c90 -include pre.h -UX -c <a.c>",
     "C", "c90", "unsigned", "", ""},
    {"armclang -x c --target=arm-arm-none-eabi -fropi -flto {-O3} -c <a.inc>", "C", "c11", "unsigned", "", ""},
    {"armclang --target=arm-arm-none-eabi -mcpu=cortex-m4 {@options}[-DFROM_FILE -Ifile] -c <a.c>",
     "C", "c11", "unsigned", "file", "FROM_FILE", nullptr, "-DFROM_FILE\n-Ifile\n"},
};
// clang-format on

} // namespace

Family Keil6Family() {
    return {
        .name = "keil6",
        .strict = "armclang",
        .title = "Keil 6",
        .version = "",
        .preprocessor = "clang",
        .platform = "arm",
        .ending = "-w -E -o @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
