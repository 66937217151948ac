#include "settings/SettingKeys.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvanta {

namespace {

struct SlipCase {
    const char* key;
    const char* meant; // empty: none
};

const SlipCase SlipCases[] = {
    {"exclude-path", ""},
    {"exclude-paths", "exclude-path"},
    {"Exclude_Path", "exclude-path"},
    {"exlcude-path", "exclude-path"},
    {"rule-config", "rules-config"},
    {"sourcetree_rot", "sourcetree-root"},
    {"ouput-file", "output-file"},
    {"sdt", "std"},
    {"set", ""}, // two letters of three
    {"no-noise", ""},
    {"", ""},
};

TEST(SettingKeys, ThatAreNearlyKnownNameTheKnownOne) {
    for (const SlipCase& row : SlipCases) {
        EXPECT_EQ(MeantKey(row.key), row.meant) << row.key;
    }
    EXPECT_EQ(MeantKey(std::string(1 << 20, 'a')), "");
}

} // namespace

} // namespace Orvanta
