#include "compilers/CompilerIdentifier.h"
#include "platform/Executable.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Orvanta {

TEST(InstalledCompilers, AreTold) {
    const TestFolder folder;
    const RunSettings settings;
    Log log;
    const StopFlag stop;
    CompilerIdentifier identifier(settings, log, stop);
    std::vector<std::string> command = {"gcc", "-c", "a.c"};
    const CompilerIdentifier::Result gcc =
        identifier.IdentifyCompiler(command, folder.Path(), {}, CompilerIdentifier::Query::IfPresent);
    EXPECT_EQ(gcc.verdict, IdentificationVerdict::Known);
    EXPECT_EQ(gcc.compiler->type, CompilerType::Gcc);
    EXPECT_EQ(gcc.compiler->path, FindExecutable("gcc"));
    EXPECT_NE(gcc.compiler->version.find("Free Software Foundation"), std::string::npos);

    command = {"clang++", "-c", "a.cpp"};
    const CompilerIdentifier::Result clang =
        identifier.IdentifyCompiler(command, folder.Path(), {}, CompilerIdentifier::Query::IfPresent);
    EXPECT_EQ(clang.compiler->type, CompilerType::Clang);
    EXPECT_EQ(clang.compiler->version, "");
}

} // namespace Orvanta
