#include "buildinput/trace/TraceText.h"

#include <gtest/gtest.h>

namespace Orvanta {

namespace {

struct LiteralCase {
    std::string raw;
    std::string text;
};

TEST(TraceText, DecodesTheEscapesOfATrace) {
    const LiteralCase rows[] = {
        {R"()", ""},
        {R"(a b)", "a b"},
        {R"(\n\t\r\v\f\\\")", "\n\t\r\v\f\\\""},
        {R"(\1\0123\303\244)", std::string("\1\n3\xC3\xA4")},
        {R"(\0)", std::string(1, '\0')},
        {R"(\x61\xc3\xa4b)", "a\xC3\xA4"
                             "b"},
        {R"(a\74b\76)", "a<b>"},
        {R"(\x)", "x"},
        {R"(\q)", "q"},
        {"a\\", "a"},
    };
    for (const LiteralCase& row : rows) {
        EXPECT_EQ((TraceLiteral{row.raw}).Decode(), row.text) << row.raw;
    }
}

struct ArrayCase {
    const char* text;
    bool isRead;
    bool isWhole;
    std::vector<std::string> items;
    bool lastIsCut = false;
};

TEST(TraceText, ReadsArraysAndSeesWhatIsCut) {
    const ArrayCase rows[] = {
        {R"([], 1)", true, true, {}},
        {R"(["a"], 1)", true, true, {"a"}},
        {R"(["a", "b\"]\\"], 1)", true, true, {"a", "b\"]\\"}},
        {R"(["a", "bc"...], 1)", true, true, {"a", "bc"}, true},
        {R"(["a", ...], 1)", true, false, {"a"}},
        {R"(["a", "b)", false, true, {"a"}},
        {R"(["a" "b"])", false, true, {"a"}},
        {R"(["a", 0x7f])", false, true, {"a"}},
        {R"(0x7f /* 3 vars */)", false, true, {}},
        {R"(["a")", false, true, {"a"}},
    };
    for (const ArrayCase& row : rows) {
        TraceTextReader reader(row.text);
        TraceArray array;
        EXPECT_EQ(reader.TakeArray(array), row.isRead) << row.text;
        EXPECT_EQ(array.isWhole, row.isWhole) << row.text;
        std::vector<std::string> items;
        for (const TraceLiteral& literal : array.items) {
            items.push_back(literal.Decode());
        }
        EXPECT_EQ(items, row.items) << row.text;
        EXPECT_EQ(!array.items.empty() && array.items.back().isCut, row.lastIsCut) << row.text;
        EXPECT_EQ(!row.isRead || reader.Rest() == ", 1", true) << row.text;
    }
}

struct ResultCase {
    const char* text;
    std::optional<std::int64_t> value;
    const char* comment;
};

TEST(TraceText, FindsTheResultOfACall) {
    const ResultCase rows[] = {
        {", O_RDONLY) = 3</a (b) = 4>", 3, "</a (b) = 4>"},
        {")                         = 0 <0.000123>", 0, " <0.000123>"},
        {") = -1 ENOENT (No such file or directory)", -1, " ENOENT (No such file or directory)"},
        {") = ?", std::nullopt, ""},
        {") = ? ERESTARTNOINTR (To be restarted)", std::nullopt, ""},
        {"{flags=0} => {parent_tid=[8]}, 88) = 8", 8, ""},
        {", 0x7f /* (3) vars */) = 0", 0, ""},
        {", 0x7f", std::nullopt, ""},
    };
    for (const ResultCase& row : rows) {
        const std::optional<TraceResult> result = TraceTextReader(row.text).TakeResult();
        EXPECT_EQ(result.has_value(), row.value.has_value()) << row.text;
        if (result && row.value) {
            EXPECT_EQ(result->value, *row.value) << row.text;
            EXPECT_EQ(result->comment, row.comment) << row.text;
        }
    }
}

} // namespace

} // namespace Orvanta
