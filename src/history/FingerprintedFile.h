#pragma once

#include "platform/Files.h"
#include "platform/Fingerprint.h"

#include <string>
#include <string_view>

namespace Orvanta {

/// Replaces a file as AtomicFile does, takes it in pieces of any size, and knows the fingerprint of what it holds.
/// All functions throw FileException.
class FingerprintedFile {
public:
    explicit FingerprintedFile(const std::string& path) : file_(path) {}

    void Append(std::string_view bytes);

    /// Of all that was appended so far.
    [[nodiscard]] ContentFingerprint Content();

    /// The last call: the file is there.
    void Commit();

private:
    /// Hands what is gathered on, and leaves nothing gathered.
    void WriteBlock();

    AtomicFile file_;
    ContentFingerprinter content_;
    std::string block_; // not written yet
};

} // namespace Orvanta
