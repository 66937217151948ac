#include "cppcheck/ReportWriter.h"

#include "cppcheck/SourceLines.h"
#include "cppcheck/SystemTextCutter.h"
#include "platform/Exceptions.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <tuple>

namespace Orvanta {

namespace {

using OrvlogConverter::ReportMessage;

// Cppcheck's findings about its own work: with one of them, the unit has not been analyzed, or not whole.
constexpr std::string_view FailureIds[] = {
    "cppcheckError", "cppcheckLimit", "instantiationError",   "internalAstError",
    "internalError", "invalidCode",   "noValidConfiguration", "preprocessorErrorDirective",
    "syntaxError",   "unhandledChar", "unknownMacro",
};

// Notes on how Cppcheck works, not on the code.
constexpr std::string_view DroppedSeverities[] = {"information", "debug", "none"};

template <std::size_t Count>
bool Contains(const std::string_view (&table)[Count], std::string_view word) {
    return std::find(std::begin(table), std::end(table), word) != std::end(table);
}

constexpr std::uint32_t LowLevel = 3;

std::uint32_t LevelOf(std::string_view severity) {
    if (severity == "error") {
        return 1;
    }
    return severity == "warning" ? 2 : LowLevel;
}

struct Place {
    const MarkedFile* file;
    std::uint32_t line;
    TextOrigin origin;
};

// A finding without a place, or with one outside of the unit's files, is laid to the first line of the source.
Place ResolvePlace(const CppcheckLocation& location, std::span<const MarkedFile> files) {
    const auto file = ReadAlias(location.file);
    if (!file || file->index >= files.size() || location.line == 0) {
        return {&files.front(), 1, TextOrigin::File};
    }
    return {&files[file->index], location.line, file->origin};
}

// Not those in system headers, and of those in the text of their macros only faults: its style is not the user's.
bool IsForTheUser(const CppcheckFinding& finding, std::span<const MarkedFile> files) {
    const Place place = ResolvePlace(finding.location, files);
    return !Contains(DroppedSeverities, finding.severity) && !place.file->isSystem &&
           (place.origin == TextOrigin::File || LevelOf(finding.severity) < LowLevel);
}

ReportMessage MakeMessage(const CppcheckFinding& finding, std::span<const MarkedFile> files, SourceLines& lines) {
    ReportMessage message;
    message.code = "External";
    message.level = LevelOf(finding.severity);
    message.cwe = finding.cwe;
    message.message = "[" + finding.id + "] " + finding.message;
    const Place primary = ResolvePlace(finding.location, files);
    message.positions.push_back(lines.At(primary.file->path, primary.line));
    for (const CppcheckLocation& location : finding.path) {
        const Place place = ResolvePlace(location, files);
        const bool isKnown = std::any_of(message.positions.begin(), message.positions.end(), [&](const auto& known) {
            return known.line == place.line && known.file == place.file->path;
        });
        if (!isKnown) {
            message.positions.push_back(lines.At(place.file->path, place.line));
        }
    }
    return message;
}

bool IsBefore(const ReportMessage& left, const ReportMessage& right) {
    const auto key = [](const ReportMessage& message) {
        const OrvlogConverter::MessagePosition& position = message.positions.front();
        return std::tie(position.file, position.line, message.message);
    };
    return key(left) < key(right);
}

} // namespace

std::vector<ReportMessage> MakeReportMessages(std::span<const CppcheckFinding> findings,
                                              std::span<const MarkedFile> files) {
    std::vector<ReportMessage> messages;
    SourceLines lines;
    for (const CppcheckFinding& finding : findings) {
        if (IsForTheUser(finding, files)) {
            messages.push_back(MakeMessage(finding, files, lines));
        }
    }
    std::stable_sort(messages.begin(), messages.end(), IsBefore);
    messages.erase(std::unique(messages.begin(), messages.end()), messages.end());
    return messages;
}

void ThrowIfNotAnalyzed(std::span<const CppcheckFinding> findings, std::span<const MarkedFile> files) {
    for (const CppcheckFinding& finding : findings) {
        if (Contains(FailureIds, finding.id)) {
            const Place place = ResolvePlace(finding.location, files);
            // The rest of the text shows the definitions that this core hands to Cppcheck.
            const std::string_view text = finding.message;
            throw ZelmException("Cppcheck can't read this unit: " + place.file->path + ", line " +
                                std::to_string(place.line) + ": [" + finding.id + "] " +
                                std::string(text.substr(0, text.find(" Configuration: '"))));
        }
    }
}

} // namespace Orvanta
