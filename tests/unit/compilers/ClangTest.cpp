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
        ReadAs<Clang>("clang -include-pch p.pch -Xclang -load -Xclang plugin.so -Xclang -main-file-name -Xclang m.c "
                      "-mllvm -x=1 -target arm-none-eabi -MJ a.json -c a.c");
    EXPECT_EQ(Join(command.keptArguments), "-Xclang -load -Xclang plugin.so -Xclang -main-file-name -Xclang m.c "
                                           "-mllvm -x=1 -target arm-none-eabi -c");
    EXPECT_EQ(command.sourceFile, "a.c");
}

} // namespace Orvanta
