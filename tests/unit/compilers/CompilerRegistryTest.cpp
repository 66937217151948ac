#include "compilers/CompilerRegistry.h"

#include "compilers/Compiler.h"
#include "platform/Exceptions.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvanta {

TEST(CompilerRegistry, SharesOneModelPerFamily) {
    const CompilerRegistry registry;
    EXPECT_EQ(registry.Get(CompilerType::Gcc)->Name(), "gcc");
    EXPECT_EQ(registry.Get(CompilerType::Clang)->Name(), "clang");
    EXPECT_EQ(registry.Get(CompilerType::Cl)->Name(), "visualcpp");
    EXPECT_EQ(registry.Get(CompilerType::ClangCl)->Name(), "visualcpp");
    EXPECT_EQ(registry.Get(CompilerType::Clang), registry.Get(CompilerType::Clang));
}

TEST(CompilerRegistry, NamesTheNumberOfATypeWithoutModel) {
    for (const int number : {0, 14}) {
        try {
            (void)CompilerRegistry().Get(static_cast<CompilerType>(number));
            FAIL() << "no exception";
        } catch (const ZelmException& error) {
            EXPECT_EQ(std::string(error.what()), "Unknown preprocessor type: " + std::to_string(number));
        }
    }
}

} // namespace Orvanta
