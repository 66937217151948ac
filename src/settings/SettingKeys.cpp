#include "settings/SettingKeys.h"

#include "platform/Text.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace Orvanta {

namespace {

// What the driver reads, what it tells a core, and what the bundled one reads: a person may set any.
constexpr std::string_view KnownKeys[] = {
    "analysis-mode",
    "cache",
    "compiler",
    "engines",
    "engines-all",
    "engines-depth",
    "exclude-path",
    "fshort-double",
    "fshort-float",
    "funsigned-char",
    "i-file",
    "intermodular",
    "intermodular-file",
    "intermodular-unit-file",
    "language",
    "launcher",
    "msvc-await",
    "new-output-format",
    "output-file",
    "platform",
    "preprocessor",
    "response-file-quoting",
    "rules-config",
    "source-file",
    "sourcetree-root",
    "std",
    "vcprojectdir",
};

// Case and the sign between the words are what people slip on without a letter being wrong.
std::string Plain(std::string_view key) {
    std::string plain = ToLowerAscii(key);
    std::replace(plain.begin(), plain.end(), '_', '-');
    return plain;
}

// How many letters are to be put in, left out, changed, or swapped with their neighbour.
std::size_t Distance(std::string_view left, std::string_view right) {
    const std::size_t width = right.size() + 1;
    std::vector<std::size_t> rows((left.size() + 1) * width);
    const auto at = [&rows, width](std::size_t i, std::size_t j) -> std::size_t& {
        return rows[i * width + j];
    };
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                at(i, j) = i + j;
                continue;
            }
            const std::size_t changed = at(i - 1, j - 1) + (left[i - 1] == right[j - 1] ? 0 : 1);
            at(i, j) = std::min({changed, at(i - 1, j) + 1, at(i, j - 1) + 1});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
                at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
            }
        }
    }
    return rows.back();
}

} // namespace

std::string_view MeantKey(std::string_view key) {
    // Longer ones are some other text: nothing is to be learned by comparing them.
    constexpr std::size_t LongestKey = 64;
    constexpr std::size_t ShortKey = 6; // in which two wrong letters make another word
    if (key.size() > LongestKey || std::find(std::begin(KnownKeys), std::end(KnownKeys), key) != std::end(KnownKeys)) {
        return {};
    }
    const std::string plain = Plain(key);
    std::string_view meant;
    std::size_t nearest = key.size() > ShortKey ? 3 : 2; // one more than is taken for a slip
    for (const std::string_view known : KnownKeys) {
        if (const std::size_t distance = Distance(plain, known); distance < nearest) {
            nearest = distance;
            meant = known;
        }
    }
    return meant;
}

std::string KeyWarning(const std::string& path, std::string_view key) {
    const std::string_view meant = MeantKey(key);
    return meant.empty() ? std::string()
                         : "Warning: " + path + ": unknown key \"" + std::string(key) + "\", did you mean \"" +
                               std::string(meant) + "\"?";
}

} // namespace Orvanta
