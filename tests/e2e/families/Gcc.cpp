#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // make
    {"gcc -std=c99 -Wall {-O2} -g -Iinclude -I ../lib -DVERSION=3 -c {-o main.o} <main.c>",
     "C", "c99", "signed", "include|../lib", "VERSION=3"},
    // CMake
    {"gcc -DAPP_EXPORTS -I%/include -isystem %/third -DNDEBUG -std=gnu11 -fPIC {-O3} {-MD -MT CMakeFiles/a.dir/a.c.o "
     "-MF a.c.o.d -o a.c.o} -c <%/src/a.c>",
     "C", "c11", "signed", "%/include|%/third", "APP_EXPORTS|NDEBUG"},
    {"g++ -Wextra -fno-exceptions {-Og} -ggdb -DTEXT=\"a~b\" -c <../src/main.cpp> {-o main.o}",
     "C++", "c++17", "signed", "", "TEXT=\"a~b\""},
    {"g++ -std=c++20 -m32 -march=i686 -c <main.c>", "C++", "c++20", "signed", "", "", "linux32"},
    {"gcc -m64 -funsigned-char -ansi -c <main.c> -I.", "C", "c90", "unsigned", ".", "", "linux64"},
    {"gcc -x c++ -std=c++11 -iquote inc -idirafter /opt/inc {-MMD -MP} -c <main.inc>",
     "C++", "c++11", "signed", "inc|/opt/inc", ""},
    // meson
    {"cc -Ilib/x.p -Ilib -fdiagnostics-color=always -D_FILE_OFFSET_BITS=64 -Wall -O0 -g -pthread {-MD -MQ x.o -MF "
     "x.o.d -o x.o} -c <../x.c>",
     "C", "c17", "signed", "lib/x.p|lib", "_FILE_OFFSET_BITS=64"},
    // Kbuild
    {"gcc {-Wp,-MMD,fs/.open.o.d} -nostdinc -I./include -include ./include/kconfig.h -D__KERNEL__ -std=gnu11 "
     "-fno-strict-aliasing -m64 -mno-red-zone {-O2} -c {-o open.o} <open.c>",
     "C", "c11", "signed", "./include", "__KERNEL__", "linux64"},
    {"gcc -std=gnu18 -DA -UB -Wp,-DC=1 -c <main.c>", "C", "c17", "signed", "", "A|C=1"},
    // Bazel
    {"gcc -U_FORTIFY_SOURCE -fstack-protector-strong -std=c++14 {-MD -MF b.d} -frandom-seed=b.o -iquote . -DBAZEL -c "
     "<src/b.cc> {-o b.o}",
     "C++", "c++14", "signed", ".", "BAZEL"},
};
// clang-format on

} // namespace

Family GccFamily() {
    return {
        .name = "gcc",
        .strict = "gcc",
        .title = "GCC",
        .version = "gcc (Debian 12.2.0-14) 12.2.0\nCopyright (C) 2022 Free Software Foundation, Inc.\n",
        .preprocessor = "gcc",
        .platform = "x64",
        .ending = "-w -E -o @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
