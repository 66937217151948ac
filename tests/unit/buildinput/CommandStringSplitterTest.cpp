#include "buildinput/CommandStringSplitter.h"

#include <gtest/gtest.h>

#include <random>

namespace Orvanta {

namespace {

using Words = std::vector<std::string>;

struct SplitCase {
    const char* command;
    Words words;
};

void ExpectSplits(const SplitCase& row, CommandStringRules rules) {
    EXPECT_EQ(SplitCommandString(row.command, rules), row.words) << row.command;
}

const SplitCase PosixCases[] = {
    {"", {}},
    {" \t\n ", {}},
    {"gcc  -c\ta.c\n", {"gcc", "-c", "a.c"}},
    {R"("/opt/my tools/gcc" -c "a b.c")", {"/opt/my tools/gcc", "-c", "a b.c"}},
    {R"(a'b c'"d e"f)", {"ab cd ef"}},
    {R"('' "" a'')", {"", "", "a"}},
    {R"('a\b"c' d)", {R"(a\b"c)", "d"}},
    {R"(a\ b \'c\" \\ \d)", {"a b", R"('c")", R"(\)", "d"}},
    {R"("\$ \` \" \\ \a \'")", {R"($ ` " \ \a \')"}},
    {"a\\\nb \\\n c \"d\\\ne\" 'f\\\ng'", {"ab", "c", "de", "f\\\ng"}},
    {"a \\\n", {"a"}},
    {R"(-DX=\"y\" -DY="\"z w\"")", {R"(-DX="y")", R"(-DY="z w")"}},
    {"cc $HOME `id` *.c ~ #x ; | && > f", {"cc", "$HOME", "`id`", "*.c", "~", "#x", ";", "|", "&&", ">", "f"}},
    {"a\r\vb", {"a\r\vb"}},
    {R"(a \)", {"a", R"(\)"}},
    // A quote that is not closed.
    {R"(a "b)", {}},
    {R"(a 'b)", {}},
    {R"(a "b\")", {}},
};

const SplitCase WindowsCases[] = {
    {"", {}},
    {"cl  /c\ta.c ", {"cl", "/c", "a.c"}},
    {R"("C:\my tools\cl.exe" /c "a b.c")", {R"(C:\my tools\cl.exe)", "/c", "a b.c"}},
    // The program's name knows no backslash, and quotes only at its beginning.
    {R"("C:\a\" b)", {R"(C:\a\)", "b"}},
    {R"(C:\a"b c" d)", {R"(C:\a"b)", "c d"}},
    {R"("a"b c)", {"a", "b", "c"}},
    {R"("a b)", {"a b"}},
    {R"(\"a b)", {R"(\"a)", "b"}},
    {" a", {"", "a"}},
    {R"("" a)", {"", "a"}},
    // Backslashes count only before a quote.
    {R"(p a\b\\c \\)", {"p", R"(a\b\\c)", R"(\\)"}},
    {R"(p a\"b a\\"b c" a\\\"b)", {"p", R"(a"b)", R"(a\b c)", R"(a\"b)"}},
    {R"(p "a\\" b "c\"d e")", {"p", R"(a\)", "b", R"(c"d e)"}},
    {R"(p "a\b c" "\\\\")", {"p", R"(a\b c)", R"(\\)"}},
    // Quotes that stand together: the third one, the opening one counted, is an ordinary character.
    {R"(p "" a"" "")", {"p", "", "a", ""}},
    {R"(p "a""b" c d)", {"p", R"(a"b c d)"}},
    {R"(p """ a" b)", {"p", R"(")", "a b"}},
    {R"(p """"a b" c)", {"p", R"("a b)", "c"}},
    {R"(p "a"" b)", {"p", R"(a")", "b"}},
    {R"(p "a""" b" c)", {"p", R"(a" b)", "c"}},
    {R"(p a\""b c" d)", {"p", R"(a"b c)", "d"}},
    {R"(p "a\"" b)", {"p", R"(a")", "b"}},
    {R"(p "a\"""b c)", {"p", R"(a""b)", "c"}},
    // What is not closed ends with the command; line ends are no blanks; single quotes are nothing special.
    {R"(p "a b )", {"p", "a b "}},
    {"p a\nb 'c d'", {"p", "a\nb", "'c", "d'"}},
};

/// Writes a word so that the POSIX shell reads it back, in one of its ways of quoting for each character.
std::string QuoteForPosix(const std::string& word, std::mt19937& random) {
    std::string text = word.empty() ? "''" : "";
    for (const char character : word) {
        const bool needsProtection = std::string_view("$`\"\\").find(character) != std::string_view::npos;
        switch (random() % 3) {
        case 0:
            text += character == '\'' ? "\"'\"" : std::string("'") + character + "'";
            break;
        case 1:
            text += std::string("\"") + (needsProtection ? "\\" : "") + character + '"';
            break;
        default:
            text += character == '\n' ? "'\n'" : std::string("\\") + character;
            break;
        }
    }
    return text;
}

/// Writes a word that is not the first so that Windows programs read it back.
std::string QuoteForWindows(const std::string& word) {
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char character : word) {
        if (character == '"') {
            text.append(backslashes + 1, '\\');
        }
        backslashes = character == '\\' ? backslashes + 1 : 0;
        text += character;
    }
    return text.append(backslashes, '\\') + '"';
}

std::string RandomWord(std::mt19937& random) {
    constexpr std::string_view alphabet = "ab \t\n\"\"''\\\\\\$`=\xC3\xA4";
    std::string word;
    for (std::size_t length = random() % 12; length > 0; --length) {
        word += alphabet[random() % alphabet.size()];
    }
    return word;
}

TEST(CommandStringSplitter, FollowsThePosixShell) {
    for (const SplitCase& row : PosixCases) {
        ExpectSplits(row, CommandStringRules::Posix);
    }
}

TEST(CommandStringSplitter, FollowsTheWindowsCommandLine) {
    for (const SplitCase& row : WindowsCases) {
        ExpectSplits(row, CommandStringRules::Windows);
    }
}

TEST(CommandStringSplitter, ReadsBackWhatWasQuoted) {
    std::mt19937 random(20); // the same words in every run
    Words posix;             // used again for every command
    Words windows;
    for (int round = 0; round < 5000; ++round) {
        Words words = {"program"};
        std::string posixCommand = "program";
        std::string windowsCommand = "program";
        for (std::size_t count = random() % 6; count > 0; --count) {
            words.push_back(RandomWord(random));
            posixCommand += ' ' + QuoteForPosix(words.back(), random);
            windowsCommand += ' ' + QuoteForWindows(words.back());
        }
        SplitCommandString(posixCommand, CommandStringRules::Posix, posix);
        SplitCommandString(windowsCommand, CommandStringRules::Windows, windows);
        ASSERT_EQ(posix, words) << posixCommand;
        ASSERT_EQ(windows, words) << windowsCommand;
    }
}

} // namespace

} // namespace Orvanta
