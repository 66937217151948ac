#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // Momentics
    {"qcc -Vgcc_ntoarmv7le -c -Wc,-Wall -fstack-protector-strong -Iinc -D_QNX_SOURCE -DVARIANT_le {-o a.o} <../a.c>",
     "C", "c11", "signed", "inc", "_QNX_SOURCE|VARIANT_le"},
    // CMake with a toolchain file
    {"qcc -V5.4.0,gcc_ntoaarch64le -DAPP -I%/inc {-O2} -std=gnu11 {-MD -MT a.o -MF a.o.d -o a.o} -c <%/a.c>",
     "C", "c11", "signed", "%/inc", "APP"},
    // Arguments for the compiler itself
    {"qcc -Wc,-std=gnu99 -Wc,-DLISTED -DB -c <a.c>", "C", "c99", "signed", "", "LISTED|B"},
    {"qcc -Vgcc_ntox86_64 -lang-c++ -std=gnu++14 -Y_cxx -c <a.c>", "C++", "c++14", "signed", "", ""},
    {"qcc -Vgcc_ntox86_64 -Y _cxx -std=c++17 -Iinc -c <a.cpp> {-o a.o}", "C++", "c++17", "signed", "inc", ""},
    {"qcc -V gcc_ntoarmv7le -EL -funsigned-char -c <a.c>", "C", "c11", "unsigned", "", ""},
    {"qcc -funsigned-char -fsigned-char -std=c99 -c <a.c>", "C", "c99", "unsigned", "", ""},
    {"qcc -x c++ -isystem /opt/qnx/usr/include -c <a.inc>", "C++", "c++14", "signed", "/opt/qnx/usr/include", ""},
    {"qcc {-Wp,-MD,a.d} -m64 {-MMD} -DX=2 -c <a.cc>", "C++", "c++14", "signed", "", "X=2", "linux64"},
};
// clang-format on

} // namespace

Family QccFamily() {
    return {
        .name = "qcc",
        .strict = "qcc",
        .title = "QCC",
        .version = "",
        .preprocessor = "gcc",
        .platform = "x64",
        .ending = "-w -P -o @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
