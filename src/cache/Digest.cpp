#include "cache/Digest.h"

#include "platform/Exceptions.h"
#include "platform/NativePath.h"

#include <algorithm>
#include <fstream>
#include <utility>

#include <gcrypt.h>

namespace Orvanta {

namespace {

constexpr std::size_t BlockSize = std::size_t{64} << 10U;

// Once in a process, before anything else of it is called.
bool PrepareLibrary() {
    if (gcry_check_version(nullptr) == nullptr) {
        return false;
    }
    // No secret is hashed: memory that is kept from the disk is not needed.
    gcry_control(GCRYCTL_DISABLE_SECMEM, 0);
    gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
    return true;
}

} // namespace

struct DigestBuilder::Handle {
    Handle() {
        static const bool isPrepared = PrepareLibrary();
        if (!isPrepared || gcry_md_open(&hash, GCRY_MD_SHA256, 0) != 0) {
            throw ZelmException("The library of hashes can't be used");
        }
    }

    ~Handle() { gcry_md_close(hash); }

    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    gcry_md_hd_t hash = nullptr;
};

std::string Digest::Text() const {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const unsigned char byte : bytes) {
        text += "0123456789abcdef"[byte >> 4U];
        text += "0123456789abcdef"[byte & 0xFU];
    }
    return text;
}

DigestBuilder::DigestBuilder() : handle_(std::make_unique<Handle>()) {}

DigestBuilder::~DigestBuilder() = default;
DigestBuilder::DigestBuilder(DigestBuilder&& other) noexcept = default;
DigestBuilder& DigestBuilder::operator=(DigestBuilder&& other) noexcept = default;

DigestBuilder& DigestBuilder::Add(std::string_view text) {
    return Add(std::uint64_t{text.size()}).AddBytes(text);
}

DigestBuilder& DigestBuilder::Add(std::uint64_t number) {
    // Byte by byte: the same on every machine.
    char bytes[sizeof number] = {};
    for (char& byte : bytes) {
        byte = static_cast<char>(number & 0xFFU);
        number >>= 8U;
    }
    return AddBytes({bytes, sizeof bytes});
}

DigestBuilder& DigestBuilder::AddBytes(std::string_view bytes) {
    gcry_md_write(handle_->hash, bytes.data(), bytes.size());
    return *this;
}

Digest DigestBuilder::Value() {
    Digest digest;
    const unsigned char* const value = gcry_md_read(handle_->hash, GCRY_MD_SHA256);
    std::copy_n(value, digest.bytes.size(), digest.bytes.begin());
    return digest;
}

Digest DigestOf(std::string_view text) {
    return DigestBuilder().AddBytes(text).Value();
}

std::optional<Digest> DigestOfFile(const std::string& path) {
    std::ifstream file(NativePath(path), std::ios::binary);
    DigestBuilder builder;
    const auto block = std::make_unique_for_overwrite<char[]>(BlockSize);
    while (file.read(block.get(), BlockSize) || file.gcount() > 0) {
        builder.AddBytes({block.get(), static_cast<std::size_t>(file.gcount())});
    }
    // A folder can be opened, and not read.
    return file.eof() ? std::optional(builder.Value()) : std::nullopt;
}

} // namespace Orvanta
