#include "compilers/Clang.h"

#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

namespace Orvanta {

// A precompiled header that CMake has made is left out; the header that it was made from is still included.
TEST(Clang, ReadsThePrecompiledHeaderOfCMakeFromItsHeader) {
    const ParsedCommand command =
        ReadAs<Clang>("clang++ -Winvalid-pch -Xclang -include-pch -Xclang /b/cmake_pch.hxx.pch -Xclang -include "
                      "-Xclang /b/cmake_pch.hxx -o a.o -c a.cpp");
    EXPECT_EQ(Join(command.keptArguments), "-Winvalid-pch -Xclang -include -Xclang /b/cmake_pch.hxx -c");
    EXPECT_EQ(Join(command.forcedIncludes), "/b/cmake_pch.hxx");
    EXPECT_EQ(command.compilerType, CompilerType::Clang);
}

TEST(Clang, KeepsTheFrontEndsOtherFlagsAsPairs) {
    const ParsedCommand command =
        ReadAs<Clang>("clang -Xclang -load -Xclang plugin.so -Xclang -main-file-name -Xclang m.c "
                      "-mllvm -x=1 -target arm-none-eabi -MJ a.json -c a.c");
    EXPECT_EQ(Join(command.keptArguments), "-Xclang -load -Xclang plugin.so -Xclang -main-file-name -Xclang m.c "
                                           "-mllvm -x=1 -target arm-none-eabi -c");
    EXPECT_EQ(command.sourceFile, "a.c");
}

// The text of a precompiled header counts, unless its header is included beside it.
TEST(Clang, KeepsAPrecompiledHeaderThatStandsAlone) {
    const ParsedCommand alone = ReadAs<Clang>("clang -DA -Xclang -include-pch -Xclang b/p.pch -include o.h -c a.c");
    EXPECT_EQ(Join(alone.keptArguments), "-DA -Xclang -include-pch -Xclang b/p.pch -include o.h -c");
    EXPECT_EQ(alone.precompiled.path, "b/p.pch");
    EXPECT_EQ(Join(FilesNamedByFlags(alone)), "b/p.pch");
    const ParsedCommand beside =
        ReadAs<Clang>("clang -Xclang -include-pch -Xclang p.hxx.pch -Xclang -include -Xclang p.hxx -DA -c a.c");
    EXPECT_EQ(Join(beside.keptArguments), "-Xclang -include -Xclang p.hxx -DA -c");
    EXPECT_EQ(Join(FilesNamedByFlags(beside)), "");
}

TEST(Clang, DropsWhatWritesWhoeverHandsItOn) {
    EXPECT_EQ(Join(ReadAs<Clang>("clang -save-stats=obj -mllvm -info-output-file=i -mllvm -stats -Xclang -stats-file=s "
                                 "-Xclang -mllvm -Xclang -info-output-file=j -Wp,-module-dependency-dir,d,-DA "
                                 "-Xclang -plugin-arg-x -Xclang -H -fproc-stat-report=p -c a.c")
                       .keptArguments),
              "-mllvm -stats -Wp,-DA -Xclang -plugin-arg-x -Xclang -H -c");
}

TEST(Clang, ReadsHeadersOfModulesAsHeaders) {
    EXPECT_EQ(ReadAs<Clang>("clang++ -fmodules -fmodule-file=m.pcm -c a.ixx").keptArguments.back(), "-fno-modules");
    EXPECT_EQ(ReadAs<Clang>("clang --driver-mode=g++ -c a.c").language, Language::Cpp);
}

} // namespace Orvanta
