#pragma once

#include "bundled/CheckChoice.h"
#include "bundled/Finding.h"
#include "bundled/MarkedText.h"
#include "bundled/SystemTextCutter.h"
#include "report/ReportMessage.h"

#include <span>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What has to be known of a unit to tell findings in it. All that is viewed must outlive the object.
struct ReportScope {
    std::span<const MarkedFile> files;             ///< whose aliases places are named by, the source first
    std::span<const SystemMacroText> systemMacros; ///< those of `cutText`
    std::string_view cutText;                      ///< empty where there is none: all lines count as written then
    CheckChoice choice;
};

/// What is told of a unit.
struct ReportedFindings {
    std::vector<OrvlogConverter::ReportMessage> messages;
    std::vector<OrvlogConverter::ReportMessage> hidden; ///< by marks in the source; in any order
};

/// The findings in a user's own files that the choice asks for, as report messages, in order of file, line and
/// identifier, each once. A place in a file that is none of the unit's stands for the source.
[[nodiscard]] ReportedFindings MakeReportMessages(std::span<const Finding> findings, const ReportScope& scope);

/// Adds those of the `others` that say something new of a place. The order of the messages is kept.
void AddFindings(std::vector<OrvlogConverter::ReportMessage>& messages,
                 std::vector<OrvlogConverter::ReportMessage> others);

/// Why Cppcheck has not looked at the unit, with the place; empty when it has. It tells by a finding when it could not
/// read the text.
[[nodiscard]] std::string ReasonNotRead(std::span<const Finding> findings, std::span<const MarkedFile> files);

} // namespace Orvanta
