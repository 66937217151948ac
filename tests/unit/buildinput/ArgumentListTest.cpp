#include "buildinput/ArgumentList.h"

#include <gtest/gtest.h>

namespace Orvanta {

using Words = std::vector<std::string>;

TEST(ArgumentList, GivesBackTheWordsThatItPacked) {
    const Words several = {"gcc", "", "-c", "a file with blanks.c", "\xC3\xA4\xFF", ""};
    for (const Words& words : {Words(), Words(1), Words(3), Words(1, "gcc"), several}) {
        const ArgumentList list(words);
        EXPECT_EQ(list.Size(), words.size());
        EXPECT_EQ(list.ToVector(), words);
        for (std::size_t i = 0; i < words.size(); ++i) {
            EXPECT_EQ(list[i], words[i]);
        }
    }
}

} // namespace Orvanta
