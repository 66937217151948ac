#include "compilers/CompilerRegistry.h"

#include "compilers/Compiler.h"
#include "platform/Exceptions.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace Orvanta {

TEST(CompilerRegistry, SharesOneModelPerFamily) {
    const CompilerRegistry registry;
    const char* const names[] = {"gcc",       "clang", "keil5", "keil5_gnu", "clang", "ti_arm_cgt", "visualcpp",
                                 "visualcpp", "gcc",   "iar",   "iar",       "gcc",   "gcc"};
    for (std::size_t type = 1; type <= std::size(names); ++type) {
        const auto model = registry.Get(static_cast<CompilerType>(type));
        EXPECT_EQ(static_cast<std::size_t>(model->Type()), type);
        EXPECT_EQ(model->Name(), names[type - 1]);
        EXPECT_EQ(model, registry.Get(model->Type()));
    }
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
