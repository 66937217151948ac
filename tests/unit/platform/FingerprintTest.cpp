#include "platform/Fingerprint.h"

#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace Orvanta {
namespace {

TEST(Fingerprint, ChangesInBothHalvesWithEveryBitAndEveryLength) {
    std::set<std::uint64_t> lows;
    std::set<std::uint64_t> highs;
    std::size_t contents = 0;
    for (const std::size_t size : {1U, 8U, 31U, 32U, 33U, 64U, 100U}) {
        for (std::size_t bit = 0; bit <= size * 8; ++bit) {
            std::string bytes(size, '\0');
            if (bit < size * 8) {
                bytes[bit / 8] = static_cast<char>(1U << (bit % 8));
            }
            const Fingerprint fingerprint = FingerprintOf(bytes);
            lows.insert(fingerprint.low);
            highs.insert(fingerprint.high);
            ++contents;
        }
    }
    EXPECT_EQ(lows.size(), contents);
    EXPECT_EQ(highs.size(), contents);
}

TEST(Fingerprint, RegardsHowPartsAreCutAndInWhichOrderTheyCome) {
    const std::vector<std::string> splits[] = {{"ab", "c"}, {"a", "bc"}, {"abc"},     {"abc", ""},
                                               {"", "abc"}, {"c", "ab"}, {"bc", "a"}, {}};
    std::set<Fingerprint> all;
    for (const std::vector<std::string>& parts : splits) {
        FingerprintBuilder builder;
        for (const std::string& part : parts) {
            builder.Add(part);
        }
        all.insert(builder.Value());
    }
    EXPECT_EQ(all.size(), std::size(splits));
}

TEST(ContentFingerprint, IsThatOfTheBytesHoweverTheyCome) {
    const TestFolder folder;
    std::set<ContentFingerprint> all;
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 200000U}) {
        std::string bytes;
        for (std::size_t at = 0; at < size; ++at) {
            bytes += static_cast<char>(at * at / 7);
        }
        const std::optional<ContentFingerprint> whole = FingerprintOfFile(folder.Write("file", bytes));
        ASSERT_TRUE(whole.has_value());
        EXPECT_EQ(whole->size, size);
        all.insert(*whole);
        for (const std::size_t pieceSize : {1000U, 65536U, 150000U}) {
            ContentFingerprinter pieces;
            for (std::size_t at = 0; at < size; at += pieceSize) {
                pieces.Add(std::string_view(bytes).substr(at, pieceSize));
            }
            EXPECT_EQ(pieces.Value(), *whole) << size << " bytes in pieces of " << pieceSize;
        }
    }
    EXPECT_EQ(all.size(), 6U);
    EXPECT_FALSE(FingerprintOfFile(folder / "none").has_value());
    EXPECT_FALSE(FingerprintOfFile(folder.Path()).has_value());
}

} // namespace
} // namespace Orvanta
