#include "analysis/ModuleImports.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Orvanta {
namespace {

// As compilers print them, which may move the words apart.
TEST(ModuleImports, AreFoundAtTheBeginningOfALine) {
    for (const std::string_view line :
         {"import m;", "export  import  m.part;", "import :part;", "  import m [[a]];", "import <vector>;",
          "import\"x.h\";", "import  \"/usr/include/x\" [[__translated]];", "module m;", "module  m:part;\r"}) {
        EXPECT_TRUE(ImportsModules("# 1 \"a.cpp\"\nint x;\n" + std::string(line) + "\nint y;")) << line;
    }
}

TEST(ModuleImports, AreNoOtherUseOfTheWords) {
    for (const std::string_view line :
         {"export module m;", "module;", "module :private;", "import_x;", "import = 1;", "import(m);", "important m;",
          "int import;", "import m", "import m = 3;", "module* m;", "export int import;", "# 1 \"import m;\""}) {
        EXPECT_FALSE(ImportsModules("int x;\n" + std::string(line) + "\nint y;")) << line;
    }
}

} // namespace
} // namespace Orvanta
