#include "buildinput/CompilerVariables.h"

#include <gtest/gtest.h>

namespace Orvanta {

namespace {

using Words = std::vector<std::string>;

struct VariablesCase {
    const char* name;
    Environment changes;
    Environment own;
    Words expected;
};

const VariablesCase Cases[] = {
    {"None", {}, {}, {"cl", "a.c"}},
    {"Both", {}, {{"CL", "/W4 /c"}, {"_CL_", "/Od"}}, {"cl", "/W4", "/c", "a.c", "/Od"}},
    {"Quoted", {}, {{"CL", R"(/I"a b" "/Fo c\\" d\e)"}}, {"cl", "/Ia b", R"(/Fo c\)", R"(d\e)", "a.c"}},
    {"Number", {}, {{"CL", "/DA#1#2 -DB=#3 /FIx#y"}}, {"cl", "/DA=1#2", "-DB=#3", "/FIx#y", "a.c"}},
    {"Layers", {{"CL", "/DFirst"}}, {{"CL", "/DSecond"}}, {"cl", "/DFirst", "a.c"}},
    {"Emptied", {{"CL", ""}}, {{"CL", "/DSecond"}}, {"cl", "a.c"}},
};

} // namespace

TEST(CompilerVariables, PutTheirWordsAroundTheCommands) {
    for (const VariablesCase& row : Cases) {
        Words arguments = {"cl", "a.c"};
        const Environment* const layers[] = {&row.changes, &row.own};
        AddArgumentsOfVariables(arguments, layers);
        EXPECT_EQ(arguments, row.expected) << row.name;
    }
}

} // namespace Orvanta
