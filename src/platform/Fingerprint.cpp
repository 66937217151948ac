#include "platform/Fingerprint.h"

#include "platform/NativePath.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <fstream>
#include <memory>

namespace Orvanta {

namespace {

// Odd, with about as many bits set as not; otherwise without meaning.
constexpr std::uint64_t Keys[] = {0xd6e8feb86659fd93U, 0xa0761d64e9b3c7c5U, 0x94d049bb133111ebU,
                                  0xbf58476d1ce4e5b9U, 0x8ebc6af09c88c6e3U, 0x589965cc75374cc3U};

// Of one step of the chains, in bytes: four words.
constexpr std::size_t StepSize = 32;
// Of the pieces that a content is cut into: part of what its fingerprint is, so files of fingerprints depend on it.
constexpr std::size_t BlockSize = std::size_t{64} << 10U;

__extension__ using Product = unsigned __int128;

// Every bit of both factors takes part in the result.
std::uint64_t Fold(std::uint64_t left, std::uint64_t right) noexcept {
    const Product product = static_cast<Product>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

// A copy and no cast: the bytes need not be aligned. Compilers make one load of it.
std::uint64_t Word(const char* bytes) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Two chains of 64 bits for each half of the result, so that the processor has four products under way. Each word goes
/// into both halves. What a product loses when a factor happens to be zero, the sum keeps.
struct Chains {
    std::uint64_t low[2] = {Keys[4], Keys[5]};
    std::uint64_t high[2] = {Keys[5], Keys[4]};

    void Step(const char* bytes) noexcept {
        const std::uint64_t words[] = {Word(bytes), Word(bytes + 8), Word(bytes + 16), Word(bytes + 24)};
        low[0] += Fold(words[0] ^ Keys[0], words[1] ^ low[0]);
        low[1] += Fold(words[2] ^ Keys[1], words[3] ^ low[1]);
        high[0] += Fold(words[3] ^ Keys[2], words[0] ^ high[0]);
        high[1] += Fold(words[1] ^ Keys[3], words[2] ^ high[1]);
    }
};

} // namespace

Fingerprint FingerprintOf(std::string_view bytes) {
    const std::uint64_t size = bytes.size();
    Chains chains;
    while (bytes.size() >= StepSize) {
        chains.Step(bytes.data());
        bytes.remove_prefix(StepSize);
    }
    if (!bytes.empty()) {
        // Filled up with zeros; the size, which goes into the result, tells them from zeros of the text.
        char rest[StepSize] = {};
        std::memcpy(rest, bytes.data(), bytes.size());
        chains.Step(rest);
    }
    return {Fold(chains.low[0] ^ Keys[2], std::rotl(chains.low[1], 32) ^ size),
            Fold(chains.high[0] ^ Keys[0], std::rotl(chains.high[1], 32) ^ size)};
}

FingerprintBuilder& FingerprintBuilder::Add(std::string_view text) {
    return Add(FingerprintOf(text)).Add(std::uint64_t{text.size()});
}

FingerprintBuilder& FingerprintBuilder::Add(std::uint64_t number) {
    // The key sets a number apart from a part whose half happens to be that number.
    return Add(Fingerprint{number, Keys[5]});
}

FingerprintBuilder& FingerprintBuilder::Add(const Fingerprint& part) {
    low_ = std::rotl(low_, 23) + Fold(part.low ^ low_ ^ Keys[0], part.high ^ Keys[1]);
    high_ = std::rotl(high_, 41) + Fold(part.high ^ high_ ^ Keys[2], part.low ^ Keys[3]);
    return *this;
}

Fingerprint FingerprintBuilder::Value() const noexcept {
    return {Fold(low_ ^ Keys[4], Keys[1]), Fold(high_ ^ Keys[5], Keys[3])};
}

void ContentFingerprinter::Add(std::string_view piece) {
    size_ += piece.size();
    while (open_.size() + piece.size() >= BlockSize) {
        const std::size_t missing = BlockSize - open_.size();
        // Nothing waits: the block is taken where it stands, without a copy.
        if (open_.empty()) {
            blocks_.Add(FingerprintOf(piece.substr(0, BlockSize)));
        } else {
            open_ += piece.substr(0, missing);
            blocks_.Add(FingerprintOf(open_));
            open_.clear();
        }
        piece.remove_prefix(missing);
    }
    open_ += piece;
}

ContentFingerprint ContentFingerprinter::Value() const {
    // A copy, so that more may be added behind.
    FingerprintBuilder all = blocks_;
    return {size_, all.Add(FingerprintOf(open_)).Value()};
}

std::optional<ContentFingerprint> FingerprintOfFile(const std::string& path) {
    std::ifstream file(NativePath(path), std::ios::binary);
    if (!file.is_open()) {
        return std::nullopt;
    }
    const auto block = std::make_unique_for_overwrite<char[]>(BlockSize);
    ContentFingerprinter content;
    do {
        file.read(block.get(), BlockSize);
        content.Add({block.get(), static_cast<std::size_t>(file.gcount())});
    } while (file);
    // The end sets other bits; only `bad` says that bytes are missing.
    return file.bad() ? std::nullopt : std::optional(content.Value());
}

} // namespace Orvanta
