#pragma once

#include "platform/Fingerprint.h"
#include "report/IOutput.h"

#include <unordered_set>

namespace OrvlogConverter {

/// Of all fields of a message.
[[nodiscard]] Orvanta::Fingerprint FingerprintOf(const ReportMessage& message);

/// Drops every message that equals an earlier one in all fields, such as a finding in a header that many units include.
/// Keeps a fingerprint of 128 bits per message, not the message.
class DuplicateFilter : public IFilter {
public:
    using IFilter::IFilter;
    /// True for the first of equal messages.
    bool Accept(const ReportMessage& message) override;

private:
    std::unordered_set<Orvanta::Fingerprint, Orvanta::FingerprintHash> seen_;
};

} // namespace OrvlogConverter
