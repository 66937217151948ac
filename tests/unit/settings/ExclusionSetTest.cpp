#include "settings/ExclusionSet.h"

#include "settings/SettingsMap.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Orvanta {
namespace {

struct ExclusionCase {
    std::string_view value;
    std::string_view path;
    bool matches;
};

void ExpectMatches(const ExclusionCase& row, PathRules rules) {
    ExclusionSet set(rules);
    set.Add(row.value);
    EXPECT_EQ(set.Matches(row.path), row.matches) << row.value << " on " << row.path;
}

TEST(ExclusionSet, PrefixesMatchWholeComponents) {
    const ExclusionCase cases[] = {
        {"/src/lib", "/src/lib/a.c", true},
        {"/src/lib", "/src/lib", true},
        {"/src/lib/", "/src/lib/x/a.c", true},
        {"/src/./x/../lib//", "/src/lib/a.c", true},
        {"/src/lib", "/src/library.c", false},
        {"/src/lib", "/src/li", false},
        {"/src/lib", "/other/src/lib", false},
        {"/src/lib", "/src/Lib/a.c", false},
        {"/", "/a.c", true},
        {R"(/src\lib)", "/src/lib/a.c", false},
        {"", "/a.c", false},
    };
    for (const ExclusionCase& row : cases) {
        ExpectMatches(row, PathRules::Posix);
    }
}

TEST(ExclusionSet, WindowsPrefixesRegardNeitherCaseNorSeparator) {
    const ExclusionCase cases[] = {
        {R"(C:\Src\Lib)", R"(c:\src\LIB\a.c)", true},
        {"C:/Src/Lib/", R"(C:\Src\Lib\a.c)", true},
        {R"(C:\Src\Lib)", R"(D:\Src\Lib\a.c)", false},
        {R"(C:\Src\Lib)", R"(C:\Src\Library\a.c)", false},
        {R"(C:\)", R"(C:\a.c)", true},
        {R"(\\host\share\dir)", R"(\\HOST\share\dir\a.c)", true},
        {R"(\\host\share)", R"(\\host\share\a.c)", true},
        {R"(\\host\share)", R"(\\host\shares\a.c)", false},
    };
    for (const ExclusionCase& row : cases) {
        ExpectMatches(row, PathRules::Windows);
    }
}

TEST(ExclusionSet, MasksMatchTheWholePathUnderBothRules) {
    const ExclusionCase cases[] = {
        {"*/generated/*", "/p/generated/a.c", true},
        {"*/generated/*", "/generated/x/a.c", true},
        {"*/generated/*", "/p/my-generated/a.c", false},
        {R"(*\generated\*)", "/p/generated/a.c", true},
        {"*/generated/*", R"(C:\p\Generated\a.c)", true},
        {"*.PB.cc", "/p/x.pb.CC", true},
        {"*.pb.cc", "/p/x.pb.ccx", false},
        {"/p/a?.c", "/p/ab.c", true},
        {"/p/a?.c", "/p/a.c", false},
        {"/p/?.c", "/p/\xC3\xA9.c", true}, // one character
        {"/p/??.c", "/p/\xC3\xA9.c", false},
        {"p/*", "/p/a.c", false},
        {"*", "/a.c", true},
        {R"(?:\program files (x86)\*)", R"(C:\Program Files (x86)\x.c)", true},
    };
    for (const ExclusionCase& row : cases) {
        ExpectMatches(row, PathRules::Posix);
        ExpectMatches(row, PathRules::Windows);
    }
}

// The plain way to match, which tries every length for a "*".
bool FitsPlainly(std::string_view text, std::string_view mask) {
    if (mask.empty()) {
        return text.empty();
    }
    if (mask[0] == '*') {
        return FitsPlainly(text, mask.substr(1)) || (!text.empty() && FitsPlainly(text.substr(1), mask));
    }
    return !text.empty() && (mask[0] == '?' || mask[0] == text[0]) && FitsPlainly(text.substr(1), mask.substr(1));
}

std::vector<std::string> WordsUpTo(std::size_t length, std::string_view letters) {
    std::vector<std::string> words = {""};
    for (std::size_t from = 0; words.back().size() < length;) {
        const std::size_t end = words.size();
        for (; from < end; ++from) {
            for (const char letter : letters) {
                words.push_back(words[from] + letter);
            }
        }
    }
    return words;
}

TEST(ExclusionSet, AgreesWithThePlainMatcherOnEveryShortMask) {
    const std::vector<std::string> texts = WordsUpTo(5, "ab");
    for (const std::string& mask : WordsUpTo(5, "ab*?")) {
        if (!HasWildcard(mask)) {
            continue;
        }
        ExclusionSet set;
        set.Add(mask);
        for (const std::string& text : texts) {
            ASSERT_EQ(set.Matches(text), FitsPlainly(text, mask)) << mask << " on " << text;
        }
    }
}

TEST(ExclusionSet, ManyStarsOnALongPathComeToAnEnd) {
    std::string mask;
    for (int star = 0; star < 100; ++star) {
        mask += "*a";
    }
    ExclusionSet set;
    set.Add(mask + "b");
    EXPECT_FALSE(set.Matches(std::string(5000, 'a')));
    EXPECT_TRUE(set.Matches(std::string(5000, 'a') + "b"));
}

TEST(ExclusionSet, HoldsThousandsOfEntries) {
    ExclusionSet set(PathRules::Posix);
    EXPECT_TRUE(set.IsEmpty());
    for (int number = 0; number < 10000; ++number) {
        set.Add("/src/module" + std::to_string(number));
        if (number % 10 == 0) {
            set.Add("*/gen" + std::to_string(number) + "/*");
        }
    }
    EXPECT_FALSE(set.IsEmpty());
    for (int number = 0; number < 10000; number += 7) {
        const std::string text = std::to_string(number);
        EXPECT_TRUE(set.Matches("/src/module" + text + "/deep/er/a.c"));
        EXPECT_FALSE(set.Matches("/src/module" + text + "x/a.c"));
    }
    EXPECT_TRUE(set.Matches("/any/GEN9990/a.c"));
    EXPECT_FALSE(set.Matches("/any/gen9991/a.c"));
}

} // namespace
} // namespace Orvanta
