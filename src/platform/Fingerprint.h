#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// 128 bits that tell one content from another. Not for defence against somebody who wants two to be alike.
struct Fingerprint {
    std::uint64_t low = 0;
    std::uint64_t high = 0;

    auto operator<=>(const Fingerprint&) const = default;
};

/// For containers: the bits are spread already, so that half of them are a hash.
struct FingerprintHash {
    std::size_t operator()(const Fingerprint& value) const noexcept { return static_cast<std::size_t>(value.low); }
};

/// Makes a fingerprint of a sequence of parts.
class FingerprintBuilder {
public:
    /// Adds a text with its length, so that no other split of the same bytes looks the same.
    FingerprintBuilder& Add(std::string_view text);
    /// Adds a number.
    FingerprintBuilder& Add(std::uint64_t number);
    /// Adds a fingerprint, as a part that stands for all that it was made of.
    FingerprintBuilder& Add(const Fingerprint& part);

    /// Of what was added so far; more may be added behind it.
    [[nodiscard]] Fingerprint Value() const noexcept;

private:
    std::uint64_t low_ = 0;
    std::uint64_t high_ = 0;
};

/// The fingerprint of a block of bytes; fast for long ones.
[[nodiscard]] Fingerprint FingerprintOf(std::string_view bytes);

/// What a file holds, told from the bytes alone.
struct ContentFingerprint {
    std::uint64_t size = 0;
    Fingerprint bytes;

    auto operator<=>(const ContentFingerprint&) const = default;
};

/// Makes the fingerprint of a content that is never whole in memory: however it is cut into pieces, it is the same.
class ContentFingerprinter {
public:
    /// The next bytes of the content.
    void Add(std::string_view piece);

    /// Of what was added so far; more may be added behind it.
    [[nodiscard]] ContentFingerprint Value() const;

private:
    FingerprintBuilder blocks_;
    std::string open_; // the last block, while it is not complete
    std::uint64_t size_ = 0;
};

/// Reads a file to its end; absent when that is not possible.
[[nodiscard]] std::optional<ContentFingerprint> FingerprintOfFile(const std::string& path);

} // namespace Orvanta
