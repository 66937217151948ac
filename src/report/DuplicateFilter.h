#pragma once

#include "report/IOutput.h"

#include <cstdint>
#include <unordered_set>

namespace OrvlogConverter {

/// Drops every message that equals an earlier one in all fields, such as a finding in a header that many units include.
/// Keeps a fingerprint of 128 bits per message, not the message.
class DuplicateFilter : public IFilter {
public:
    using IFilter::IFilter;
    bool Accept(const ReportMessage& message) override;

private:
    struct Fingerprint {
        std::uint64_t low;
        std::uint64_t high;
        bool operator==(const Fingerprint&) const = default;
    };

    struct FingerprintHash {
        std::size_t operator()(const Fingerprint& value) const noexcept { return value.low; }
    };

    static Fingerprint FingerprintOf(const ReportMessage& message);

    std::unordered_set<Fingerprint, FingerprintHash> seen_;
};

} // namespace OrvlogConverter
