#include "compilers/FlagTable.h"

#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

#include <string_view>

namespace Orvanta {

namespace {

// clang-format off
constexpr FlagRow Rows[] = {
    {"I", FlagKind::UserInclude},
    {"include", FlagKind::ForcedInclude},
    {"include-pch", FlagKind::DropWithValue},
    {"include=", FlagKind::ForcedInclude},
    {"O", FlagKind::Drop},
    {"O1", FlagKind::Drop},
    {"help=", FlagKind::NoCompilation},
    {"Wp", FlagKind::Preprocessor},
    {"std=c99", FlagKind::StandardC99},
};
constexpr FlagRow Extension[] = {
    {"imsvc", FlagKind::SystemInclude},
    {"Fo", FlagKind::Output, FlagValue::Glued},
    {"clang:", FlagKind::Preprocessor, FlagValue::Glued},
    {"Xclang", FlagKind::Preprocessor, FlagValue::Next},
    {"fc", FlagKind::Drop, FlagValue::ShortGlued},
    {"output", FlagKind::Output, FlagValue::Long},
    {"J", FlagKind::SystemInclude, FlagValue::List},
    {"list=", FlagKind::DropWithValue, FlagValue::GluedAndNext},
    {"O1", FlagKind::Keep, FlagEffect::Compiles, FlagFile::Read},
};
static_assert(RowsAreSound(Rows) && RowsAreSound(Extension));

// What the compiler must refuse: a name that stands twice, and a flag that is kept and writes.
constexpr FlagRow Twice[] = {{"c", FlagKind::Keep}, {"c", FlagKind::Drop}};
constexpr FlagRow WritesAndIsKept[] = {{"MD", FlagKind::Keep, FlagFile::Written}};
static_assert(!RowsAreSound(Twice) && !RowsAreSound(WritesAndIsKept));

// clang-format on

struct FindCase {
    const char* name;
    std::string_view argument; // with its introducer
    FlagKind kind;
    std::string_view row;
    std::string_view gluedValue;
    bool takesNext;
};

const FindCase FindCases[] = {
    {"ValueGlued",                  "-Ifoo",          FlagKind::UserInclude,   "I",           "foo",  false},
    {"ValueFollows",                "-I",             FlagKind::UserInclude,   "I",           "",     true },
    {"LongestNameWins",             "-include-pch",   FlagKind::DropWithValue, "include-pch", "",     true },
    {"ShorterNameFitsTheRest",      "-include-p.h",   FlagKind::ForcedInclude, "include",     "-p.h", false},
    {"EqualSignTakesNoNext",        "--include=",     FlagKind::ForcedInclude, "include=",    "",     false},
    {"ExtensionWins",               "-O1",            FlagKind::Keep,          "O1",          "",     false},
    {"ShortGluedValue",             "-fcx",           FlagKind::Drop,          "fc",          "x",    false},
    {"ShortGluedNotAfterTwoDashes", "--fcx",          FlagKind::Keep,          "",            "",     false},
    {"LongValueBehindEqualSign",    "--output=x",     FlagKind::Output,        "output",      "x",    false},
    {"LongValueFollows",            "--output",       FlagKind::Output,        "output",      "",     true },
    {"LongNameIsNoBeginning",       "--output_dir=x", FlagKind::Keep,          "",            "",     false},
    {"ListGlued",                   "-Ja,b",          FlagKind::SystemInclude, "J",           "a,b",  false},
    {"ListFollows",                 "-J",             FlagKind::SystemInclude, "J",           "",     true },
    {"GluedAndNext",                "--list=x",       FlagKind::DropWithValue, "list=",       "x",    true },
    {"NoValueIsNoBeginning",        "-O2",            FlagKind::Keep,          "",            "",     false},
    {"StandardIsNoBeginning",       "-std=c99x",      FlagKind::Keep,          "",            "",     false},
    {"EqualSignFitsAsABeginning",   "--help=all",     FlagKind::NoCompilation, "help=",       "all",  false},
    {"OneLetterNotAfterTwoDashes",  "--Ifoo",         FlagKind::Keep,          "",            "",     false},
    {"ListBeginsWithAComma",        "-Wp,-DA",        FlagKind::Preprocessor,  "Wp",          ",-DA", false},
    {"WarningIsNoList",             "-Wpedantic",     FlagKind::Keep,          "",            "",     false},
    {"GluedValue",                  "-Foa.o",         FlagKind::Output,        "Fo",          "a.o",  false},
    {"GluedValueTakesNoNext",       "-Fo",            FlagKind::Output,        "Fo",          "",     false},
    {"GluedWordIsNoList",           "-clang:-c",      FlagKind::Preprocessor,  "clang:",      "-c",   false},
    {"ExtensionCounts",             "-imsvcdir",      FlagKind::SystemInclude, "imsvc",       "dir",  false},
    {"NextValueIsNeverGlued",       "-Xclangx",       FlagKind::Keep,          "",            "",     false},
    {"NextValueFollows",            "-Xclang",        FlagKind::Preprocessor,  "Xclang",      "",     true },
    {"CaseCounts",                  "-ifoo",          FlagKind::Keep,          "",            "",     false},
    {"IntroducerAlone",             "--",             FlagKind::Keep,          "",            "",     false},
    {"BytesAbove127",               "-\xc3\xa9",      FlagKind::Keep,          "",            "",     false},
};

class FlagTableFind : public testing::TestWithParam<FindCase> {};

} // namespace

TEST_P(FlagTableFind, FindsTheRowThatFits) {
    const FlagTable table({Extension, Rows});
    const FindCase& row = GetParam();
    const std::string_view introducer = row.argument.starts_with("--") ? "--" : "-";
    const FlagMatch match = table.Find(row.argument.substr(introducer.size()), introducer);
    EXPECT_EQ(match.row->kind, row.kind);
    EXPECT_EQ(match.row->name, row.row);
    EXPECT_EQ(match.gluedValue, row.gluedValue);
    EXPECT_EQ(match.takesNext, row.takesNext);
}

INSTANTIATE_TEST_SUITE_P(Cases, FlagTableFind, testing::ValuesIn(FindCases), CaseName<FindCase>);

} // namespace Orvanta
