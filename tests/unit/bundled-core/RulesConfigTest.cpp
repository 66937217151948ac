#include "bundled/RulesConfig.h"

#include "support/ErrorOf.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(RulesConfig, ChangesChecksByTheirIdentifiers) {
    const TestFolder folder;
    CheckRules rules;
    ReadRules(folder.Write("a", "# ours\r\n\r\n disable = memleak\r\nlevel:nullPointer=3\n"), rules);
    ReadRules(folder.Write("b", "enable=cert-err33-c\nlevel:nullPointer=2"), rules);
    CheckRow row = *FindCheck("nullPointer");
    rules.ApplyTo(row);
    EXPECT_EQ(row.level, 2U);
    EXPECT_EQ(row.state, CheckState::On);
    row = *FindCheck("cert-err33-c");
    rules.ApplyTo(row);
    EXPECT_EQ(row.state, CheckState::On);
    EXPECT_TRUE(rules.SwitchesOff("memleak"));
    EXPECT_FALSE(rules.SwitchesOff("nullPointer"));
}

TEST(RulesConfig, WhatItCantDoIsAnErrorWithItsLine) {
    struct {
        const char* line;
        const char* reason;
    } const cases[] = {
        {"disable=memlaek", "no check is called \"memlaek\""},
        {"level:memleak=4", "a level is 1, 2 or 3"},
        {"hide=memleak", "\"disable=ID\", \"enable=ID\" or \"level:ID=N\" is expected"},
    };

    const TestFolder folder;
    for (const auto& row : cases) {
        const std::string path = folder.Write("r.orvconfig", "\n" + std::string(row.line) + "\n");
        CheckRules rules;
        EXPECT_EQ(ErrorOf([&] { ReadRules(path, rules); }), path + ", line 2: \"" + row.line + "\": " + row.reason);
    }
}

} // namespace
} // namespace Orvanta
