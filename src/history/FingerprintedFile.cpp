#include "history/FingerprintedFile.h"

namespace Orvanta {

void FingerprintedFile::Append(std::string_view bytes) {
    // Large enough for calls of the system not to count, and all that is ever held of the file.
    constexpr std::size_t BlockSize = std::size_t{64} << 10U;
    block_ += bytes;
    if (block_.size() >= BlockSize) {
        WriteBlock();
    }
}

ContentFingerprint FingerprintedFile::Content() {
    WriteBlock();
    return content_.Value();
}

void FingerprintedFile::Commit() {
    WriteBlock();
    file_.Commit();
}

void FingerprintedFile::WriteBlock() {
    file_.Append(block_);
    content_.Add(block_);
    block_.clear();
}

} // namespace Orvanta
