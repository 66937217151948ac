#include "render/FindingNames.h"

namespace OrvlogConverter {

FindingNames::Name FindingNames::Next(const SuppressEntry& entry, std::string_view file) {
    Orvanta::FingerprintBuilder builder;
    builder.Add(entry.fileName).Add(entry.errorCode).Add(entry.message);
    builder.Add(entry.codePrev).Add(entry.codeCurrent).Add(entry.codeNext);
    // The file's path is no part of the name, which so stays the same for another checkout; it decides only among whom
    // the finding is counted.
    const Orvanta::Fingerprint fingerprint = builder.Value();
    builder.Add(file);
    return {fingerprint, ++counts_[builder.Value()]};
}

std::string HexadecimalText(const Orvanta::Fingerprint& fingerprint) {
    constexpr unsigned WordBits = 64;
    std::string text(2 * WordBits / 4, '0');
    auto digit = text.begin();
    // The high word first, as one number of 128 bits is written.
    for (const std::uint64_t word : {fingerprint.high, fingerprint.low}) {
        for (unsigned shift = WordBits; shift > 0;) {
            shift -= 4;
            *digit++ = "0123456789abcdef"[word >> shift & 0xFU];
        }
    }
    return text;
}

} // namespace OrvlogConverter
