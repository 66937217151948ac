#include "compilers/Gcc.h"
#include "platform/Process.h"
#include "support/TestFolder.h"
#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Orvanta {

namespace {

struct AcceptedCase {
    const char* name;
    std::string_view arguments;
};

// Each command compiles `a.c`, or a file of another name with the same text.
const AcceptedCase AcceptedCases[] = {
    {"Lists", "-Wp,-MMD,a.d,-DVALUE=1,-I,. -c a.c"},
    {"HandedOn", "-Xpreprocessor -DVALUE=1 -c a.c"},
    {"Linking", "-DVALUE=1 a.c -L. -lm -Wl,-z,now -Xlinker x -u f"},
    {"LongForms", "--define-macro=VALUE=1 --include-directory=. -c a.c"},
    {"Preprocessed", "-c ready.i"},
    {"Stated", "-DVALUE=1 -x c -c odd.txt -x none"},
    {"Dashes", "-DVALUE=1 -c -- -a.c"},
};

class GccAcceptance : public testing::TestWithParam<AcceptedCase> {};

} // namespace

// What the reader keeps must leave a command that real compilers carry out, with the unit's text as the result.
TEST_P(GccAcceptance, RealCompilersPreprocessWhatWasRead) {
    const TestFolder folder;
    for (const char* name : {"a.c", "odd.txt", "-a.c"}) {
        (void)folder.Write(name, "int value = VALUE;\n");
    }
    (void)folder.Write("ready.i", "# 1 \"a.c\"\nint value = 1;\n");
    for (const char* compiler : {"gcc", "clang"}) {
        const ParsedCommand read = ReadAs<Gcc>(std::string(compiler) + " " + std::string(GetParam().arguments));
        const Words command = Gcc().BuildPreprocessCommand(read, folder / "out.i");
        CapturedOutput output;
        Process process(command, folder.Path(), OwnEnvironmentBlock(),
                        MakeRedirectToStringProcessor(output.standardOutput),
                        MakeRedirectToStringProcessor(output.standardError));
        ASSERT_EQ(process.get_exit_status(), 0) << CommandLineText(command) << '\n' << output.standardError;
        EXPECT_NE(folder.Read("out.i").find("int value = 1;"), std::string::npos) << CommandLineText(command);
        EXPECT_EQ(output.standardError, "") << CommandLineText(command);
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, GccAcceptance, testing::ValuesIn(AcceptedCases), CaseName<AcceptedCase>);

} // namespace Orvanta
