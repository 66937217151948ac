#pragma once

#include "bundled/AnalyzerInformation.h"
#include "bundled/CppcheckOutput.h"
#include "platform/Fingerprint.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

namespace Orvanta {

/// Runs Cppcheck's whole-program step over the facts of many units, none of which is analyzed again: Cppcheck finds a
/// build folder that already holds all facts, as those of a few empty files, and believes it. Handing it the units'
/// texts instead would analyze each of them a second time. It believes what carries the hash that it makes of a text
/// and of its options, which is taken from what it writes for an empty file; whether it did shows in the end: what it
/// does not believe, it replaces.
class CppcheckLink {
public:
    /// Works in `folder`, which is empty.
    /// \throws ZelmException when Cppcheck is missing or fails
    explicit CppcheckLink(std::string folder);

    /// Facts that were added before, such as those of a header, are not added again.
    /// \throws ZelmException when they can't be written
    void Add(std::span<const FactGroup> facts);

    /// The last call.
    /// \throws ZelmException when Cppcheck fails, or does not believe
    [[nodiscard]] CppcheckOutput Run();

private:
    // Puts the facts of `part_` into the folder as those of one more file.
    void WritePart();

    std::string folder_;
    std::string program_;
    std::string frame_;                    // what Cppcheck writes for an empty file, up to its end tag
    std::string part_;                     // the facts that are not written yet
    std::vector<std::uint64_t> partSizes_; // of those that are
    std::unordered_set<Fingerprint, FingerprintHash> known_;
};

} // namespace Orvanta
