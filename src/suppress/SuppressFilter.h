#pragma once

#include "report/AnalyzerType.h"
#include "report/IOutput.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace OrvlogConverter {

/// A file whose messages are to be suppressed.
struct SuppressedFile {
    std::string name;       ///< part of the path of a message's file
    std::uint32_t line = 0; ///< 0: every line

    bool operator==(const SuppressedFile&) const = default;
};

/// What a `SuppressFilter` lets pass. Empty members restrict nothing.
struct SuppressFilterSettings {
    std::set<std::string, std::less<>> disabledCodes = {};
    std::vector<SuppressedFile> files = {};
    std::vector<AnalyzerLevels> analyzers = {};
    std::set<std::uint32_t> codeNumbers = {};
};

/// Parses values such as "test.c" and "test.c:22".
/// \throws ConfigException for the first fault found
[[nodiscard]] std::vector<SuppressedFile> ParseSuppressedFiles(const std::vector<std::string>& values);

/// Parses a value such as "501" or "V501".
/// \throws ConfigException
[[nodiscard]] std::uint32_t ParseCodeNumber(std::string_view value);

/// Chooses the messages that go into a base.
class SuppressFilter : public IFilter {
public:
    SuppressFilter(IOutput* next, SuppressFilterSettings settings);
    /// Whether the message is to be added to the base.
    bool Accept(const ReportMessage& message) override;

private:
    [[nodiscard]] bool IsInFiles(const ReportMessage& message) const;

    SuppressFilterSettings settings_;
    LevelTable levels_;
};

} // namespace OrvlogConverter
