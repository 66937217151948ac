#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// A cryptographic hash (SHA-256): two contents with one digest can't be made, so that a digest may stand for a content
/// among people who don't trust each other.
struct Digest {
    std::array<unsigned char, 32> bytes = {};

    auto operator<=>(const Digest&) const = default;

    /// 64 digits, in lower case.
    [[nodiscard]] std::string Text() const;
};

/// Makes the digest of a sequence of parts. Move-only.
class DigestBuilder {
public:
    /// \throws ZelmException when the library refuses
    DigestBuilder();
    ~DigestBuilder();
    DigestBuilder(DigestBuilder&& other) noexcept;
    DigestBuilder& operator=(DigestBuilder&& other) noexcept;

    /// Adds a text with its length, so that no other split of the same bytes looks the same.
    DigestBuilder& Add(std::string_view text);
    /// Adds a number.
    DigestBuilder& Add(std::uint64_t number);
    /// Adds bytes as they are: however a content is cut, its digest is the same.
    DigestBuilder& AddBytes(std::string_view bytes);

    /// Of what was added; the last call.
    [[nodiscard]] Digest Value();

private:
    struct Handle;
    std::unique_ptr<Handle> handle_;
};

/// The digest of a text.
[[nodiscard]] Digest DigestOf(std::string_view text);

/// Reads a file to its end; absent when that is not possible.
[[nodiscard]] std::optional<Digest> DigestOfFile(const std::string& path);

} // namespace Orvanta
