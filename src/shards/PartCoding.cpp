#include "shards/PartCoding.h"

namespace Orvanta {

namespace {

// Seven bits of a number in each byte, the lowest first; the eighth says that another follows.
constexpr unsigned Bits = 7;
constexpr std::uint64_t Continues = std::uint64_t{1} << Bits;
constexpr unsigned MostBits = 64;

// Bits of a fingerprint are spread: it takes all its bytes.
constexpr unsigned BitsOfByte = 8;

} // namespace

PartEncoder& PartEncoder::Add(std::uint64_t number) {
    for (; number >= Continues; number >>= Bits) {
        bytes_ += static_cast<char>(number % Continues | Continues);
    }
    bytes_ += static_cast<char>(number);
    return *this;
}

PartEncoder& PartEncoder::Add(std::string_view text) {
    Add(std::uint64_t{text.size()});
    bytes_ += text;
    return *this;
}

PartEncoder& PartEncoder::Add(const Fingerprint& fingerprint) {
    for (const std::uint64_t half : {fingerprint.low, fingerprint.high}) {
        for (unsigned shift = 0; shift < MostBits; shift += BitsOfByte) {
            bytes_ += static_cast<char>(half >> shift);
        }
    }
    return *this;
}

std::uint64_t PartDecoder::Number() {
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < MostBits && !rest_.empty(); shift += Bits) {
        const auto byte = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        number |= (byte % Continues) << shift;
        if (byte < Continues) {
            return number;
        }
    }
    throw DamagedPart();
}

std::uint64_t PartDecoder::NumberUpTo(std::uint64_t most) {
    const std::uint64_t number = Number();
    if (number > most) {
        throw DamagedPart();
    }
    return number;
}

std::string_view PartDecoder::Text() {
    const auto size = static_cast<std::size_t>(NumberUpTo(rest_.size()));
    // Read again: the number has taken bytes off.
    if (size > rest_.size()) {
        throw DamagedPart();
    }
    const std::string_view text = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return text;
}

Fingerprint PartDecoder::Mark() {
    Fingerprint fingerprint;
    if (rest_.size() < sizeof fingerprint) {
        throw DamagedPart();
    }
    for (std::uint64_t* const half : {&fingerprint.low, &fingerprint.high}) {
        for (unsigned shift = 0; shift < MostBits; shift += BitsOfByte) {
            *half |= std::uint64_t{static_cast<unsigned char>(rest_.front())} << shift;
            rest_.remove_prefix(1);
        }
    }
    return fingerprint;
}

} // namespace Orvanta
