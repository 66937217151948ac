#include "suppress/SuppressFilter.h"

#include "report/Exceptions.h"
#include "support/ErrorOf.h"
#include "support/Findings.h"

#include <gtest/gtest.h>

namespace OrvlogConverter {
namespace {

using Orvanta::ErrorOf;

SuppressFilterSettings Files(const std::vector<std::string>& values) {
    SuppressFilterSettings settings;
    settings.files = ParseSuppressedFiles(values);
    return settings;
}

SuppressFilterSettings Numbers(std::set<std::uint32_t> numbers) {
    SuppressFilterSettings settings;
    settings.codeNumbers = std::move(numbers);
    return settings;
}

SuppressFilterSettings Analyzers(std::string_view specification) {
    SuppressFilterSettings settings;
    settings.analyzers = ParseAnalyzerSpecification(specification);
    return settings;
}

struct FilterCase {
    const char* name;
    SuppressFilterSettings settings;
    ReportMessage message;
    bool isAccepted;
};

TEST(SuppressFilter, ChoosesByFileLineLevelAndCode) {
    SuppressFilterSettings disabled;
    disabled.disabledCodes = {"V501"};
    const ReportMessage nowhere = {"V501", "m", "", {}, 0, 1, false};
    const FilterCase cases[] = {
        {"nothing set", {}, Finding("V501"), true},
        {"disabled", disabled, Finding("V501"), false},
        {"file", Files({"a.c"}), Finding("V501"), true},
        {"part of a path", Files({"src"}), Finding("V501"), true},
        {"file and line", Files({"a.c:3"}), Finding("V501"), true},
        {"other line", Files({"a.c:4"}), Finding("V501"), false},
        {"line 0", Files({"a.c:0"}), Finding("V501"), true},
        {"other file", Files({"other.c"}), Finding("V501"), false},
        {"one of two", Files({"other.c", "a.c:3"}), Finding("V501"), true},
        {"no position", Files({"a.c"}), nowhere, false},
        {"level", Analyzers("GA:2"), Finding("V501"), false},
        {"analyzer", Analyzers("GA"), Finding("V501"), true},
        {"code", Numbers({501, 502}), Finding("V501"), true},
        {"other code", Numbers({502}), Finding("V501"), false},
        {"no number", Numbers({501}), Finding("External"), false},
        {"0 is no number", Numbers({0}), Finding("External"), true},
    };
    for (const FilterCase& row : cases) {
        EXPECT_EQ(SuppressFilter(nullptr, row.settings).Write(row.message), row.isAccepted) << row.name;
    }
}

struct FaultCase {
    std::vector<std::string> values;
    std::string_view fault;
};

TEST(SuppressFilter, RejectsFilesWithTheirFault) {
    constexpr std::string_view OnlyLine =
        "Specifying only the line number without file name is not supported for the '--file' argument.";
    constexpr std::string_view IsPath =
        "You can only use name of the file in the '--file' argument. Specifying file path is not supported.";
    const FaultCase cases[] = {
        {{"a.c:x"}, "invalid stoul argument"},
        {{"a.c:"}, "invalid stoul argument"},
        {{"a.c:2x"}, "invalid stoul argument"},
        {{"a.c:-2"}, "invalid stoul argument"},
        {{"a.c:99999999999999999999"}, "stoul argument out of range"},
        {{":22"}, OnlyLine},
        {{":0"}, OnlyLine},
        {{"src/test.c"}, IsPath},
        {{"src\\test.c:2"}, IsPath},
        {{"/test.c"}, IsPath},
        {{"a/b.c", ":1"}, OnlyLine},
        {{"a/b.c", "c:x"}, "invalid stoul argument"},
        {{""}, "The value of the '--file' argument is empty."},
    };
    for (const FaultCase& row : cases) {
        EXPECT_EQ(ErrorOf([&] { (void)ParseSuppressedFiles(row.values); }), row.fault) << row.values.front();
    }
    EXPECT_EQ(ParseSuppressedFiles({"a:b.c:3", "d.c"}), (std::vector<SuppressedFile>{{"a:b.c", 3}, {"d.c", 0}}));
}

TEST(SuppressFilter, TakesCodesWithAndWithoutTheirLetter) {
    EXPECT_EQ(ParseCodeNumber("501"), 501U);
    EXPECT_EQ(ParseCodeNumber("V501"), 501U);
    EXPECT_EQ(ParseCodeNumber("V0501"), 501U);
    for (const char* const value : {"", "V", "501,502", "v501", "-1", "V501 ", "99999999999"}) {
        EXPECT_EQ(ErrorOf([&] { (void)ParseCodeNumber(value); }), "Wrong value of --warning: \"" + std::string(value) +
                                                                      "\", expected a code such as V501 or its number");
    }
}

} // namespace
} // namespace OrvlogConverter
