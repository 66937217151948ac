#pragma once

#include "platform/Exceptions.h"
#include "platform/Fingerprint.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Orvanta {

/// Bytes are not what was written. Who knows the file says which it is.
class DamagedPart : public ZelmException {
public:
    DamagedPart() : ZelmException("it is damaged or cut short") {}
};

/// Puts values behind each other, the same on every system: numbers in as few bytes as they need, texts with their size
/// in front.
class PartEncoder {
public:
    PartEncoder& Add(std::uint64_t number);
    PartEncoder& Add(std::string_view text);
    PartEncoder& Add(const Fingerprint& fingerprint);

    /// Of all that was added since the last `Clear`.
    [[nodiscard]] const std::string& Bytes() const noexcept { return bytes_; }

    /// Forgets it, and keeps the memory.
    void Clear() noexcept { bytes_.clear(); }

private:
    std::string bytes_;
};

/// Takes them off again. All functions throw DamagedPart when the bytes hold no such value.
class PartDecoder {
public:
    /// A view of `bytes`, which outlive it.
    explicit PartDecoder(std::string_view bytes) : rest_(bytes) {}

    [[nodiscard]] bool IsAtEnd() const noexcept { return rest_.empty(); }

    [[nodiscard]] std::uint64_t Number();
    /// One that is at most `most`.
    [[nodiscard]] std::uint64_t NumberUpTo(std::uint64_t most);
    /// A view into the bytes.
    [[nodiscard]] std::string_view Text();
    [[nodiscard]] Fingerprint Mark();

private:
    std::string_view rest_;
};

} // namespace Orvanta
