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
    {"sectcreate", FlagKind::KeepWithValue, FlagValue::NextThree},
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
    unsigned following;
};

const FindCase FindCases[] = {
    {"ValueGlued", "-Ifoo", FlagKind::UserInclude, "I", "foo", 0},
    {"ValueFollows", "-I", FlagKind::UserInclude, "I", "", 1},
    {"LongestNameWins", "-include-pch", FlagKind::DropWithValue, "include-pch", "", 1},
    {"ShorterNameFitsTheRest", "-include-p.h", FlagKind::ForcedInclude, "include", "-p.h", 0},
    {"EqualSignTakesNoNext", "--include=", FlagKind::ForcedInclude, "include=", "", 0},
    {"ExtensionWins", "-O1", FlagKind::Keep, "O1", "", 0},
    {"ShortGluedValue", "-fcx", FlagKind::Drop, "fc", "x", 0},
    {"ShortGluedNotAfterTwoDashes", "--fcx", FlagKind::Keep, "", "", 0},
    {"LongValueBehindEqualSign", "--output=x", FlagKind::Output, "output", "x", 0},
    {"LongValueFollows", "--output", FlagKind::Output, "output", "", 1},
    {"LongNameIsNoBeginning", "--output_dir=x", FlagKind::Keep, "", "", 0},
    {"ListGlued", "-Ja,b", FlagKind::SystemInclude, "J", "a,b", 0},
    {"ListFollows", "-J", FlagKind::SystemInclude, "J", "", 1},
    {"GluedAndNext", "--list=x", FlagKind::DropWithValue, "list=", "x", 1},
    {"NoValueIsNoBeginning", "-O2", FlagKind::Keep, "", "", 0},
    {"StandardIsNoBeginning", "-std=c99x", FlagKind::Keep, "", "", 0},
    {"EqualSignFitsAsABeginning", "--help=all", FlagKind::NoCompilation, "help=", "all", 0},
    {"OneLetterNotAfterTwoDashes", "--Ifoo", FlagKind::Keep, "", "", 0},
    {"ListBeginsWithAComma", "-Wp,-DA", FlagKind::Preprocessor, "Wp", ",-DA", 0},
    {"WarningIsNoList", "-Wpedantic", FlagKind::Keep, "", "", 0},
    {"GluedValue", "-Foa.o", FlagKind::Output, "Fo", "a.o", 0},
    {"GluedValueTakesNoNext", "-Fo", FlagKind::Output, "Fo", "", 0},
    {"GluedWordIsNoList", "-clang:-c", FlagKind::Preprocessor, "clang:", "-c", 0},
    {"ExtensionCounts", "-imsvcdir", FlagKind::SystemInclude, "imsvc", "dir", 0},
    {"NextValueIsNeverGlued", "-Xclangx", FlagKind::Keep, "", "", 0},
    {"NextValueFollows", "-Xclang", FlagKind::Preprocessor, "Xclang", "", 1},
    {"ThreeFollow", "-sectcreate", FlagKind::KeepWithValue, "sectcreate", "", 3},
    {"CaseCounts", "-ifoo", FlagKind::Keep, "", "", 0},
    {"IntroducerAlone", "--", FlagKind::Keep, "", "", 0},
    {"BytesAbove127", "-\xc3\xa9", FlagKind::Keep, "", "", 0},
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
    EXPECT_EQ(match.following, row.following);
}

INSTANTIATE_TEST_SUITE_P(Cases, FlagTableFind, testing::ValuesIn(FindCases), CaseName<FindCase>);

} // namespace Orvanta
