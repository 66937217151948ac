#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace OrvlogConverter {

/// One place in a source file.
struct MessagePosition {
    std::string file;
    std::uint32_t line = 0; ///< from 1
    std::string prevLine;   ///< text of the line before; empty when not known
    std::string currLine;
    std::string nextLine;
    std::uint32_t prevHash = 0; ///< hash of `prevLine`; 0 when not computed
    std::uint32_t currHash = 0;
    std::uint32_t nextHash = 0;

    bool operator==(const MessagePosition&) const = default;
};

/// One finding.
struct ReportMessage {
    std::string code;                       ///< such as "V501"; "External" for a finding of another tool
    std::string message;                    ///< the warning's text
    std::string sastId;                     ///< identifier in a further standard; empty when there is none
    std::vector<MessagePosition> positions; ///< the first is the primary one
    std::uint32_t cwe = 0;                  ///< CWE number; 0 means none
    std::uint32_t level = 0;                ///< certainty: 1 high, 2 medium, 3 low; 0 for anything else
    bool falseAlarm = false;

    bool operator==(const ReportMessage&) const = default;
};

/// The primary position of a message; an empty one when it has none.
[[nodiscard]] const MessagePosition& FirstPosition(const ReportMessage& message) noexcept;

} // namespace OrvlogConverter
