#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // CMake
    {"clang -DQ=1 -I%/include -Wall -g -std=gnu17 -fcolor-diagnostics {-O2} {-MD -MT a.o -MF a.o.d -o a.o} -c <%/a.c>",
     "C", "c17", "signed", "%/include", "Q=1"},
    {"clang++ -std=c++20 -stdlib=libc++ -fvisibility=hidden -Isrc -c <a.cpp>", "C++", "c++20", "signed", "src", ""},
    {"clang -target arm-none-eabi -mcpu=cortex-m4 -mthumb -ffreestanding -std=c11 -c <a.c> {-o a.o}",
     "C", "c11", "signed", "", "", "arm"},
    {"clang --target=aarch64-linux-gnu --gcc-toolchain=/opt/cross --sysroot=/opt/cross/root -DA -c <a.c>",
     "C", "c17", "signed", "/opt/cross/root", "A", "linux64"},
    {"clang++ -Xclang -DFROM_PAIR -c <a.cc>", "C++", "c++14", "signed", "", "FROM_PAIR"},
    {"clang -funsigned-char -std=gnu99 -I . -I .. -c <a.c>", "C", "c99", "unsigned", ".|..", ""},
    {"clang -x c -std=c99 {-Ofast} -c <a.inc>", "C", "c99", "signed", "", ""},
    {"clang++ -m32 -c <a.C> -DX", "C++", "c++14", "signed", "", "X", "linux32"},
    {"clang -Qunused-arguments {-MJ a.json} -std=c2x -DN=1 -c <a.c>", "C", "c20", "signed", "", "N=1"},
};
// clang-format on

} // namespace

Family ClangFamily() {
    return {
        .name = "clang",
        .strict = "clang",
        .title = "Clang",
        .version = "clang version 14.0.6\n",
        .preprocessor = "clang",
        .platform = "x64",
        .ending = "-w -E -o @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
