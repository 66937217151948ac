#pragma once

#include "report/ReportMessage.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace OrvlogConverter {

/// What a base keeps of a message: the same for as long as its file's name, its text but for numbers and the three
/// lines around it stay.
struct SuppressEntry {
    std::string fileName; ///< without its folder
    std::string errorCode;
    std::string message; ///< normalised
    std::uint32_t codePrev = 0;
    std::uint32_t codeCurrent = 0;
    std::uint32_t codeNext = 0;
    std::string more = {}; ///< other members that it has in a base, each behind ", "; no part of what tells it apart

    bool operator==(const SuppressEntry& other) const noexcept;
    /// By all fields, texts byte for byte: the order in which a base is written.
    [[nodiscard]] bool operator<(const SuppressEntry& other) const noexcept;
};

/// Not declared `noexcept`: the standard library then keeps each entry's hash beside it and need not take it again.
struct SuppressEntryHash {
    [[nodiscard]] std::size_t operator()(const SuppressEntry& entry) const;
};

/// The entry of a message by the rules of a base's version. Its texts are valid UTF-8, as they come back from a base.
[[nodiscard]] SuppressEntry MakeSuppressEntry(const ReportMessage& message, std::uint32_t version);

} // namespace OrvlogConverter
