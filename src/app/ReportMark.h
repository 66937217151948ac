#pragma once

#include "history/UnitHistory.h"
#include "platform/Fingerprint.h"

#include <string>

namespace Orvanta {

/// A file in ".Orvanta" that says what the report on disk is: which units it covers, and how their findings came into
/// it. While a report is written there is no mark, so that a killed run is seen.
class ReportMark {
public:
    explicit ReportMark(const std::string& orvantaFolder);

    /// Whether the report on disk is the one that `contents` stands for.
    [[nodiscard]] bool Matches(const Fingerprint& contents) const;

    /// \throws ZelmException when it can't be written
    void Write(const Fingerprint& contents) const;

    void Remove() const noexcept;

private:
    std::string path_;
};

} // namespace Orvanta
