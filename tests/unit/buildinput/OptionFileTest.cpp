#include "buildinput/OptionFile.h"

#include "compilers/IARArm.h"
#include "compilers/Keil5.h"
#include "compilers/ResponseFileText.h"
#include "compilers/TiArmCGT.h"
#include "platform/Exceptions.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvanta {

namespace {

using Words = std::vector<std::string>;
using testing::HasSubstr;

const Keil5 Keil;
const TiArmCGT Ti;
const IARArm Iar;

struct SplitCase {
    const Compiler& model;
    const char* text;
    Words words;
};

const SplitCase SplitCases[] = {
    {Keil, "; made by a tool\n  # another\n-c -DA;B#C\r\n", {"-c", "-DA;B#C"}},
    {Keil, R"(-I"C:\a b" -I".\inc" -DT='"x y"')", {R"(-IC:\a b)", R"(-I.\inc)", R"(-DT="x y")"}},
    {Keil, R"(-I"C:\\a b\\" -DQ=\"q\" 'it\'s' a//b /*c*/)", {R"(-IC:\a b\)", "-DQ=\"q\"", "it's", "a//b", "/*c*/"}},
    {Iar, "-D A // no word\n/* none\nhere */ -I \"C:\\a b\" #x", {"-D", "A", "-I", "C:\\a b", "#x"}},
    {Iar, R"(-DT=\"t\" -I"\\server\x" 'a b')", {"-DT=\"t\"", R"(-I\\server\x)", "'a", "b'"}},
    {Ti, "; one\n--define=A=\"b c\" /* two */\n#three\n-g", {"--define=A=b c", "-g"}},
};

struct ExpansionCase {
    const Compiler& model;
    Words arguments;
    Words expanded;
};

const ExpansionCase ExpansionCases[] = {
    {Keil, {"armcc", "--via", "a.opt", "x.c"}, {"armcc", "-DA", "x.c"}},
    {Keil, {"armcc", "-c", "--via=a.opt", "x.c"}, {"armcc", "-c", "-DA", "x.c"}},
    {Keil, {"armcc", "--via=nest.opt"}, {"armcc", "-DN", "-DA", "-DO"}},
    {Keil, {"armcc", "-f", "a.opt", "--viaa.opt"}, {"armcc", "-f", "a.opt", "--viaa.opt"}},
    {Iar, {"iccarm", "x.c", "-f", "a.opt"}, {"iccarm", "x.c", "-DA"}},
    {Iar, {"iccarm", "-fa.opt", "--f", "a.opt"}, {"iccarm", "-DA", "-DA"}},
    {Ti, {"armcl", "-@a.opt", "-@=a.opt"}, {"armcl", "-DA", "-DA"}},
    {Ti, {"armcl", "--cmd_file=a.opt", "--via=a.c"}, {"armcl", "-DA", "--via=a.c"}},
    {Ti, {"armcl", "--cmd_file"}, {"armcl", "--cmd_file"}},
};

} // namespace

TEST(OptionFile, IsSplitAsItsCompilerDoes) {
    for (const SplitCase& row : SplitCases) {
        EXPECT_EQ(SplitOptionFile(row.text, row.model.OptionFiles(), "x"), row.words) << row.text;
    }
}

TEST(OptionFile, StandsForItsWords) {
    const TestFolder folder;
    (void)folder.Write("a.opt", "-DA\n");
    (void)folder.Write("nest.opt", "-DN --via a.opt -DO\n");
    for (const ExpansionCase& row : ExpansionCases) {
        Words arguments = row.arguments;
        ExpandOptionFiles(arguments, row.model.OptionFiles(), folder.Path());
        EXPECT_EQ(arguments, row.expanded);
    }
}

TEST(OptionFile, ReadsBackWhatTheDriverPutsThere) {
    const Words words = {"-c", "", "a b", R"(C:\dir\x)", R"(-DX="y")", "it's", "// /* ; #"};
    const TestFolder folder;
    for (const Compiler* const model :
         {static_cast<const Compiler*>(&Keil), static_cast<const Compiler*>(&Ti), static_cast<const Compiler*>(&Iar)}) {
        (void)folder.Write("a.opt", ResponseFileText(model->Type(), words).value_or("none"));
        Words arguments = ResponseFileArguments(model->Type(), "a.opt");
        arguments.insert(arguments.begin(), "cc");
        ExpandOptionFiles(arguments, model->OptionFiles(), folder.Path());
        EXPECT_EQ(Words(arguments.begin() + 1, arguments.end()), words);
    }
}

TEST(OptionFile, ThatCanNotBeReadIsAnErrorThatNamesIt) {
    const TestFolder folder;
    (void)folder.Write("self.opt", "--via self.opt");
    (void)folder.Write("open.opt", "-c \"a b");
    const std::pair<const char*, const char*> rows[] = {
        {"none.opt", "none.opt"},
        {"self.opt", "The option file \"self.opt\" lies more than 100 option files deep"},
        {"open.opt", "Unmatched quote in option file \"open.opt\": \"a b"},
    };
    for (const auto& [file, message] : rows) {
        Words arguments = {"armcc", "--via", file};
        const Words before = arguments;
        try {
            ExpandOptionFiles(arguments, Keil.OptionFiles(), folder.Path());
            ADD_FAILURE() << file;
        } catch (const ZelmException& error) {
            EXPECT_THAT(error.what(), HasSubstr(message));
        }
        EXPECT_EQ(arguments, before);
    }
}

} // namespace Orvanta
