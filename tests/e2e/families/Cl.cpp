#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // MSBuild
    {"x64/cl /c /I../inc /nologo /W3 {/WX} /diagnostics:column /sdl {/O2} /D WIN32 /D NDEBUG /D _CONSOLE {/Gm-} /EHsc "
     "/MD /GS /Gy /fp:precise /permissive- /Zc:wchar_t /std:c++17 {/Foout/} {/Fdvc142.pdb} /external:W3 /Gd {/TP} "
     "<main.cpp>[/TP]",
     "C++", "c++17", "signed", "../inc", "WIN32|NDEBUG|_CONSOLE"},
    // CMake with Ninja
    {"x64/cl /nologo {/TP} -DAPP -I..\\inc -external:I..\\third -external:W0 /W3 /GR /EHsc /MDd {/Zi} {/Ob0} {/Od} "
     "/RTC1 {/showIncludes} {/Foa.obj} {/Fdapp.pdb} {/FS} -c <a.cpp>[/TP]",
     "C++", "c++14", "signed", "..\\inc|..\\third", "APP"},
    {"x64/cl /nologo /std:c11 /J /I inc /DX=1 /c <a.c>", "C", "c11", "unsigned", "inc", "X=1"},
    {"x86/cl /nologo /c /std:c++latest /await /DWIN32 <a.cpp>", "C++", "c++20", "signed", "", "WIN32", "Win32"},
    {"x64/cl -c -nologo {-Yupch.h} {-Fpa.pch} -FIpch.h -Iinc <a.cpp>", "C++", "c++14", "signed", "inc", ""},
    {"x64/cl /nologo /c /DY {/Tp} <a.inc>[/TP]", "C++", "c++14", "signed", "", "Y"},
    {"x64/cl /nologo /Za /c <a.c>", "C", "c90", "signed", "", ""},
    {"x64/cl /nologo /std:c17 /D A=1 /U B {/MP} {/Fo:} {a.obj} /c <a.c> {/link kernel32.lib}",
     "C", "c17", "signed", "", "A=1"},
    {"x86/cl /nologo /utf-8 /bigobj /Zc:preprocessor /std:c++20 /c <a.cc>", "C++", "c++20", "signed", "", "", "Win32"},
};
// clang-format on

} // namespace

Family ClFamily() {
    return {
        .name = "cl/VC/Tools/MSVC/14.29/bin/Hostx64",
        .strict = "cl",
        .title = "cl",
        .version = "",
        .preprocessor = "visualcpp",
        .platform = "x64",
        .ending = "/P /Fi@ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
