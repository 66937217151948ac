#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // CMake
    {"clang-cl /nologo {-TP} -DA -I..\\inc -imsvc third /EHsc /MDd {/Zi} {/Ob0} /std:c++17 {/showIncludes} "
     "{/Foa.obj} {/Fda.pdb} -c <a.cpp>[/TP]",
     "C++", "c++17", "signed", "..\\inc|third", "A"},
    {"clang-cl -m32 /nologo /c /D B <a.c>", "C", "c17", "signed", "", "B", "Win32"},
    {"clang-cl --target=x86_64-pc-windows-msvc -fcolor-diagnostics /c /std:c11 <a.c>", "C", "c11", "signed", "", ""},
    {"clang-cl --target=i686-pc-windows-msvc /c <a.cpp>", "C++", "c++14", "signed", "", "", "Win32"},
    {"clang-cl /clang:-funsigned-char /c <a.c>", "C", "c17", "unsigned", "", ""},
    {"clang-cl /J /c /I inc /I. <a.c>", "C", "c17", "unsigned", "inc|.", ""},
    {"clang-cl {/clang:-MD} {/clang:-MFa.d} -Xclang -DFRONT /c <a.c>", "C", "c17", "signed", "", "FRONT"},
    {"clang-cl {-Werror} -Wall -msse4.2 /FIpre.h /Zc:inline /c -DN=1 <a.cxx>", "C++", "c++14", "signed", "", "N=1"},
    {"clang-cl {/TC} {/O2} /std:c17 -DX /c <a.inc>[/TC]", "C", "c17", "signed", "", "X"},
};
// clang-format on

} // namespace

Family ClangClFamily() {
    return {
        .name = "clangcl",
        .strict = "clang-cl",
        .title = "clang-cl",
        .version = "clang version 14.0.6\nTarget: x86_64-pc-windows-msvc\n",
        .preprocessor = "visualcpp",
        .platform = "x64",
        .ending = "/P /Fi@ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
