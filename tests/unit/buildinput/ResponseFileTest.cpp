#include "buildinput/ResponseFile.h"

#include "platform/Exceptions.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

namespace Orvanta {

namespace {

using Words = std::vector<std::string>;

struct ResponseFileCase {
    const char* text;
    Words tokens;
};

const ResponseFileCase ResponseFileCases[] = {
    {"", {}},
    {" \t\n\v\f\r\n", {}},
    {"-c a.c\r\n-O2\n", {"-c", "a.c", "-O2"}},
    {"\xEF\xBB\xBF-c a.c", {"-c", "a.c"}},
    {R"("a b" 'c d' "" '')", {"a b", "c d", "", ""}},
    // Inside quotes nothing is special but the closing one; it ends the token.
    {R"('a "b"' "it's" "a\" b)", {R"(a "b")", "it's", R"(a\)", "b"}},
    {R"("a"b 'c''d')", {"a", "b", "c", "d"}},
    // Inside other tokens quotes are ordinary characters and a backslash protects the next one.
    {R"(-DX="a b" it's)", {R"(-DX="a)", R"(b")", "it's"}},
    {R"(a\ b c\\d \"e\' \n)", {"a b", R"(c\d)", R"("e')", "n"}},
    {"a\\\nb c\\", {"a\nb", "c"}},
};

std::string FailureOf(const std::string& path, const std::string& directory) {
    try {
        (void)ExpandResponseFile(path, directory);
    } catch (const ZelmException& error) {
        return error.what();
    }
    return "no failure";
}

TEST(ResponseFile, IsSplitIntoTokens) {
    for (const ResponseFileCase& row : ResponseFileCases) {
        EXPECT_EQ(SplitResponseFile(row.text, "x.rsp"), row.tokens) << row.text;
    }
}

TEST(ResponseFile, WithAnUnmatchedQuoteIsRefused) {
    const TestFolder folder;
    (void)folder.Write("double.rsp", "-c \"a b.c -O2\n");
    (void)folder.Write("single.rsp", "-c 'a \"b\"");
    (void)folder.Write("outer.rsp", "@single.rsp");
    EXPECT_EQ(FailureOf("double.rsp", folder.Path()), "Unmatched quote in response file \"double.rsp\": \"a b.c -O2\n");
    EXPECT_EQ(FailureOf("outer.rsp", folder.Path()), "Unmatched quote in response file \"single.rsp\": 'a \"b\"");
}

TEST(ResponseFile, ThatIsNotThereIsNamed) {
    const TestFolder folder;
    EXPECT_THAT(FailureOf("none.rsp", folder.Path()), testing::HasSubstr("none.rsp"));
}

TEST(ResponseFile, StandsForItsTokensWhereItIsNamed) {
    const TestFolder folder;
    (void)folder.Write("outer.rsp", "-a @sub/inner.rsp '@quoted name.rsp' @none.rsp @");
    (void)folder.Write("sub/inner.rsp", "-b @beside.rsp"); // not "sub/beside.rsp"
    (void)folder.Write("beside.rsp", "-c");
    (void)folder.Write("quoted name.rsp", "-d");
    (void)folder.Write("b", "wrong");
    (void)folder.Write("empty.rsp", "\n");
    const std::string absolute = "@" + folder / "beside.rsp";

    Words arguments = {"gcc", "@outer.rsp", "a@b", "-I@b", "@", "@none.rsp", "@sub", "@empty.rsp", absolute};
    ExpandResponseFiles(arguments, folder.Path());

    const Words expected = {"gcc", "-a",   "-b", "-c",        "-d",   "@none.rsp", "@",
                            "a@b", "-I@b", "@",  "@none.rsp", "@sub", "-c"};
    EXPECT_EQ(arguments, expected);
}

TEST(ResponseFile, ThatNamesItselfEndsWithTheDepthError) {
    const TestFolder folder;
    const std::string path = folder.Write("self.rsp", "-c @self.rsp");
    EXPECT_EQ(FailureOf("self.rsp", folder.Path()),
              "Recursion depth of the response files expansion exceeds the limit: 2000. Check the file \"self.rsp\".");
    (void)folder.Write("self.rsp", "-c");
    EXPECT_EQ(ExpandResponseFile("self.rsp", folder.Path()), Words{"-c"}) << "the failure left the depth as it was";
}

TEST(ResponseFile, MayNestAsDeepAsTheLimitInEachThread) {
    const TestFolder folder;
    constexpr int length = 2001;
    for (int i = 1; i < length; ++i) {
        (void)folder.Write(std::to_string(i), "@" + std::to_string(i + 1));
    }
    (void)folder.Write(std::to_string(length), "-c");
    const auto expandLimit = [&] {
        return ExpandResponseFile("2", folder.Path());
    };

    std::future<Words> other = std::async(std::launch::async, expandLimit);
    EXPECT_EQ(expandLimit(), Words{"-c"});
    EXPECT_EQ(other.get(), Words{"-c"});
    EXPECT_THAT(FailureOf("1", folder.Path()), testing::HasSubstr("the limit: 2000. Check the file \"2001\"."));
}

} // namespace

// What compilers read differently from the driver, by the rules of both kinds.
TEST(SplitAsCompiler, ReadsQuotesWhereverTheyStand) {
    using Words = std::vector<std::string>;

    const struct {
        const char* text;
        Words gnu;
        Words windows;
    } cases[] = {
        {R"(-DA="b c" d)", {"-DA=b c", "d"}, {"-DA=b c", "d"}},
        {R"(-DA=\"b\" 'c d')", {"-DA=\"b\"", "c d"}, {"-DA=\"b\"", "'c", "d'"}},
        {R"(-I\x\y "a\\b")", {"-Ixy", "a\\b"}, {R"(-I\x\y)", R"(a\\b)"}},
        {"a\r\nb \"\"\n", {"a", "b", ""}, {"a", "b", ""}},
        {"", {}, {}},
    };

    for (const auto& row : cases) {
        EXPECT_EQ(SplitAsCompiler(row.text, NativeQuoting::Gnu), row.gnu) << row.text;
        EXPECT_EQ(SplitAsCompiler(row.text, NativeQuoting::Windows), row.windows) << row.text;
    }
}

TEST(ExpandResponseFile, TellsWhatTheCompilerReadsAnotherWay) {
    const TestFolder folder;
    (void)folder.Write("same.rsp", "-c 'a b.c' @other.rsp");
    (void)folder.Write("other.rsp", R"(-DA="b c")");
    std::string told;
    ResponseFileReading reading;
    reading.compilers = NativeQuoting::Gnu;
    reading.tellDifference = [&told](const std::string& path, const std::string& word, const std::string& native) {
        told += path + ": " + word + " is " + native + "\n";
    };
    EXPECT_EQ(ExpandResponseFile("same.rsp", folder.Path(), reading),
              (std::vector<std::string>{"-c", "a b.c", "-DA=\"b", "c\""}));
    EXPECT_EQ(told, "other.rsp: -DA=\"b is -DA=b c\n");
    reading.isNative = true;
    EXPECT_EQ(ExpandResponseFile("same.rsp", folder.Path(), reading),
              (std::vector<std::string>{"-c", "a b.c", "-DA=b c"}));
}

// Flat files that name each other would fill any memory.
TEST(ExpandResponseFile, RefusesMoreThanACommandCanHold) {
    const TestFolder folder;
    (void)folder.Write("a", "@b @b @b");
    (void)folder.Write("b", "x x x");
    ResponseFileReading reading;
    reading.mostWords = 11;
    EXPECT_THROW((void)ExpandResponseFile("a", folder.Path(), reading), ZelmException);
    reading.mostWords = 12;
    EXPECT_EQ(ExpandResponseFile("a", folder.Path(), reading).size(), 9U);
    reading.mostBytes = 22;
    EXPECT_THROW((void)ExpandResponseFile("a", folder.Path(), reading), ZelmException);
}

} // namespace Orvanta
