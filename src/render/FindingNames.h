#pragma once

#include "platform/Fingerprint.h"
#include "suppress/SuppressEntry.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace OrvlogConverter {

/// Gives findings names by which a platform knows them again when lines have moved: the entry that a base would hold,
/// and the place among the findings of the same file with the same entry. Keeps 128 bits and a count for each.
class FindingNames {
public:
    /// Line numbers are no part of it: it stays the same when the code around a finding moves.
    struct Name {
        Orvanta::Fingerprint entry;
        std::uint32_t ordinal; ///< from 1
    };

    /// The name of the next finding of a file.
    /// Counts the finding, so it is to be asked once for each, in the order of the report.
    [[nodiscard]] Name Next(const SuppressEntry& entry, std::string_view file);

private:
    struct Hash {
        std::size_t operator()(const Orvanta::Fingerprint& value) const noexcept { return value.low; }
    };

    std::unordered_map<Orvanta::Fingerprint, std::uint32_t, Hash> counts_; // by entry and file
};

/// 32 digits, in lower case.
[[nodiscard]] std::string HexadecimalText(const Orvanta::Fingerprint& fingerprint);

} // namespace OrvlogConverter
